#include "chart/data/IndicatorCache.h"

#include <algorithm>
#include <utility>

void IndicatorCache::setAverages(const QList<MovingAverageSpec>& averages)
{
    m_wanted.clear();
    for (const MovingAverageSpec& spec : averages)
        m_wanted.push_back(indicators::recipeFor(spec));
    rebuild();
}

void IndicatorCache::setStrength(std::optional<qint32> period)
{
    m_wantedStrength.reset();
    if (period)
        m_wantedStrength = indicators::Recipe{indicators::Kind::RelativeStrength, std::max(*period, 1)};
    rebuild();
}

void IndicatorCache::forgetBars()
{
    for (Line& line : m_lines)
        line = Line(line.recipe);
}

std::list<IndicatorCache::Line>::iterator IndicatorCache::lineFor(const indicators::Recipe& recipe)
{
    return std::find_if(
        m_lines.begin(), m_lines.end(), [&recipe](const Line& line) { return line.recipe == recipe; });
}

void IndicatorCache::rebuild()
{
    std::list<Line> before = std::exchange(m_lines, {});
    const auto lineOf = [this, &before](const indicators::Recipe& recipe) -> const Line* {
        if (const auto present = lineFor(recipe); present != m_lines.end())
            return &*present;
        const auto kept = std::find_if(
            before.begin(), before.end(), [&recipe](const Line& line) { return line.recipe == recipe; });
        if (kept != before.end())
            m_lines.splice(m_lines.end(), before, kept);
        else
            m_lines.emplace_back(recipe);
        return &m_lines.back();
    };
    m_averageLines.clear();
    for (const indicators::Recipe& recipe : m_wanted)
        m_averageLines.push_back(lineOf(recipe));
    m_strengthLine = m_wantedStrength ? lineOf(*m_wantedStrength) : nullptr;
    // Values may have gone with their lines.
    m_averages.assign(m_averageLines.size(), Values());
    m_strength = {};
}

void IndicatorCache::update(std::span<const Candle> candles)
{
    for (Line& line : m_lines)
        update(line, candles);
    for (std::size_t i = 0; i < m_averageLines.size(); ++i)
        m_averages[i] = m_averageLines[i]->values;
    m_strength = m_strengthLine ? Values(m_strengthLine->values) : Values();
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
    indicators::Progress newest = line.settled;
    indicators::extend(newest, line.recipe, candles, line.values);
    m_computed += static_cast<quint64>(count - before);
}
