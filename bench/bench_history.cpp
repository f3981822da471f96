#include "app/base/UtcTime.h"
#include "chart/series/HistoryReply.h"
#include "chart/window/ChartWidget.h"
#include "scenes/Series.h"

#include <QDateTime>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <benchmark/benchmark.h>

using namespace Qt::StringLiterals;

namespace {

constexpr std::size_t bars = 1'000'000;

const QByteArray& replyBytes()
{
    static const QByteArray bytes = [] {
        QByteArray text = "[";
        for (const Candle& candle : walk(bars)) {
            const QString time = utcTime(candle.time).toString(Qt::ISODateWithMs);
            text += (text.size() > 1 ? "," : "") + QByteArray("{\"timestamp\":\"") + time.toLatin1()
                + "\",\"open\":" + QByteArray::number(candle.open, 'f', 5)
                + ",\"high\":" + QByteArray::number(candle.high, 'f', 5)
                + ",\"low\":" + QByteArray::number(candle.low, 'f', 5)
                + ",\"close\":" + QByteArray::number(candle.close, 'f', 5)
                + ",\"volume\":" + QByteArray::number(candle.volume) + '}';
        }
        return text + ']';
    }();
    return bytes;
}

void parseAlone(benchmark::State& state)
{
    const QByteArray& bytes = replyBytes();
    for ([[maybe_unused]] auto _ : state)
        benchmark::DoNotOptimize(QJsonDocument::fromJson(bytes));
}

void bytesToPainted(benchmark::State& state)
{
    const QByteArray& bytes = replyBytes();
    ChartWidget chart;
    chart.resize(1600, 900);
    chart.show();
    for ([[maybe_unused]] auto _ : state) {
        HistoryReply reply = HistoryReply::read(bytes, {5, QDateTime::currentMSecsSinceEpoch()});
        chart.setCandles(std::move(reply.candles));
        chart.repaint();
    }
}

BENCHMARK(parseAlone)->Name("history/parse")->Unit(benchmark::kMillisecond);
BENCHMARK(bytesToPainted)->Name("history/painted")->Unit(benchmark::kMillisecond);

} // namespace
