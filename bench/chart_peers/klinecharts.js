// klinecharts with its own averages and relative strength; volume has a pane of its own.

import "./node_modules/klinecharts/dist/umd/klinecharts.min.js"; // the module wants a bundler

const grid = { color: "#303030", style: "solid" };
const bars = {
  upColor: "#000000", upBorderColor: "#00e600", upWickColor: "#00e600",
  downColor: "#ffffff", downBorderColor: "#ffffff", downWickColor: "#ffffff",
};

export function open(element, candles, width) {
  const chart = klinecharts.init(element, {
    styles: {
      grid: { horizontal: grid, vertical: grid },
      candle: { type: "candle_solid", bar: bars },
    },
  });
  element.style.background = "#000000";
  const data = candles.map(([timestamp, open, high, low, close, volume]) => (
    { timestamp, open, high, low, close, volume }));
  let change = null;
  chart.setSymbol({ ticker: "EURUSD", pricePrecision: 5, volumePrecision: 0 });
  chart.setPeriod({ type: "minute", span: 15 });
  chart.setDataLoader({
    getBars: ({ type, callback }) => callback(type === "init" ? data : [], false),
    subscribeBar: ({ callback }) => { change = callback; },
  });
  chart.createIndicator({ name: "MA", calcParams: [20, 100], paneId: "candle_pane" }, true);
  chart.createIndicator({ name: "EMA", calcParams: [50], paneId: "candle_pane" }, true);
  chart.createIndicator({ name: "VOL", calcParams: [] });
  chart.createIndicator({ name: "RSI", calcParams: [14] });
  chart.setBarSpace(width);
  const newest = { ...data.at(-1) };

  return {
    tick(bid) {
      newest.high = Math.max(newest.high, bid);
      newest.low = Math.min(newest.low, bid);
      newest.close = bid;
      ++newest.volume;
      change({ ...newest });
    },
    values() {
      const of = (name) => Object.values(chart.getIndicators({ name })[0].result.at(-1));
      const [short, long] = of("MA");
      return [short, of("EMA")[0], long, of("RSI")[0]];
    },
    bars() {
      const { realFrom, realTo } = chart.getVisibleRange();
      return realTo - realFrom;
    },
    close() { klinecharts.dispose(element); },
  };
}
