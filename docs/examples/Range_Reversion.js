// Range_Reversion: buys what has fallen far below its average and sells what has risen far above it; the stop lies
// beyond the range of the last bars, the target at the average.

var Period = 40;        // bars of the average and of the range
var Stretch = 0.45;     // how far from the average, as a share of the range
var StopShare = 0.35;   // distance of the stop beyond the range, as a share of it
var MinPoints = 150;    // calmer ranges are left alone: the costs would eat the result
var MaxBars = 60;       // bars after which a position is closed, come what may
var Lots = 0.10;        // volume

// How many bars there were at the last tick, and for how many the position has been open.
var seen = { bars: 0, held: 0 };

function highest() {
    var top = High(1);
    for (var shift = 2; shift <= Period; ++shift)
        top = Math.max(top, High(shift));
    return top;
}

function lowest() {
    var bottom = Low(1);
    for (var shift = 2; shift <= Period; ++shift)
        bottom = Math.min(bottom, Low(shift));
    return bottom;
}

function OnInit() {
    Print("Range_Reversion started on " + Symbol() + "  (" + Period + " bars)");
    return true;
}

function OnTick() {
    if (Bars() < Period + 2 || Bid === 0 || Ask === 0)
        return;
    if (Bars() === seen.bars)
        return; // at most one order a bar
    seen.bars = Bars();

    if (Positions.count() > 0) {
        if (++seen.held >= MaxBars) {
            seen.held = 0;
            Print("Held for " + MaxBars + " bars → close all");
            Trade.closeAll();
        }
        return;
    }
    seen.held = 0;

    var high = highest();
    var low = lowest();
    var size = high - low;
    var average = iMA(Period, MODE_SMA, 1);
    if (size < MinPoints * Point())
        return;
    if (Close(1) < average - Stretch * size && Ask < average) {
        Print("Far below the average → BUY");
        Trade.buy(Lots, { sl: (low - StopShare * size).toFixed(Digits()), tp: average.toFixed(Digits()) });
    } else if (Close(1) > average + Stretch * size && Bid > average) {
        Print("Far above the average → SELL");
        Trade.sell(Lots, { sl: (high + StopShare * size).toFixed(Digits()), tp: average.toFixed(Digits()) });
    }
}

function OnDeinit() {
    Print("Range_Reversion stopped");
}
