// The same by @backtest/framework. Its rules are asked at a bar's close, and act at once. It keeps prices in a
// database; here they stay in memory, and the clock starts when it has taken them from there.
"use strict";

const { readBars, seconds, tell } = require("./common.js");

const bars = readBars(process.argv[2]);
const minute = 60_000;
const prices = {
    id: 1, name: "EURUSD-1m", symbol: "EURUSD", interval: "1m", base: "EUR", quote: "USD", importedFromCSV: true,
    startTime: bars[0].time, endTime: bars[bars.length - 1].time + minute, creationTime: 0, lastUpdatedTime: 0,
    candles: bars.map(({ time, open, high, low, close }) => ({
        openTime: time, open, high, low, close, volume: 1, closeTime: time + minute, assetVolume: 1, numberOfTrades: 1,
    })),
};
const strategy = { name: "strategy", params: "[]", creationTime: 0, lastRunTime: 0 };

const client = require.resolve("@prisma/client");
require.cache[client] = {
    id: client, filename: client, loaded: true,
    exports: {
        PrismaClient: class {
            metaCandle = { findMany: async () => [prices] };
            strategy = {
                findMany: async () => [strategy],
                findUnique: async () => strategy,
                update: async () => strategy,
            };
        },
    },
};

const { runStrategy } = require("@backtest/framework");

runStrategy({ strategyName: "strategy", historicalData: [prices.name], params: {}, rootPath: __dirname })
    .then(({ allOrders }) => {
        const taken = seconds() - require("./strategy.js").start;
        tell("framework", bars.length, taken, allOrders.filter(({ type }) => type === "sell").length);
    });
