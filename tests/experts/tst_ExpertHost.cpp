#include "experts/ExpertHost.h"

#include "experts/ExpertFixture.h"
#include "support/TestMain.h"

#include <QJSEngine>
#include <QMetaMethod>

#include <cmath>
#include <limits>
#include <numeric>

using namespace Qt::StringLiterals;

namespace {

constexpr double noNumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

std::vector<double> rising(int count)
{
    std::vector<double> closes(static_cast<std::size_t>(count));
    std::iota(closes.begin(), closes.end(), 1.0);
    return closes;
}

} // namespace

class tst_ExpertHost final : public QObject {
    Q_OBJECT

    ExpertFixture m_chart;
    std::unique_ptr<ExpertHost> m_host;

    void createHost()
    {
        m_host
            = std::make_unique<ExpertHost>(u"EURUSD"_s, m_chart.digits, m_chart.candles, m_chart.callbacks());
    }

private Q_SLOTS:
    void init()
    {
        m_chart.done.clear();
        m_chart.setCloses({});
        createHost();
    }

    void theSymbolAndItsPointAreKnown()
    {
        QCOMPARE(m_host->symbol(), u"EURUSD"_s);
        QCOMPARE(m_host->digits(), 5);
        QCOMPARE(m_host->point(), 0.00001);
        m_host->setDigits(3);
        QCOMPARE(m_host->digits(), 3);
        QCOMPARE(m_host->point(), 0.001);
    }

    void pricesAndFiguresAreReadAfresh()
    {
        QCOMPARE(m_host->bid(), 1.1);
        m_chart.bid = 1.2;
        m_chart.ask = 1.3;
        m_chart.balance = 5.0;
        m_chart.equity = 6.0;
        m_chart.positions = 7;
        QCOMPARE(m_host->bid(), 1.2);
        QCOMPARE(m_host->ask(), 1.3);
        QCOMPARE(m_host->balance(), 5.0);
        QCOMPARE(m_host->equity(), 6.0);
        QCOMPARE(m_host->positionsCount(), 7);
    }

    void shiftZeroIsTheFormingBar()
    {
        m_chart.setCloses({1.0, 2.0, 3.0});
        QCOMPARE(m_host->bars(), 3);
        QCOMPARE(m_host->close(0), 3.0);
        QCOMPARE(m_host->close(2), 1.0);
        QCOMPARE(m_host->open(1), 1.9);
        QCOMPARE(m_host->high(1), 2.2);
        QCOMPARE(m_host->low(1), 1.7);
    }

    void thereAreNoBarsOutsideTheList_data()
    {
        QTest::addColumn<double>("shift");
        QTest::newRow("one too far") << 3.0;
        QTest::newRow("negative") << -1.0;
        QTest::newRow("not a number") << noNumber;
        QTest::newRow("infinite") << infinity;
        QTest::newRow("would wrap to one") << 4294967297.0;
        QTest::newRow("absurd") << 1e300;
    }
    void thereAreNoBarsOutsideTheList()
    {
        QFETCH(double, shift);
        m_chart.setCloses({1.0, 2.0, 3.0});
        QCOMPARE(m_host->close(shift), 0.0);
        QCOMPARE(m_host->open(shift), 0.0);
        QCOMPARE(m_host->high(shift), 0.0);
        QCOMPARE(m_host->low(shift), 0.0);
        QCOMPARE(m_host->ma(1, 0, shift), 0.0);
        QCOMPARE(m_host->rsi(1, shift), 0.0);
    }

    void theChartsOwnListIsRead()
    {
        m_chart.setCloses({1.0});
        m_chart.candles.back().close = 1.5;
        QCOMPARE(m_host->close(0), 1.5);
        m_chart.setCloses(rising(2000));
        QCOMPARE(m_host->bars(), 2000);
    }

    void anAverageNeedsItsBars()
    {
        m_chart.setCloses(rising(9));
        QCOMPARE(m_host->ma(10, 0, 0), 0.0);
        m_chart.setCloses(rising(10));
        QCOMPARE(m_host->ma(10, 0, 0), 5.5);
        QCOMPARE(m_host->ma(10, 0, 1), 0.0);
        QCOMPARE(m_host->ma(3, 0, 2), 7.0);
    }

    void theExponentialAverageEqualsTheSimpleOneOnPurpose()
    {
        std::vector<double> closes = rising(80);
        for (double& close : closes)
            close = 1.0 + std::sin(close * 0.7) * 0.05;
        m_chart.setCloses(closes);
        for (int period = 1; period <= 40; ++period) {
            for (int shift = 0; shift < 40; ++shift)
                QCOMPARE(m_host->ma(period, 1, shift), m_host->ma(period, 0, shift));
        }
        QCOMPARE(m_host->ma(20, 17, 3), m_host->ma(20, 0, 3));
    }

    void aPeriodBelowOneGivesNothing_data()
    {
        QTest::addColumn<double>("period");
        QTest::newRow("zero") << 0.0;
        QTest::newRow("negative") << -5.0;
        QTest::newRow("not a number") << noNumber;
        QTest::newRow("infinite") << infinity;
        QTest::newRow("would wrap to one") << 4294967297.0;
    }
    void aPeriodBelowOneGivesNothing()
    {
        QFETCH(double, period);
        m_chart.setCloses(rising(30));
        QCOMPARE(m_host->ma(period, 0, 0), 0.0);
        QCOMPARE(m_host->rsi(period, 0), 0.0);
    }

    void theRsiNeedsOneBarMoreThanItsPeriod()
    {
        m_chart.setCloses(rising(14));
        QCOMPARE(m_host->rsi(14, 0), 0.0);
        m_chart.setCloses(rising(15));
        QCOMPARE(m_host->rsi(14, 0), 100.0);
    }

    void theRsiOfPlainAverages()
    {
        // Gains 2 and 1, losses 1: 100 - 100 / (1 + 3).
        m_chart.setCloses({9.0, 1.0, 3.0, 2.0, 3.0});
        QCOMPARE(m_host->rsi(3, 0), 75.0);
        QCOMPARE(m_host->rsi(4, 0), 25.0);
        QCOMPARE(m_host->rsi(1, 1), 0.0);
        // One bar back: gain 2, loss 1.
        QCOMPARE(m_host->rsi(2, 1), 100.0 - 100.0 / 3.0);
    }

    void aRiseWithoutALossIsExactlyOneHundred()
    {
        m_chart.setCloses({1.0, 1.0, 1.5, 1.5, 2.0});
        QCOMPARE(m_host->rsi(4, 0), 100.0);
        m_chart.setCloses({1.5, 1.5, 1.5});
        QCOMPARE(m_host->rsi(2, 0), 100.0);
    }

    void indicatorsFollowEachTick()
    {
        m_chart.setCloses(rising(30));
        for (int tick = 0; tick < 20; ++tick) {
            m_chart.candles.back().close = 30.0 - tick;
            const ExpertHost fresh(u"EURUSD"_s, 5, m_chart.candles, {});
            QCOMPARE(m_host->ma(10, 0, 0), const_cast<ExpertHost&>(fresh).ma(10, 0, 0));
            QCOMPARE(m_host->rsi(14, 0), const_cast<ExpertHost&>(fresh).rsi(14, 0));
        }
    }

    void ordersGoOutAsTheyAre()
    {
        m_host->buy(0.1, 1.05, 1.2);
        m_host->sell(2, 0, 0);
        m_host->closeAll();
        QCOMPARE(
            m_chart.done, QStringList({u"order BUY 0.1 1.05 1.2"_s, u"order SELL 2 0 0"_s, u"closeAll"_s}));
    }

    void textsGoOutAndHugeOnesAreCut()
    {
        m_host->print(u"a"_s);
        m_host->comment(u""_s);
        m_host->alert(u"c"_s);
        QCOMPARE(m_chart.done, QStringList({u"print a"_s, u"comment "_s, u"alert c"_s}));
        m_chart.done.clear();
        m_host->print(QString(1'000'000, u'x'));
        QCOMPARE(m_chart.done.first().size(), ExpertHost::longestText + 1 + 6);
    }

    void timersAreAskedForInWholeSeconds()
    {
        const QSignalSpy asked(m_host.get(), &ExpertHost::timerRequested);
        const QSignalSpy killed(m_host.get(), &ExpertHost::timerKilled);
        m_host->setTimer(5);
        m_host->setTimer(-2);
        m_host->setTimer(1.9);
        m_host->setTimer(4294967297.0);
        m_host->setTimer(noNumber);
        m_host->killTimer();
        QCOMPARE(asked.size(), 4);
        QCOMPARE(asked[0][0].toInt(), 5);
        QCOMPARE(asked[1][0].toInt(), -2);
        QCOMPARE(asked[2][0].toInt(), 1);
        QCOMPARE(asked[3][0].toInt(), std::numeric_limits<int>::max());
        QCOMPARE(killed.size(), 1);
    }

    void anUnsetCallbackDoesNothingAndGivesZero()
    {
        ExpertHost host(u"EURUSD"_s, 5, m_chart.candles, {});
        host.print(u"a"_s);
        host.comment(u"a"_s);
        host.alert(u"a"_s);
        host.buy(1, 0, 0);
        host.sell(1, 0, 0);
        host.closeAll();
        QCOMPARE(host.bid(), 0.0);
        QCOMPARE(host.ask(), 0.0);
        QCOMPARE(host.balance(), 0.0);
        QCOMPARE(host.equity(), 0.0);
        QCOMPARE(host.positionsCount(), 0);
    }

    void withoutAChartThereIsNothingAndNothingHappens()
    {
        m_chart.setCloses(rising(20));
        m_host->disconnectChart();
        m_host->buy(1, 0, 0);
        m_host->print(u"a"_s);
        QCOMPARE(m_chart.done, QStringList());
        QCOMPARE(m_host->bars(), 0);
        QCOMPARE(m_host->close(0), 0.0);
        QCOMPARE(m_host->ma(5, 0, 0), 0.0);
        QCOMPARE(m_host->bid(), 0.0);
    }

    void heldActionsHappenLaterAndInOrder()
    {
        m_host->holdActions(true);
        m_host->print(u"a"_s);
        m_host->buy(1, 0, 0);
        m_host->closeAll();
        QCOMPARE(m_chart.done, QStringList());
        QTRY_COMPARE(m_chart.done, QStringList({u"print a"_s, u"order BUY 1 0 0"_s, u"closeAll"_s}));
    }

    void heldActionsGoWithTheChart()
    {
        m_host->holdActions(true);
        m_host->buy(1, 0, 0);
        m_host->disconnectChart();
        QCoreApplication::processEvents();
        QCOMPARE(m_chart.done, QStringList());
    }

    void theHostHasNoPropertiesOfItsOwn()
    {
        QCOMPARE(ExpertHost::staticMetaObject.propertyCount(), QObject::staticMetaObject.propertyCount());
    }

    void theInvokableMethodsAreTheKnownOnes()
    {
        const QMetaObject& type = ExpertHost::staticMetaObject;
        QStringList names;
        for (int i = type.methodOffset(); i < type.methodCount(); ++i) {
            if (type.method(i).methodType() == QMetaMethod::Method)
                names.append(QString::fromLatin1(type.method(i).name()));
            else
                QCOMPARE(type.method(i).methodType(), QMetaMethod::Signal);
        }
        names.sort();
        QCOMPARE(names.join(u' '),
            u"alert ask balance bars bid buy close closeAll comment digits equity high killTimer low ma open "
            "point positionsCount print rsi sell setTimer symbol"_s);
    }
};

TAVORAN_TEST(tst_ExpertHost)
#include "tst_ExpertHost.moc"
