// What the loops share: the prices, the averages, the clock and the line that is told at the end.
"use strict";

const fs = require("node:fs");

/// The bars of a file: [{ time, open, high, low, close }].
exports.readBars = (path) =>
    fs.readFileSync(path, "utf8").trimEnd().split("\n").map((line) => {
        const [time, open, high, low, close] = line.split(",").map(Number);
        return { time, open, high, low, close };
    });

/// Of the last closes; as many as a script's average takes, exponential or not.
class Average {
    constructor(period) {
        this.closes = new Float64Array(period);
        this.sum = 0;
        this.value = 0;
        this.former = 0;
    }

    add(close, bar) {
        const place = bar % this.closes.length;
        this.sum += close - this.closes[place];
        this.closes[place] = close;
        this.former = this.value;
        this.value = this.sum / this.closes.length;
    }
}

/// The two averages, bar by bar.
exports.Crossing = class {
    constructor() {
        this.fast = new Average(10);
        this.slow = new Average(30);
        this.bars = 0;
    }

    /// 1 when the fast one has crossed the slow one upwards, -1 downwards, else 0.
    add(close) {
        const { fast, slow } = this;
        fast.add(close, this.bars);
        slow.add(close, this.bars);
        if (++this.bars <= 30)
            return 0;
        if (fast.former <= slow.former && fast.value > slow.value)
            return 1;
        return fast.former >= slow.former && fast.value < slow.value ? -1 : 0;
    }

    get isBelow() { return this.fast.value < this.slow.value; }
};

exports.stopDistance = 0.003;
exports.targetDistance = 0.006;

/// Processor time of this process in seconds.
exports.seconds = () => {
    const { user, system } = process.cpuUsage();
    return (user + system) / 1e6;
};

exports.tell = (name, bars, seconds, trades) =>
    console.log(`${name}_bars ${bars / seconds}\n${name}_trades ${trades}`);
