#include "chart/window/ChartWidget.h"

#include "chart/data/ChartTexts.h"
#include "chart/layers/ChartFrame.h"
#include "chart/layers/OverlayAreas.h"
#include "chart/layers/TickArea.h"
#include "chart/window/ChartAccessible.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr QPoint nowhere(-1, -1);
constexpr int shortestPanePeriod = 2;

/// True when the value has changed.
template <typename Value> bool assign(Value& current, const Value& wanted)
{
    if (current == wanted)
        return false;
    current = wanted;
    return true;
}

} // namespace

ChartWidget::ChartWidget(QWidget* parent)
    : QWidget(parent)
    , m_reader(*this)
{
    ChartAccessible::install();
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    setMinimumSize(240, 160);
    setAttribute(Qt::WA_OpaquePaintEvent);
}

ChartWidget::~ChartWidget() = default;

void ChartWidget::setCandles(std::vector<Candle> candles)
{
    // The new candles move the prices away from below the pointer.
    m_gestures.cancelLevel();
    updateCursor();
    replaceCandles(std::move(candles));
    scrollToEnd();
}

void ChartWidget::renewCandles(std::vector<Candle> candles)
{
    if (candles.empty())
        return setCandles({});
    const std::optional<ChartScene::Place> place = m_scene.place();
    const double before = rightBarIndex();
    replaceCandles(std::move(candles));
    applyView(place ? m_scene.at(*place) : m_scene.atEnd());
    m_gestures.renumberBars(rightBarIndex() - before);
}

void ChartWidget::replaceCandles(std::vector<Candle> candles)
{
    m_scene.setCandles(std::move(candles));
    m_indicators.forgetValues();
    update();
    m_reader.noteReading();
}

void ChartWidget::onTick(double bid, double ask, qint64 timeMs)
{
    const bool hasPrice = bid > 0.0 || ask > 0.0;
    if (m_quoteStale && hasPrice && isUsablePrice(bid) && isUsablePrice(ask))
        setQuoteStale(false);
    // Without `before` the chart is painted whole: when it is hidden, or its view must be worked out anew.
    const std::optional<QuotedView> before
        = isVisible() && paintsWholePixels() ? m_scene.lastView() : std::nullopt;
    const std::optional<TickEffect> effect = m_scene.tick(bid, ask, timeMs);
    if (!effect)
        return;
    m_reader.noteReading();
    std::optional<QRegion> changed;
    if (before && *effect != TickEffect::Appended)
        changed = tickarea::changed(*before, m_scene.quotedView(size()));
    if (changed)
        update(*changed + panesOfTick());
    else
        update();
}

void ChartWidget::markQuoteStale()
{
    if (!m_quoteStale)
        setQuoteStale(true);
}

void ChartWidget::setQuoteStale(bool stale)
{
    m_quoteStale = stale;
    update();
    m_reader.noteReading();
}

QRegion ChartWidget::panesOfTick() const
{
    QRegion area;
    int number = 0;
    for (const IndicatorPane& pane : m_look.panes) {
        if (!pane.shown)
            continue;
        if (!indicatorRow(pane.kind).pane->scale)
            area += tickarea::pane(view(), number);
        ++number;
    }
    return area;
}

void ChartWidget::setTimeframeMs(qint64 ms)
{
    if (m_scene.setTimeframeMs(ms))
        update();
}

void ChartWidget::setSymbolInfo(
    const QString& symbol, const QString& timeframeLabel, const QString& description)
{
    bool changed = assign(m_look.symbol, symbol);
    changed |= assign(m_look.timeframeLabel, timeframeLabel);
    changed |= assign(m_look.description, description);
    if (changed)
        update();
}

void ChartWidget::setDigits(int digits)
{
    if (!assign(m_look.digits, digits))
        return;
    update();
    m_reader.noteMarks();
}

void ChartWidget::setAutoScroll(bool on)
{
    applyView(m_scene.withAutoScroll(on));
}

void ChartWidget::scrollToEnd()
{
    applyView(m_scene.atEnd());
}

void ChartWidget::setChartShift(bool on)
{
    applyView(m_scene.withShift(on));
}

void ChartWidget::zoomIn()
{
    applyView(m_scene.withBarWidth(PanZoom::wider(barWidth())));
}

void ChartWidget::zoomOut()
{
    applyView(m_scene.withBarWidth(PanZoom::narrower(barWidth())));
}

void ChartWidget::setChartType(int type)
{
    if (!assign(m_look.type, chartTypeOf(type)))
        return;
    update();
    Q_EMIT settingsChanged();
}

void ChartWidget::setColors(const ChartColors& colors)
{
    if (assign(m_look.colors, solidColors(colors, m_look.colors)))
        update();
}

void ChartWidget::setMovingAverages(const QList<MovingAverageSpec>& averages)
{
    if (!assign(m_look.averages, solidAverages(averages)))
        return;
    m_indicators.setAverages(m_look.averages);
    update();
    m_reader.noteReading();
    Q_EMIT settingsChanged();
}

void ChartWidget::setPane(IndicatorKind kind, bool shown, int period)
{
    QList<IndicatorPane> panes = m_look.panes;
    for (IndicatorPane& pane : panes) {
        if (pane.kind == kind)
            pane = {kind, std::max(period, shortestPanePeriod), shown};
    }
    if (!assign(m_look.panes, panes))
        return;
    m_scene.setPanes(static_cast<int>(
        std::count_if(panes.cbegin(), panes.cend(), [](const IndicatorPane& pane) { return pane.shown; })));
    m_indicators.setPanes(panes);
    update();
    m_reader.noteReading();
    Q_EMIT settingsChanged();
}

IndicatorPane ChartWidget::pane(IndicatorKind kind) const
{
    const auto found = std::find_if(m_look.panes.cbegin(), m_look.panes.cend(),
        [kind](const IndicatorPane& pane) { return pane.kind == kind; });
    return found != m_look.panes.cend() ? *found : IndicatorPane{kind, 0, false};
}

void ChartWidget::setDrawings(const QList<Drawing>& drawings)
{
    if (!m_drawings.replace(drawings))
        return;
    update();
    m_reader.noteMarks();
}

bool ChartWidget::deleteSelectedDrawing()
{
    const std::optional<Drawing> removed = m_drawings.takeSelected();
    if (!removed)
        return false;
    update();
    m_reader.noteMarks();
    if (!removed->id.isEmpty())
        Q_EMIT drawingDeleted(removed->id);
    return true;
}

void ChartWidget::setTool(const QString& key)
{
    const QString before = tool();
    const bool hadPoint = m_gestures.tool().placed().has_value();
    m_gestures.chooseTool(key);
    updateCursor();
    update();
    if (tool() != before || hadPoint)
        Q_EMIT settingsChanged();
}

void ChartWidget::setMeasureMode(bool on)
{
    const bool changed = on != measureMode();
    if (!changed && !m_gestures.ruler().span())
        return;
    m_gestures.armRuler(on);
    updateCursor();
    update();
    if (changed)
        Q_EMIT settingsChanged();
}

void ChartWidget::setCovered(const QRect& part)
{
    if (assign(m_look.covered, part))
        update();
}

void ChartWidget::setTradeLevels(const QList<TradeLevel>& levels)
{
    if (!assign(m_levels, levels))
        return;
    m_gestures.followLevels(m_levels);
    updateCursor();
    update();
    m_reader.noteMarks();
}

std::optional<CrosshairPlace> ChartWidget::crosshair() const
{
    const KeyboardCrosshair& keyboard = m_gestures.crosshair();
    return keyboard.isShown() ? keyboard.placeIn(view(), candles()) : view().placeAt(m_pointer);
}

std::optional<QPoint> ChartWidget::crosshairPixel() const
{
    if (!crosshair())
        return std::nullopt;
    const KeyboardCrosshair& keyboard = m_gestures.crosshair();
    return keyboard.isShown() ? keyboard.pixel(view(), candles()) : m_pointer;
}

std::optional<Candle> ChartWidget::hoveredCandle() const
{
    const std::optional<CrosshairPlace> place = crosshair();
    return place ? m_scene.candleAt(place->bar) : std::nullopt;
}

ChartFrame ChartWidget::frame() const
{
    ChartFrame frame = frameOf(m_scene, size(), m_look, m_gestures);
    m_indicators.update(candles());
    frame.averageValues = m_indicators.averages();
    frame.paneValues = m_indicators.panes();
    frame.drawings = m_drawings.drawings();
    frame.levels = m_levels;
    frame.quoteStale = m_quoteStale;
    frame.pointer = crosshairPixel().value_or(nowhere);
    frame.crosshair = crosshair();
    frame.texts = &m_texts;
    return frame;
}

void ChartWidget::applyView(const ViewState& state)
{
    const ViewState before = m_scene.state();
    if (state == before)
        return;
    m_scene.setState(state);
    update();
    m_reader.noteReading(); // another bar may lie under the crosshair
    if (state.autoScroll != before.autoScroll) {
        m_reader.noteMarks();
        Q_EMIT autoScrollChanged(state.autoScroll);
    }
    if (state.autoScroll != before.autoScroll || state.chartShift != before.chartShift)
        Q_EMIT settingsChanged();
}

void ChartWidget::paintEvent(QPaintEvent* event)
{
    QPainter painter(this);
    m_bands.paint(painter, frame(), event->region());
    m_reader.noteSeen();
}

void ChartWidget::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton) {
        event->ignore();
        return;
    }
    letGo(); // a release may have been lost, or keys hold something
    const QPoint position = event->position().toPoint();
    if (!autoScroll() && view().scrollToEndButton().contains(position)) {
        scrollToEnd();
        return;
    }
    if (m_gestures.crosshair().isShown()) {
        movePointer(position);
        tellCrosshair();
    }
    const QRegion shownBefore = gestureArea();
    take(m_gestures.press(ground(), position), shownBefore);
}

void ChartWidget::take(const ChartGestures::Press& press, const QRegion& shownBefore)
{
    updateCursor();
    if (press.selected && m_drawings.select(*press.selected))
        update();
    if (press.taker == ChartGestures::Taker::Tool)
        update();
    else if (m_gestures.isDragging())
        updateOverlay(shownBefore + gestureArea());
    if (!press.created) {
        if (press.taker == ChartGestures::Taker::Tool)
            Q_EMIT settingsChanged(); // a point is placed, and the next click means another
        return;
    }
    m_drawings.append(*press.created);
    m_reader.noteMarks();
    Q_EMIT drawingCreated(*press.created);
    finishTool();
}

void ChartWidget::mouseMoveEvent(QMouseEvent* event)
{
    const QPoint position = event->position().toPoint();
    // A mouse that lies still takes nothing from the keyboard.
    if (m_gestures.crosshair().isShown() && position == m_pointer)
        return;
    // The release may have gone to another window.
    if (!event->buttons().testFlag(Qt::LeftButton))
        letGo();
    applyView(m_gestures.panned(position.x(), m_scene.state(), m_scene.series().count()));
    dragGesture(position);
    movePointer(position);
    tellCrosshair();
}

void ChartWidget::tellCrosshair()
{
    if (const std::optional<Candle> candle = hoveredCandle())
        Q_EMIT crosshairMoved(hoverText(*candle, digits()));
}

void ChartWidget::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton) {
        event->ignore();
        return;
    }
    if (!m_gestures.isHeldByKeys())
        drop();
}

void ChartWidget::drop()
{
    if (m_gestures.level().isActive())
        update();
    const std::optional<LevelDrag::Drop> drop = m_gestures.release(digits());
    m_reader.noteReading();
    updateCursor();
    if (drop)
        Q_EMIT levelDragged(drop->tradeId, drop->kind, drop->price);
}

void ChartWidget::wheelEvent(QWheelEvent* event)
{
    applyView(m_scene.withBarWidth(PanZoom::wheeled(barWidth(), event->angleDelta().y())));
    event->accept();
}

void ChartWidget::leaveEvent(QEvent* event)
{
    if (m_gestures.crosshair().isShown()) {
        m_pointer = nowhere;
    } else {
        movePointer(nowhere);
        Q_EMIT crosshairMoved(QString());
    }
    QWidget::leaveEvent(event);
}

void ChartWidget::movePointer(const QPoint& position)
{
    if (position == m_pointer && !m_gestures.crosshair().isShown())
        return;
    const std::optional<QPoint> before = crosshairPixel();
    m_gestures.hideCrosshair();
    m_pointer = position;
    repaintCrosshair(before);
}

void ChartWidget::repaintCrosshair(const std::optional<QPoint>& before)
{
    m_reader.noteReading();
    const std::optional<QPoint> now = crosshairPixel();
    if (before && now && !candles().empty())
        updateOverlay(overlays::pointer(ground(), m_gestures.tool(), *before)
            + overlays::pointer(ground(), m_gestures.tool(), *now));
    else if (before || now)
        update();
}

bool ChartWidget::moveCrosshair(const KeyboardCrosshair::Move& move)
{
    if (candles().empty() || m_gestures.isHeldByMouse())
        return false;
    const std::optional<QPoint> before = crosshairPixel();
    const QRegion heldBefore = gestureArea();
    applyView(m_gestures.walk(ground(), move.bars, crosshair()));
    m_gestures.climb(ground(), move.prices, digits());
    repaintCrosshair(before);
    if (m_gestures.isHeldByKeys())
        updateOverlay(heldBefore + gestureArea());
    tellCrosshair();
    return true;
}

bool ChartWidget::enterAtCrosshair()
{
    if (candles().empty() || m_gestures.isHeldByMouse())
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

bool ChartWidget::revealCrosshair()
{
    const bool moved = moveCrosshair({});
    if (crosshair() || !m_gestures.isHeldByKeys())
        return moved;
    letGo(); // its price lies beyond those of the chart
    return moveCrosshair({});
}

bool ChartWidget::hideKeyboardCrosshair()
{
    if (!m_gestures.crosshair().isShown())
        return false;
    const std::optional<QPoint> before = crosshairPixel();
    m_gestures.hideCrosshair();
    repaintCrosshair(before);
    if (hoveredCandle())
        tellCrosshair();
    else
        Q_EMIT crosshairMoved(QString());
    return true;
}

void ChartWidget::keyPressEvent(QKeyEvent* event)
{
    if (!takeKey(*event))
        QWidget::keyPressEvent(event);
}

bool ChartWidget::takeKey(const QKeyEvent& event)
{
    const int key = event.key();
    if (key == Qt::Key_Escape)
        return cancelGesture() || hideKeyboardCrosshair();
    if (key == Qt::Key_Delete || key == Qt::Key_Backspace)
        return deleteSelectedDrawing();
    // Widgets on the chart hand on what they have no use for.
    if (!hasFocus())
        return false;
    if (key == Qt::Key_Return || key == Qt::Key_Enter) {
        if (!m_gestures.crosshair().isShown() || (event.modifiers() & ~Qt::KeypadModifier))
            return false;
        // Held down, it must neither place nor send again.
        return event.isAutoRepeat() || enterAtCrosshair();
    }
    const std::optional<KeyboardCrosshair::Move> move = KeyboardCrosshair::moveOf(key, event.modifiers());
    return move && moveCrosshair(*move);
}

void ChartWidget::focusOutEvent(QFocusEvent* event)
{
    if (m_gestures.isHeldByKeys())
        letGo();
    QWidget::focusOutEvent(event);
}

void ChartWidget::hideEvent(QHideEvent* event)
{
    letGo();
    QWidget::hideEvent(event);
}

void ChartWidget::dragGesture(const QPoint& position)
{
    if (!m_gestures.isDragging())
        return;
    const QRegion before = gestureArea();
    m_gestures.drag(view(), position);
    m_reader.noteReading();
    updateOverlay(before + gestureArea());
}

bool ChartWidget::cancelGesture()
{
    const std::optional<ChartGestures::Taker> cancelled = m_gestures.cancel();
    if (!cancelled)
        return false;
    m_reader.noteReading();
    updateCursor();
    update();
    if (*cancelled == ChartGestures::Taker::Tool) {
        Q_EMIT settingsChanged();
        Q_EMIT toolFinished();
    }
    return true;
}

void ChartWidget::letGo()
{
    if (m_gestures.letGo()) {
        m_reader.noteReading();
        update();
    }
    updateCursor();
}

void ChartWidget::finishTool()
{
    setTool(QString());
    Q_EMIT toolFinished();
}

void ChartWidget::updateCursor()
{
    if (const Qt::CursorShape shape = m_gestures.cursor(); shape != cursor().shape())
        setCursor(shape);
}

ChartGestures::Ground ChartWidget::ground() const
{
    return {view(), m_scene.state(), candles(), timeframeMs(), m_levels, m_drawings.drawings()};
}

QRegion ChartWidget::gestureArea() const
{
    return overlays::inHand(view(), m_gestures, digits(), m_texts);
}

bool ChartWidget::paintsWholePixels() const
{
    return devicePixelRatioF() == std::floor(devicePixelRatioF());
}

void ChartWidget::updateOverlay(const QRegion& area)
{
    if (paintsWholePixels())
        update(area);
    else
        update();
}
