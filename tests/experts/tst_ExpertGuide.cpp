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

    void theErrorTextsOfTheGuideAreTheRealOnes()
    {
        ExpertFixture chart;
        QVERIFY(!chart.load("function OnInit() {\n  var a;\n\n  a.b = 1;\n}"));
        QVERIFY(guide().contains(u"OnInit:"_s) && guide().contains(u"(line 4)"_s));
        QVERIFY(guide().contains(u"Stopped after error in OnTick"_s));
        QVERIFY(guide().contains(u"SyntaxError at line"_s));
        QVERIFY(guide().contains(u"Algo Trading is OFF — order ignored. Enable it in the toolbar."_s));
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

TAVORAN_TEST_MAIN(tst_ExpertGuide)
#include "tst_ExpertGuide.moc"
