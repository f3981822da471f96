#include "chart/layers/ChartFrame.h"
#include "chart/window/ChartState.h"
#include "chart/window/ChartWidget.h"
#include "support/TestMain.h"

#include <QJsonArray>

using namespace Qt::StringLiterals;

namespace {

const QColor firstColor(0xff, 0xd5, 0x4f);

QList<MovingAverageSpec> read(const QJsonArray& averages)
{
    return ChartState::fromJson({{u"mas"_s, averages}}).averages;
}

MovingAverageSpec readOne(const QJsonObject& average)
{
    const QList<MovingAverageSpec> averages = read({average});
    return averages.size() == 1 ? averages.first() : MovingAverageSpec{IndicatorKind::Sma, -77, {}};
}

} // namespace

class TestChartStateAverages final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void averages_are_saved_with_type_period_and_colour()
    {
        ChartWidget chart;
        chart.setMovingAverages(
            {{IndicatorKind::Ema, 21, QColor(0x4f, 0xc3, 0xf7)}, {IndicatorKind::Sma, 50, QColor(Qt::red)}});
        chart.setPane(IndicatorKind::Rsi, true, 9);
        const QJsonObject json = ChartState::of(chart).toJson();
        const QJsonArray expected{
            QJsonObject{{u"type"_s, u"ema"_s}, {u"period"_s, 21}, {u"color"_s, u"#4fc3f7"_s}},
            QJsonObject{{u"type"_s, u"sma"_s}, {u"period"_s, 50}, {u"color"_s, u"#ff0000"_s}}};
        QCOMPARE(json.value("mas"_L1).toArray(), expected);
        QCOMPARE(json.value("rsi"_L1), QJsonValue(true));
        QCOMPARE(json.value("rsiPeriod"_L1), QJsonValue(9));
    }

    void an_average_is_exponential_only_when_its_type_says_so_data()
    {
        QTest::addColumn<QJsonValue>("type");
        QTest::addColumn<bool>("exponential");
        QTest::newRow("ema") << QJsonValue(u"ema"_s) << true;
        QTest::newRow("sma") << QJsonValue(u"sma"_s) << false;
        QTest::newRow("capitals") << QJsonValue(u"EMA"_s) << false;
        QTest::newRow("unknown") << QJsonValue(u"no such kind"_s) << false;
        QTest::newRow("one with a pane") << QJsonValue(u"rsi"_s) << false;
        QTest::newRow("number") << QJsonValue(1) << false;
        QTest::newRow("missing") << QJsonValue(QJsonValue::Undefined) << false;
    }
    void an_average_is_exponential_only_when_its_type_says_so()
    {
        QFETCH(QJsonValue, type);
        QFETCH(bool, exponential);
        QJsonObject json{{u"period"_s, 30}};
        json.insert(u"type"_s, type);
        QCOMPARE(readOne(json),
            (MovingAverageSpec{exponential ? IndicatorKind::Ema : IndicatorKind::Sma, 30, firstColor}));
    }

    void a_colour_that_is_none_is_the_first_of_the_palette_data()
    {
        QTest::addColumn<QJsonValue>("color");
        QTest::newRow("missing") << QJsonValue(QJsonValue::Undefined);
        QTest::newRow("empty") << QJsonValue(u""_s);
        QTest::newRow("no name") << QJsonValue(u"greenish"_s);
        QTest::newRow("bad digits") << QJsonValue(u"#12345z"_s);
        QTest::newRow("number") << QJsonValue(255);
        QTest::newRow("object") << QJsonValue(QJsonObject());
    }
    void a_colour_that_is_none_is_the_first_of_the_palette()
    {
        QFETCH(QJsonValue, color);
        QJsonObject json{{u"type"_s, u"sma"_s}, {u"period"_s, 50}};
        json.insert(u"color"_s, color);
        QCOMPARE(readOne(json), (MovingAverageSpec{IndicatorKind::Sma, 50, firstColor}));
    }

    void a_see_through_colour_is_made_solid()
    {
        QCOMPARE(readOne({{u"color"_s, u"#80010203"_s}}).color, QColor(1, 2, 3));
        ChartWidget chart;
        chart.setMovingAverages(
            {{IndicatorKind::Sma, 5, QColor(1, 2, 3, 4)}, {IndicatorKind::Sma, 5, QColor()}});
        QCOMPARE(chart.movingAverages().at(0).color, QColor(1, 2, 3));
        QCOMPARE(chart.movingAverages().at(1).color, firstColor);
    }

    void periods_have_a_defined_outcome_data()
    {
        QTest::addColumn<QJsonValue>("period");
        QTest::addColumn<int>("expected");
        QTest::newRow("usual") << QJsonValue(400) << 400;
        QTest::newRow("zero") << QJsonValue(0) << 1;
        QTest::newRow("negative") << QJsonValue(-5) << 1;
        QTest::newRow("a thousand million") << QJsonValue(1'000'000'000) << 1'000'000'000;
        QTest::newRow("beyond an integer") << QJsonValue(1e18) << 20;
        QTest::newRow("fraction") << QJsonValue(2.5) << 20;
        QTest::newRow("text") << QJsonValue(u"30"_s) << 20;
        QTest::newRow("null") << QJsonValue() << 20;
        QTest::newRow("missing") << QJsonValue(QJsonValue::Undefined) << 20;
    }
    void periods_have_a_defined_outcome()
    {
        QFETCH(QJsonValue, period);
        QFETCH(int, expected);
        QJsonObject json{{u"type"_s, u"ema"_s}};
        json.insert(u"period"_s, period);
        QCOMPARE(readOne(json), (MovingAverageSpec{IndicatorKind::Ema, expected, firstColor}));
    }

    void what_is_no_object_is_left_out_and_the_rest_is_kept()
    {
        const QList<MovingAverageSpec> averages = read({1, QJsonValue(), u"ema"_s, QJsonArray{QJsonObject()},
            QJsonObject{{u"period"_s, 7}}, true, QJsonObject{{u"period"_s, 8}}});
        QCOMPARE(averages.size(), 2);
        QCOMPARE(averages.at(0).period, 7);
        QCOMPARE(averages.at(1).period, 8);
    }

    void unknown_keys_are_passed_over()
    {
        QCOMPARE(readOne({{u"period"_s, 7}, {u"width"_s, 3}, {u"kind"_s, u"ema"_s}}),
            (MovingAverageSpec{IndicatorKind::Sma, 7, firstColor}));
    }

    void of_thousands_of_averages_the_first_64_are_kept()
    {
        QJsonArray averages;
        for (int i = 1; i <= 5000; ++i)
            averages.append(QJsonObject{{u"period"_s, i}});
        const QList<MovingAverageSpec> kept = read(averages);
        QCOMPARE(kept.size(), 64);
        QCOMPARE(kept.first().period, 1);
        QCOMPARE(kept.last().period, 64);
    }

    void a_state_without_averages_removes_those_of_the_chart()
    {
        ChartWidget chart;
        chart.setMovingAverages({{IndicatorKind::Sma, 5, Qt::red}});
        ChartState::fromJson({{u"mas"_s, u"none"_s}}).applyTo(chart);
        QVERIFY(chart.movingAverages().isEmpty());
    }

    void absurd_periods_are_shown_without_a_line()
    {
        ChartWidget chart;
        chart.resize(400, 300);
        chart.setCandles({{0, 1, 2, 1, 2, 1}, {900'000, 1, 2, 1, 2, 1}});
        ChartState::fromJson({{u"mas"_s, QJsonArray{QJsonObject{{u"period"_s, 1'000'000'000}}}},
                                 {u"rsi"_s, true}, {u"rsiPeriod"_s, 1'000'000'000}})
            .applyTo(chart);
        QCOMPARE(chart.pane(IndicatorKind::Rsi).period, 1'000'000'000);
        const ChartFrame frame = chart.frame();
        QCOMPARE(frame.averages.size(), 1);
        QVERIFY(frame.averageValues.front().empty());
        QVERIFY(frame.paneValues.front().empty());
        QVERIFY(!chart.grab().isNull());
    }
};

TAVORAN_TEST(TestChartStateAverages)
#include "tst_ChartStateAverages.moc"
