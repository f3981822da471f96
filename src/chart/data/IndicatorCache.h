#pragma once

#include "chart/data/IndicatorPane.h"
#include "chart/data/Indicators.h"

#include <QList>

#include <list>

/// The indicator values of one growing series. The values of settled candles are computed once; that of the
/// newest, which ticks change, anew from what was carried up to it. The values are equal to the bit to those
/// of one computation over the whole series.
class IndicatorCache final {
public:
    using Values = std::span<const double>;

    /// Values of averages that stay are kept. Averages that differ only in colour share their values.
    void setAverages(const QList<MovingAverageSpec>& averages);
    /// Only the panes on show are computed.
    void setPanes(const QList<IndicatorPane>& panes);
    /// Call after candles other than the newest have changed.
    void forgetValues();

    /// Brings all values up to the series, which may have grown and whose newest candle may have changed
    /// since the last call. Spans that were handed out before end here.
    void update(std::span<const Candle> candles);

    /// One for each average, in their order: a value a bar, NaN where there is none; empty when no bar has
    /// one.
    [[nodiscard]] std::span<const Values> averages() const { return m_averages.values; }
    /// The same for each pane on show.
    [[nodiscard]] std::span<const Values> panes() const { return m_panes.values; }

    /// How many values were computed so far; what the cost depends on.
    [[nodiscard]] quint64 computed() const { return m_computed; }

private:
    struct Line {
        explicit Line(const indicators::Recipe& wanted)
            : recipe(wanted)
        {
        }

        indicators::Recipe recipe;
        IndicatorProgress settled; ///< without the newest candle
        std::vector<double> values;
    };
    /// The lines of the averages, or those of the panes, in the order in which they were asked for.
    struct Group {
        std::vector<indicators::Recipe> wanted;
        std::vector<const Line*> lines;
        std::vector<Values> values;
    };

    void rebuild();
    void update(Line& line, std::span<const Candle> candles);

    std::list<Line> m_lines; ///< one for each different recipe
    Group m_averages;
    Group m_panes;
    quint64 m_computed = 0;
};
