(() => {
  "use strict";
  const root = document.documentElement;
  const data = JSON.parse(document.getElementById("data").textContent);
  const colour = name => getComputedStyle(root).getPropertyValue(name).trim();
  const font = "12px system-ui, -apple-system, 'Segoe UI', Roboto, 'Liberation Sans', Arial, sans-serif";
  const charts = [];
  const two = value => String(value).padStart(2, "0");
  const day = time => {
    const d = new Date(time * 1000);
    return d.getUTCFullYear() + "-" + two(d.getUTCMonth() + 1) + "-" + two(d.getUTCDate());
  };
  const clock = time => {
    const d = new Date(time * 1000);
    return two(d.getUTCHours()) + ":" + two(d.getUTCMinutes());
  };
  const fixed = (value, digits) => {
    const [whole, rest] = Math.abs(value).toFixed(digits).split(".");
    const grouped = whole.replace(/\B(?=(\d{3})+$)/g, ",");
    return (value < 0 ? "\u2212" : "") + grouped + (rest ? "." + rest : "");
  };
  const sums = differences => {
    let sum = 0;
    return differences.map(difference => sum += difference);
  };
  const width = place => Math.max(240, Math.floor(place.clientWidth));

  const axis = extra => Object.assign({
    stroke: () => colour("--muted"),
    font,
    grid: { stroke: () => colour("--line"), width: 1 },
    ticks: { stroke: () => colour("--line"), width: 1, size: 4 },
  }, extra);

  const labelWidth = (u, values) => {
    if (!values)
      return 50;
    u.ctx.save();
    u.ctx.font = u.axes[1].font[0];
    const widest = Math.max(...values.map(value => u.ctx.measureText(value).width));
    u.ctx.restore();
    return Math.ceil(widest / devicePixelRatio) + 14;
  };

  const add = (place, options, values) => {
    const chart = new uPlot(Object.assign({
      width: width(place),
      height: options.high,
      legend: { show: false },
      tzDate: time => uPlot.tzDate(new Date(time * 1000), "Etc/UTC"),
      padding: [10, 8, 0, 0],
    }, options), values, place);
    charts.push({ chart, place });
    return chart;
  };

  const timeLabels = (u, splits, index, space, increment) =>
    splits.map(time => increment < 86400 ? (time % 86400 ? clock(time) : day(time).slice(5)) : increment < 2592000 ? day(time).slice(5) : day(time).slice(0, 7));

  // As many decimals as tell two neighbours on an axis apart.
  const decimals = step => Math.min(8, Math.max(0, Math.ceil(-Math.log10(step) - 1e-9)));

  // Curves over time: their values stand below the chart while the pointer is over it.
  const curves = (id, high, x, lines, text) => {
    const place = document.getElementById(id);
    if (!place || x.length < 2)
      return;
    const readout = place.nextElementSibling;
    const show = u => {
      const at = u.cursor.idx;
      readout.textContent = at == null ? "" : [day(x[at]) + " " + clock(x[at]) + " UTC"].concat(
        lines.filter(line => line.values[at] != null).map(line => line.name + " " + text(line.values[at]))).join("   ");
    };
    add(place, {
      high,
      cursor: { y: false, sync: { key: "time" }, drag: { x: true, y: false }, points: { size: 6 } },
      scales: { y: { range: (u, low, top) => {
        const room = (top - low || Math.abs(top) || 1) * 0.05;
        return lines[0].fill ? [low - room, 0] : [low - room, top + room];
      } } },
      axes: [
        axis({ values: timeLabels, space: 70, size: 32 }),
        axis({ size: labelWidth, values: (u, splits, index, space, step) =>
          splits.map(value => text(value, decimals(step))) }),
      ],
      series: [{}].concat(lines.map(line => ({
        label: line.name,
        stroke: () => colour(line.colour),
        fill: line.fill ? () => colour(line.colour) + "30" : undefined,
        width: line.width || 1.5,
        dash: line.dash,
        spanGaps: true,
        points: { show: false },
        paths: line.steps ? uPlot.paths.stepped({ align: 1 }) : undefined,
      }))),
      hooks: { setCursor: [show] },
    }, [x].concat(lines.map(line => line.values)));
  };

  const money = (value, digits = 2) => fixed(value, digits);
  if (data.equity) {
    const lows = data.lows || { t: [], low: [] };
    const [time, balance, equity, low] = uPlot.join([
      [sums(data.equity.t), data.equity.balance, data.equity.equity],
      [sums(lows.t), lows.low],
    ]);
    const lines = [
      { name: "Balance", colour: "--second", values: balance, steps: true, width: 1.2 },
      { name: "Equity", colour: "--accent", values: equity },
    ];
    if (data.lows)
      lines.unshift({ name: "Lowest of the day", colour: "--muted", values: low, steps: true, width: 0.8 });
    curves("equity", 300, time, lines, money);
  }
  if (data.drawdown) {
    curves("drawdown", 170, sums(data.drawdown.t), [
      { name: "Drawdown", colour: "--loss", values: data.drawdown.fall, fill: true },
    ], (value, digits = 2) => fixed(value, digits) + " %");
  }
  if (data.runs) {
    const colours = ["--accent", "--second", "--gain", "--loss", "--muted", "--text"];
    curves("runs", 340, sums(data.runs.t), data.runs.curves.map((run, index) => ({
      name: run.name,
      colour: colours[index % colours.length],
      dash: index < colours.length ? undefined : [6, 4],
      values: run.equity,
    })), money);
  }

  // Candles with the trades on them. The horizontal axis counts bars, so that times without prices take no room;
  // where more bars are in view than fit, neighbours are drawn as one.
  const candles = () => {
    const place = document.getElementById("candles");
    if (!place || !data.bars)
      return;
    const { digits, trades } = data;
    const time = sums(data.bars.t);
    const scale = Math.pow(10, digits);
    const close = sums(data.bars.close).map(value => value / scale);
    const part = (name, sign) => data.bars[name].map((value, index) => close[index] + sign * value / scale);
    const open = part("open", 1), high = part("high", 1), low = part("low", -1);
    const count = time.length;
    const indexOf = moment => {
      let first = 0, end = count;
      while (first < end) {
        const middle = (first + end) >> 1;
        if (time[middle] <= moment)
          first = middle + 1;
        else
          end = middle;
      }
      return Math.max(0, first - 1);
    };
    const marks = trades.map(([ticket, isBuy, from, openPrice, to, closePrice, net]) =>
      ({ ticket, isBuy, openPrice, closePrice, net, first: indexOf(from), last: indexOf(to) }));
    const readout = place.nextElementSibling;

    const draw = u => {
      const ctx = u.ctx;
      const ratio = devicePixelRatio;
      const { left, top, width: wide, height: tall } = u.bbox;
      const from = Math.max(0, Math.floor(u.scales.x.min)), to = Math.min(count - 1, Math.ceil(u.scales.x.max));
      const x = index => u.valToPos(index, "x", true);
      const y = price => u.valToPos(price, "y", true);
      const step = wide / Math.max(1, u.scales.x.max - u.scales.x.min);
      const joined = Math.max(1, Math.ceil(3 * ratio / step));
      const body = Math.max(ratio, Math.floor(step * joined * 0.66));
      const up = colour("--gain"), down = colour("--loss");
      ctx.save();
      ctx.beginPath();
      ctx.rect(left, top, wide, tall);
      ctx.clip();
      ctx.lineWidth = Math.max(1, Math.round(ratio));
      for (let start = from - from % joined; start <= to; start += joined) {
        const end = Math.min(count, start + joined);
        let highest = high[start], lowest = low[start];
        for (let index = start + 1; index < end; ++index) {
          highest = Math.max(highest, high[index]);
          lowest = Math.min(lowest, low[index]);
        }
        const last = close[end - 1];
        const middle = Math.round(x((start + end - 1) / 2));
        ctx.fillStyle = last >= open[start] ? up : down;
        const wick = Math.max(1, Math.round(ratio));
        ctx.fillRect(middle - Math.floor(wick / 2), y(highest), wick, Math.max(1, y(lowest) - y(highest)));
        const upper = y(Math.max(open[start], last)), lower = y(Math.min(open[start], last));
        ctx.fillRect(middle - Math.floor(body / 2), upper, body, Math.max(ratio, lower - upper));
      }
      const seen = marks.filter(mark => mark.last >= from && mark.first <= to);
      const isClose = seen.length <= 400;
      for (const mark of seen) {
        const x1 = x(mark.first), y1 = y(mark.openPrice), x2 = x(mark.last), y2 = y(mark.closePrice);
        ctx.strokeStyle = ctx.fillStyle = colour("--accent");
        ctx.setLineDash(isClose ? [4 * ratio, 3 * ratio] : []);
        ctx.globalAlpha = isClose ? 1 : 0.5;
        ctx.beginPath();
        ctx.moveTo(x1, y1);
        ctx.lineTo(x2, y2);
        ctx.stroke();
        if (!isClose)
          continue;
        const size = 5 * ratio, way = mark.isBuy ? 1 : -1;
        ctx.beginPath();
        ctx.moveTo(x1, y1);
        ctx.lineTo(x1 - size, y1 + way * size * 1.6);
        ctx.lineTo(x1 + size, y1 + way * size * 1.6);
        ctx.closePath();
        ctx.fill();
        ctx.setLineDash([]);
        ctx.strokeStyle = colour("--card");
        ctx.stroke();
        ctx.fillStyle = mark.net > 0 ? up : mark.net < 0 ? down : colour("--muted");
        ctx.beginPath();
        ctx.arc(x2, y2, 4 * ratio, 0, 2 * Math.PI);
        ctx.fill();
        ctx.stroke();
      }
      ctx.restore();
    };

    const show = u => {
      const at = u.cursor.idx;
      if (at == null) {
        readout.textContent = "";
        return;
      }
      const near = marks.filter(mark => mark.first <= at && at <= mark.last).slice(0, 3);
      readout.textContent = day(time[at]) + " " + clock(time[at]) + " UTC   O " + fixed(open[at], digits) + "  H "
        + fixed(high[at], digits) + "  L " + fixed(low[at], digits) + "  C " + fixed(close[at], digits)
        + near.map(mark => "   #" + mark.ticket + " " + (mark.isBuy ? "buy" : "sell") + " " + fixed(mark.net, 2)).join("");
    };

    const indexes = time.map((ignored, index) => index);
    const hidden = { stroke: "transparent", points: { show: false }, paths: () => null };
    const chart = add(place, {
      high: 380,
      cursor: { drag: { x: true, y: false }, points: { show: false } },
      scales: {
        x: { time: false, range: (u, from, to) => [Math.max(-1, from), Math.min(count, Math.max(to, from + 5))] },
        y: { range: (u, least, most) => {
          const room = (most - least || 1 / scale) * 0.06;
          return [least - room, most + room];
        } },
      },
      axes: [
        axis({
          space: 90,
          size: 32,
          incrs: [1, 2, 5, 10, 20, 50, 100, 200, 500, 1000, 2000, 5000, 10000],
          values: (u, splits) => splits.map((index, place_, all) => {
            const moment = time[index];
            if (moment === undefined)
              return "";
            const before = time[all[place_ - 1]];
            return before !== undefined && day(before) === day(moment) ? clock(moment) : day(moment);
          }),
        }),
        axis({ size: labelWidth, values: (u, splits) => splits.map(value => fixed(value, digits)) }),
      ],
      series: [{}, hidden, hidden],
      hooks: { draw: [draw], setCursor: [show] },
    }, [indexes, low, high]);

    const look = (from, to) => chart.setScale("x", { min: from, max: to });
    const on = (id, from, to) => {
      const button = document.getElementById(id);
      if (button)
        button.addEventListener("click", () => look(from(), to()));
    };
    const span = () => chart.scales.x.max - chart.scales.x.min;
    const middle = () => (chart.scales.x.max + chart.scales.x.min) / 2;
    on("zoom-in", () => middle() - Math.max(10, span() / 4), () => middle() + Math.max(10, span() / 4));
    on("zoom-out", () => middle() - span(), () => middle() + span());
    on("earlier", () => Math.max(-1, chart.scales.x.min - span() / 2), () => Math.max(-1 + span(), chart.scales.x.max - span() / 2));
    on("later", () => Math.min(count - span(), chart.scales.x.min + span() / 2), () => Math.min(count, chart.scales.x.max + span() / 2));
    on("whole", () => -1, () => count);
    const ofTicket = new Map(marks.map(mark => [String(mark.ticket), mark]));
    for (const button of document.querySelectorAll(".row")) {
      button.addEventListener("click", () => {
        const mark = ofTicket.get(button.textContent);
        if (!mark)
          return;
        const room = Math.max(30, mark.last - mark.first);
        look(mark.first - room, mark.last + room);
        document.getElementById("bars").scrollIntoView({ block: "start" });
      });
    }
    look(Math.max(-1, count - 400), count);
  };
  candles();

  const fit = () => charts.forEach(({ chart, place }) => {
    if (chart.width !== width(place))
      chart.setSize({ width: width(place), height: chart.height });
  });
  const repaint = () => charts.forEach(({ chart }) => chart.redraw(false, true));
  let waiting = 0;
  addEventListener("resize", () => {
    cancelAnimationFrame(waiting);
    waiting = requestAnimationFrame(fit);
  });
  matchMedia("(prefers-color-scheme: dark)").addEventListener("change", repaint);
  addEventListener("beforeprint", () => {
    root.classList.add("paper");
    charts.forEach(({ chart }) => chart.setSize({ width: 680, height: chart.height }));
    repaint();
  });
  addEventListener("afterprint", () => {
    root.classList.remove("paper");
    fit();
    repaint();
  });
})();
