// Averages and relative strength for a library that has none: whole series once, then the newest value alone.

export class Simple {
  constructor(closes, period) {
    let sum = 0;
    this.period = period;
    this.values = closes.map((close, i) => {
      sum += close - (i >= period ? closes[i - period] : 0);
      return i >= period - 1 ? sum / period : NaN;
    });
    this.others = sum - closes.at(-1);
  }

  /// The newest value if the newest close is this.
  newest(close) { return (this.others + close) / this.period; }
}

export class Exponential {
  constructor(closes, period) {
    this.k = 2 / (period + 1);
    let average = closes.slice(0, period).reduce((sum, close) => sum + close, 0) / period;
    this.values = closes.map((close, i) => {
      if (i < period - 1) return NaN;
      if (i >= period) average = this.k * close + (1 - this.k) * average;
      return average;
    });
    this.before = this.values.at(-2);
  }

  newest(close) { return this.k * close + (1 - this.k) * this.before; }
}

/// Relative strength in Wilder's averages.
export class Strength {
  constructor(closes, period) {
    this.period = period;
    this.last = closes.at(-2);
    let gain = 0, loss = 0;
    this.values = closes.map((close, i) => {
      if (i === 0) return NaN;
      if (i === closes.length - 1) [this.gain, this.loss] = [gain, loss];
      [gain, loss] = i <= period ? first(gain, loss, close - closes[i - 1], period)
        : next(gain, loss, close - closes[i - 1], period);
      return i >= period ? strength(gain, loss) : NaN;
    });
  }

  newest(close) { return strength(...next(this.gain, this.loss, close - this.last, this.period)); }
}

const first = (gain, loss, change, period) => [
  gain + Math.max(change, 0) / period, loss + Math.max(-change, 0) / period];
const next = (gain, loss, change, period) => [
  (gain * (period - 1) + Math.max(change, 0)) / period, (loss * (period - 1) + Math.max(-change, 0)) / period];
const strength = (gain, loss) => (loss === 0 ? 100 : 100 - 100 / (gain / loss + 1));
