// The strategy in a loop, without any package.
"use strict";

const { readBars, Crossing, stopDistance, targetDistance, seconds, tell } = require("./common.js");

const bars = readBars(process.argv[2]);
const start = seconds();
const crossing = new Crossing();
let signal = 0;
let entry = 0; // 0: no position
let profit = 0;
let trades = 0;
const leave = (price) => {
    profit += price - entry;
    entry = 0;
    ++trades;
};
for (const bar of bars) {
    if (signal > 0 && entry === 0)
        entry = bar.open;
    else if (signal < 0 && entry !== 0)
        leave(bar.open);
    if (entry !== 0 && bar.low <= entry - stopDistance)
        leave(entry - stopDistance);
    else if (entry !== 0 && bar.high >= entry + targetDistance)
        leave(entry + targetDistance);
    signal = crossing.add(bar.close);
}
const taken = seconds() - start;
if (profit === 0)
    throw new Error("the loop has done nothing");
tell("node", bars.length, taken, trades);
