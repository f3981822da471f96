#include "chart/gestures/LevelDrag.h"

#include "app/base/NumberFormat.h"
#include "chart/series/CandleSeries.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double samePrice = 1e-12;

double rounded(double price, int digits)
{
    const double scale = std::pow(10.0, clampDigits(digits));
    return std::round(price * scale) / scale;
}

bool differs(double a, double b)
{
    return std::abs(a - b) > samePrice * std::min(std::abs(a), std::abs(b));
}

} // namespace

qsizetype LevelDrag::levelAt(const QList<TradeLevel>& levels, const ChartView& view, int y)
{
    qsizetype nearest = -1;
    int nearestAway = reach;
    for (qsizetype i = 0; i < levels.size(); ++i) {
        const TradeLevel& level = levels.at(i);
        if (!level.draggable || !view.prices().contains(level.price))
            continue;
        const int away = std::abs(y - view.pricePixel(level.price));
        if (away <= nearestAway) {
            nearest = i;
            nearestAway = away;
        }
    }
    return nearest;
}

bool LevelDrag::begin(const QList<TradeLevel>& levels, const ChartView& view, int y)
{
    m_index = levelAt(levels, view, y);
    m_active = m_index >= 0;
    m_moved = false;
    if (!m_active)
        return false;
    m_level = levels.at(m_index);
    m_price = m_level.price;
    m_pressRow = y;
    return true;
}

void LevelDrag::move(const ChartView& view, int y)
{
    m_moved = m_moved || y != m_pressRow;
    if (!m_active || !m_moved)
        return;
    m_price = view.priceAt(std::clamp(y, view.plot().top(), view.plot().bottom()));
}

void LevelDrag::moveTo(double price)
{
    if (!m_active || price == m_price)
        return;
    m_moved = true;
    m_price = price;
}

bool LevelDrag::follow(const QList<TradeLevel>& levels)
{
    if (!m_active)
        return false;
    const auto found = std::find_if(levels.begin(), levels.end(), [this](const TradeLevel& level) {
        return level.tradeId == m_level.tradeId && level.kind == m_level.kind;
    });
    m_active = found != levels.end() && found->draggable && found->price == m_level.price;
    m_index = static_cast<qsizetype>(found - levels.begin());
    return m_active;
}

std::optional<LevelDrag::Drop> LevelDrag::drop(int digits)
{
    const bool moved = m_active && m_moved;
    m_active = false;
    const double price = rounded(m_price, digits);
    if (!moved || !isUsablePrice(price) || price <= 0.0 || !differs(price, m_level.price))
        return std::nullopt;
    return Drop{m_level.tradeId, m_level.kind, price};
}
