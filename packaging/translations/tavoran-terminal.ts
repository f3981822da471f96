<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1">
<context>
    <name>AboutBox</name>
    <message>
        <source>About Tavoran Terminal</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Tavoran</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Tavoran Terminal, version %1
Built with Qt %2, running with Qt %3</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Live prices, charts, orders, price alerts, an economic calendar and Expert Advisors, for the accounts of one trading platform.</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>AccountLabel</name>
    <message>
        <source> — Challenge</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source> — Challenge %1/%2</source>
        <extracomment>%1 the phase of the challenge, %2 how many there are</extracomment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Real</source>
        <extracomment>an account with real money</extracomment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Demo</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Account</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source> — Funded</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>AccountLoader</name>
    <message>
        <source>Failed to load accounts: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Failed to load trades: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Failed to load history: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the reply is larger than 16 MiB</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Network</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>AlertDialog</name>
    <message>
        <source>New Alert</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Bid ≥</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Bid ≤</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Symbol:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Condition:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Price:</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>AlertsPane</name>
    <message>
        <source>Alerts</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Symbol</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Condition</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Price</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Status</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Add Alert</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Delete</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Price Alert — %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 %2 %3 (now %4)</source>
        <extracomment>%1 the symbol, %2 the condition, %3 its price, %4 the bid</extracomment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Bid ≥</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Bid ≤</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Triggered</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Active</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>ApiClient</name>
    <message>
        <source>The request address is not valid</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Unexpected server response</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>AverageDialog</name>
    <message>
        <source>Moving Average</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Period:</source>
        <extracomment>in bars</extracomment>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>Banner</name>
    <message>
        <source>Version %1 — loading...</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>ChartArea</name>
    <message>
        <source>Chart</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1: the server does not list this symbol</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Close %1</source>
        <extracomment>%1 the title of a chart</extracomment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>To open a chart, double-click a symbol in Market Watch, or select one there and press Enter.</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>ChartColorRoles</name>
    <message>
        <source>Background</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Grid</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Axis text</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Up / bull</source>
        <extracomment>colour of a candle that closes higher</extracomment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Down / bear</source>
        <extracomment>colour of a candle that closes lower</extracomment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Line chart</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Volume</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>ChartCommands</name>
    <message>
        <source>Chart</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Open a chart first, then add the indicator.</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>ChartExpert</name>
    <message>
        <source>ALERT: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Order ignored: the lots must be a number above 0, not %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Order ignored: stop loss or take profit is not a number</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>ChartMenu</name>
    <message>
        <source>One Click Trading</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Timeframes</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Indicators</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 (%2)</source>
        <comment>indicator: name and period</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1...</source>
        <extracomment>%1 an indicator, whose period is asked for</extracomment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Remove All Moving Averages</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Horizontal Line</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Vertical Line</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Trend Line</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Rectangle</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Fibonacci Retracement</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Objects</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Delete Selected</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Chart Type</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Candlesticks</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Bars</source>
        <extracomment>a type of chart</extracomment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Line</source>
        <extracomment>a type of chart</extracomment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Auto Scroll</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Chart Shift</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Zoom In	+</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Zoom Out	-</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Refresh</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Data Window	Ctrl+D</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Properties...	F8</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Specification...</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>ChartPropertiesDialog</name>
    <message>
        <source>Chart Properties — %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Qlon Green/Black</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Black/White</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Presets:</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>ChartSpeech</name>
    <message>
        <source>open %1, high %2, low %3, close %4, volume %5</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 none</source>
        <extracomment>an indicator without a value</extracomment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 %2</source>
        <extracomment>an indicator and its value</extracomment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 at %2</source>
        <extracomment>a price and a time</extracomment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Waiting for data...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Last bar %1: %2</source>
        <extracomment>%1 the time of a bar, %2 its prices</extracomment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Bid %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Ask %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Entry of %1 at %2</source>
        <extracomment>%1 a trade, such as &quot;buy 0.10 #1a2b3c4d&quot;, %2 a price; likewise below</extracomment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Stop loss of %1 at %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Take profit of %1 at %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Pending %1 at %2</source>
        <extracomment>%1 an order, such as &quot;buy limit 0.10 #1a2b3c4d&quot;, %2 its trigger price</extracomment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Horizontal line at %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Vertical line at %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Trend line from %1 to %2</source>
        <extracomment>from a price at a time to another; likewise below</extracomment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Rectangle from %1 to %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Fibonacci retracement from %1 to %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Crosshair at %1</source>
        <extracomment>%1 a price, beside the bars</extracomment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Crosshair at %1, %2: %3</source>
        <extracomment>%1 a price, %2 the time of a bar, %3 its prices</extracomment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Moving: %1</source>
        <extracomment>%1 a level of a trade and the price where it is held</extracomment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Disconnected, last known prices</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>ChartWidget</name>
    <message>
        <source>%1,%2: %3   O: %4  H: %5  L: %6  C: %7</source>
        <extracomment>symbol, timeframe and time, then open, high, low and close</extracomment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>O: %1   H: %2   L: %3   C: %4</source>
        <extracomment>open, high, low and close</extracomment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>O: %1  H: %2  L: %3  C: %4  V: %5</source>
        <extracomment>open, high, low, close and volume</extracomment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1  %2</source>
        <extracomment>%1 a share in per cent, %2 its price
----------
%1 a level of a trade, %2 its price</extracomment>
        <translation type="unfinished"></translation>
    </message>
    <message numerus="yes">
        <source>%1 bars,  %2 points  (%3%)</source>
        <extracomment>the plural is that of the points</extracomment>
        <translation type="unfinished">
            <numerusform></numerusform>
        </translation>
    </message>
    <message>
        <source>Waiting for data...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Scroll to the newest bar</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>ChartWindow</name>
    <message>
        <source>Chart</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1: failed to load candles: %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message numerus="yes">
        <source>%1,%2: %3 candles loaded</source>
        <extracomment>%1 the symbol, %2 the timeframe</extracomment>
        <translation type="unfinished">
            <numerusform></numerusform>
        </translation>
    </message>
    <message>
        <source>Chart %1</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>DataWindow</name>
    <message>
        <source>Data Window</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Hover over the chart...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&lt;b&gt;%1&lt;/b&gt;&lt;br&gt;Date: %2&lt;br&gt;Open: %3&lt;br&gt;High: %4&lt;br&gt;Low: %5&lt;br&gt;Close: %6&lt;br&gt;Volume: %7</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>DepthOfMarket</name>
    <message>
        <source>Depth of Market — %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The feed carries no order book, so no sizes are shown. The rows are prices one point apart around the live bid and ask.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Side</source>
        <extracomment>bid or ask; how far the row is from the price</extracomment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Price</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Points away</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Ask</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Bid</source>
        <translation type="unfinished"></translation>
    </message>
    <message numerus="yes">
        <source>Spread: %1 points</source>
        <translation type="unfinished">
            <numerusform></numerusform>
        </translation>
    </message>
    <message>
        <source>Waiting for prices...</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>DesktopLinks</name>
    <message>
        <source>Terminal</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The guide could not be written to %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The desktop could not open %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Tavoran Terminal</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>DockKeeper</name>
    <message>
        <source>Market Watch</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Navigator</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Toolbox</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The last start ended while the window layout was being restored; the default layout is used.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The saved window layout could not be read; the default layout is used.</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>DrawingStore</name>
    <message>
        <source>%1: failed to load drawings: %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>failed to save the drawing</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>failed to delete the drawing</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>ExpertAttachment</name>
    <message>
        <source>Expert</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Open a chart first, then attach the Expert Advisor.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Attached to %1 %2</source>
        <extracomment>%1 the symbol, %2 the timeframe</extracomment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Note: Algo Trading is OFF — the EA runs but cannot trade. Enable it from the toolbar.</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>ExpertEngine</name>
    <message>
        <source>An expert can be loaded only once</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 was detached while it was loading</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 loaded</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Runtime prelude error: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 at line %2: %3</source>
        <extracomment>%1 the kind of error, %3 what it says</extracomment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1: %2</source>
        <extracomment>%1 the kind of error, %2 what it says
----------
%1 the function of the script, %2 what went wrong</extracomment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1: %2 (line %3)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Stopped after error in OnTick: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Cannot open %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 is too large for a script</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>ExpertRequests</name>
    <message>
        <source>not sent: too many orders before it</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>Indicators</name>
    <message>
        <source>Moving Average</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Moving Average (SMA)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Exponential MA</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Moving Average (EMA)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Relative Strength Index</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1(%2)</source>
        <comment>indicator: name and period</comment>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>LogList</name>
    <message>
        <source>Time</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Source</source>
        <extracomment>the part of the program that a line comes from</extracomment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Message</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>LoginDialog</name>
    <message>
        <source>Keep me signed in</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Login</source>
        <extracomment>the button that signs in</extracomment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Tavoran Terminal</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Login:</source>
        <extracomment>the e-mail address that signs in</extracomment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Password:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Please enter your login and password.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Connecting...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Auth</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Tavoran</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>MainWindow</name>
    <message>
        <source>Tavoran Terminal</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Terminal</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Tavoran Terminal %1 started</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Calendar</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Alerts</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Auth</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Session expired — please restart the terminal and log in again.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Logged in as %1 on %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Network</source>
        <extracomment>the program ends before the server answered the request %1</extracomment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Left without an answer to %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Expert</source>
        <extracomment>the program ends with an expert&apos;s requests still waiting</extracomment>
        <translation type="unfinished"></translation>
    </message>
    <message numerus="yes">
        <source>Left with %1 request(s) not sent</source>
        <translation type="unfinished">
            <numerusform></numerusform>
        </translation>
    </message>
</context>
<context>
    <name>MarketWatchWidget</name>
    <message>
        <source>Symbols</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Details</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Ticks</source>
        <extracomment>prices as they come</extracomment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Market Watch</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Symbol</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Bid</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Ask</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Daily</source>
        <extracomment>the change of the day</extracomment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Property</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Value</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1%2%</source>
        <extracomment>the change of the day: %1 a sign, %2 a number of per cent</extracomment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1, rising</source>
        <extracomment>what the triangle beside a symbol says</extracomment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1, falling</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1, last known prices</source>
        <extracomment>said of a symbol while the feed is down</extracomment>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>MenuBar</name>
    <message>
        <source>Theme</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Indicators</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Objects</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Chart Type</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Timeframe</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;File</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;View</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Insert</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Charts</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Tools</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Window</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>More menus</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>ModifyDialog</name>
    <message>
        <source>Modify Order</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 %2 %3</source>
        <extracomment>%1 the symbol, %2 the side, %3 lots</extracomment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Price:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Stop Loss:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Take Profit:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Modify</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>none</source>
        <extracomment>an empty field: no stop loss, no take profit</extracomment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Please enter a valid price.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>This trade has no usable id.</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>NavigatorWidget</name>
    <message>
        <source>Common</source>
        <extracomment>all entries, as opposed to the favourites</extracomment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Favorites</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Navigator</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Tavoran Terminal</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Accounts</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Indicators</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Expert Advisors</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1  (%2)</source>
        <extracomment>%1 the account, %2 its balance</extracomment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>(none installed)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Double-click to attach to the active chart</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Active account</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>NewsPane</name>
    <message>
        <source>now</source>
        <extracomment>in place of the time until an event</extracomment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1m</source>
        <extracomment>minutes until an event</extracomment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1h %2m</source>
        <extracomment>hours and minutes until an event</extracomment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Calendar</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Time</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Currency</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Impact</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Event</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>In</source>
        <extracomment>how long until the event</extracomment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Upcoming News — %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message numerus="yes">
        <source>%1 in %2 minutes</source>
        <extracomment>%1 the event</extracomment>
        <translation type="unfinished">
            <numerusform></numerusform>
        </translation>
    </message>
</context>
<context>
    <name>OneClickPanel</name>
    <message>
        <source>SELL
—</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Volume in lots</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>BUY
—</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>SELL
%1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>BUY
%1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>last known price</source>
        <extracomment>said of the button of one-click trading while the feed is down</extracomment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Space sells at once, at the market price</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Space buys at once, at the market price</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>OrderDialog</name>
    <message>
        <source>Order: %1 - %2</source>
        <extracomment>%1 the symbol, %2 its description</extracomment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 %2</source>
        <extracomment>%1 units, %2 the symbol: what the chosen lots are</extracomment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Please enter a valid trigger price.</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>OrderEvents</name>
    <message>
        <source>Trade</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Execution</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Account</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>OrderForm</name>
    <message>
        <source>by Market</source>
        <extracomment>ends &quot;Sell %1&quot; and &quot;Buy %1&quot;</extracomment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Limit</source>
        <extracomment>the type of order; ends &quot;Sell %1&quot; and &quot;Buy %1&quot;</extracomment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Stop</source>
        <extracomment>the type of order; ends &quot;Sell %1&quot; and &quot;Buy %1&quot;</extracomment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Stop Limit</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Symbol:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Volume:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Stop Loss:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Take Profit:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Price:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Comment:</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Volume</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1, %2</source>
        <extracomment>%1 the symbol, %2 its description</extracomment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Sell %1</source>
        <extracomment>%1 the type of order, such as &quot;Limit&quot;</extracomment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Buy %1</source>
        <extracomment>%1 the type of order, such as &quot;Limit&quot;</extracomment>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>OrderReaction</name>
    <message>
        <source>Orders changed — refreshing</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Orders changed (%1) — refreshing</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Pending order filled</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Order Filled</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>A pending order on %1 was filled.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Order state changed</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Position closed (%1)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Position Closed (%1)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>A position hit its %1.</source>
        <extracomment>%1 &quot;SL&quot; or &quot;TP&quot;</extracomment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Account %1 status changed to %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Account Failed</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>An account breached its risk limit and was closed.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Challenge Passed</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>An account passed its target — pending review.</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>OrderTypePanel</name>
    <message>
        <source>Market Execution</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Limit Order</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Stop Order</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Stop Limit Order</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Not available on this platform</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>One Click Trading</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Tick Chart</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Depth of Market</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Minimize</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>PopupPrices</name>
    <message>
        <source>Popup Prices</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>PriceDisplay</name>
    <message>
        <source>Prices of %1</source>
        <extracomment>%1 a symbol</extracomment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 / %2</source>
        <extracomment>%1 bid, %2 ask</extracomment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No prices yet</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Bid %1, ask %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Disconnected; last bid %1, ask %2</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>PriceItem</name>
    <message>
        <source>%1, last known price</source>
        <extracomment>%1 a price, said of it while the feed is down</extracomment>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>ReplyOutcome</name>
    <message>
        <source>not sent: no connection to the server</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>refused; the reason did not arrive</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>no answer; the order may have been carried out</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>no answer; it may have been carried out</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The server answered with a redirect</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Connection closed</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 (%2)</source>
        <extracomment>%1 why there is no connection, %2 the address of the server</extracomment>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>Reports</name>
    <message>
        <source>Terminal</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>SendingDialog</name>
    <message>
        <source>Trade</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>SettingsStore</name>
    <message>
        <source>The settings file may be damaged, and there is no room to put it right. It stays as it is; its last good copy is used, and nothing is saved until there is room.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The settings file was damaged; its last good copy has been put back.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The settings file was damaged and there was no good copy; default settings are used.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The damaged settings file is kept as %1.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The settings file had entries that cannot be saved; they have been left out.</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>StatusPanel</name>
    <message>
        <source>Trading account</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Not logged in</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>For Help, press F1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&lt;span style=&apos;color:#26d367&apos;&gt;●&lt;/span&gt; %1 — %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Connected</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&lt;span style=&apos;color:#ff6b6b&apos;&gt;●&lt;/span&gt; %1 — %2</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Disconnected</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>(%1 ms)</source>
        <extracomment>how long a message takes to the server and back</extracomment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&lt;span style=&apos;color:%1&apos;&gt;●&lt;/span&gt; %2 / %3 Kb</source>
        <extracomment>traffic: %1 a colour, %2 messages, %3 kilobytes</extracomment>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>SymbolFacts</name>
    <message>
        <source>Symbol</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Description</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Digits</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Contract size</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Commission (per lot)</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Swap long</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Swap short</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Minimum volume</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>SymbolSpecification</name>
    <message>
        <source>The server does not list this symbol.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Property</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Value</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Specification: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Bid</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Ask</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Spread (points)</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>TerminalActions</name>
    <message>
        <source>New Chart</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>New Order</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>E&amp;xit</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Popup Prices</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Restore Default Layout</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Light</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Dark</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Algo Trading</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Cursor</source>
        <extracomment>the plain pointer, in place of a drawing tool</extracomment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Crosshair</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Horizontal Line</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Vertical Line</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Trend Line</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Rectangle</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Fibonacci Retracement</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Candlesticks</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Bars</source>
        <extracomment>a type of chart</extracomment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Line</source>
        <extracomment>a type of chart</extracomment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Auto Scroll</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Chart Shift</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Zoom In</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Zoom Out</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Refresh</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Data Window</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Properties...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Symbol Specification...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Depth of Market</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Open Experts Folder</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Tile</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Cascade</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Close</source>
        <extracomment>closes the active chart</extracomment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Expert Advisors Guide...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Check for Updates...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>About Tavoran Terminal</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Fibonacci</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Algo Trading — allow Expert Advisors to place orders</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Auto Scroll — keep the chart on the newest tick</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Chart Shift — shift the newest bar off the right border</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>This system&apos;s package manager keeps the terminal up to date</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>TerminalPane</name>
    <message>
        <source>Trade</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Symbol</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Ticket</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Time</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Type</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Volume</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Price</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>S / L</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>T / P</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Commission</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Swap</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Profit</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Open Time</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Close Time</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>History</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Experts</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Journal</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Balance: %1 USD&amp;nbsp;&amp;nbsp;&amp;nbsp;Equity: %2&amp;nbsp;&amp;nbsp;&amp;nbsp;Margin: %3&amp;nbsp;&amp;nbsp;&amp;nbsp;Free Margin: %4&amp;nbsp;&amp;nbsp;&amp;nbsp;Profit: &lt;span style=&apos;color:%6&apos;&gt;%5&lt;/span&gt;</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Balance: —</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>TerminalSettings</name>
    <message>
        <source>The settings could not be saved to %1. What was saved before is kept.</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>TickChartWidget</name>
    <message>
        <source>Tick chart %1</source>
        <extracomment>%1 a symbol</extracomment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No prices yet</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Bid %1, ask %2, lowest %3, highest %4</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Disconnected; last bid %1, ask %2, lowest %3, highest %4</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>ToolBars</name>
    <message>
        <source>Standard</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Timeframes</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Line Studies</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>More buttons</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>ToolHint</name>
    <message>
        <source>Horizontal Line: click or press Enter at its price</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Vertical Line: click or press Enter at its time</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Trend Line: click or press Enter at its second point</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Trend Line: click or press Enter at its first point</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Rectangle: click or press Enter at the opposite corner</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Rectangle: click or press Enter at its first corner</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Fibonacci: click or press Enter at the point of level 100.0</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Fibonacci: click or press Enter at the point of level 0.0</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Crosshair: drag, or press Enter at both ends, to measure</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Level: arrow keys move it, Enter sends it, Escape puts it back</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>TradeActions</name>
    <message>
        <source>Expert</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Algo Trading enabled</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Algo Trading disabled</source>
        <translation type="unfinished"></translation>
    </message>
    <message numerus="yes">
        <source>Algo Trading is OFF — %1 waiting request(s) not sent.</source>
        <translation type="unfinished">
            <numerusform></numerusform>
        </translation>
    </message>
    <message>
        <source>Close failed: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Position closed</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Cancel failed: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Pending order cancelled</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Modify failed: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 moved to %2</source>
        <extracomment>%1 the level (&quot;sl&quot;, &quot;tp&quot;), %2 its new price</extracomment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>One-click %1 %2 executed</source>
        <extracomment>%1 the side, %2 the symbol</extracomment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>One-click order failed: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Algo Trading is OFF — order ignored. Enable it in the toolbar.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 %2 %3 executed</source>
        <extracomment>%1 the side, %2 lots, %3 the symbol</extracomment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Order failed: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Algo Trading is OFF — close ignored.</source>
        <translation type="unfinished"></translation>
    </message>
    <message numerus="yes">
        <source>Closing %1 position(s) on %2</source>
        <extracomment>%2 the symbol</extracomment>
        <translation type="unfinished">
            <numerusform></numerusform>
        </translation>
    </message>
    <message>
        <source>this trade has no usable id</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Trade</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>TradeDesk</name>
    <message>
        <source>Order failed: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Trade</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Modify failed: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Order placed</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Execution</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Order modified</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>TradeLevels</name>
    <message>
        <source>%1 %2 #%3</source>
        <extracomment>%1 the side or the type of a pending order, %2 lots, %3 the ticket</extracomment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>buy</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>sell</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>sl #%1</source>
        <extracomment>stop loss of a ticket</extracomment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>tp #%1</source>
        <extracomment>take profit of a ticket</extracomment>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>TradeMenu</name>
    <message>
        <source>Cancel Order</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Close Position</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Modify...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>New Order...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 %2 %3</source>
        <extracomment>%1 the side, %2 lots, %3 the symbol</extracomment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Close position %1 (#%2)?</source>
        <extracomment>%1 side, lots and symbol, %2 the ticket</extracomment>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>TrayIcon</name>
    <message>
        <source>Tavoran Terminal</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Show</source>
        <extracomment>brings the main window to the front</extracomment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Exit</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>WsClient</name>
    <message numerus="yes">
        <source>Feed ready — %1 symbols</source>
        <translation type="unfinished">
            <numerusform></numerusform>
        </translation>
    </message>
    <message>
        <source>Connecting to %1...</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Feed error: %1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Network</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Feed connected</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Feed disconnected — retrying in %1s</source>
        <translation type="unfinished"></translation>
    </message>
</context>
</TS>
