// RSI_Reversal: buys when the RSI leaves the oversold zone, closes when it gets overbought.

var Period = 14;
var Oversold = 30;
var Overbought = 70;
var Lots = 0.10;

function OnInit() {
    Print("RSI_Reversal started on " + Symbol() + "  (period " + Period + ")");
    return true;
}

function OnTick() {
    if (Bars() < Period + 2)
        return;

    // Closed bars only: the forming one still moves.
    var r1 = iRSI(Period, 1);
    var r2 = iRSI(Period, 2);

    if (r2 <= Oversold && r1 > Oversold && Positions.count() === 0) {
        Print("RSI left oversold (" + r1.toFixed(1) + ") → BUY");
        Trade.buy(Lots, { slPoints: 400, tpPoints: 800 });
    } else if (r1 >= Overbought && Positions.count() > 0) {
        Print("RSI overbought (" + r1.toFixed(1) + ") → close");
        Trade.closeAll();
    }
}

function OnDeinit() {
    Print("RSI_Reversal stopped");
}
