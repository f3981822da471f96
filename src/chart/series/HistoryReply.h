#pragma once

#include "chart/series/Candle.h"

#include <QJsonDocument>
#include <QString>

#include <vector>

/// What is needed to tell candles from damage.
struct CandleRule {
    int digits;   ///< of the symbol's prices
    qint64 nowMs; ///< the time, in ms since the epoch
};

/// The server's candle history, read from one reply.
struct HistoryReply {
    std::vector<Candle> candles; ///< in the server's order; unsound elements are left out
    qsizetype received = 0;      ///< elements of the reply array, readable or not

    /// Reads an array of {"timestamp", "open", "high", "low", "close", "volume"}. An element that is no
    /// object, or not sound by the rule, is skipped. Anything but an array is an empty history.
    [[nodiscard]] static HistoryReply read(const QJsonDocument& document, const CandleRule& rule);
    /// The same from the reply's text.
    [[nodiscard]] static HistoryReply read(const QByteArray& json, const CandleRule& rule);
};

/// ISO 8601 date and time, milliseconds optional, as ms since the epoch; without a zone it means UTC.
/// 0 when the text is not such a time.
[[nodiscard]] qint64 isoTimeMs(const QString& text);
[[nodiscard]] qint64 isoTimeMs(QLatin1StringView text);

/// Whether all four prices of a candle can be prices of a symbol with so many decimals.
[[nodiscard]] bool hasPrices(const Candle& candle, int digits);

/// Whether a candle that was read from a reply counts: it has four prices (what could not be read is 0, which
/// is none) and a time after the epoch and at most a day ahead of now. A candle of a later time would be the
/// newest for ever, and no tick would count.
[[nodiscard]] bool isSound(const Candle& candle, const CandleRule& rule);
