// A reply with candles. It has two readers, a quick one for the plain form and one for any JSON: wherever the
// quick one takes a reply, both have to read the same.

#include "fuzz/FuzzQt.h"

#include "chart/series/CandleSeries.h"
#include "chart/series/PlainHistory.h"

using fuzz::demand;

namespace fuzz_history {

namespace {

constexpr qint64 now = 1'700'000'000'000;

bool areEqual(const Candle& a, const Candle& b)
{
    return a.time == b.time && a.open == b.open && a.high == b.high && a.low == b.low && a.close == b.close
        && a.volume == b.volume;
}

bool areEqual(const HistoryReply& a, const HistoryReply& b)
{
    return a.received == b.received
        && std::equal(a.candles.begin(), a.candles.end(), b.candles.begin(), b.candles.end(),
            [](const Candle& left, const Candle& right) { return areEqual(left, right); });
}

void demandOrder(const CandleSeries& series)
{
    for (std::size_t i = 1; i < series.candles().size(); ++i)
        demand(series.candles()[i - 1].time < series.candles()[i].time, "candles ascend");
}

int attempt(const std::uint8_t* data, std::size_t size)
{
    const QByteArray json = fuzz::bytesOf(fuzz::textOf(data, size));
    for (const int digits : {5, 0}) {
        const CandleRule rule{digits, now};
        const HistoryReply general = HistoryReply::read(QJsonDocument::fromJson(json), rule);
        if (const std::optional<HistoryReply> plain = readPlainHistory(json, rule))
            demand(areEqual(*plain, general), "both readers of a history agree");
        demand(areEqual(HistoryReply::read(json, rule), general), "the choice between them does not matter");
        demand(general.candles.size() <= static_cast<std::size_t>(general.received), "no candle is made up");
        for (const Candle& candle : general.candles)
            demand(isSound(candle, rule), "what is kept is sound");

        CandleSeries series;
        series.setCandles(general.candles);
        demandOrder(series);
        const qint64 last = series.isEmpty() ? now : series.candles().back().time;
        for (const qint64 step : {qint64{0}, qint64{1'000'000}, qint64{-1'000'000}}) {
            series.foldTick(1.25, 1.5, last + step);
            demandOrder(series);
        }
    }
    const QString text = fuzz::stringOf(fuzz::textOf(data, size));
    const QByteArray latin = text.toLatin1();
    if (QString::fromLatin1(latin) == text)
        demand(isoTimeMs(text) == isoTimeMs(QLatin1StringView(latin)), "both readers of a time agree");
    demand(isoTimeMs(text) >= 0, "no time lies before the epoch");
    return 0;
}

const fuzz::Target target("history", &attempt);

} // namespace

} // namespace fuzz_history
