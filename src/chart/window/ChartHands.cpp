#include "chart/window/ChartHands.h"

#include "app/ui/EnterKey.h"
#include "chart/data/ChartTexts.h"
#include "chart/data/DrawingList.h"
#include "chart/layers/OverlayAreas.h"
#include "chart/window/ChartWidget.h"

#include <QKeyEvent>
#include <QMouseEvent>

namespace {

constexpr QPoint nowhere(-1, -1);

} // namespace

ChartHands::ChartHands(ChartWidget& chart, DrawingList& drawings, TextPainter& texts)
    : m_chart(chart)
    , m_drawings(drawings)
    , m_texts(texts)
{
}

ChartHands::~ChartHands() = default;

std::optional<CrosshairPlace> ChartHands::crosshair() const
{
    const KeyboardCrosshair& keyboard = m_gestures.crosshair();
    return keyboard.isShown() ? keyboard.placeIn(m_chart.view(), m_chart.candles())
                              : m_chart.view().placeAt(m_pointer);
}

std::optional<QPoint> ChartHands::crosshairPixel() const
{
    if (!crosshair())
        return std::nullopt;
    const KeyboardCrosshair& keyboard = m_gestures.crosshair();
    return keyboard.isShown() ? keyboard.pixel(m_chart.view(), m_chart.candles()) : m_pointer;
}

void ChartHands::setTool(const QString& key)
{
    const QString before = m_gestures.tool().key();
    const bool hadPoint = m_gestures.tool().placed().has_value();
    m_gestures.chooseTool(key);
    showHold();
    m_chart.update();
    if (m_gestures.tool().key() != before || hadPoint)
        Q_EMIT settingsChanged();
}

void ChartHands::setMeasureMode(bool on)
{
    const bool changed = on != m_gestures.ruler().isArmed();
    if (!changed && !m_gestures.ruler().span())
        return;
    m_gestures.armRuler(on);
    showHold();
    m_chart.update();
    if (changed)
        Q_EMIT settingsChanged();
}

void ChartHands::followLevels()
{
    m_gestures.followLevels(m_chart.tradeLevels());
    showHold();
}

void ChartHands::cancelLevel()
{
    m_gestures.cancelLevel();
    showHold();
}

void ChartHands::letGo()
{
    if (m_gestures.letGo()) {
        m_chart.reader().noteReading();
        m_chart.update();
    }
    showHold();
}

bool ChartHands::press(const QMouseEvent& event)
{
    if (event.button() != Qt::LeftButton)
        return false;
    letGo(); // a release may have been lost, or keys hold something
    const QPoint position = event.position().toPoint();
    if (!m_chart.autoScroll() && m_chart.view().scrollToEndButton().contains(position)) {
        m_chart.scrollToEnd();
        return true;
    }
    if (m_gestures.crosshair().isShown()) {
        movePointer(position);
        tellCrosshair();
    }
    const QRegion shownBefore = gestureArea();
    take(m_gestures.press(ground(), position), shownBefore);
    return true;
}

void ChartHands::move(const QMouseEvent& event)
{
    const QPoint position = event.position().toPoint();
    // A mouse that lies still takes nothing from the keyboard.
    if (m_gestures.crosshair().isShown() && position == m_pointer)
        return;
    // The release may have gone to another window.
    if (!event.buttons().testFlag(Qt::LeftButton))
        letGo();
    m_chart.setViewState(m_gestures.panned(position.x(), m_chart.viewState(), std::ssize(m_chart.candles())));
    drag(position);
    movePointer(position);
    tellCrosshair();
}

bool ChartHands::release(const QMouseEvent& event)
{
    if (event.button() != Qt::LeftButton)
        return false;
    if (!m_gestures.isHeldByKeys())
        drop();
    return true;
}

void ChartHands::leave()
{
    if (m_gestures.crosshair().isShown()) {
        m_pointer = nowhere;
        return;
    }
    movePointer(nowhere);
    Q_EMIT crosshairMoved(QString());
}

void ChartHands::loseFocus()
{
    if (m_gestures.isHeldByKeys())
        letGo();
}

bool ChartHands::takeKey(const QKeyEvent& event)
{
    const int key = event.key();
    if (key == Qt::Key_Escape)
        return cancel() || hideKeyboardCrosshair();
    if (key == Qt::Key_Delete || key == Qt::Key_Backspace)
        return m_chart.deleteSelectedDrawing();
    // Widgets on the chart hand on what they have no use for.
    if (!m_chart.hasFocus())
        return false;
    // Held down, Enter must neither place nor send again.
    if (isPlainEnter(event))
        return m_gestures.crosshair().isShown() && (event.isAutoRepeat() || enterAtCrosshair());
    const std::optional<KeyboardCrosshair::Move> move = KeyboardCrosshair::moveOf(key, event.modifiers());
    return move && moveCrosshair(*move);
}

void ChartHands::take(const ChartGestures::Press& press, const QRegion& shownBefore)
{
    showHold();
    if (press.selected && m_drawings.select(*press.selected))
        m_chart.update();
    if (press.taker == ChartGestures::Taker::Tool)
        m_chart.update();
    else if (m_gestures.isDragging())
        m_chart.updatePart(shownBefore + gestureArea());
    if (!press.created) {
        if (press.taker == ChartGestures::Taker::Tool)
            Q_EMIT settingsChanged(); // a point is placed, and the next click means another
        return;
    }
    m_drawings.append(*press.created);
    m_chart.reader().noteMarks();
    Q_EMIT drawingCreated(*press.created);
    finishTool();
}

void ChartHands::drag(const QPoint& position)
{
    if (!m_gestures.isDragging())
        return;
    const QRegion before = gestureArea();
    m_gestures.drag(m_chart.view(), position);
    m_chart.reader().noteReading();
    m_chart.updatePart(before + gestureArea());
}

void ChartHands::drop()
{
    if (m_gestures.level().isActive())
        m_chart.update();
    const std::optional<LevelDrag::Drop> drop = m_gestures.release(m_chart.digits());
    m_chart.reader().noteReading();
    showHold();
    if (drop)
        Q_EMIT levelDragged(drop->tradeId, drop->kind, drop->price);
}

bool ChartHands::cancel()
{
    const std::optional<ChartGestures::Taker> cancelled = m_gestures.cancel();
    if (!cancelled)
        return false;
    m_chart.reader().noteReading();
    showHold();
    m_chart.update();
    if (*cancelled == ChartGestures::Taker::Tool) {
        Q_EMIT settingsChanged();
        Q_EMIT toolFinished();
    }
    return true;
}

void ChartHands::finishTool()
{
    setTool(QString());
    Q_EMIT toolFinished();
}

void ChartHands::showHold()
{
    if (const Qt::CursorShape shape = m_gestures.cursor(); shape != m_chart.cursor().shape())
        m_chart.setCursor(shape);
    if (m_gestures.isHeldByKeys() == m_heldByKeys)
        return;
    m_heldByKeys = !m_heldByKeys;
    Q_EMIT settingsChanged();
}

void ChartHands::movePointer(const QPoint& position)
{
    if (position == m_pointer && !m_gestures.crosshair().isShown())
        return;
    const std::optional<QPoint> before = crosshairPixel();
    m_gestures.hideCrosshair();
    m_pointer = position;
    repaintCrosshair(before);
}

bool ChartHands::moveCrosshair(const KeyboardCrosshair::Move& move)
{
    if (m_chart.candles().empty() || m_gestures.isHeldByMouse())
        return false;
    const std::optional<QPoint> before = crosshairPixel();
    const QRegion heldBefore = gestureArea();
    m_chart.setViewState(m_gestures.walk(ground(), move.bars, crosshair()));
    m_gestures.climb(ground(), move.prices, m_chart.digits());
    repaintCrosshair(before);
    if (m_gestures.isHeldByKeys())
        m_chart.updatePart(heldBefore + gestureArea());
    tellCrosshair();
    return true;
}

bool ChartHands::enterAtCrosshair()
{
    if (m_chart.candles().empty() || m_gestures.isHeldByMouse())
        return false;
    // What is out of view is shown first: nobody acts on what cannot be seen.
    if (!crosshair())
        return revealCrosshair();
    if (m_gestures.isHeldByKeys()) {
        drop();
        return true;
    }
    const std::optional<QPoint> before = crosshairPixel();
    const QRegion heldBefore = gestureArea();
    take(m_gestures.enter(ground()), heldBefore);
    repaintCrosshair(before);
    return true;
}

bool ChartHands::revealCrosshair()
{
    const bool moved = moveCrosshair({});
    if (crosshair() || !m_gestures.isHeldByKeys())
        return moved;
    letGo(); // its price lies beyond those of the chart
    return moveCrosshair({});
}

bool ChartHands::hideKeyboardCrosshair()
{
    if (!m_gestures.crosshair().isShown())
        return false;
    const std::optional<QPoint> before = crosshairPixel();
    m_gestures.hideCrosshair();
    repaintCrosshair(before);
    if (m_chart.hoveredCandle())
        tellCrosshair();
    else
        Q_EMIT crosshairMoved(QString());
    return true;
}

void ChartHands::repaintCrosshair(const std::optional<QPoint>& before)
{
    m_chart.reader().noteReading();
    const std::optional<QPoint> now = crosshairPixel();
    if (before && now && !m_chart.candles().empty())
        m_chart.updatePart(overlays::pointer(ground(), m_gestures.tool(), *before)
            + overlays::pointer(ground(), m_gestures.tool(), *now));
    else if (before || now)
        m_chart.update();
}

void ChartHands::tellCrosshair()
{
    if (const std::optional<Candle> candle = m_chart.hoveredCandle())
        Q_EMIT crosshairMoved(hoverText(*candle, m_chart.digits()));
}

ChartGestures::Ground ChartHands::ground() const
{
    return {m_chart.view(), m_chart.viewState(), m_chart.candles(), m_chart.timeframeMs(),
        m_chart.tradeLevels(), m_chart.drawings()};
}

QRegion ChartHands::gestureArea() const
{
    return overlays::inHand(m_chart.view(), m_gestures, m_chart.digits(), m_texts);
}
