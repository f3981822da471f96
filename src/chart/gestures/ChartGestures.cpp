#include "chart/gestures/ChartGestures.h"

#include "chart/data/DrawingGeometry.h"

ChartGestures::Press ChartGestures::press(const Ground& ground, const QPoint& position)
{
    if (const std::optional<Press> tool = pressTool(ground, position))
        return *tool;
    if (pressRuler(ground, position))
        return {Taker::Ruler, {}, {}};
    if (!ground.candles.empty() && m_level.begin(ground.levels, ground.view, position.y()))
        return {Taker::Level, {}, {}};
    const Press pressed = pressDrawing(ground, position);
    if (pressed.taker == Taker::Chart)
        m_panZoom.begin(position.x(), ground.state);
    return pressed;
}

std::optional<ChartGestures::Press> ChartGestures::pressTool(const Ground& ground, const QPoint& position)
{
    if (!m_tool.isActive() || !ground.view.plot().contains(position))
        return std::nullopt;
    const std::optional<DrawingPoint> point
        = DrawingGeometry(ground.view, ground.candles, ground.timeframeMs).anchor(position);
    if (!point)
        return std::nullopt;
    return Press{Taker::Tool, m_tool.click(*point), {}};
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
