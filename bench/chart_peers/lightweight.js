// lightweight-charts: candles, volume over them, three averages and relative strength, which the page works out.

import {
  CandlestickSeries, HistogramSeries, LineSeries, createChart,
} from "./node_modules/lightweight-charts/dist/lightweight-charts.standalone.production.mjs";
import { Exponential, Simple, Strength } from "./averages.js";

const grid = { color: "#303030" };
const quiet = { priceLineVisible: false, lastValueVisible: false, crosshairMarkerVisible: false };

function openChart(element, width) {
  return createChart(element, {
    width: 1600, height: 900,
    layout: { background: { color: "#000000" }, textColor: "#ffffff" },
    grid: { vertLines: grid, horzLines: grid },
    timeScale: { barSpacing: width, timeVisible: true },
    crosshair: { mode: 0 },
  });
}

function addSeries(chart) {
  const prices = chart.addSeries(CandlestickSeries, {
    priceFormat: { type: "price", precision: 5, minMove: 0.00001 },
    upColor: "#000000", borderUpColor: "#00e600", wickUpColor: "#00e600",
    downColor: "#ffffff", borderDownColor: "#ffffff", wickDownColor: "#ffffff",
  });
  const volumes = chart.addSeries(HistogramSeries, { ...quiet, color: "#2f6b3f", priceScaleId: "" });
  volumes.priceScale().applyOptions({ scaleMargins: { top: 0.8, bottom: 0 } });
  const line = (color, pane) => chart.addSeries(LineSeries, { ...quiet, color, lineWidth: 1 }, pane);
  return { prices, volumes, lines: [line("#ffd54f", 0), line("#4fc3f7", 0), line("#ba68c8", 0), line("#c792ea", 1)] };
}

/// Gives the series their data; what works out the newest value of each line. Keeps nothing of the candles.
function fill({ prices, volumes, lines }, candles) {
  const times = candles.map((candle) => candle[0] / 1000);
  const closes = candles.map((candle) => candle[4]);
  prices.setData(candles.map(([, open, high, low, close], i) => ({ time: times[i], open, high, low, close })));
  volumes.setData(candles.map((candle, i) => ({ time: times[i], value: candle[5] })));
  const kinds = [
    new Simple(closes, 20), new Exponential(closes, 50), new Simple(closes, 100), new Strength(closes, 14),
  ];
  kinds.forEach((kind, number) => {
    const points = times.map((time, i) => ({ time, value: kind.values[i] }));
    lines[number].setData(points.filter(({ value }) => !Number.isNaN(value)));
    kind.values = null;
  });
  return kinds;
}

function handle(chart, series, kinds, [ms, open, ...rest]) {
  const time = ms / 1000;
  let [high, low, , volume] = rest;
  return {
    tick(bid) {
      [high, low] = [Math.max(high, bid), Math.min(low, bid)];
      series.prices.update({ time, open, high, low, close: bid });
      series.volumes.update({ time, value: ++volume });
      series.lines.forEach((line, number) => line.update({ time, value: kinds[number].newest(bid) }));
    },
    values: () => series.lines.map((line) => line.dataByIndex(1e9, -1).value),
    bars() {
      const { from, to } = chart.timeScale().getVisibleLogicalRange();
      return to - from;
    },
    close() { chart.remove(); },
  };
}

export function open(element, candles, width) {
  const chart = openChart(element, width);
  const series = addSeries(chart);
  const kinds = fill(series, candles);
  chart.panes()[1].setHeight(150);
  return handle(chart, series, kinds, candles.at(-1));
}
