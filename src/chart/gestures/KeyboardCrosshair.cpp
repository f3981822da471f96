#include "chart/gestures/KeyboardCrosshair.h"

#include "app/base/NumberFormat.h"
#include "chart/data/GridSteps.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int wideStep = 10;
/// More bars than any series has.
constexpr qsizetype allBars = 1'000'000'000'000;
/// Closer to a step's price than this share of the step is on it.
constexpr double onStep = 1e-6;

/// A little less than the price of a pixel, so that noise does not make the next larger step of it.
double pixelPrice(const ChartView& view)
{
    return (view.priceAt(0) - view.priceAt(1)) * (1.0 - onStep);
}

/// The prices that the keys come by: multiples of a step.
class PriceLadder final {
public:
    PriceLadder(const ChartView& view, int digits)
        : m_pointsPerUnit(std::pow(10.0, clampDigits(digits)))
        , m_stepPoints(std::max(niceStep(pixelPrice(view) * m_pointsPerUnit), 1.0))
    {
    }

    /// How many steps a price is above 0.
    [[nodiscard]] double rung(double price) const
    {
        const double rung = price * m_pointsPerUnit / m_stepPoints;
        const double whole = std::round(rung);
        return std::abs(rung - whole) < onStep ? whole : rung;
    }
    [[nodiscard]] double price(double rung) const { return rung * m_stepPoints / m_pointsPerUnit; }

private:
    double m_pointsPerUnit;
    double m_stepPoints;
};

double highestPrice(const ChartView& view)
{
    return view.priceAt(view.plot().top());
}

double lowestPrice(const ChartView& view)
{
    return view.priceAt(view.plot().bottom());
}

} // namespace

std::optional<KeyboardCrosshair::Move> KeyboardCrosshair::moveOf(int key, Qt::KeyboardModifiers modifiers)
{
    modifiers.setFlag(Qt::KeypadModifier, false);
    const bool wide = modifiers == Qt::ShiftModifier;
    if (modifiers != Qt::NoModifier && !wide)
        return std::nullopt;
    const int step = wide ? wideStep : 1;
    switch (key) {
    case Qt::Key_Left:
        return Move{-step, 0};
    case Qt::Key_Right:
        return Move{step, 0};
    case Qt::Key_Up:
        return Move{0, step};
    case Qt::Key_Down:
        return Move{0, -step};
    case Qt::Key_Home:
        return Move{-allBars, 0};
    case Qt::Key_End:
        return Move{allBars, 0};
    default:
        return std::nullopt;
    }
}

double KeyboardCrosshair::stepped(const ChartView& view, double price, int steps, int digits)
{
    const PriceLadder ladder(view, digits);
    const double rung = ladder.rung(price);
    if (steps > 0) {
        const double top = std::floor(ladder.rung(highestPrice(view)));
        return std::max(price, ladder.price(std::min(std::floor(rung) + steps, top)));
    }
    if (steps < 0) {
        const double bottom = std::ceil(ladder.rung(lowestPrice(view)));
        return std::min(price, ladder.price(std::max(std::ceil(rung) + steps, bottom)));
    }
    return price;
}

ViewState KeyboardCrosshair::revealing(const ChartView& view, ViewState state, qsizetype bar)
{
    const double newest = static_cast<double>(view.count() - 1);
    const auto wanted = static_cast<double>(bar);
    double right = wanted;
    if (wanted <= view.rightBarIndex()) {
        if (view.barPixel(bar) >= view.plot().left())
            return state;
        const int room = view.plot().right() - view.shift() - view.plot().left();
        right = std::floor(wanted + std::max(room, 0) / view.barWidth());
    }
    state.rightBarIndex = std::clamp(right, 0.0, std::max(newest, 0.0));
    state.autoScroll = state.rightBarIndex >= newest;
    return state;
}

qsizetype KeyboardCrosshair::walk(const ChartView& view, std::span<const Candle> candles, qsizetype bars,
    const std::optional<CrosshairPlace>& from)
{
    if (candles.empty()) {
        hide();
        return 0;
    }
    const std::optional<CrosshairPlace> start = isShown() ? place(candles) : from;
    const auto newest = static_cast<qsizetype>(candles.size()) - 1;
    const qsizetype bar = std::clamp<qsizetype>((start ? start->bar : view.visible().last) + bars, 0, newest);
    const Candle& candle = candles[static_cast<std::size_t>(bar)];
    m_spot = Spot{candle.time, start ? start->price : candle.close};
    return bar;
}

void KeyboardCrosshair::climb(const ChartView& view, int steps, int digits)
{
    if (!m_spot)
        return;
    m_spot->price = stepped(view, m_spot->price, steps, digits);
}

void KeyboardCrosshair::returnToPlot(const ChartView& view, int digits)
{
    if (!m_spot)
        return;
    const double lowest = lowestPrice(view);
    const double highest = highestPrice(view);
    const double price = std::clamp(m_spot->price, lowest, highest);
    const double points = std::pow(10.0, clampDigits(digits));
    for (const double whole :
        {std::round(price * points), std::floor(price * points), std::ceil(price * points)}) {
        if (whole / points >= lowest && whole / points <= highest) {
            m_spot->price = whole / points;
            return;
        }
    }
    m_spot->price = price; // the plot is less than a point high
}

void KeyboardCrosshair::setPrice(double price)
{
    if (m_spot)
        m_spot->price = price;
}

std::optional<CrosshairPlace> KeyboardCrosshair::place(std::span<const Candle> candles) const
{
    if (!m_spot || candles.empty())
        return std::nullopt;
    const auto later = std::upper_bound(candles.begin(), candles.end(), m_spot->time,
        [](qint64 time, const Candle& candle) { return time < candle.time; });
    return CrosshairPlace{std::max<qsizetype>(later - candles.begin() - 1, 0), m_spot->price};
}

std::optional<CrosshairPlace> KeyboardCrosshair::placeIn(
    const ChartView& view, std::span<const Candle> candles) const
{
    const std::optional<QPoint> at = pixel(view, candles);
    return at && view.plot().contains(*at) ? place(candles) : std::nullopt;
}

std::optional<QPoint> KeyboardCrosshair::pixel(const ChartView& view, std::span<const Candle> candles) const
{
    const std::optional<CrosshairPlace> at = place(candles);
    if (!at)
        return std::nullopt;
    return QPoint(view.barPixel(at->bar), view.pricePixel(at->price));
}
