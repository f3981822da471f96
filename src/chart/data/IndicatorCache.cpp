#include "chart/data/IndicatorCache.h"

#include <algorithm>
#include <utility>

void IndicatorCache::setAverages(const QList<MovingAverageSpec>& averages)
{
    m_averages.wanted.clear();
    for (const MovingAverageSpec& average : averages)
        m_averages.wanted.push_back(indicators::recipeFor(average.kind, average.period));
    rebuild();
}

void IndicatorCache::setPanes(const QList<IndicatorPane>& panes)
{
    m_panes.wanted.clear();
    for (const IndicatorPane& pane : panes) {
        if (pane.shown)
            m_panes.wanted.push_back(indicators::recipeFor(pane.kind, pane.period));
    }
    rebuild();
}

void IndicatorCache::forgetValues()
{
    for (Line& line : m_lines)
        line = Line(line.recipe);
}

void IndicatorCache::rebuild()
{
    std::list<Line> before = std::exchange(m_lines, {});
    const auto find = [](std::list<Line>& lines, const indicators::Recipe& recipe) {
        return std::find_if(
            lines.begin(), lines.end(), [&recipe](const Line& line) { return line.recipe == recipe; });
    };
    const auto lineOf = [this, &before, &find](const indicators::Recipe& recipe) -> const Line* {
        if (const auto present = find(m_lines, recipe); present != m_lines.end())
            return &*present;
        if (const auto kept = find(before, recipe); kept != before.end())
            m_lines.splice(m_lines.end(), before, kept);
        else
            m_lines.emplace_back(recipe);
        return &m_lines.back();
    };
    for (Group* group : {&m_averages, &m_panes}) {
        group->lines.clear();
        for (const indicators::Recipe& recipe : group->wanted)
            group->lines.push_back(lineOf(recipe));
        // The old spans may have pointed into lines that are gone.
        group->values.assign(group->lines.size(), Values());
    }
}

void IndicatorCache::update(std::span<const Candle> candles)
{
    for (Line& line : m_lines)
        update(line, candles);
    for (Group* group : {&m_averages, &m_panes}) {
        for (std::size_t i = 0; i < group->lines.size(); ++i)
            group->values[i] = group->lines[i]->values;
    }
}

void IndicatorCache::update(Line& line, std::span<const Candle> candles)
{
    const auto count = static_cast<qsizetype>(candles.size());
    if (!indicators::hasValues(line.recipe, count)) {
        // A long period over a short series costs neither time nor memory.
        line = Line(line.recipe);
        return;
    }
    if (line.settled.bars >= count)
        line = Line(line.recipe); // the series has become shorter
    const qsizetype before = line.settled.bars;
    line.values.resize(candles.size());
    indicators::extend(line.settled, line.recipe, candles.first(candles.size() - 1), line.values);
    IndicatorProgress newest = line.settled;
    indicators::extend(newest, line.recipe, candles, line.values);
    m_computed += static_cast<quint64>(count - before);
}
