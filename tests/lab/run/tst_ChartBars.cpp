#include "lab/run/ChartBars.h"
#include "support/TestMain.h"

using lab::ChartBars;

/// The bars that a run keeps for looking at.
class tst_ChartBars final : public QObject {
    Q_OBJECT

    /// Bar after bar, each a point higher.
    static ChartBars rising(std::size_t count)
    {
        ChartBars bars;
        for (std::size_t number = 0; number < count; ++number) {
            const auto price = static_cast<double>(number);
            bars.add({static_cast<qint64>(number), price, price + 2, price - 3, price + 1, 1});
        }
        return bars;
    }

private Q_SLOTS:
    void asManyAsCanBeKeptStayAsTheyAre()
    {
        const ChartBars bars = rising(ChartBars::most);
        QCOMPARE(bars.count(), std::uint64_t{ChartBars::most});
        QCOMPARE(bars.rows().size(), ChartBars::most);
        QCOMPARE(bars.rows().back().open, static_cast<double>(ChartBars::most - 1));
    }

    void neighboursOfMoreAreJoined_data()
    {
        QTest::addColumn<std::size_t>("count");
        QTest::addColumn<std::size_t>("group");
        QTest::newRow("one more") << ChartBars::most + 1 << std::size_t{2};
        QTest::newRow("pairs") << 2 * ChartBars::most << std::size_t{2};
        QTest::newRow("more than pairs") << 2 * ChartBars::most + 7 << std::size_t{4};
    }

    void neighboursOfMoreAreJoined()
    {
        QFETCH(std::size_t, count);
        QFETCH(std::size_t, group);
        const ChartBars bars = rising(count);
        QCOMPARE(bars.count(), std::uint64_t{count});
        QCOMPARE(bars.rows().size(), (count + group - 1) / group);
        for (std::size_t row = 0; row < bars.rows().size(); ++row) {
            const lab::BarRow& bar = bars.rows()[row];
            const auto first = static_cast<double>(row * group);
            const auto last = static_cast<double>(std::min(count, (row + 1) * group) - 1);
            QCOMPARE(bar.time, static_cast<qint64>(row * group));
            QCOMPARE(bar.open, first);
            QCOMPARE(bar.high, last + 2);
            QCOMPARE(bar.low, first - 3);
            QCOMPARE(bar.close, last + 1);
        }
    }
};

TAVORAN_TEST(tst_ChartBars)
#include "tst_ChartBars.moc"
