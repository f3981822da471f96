#include "chart/window/ChartState.h"

#include "chart/data/AveragePalette.h"
#include "chart/data/ChartColorRoles.h"
#include "chart/data/ColorText.h"
#include "chart/data/IndicatorTable.h"
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
    return {{u"type"_s, QString(indicatorRow(average.kind).key)}, {u"period"_s, average.period},
        {u"color"_s, average.color.name()}};
}

MovingAverageSpec averageFromJson(const QJsonObject& json)
{
    MovingAverageSpec average;
    if (const IndicatorRow* row = findIndicator(json.value("type"_L1).toString()); row && !row->pane)
        average.kind = row->kind;
    average.period = std::max(jsonInt(json.value("period"_L1), average.period), 1);
    average.color = readColor(json.value("color"_L1), averageColor(0));
    return average;
}

QString shownKey(const IndicatorPane& pane)
{
    return indicatorRow(pane.kind).key;
}

QString periodKey(const IndicatorPane& pane)
{
    return shownKey(pane) + "Period"_L1;
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

QJsonObject ChartState::toJson() const
{
    QJsonObject colorNames;
    for (const ChartColorRole& role : chartColorRoles())
        colorNames.insert(role.key, (colors.*role.member).name());
    QJsonArray averageList;
    for (const MovingAverageSpec& average : averages)
        averageList.append(averageToJson(average));
    QJsonObject json{{u"mas"_s, averageList}, {u"colors"_s, colorNames}};
    for (const IndicatorPane& pane : panes) {
        json.insert(shownKey(pane), pane.shown);
        json.insert(periodKey(pane), pane.period);
    }
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
    for (IndicatorPane& pane : state.panes) {
        pane.shown = jsonBool(json.value(shownKey(pane)), false);
        pane.period = jsonInt(json.value(periodKey(pane)), pane.period);
    }
    if (const int type = jsonInt(json.value("chartType"_L1), -1); type >= 0 && type <= 2)
        state.chartType = type;
    state.chartShift = flag(json.value("chartShift"_L1));
    state.autoScroll = flag(json.value("autoScroll"_L1));
    const QJsonObject colorNames = json.value("colors"_L1).toObject();
    for (const ChartColorRole& role : chartColorRoles())
        state.colors.*role.member = readColor(colorNames.value(role.key), state.colors.*role.member);
    return state;
}
