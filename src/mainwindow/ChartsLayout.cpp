#include "mainwindow/ChartsLayout.h"

#include "net/records/JsonNumber.h"

#include <QJsonArray>
#include <QJsonDocument>

using namespace Qt::StringLiterals;

namespace {

// Each chart asks the server for its history; a damaged text must not ask for thousands.
constexpr qsizetype maxCharts = 100;

} // namespace

QString chartsLayoutText(const QList<SavedChart>& charts)
{
    QJsonArray array;
    for (const SavedChart& chart : charts) {
        array.append(QJsonObject{
            {u"symbol"_s, chart.symbol},
            {u"tf"_s, chart.timeframe},
            {u"geometry"_s, QString::fromLatin1(chart.geometry.toBase64())},
            {u"maximized"_s, chart.maximized},
            {u"indicators"_s, chart.state},
        });
    }
    return QString::fromUtf8(QJsonDocument(array).toJson(QJsonDocument::Indented));
}

QList<SavedChart> readChartsLayout(const QString& text)
{
    QList<SavedChart> charts;
    const QJsonArray array = QJsonDocument::fromJson(text.toUtf8()).array();
    for (const QJsonValue value : array) {
        const QJsonObject entry = value.toObject();
        SavedChart chart;
        chart.symbol = entry["symbol"_L1].toString();
        chart.timeframe = entry["tf"_L1].toString();
        if (chart.symbol.isEmpty() || chart.timeframe.isEmpty())
            continue;
        chart.geometry = QByteArray::fromBase64(entry["geometry"_L1].toString().toLatin1());
        chart.maximized = jsonBool(entry["maximized"_L1], false);
        chart.state = entry["indicators"_L1].toObject();
        charts.append(chart);
        if (charts.size() == maxCharts)
            break;
    }
    return charts;
}
