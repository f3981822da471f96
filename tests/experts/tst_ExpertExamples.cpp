#include "experts/ExpertFixture.h"
#include "support/TestMain.h"

#include <cmath>

using namespace Qt::StringLiterals;

/// The example experts on a market that swings: they open, close, and open again.
class tst_ExpertExamples final : public QObject {
    Q_OBJECT

    std::unique_ptr<ExpertFixture> m_chart;

    void trade(const QString& example)
    {
        m_chart = std::make_unique<ExpertFixture>();
        QVERIFY2(m_chart->loadFile(u":/examples/"_s + example), qPrintable(m_chart->error));
        swing();
    }

    /// The script with its own inputs replaced by others, as a trader would do that.
    void tradeDocumented(const QString& example, const QList<std::pair<QByteArray, QByteArray>>& changes)
    {
        QFile file(QStringLiteral(PROJECT_ROOT "/docs/examples/") + example);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QByteArray text = file.readAll();
        for (const auto& [from, to] : changes) {
            QCOMPARE(text.count(from), 1);
            text.replace(from, to);
        }
        m_chart = std::make_unique<ExpertFixture>();
        QVERIFY2(m_chart->load(text), qPrintable(m_chart->error));
        swing();
    }

    void swing()
    {
        std::vector<double> closes;
        for (int bar = 0; bar < 500; ++bar) {
            closes.push_back(1.1 + 0.02 * std::sin(bar * 0.06) + 0.0005 * std::sin(bar * 1.3));
            m_chart->setCloses(closes);
            for (Candle& candle : m_chart->candles) {
                candle.high = candle.close + 0.0003;
                candle.low = candle.close - 0.0003;
            }
            m_chart->bid = closes.back();
            m_chart->ask = m_chart->bid + 0.0002;
            for (int tick = 0; tick < 3; ++tick) {
                const qsizetype before = m_chart->done.size();
                m_chart->engine->tick();
                if (m_chart->done.size() == before)
                    continue;
                m_chart->positions = m_chart->done.last() == "closeAll"_L1 ? 0 : 1;
            }
        }
        m_chart->engine->stop();
        QCOMPARE(m_chart->messages.size(), 1);
    }

    /// Texts and actions in their order, orders without their levels.
    QStringList lines() const
    {
        QStringList lines;
        for (const QString& line : std::as_const(m_chart->done))
            lines.append(line.startsWith("order"_L1) ? line.section(u' ', 0, 2) : line);
        return lines;
    }

private Q_SLOTS:
    void theCrossingOfAveragesTradesBackAndForth()
    {
        trade(u"MA_Cross.js"_s);
        const QStringList said = lines();
        QCOMPARE(said.first(), u"print MA_Cross started on EURUSD  (EMA 10/30)"_s);
        QCOMPARE(said.last(), u"print MA_Cross stopped"_s);
        QVERIFY(said.count(u"order BUY 0.1"_s) >= 3);
        QVERIFY(said.count(u"closeAll"_s) >= 3);
        QCOMPARE(said[1], u"print Fast crossed above slow → BUY"_s);
        QCOMPARE(said[2], u"order BUY 0.1"_s);
        QCOMPARE(said[3], u"print Fast crossed below slow → close all"_s);
        QCOMPARE(said[4], u"closeAll"_s);
    }

    void theRsiReversalTradesBackAndForth()
    {
        trade(u"RSI_Reversal.js"_s);
        const QStringList said = lines();
        QCOMPARE(said.first(), u"print RSI_Reversal started on EURUSD  (period 14)"_s);
        QCOMPARE(said.last(), u"print RSI_Reversal stopped"_s);
        QVERIFY(said.count(u"order BUY 0.1"_s) >= 3);
        QVERIFY(said.count(u"closeAll"_s) >= 3);
        QVERIFY2(said[1].startsWith(u"print RSI left oversold ("_s) && said[1].endsWith(u") → BUY"_s),
            qPrintable(said[1]));
        QVERIFY2(said[3].startsWith(u"print RSI overbought ("_s) && said[3].endsWith(u") → close"_s),
            qPrintable(said[3]));
    }

    void theRangeReversionSellsHighAndBuysLow()
    {
        tradeDocumented(u"Range_Reversion.js"_s, {});
        const QStringList said = lines();
        QCOMPARE(said.first(), u"print Range_Reversion started on EURUSD  (40 bars)"_s);
        QCOMPARE(said.last(), u"print Range_Reversion stopped"_s);
        QVERIFY(said.contains(u"order BUY 0.1"_s));
        const QString order = m_chart->done.filter(u"order BUY"_s).first();
        QVERIFY(order.section(u' ', 3, 3).toDouble() < order.section(u' ', 4, 4).toDouble());
    }

    void theSessionBreakoutTradesAtBusyHoursOnly()
    {
        // Hours of the machine's clock, which is asked here: all of them count, then none.
        tradeDocumented(u"Session_Breakout.js"_s,
            {{"FromHour = 7;", "FromHour = 0;"}, {"UntilHour = 16;", "UntilHour = 24;"},
                {"CloseHour = 20;", "CloseHour = 24;"}, {"MaxPoints = 1500;", "MaxPoints = 9999;"}});
        QCOMPARE(lines().filter(u"order"_s).size(), 1); // not another one within the same minute
        QCOMPARE(lines().last(), u"print Session_Breakout stopped"_s);
        tradeDocumented(u"Session_Breakout.js"_s, {{"UntilHour = 16;", "UntilHour = 0;"}});
        QVERIFY(lines().filter(u"order"_s).isEmpty());
    }

    void theLevelsOfTheExamplesAreInPoints()
    {
        trade(u"MA_Cross.js"_s);
        const QString order = m_chart->done.filter(u"order"_s).first();
        const double sl = order.section(u' ', 3, 3).toDouble();
        const double tp = order.section(u' ', 4, 4).toDouble();
        QVERIFY(std::abs((tp - sl) - (0.009 + 0.0002)) < 1e-9);
    }
};

TAVORAN_TEST(tst_ExpertExamples)
#include "tst_ExpertExamples.moc"
