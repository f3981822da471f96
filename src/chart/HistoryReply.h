#pragma once

#include "chart/Candle.h"

#include <QJsonDocument>
#include <QString>

#include <vector>

/// The server's candle history, read from one reply.
struct HistoryReply {
    std::vector<Candle> candles; ///< in the server's order; incomplete elements are left out
    qsizetype received = 0;      ///< elements of the reply array, readable or not

    /// Reads an array of {"timestamp", "open", "high", "low", "close", "volume"}. An element that is no
    /// object, or whose timestamp is not a time after the epoch, is skipped. Anything but an array is an
    /// empty history.
    [[nodiscard]] static HistoryReply read(const QJsonDocument& document);
    /// The same from the reply's text.
    [[nodiscard]] static HistoryReply read(const QByteArray& json);
};

/// ISO 8601 date and time, milliseconds optional, as ms since the epoch; without a zone it means UTC.
/// 0 when the text is not such a time.
[[nodiscard]] qint64 isoTimeMs(const QString& text);
[[nodiscard]] qint64 isoTimeMs(QLatin1StringView text);

/// Whether a candle read from a reply has a time and all four prices; one that could not be read is no
/// number.
[[nodiscard]] bool isComplete(const Candle& candle);
