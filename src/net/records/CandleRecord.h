#pragma once

#include <QJsonObject>
#include <QLatin1StringView>
#include <QString>

/// What can be read of one candle of a history. Its fields have names here for a reader that takes them from
/// the text of a history without making records of it.
namespace candle {

inline constexpr QLatin1StringView timeField{"timestamp"};
inline constexpr QLatin1StringView openField{"open"};
inline constexpr QLatin1StringView highField{"high"};
inline constexpr QLatin1StringView lowField{"low"};
inline constexpr QLatin1StringView closeField{"close"};
inline constexpr QLatin1StringView volumeField{"volume"};

/// The server's text of the time.
[[nodiscard]] QString time(const QJsonObject& record);
/// Prices and the volume in ticks, 0 where they cannot be read.
[[nodiscard]] double open(const QJsonObject& record);
[[nodiscard]] double high(const QJsonObject& record);
[[nodiscard]] double low(const QJsonObject& record);
[[nodiscard]] double close(const QJsonObject& record);
[[nodiscard]] double volume(const QJsonObject& record);

} // namespace candle
