#include "support/TestMain.h"

#include <QJSEngine>

using namespace Qt::StringLiterals;

namespace {

/// The trading interface as scripts see it, with values that a case sets beforehand.
constexpr QStringView interface = uR"(
var said = [], calls = [], bars = 100, count = 0, averages = {}, rsi = {};
var MODE_SMA = 0, MODE_EMA = 1;
function Print(text) { said.push(text); }
function Symbol() { return "EURUSD"; }
function Bars() { return bars; }
function iMA(period, method, shift) { return averages[period + "/" + method + "/" + shift]; }
function iRSI(period, shift) { return rsi[period + "/" + shift]; }
var Positions = { count: function() { return count; } };
var Trade = {
    buy: function(lots, opts) { calls.push("buy " + lots + " " + JSON.stringify(opts)); },
    closeAll: function() { calls.push("closeAll"); }
};
)";

} // namespace

class TestExampleExperts : public QObject {
    Q_OBJECT

    void load(const QString& name)
    {
        m_engine = std::make_unique<QJSEngine>();
        run(interface.toString());
        QFile file(u":/examples/"_s + name);
        QVERIFY(file.open(QIODevice::ReadOnly));
        run(QString::fromUtf8(file.readAll()));
    }

    QJSValue run(const QString& script)
    {
        QJSValue result = m_engine->evaluate(script);
        if (result.isError())
            qWarning() << result.toString();
        return result;
    }

    QString calls() { return run(u"calls.join('; ')"_s).toString(); }
    QString said() { return run(u"said.join('; ')"_s).toString(); }

    void tickWithAverages(double f1, double s1, double f2, double s2)
    {
        run(u"averages = {'10/1/1': %1, '30/1/1': %2, '10/1/2': %3, '30/1/2': %4}; OnTick()"_s.arg(
            QString::number(f1), QString::number(s1), QString::number(f2), QString::number(s2)));
    }

    void tickWithRsi(double r1, double r2)
    {
        run(u"rsi = {'14/1': %1, '14/2': %2}; OnTick()"_s.arg(QString::number(r1), QString::number(r2)));
    }

private Q_SLOTS:
    void movingAveragesAnnounceThemselves()
    {
        load(u"MA_Cross.js"_s);
        QVERIFY(run(u"Fast === 10 && Slow === 30 && Lots === 0.1"_s).toBool());
        QVERIFY(run(u"OnInit() === true"_s).toBool());
        run(u"OnDeinit()"_s);
        QCOMPARE(said(), u"MA_Cross started on EURUSD  (EMA 10/30); MA_Cross stopped"_s);
    }

    void aCrossUpwardsBuysOnce()
    {
        load(u"MA_Cross.js"_s);
        tickWithAverages(1.2, 1.1, 1.0, 1.0);
        QCOMPARE(calls(), u"buy 0.1 {\"slPoints\":300,\"tpPoints\":600}"_s);
        QCOMPARE(said(), u"Fast crossed above slow → BUY"_s);
        run(u"count = 1"_s);
        tickWithAverages(1.2, 1.1, 1.0, 1.0);
        QCOMPARE(run(u"calls.length"_s).toInt(), 1);
    }

    void aCrossDownwardsClosesWhatIsOpen()
    {
        load(u"MA_Cross.js"_s);
        tickWithAverages(1.0, 1.1, 1.2, 1.2);
        QCOMPARE(calls(), QString());
        run(u"count = 2"_s);
        tickWithAverages(1.0, 1.1, 1.2, 1.2);
        QCOMPARE(calls(), u"closeAll"_s);
        QCOMPARE(said(), u"Fast crossed below slow → close all"_s);
    }

    void withoutACrossNothingIsDone()
    {
        load(u"MA_Cross.js"_s);
        tickWithAverages(1.3, 1.1, 1.2, 1.1);
        tickWithAverages(1.1, 1.1, 1.1, 1.1);
        run(u"count = 1"_s);
        tickWithAverages(1.0, 1.1, 1.0, 1.1);
        tickWithAverages(1.1, 1.1, 1.1, 1.1);
        QCOMPARE(calls(), QString());
        QCOMPARE(said(), QString());
    }

    void movingAveragesWaitForEnoughBars()
    {
        load(u"MA_Cross.js"_s);
        run(u"bars = 31"_s);
        tickWithAverages(1.2, 1.1, 1.0, 1.0);
        QCOMPARE(calls(), QString());
        run(u"bars = 32"_s);
        tickWithAverages(1.2, 1.1, 1.0, 1.0);
        QCOMPARE(run(u"calls.length"_s).toInt(), 1);
    }

    void theRsiAnnouncesItself()
    {
        load(u"RSI_Reversal.js"_s);
        QVERIFY(run(u"Period === 14 && Oversold === 30 && Overbought === 70 && Lots === 0.1"_s).toBool());
        QVERIFY(run(u"OnInit() === true"_s).toBool());
        run(u"OnDeinit()"_s);
        QCOMPARE(said(), u"RSI_Reversal started on EURUSD  (period 14); RSI_Reversal stopped"_s);
    }

    void leavingOversoldBuys()
    {
        load(u"RSI_Reversal.js"_s);
        tickWithRsi(30.46, 30);
        QCOMPARE(calls(), u"buy 0.1 {\"slPoints\":400,\"tpPoints\":800}"_s);
        QCOMPARE(said(), u"RSI left oversold (30.5) → BUY"_s);
    }

    void oversoldAloneDoesNothing()
    {
        load(u"RSI_Reversal.js"_s);
        tickWithRsi(30, 25);
        tickWithRsi(45, 31);
        run(u"count = 1"_s);
        tickWithRsi(31, 29);
        QCOMPARE(calls(), QString());
    }

    void overboughtCloses()
    {
        load(u"RSI_Reversal.js"_s);
        tickWithRsi(70, 60);
        QCOMPARE(calls(), QString());
        run(u"count = 1"_s);
        tickWithRsi(69.96, 75); // what is shown as 70.0 is not yet 70
        QCOMPARE(calls(), QString());
        tickWithRsi(70, 60);
        QCOMPARE(calls(), u"closeAll"_s);
        QCOMPARE(said(), u"RSI overbought (70.0) → close"_s);
    }

    void theRsiWaitsForEnoughBars()
    {
        load(u"RSI_Reversal.js"_s);
        run(u"bars = 15"_s);
        tickWithRsi(31, 29);
        QCOMPARE(calls(), QString());
        run(u"bars = 16"_s);
        tickWithRsi(31, 29);
        QCOMPARE(run(u"calls.length"_s).toInt(), 1);
    }

private:
    std::unique_ptr<QJSEngine> m_engine;
};

TAVORAN_TEST(TestExampleExperts)
#include "tst_ExampleExperts.moc"
