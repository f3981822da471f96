// What Expert Advisors are written with: turns the native object __host into the functions of the guide.
// Evaluated once before each expert. The native methods are looked up here and never again, which makes a
// call four times cheaper and keeps it working whatever an expert does to its globals.

(function(global) {
    "use strict";

    const host = global.__host;
    const print = host.print, comment = host.comment, alert = host.alert;
    const symbol = host.symbol, digits = host.digits, point = host.point;
    const bid = host.bid, ask = host.ask;
    const bars = host.bars, close = host.close, open = host.open, high = host.high, low = host.low;
    const ma = host.ma, rsi = host.rsi;
    const balance = host.balance, equity = host.equity, positionsCount = host.positionsCount;
    const buy = host.buy, sell = host.sell, closeAll = host.closeAll;
    const setTimer = host.setTimer, killTimer = host.killTimer;
    const toText = String;
    const define = Object.defineProperty;

    // What the chart hardly ever changes is not asked for at every call.
    const name = symbol();
    let digitsNow = digits(), pointNow = point();

    function joined(values) {
        let text = "";
        for (let i = 0; i < values.length; ++i)
            text += (i > 0 ? " " : "") + toText(values[i]);
        return text;
    }

    // Messages
    global.Print = function Print() { print(joined(arguments)); };
    global.Comment = function Comment() { comment(joined(arguments)); };
    global.Alert = function Alert() { alert(joined(arguments)); };

    // Symbol and prices. The language has a Symbol of its own: what hangs on it, such as Symbol.iterator,
    // hangs on this one too.
    const wellKnown = global.Symbol;
    global.Symbol = function Symbol() { return name; };
    for (const key of Object.getOwnPropertyNames(wellKnown)) {
        if (typeof wellKnown[key] === "symbol")
            define(global.Symbol, key, { value: wellKnown[key] });
    }
    global.Digits = function Digits() { return digitsNow; };
    global.Point = function Point() { return pointNow; };
    define(global, "Bid", { get: bid, enumerable: true });
    define(global, "Ask", { get: ask, enumerable: true });

    // Bars: shift 0 is the forming one.
    global.Bars = function Bars() { return bars(); };
    global.Close = function Close(shift) { return close(shift | 0); };
    global.Open = function Open(shift) { return open(shift | 0); };
    global.High = function High(shift) { return high(shift | 0); };
    global.Low = function Low(shift) { return low(shift | 0); };

    // Indicators
    global.MODE_SMA = 0;
    global.MODE_EMA = 1;
    global.iMA = function iMA(period, method, shift) { return ma(period | 0, method | 0, shift | 0); };
    global.iRSI = function iRSI(period, shift) { return rsi(period | 0, shift | 0); };

    // Account
    global.Account = define(define({}, "balance", { get: balance, enumerable: true }),
        "equity", { get: equity, enumerable: true });

    // Trading. The stop of a buy is measured from the bid and its target from the ask, those of a sell the
    // other way round. A level of 0 counts as not given; a result of 0 means no level.
    function _sl(side, opts) {
        const given = opts || {};
        const level = given.sl;
        if (level)
            return +level;
        const distance = given.slPoints;
        if (distance)
            return side === "BUY" ? bid() - distance * pointNow : ask() + distance * pointNow;
        return 0;
    }
    function _tp(side, opts) {
        const given = opts || {};
        const level = given.tp;
        if (level)
            return +level;
        const distance = given.tpPoints;
        if (distance)
            return side === "BUY" ? ask() + distance * pointNow : bid() - distance * pointNow;
        return 0;
    }
    global._sl = _sl;
    global._tp = _tp;
    global.Trade = {
        buy: function(lots, opts) { buy(+lots || 0.01, _sl("BUY", opts), _tp("BUY", opts)); },
        sell: function(lots, opts) { sell(+lots || 0.01, _sl("SELL", opts), _tp("SELL", opts)); },
        closeAll: function() { closeAll(); }
    };
    global.Positions = { count: function() { return positionsCount(); } };

    // Timer
    global.EventSetTimer = function EventSetTimer(seconds) { setTimer(seconds | 0); };
    global.EventKillTimer = function EventKillTimer() { killTimer(); };

    // The terminal calls this when the symbol's digits have changed.
    return function() {
        digitsNow = digits();
        pointNow = point();
    };
})(this);
