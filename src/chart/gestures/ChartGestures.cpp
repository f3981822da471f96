#include "chart/gestures/ChartGestures.h"

#include "chart/data/DrawingGeometry.h"

ChartGestures::Press ChartGestures::press(const Ground& ground, const QPoint& position)
{
    m_byKeys = false;
    const DrawingGeometry geometry(ground.view, ground.candles, ground.timeframeMs);
    const Press pressed = pressAt(ground, {position, geometry.anchor(position)});
    if (pressed.taker == Taker::Chart)
        m_panZoom.begin(position.x(), ground.state);
    return pressed;
}

ChartGestures::Press ChartGestures::enter(const Ground& ground)
{
    const std::optional<CrosshairPlace> place = m_crosshair.placeIn(ground.view, ground.candles);
    const std::optional<QPoint> pixel = m_crosshair.pixel(ground.view, ground.candles);
    if (!place || !pixel)
        return {};
    m_byKeys = true;
    const qint64 time = ground.candles[static_cast<std::size_t>(place->bar)].time;
    const Press pressed = pressAt(ground, {*pixel, DrawingPoint{time, place->price}});
    if (pressed.taker == Taker::Level)
        m_crosshair.setPrice(m_level.price()); // the level's own price, from which the keys go on
    m_rulerStart = m_crosshair;
    return pressed;
}

ChartGestures::Press ChartGestures::pressAt(const Ground& ground, const Spot& spot)
{
    if (const std::optional<Press> tool = pressTool(ground, spot))
        return *tool;
    if (pressRuler(ground, spot.pixel))
        return {Taker::Ruler, {}, {}};
    if (!ground.candles.empty() && m_level.begin(ground.levels, ground.view, spot.pixel.y()))
        return {Taker::Level, {}, {}};
    return pressDrawing(ground, spot.pixel);
}

std::optional<ChartGestures::Press> ChartGestures::pressTool(const Ground& ground, const Spot& spot)
{
    if (!m_tool.isActive() || !spot.point || !ground.view.plot().contains(spot.pixel))
        return std::nullopt;
    return Press{Taker::Tool, m_tool.click(*spot.point), {}};
}

bool ChartGestures::pressRuler(const Ground& ground, const QPoint& position)
{
    if (!m_ruler.isArmed() || ground.candles.empty() || !ground.view.plot().contains(position))
        return false;
    m_ruler.begin(position);
    return true;
}

ChartGestures::Press ChartGestures::pressDrawing(const Ground& ground, const QPoint& position)
{
    if (m_tool.isActive() || ground.candles.empty())
        return {};
    const DrawingGeometry geometry(ground.view, ground.candles, ground.timeframeMs);
    const qsizetype hit = geometry.topmostHit(ground.drawings, position);
    return {hit >= 0 ? Taker::Drawing : Taker::Chart, {}, hit};
}

void ChartGestures::drag(const ChartView& view, const QPoint& position)
{
    m_ruler.stretch(view, position);
    if (m_level.isActive())
        m_level.move(view, position.y());
}

ViewState ChartGestures::panned(int x, const ViewState& state, qsizetype count) const
{
    return m_panZoom.isPanning() ? m_panZoom.dragged(x, state, count) : state;
}

ViewState ChartGestures::walk(const Ground& ground, qsizetype bars, const std::optional<CrosshairPlace>& from)
{
    const qsizetype bar = m_crosshair.walk(ground.view, ground.candles, bars, from);
    return KeyboardCrosshair::revealing(ground.view, ground.state, bar);
}

void ChartGestures::climb(const Ground& ground, int steps, int digits)
{
    m_crosshair.climb(ground.view, steps, digits);
    // A level in the hand keeps its price while the scales change around it.
    const bool holdsLevel = isHeldByKeys() && m_level.isActive();
    if (!holdsLevel)
        m_crosshair.returnToPlot(ground.view, digits);
    const std::optional<CrosshairPlace> place = m_crosshair.place(ground.candles);
    if (!place || !isHeldByKeys())
        return;
    if (holdsLevel)
        m_level.moveTo(place->price);
    else
        measureByKeys(ground);
}

void ChartGestures::measureByKeys(const Ground& ground)
{
    const std::optional<QPoint> start = m_rulerStart.pixel(ground.view, ground.candles);
    const std::optional<QPoint> end = m_crosshair.pixel(ground.view, ground.candles);
    if (!start || !end)
        return;
    m_ruler.begin(*start);
    m_ruler.stretch(ground.view, *end);
}

std::optional<LevelDrag::Drop> ChartGestures::release(int digits)
{
    std::optional<LevelDrag::Drop> drop = m_level.drop(digits);
    letGo();
    return drop;
}

bool ChartGestures::letGo()
{
    const bool heldLevel = m_level.isActive();
    m_level.cancel();
    m_ruler.finish();
    m_panZoom.end();
    m_byKeys = false;
    return heldLevel;
}

std::optional<ChartGestures::Taker> ChartGestures::cancel()
{
    if (m_level.isActive()) {
        letGo();
        return Taker::Level;
    }
    if (m_tool.isActive()) {
        m_tool.cancel();
        return Taker::Tool;
    }
    if (m_ruler.span()) {
        m_ruler.clear();
        return Taker::Ruler;
    }
    return std::nullopt;
}

Qt::CursorShape ChartGestures::cursor() const
{
    if (m_level.isActive())
        return Qt::SizeVerCursor;
    if (m_panZoom.isPanning())
        return Qt::ClosedHandCursor;
    return m_tool.isActive() || m_ruler.isArmed() ? Qt::CrossCursor : Qt::ArrowCursor;
}
