// Session_Breakout: trades the way out of the range of the last bars, at busy hours only, and is out overnight.

var Range = 32;         // closed bars that make up the range
var FromHour = 7;       // no new position before this hour, UTC
var UntilHour = 16;     // nor from this hour on
var CloseHour = 20;     // whatever is open is closed from this hour on
var BufferPoints = 20;  // so far beyond the range a bar has to close
var Reward = 1.5;       // distance of the target, in distances of the stop
var MaxPoints = 1500;   // no order where the stop would be further away than this
var BothSides = true;   // false: buys only
var Lots = 0.10;        // volume

// When the last order and the last wish to close went out, in milliseconds.
var sent = { order: 0, close: 0 };

function highest() {
    var top = High(2);
    for (var shift = 3; shift < Range + 2; ++shift)
        top = Math.max(top, High(shift));
    return top;
}

function lowest() {
    var bottom = Low(2);
    for (var shift = 3; shift < Range + 2; ++shift)
        bottom = Math.min(bottom, Low(shift));
    return bottom;
}

// An answer may take a while: for a minute nothing is asked again.
function isRecent(time) {
    return Date.now() - time < 60000;
}

function buy(stop) {
    var risk = Bid - stop;
    if (risk <= 0 || risk > MaxPoints * Point())
        return;
    sent.order = Date.now();
    Print("Out of the range upwards → BUY");
    Trade.buy(Lots, { sl: stop.toFixed(Digits()), tp: (Ask + Reward * risk).toFixed(Digits()) });
}

function sell(stop) {
    var risk = stop - Ask;
    if (risk <= 0 || risk > MaxPoints * Point())
        return;
    sent.order = Date.now();
    Print("Out of the range downwards → SELL");
    Trade.sell(Lots, { sl: stop.toFixed(Digits()), tp: (Bid - Reward * risk).toFixed(Digits()) });
}

function OnInit() {
    Print("Session_Breakout started on " + Symbol() + "  (" + Range + " bars, " + FromHour + " to " + UntilHour
        + " h UTC)");
    return true;
}

function OnTick() {
    if (Bars() < Range + 2 || Bid === 0 || Ask === 0)
        return;
    var hour = new Date(Date.now()).getUTCHours();
    if (Positions.count() > 0) {
        if ((hour >= CloseHour || hour < FromHour) && !isRecent(sent.close)) {
            sent.close = Date.now();
            Print("The session is over → close all");
            Trade.closeAll();
        }
        return;
    }
    if (hour < FromHour || hour >= UntilHour || isRecent(sent.order))
        return;

    // The last closed bar against those before it: the forming one may come back.
    var high = highest();
    var low = lowest();
    var buffer = BufferPoints * Point();
    if (Close(1) > high + buffer)
        buy((high + low) / 2);
    else if (BothSides && Close(1) < low - buffer)
        sell((high + low) / 2);
}

function OnDeinit() {
    Print("Session_Breakout stopped");
}
