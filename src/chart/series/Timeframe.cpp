#include "chart/series/Timeframe.h"

#include <QLatin1StringView>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace {

struct Timeframe {
    QLatin1StringView key;
    qint64 lengthMs;
    QLatin1StringView label;
};

constexpr std::array timeframes{
    Timeframe{"1m"_L1, 60'000, "M1"_L1},
    Timeframe{"5m"_L1, 300'000, "M5"_L1},
    Timeframe{"15m"_L1, 900'000, "M15"_L1},
    Timeframe{"1h"_L1, 3'600'000, "H1"_L1},
    Timeframe{"4h"_L1, 14'400'000, "H4"_L1},
    Timeframe{"1d"_L1, 86'400'000, "D1"_L1},
    Timeframe{"1w"_L1, 604'800'000, "W1"_L1},
    Timeframe{"1mn"_L1, 2'592'000'000, "MN"_L1},
};

const Timeframe* find(const QString& key)
{
    const auto* found = std::find_if(
        timeframes.begin(), timeframes.end(), [&key](const Timeframe& t) { return t.key == key; });
    return found == timeframes.end() ? nullptr : found;
}

} // namespace

qint64 timeframeMs(const QString& key)
{
    const Timeframe* timeframe = find(key);
    return timeframe ? timeframe->lengthMs : defaultTimeframeMs;
}

QString timeframeLabel(const QString& key)
{
    const Timeframe* timeframe = find(key);
    return timeframe ? QString(timeframe->label) : key.toUpper();
}

const QStringList& timeframeKeys()
{
    static const QStringList keys = [] {
        QStringList list;
        for (const Timeframe& timeframe : timeframes)
            list.append(timeframe.key);
        return list;
    }();
    return keys;
}
