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

/// Whether a candle read from a reply, where 0 stands for what could not be read, has a time after the epoch
/// and no more than a day ahead of now, and four prices. A later one would be the newest candle for
/// ever, and no tick of an earlier time counts.
[[nodiscard]] bool isSound(const Candle& candle, const CandleRule& rule);
