#include "chart/window/ChartState.h"

#include "chart/data/AveragePalette.h"
#include "chart/data/ChartColorRoles.h"
#include "chart/data/ColorText.h"
#include "chart/window/ChartWidget.h"
#include "net/records/JsonNumber.h"

#include <QJsonArray>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

std::optional<bool> flag(const QJsonValue& value)
{
    return value.isBool() ? std::optional(value.toBool()) : std::nullopt;
}

QJsonObject averageToJson(const MovingAverageSpec& average)
{
    return {{u"type"_s, average.kind == AverageKind::Exponential ? u"ema"_s : u"sma"_s},
        {u"period"_s, average.period}, {u"color"_s, average.color.name()}};
}

MovingAverageSpec averageFromJson(const QJsonObject& json)
{
    MovingAverageSpec average;
    if (json.value("type"_L1) == "ema"_L1)
        average.kind = AverageKind::Exponential;
    average.period = std::max(jsonInt(json.value("period"_L1), average.period), 1);
    average.color = readColor(json.value("color"_L1), averageColor(0));
    return average;
}

QList<MovingAverageSpec> averagesFromJson(const QJsonArray& array)
{
    QList<MovingAverageSpec> averages;
    for (const QJsonValue entry : array) {
        if (averages.size() == ChartState::mostAverages)
            break;
        if (entry.isObject())
            averages.append(averageFromJson(entry.toObject()));
    }
    return averages;
}

} // namespace

ChartState ChartState::of(const ChartWidget& chart)
{
    ChartState state;
    state.averages = chart.movingAverages();
    state.rsi = chart.rsiEnabled();
    state.rsiPeriod = chart.rsiPeriod();
    state.chartType = chart.chartType();
    state.chartShift = chart.chartShift();
    state.autoScroll = chart.autoScroll();
    state.colors = chart.colors();
    return state;
}

void ChartState::applyTo(ChartWidget& chart) const
{
    chart.setMovingAverages(averages);
    chart.setRsi(rsi, rsiPeriod);
    if (chartType)
        chart.setChartType(*chartType);
    if (chartShift)
        chart.setChartShift(*chartShift);
    if (autoScroll)
        chart.setAutoScroll(*autoScroll);
    chart.setColors(colors);
}

QJsonObject ChartState::toJson() const
{
    QJsonObject colorNames;
    for (const ChartColorRole& role : chartColorRoles())
        colorNames.insert(role.key, (colors.*role.member).name());
    QJsonArray averageList;
    for (const MovingAverageSpec& average : averages)
        averageList.append(averageToJson(average));
    QJsonObject json{
        {u"mas"_s, averageList}, {u"rsi"_s, rsi}, {u"rsiPeriod"_s, rsiPeriod}, {u"colors"_s, colorNames}};
    if (chartType)
        json.insert(u"chartType"_s, *chartType);
    if (chartShift)
        json.insert(u"chartShift"_s, *chartShift);
    if (autoScroll)
        json.insert(u"autoScroll"_s, *autoScroll);
    return json;
}

ChartState ChartState::fromJson(const QJsonObject& json)
{
    ChartState state;
    state.averages = averagesFromJson(json.value("mas"_L1).toArray());
    state.rsi = jsonBool(json.value("rsi"_L1), false);
    state.rsiPeriod = jsonInt(json.value("rsiPeriod"_L1), state.rsiPeriod);
    if (const int type = jsonInt(json.value("chartType"_L1), -1); type >= 0 && type <= 2)
        state.chartType = type;
    state.chartShift = flag(json.value("chartShift"_L1));
    state.autoScroll = flag(json.value("autoScroll"_L1));
    const QJsonObject colorNames = json.value("colors"_L1).toObject();
    for (const ChartColorRole& role : chartColorRoles())
        state.colors.*role.member = readColor(colorNames.value(role.key), state.colors.*role.member);
    return state;
}
