// MA_Cross: buys when the fast average crosses above the slow one, closes when it crosses back.

var Fast = 10;   // period of the fast EMA
var Slow = 30;   // period of the slow EMA
var Lots = 0.10;

function OnInit() {
    Print("MA_Cross started on " + Symbol() + "  (EMA " + Fast + "/" + Slow + ")");
    return true;
}

function OnTick() {
    if (Bars() < Slow + 2)
        return;

    // Closed bars only: the forming one may cross back and forth.
    var f1 = iMA(Fast, MODE_EMA, 1);
    var s1 = iMA(Slow, MODE_EMA, 1);
    var f2 = iMA(Fast, MODE_EMA, 2);
    var s2 = iMA(Slow, MODE_EMA, 2);
    var crossedUp = f2 <= s2 && f1 > s1;
    var crossedDown = f2 >= s2 && f1 < s1;

    if (crossedUp && Positions.count() === 0) {
        Print("Fast crossed above slow → BUY");
        Trade.buy(Lots, { slPoints: 300, tpPoints: 600 });
    } else if (crossedDown && Positions.count() > 0) {
        Print("Fast crossed below slow → close all");
        Trade.closeAll();
    }
}

function OnDeinit() {
    Print("MA_Cross stopped");
}
