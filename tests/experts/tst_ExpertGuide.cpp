#include "experts/ExpertFixture.h"
#include "support/TestMain.h"

#include <QRegularExpression>

#include <cmath>

using namespace Qt::StringLiterals;

namespace {

QString guide()
{
    QFile file(u":/ea_guide.html"_s);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

QStringList found(const QString& pattern)
{
    const QRegularExpression expression(pattern, QRegularExpression::DotMatchesEverythingOption);
    const QString page = guide();
    QStringList captured;
    for (auto matches = expression.globalMatch(page); matches.hasNext();)
        captured.append(matches.next().captured(1));
    return captured;
}

QString plain(QString html)
{
    return html.replace(u"&lt;"_s, u"<"_s).replace(u"&gt;"_s, u">"_s).replace(u"&amp;"_s, u"&"_s);
}

QStringList snippets()
{
    QStringList texts;
    const QStringList blocks = found(u"<pre><code>(.*?)</code></pre>"_s);
    for (const QString& block : blocks)
        texts.append(plain(block));
    return texts;
}

} // namespace

/// Everything that the guide shows can be run as it stands there.
class tst_ExpertGuide final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everySnippetRuns_data()
    {
        QTest::addColumn<QString>("snippet");
        const QStringList texts = snippets();
        QVERIFY(texts.size() >= 8);
        for (const QString& text : texts)
            QTest::addRow(
                "%lld %s", static_cast<long long>(texts.indexOf(text)), qPrintable(text.section(u'\n', 0, 0)))
                << text;
    }
    void everySnippetRuns()
    {
        QFETCH(QString, snippet);
        ExpertFixture chart;
        QVERIFY2(chart.load(snippet.toUtf8()), qPrintable(chart.error));
        std::vector<double> closes;
        for (int bar = 0; bar < 400; ++bar) {
            closes.push_back(1.1 + 0.02 * std::sin(bar * 0.09) + 0.003 * std::sin(bar * 0.9));
            chart.setCloses(closes);
            for (Candle& candle : chart.candles) {
                candle.high = candle.close + 0.0005;
                candle.low = candle.close - 0.0005;
            }
            chart.bid = closes.back();
            chart.ask = chart.bid + 0.0002;
            const qsizetype before = chart.done.size();
            chart.engine->tick();
            for (qsizetype i = before; i < chart.done.size(); ++i)
                chart.positions = chart.done[i].startsWith("order"_L1) ? chart.positions + 1
                    : chart.done[i] == "closeAll"_L1                   ? 0
                                                                       : chart.positions;
        }
        QVERIFY2(chart.engine->isRunning(), qPrintable(chart.messages.join(u'\n')));
        chart.engine->stop();
        QCOMPARE(chart.messages, QStringList(u"Probe loaded"_s));
        QVERIFY2(!chart.done.isEmpty(), "the snippet does nothing that anybody could see");
        // Arguments are joined by blanks; an author should not learn to add more.
        for (const QString& line : std::as_const(chart.done))
            QVERIFY2(!line.contains("  "_L1) && !line.contains(" ,"_L1), qPrintable(line));
        if (snippet.contains("Trade."_L1))
            QVERIFY2(!chart.done.filter(u"order"_s).isEmpty() || chart.done.contains(u"closeAll"_s),
                "it never trades");
    }

    void everyNameOfTheInterfaceIsExplained_data()
    {
        QTest::addColumn<QString>("name");
        for (const char* name : {"OnInit()", "OnTick()", "OnTimer()", "OnDeinit()", "Print(", "Comment(",
                 "Alert(", "Symbol()", "Digits()", "Point()", "Bid", "Ask", "Bars()", "Open(", "High(",
                 "Low(", "Close(", "iMA(", "iRSI(", "MODE_SMA", "MODE_EMA", "Account.balance",
                 "Account.equity", "Trade.buy(", "Trade.sell(", "Trade.closeAll()", "Positions.count()",
                 "EventSetTimer(", "EventKillTimer()", "sl", "tp", "slPoints", "tpPoints"})
            QTest::newRow(name) << QString::fromLatin1(name);
    }
    void everyNameOfTheInterfaceIsExplained()
    {
        QFETCH(QString, name);
        QVERIFY(guide().contains(u"<code>"_s + name));
    }

    void whatAnAuthorMustKnowIsSaid_data()
    {
        QTest::addColumn<QString>("sentence");
        for (const char* sentence :
            {"Tools → Open Experts Folder", "Restart the terminal", "in the Navigator under Expert Advisors",
                "Open a chart and double-click the expert", "Switch Algo Trading on", "Watch the Experts tab",
                "once, when the expert is attached", "on every price of the chart's symbol",
                "once, when the expert is detached or its chart closes", "10 to the power of minus Digits()",
                "Wilder's relative strength index, 0 to 100", "balance plus floating profit",
                "in the chart's top-left corner", "a highlighted line",
                "the same server, risk and slippage rules as manual trading",
                "and need Algo Trading to be on", "0.01 lots when none are given", "0 counts as not given",
                "Lots of 0, NaN, or a text that is no number become 0.01 and are traded",
                "one that begins with ALERT:", "sl wins over slPoints",
                "A buy measures its stop from the bid and its target from the ask",
                "both give the simple average", "No compiled experts and no native library imports",
                "No custom graphical indicators", "no access to files, the network or the user interface",
                "One expert per chart", "a regular expression that tries endless combinations",
                "uses up the memory, for which there is no limit",
                "put to convert the very object that it works on", "or to call itself, can end the terminal",
                "stands in the file with more than 500000 elements",
                "more than 30000 variables or bound arguments",
                "has at most 20000 characters, or 250 when it repeats a group",
                "No pending orders, partial closes or trading several symbols"})
            QTest::newRow(sentence) << QString::fromUtf8(sentence);
    }
    void whatAnAuthorMustKnowIsSaid()
    {
        QFETCH(QString, sentence);
        QString text = guide().remove(QRegularExpression(u"</?[a-z]+[^>]*>"_s)).simplified();
        QVERIFY(text.contains(sentence));
    }

    void theErrorTextsOfTheGuideAreTheRealOnes()
    {
        ExpertFixture chart;
        QVERIFY(!chart.load("function OnInit() {\n  var a;\n\n  a.b = 1;\n}"));
        QVERIFY2(chart.error.startsWith("OnInit: "_L1) && chart.error.endsWith("(line 4)"_L1),
            qPrintable(chart.error));
        QVERIFY(guide().contains(u"<code>OnInit: … (line 4)</code>"_s));
        QVERIFY(!chart.load("\n\n}"));
        QVERIFY2(chart.error.startsWith("SyntaxError at line 3: "_L1), qPrintable(chart.error));
        QVERIFY(guide().contains(u"<code>SyntaxError at line 3: …</code>"_s));
        QVERIFY(guide().contains(u"Stopped after error in OnTick"_s));
        QVERIFY(guide().contains(u"Algo Trading is OFF — order ignored. Enable it in the toolbar."_s));
        QVERIFY(guide().contains(u"Algo Trading is OFF — close ignored."_s));
        QVERIFY(guide().contains(u"Open a chart first, then attach the Expert Advisor."_s));
    }

    void whatTheGuideSaysIsMissingIsMissing_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QByteArray>("script");
        const auto row = [](const char* name, const char* script) {
            QTest::newRow(name) << QString::fromLatin1(name) << QByteArray(script);
        };
        row("async", "async function f() {}");
        row("class fields", "class A { x = 1 }");
        row("import", "import 'a';");
        row("setTimeout", "setTimeout(Print, 1);");
        row("object spread", "var a = {}; var b = {...a};");
        row("catch {", "try { throw 1; } catch { }");
        row("?\?=", "var a; a ?\?= 1;");
        row("10n", "var a = 10n;");
        row("<code>at</code>", "[1].at(0);");
        row("<code>flat</code>", "[[1]].flat();");
        row("replaceAll", "'a'.replaceAll('a', 'b');");
        row("matchAll", "'a'.matchAll(/a/g);");
        row("Object.fromEntries", "Object.fromEntries([]);");
        row("Intl", "Intl.NumberFormat;");
        row("Proxy", "new Proxy({}, {});");
        row("WeakMap", "new WeakMap();");
        row("WeakSet", "new WeakSet();");
        row("compile", "/a/.compile('b');");
        row("named groups", "/(?<n>a)/.exec('a').groups.n;");
        row("lookbehind", "if (!/(?<=a)b/.test('ab')) throw new Error('no match');");
    }
    void whatTheGuideSaysIsMissingIsMissing()
    {
        QFETCH(QString, name);
        QFETCH(QByteArray, script);
        const QString page = guide();
        const QString missing = page.mid(page.indexOf("Not available:"_L1))
                                    .section(u"lookbehind."_s, 0, 0, QString::SectionIncludeTrailingSep);
        QVERIFY(missing.contains(name));
        ExpertFixture chart;
        QVERIFY(!chart.load(script));
        // It is the language that refuses, not a slip of this test.
        QVERIFY2(chart.error.contains(" at line 1: "_L1) && !chart.error.contains("Insufficient"_L1),
            qPrintable(chart.error));
    }

    void whatTheGuideSaysOfTheLanguageHolds()
    {
        ExpertFixture chart;
        QCOMPARE(chart.printed("var none = null; Print(none?.a, none ?\? 5, 2 ** 3);"), u"undefined 5 8"_s);
        QCOMPARE(chart.printed("Print({ a: 1 }, JSON.stringify({ a: 1 }));"), u"[object Object] {\"a\":1}"_s);
    }

    void theTimerOfTheGuideRunsForAMinute()
    {
        const QStringList texts = snippets().filter(u"function OnTimer"_s);
        QCOMPARE(texts.size(), 1);
        ExpertFixture chart;
        // At the pace of ticks.
        QVERIFY2(chart.load(texts.constFirst().toUtf8()
                     + "var ended = false; EventKillTimer = function() { ended = true };"
                       "function OnTick() { OnTimer(); if (ended) Print('ended') }"),
            qPrintable(chart.error));
        for (int tick = 0; tick < 6; ++tick)
            chart.engine->tick();
        QCOMPARE(chart.done.size(), 8);
        QCOMPARE(chart.done[0], u"print A line every ten seconds"_s);
        QCOMPARE(chart.done[1], u"print Running for 10 seconds, equity 1010.00"_s);
        QCOMPARE(chart.done[6], u"print Running for 60 seconds, equity 1010.00"_s);
        QCOMPARE(chart.done[7], u"print ended"_s);
    }

    void lossesLeadOutOfTheMarketOnceOnly()
    {
        const QStringList texts = snippets().filter(u"start * 0.98"_s);
        QCOMPARE(texts.size(), 1);
        ExpertFixture chart;
        chart.setCloses(std::vector<double>(1500, 1.1));
        QVERIFY2(chart.load(texts.constFirst().toUtf8()), qPrintable(chart.error));
        chart.engine->tick();
        QCOMPARE(chart.done, QStringList(u"order BUY 0.01 0 0"_s));
        chart.positions = 1;
        chart.engine->tick();
        QCOMPARE(chart.done.size(), 1);
        chart.equity = 900.0;
        chart.engine->tick();
        chart.engine->tick();
        QCOMPARE(chart.done.mid(1), (QStringList{u"print Leaving at 900.00"_s, u"closeAll"_s}));
    }

    void thePageNeedsNothingFromOutside()
    {
        QVERIFY(!guide().contains("http:"_L1) && !guide().contains("https:"_L1));
        QVERIFY(
            !guide().contains("<script"_L1) && !guide().contains("<link"_L1) && !guide().contains("<img"_L1));
        QVERIFY(guide().contains("prefers-color-scheme: dark"_L1));
        QVERIFY(guide().contains(u"<title>Tavoran Terminal — Expert Advisors Guide</title>"_s));
        QVERIFY(guide().contains(u"Expert Advisors — Developer Guide"_s));
    }

    void everyLinkOfThePageLeadsSomewhere()
    {
        const QStringList targets = found(u"href=\"#([^\"]+)\""_s);
        QVERIFY(targets.size() > 5);
        for (const QString& target : targets)
            QVERIFY2(guide().contains(u"id=\"%1\""_s.arg(target)), qPrintable(target));
    }
};

TAVORAN_TEST(tst_ExpertGuide)
#include "tst_ExpertGuide.moc"
