#pragma once

#include <QString>
#include <QStringList>

/// The length of an unknown timeframe key and of a chart that was told none: 15 minutes, in ms.
inline constexpr qint64 defaultTimeframeMs = 900'000;

/// Candles of a day and longer show their date instead of a time of day.
inline constexpr qint64 dayMs = 86'400'000;

/// The length in ms of a key such as "15m"; an unknown key gives `defaultTimeframeMs`. A month is a plain
/// bucket of 30 days, not a calendar month.
[[nodiscard]] qint64 timeframeMs(const QString& key);

/// Display label of a key ("15m" gives "M15"); an unknown key gives the key in upper case.
[[nodiscard]] QString timeframeLabel(const QString& key);

/// The known keys, shortest first.
[[nodiscard]] const QStringList& timeframeKeys();
