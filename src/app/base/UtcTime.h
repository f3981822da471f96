#pragma once

#include <QDateTime>

/// Times of the platform are UTC. These build them the way that every supported version of Qt takes.

/// Milliseconds since the epoch as a UTC time.
[[nodiscard]] QDateTime utcTime(qint64 ms);

/// The same date and clock reading, said to be UTC: for times that came without a zone.
[[nodiscard]] QDateTime utcTime(const QDate& date, const QTime& time);
