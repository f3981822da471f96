#include "chart/data/ChartLook.h"

#include "support/TestMain.h"

class TestChartLook final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void a_number_means_its_type()
    {
        for (const ChartType type : {ChartType::Candles, ChartType::Bars, ChartType::Line})
            QCOMPARE(chartTypeOf(static_cast<int>(type)), type);
    }

    void an_unknown_number_means_candles()
    {
        for (const int number : {-1, 3, 99})
            QCOMPARE(chartTypeOf(number), ChartType::Candles);
    }
};

TAVORAN_TEST(TestChartLook)
#include "tst_ChartLook.moc"
