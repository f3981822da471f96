#pragma once

#include "chart/data/Indicators.h"

#include <QList>

#include <list>
#include <optional>

/// The indicator values of one growing series. Settled bars are computed once; the newest bar, which ticks
/// change, is computed anew from what was carried up to it. The values equal a computation of the whole
/// series to the bit.
class IndicatorCache final {
public:
    using Values = std::span<const double>;

    /// Values of averages that stay are kept. Averages that differ in colour only share their values.
    void setAverages(const QList<MovingAverageSpec>& averages);
    /// Nothing turns it off.
    void setStrength(std::optional<qint32> period);
    /// Call after bars other than the newest have changed.
    void forgetBars();

    /// Brings all values up to the series, which may have grown and whose newest bar may have changed since
    /// the last call. Spans that were handed out before end here.
    void update(std::span<const Candle> candles);

    /// One for each average, in their order: a value a bar, NaN where there is none; empty when no bar has
    /// one.
    [[nodiscard]] std::span<const Values> averages() const { return m_averages; }
    [[nodiscard]] Values strength() const { return m_strength; }

    /// How many values were computed so far; what the cost depends on.
    [[nodiscard]] quint64 computed() const { return m_computed; }

private:
    struct Line {
        explicit Line(const indicators::Recipe& wanted)
            : recipe(wanted)
        {
        }

        indicators::Recipe recipe;
        indicators::Progress settled; ///< without the newest bar
        std::vector<double> values;
    };

    [[nodiscard]] std::list<Line>::iterator lineFor(const indicators::Recipe& recipe);
    void rebuild();
    void update(Line& line, std::span<const Candle> candles);

    std::vector<indicators::Recipe> m_wanted; ///< of the averages, in their order
    std::optional<indicators::Recipe> m_wantedStrength;
    std::list<Line> m_lines; ///< one for each different recipe
    std::vector<const Line*> m_averageLines;
    const Line* m_strengthLine = nullptr;
    std::vector<Values> m_averages;
    Values m_strength;
    quint64 m_computed = 0;
};
