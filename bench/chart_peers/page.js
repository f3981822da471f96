// A chart that does what the measuring program says: as bench/chart_peers/ChartHost.cpp does for a window of Qt.

const name = new URLSearchParams(location.search).get("chart");
const { open } = await import(`./${name}.js`);

const element = document.getElementById("chart");
const socket = new WebSocket(`ws://${location.host}/socket`);
socket.binaryType = "arraybuffer";

let candles = [];
let ticks = [];
let chart = null;
let step = 0;
let targets = new Map();

/// The numbers of a message, in rows.
function rows(buffer, width) {
  const numbers = new Float64Array(buffer);
  return Array.from({ length: numbers.length / width }, (_, row) => numbers.subarray(row * width, (row + 1) * width));
}

/// When the next frame has been drawn and handed on.
function frame() {
  return new Promise((resolve) => requestAnimationFrame(() => {
    const after = new MessageChannel();
    after.port1.onmessage = resolve;
    after.port2.postMessage(0);
  }));
}

/// What lies below the pointer; nothing of a chart lies beside something else. Asking the document makes it lay
/// itself out, which is no work of the frame that is being measured.
function target(x, y) {
  if (!targets.has(y)) targets.set(y, document.elementFromPoint(x, y));
  return targets.get(y);
}

function mouse(type, x, y, buttons = 0) {
  target(x, y).dispatchEvent(new MouseEvent(type, {
    bubbles: true, cancelable: true, view: window, clientX: x, clientY: y, screenX: x, screenY: y, buttons,
  }));
}

/// Candles are made of the price in the middle, as the terminal makes them.
function tick(bid, ask) { chart.tick((bid + ask) / 2); }

const changes = {
  tick: {
    begin() {},
    change() { tick(...ticks[step % ticks.length]); },
    end() {},
  },
  pointer: {
    begin() {
      for (let y = 100; y < 700; ++y) target(200, y);
      for (const type of ["mouseover", "mouseenter"]) mouse(type, 200, 100);
    },
    change() { mouse("mousemove", 200 + step % 1000, 100 + step % 600); },
    end() {},
  },
  pan: {
    begin() {
      for (const type of ["mouseover", "mouseenter", "mousemove"]) mouse(type, 420, 500);
      mouse("mousedown", 420, 500, 1);
    },
    change() { mouse("mousemove", 420 + step % 400, 500, 1); },
    end() {
      mouse("mousemove", 420, 500, 1);
      mouse("mouseup", 420, 500);
    },
  },
};

/// Frames of one kind, one after the other; how long each took, in ms.
async function frames({ kind, count }) {
  const { begin, change, end } = changes[kind];
  begin();
  await frame();
  const took = [];
  for (let number = 0; number < count; ++number) {
    ++step;
    const from = performance.now();
    change();
    await frame();
    took.push(performance.now() - from);
  }
  end();
  await frame();
  return { took };
}

async function load({ width }) {
  chart?.close();
  chart = open(element, candles, width);
  candles = [];
  targets = new Map();
  await frame();
  await frame();
  return shown();
}

function shown() {
  return { size: [innerWidth, innerHeight], values: chart.values(), bars: chart.bars() };
}

/// Throws away what loading has left behind.
async function rest() {
  globalThis.gc?.();
  return {};
}

const commands = { load, frames, rest, shown };

let ticksNext = false;
socket.onmessage = async ({ data }) => {
  if (typeof data !== "string") {
    if (ticksNext) ticks = rows(data, 2);
    else candles = rows(data, 6);
    ticksNext = !ticksNext;
    return;
  }
  const message = JSON.parse(data);
  if ("bid" in message) tick(message.bid, message.ask);
  else socket.send(JSON.stringify(await commands[message.do](message)));
};
