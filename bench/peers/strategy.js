// The strategy as @backtest/framework calls it.
"use strict";

const { Crossing, stopDistance, targetDistance, seconds } = require("./common.js");

const crossing = new Crossing();

/// Called when the prices are loaded.
exports.startCallback = async () => {
    exports.start = seconds();
};

exports.runStrategy = async ({ currentCandle: { close }, orderBook, buy, sell }) => {
    const signal = crossing.add(close);
    if (signal > 0 && !orderBook.bought)
        await buy({ stopLoss: close - stopDistance, takeProfit: close + targetDistance });
    else if (signal < 0 && orderBook.bought)
        await sell();
};
