<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE" sourcelanguage="en_GB">
<context>
    <name>AboutBox</name>
    <message>
        <source>About Tavoran Terminal</source>
        <translation>Über Tavoran Terminal</translation>
    </message>
    <message>
        <source>Tavoran</source>
        <translation>Tavoran</translation>
    </message>
    <message>
        <source>Tavoran Terminal, version %1
Built with Qt %2, running with Qt %3</source>
        <translation>Tavoran Terminal, Version %1
Erstellt mit Qt %2, ausgeführt mit Qt %3</translation>
    </message>
    <message>
        <source>Live prices, charts, orders, price alerts, an economic calendar and Expert Advisors, for the accounts of one trading platform.</source>
        <translation>Kurse in Echtzeit, Charts, Orders, Preisalarme, ein Wirtschaftskalender und Expert Advisors für die Konten einer Handelsplattform.</translation>
    </message>
</context>
<context>
    <name>AccountLabel</name>
    <message>
        <source> — Challenge</source>
        <translation> — Challenge</translation>
    </message>
    <message>
        <source> — Challenge %1/%2</source>
        <extracomment>%1 the phase of the challenge, %2 how many there are</extracomment>
        <translation> — Challenge %1/%2</translation>
    </message>
    <message>
        <source>Real</source>
        <extracomment>an account with real money</extracomment>
        <translation>Echtgeld</translation>
    </message>
    <message>
        <source>Demo</source>
        <translation>Demo</translation>
    </message>
    <message>
        <source>Account</source>
        <translation>Konto</translation>
    </message>
    <message>
        <source> — Funded</source>
        <translation> — Funded</translation>
    </message>
</context>
<context>
    <name>AccountLoader</name>
    <message>
        <source>Failed to load accounts: %1</source>
        <translation>Konten konnten nicht geladen werden: %1</translation>
    </message>
    <message>
        <source>Failed to load trades: %1</source>
        <translation>Trades konnten nicht geladen werden: %1</translation>
    </message>
    <message>
        <source>Failed to load history: %1</source>
        <translation>Die Historie konnte nicht geladen werden: %1</translation>
    </message>
    <message>
        <source>the reply is larger than 16 MiB</source>
        <translation>Die Antwort ist größer als 16 MiB</translation>
    </message>
    <message>
        <source>Network</source>
        <translation>Netzwerk</translation>
    </message>
</context>
<context>
    <name>AlertDialog</name>
    <message>
        <source>New Alert</source>
        <translation>Neuer Alarm</translation>
    </message>
    <message>
        <source>Bid ≥</source>
        <translation>Bid ≥</translation>
    </message>
    <message>
        <source>Bid ≤</source>
        <translation>Bid ≤</translation>
    </message>
    <message>
        <source>Symbol:</source>
        <translation>Symbol:</translation>
    </message>
    <message>
        <source>Condition:</source>
        <translation>Bedingung:</translation>
    </message>
    <message>
        <source>Price:</source>
        <translation>Preis:</translation>
    </message>
</context>
<context>
    <name>AlertsPane</name>
    <message>
        <source>Alerts</source>
        <translation>Alarme</translation>
    </message>
    <message>
        <source>Symbol</source>
        <translation>Symbol</translation>
    </message>
    <message>
        <source>Condition</source>
        <translation>Bedingung</translation>
    </message>
    <message>
        <source>Price</source>
        <translation>Preis</translation>
    </message>
    <message>
        <source>Status</source>
        <translation>Status</translation>
    </message>
    <message>
        <source>Add Alert</source>
        <translation>Alarm hinzufügen</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Löschen</translation>
    </message>
    <message>
        <source>Price Alert — %1</source>
        <translation>Preisalarm — %1</translation>
    </message>
    <message>
        <source>%1 %2 %3 (now %4)</source>
        <extracomment>%1 the symbol, %2 the condition, %3 its price, %4 the bid</extracomment>
        <translation>%1 %2 %3 (jetzt %4)</translation>
    </message>
    <message>
        <source>Bid ≥</source>
        <translation>Bid ≥</translation>
    </message>
    <message>
        <source>Bid ≤</source>
        <translation>Bid ≤</translation>
    </message>
    <message>
        <source>Triggered</source>
        <translation>Ausgelöst</translation>
    </message>
    <message>
        <source>Active</source>
        <translation>Aktiv</translation>
    </message>
</context>
<context>
    <name>ApiClient</name>
    <message>
        <source>The request address is not valid</source>
        <translation>Die Adresse der Anfrage ist ungültig</translation>
    </message>
    <message>
        <source>Unexpected server response</source>
        <translation>Unerwartete Antwort des Servers</translation>
    </message>
</context>
<context>
    <name>AverageDialog</name>
    <message>
        <source>Moving Average</source>
        <translation>Durchschnitt</translation>
    </message>
    <message>
        <source>Period:</source>
        <extracomment>in bars</extracomment>
        <translation>Periode:</translation>
    </message>
</context>
<context>
    <name>Banner</name>
    <message>
        <source>Version %1 — loading...</source>
        <translation>Version %1 — wird geladen ...</translation>
    </message>
</context>
<context>
    <name>ChartArea</name>
    <message>
        <source>Chart</source>
        <translation>Chart</translation>
    </message>
    <message>
        <source>%1: the server does not list this symbol</source>
        <translation>%1: Der Server führt dieses Symbol nicht</translation>
    </message>
    <message>
        <source>Close %1</source>
        <extracomment>%1 the title of a chart</extracomment>
        <translation>%1 schließen</translation>
    </message>
    <message>
        <source>To open a chart, double-click a symbol in Market Watch, or select one there and press Enter.</source>
        <translation>Um einen Chart zu öffnen, doppelklicken Sie in der Marktübersicht auf ein Symbol, oder wählen Sie dort eines aus und drücken Sie die Eingabetaste.</translation>
    </message>
</context>
<context>
    <name>ChartColorRoles</name>
    <message>
        <source>Background</source>
        <translation>Hintergrund</translation>
    </message>
    <message>
        <source>Grid</source>
        <translation>Gitter</translation>
    </message>
    <message>
        <source>Axis text</source>
        <translation>Achsenbeschriftung</translation>
    </message>
    <message>
        <source>Up / bull</source>
        <extracomment>colour of a candle that closes higher</extracomment>
        <translation>Steigend / Bulle</translation>
    </message>
    <message>
        <source>Down / bear</source>
        <extracomment>colour of a candle that closes lower</extracomment>
        <translation>Fallend / Bär</translation>
    </message>
    <message>
        <source>Line chart</source>
        <translation>Linienchart</translation>
    </message>
    <message>
        <source>Volume</source>
        <translation>Volumen</translation>
    </message>
</context>
<context>
    <name>ChartCommands</name>
    <message>
        <source>Chart</source>
        <translation>Chart</translation>
    </message>
    <message>
        <source>Open a chart first, then add the indicator.</source>
        <translation>Öffnen Sie zuerst einen Chart und fügen Sie dann den Indikator hinzu.</translation>
    </message>
</context>
<context>
    <name>ChartExpert</name>
    <message>
        <source>ALERT: %1</source>
        <translation>ALARM: %1</translation>
    </message>
    <message>
        <source>Order ignored: the lots must be a number above 0, not %1</source>
        <translation>Order ignoriert: Das Volumen in Lots muss eine Zahl über 0 sein, nicht %1</translation>
    </message>
    <message>
        <source>Order ignored: stop loss or take profit is not a number</source>
        <translation>Order ignoriert: Stop Loss oder Take Profit ist keine Zahl</translation>
    </message>
</context>
<context>
    <name>ChartMenu</name>
    <message>
        <source>One Click Trading</source>
        <translation>Ein-Klick-Handel</translation>
    </message>
    <message>
        <source>Timeframes</source>
        <translation>Zeiteinheiten</translation>
    </message>
    <message>
        <source>Indicators</source>
        <translation>Indikatoren</translation>
    </message>
    <message>
        <source>%1 (%2)</source>
        <comment>indicator: name and period</comment>
        <translation>%1 (%2)</translation>
    </message>
    <message>
        <source>%1...</source>
        <extracomment>%1 an indicator, whose period is asked for</extracomment>
        <translation>%1 ...</translation>
    </message>
    <message>
        <source>Remove All Moving Averages</source>
        <translation>Alle gleitenden Durchschnitte entfernen</translation>
    </message>
    <message>
        <source>Horizontal Line</source>
        <translation>Horizontale Linie</translation>
    </message>
    <message>
        <source>Vertical Line</source>
        <translation>Vertikale Linie</translation>
    </message>
    <message>
        <source>Trend Line</source>
        <translation>Trendlinie</translation>
    </message>
    <message>
        <source>Rectangle</source>
        <translation>Rechteck</translation>
    </message>
    <message>
        <source>Fibonacci Retracement</source>
        <translation>Fibonacci-Retracement</translation>
    </message>
    <message>
        <source>Objects</source>
        <translation>Objekte</translation>
    </message>
    <message>
        <source>Delete Selected</source>
        <translation>Ausgewähltes löschen</translation>
    </message>
    <message>
        <source>Chart Type</source>
        <translation>Charttyp</translation>
    </message>
    <message>
        <source>Candlesticks</source>
        <translation>Kerzen</translation>
    </message>
    <message>
        <source>Bars</source>
        <extracomment>a type of chart</extracomment>
        <translation>Balken</translation>
    </message>
    <message>
        <source>Line</source>
        <extracomment>a type of chart</extracomment>
        <translation>Linie</translation>
    </message>
    <message>
        <source>Auto Scroll</source>
        <translation>Automatischer Bildlauf</translation>
    </message>
    <message>
        <source>Chart Shift</source>
        <translation>Chart einrücken</translation>
    </message>
    <message>
        <source>Zoom In	+</source>
        <translation>Vergrößern	+</translation>
    </message>
    <message>
        <source>Zoom Out	-</source>
        <translation>Verkleinern	-</translation>
    </message>
    <message>
        <source>Refresh</source>
        <translation>Aktualisieren</translation>
    </message>
    <message>
        <source>Data Window	Ctrl+D</source>
        <translation>Datenfenster	Strg+D</translation>
    </message>
    <message>
        <source>Properties...	F8</source>
        <translation>Eigenschaften ...	F8</translation>
    </message>
    <message>
        <source>Specification...</source>
        <translation>Spezifikation ...</translation>
    </message>
</context>
<context>
    <name>ChartPropertiesDialog</name>
    <message>
        <source>Chart Properties — %1</source>
        <translation>Charteigenschaften — %1</translation>
    </message>
    <message>
        <source>Qlon Green/Black</source>
        <translation>Qlon Grün/Schwarz</translation>
    </message>
    <message>
        <source>Black/White</source>
        <translation>Schwarz/Weiß</translation>
    </message>
    <message>
        <source>Presets:</source>
        <translation>Vorlagen:</translation>
    </message>
</context>
<context>
    <name>ChartSpeech</name>
    <message>
        <source>open %1, high %2, low %3, close %4, volume %5</source>
        <translation>Eröffnung %1, Hoch %2, Tief %3, Schluss %4, Volumen %5</translation>
    </message>
    <message>
        <source>%1 none</source>
        <extracomment>an indicator without a value</extracomment>
        <translation>%1 ohne Wert</translation>
    </message>
    <message>
        <source>%1 %2</source>
        <extracomment>an indicator and its value</extracomment>
        <translation>%1 %2</translation>
    </message>
    <message>
        <source>%1 at %2</source>
        <extracomment>a price and a time</extracomment>
        <translation>%1 am %2</translation>
    </message>
    <message>
        <source>Waiting for data...</source>
        <translation>Warten auf Daten ...</translation>
    </message>
    <message>
        <source>Last bar %1: %2</source>
        <extracomment>%1 the time of a bar, %2 its prices</extracomment>
        <translation>Letzter Balken %1: %2</translation>
    </message>
    <message>
        <source>Bid %1</source>
        <translation>Bid %1</translation>
    </message>
    <message>
        <source>Ask %1</source>
        <translation>Ask %1</translation>
    </message>
    <message>
        <source>Entry of %1 at %2</source>
        <extracomment>%1 a trade, such as &quot;buy 0.10 #1a2b3c4d&quot;, %2 a price; likewise below</extracomment>
        <translation>Einstieg von %1 bei %2</translation>
    </message>
    <message>
        <source>Stop loss of %1 at %2</source>
        <translation>Stop Loss von %1 bei %2</translation>
    </message>
    <message>
        <source>Take profit of %1 at %2</source>
        <translation>Take Profit von %1 bei %2</translation>
    </message>
    <message>
        <source>Pending %1 at %2</source>
        <extracomment>%1 an order, such as &quot;buy limit 0.10 #1a2b3c4d&quot;, %2 its trigger price</extracomment>
        <translation>Pending Order %1 bei %2</translation>
    </message>
    <message>
        <source>Horizontal line at %1</source>
        <translation>Horizontale Linie bei %1</translation>
    </message>
    <message>
        <source>Vertical line at %1</source>
        <translation>Vertikale Linie bei %1</translation>
    </message>
    <message>
        <source>Trend line from %1 to %2</source>
        <extracomment>from a price at a time to another; likewise below</extracomment>
        <translation>Trendlinie von %1 bis %2</translation>
    </message>
    <message>
        <source>Rectangle from %1 to %2</source>
        <translation>Rechteck von %1 bis %2</translation>
    </message>
    <message>
        <source>Fibonacci retracement from %1 to %2</source>
        <translation>Fibonacci-Retracement von %1 bis %2</translation>
    </message>
    <message>
        <source>Crosshair at %1</source>
        <extracomment>%1 a price, beside the bars</extracomment>
        <translation>Fadenkreuz bei %1</translation>
    </message>
    <message>
        <source>Crosshair at %1, %2: %3</source>
        <extracomment>%1 a price, %2 the time of a bar, %3 its prices</extracomment>
        <translation>Fadenkreuz bei %1, %2: %3</translation>
    </message>
    <message>
        <source>Moving: %1</source>
        <extracomment>%1 a level of a trade and the price where it is held</extracomment>
        <translation>Wird verschoben: %1</translation>
    </message>
    <message>
        <source>Disconnected, last known prices</source>
        <translation>Getrennt, zuletzt bekannte Kurse</translation>
    </message>
</context>
<context>
    <name>ChartWidget</name>
    <message>
        <source>%1,%2: %3   O: %4  H: %5  L: %6  C: %7</source>
        <extracomment>symbol, timeframe and time, then open, high, low and close</extracomment>
        <translation>%1,%2: %3   O: %4  H: %5  L: %6  C: %7</translation>
    </message>
    <message>
        <source>O: %1   H: %2   L: %3   C: %4</source>
        <extracomment>open, high, low and close</extracomment>
        <translation>O: %1   H: %2   L: %3   C: %4</translation>
    </message>
    <message>
        <source>O: %1  H: %2  L: %3  C: %4  V: %5</source>
        <extracomment>open, high, low, close and volume</extracomment>
        <translation>O: %1  H: %2  L: %3  C: %4  V: %5</translation>
    </message>
    <message>
        <source>%1  %2</source>
        <extracomment>%1 a share in per cent, %2 its price
----------
%1 a level of a trade, %2 its price</extracomment>
        <translation>%1  %2</translation>
    </message>
    <message numerus="yes">
        <source>%1 bars,  %2 points  (%3%)</source>
        <extracomment>the plural is that of the points</extracomment>
        <translation>
            <numerusform>%1 Balken,  %2 Punkt  (%3%)</numerusform>
            <numerusform>%1 Balken,  %2 Punkte  (%3%)</numerusform>
        </translation>
    </message>
    <message>
        <source>Waiting for data...</source>
        <translation>Warten auf Daten ...</translation>
    </message>
    <message>
        <source>Scroll to the newest bar</source>
        <translation>Zum neuesten Balken</translation>
    </message>
</context>
<context>
    <name>ChartWindow</name>
    <message>
        <source>Chart</source>
        <translation>Chart</translation>
    </message>
    <message>
        <source>%1: failed to load candles: %2</source>
        <translation>%1: Kerzen konnten nicht geladen werden: %2</translation>
    </message>
    <message numerus="yes">
        <source>%1,%2: %3 candles loaded</source>
        <extracomment>%1 the symbol, %2 the timeframe</extracomment>
        <translation>
            <numerusform>%1,%2: %3 Kerze geladen</numerusform>
            <numerusform>%1,%2: %3 Kerzen geladen</numerusform>
        </translation>
    </message>
    <message>
        <source>Chart %1</source>
        <translation>Chart %1</translation>
    </message>
</context>
<context>
    <name>DataWindow</name>
    <message>
        <source>Data Window</source>
        <translation>Datenfenster</translation>
    </message>
    <message>
        <source>Hover over the chart...</source>
        <translation>Zeigen Sie auf den Chart ...</translation>
    </message>
    <message>
        <source>&lt;b&gt;%1&lt;/b&gt;&lt;br&gt;Date: %2&lt;br&gt;Open: %3&lt;br&gt;High: %4&lt;br&gt;Low: %5&lt;br&gt;Close: %6&lt;br&gt;Volume: %7</source>
        <translation>&lt;b&gt;%1&lt;/b&gt;&lt;br&gt;Datum: %2&lt;br&gt;Eröffnung: %3&lt;br&gt;Hoch: %4&lt;br&gt;Tief: %5&lt;br&gt;Schluss: %6&lt;br&gt;Volumen: %7</translation>
    </message>
</context>
<context>
    <name>DepthOfMarket</name>
    <message>
        <source>Depth of Market — %1</source>
        <translation>Markttiefe — %1</translation>
    </message>
    <message>
        <source>The feed carries no order book, so no sizes are shown. The rows are prices one point apart around the live bid and ask.</source>
        <translation>Der Datenfeed enthält kein Orderbuch, daher werden keine Mengen gezeigt. Die Zeilen sind Preise im Abstand von je einem Punkt um Bid und Ask.</translation>
    </message>
    <message>
        <source>Side</source>
        <extracomment>bid or ask; how far the row is from the price</extracomment>
        <translation>Seite</translation>
    </message>
    <message>
        <source>Price</source>
        <translation>Preis</translation>
    </message>
    <message>
        <source>Points away</source>
        <translation>Abstand</translation>
    </message>
    <message>
        <source>Ask</source>
        <translation>Ask</translation>
    </message>
    <message>
        <source>Bid</source>
        <translation>Bid</translation>
    </message>
    <message numerus="yes">
        <source>Spread: %1 points</source>
        <translation>
            <numerusform>Spread: %1 Punkt</numerusform>
            <numerusform>Spread: %1 Punkte</numerusform>
        </translation>
    </message>
    <message>
        <source>Waiting for prices...</source>
        <translation>Warten auf Kurse ...</translation>
    </message>
</context>
<context>
    <name>DesktopLinks</name>
    <message>
        <source>Terminal</source>
        <translation>Terminal</translation>
    </message>
    <message>
        <source>The guide could not be written to %1</source>
        <translation>Die Anleitung konnte nicht nach %1 geschrieben werden</translation>
    </message>
    <message>
        <source>The desktop could not open %1</source>
        <translation>Der Desktop konnte %1 nicht öffnen</translation>
    </message>
    <message>
        <source>Tavoran Terminal</source>
        <translation>Tavoran Terminal</translation>
    </message>
</context>
<context>
    <name>DockKeeper</name>
    <message>
        <source>Market Watch</source>
        <translation>Marktübersicht</translation>
    </message>
    <message>
        <source>Navigator</source>
        <translation>Navigator</translation>
    </message>
    <message>
        <source>Toolbox</source>
        <translation>Werkzeugkasten</translation>
    </message>
    <message>
        <source>The last start ended while the window layout was being restored; the default layout is used.</source>
        <translation>Der letzte Start brach ab, während die Fensteranordnung wiederhergestellt wurde; die Standardanordnung wird verwendet.</translation>
    </message>
    <message>
        <source>The saved window layout could not be read; the default layout is used.</source>
        <translation>Die gespeicherte Fensteranordnung konnte nicht gelesen werden; die Standardanordnung wird verwendet.</translation>
    </message>
</context>
<context>
    <name>DrawingStore</name>
    <message>
        <source>%1: failed to load drawings: %2</source>
        <translation>%1: Zeichnungen konnten nicht geladen werden: %2</translation>
    </message>
    <message>
        <source>failed to save the drawing</source>
        <translation>Die Zeichnung konnte nicht gespeichert werden</translation>
    </message>
    <message>
        <source>failed to delete the drawing</source>
        <translation>Die Zeichnung konnte nicht gelöscht werden</translation>
    </message>
</context>
<context>
    <name>ExpertAttachment</name>
    <message>
        <source>Expert</source>
        <translation>Expert</translation>
    </message>
    <message>
        <source>Open a chart first, then attach the Expert Advisor.</source>
        <translation>Öffnen Sie zuerst einen Chart und starten Sie dann den Expert Advisor darauf.</translation>
    </message>
    <message>
        <source>Attached to %1 %2</source>
        <extracomment>%1 the symbol, %2 the timeframe</extracomment>
        <translation>Gestartet auf %1 %2</translation>
    </message>
    <message>
        <source>Note: Algo Trading is OFF — the EA runs but cannot trade. Enable it from the toolbar.</source>
        <translation>Hinweis: Algo-Trading ist AUS — der EA läuft, kann aber nicht handeln. Schalten Sie es in der Werkzeugleiste ein.</translation>
    </message>
</context>
<context>
    <name>ExpertEngine</name>
    <message>
        <source>An expert can be loaded only once</source>
        <translation>Ein Expert kann nur einmal geladen werden</translation>
    </message>
    <message>
        <source>%1 was detached while it was loading</source>
        <translation>%1 wurde während des Ladens vom Chart entfernt</translation>
    </message>
    <message>
        <source>%1 loaded</source>
        <translation>%1 geladen</translation>
    </message>
    <message>
        <source>Runtime prelude error: %1</source>
        <translation>Fehler in der Laufzeitumgebung: %1</translation>
    </message>
    <message>
        <source>%1 at line %2: %3</source>
        <extracomment>%1 the kind of error, %3 what it says</extracomment>
        <translation>%1 in Zeile %2: %3</translation>
    </message>
    <message>
        <source>%1: %2</source>
        <extracomment>%1 the kind of error, %2 what it says
----------
%1 the function of the script, %2 what went wrong</extracomment>
        <translation>%1: %2</translation>
    </message>
    <message>
        <source>%1: %2 (line %3)</source>
        <translation>%1: %2 (Zeile %3)</translation>
    </message>
    <message>
        <source>Stopped after error in OnTick: %1</source>
        <translation>Nach einem Fehler in OnTick angehalten: %1</translation>
    </message>
    <message>
        <source>Cannot open %1</source>
        <translation>%1 kann nicht geöffnet werden</translation>
    </message>
    <message>
        <source>%1 is too large for a script</source>
        <translation>%1 ist zu groß für ein Skript</translation>
    </message>
</context>
<context>
    <name>ExpertRequests</name>
    <message>
        <source>not sent: too many orders before it</source>
        <translation>nicht gesendet: zu viele Orders davor</translation>
    </message>
</context>
<context>
    <name>Indicators</name>
    <message>
        <source>Moving Average</source>
        <translation>Gleitender Durchschnitt</translation>
    </message>
    <message>
        <source>Moving Average (SMA)</source>
        <translation>Gleitender Durchschnitt (SMA)</translation>
    </message>
    <message>
        <source>Exponential MA</source>
        <translation>Exponentieller GD</translation>
    </message>
    <message>
        <source>Moving Average (EMA)</source>
        <translation>Gleitender Durchschnitt (EMA)</translation>
    </message>
    <message>
        <source>Relative Strength Index</source>
        <translation>Relative Strength Index</translation>
    </message>
    <message>
        <source>%1(%2)</source>
        <comment>indicator: name and period</comment>
        <translation>%1(%2)</translation>
    </message>
</context>
<context>
    <name>LogList</name>
    <message>
        <source>Time</source>
        <translation>Zeit</translation>
    </message>
    <message>
        <source>Source</source>
        <extracomment>the part of the program that a line comes from</extracomment>
        <translation>Quelle</translation>
    </message>
    <message>
        <source>Message</source>
        <translation>Meldung</translation>
    </message>
</context>
<context>
    <name>LoginDialog</name>
    <message>
        <source>Keep me signed in</source>
        <translation>Angemeldet bleiben</translation>
    </message>
    <message>
        <source>Login</source>
        <extracomment>the button that signs in</extracomment>
        <translation>Anmelden</translation>
    </message>
    <message>
        <source>Tavoran Terminal</source>
        <translation>Tavoran Terminal</translation>
    </message>
    <message>
        <source>Login:</source>
        <extracomment>the e-mail address that signs in</extracomment>
        <translation>E-Mail:</translation>
    </message>
    <message>
        <source>Password:</source>
        <translation>Passwort:</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Please enter your login and password.</source>
        <translation>Bitte geben Sie E-Mail und Passwort ein.</translation>
    </message>
    <message>
        <source>Connecting...</source>
        <translation>Verbinden ...</translation>
    </message>
    <message>
        <source>Auth</source>
        <translation>Anmeldung</translation>
    </message>
    <message>
        <source>Tavoran</source>
        <translation>Tavoran</translation>
    </message>
</context>
<context>
    <name>MainWindow</name>
    <message>
        <source>Tavoran Terminal</source>
        <translation>Tavoran Terminal</translation>
    </message>
    <message>
        <source>Terminal</source>
        <translation>Terminal</translation>
    </message>
    <message>
        <source>Tavoran Terminal %1 started</source>
        <translation>Tavoran Terminal %1 gestartet</translation>
    </message>
    <message>
        <source>Calendar</source>
        <translation>Kalender</translation>
    </message>
    <message>
        <source>Alerts</source>
        <translation>Alarme</translation>
    </message>
    <message>
        <source>Auth</source>
        <translation>Anmeldung</translation>
    </message>
    <message>
        <source>Session expired — please restart the terminal and log in again.</source>
        <translation>Die Sitzung ist abgelaufen — bitte starten Sie das Terminal neu und melden Sie sich erneut an.</translation>
    </message>
    <message>
        <source>Logged in as %1 on %2</source>
        <translation>Angemeldet als %1 bei %2</translation>
    </message>
    <message>
        <source>Network</source>
        <extracomment>the program ends before the server answered the request %1</extracomment>
        <translation>Netzwerk</translation>
    </message>
    <message>
        <source>Left without an answer to %1</source>
        <translation>Beendet ohne Antwort auf %1</translation>
    </message>
    <message>
        <source>Expert</source>
        <extracomment>the program ends with an expert&apos;s requests still waiting</extracomment>
        <translation>Expert</translation>
    </message>
    <message numerus="yes">
        <source>Left with %1 request(s) not sent</source>
        <translation>
            <numerusform>Beendet mit %1 nicht gesendeten Anfrage</numerusform>
            <numerusform>Beendet mit %1 nicht gesendeten Anfragen</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>MarketWatchWidget</name>
    <message>
        <source>Symbols</source>
        <translation>Symbole</translation>
    </message>
    <message>
        <source>Details</source>
        <translation>Details</translation>
    </message>
    <message>
        <source>Ticks</source>
        <extracomment>prices as they come</extracomment>
        <translation>Ticks</translation>
    </message>
    <message>
        <source>Market Watch</source>
        <translation>Marktübersicht</translation>
    </message>
    <message>
        <source>Symbol</source>
        <translation>Symbol</translation>
    </message>
    <message>
        <source>Bid</source>
        <translation>Bid</translation>
    </message>
    <message>
        <source>Ask</source>
        <translation>Ask</translation>
    </message>
    <message>
        <source>Daily</source>
        <extracomment>the change of the day</extracomment>
        <translation>Tag</translation>
    </message>
    <message>
        <source>Property</source>
        <translation>Eigenschaft</translation>
    </message>
    <message>
        <source>Value</source>
        <translation>Wert</translation>
    </message>
    <message>
        <source>%1%2%</source>
        <extracomment>the change of the day: %1 a sign, %2 a number of per cent</extracomment>
        <translation>%1%2%</translation>
    </message>
    <message>
        <source>%1, rising</source>
        <extracomment>what the triangle beside a symbol says</extracomment>
        <translation>%1, steigt</translation>
    </message>
    <message>
        <source>%1, falling</source>
        <translation>%1, fällt</translation>
    </message>
    <message>
        <source>%1, last known prices</source>
        <extracomment>said of a symbol while the feed is down</extracomment>
        <translation>%1, zuletzt bekannte Kurse</translation>
    </message>
</context>
<context>
    <name>MenuBar</name>
    <message>
        <source>Theme</source>
        <translation>Design</translation>
    </message>
    <message>
        <source>Indicators</source>
        <translation>Indikatoren</translation>
    </message>
    <message>
        <source>Objects</source>
        <translation>Objekte</translation>
    </message>
    <message>
        <source>Chart Type</source>
        <translation>Charttyp</translation>
    </message>
    <message>
        <source>Timeframe</source>
        <translation>Zeiteinheit</translation>
    </message>
    <message>
        <source>&amp;File</source>
        <translation>&amp;Datei</translation>
    </message>
    <message>
        <source>&amp;View</source>
        <translation>&amp;Ansicht</translation>
    </message>
    <message>
        <source>&amp;Insert</source>
        <translation>&amp;Einfügen</translation>
    </message>
    <message>
        <source>&amp;Charts</source>
        <translation>&amp;Charts</translation>
    </message>
    <message>
        <source>&amp;Tools</source>
        <translation>E&amp;xtras</translation>
    </message>
    <message>
        <source>&amp;Window</source>
        <translation>&amp;Fenster</translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation>&amp;Hilfe</translation>
    </message>
    <message>
        <source>More menus</source>
        <translation>Weitere Menüs</translation>
    </message>
</context>
<context>
    <name>ModifyDialog</name>
    <message>
        <source>Modify Order</source>
        <translation>Order ändern</translation>
    </message>
    <message>
        <source>%1 %2 %3</source>
        <extracomment>%1 the symbol, %2 the side, %3 lots</extracomment>
        <translation>%1 %2 %3</translation>
    </message>
    <message>
        <source>Price:</source>
        <translation>Preis:</translation>
    </message>
    <message>
        <source>Stop Loss:</source>
        <translation>Stop Loss:</translation>
    </message>
    <message>
        <source>Take Profit:</source>
        <translation>Take Profit:</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Modify</source>
        <translation>Ändern</translation>
    </message>
    <message>
        <source>none</source>
        <extracomment>an empty field: no stop loss, no take profit</extracomment>
        <translation>keiner</translation>
    </message>
    <message>
        <source>Please enter a valid price.</source>
        <translation>Bitte geben Sie einen gültigen Preis ein.</translation>
    </message>
    <message>
        <source>This trade has no usable id.</source>
        <translation>Dieser Trade hat keine verwendbare ID.</translation>
    </message>
</context>
<context>
    <name>NavigatorWidget</name>
    <message>
        <source>Common</source>
        <extracomment>all entries, as opposed to the favourites</extracomment>
        <translation>Allgemein</translation>
    </message>
    <message>
        <source>Favorites</source>
        <translation>Favoriten</translation>
    </message>
    <message>
        <source>Navigator</source>
        <translation>Navigator</translation>
    </message>
    <message>
        <source>Tavoran Terminal</source>
        <translation>Tavoran Terminal</translation>
    </message>
    <message>
        <source>Accounts</source>
        <translation>Konten</translation>
    </message>
    <message>
        <source>Indicators</source>
        <translation>Indikatoren</translation>
    </message>
    <message>
        <source>Expert Advisors</source>
        <translation>Expert Advisors</translation>
    </message>
    <message>
        <source>%1  (%2)</source>
        <extracomment>%1 the account, %2 its balance</extracomment>
        <translation>%1  (%2)</translation>
    </message>
    <message>
        <source>(none installed)</source>
        <translation>(keine installiert)</translation>
    </message>
    <message>
        <source>Double-click to attach to the active chart</source>
        <translation>Doppelklick startet den Expert Advisor auf dem aktiven Chart</translation>
    </message>
    <message>
        <source>Active account</source>
        <translation>Aktives Konto</translation>
    </message>
</context>
<context>
    <name>NewsPane</name>
    <message>
        <source>now</source>
        <extracomment>in place of the time until an event</extracomment>
        <translation>jetzt</translation>
    </message>
    <message>
        <source>%1m</source>
        <extracomment>minutes until an event</extracomment>
        <translation>%1 min</translation>
    </message>
    <message>
        <source>%1h %2m</source>
        <extracomment>hours and minutes until an event</extracomment>
        <translation>%1 h %2 min</translation>
    </message>
    <message>
        <source>Calendar</source>
        <translation>Kalender</translation>
    </message>
    <message>
        <source>Time</source>
        <translation>Zeit</translation>
    </message>
    <message>
        <source>Currency</source>
        <translation>Währung</translation>
    </message>
    <message>
        <source>Impact</source>
        <translation>Relevanz</translation>
    </message>
    <message>
        <source>Event</source>
        <translation>Ereignis</translation>
    </message>
    <message>
        <source>In</source>
        <extracomment>how long until the event</extracomment>
        <translation>In</translation>
    </message>
    <message>
        <source>Upcoming News — %1</source>
        <translation>Anstehender Termin — %1</translation>
    </message>
    <message numerus="yes">
        <source>%1 in %2 minutes</source>
        <extracomment>%1 the event</extracomment>
        <translation>
            <numerusform>%1 in %2 Minute</numerusform>
            <numerusform>%1 in %2 Minuten</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>OneClickPanel</name>
    <message>
        <source>SELL
—</source>
        <translation>VERKAUF
—</translation>
    </message>
    <message>
        <source>Volume in lots</source>
        <translation>Volumen in Lots</translation>
    </message>
    <message>
        <source>BUY
—</source>
        <translation>KAUF
—</translation>
    </message>
    <message>
        <source>SELL
%1</source>
        <translation>VERKAUF
%1</translation>
    </message>
    <message>
        <source>BUY
%1</source>
        <translation>KAUF
%1</translation>
    </message>
    <message>
        <source>last known price</source>
        <extracomment>said of the button of one-click trading while the feed is down</extracomment>
        <translation>zuletzt bekannter Kurs</translation>
    </message>
    <message>
        <source>Space sells at once, at the market price</source>
        <translation>Leertaste verkauft sofort zum Marktpreis</translation>
    </message>
    <message>
        <source>Space buys at once, at the market price</source>
        <translation>Leertaste kauft sofort zum Marktpreis</translation>
    </message>
</context>
<context>
    <name>OrderDialog</name>
    <message>
        <source>Order: %1 - %2</source>
        <extracomment>%1 the symbol, %2 its description</extracomment>
        <translation>Order: %1 - %2</translation>
    </message>
    <message>
        <source>%1 %2</source>
        <extracomment>%1 units, %2 the symbol: what the chosen lots are</extracomment>
        <translation>%1 %2</translation>
    </message>
    <message>
        <source>Please enter a valid trigger price.</source>
        <translation>Bitte geben Sie einen gültigen Auslösepreis ein.</translation>
    </message>
</context>
<context>
    <name>OrderEvents</name>
    <message>
        <source>Trade</source>
        <translation>Handel</translation>
    </message>
    <message>
        <source>Execution</source>
        <translation>Ausführung</translation>
    </message>
    <message>
        <source>Account</source>
        <translation>Konto</translation>
    </message>
</context>
<context>
    <name>OrderForm</name>
    <message>
        <source>by Market</source>
        <extracomment>ends &quot;Sell %1&quot; and &quot;Buy %1&quot;</extracomment>
        <translation>zum Marktpreis</translation>
    </message>
    <message>
        <source>Limit</source>
        <extracomment>the type of order; ends &quot;Sell %1&quot; and &quot;Buy %1&quot;</extracomment>
        <translation>Limit</translation>
    </message>
    <message>
        <source>Stop</source>
        <extracomment>the type of order; ends &quot;Sell %1&quot; and &quot;Buy %1&quot;</extracomment>
        <translation>Stop</translation>
    </message>
    <message>
        <source>Stop Limit</source>
        <translation>Stop Limit</translation>
    </message>
    <message>
        <source>Symbol:</source>
        <translation>Symbol:</translation>
    </message>
    <message>
        <source>Volume:</source>
        <translation>Volumen:</translation>
    </message>
    <message>
        <source>Stop Loss:</source>
        <translation>Stop Loss:</translation>
    </message>
    <message>
        <source>Take Profit:</source>
        <translation>Take Profit:</translation>
    </message>
    <message>
        <source>Price:</source>
        <translation>Preis:</translation>
    </message>
    <message>
        <source>Comment:</source>
        <translation>Kommentar:</translation>
    </message>
    <message>
        <source>Volume</source>
        <translation>Volumen</translation>
    </message>
    <message>
        <source>%1, %2</source>
        <extracomment>%1 the symbol, %2 its description</extracomment>
        <translation>%1, %2</translation>
    </message>
    <message>
        <source>Sell %1</source>
        <extracomment>%1 the type of order, such as &quot;Limit&quot;</extracomment>
        <translation>Verkauf %1</translation>
    </message>
    <message>
        <source>Buy %1</source>
        <extracomment>%1 the type of order, such as &quot;Limit&quot;</extracomment>
        <translation>Kauf %1</translation>
    </message>
</context>
<context>
    <name>OrderReaction</name>
    <message>
        <source>Orders changed — refreshing</source>
        <translation>Orders geändert — Daten werden aktualisiert</translation>
    </message>
    <message>
        <source>Orders changed (%1) — refreshing</source>
        <translation>Orders geändert (%1) — Daten werden aktualisiert</translation>
    </message>
    <message>
        <source>Pending order filled</source>
        <translation>Pending Order ausgeführt</translation>
    </message>
    <message>
        <source>Order Filled</source>
        <translation>Order ausgeführt</translation>
    </message>
    <message>
        <source>A pending order on %1 was filled.</source>
        <translation>Eine Pending Order auf Konto %1 wurde ausgeführt.</translation>
    </message>
    <message>
        <source>Order state changed</source>
        <translation>Orderstatus geändert</translation>
    </message>
    <message>
        <source>Position closed (%1)</source>
        <translation>Position geschlossen (%1)</translation>
    </message>
    <message>
        <source>Position Closed (%1)</source>
        <translation>Position geschlossen (%1)</translation>
    </message>
    <message>
        <source>A position hit its %1.</source>
        <extracomment>%1 &quot;SL&quot; or &quot;TP&quot;</extracomment>
        <translation>Eine Position hat ihren %1 erreicht.</translation>
    </message>
    <message>
        <source>Account %1 status changed to %2</source>
        <translation>Status von Konto %1 ist jetzt %2</translation>
    </message>
    <message>
        <source>Account Failed</source>
        <translation>Konto gescheitert</translation>
    </message>
    <message>
        <source>An account breached its risk limit and was closed.</source>
        <translation>Ein Konto hat sein Risikolimit verletzt und wurde geschlossen.</translation>
    </message>
    <message>
        <source>Challenge Passed</source>
        <translation>Challenge bestanden</translation>
    </message>
    <message>
        <source>An account passed its target — pending review.</source>
        <translation>Ein Konto hat sein Ziel erreicht — die Prüfung steht aus.</translation>
    </message>
</context>
<context>
    <name>OrderTypePanel</name>
    <message>
        <source>Market Execution</source>
        <translation>Marktausführung</translation>
    </message>
    <message>
        <source>Limit Order</source>
        <translation>Limit-Order</translation>
    </message>
    <message>
        <source>Stop Order</source>
        <translation>Stop-Order</translation>
    </message>
    <message>
        <source>Stop Limit Order</source>
        <translation>Stop-Limit-Order</translation>
    </message>
    <message>
        <source>Not available on this platform</source>
        <translation>Auf dieser Plattform nicht verfügbar</translation>
    </message>
    <message>
        <source>One Click Trading</source>
        <translation>Ein-Klick-Handel</translation>
    </message>
    <message>
        <source>Tick Chart</source>
        <translation>Tick-Chart</translation>
    </message>
    <message>
        <source>Depth of Market</source>
        <translation>Markttiefe</translation>
    </message>
    <message>
        <source>Minimize</source>
        <translation>Minimieren</translation>
    </message>
</context>
<context>
    <name>PopupPrices</name>
    <message>
        <source>Popup Prices</source>
        <translation>Kursfenster</translation>
    </message>
</context>
<context>
    <name>PriceDisplay</name>
    <message>
        <source>Prices of %1</source>
        <extracomment>%1 a symbol</extracomment>
        <translation>Kurse von %1</translation>
    </message>
    <message>
        <source>%1 / %2</source>
        <extracomment>%1 bid, %2 ask</extracomment>
        <translation>%1 / %2</translation>
    </message>
    <message>
        <source>No prices yet</source>
        <translation>Noch keine Kurse</translation>
    </message>
    <message>
        <source>Bid %1, ask %2</source>
        <translation>Bid %1, Ask %2</translation>
    </message>
    <message>
        <source>Disconnected; last bid %1, ask %2</source>
        <translation>Getrennt; zuletzt Bid %1, Ask %2</translation>
    </message>
</context>
<context>
    <name>PriceItem</name>
    <message>
        <source>%1, last known price</source>
        <extracomment>%1 a price, said of it while the feed is down</extracomment>
        <translation>%1, zuletzt bekannter Kurs</translation>
    </message>
</context>
<context>
    <name>ReplyOutcome</name>
    <message>
        <source>not sent: no connection to the server</source>
        <translation>nicht gesendet: keine Verbindung zum Server</translation>
    </message>
    <message>
        <source>refused; the reason did not arrive</source>
        <translation>abgelehnt; der Grund kam nicht an</translation>
    </message>
    <message>
        <source>no answer; the order may have been carried out</source>
        <translation>keine Antwort; die Order wurde möglicherweise ausgeführt</translation>
    </message>
    <message>
        <source>no answer; it may have been carried out</source>
        <translation>keine Antwort; die Änderung wurde möglicherweise ausgeführt</translation>
    </message>
    <message>
        <source>The server answered with a redirect</source>
        <translation>Der Server antwortete mit einer Umleitung</translation>
    </message>
    <message>
        <source>Connection closed</source>
        <translation>Verbindung beendet</translation>
    </message>
    <message>
        <source>%1 (%2)</source>
        <extracomment>%1 why there is no connection, %2 the address of the server</extracomment>
        <translation>%1 (%2)</translation>
    </message>
</context>
<context>
    <name>Reports</name>
    <message>
        <source>Terminal</source>
        <translation>Terminal</translation>
    </message>
</context>
<context>
    <name>SendingDialog</name>
    <message>
        <source>Trade</source>
        <translation>Handel</translation>
    </message>
</context>
<context>
    <name>SettingsStore</name>
    <message>
        <source>The settings file may be damaged, and there is no room to put it right. It stays as it is; its last good copy is used, and nothing is saved until there is room.</source>
        <translation>Die Einstellungsdatei ist vielleicht beschädigt, und es fehlt der Platz, um sie zu richten. Sie bleibt, wie sie ist; ihre letzte gute Kopie wird verwendet, und bis Platz da ist, wird nichts gespeichert.</translation>
    </message>
    <message>
        <source>The settings file was damaged; its last good copy has been put back.</source>
        <translation>Die Einstellungsdatei war beschädigt; ihre letzte gute Kopie wurde wiederhergestellt.</translation>
    </message>
    <message>
        <source>The settings file was damaged and there was no good copy; default settings are used.</source>
        <translation>Die Einstellungsdatei war beschädigt und es gab keine gute Kopie; die Standardeinstellungen werden verwendet.</translation>
    </message>
    <message>
        <source>The damaged settings file is kept as %1.</source>
        <translation>Die beschädigte Einstellungsdatei bleibt als %1 erhalten.</translation>
    </message>
    <message>
        <source>The settings file had entries that cannot be saved; they have been left out.</source>
        <translation>Die Einstellungsdatei hatte Einträge, die sich nicht speichern lassen; sie wurden weggelassen.</translation>
    </message>
</context>
<context>
    <name>StatusPanel</name>
    <message>
        <source>Trading account</source>
        <translation>Handelskonto</translation>
    </message>
    <message>
        <source>Not logged in</source>
        <translation>Nicht angemeldet</translation>
    </message>
    <message>
        <source>For Help, press F1</source>
        <translation>Hilfe mit F1</translation>
    </message>
    <message>
        <source>&lt;span style=&apos;color:#26d367&apos;&gt;●&lt;/span&gt; %1 — %2</source>
        <translation>&lt;span style=&apos;color:#26d367&apos;&gt;●&lt;/span&gt; %1 — %2</translation>
    </message>
    <message>
        <source>Connected</source>
        <translation>Verbunden</translation>
    </message>
    <message>
        <source>&lt;span style=&apos;color:#ff6b6b&apos;&gt;●&lt;/span&gt; %1 — %2</source>
        <translation>&lt;span style=&apos;color:#ff6b6b&apos;&gt;●&lt;/span&gt; %1 — %2</translation>
    </message>
    <message>
        <source>Disconnected</source>
        <translation>Getrennt</translation>
    </message>
    <message>
        <source>(%1 ms)</source>
        <extracomment>how long a message takes to the server and back</extracomment>
        <translation>(%1 ms)</translation>
    </message>
    <message>
        <source>&lt;span style=&apos;color:%1&apos;&gt;●&lt;/span&gt; %2 / %3 Kb</source>
        <extracomment>traffic: %1 a colour, %2 messages, %3 kilobytes</extracomment>
        <translation>&lt;span style=&apos;color:%1&apos;&gt;●&lt;/span&gt; %2 / %3 Kb</translation>
    </message>
</context>
<context>
    <name>SymbolFacts</name>
    <message>
        <source>Symbol</source>
        <translation>Symbol</translation>
    </message>
    <message>
        <source>Description</source>
        <translation>Beschreibung</translation>
    </message>
    <message>
        <source>Digits</source>
        <translation>Nachkommastellen</translation>
    </message>
    <message>
        <source>Contract size</source>
        <translation>Kontraktgröße</translation>
    </message>
    <message>
        <source>Commission (per lot)</source>
        <translation>Kommission (je Lot)</translation>
    </message>
    <message>
        <source>Swap long</source>
        <translation>Swap long</translation>
    </message>
    <message>
        <source>Swap short</source>
        <translation>Swap short</translation>
    </message>
    <message>
        <source>Minimum volume</source>
        <translation>Mindestvolumen</translation>
    </message>
</context>
<context>
    <name>SymbolSpecification</name>
    <message>
        <source>The server does not list this symbol.</source>
        <translation>Der Server führt dieses Symbol nicht.</translation>
    </message>
    <message>
        <source>Property</source>
        <translation>Eigenschaft</translation>
    </message>
    <message>
        <source>Value</source>
        <translation>Wert</translation>
    </message>
    <message>
        <source>Specification: %1</source>
        <translation>Spezifikation: %1</translation>
    </message>
    <message>
        <source>Bid</source>
        <translation>Bid</translation>
    </message>
    <message>
        <source>Ask</source>
        <translation>Ask</translation>
    </message>
    <message>
        <source>Spread (points)</source>
        <translation>Spread (Punkte)</translation>
    </message>
</context>
<context>
    <name>TerminalActions</name>
    <message>
        <source>New Chart</source>
        <translation>Neuer Chart</translation>
    </message>
    <message>
        <source>New Order</source>
        <translation>Neue Order</translation>
    </message>
    <message>
        <source>E&amp;xit</source>
        <translation>&amp;Beenden</translation>
    </message>
    <message>
        <source>Popup Prices</source>
        <translation>Kursfenster</translation>
    </message>
    <message>
        <source>Restore Default Layout</source>
        <translation>Standardanordnung wiederherstellen</translation>
    </message>
    <message>
        <source>Light</source>
        <translation>Hell</translation>
    </message>
    <message>
        <source>Dark</source>
        <translation>Dunkel</translation>
    </message>
    <message>
        <source>Algo Trading</source>
        <translation>Algo-Trading</translation>
    </message>
    <message>
        <source>Cursor</source>
        <extracomment>the plain pointer, in place of a drawing tool</extracomment>
        <translation>Mauszeiger</translation>
    </message>
    <message>
        <source>Crosshair</source>
        <translation>Fadenkreuz</translation>
    </message>
    <message>
        <source>Horizontal Line</source>
        <translation>Horizontale Linie</translation>
    </message>
    <message>
        <source>Vertical Line</source>
        <translation>Vertikale Linie</translation>
    </message>
    <message>
        <source>Trend Line</source>
        <translation>Trendlinie</translation>
    </message>
    <message>
        <source>Rectangle</source>
        <translation>Rechteck</translation>
    </message>
    <message>
        <source>Fibonacci Retracement</source>
        <translation>Fibonacci-Retracement</translation>
    </message>
    <message>
        <source>Candlesticks</source>
        <translation>Kerzen</translation>
    </message>
    <message>
        <source>Bars</source>
        <extracomment>a type of chart</extracomment>
        <translation>Balken</translation>
    </message>
    <message>
        <source>Line</source>
        <extracomment>a type of chart</extracomment>
        <translation>Linie</translation>
    </message>
    <message>
        <source>Auto Scroll</source>
        <translation>Automatischer Bildlauf</translation>
    </message>
    <message>
        <source>Chart Shift</source>
        <translation>Chart einrücken</translation>
    </message>
    <message>
        <source>Zoom In</source>
        <translation>Vergrößern</translation>
    </message>
    <message>
        <source>Zoom Out</source>
        <translation>Verkleinern</translation>
    </message>
    <message>
        <source>Refresh</source>
        <translation>Aktualisieren</translation>
    </message>
    <message>
        <source>Data Window</source>
        <translation>Datenfenster</translation>
    </message>
    <message>
        <source>Properties...</source>
        <translation>Eigenschaften ...</translation>
    </message>
    <message>
        <source>Symbol Specification...</source>
        <translation>Symbolspezifikation ...</translation>
    </message>
    <message>
        <source>Depth of Market</source>
        <translation>Markttiefe</translation>
    </message>
    <message>
        <source>Open Experts Folder</source>
        <translation>Experts-Ordner öffnen</translation>
    </message>
    <message>
        <source>Tile</source>
        <translation>Nebeneinander</translation>
    </message>
    <message>
        <source>Cascade</source>
        <translation>Überlappend</translation>
    </message>
    <message>
        <source>Close</source>
        <extracomment>closes the active chart</extracomment>
        <translation>Schließen</translation>
    </message>
    <message>
        <source>Expert Advisors Guide...</source>
        <translation>Anleitung für Expert Advisors ...</translation>
    </message>
    <message>
        <source>Check for Updates...</source>
        <translation>Nach Updates suchen ...</translation>
    </message>
    <message>
        <source>About Tavoran Terminal</source>
        <translation>Über Tavoran Terminal</translation>
    </message>
    <message>
        <source>Fibonacci</source>
        <translation>Fibonacci</translation>
    </message>
    <message>
        <source>Algo Trading — allow Expert Advisors to place orders</source>
        <translation>Algo-Trading — Expert Advisors dürfen Orders aufgeben</translation>
    </message>
    <message>
        <source>Auto Scroll — keep the chart on the newest tick</source>
        <translation>Automatischer Bildlauf — der Chart bleibt beim neuesten Tick</translation>
    </message>
    <message>
        <source>Chart Shift — shift the newest bar off the right border</source>
        <translation>Chart einrücken — der neueste Balken rückt vom rechten Rand ab</translation>
    </message>
    <message>
        <source>This system&apos;s package manager keeps the terminal up to date</source>
        <translation>Die Paketverwaltung dieses Systems hält das Terminal aktuell</translation>
    </message>
</context>
<context>
    <name>TerminalPane</name>
    <message>
        <source>Trade</source>
        <translation>Handel</translation>
    </message>
    <message>
        <source>Symbol</source>
        <translation>Symbol</translation>
    </message>
    <message>
        <source>Ticket</source>
        <translation>Ticket</translation>
    </message>
    <message>
        <source>Time</source>
        <translation>Zeit</translation>
    </message>
    <message>
        <source>Type</source>
        <translation>Typ</translation>
    </message>
    <message>
        <source>Volume</source>
        <translation>Lots</translation>
    </message>
    <message>
        <source>Price</source>
        <translation>Preis</translation>
    </message>
    <message>
        <source>S / L</source>
        <translation>S / L</translation>
    </message>
    <message>
        <source>T / P</source>
        <translation>T / P</translation>
    </message>
    <message>
        <source>Commission</source>
        <translation>Kommission</translation>
    </message>
    <message>
        <source>Swap</source>
        <translation>Swap</translation>
    </message>
    <message>
        <source>Profit</source>
        <translation>Gewinn</translation>
    </message>
    <message>
        <source>Open Time</source>
        <translation>Eröffnet</translation>
    </message>
    <message>
        <source>Close Time</source>
        <translation>Geschlossen</translation>
    </message>
    <message>
        <source>History</source>
        <translation>Historie</translation>
    </message>
    <message>
        <source>Experts</source>
        <translation>Experts</translation>
    </message>
    <message>
        <source>Journal</source>
        <translation>Journal</translation>
    </message>
    <message>
        <source>Balance: %1 USD&amp;nbsp;&amp;nbsp;&amp;nbsp;Equity: %2&amp;nbsp;&amp;nbsp;&amp;nbsp;Margin: %3&amp;nbsp;&amp;nbsp;&amp;nbsp;Free Margin: %4&amp;nbsp;&amp;nbsp;&amp;nbsp;Profit: &lt;span style=&apos;color:%6&apos;&gt;%5&lt;/span&gt;</source>
        <translation>Kontostand: %1 USD&amp;nbsp;&amp;nbsp;&amp;nbsp;Equity: %2&amp;nbsp;&amp;nbsp;&amp;nbsp;Margin: %3&amp;nbsp;&amp;nbsp;&amp;nbsp;Freie Margin: %4&amp;nbsp;&amp;nbsp;&amp;nbsp;Gewinn: &lt;span style=&apos;color:%6&apos;&gt;%5&lt;/span&gt;</translation>
    </message>
    <message>
        <source>Balance: —</source>
        <translation>Kontostand: —</translation>
    </message>
</context>
<context>
    <name>TerminalSettings</name>
    <message>
        <source>The settings could not be saved to %1. What was saved before is kept.</source>
        <translation>Die Einstellungen konnten nicht in %1 gespeichert werden. Was vorher gespeichert war, bleibt erhalten.</translation>
    </message>
</context>
<context>
    <name>TickChartWidget</name>
    <message>
        <source>Tick chart %1</source>
        <extracomment>%1 a symbol</extracomment>
        <translation>Tick-Chart %1</translation>
    </message>
    <message>
        <source>No prices yet</source>
        <translation>Noch keine Kurse</translation>
    </message>
    <message>
        <source>Bid %1, ask %2, lowest %3, highest %4</source>
        <translation>Bid %1, Ask %2, niedrigster Kurs %3, höchster %4</translation>
    </message>
    <message>
        <source>Disconnected; last bid %1, ask %2, lowest %3, highest %4</source>
        <translation>Getrennt; zuletzt Bid %1, Ask %2, niedrigster Kurs %3, höchster %4</translation>
    </message>
</context>
<context>
    <name>ToolBars</name>
    <message>
        <source>Standard</source>
        <translation>Standard</translation>
    </message>
    <message>
        <source>Timeframes</source>
        <translation>Zeiteinheiten</translation>
    </message>
    <message>
        <source>Line Studies</source>
        <translation>Zeichenwerkzeuge</translation>
    </message>
    <message>
        <source>More buttons</source>
        <translation>Weitere Schaltflächen</translation>
    </message>
</context>
<context>
    <name>ToolHint</name>
    <message>
        <source>Horizontal Line: click or press Enter at its price</source>
        <translation>Horizontale Linie: Klick oder Eingabetaste beim Preis</translation>
    </message>
    <message>
        <source>Vertical Line: click or press Enter at its time</source>
        <translation>Vertikale Linie: Klick oder Eingabetaste bei der Zeit</translation>
    </message>
    <message>
        <source>Trend Line: click or press Enter at its second point</source>
        <translation>Trendlinie: Klick oder Eingabetaste beim zweiten Punkt</translation>
    </message>
    <message>
        <source>Trend Line: click or press Enter at its first point</source>
        <translation>Trendlinie: Klick oder Eingabetaste beim ersten Punkt</translation>
    </message>
    <message>
        <source>Rectangle: click or press Enter at the opposite corner</source>
        <translation>Rechteck: Klick oder Eingabetaste an der Ecke gegenüber</translation>
    </message>
    <message>
        <source>Rectangle: click or press Enter at its first corner</source>
        <translation>Rechteck: Klick oder Eingabetaste an der ersten Ecke</translation>
    </message>
    <message>
        <source>Fibonacci: click or press Enter at the point of level 100.0</source>
        <translation>Fibonacci: Klick oder Eingabetaste beim Punkt für 100.0</translation>
    </message>
    <message>
        <source>Fibonacci: click or press Enter at the point of level 0.0</source>
        <translation>Fibonacci: Klick oder Eingabetaste beim Punkt für 0.0</translation>
    </message>
    <message>
        <source>Crosshair: drag, or press Enter at both ends, to measure</source>
        <translation>Fadenkreuz: zum Messen ziehen oder Eingabetaste an beiden Enden</translation>
    </message>
    <message>
        <source>Level: arrow keys move it, Enter sends it, Escape puts it back</source>
        <translation>Linie: Pfeiltasten bewegen, Eingabetaste sendet, Escape legt zurück</translation>
    </message>
</context>
<context>
    <name>TradeActions</name>
    <message>
        <source>Expert</source>
        <translation>Expert</translation>
    </message>
    <message>
        <source>Algo Trading enabled</source>
        <translation>Algo-Trading eingeschaltet</translation>
    </message>
    <message>
        <source>Algo Trading disabled</source>
        <translation>Algo-Trading ausgeschaltet</translation>
    </message>
    <message numerus="yes">
        <source>Algo Trading is OFF — %1 waiting request(s) not sent.</source>
        <translation>
            <numerusform>Algo-Trading ist AUS — %1 wartende Anfrage nicht gesendet.</numerusform>
            <numerusform>Algo-Trading ist AUS — %1 wartende Anfragen nicht gesendet.</numerusform>
        </translation>
    </message>
    <message>
        <source>Close failed: %1</source>
        <translation>Schließen fehlgeschlagen: %1</translation>
    </message>
    <message>
        <source>Position closed</source>
        <translation>Position geschlossen</translation>
    </message>
    <message>
        <source>Cancel failed: %1</source>
        <translation>Stornieren fehlgeschlagen: %1</translation>
    </message>
    <message>
        <source>Pending order cancelled</source>
        <translation>Pending Order storniert</translation>
    </message>
    <message>
        <source>Modify failed: %1</source>
        <translation>Ändern fehlgeschlagen: %1</translation>
    </message>
    <message>
        <source>%1 moved to %2</source>
        <extracomment>%1 the level (&quot;sl&quot;, &quot;tp&quot;), %2 its new price</extracomment>
        <translation>%1 auf %2 verschoben</translation>
    </message>
    <message>
        <source>One-click %1 %2 executed</source>
        <extracomment>%1 the side, %2 the symbol</extracomment>
        <translation>Ein-Klick-Order %1 %2 ausgeführt</translation>
    </message>
    <message>
        <source>One-click order failed: %1</source>
        <translation>Ein-Klick-Order fehlgeschlagen: %1</translation>
    </message>
    <message>
        <source>Algo Trading is OFF — order ignored. Enable it in the toolbar.</source>
        <translation>Algo-Trading ist AUS — Order ignoriert. Schalten Sie es in der Werkzeugleiste ein.</translation>
    </message>
    <message>
        <source>%1 %2 %3 executed</source>
        <extracomment>%1 the side, %2 lots, %3 the symbol</extracomment>
        <translation>%1 %2 %3 ausgeführt</translation>
    </message>
    <message>
        <source>Order failed: %1</source>
        <translation>Order fehlgeschlagen: %1</translation>
    </message>
    <message>
        <source>Algo Trading is OFF — close ignored.</source>
        <translation>Algo-Trading ist AUS — Schließen ignoriert.</translation>
    </message>
    <message numerus="yes">
        <source>Closing %1 position(s) on %2</source>
        <extracomment>%2 the symbol</extracomment>
        <translation>
            <numerusform>%1 Position auf %2 wird geschlossen</numerusform>
            <numerusform>%1 Positionen auf %2 werden geschlossen</numerusform>
        </translation>
    </message>
    <message>
        <source>this trade has no usable id</source>
        <translation>Dieser Trade hat keine verwendbare ID</translation>
    </message>
    <message>
        <source>Trade</source>
        <translation>Handel</translation>
    </message>
</context>
<context>
    <name>TradeDesk</name>
    <message>
        <source>Order failed: %1</source>
        <translation>Order fehlgeschlagen: %1</translation>
    </message>
    <message>
        <source>Trade</source>
        <translation>Handel</translation>
    </message>
    <message>
        <source>Modify failed: %1</source>
        <translation>Ändern fehlgeschlagen: %1</translation>
    </message>
    <message>
        <source>Order placed</source>
        <translation>Order aufgegeben</translation>
    </message>
    <message>
        <source>Execution</source>
        <translation>Ausführung</translation>
    </message>
    <message>
        <source>Order modified</source>
        <translation>Order geändert</translation>
    </message>
</context>
<context>
    <name>TradeLevels</name>
    <message>
        <source>%1 %2 #%3</source>
        <extracomment>%1 the side or the type of a pending order, %2 lots, %3 the ticket</extracomment>
        <translation>%1 %2 #%3</translation>
    </message>
    <message>
        <source>buy</source>
        <translation>buy</translation>
    </message>
    <message>
        <source>sell</source>
        <translation>sell</translation>
    </message>
    <message>
        <source>sl #%1</source>
        <extracomment>stop loss of a ticket</extracomment>
        <translation>sl #%1</translation>
    </message>
    <message>
        <source>tp #%1</source>
        <extracomment>take profit of a ticket</extracomment>
        <translation>tp #%1</translation>
    </message>
</context>
<context>
    <name>TradeMenu</name>
    <message>
        <source>Cancel Order</source>
        <translation>Order stornieren</translation>
    </message>
    <message>
        <source>Close Position</source>
        <translation>Position schließen</translation>
    </message>
    <message>
        <source>Modify...</source>
        <translation>Ändern ...</translation>
    </message>
    <message>
        <source>New Order...</source>
        <translation>Neue Order ...</translation>
    </message>
    <message>
        <source>%1 %2 %3</source>
        <extracomment>%1 the side, %2 lots, %3 the symbol</extracomment>
        <translation>%1 %2 %3</translation>
    </message>
    <message>
        <source>Close position %1 (#%2)?</source>
        <extracomment>%1 side, lots and symbol, %2 the ticket</extracomment>
        <translation>Position %1 (#%2) schließen?</translation>
    </message>
</context>
<context>
    <name>TrayIcon</name>
    <message>
        <source>Tavoran Terminal</source>
        <translation>Tavoran Terminal</translation>
    </message>
    <message>
        <source>Show</source>
        <extracomment>brings the main window to the front</extracomment>
        <translation>Anzeigen</translation>
    </message>
    <message>
        <source>Exit</source>
        <translation>Beenden</translation>
    </message>
</context>
<context>
    <name>WsClient</name>
    <message numerus="yes">
        <source>Feed ready — %1 symbols</source>
        <translation>
            <numerusform>Datenfeed bereit — %1 Symbol</numerusform>
            <numerusform>Datenfeed bereit — %1 Symbole</numerusform>
        </translation>
    </message>
    <message>
        <source>Connecting to %1...</source>
        <translation>Verbinden mit %1 ...</translation>
    </message>
    <message>
        <source>Feed error: %1</source>
        <translation>Fehler im Datenfeed: %1</translation>
    </message>
    <message>
        <source>Network</source>
        <translation>Netzwerk</translation>
    </message>
    <message>
        <source>Feed connected</source>
        <translation>Datenfeed verbunden</translation>
    </message>
    <message>
        <source>Feed disconnected — retrying in %1s</source>
        <translation>Datenfeed getrennt — neuer Versuch in %1 s</translation>
    </message>
</context>
</TS>
