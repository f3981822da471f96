#include "chart/data/IndicatorTable.h"
#include "chart/window/ChartState.h"
#include "chart/window/ChartWidget.h"
#include "support/PaintCounter.h"
#include "support/TestMain.h"

#include <QJsonArray>
#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace {

/// Leaves out panes other than the RSI's that are as they are on a new chart.
QJsonObject withoutUntouchedPanes(QJsonObject saved)
{
    for (const IndicatorPane& pane : hiddenPanes()) {
        const QString key = indicatorRow(pane.kind).key;
        const bool untouched = saved.value(key) == QJsonValue(false)
            && saved.value(key + u"Period"_s) == QJsonValue(pane.period);
        if (pane.kind != IndicatorKind::Rsi && untouched) {
            saved.remove(key);
            saved.remove(key + u"Period"_s);
        }
    }
    return saved;
}

} // namespace

class tst_ChartState final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aNewChartSavesTheDefaults()
    {
        const ChartWidget chart;
        const QJsonObject expected{{u"mas"_s, QJsonArray()}, {u"rsi"_s, false}, {u"rsiPeriod"_s, 14},
            {u"chartType"_s, 0}, {u"chartShift"_s, false}, {u"autoScroll"_s, true},
            {u"colors"_s,
                QJsonObject{{u"bg"_s, u"#000000"_s}, {u"grid"_s, u"#232323"_s}, {u"axis"_s, u"#c0c0c0"_s},
                    {u"up"_s, u"#00e600"_s}, {u"down"_s, u"#ffffff"_s}, {u"line"_s, u"#4fc3f7"_s},
                    {u"vol"_s, u"#2f6b3f"_s}}}};
        QCOMPARE(withoutUntouchedPanes(ChartState::of(chart).toJson()), expected);
    }

    void everythingSavedComesBack()
    {
        ChartState state;
        state.averages = {{IndicatorKind::Ema, 21, QColor(u"#4fc3f7"_s)},
            {IndicatorKind::Sma, 400, QColor(u"#010203"_s)}, {IndicatorKind::Sma, 2, QColor(u"#010203"_s)}};
        for (IndicatorPane& pane : state.panes)
            pane = {pane.kind, 21, true};
        state.chartType = 2;
        state.chartShift = true;
        state.autoScroll = false;
        state.colors.background = QColor(u"#ffffff"_s);
        state.colors.volume = QColor(u"#123456"_s);

        ChartWidget chart;
        ChartState::fromJson(state.toJson()).applyTo(chart);
        QCOMPARE(ChartState::of(chart), state);
    }

    void anEmptyObjectKeepsTypeShiftAndScroll()
    {
        ChartWidget chart;
        chart.setAutoScroll(false);
        chart.setChartShift(true);
        chart.setChartType(1);
        ChartState::fromJson({}).applyTo(chart);
        QVERIFY(!chart.autoScroll());
        QVERIFY(chart.chartShift());
        QCOMPARE(chart.chartType(), 1);
    }

    void missingColoursAreTheDefaultOnes()
    {
        ChartWidget chart;
        ChartColors colors;
        colors.up = Qt::red;
        colors.down = Qt::blue;
        chart.setColors(colors);
        ChartState::fromJson({{u"colors"_s, QJsonObject{{u"down"_s, u"#010203"_s}}}}).applyTo(chart);
        QCOMPARE(chart.colors().up, ChartColors().up);
        QCOMPARE(chart.colors().down, QColor(1, 2, 3));
    }

    void anEmptyObjectTakesAveragesAndRsiAway()
    {
        ChartWidget chart;
        chart.setMovingAverages({{IndicatorKind::Sma, 5, Qt::red}});
        chart.setPane(IndicatorKind::Rsi, true, 21);
        ChartState::fromJson({}).applyTo(chart);
        QVERIFY(chart.movingAverages().isEmpty());
        QVERIFY(!chart.pane(IndicatorKind::Rsi).shown);
        QCOMPARE(chart.pane(IndicatorKind::Rsi).period, 14);
    }

    void typesThatAreNoneKeepTheChartsOwn()
    {
        for (const int type : {-1, 3, 1'000'000'000}) {
            ChartWidget chart;
            chart.setChartType(1);
            ChartState::fromJson({{u"chartType"_s, type}}).applyTo(chart);
            QCOMPARE(chart.chartType(), 1);
        }
    }

    void restoringPaints()
    {
        ChartWidget chart;
        chart.show();
        QVERIFY(QTest::qWaitForWindowExposed(&chart));
        PaintCounter paints(chart);
        paints.taken();
        ChartState::fromJson({{u"colors"_s, QJsonObject{{u"bg"_s, u"#010203"_s}}}}).applyTo(chart);
        QCOMPARE(paints.taken(), 1);
    }

    void badValuesAreReadAsMissing_data()
    {
        QTest::addColumn<QJsonValue>("value");
        QTest::newRow("null") << QJsonValue();
        QTest::newRow("text") << QJsonValue(u"yes"_s);
        QTest::newRow("array") << QJsonValue(QJsonArray{1});
        QTest::newRow("nested array") << QJsonValue(QJsonArray{QJsonArray{1}, QJsonValue(), u"x"_s});
        QTest::newRow("huge") << QJsonValue(1e18);
        QTest::newRow("fraction") << QJsonValue(-0.5);
    }
    void badValuesAreReadAsMissing()
    {
        QFETCH(QJsonValue, value);
        QJsonObject json{{u"colors"_s, QJsonObject{{u"bg"_s, value}, {u"who"_s, value}}}, {u"who"_s, value}};
        for (const QString& key :
            {u"mas"_s, u"rsi"_s, u"rsiPeriod"_s, u"chartType"_s, u"chartShift"_s, u"autoScroll"_s})
            json.insert(key, value);
        const ChartState state = ChartState::fromJson(json);
        QCOMPARE(state, ChartState());
    }

    void anRsiPeriodBelowTwoBecomesTwo()
    {
        ChartWidget chart;
        ChartState::fromJson({{u"rsi"_s, true}, {u"rsiPeriod"_s, -3}}).applyTo(chart);
        QCOMPARE(chart.pane(IndicatorKind::Rsi).period, 2);
    }

    void aFullStateIsTheSameAgain()
    {
        const QJsonObject json{
            {u"mas"_s,
                QJsonArray{QJsonObject{{u"type"_s, u"ema"_s}, {u"period"_s, 21}, {u"color"_s, u"#81c784"_s}},
                    QJsonObject{{u"type"_s, u"sma"_s}, {u"period"_s, 2}, {u"color"_s, u"#ffd54f"_s}}}},
            {u"rsi"_s, true}, {u"rsiPeriod"_s, 9}, {u"chartType"_s, 1}, {u"chartShift"_s, true},
            {u"autoScroll"_s, false},
            {u"colors"_s,
                QJsonObject{{u"bg"_s, u"#010101"_s}, {u"grid"_s, u"#020202"_s}, {u"axis"_s, u"#030303"_s},
                    {u"up"_s, u"#040404"_s}, {u"down"_s, u"#050505"_s}, {u"line"_s, u"#060606"_s},
                    {u"vol"_s, u"#070707"_s}}}};
        ChartWidget chart;
        ChartState::fromJson(json).applyTo(chart);
        QCOMPARE(withoutUntouchedPanes(ChartState::of(chart).toJson()), json);
    }

    void aColourThatDoesNotParseIsTheDefaultOne_data()
    {
        QTest::addColumn<QJsonValue>("value");
        QTest::newRow("missing") << QJsonValue(QJsonValue::Undefined);
        QTest::newRow("null") << QJsonValue();
        QTest::newRow("number") << QJsonValue(0xff0000);
        QTest::newRow("empty") << QJsonValue(u""_s);
        QTest::newRow("unknown name") << QJsonValue(u"bleen"_s);
        QTest::newRow("too short") << QJsonValue(u"#12"_s);
        QTest::newRow("no hexadecimal digits") << QJsonValue(u"#gggggg"_s);
    }
    void aColourThatDoesNotParseIsTheDefaultOne()
    {
        QFETCH(QJsonValue, value);
        QTest::failOnWarning(QRegularExpression(u".*"_s));
        for (const QString& key : {u"bg"_s, u"grid"_s, u"axis"_s, u"up"_s, u"down"_s, u"line"_s, u"vol"_s}) {
            QJsonObject colors{{u"bg"_s, u"#010101"_s}, {u"grid"_s, u"#010101"_s}, {u"axis"_s, u"#010101"_s},
                {u"up"_s, u"#010101"_s}, {u"down"_s, u"#010101"_s}, {u"line"_s, u"#010101"_s},
                {u"vol"_s, u"#010101"_s}};
            colors.insert(key, value);
            ChartWidget chart;
            ChartState::fromJson({{u"colors"_s, colors}}).applyTo(chart);
            const QJsonObject defaults = ChartState().toJson().value(u"colors"_s).toObject();
            colors.insert(key, defaults.value(key));
            QCOMPARE(ChartState::of(chart).toJson().value(u"colors"_s).toObject(), colors);
        }
    }

    void coloursThatAreNoObjectAreTheDefaultOnes()
    {
        for (const QJsonValue& colors : {QJsonValue(u"#ff0000"_s), QJsonValue(QJsonArray{u"#ff0000"_s})}) {
            ChartWidget chart;
            ChartColors before;
            before.up = Qt::red;
            chart.setColors(before);
            ChartState::fromJson({{u"colors"_s, colors}}).applyTo(chart);
            QCOMPARE(chart.colors(), ChartColors());
        }
    }
};

TAVORAN_TEST(tst_ChartState)
#include "tst_ChartState.moc"
