// The same by grademark. Its rules are asked at a bar's close, and what they ask for is done at the next open. It
// asks for none in the bar in which it does something, so a crossing back may have come before.
"use strict";

const { DataFrame } = require("data-forge");
const { backtest } = require("grademark");
const { readBars, Crossing, stopDistance, targetDistance, seconds, tell } = require("./common.js");

const bars = readBars(process.argv[2]);
const start = seconds();
const crossing = new Crossing();
const strategy = {
    prepIndicators: ({ inputSeries }) =>
        inputSeries.select((bar) => ({ ...bar, signal: crossing.add(bar.close), isBelow: crossing.isBelow })).bake(),
    entryRule: (enterPosition, { bar }) => {
        if (bar.signal > 0)
            enterPosition();
    },
    exitRule: (exitPosition, { bar }) => {
        if (bar.isBelow)
            exitPosition();
    },
    stopLoss: () => stopDistance,
    profitTarget: () => targetDistance,
};
const trades = backtest(strategy, new DataFrame(bars));
tell("grademark", bars.length, seconds() - start, trades.length);
