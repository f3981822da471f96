#include "chart/ChartWidget.h"

#include "chart/AveragePalette.h"
#include "chart/ChartFrame.h"
#include "chart/ChartTexts.h"
#include "chart/DrawingGeometry.h"
#include "chart/layers/CrosshairBoxes.h"
#include "chart/layers/OverlayAreas.h"
#include "chart/layers/TickArea.h"

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
constexpr int shortestRsiPeriod = 2;

/// The wanted colour without transparency, or the current one when there is none.
QColor solidColor(const QColor& wanted, const QColor& current)
{
    return wanted.isValid() ? QColor(wanted.red(), wanted.green(), wanted.blue()) : current;
}

std::span<const Candle> barsOf(const std::vector<Candle>& candles, const BarRange& range)
{
    if (range.isEmpty())
        return {};
    return std::span(candles).subspan(
        static_cast<std::size_t>(range.first), static_cast<std::size_t>(range.last - range.first + 1));
}

} // namespace

ChartWidget::ChartWidget(QWidget* parent)
    : QWidget(parent)
{
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    setMinimumSize(240, 160);
    setAttribute(Qt::WA_OpaquePaintEvent);
}

ChartWidget::~ChartWidget() = default;

void ChartWidget::setCandles(std::vector<Candle> candles)
{
    // A refresh moves the prices away from below the pointer.
    m_levelDrag.cancel();
    updateCursor();
    m_series.setCandles(std::move(candles));
    m_indicators.forgetBars();
    ++m_seriesRevision;
    viewChanged();
    applyView(atEnd());
}

void ChartWidget::onTick(double bid, double ask, qint64 timeMs)
{
    if (!isUsablePrice(bid) || !isUsablePrice(ask))
        return;
    const QuotedView before = quotedView();
    m_bid = bid;
    m_ask = ask;
    const TickEffect effect = m_series.foldTick(bid, ask, timeMs);
    if (effect == TickEffect::Appended) {
        ++m_seriesRevision;
        if (m_viewState.autoScroll)
            m_viewState = atEnd();
    }
    const bool quoteChanged = bid != before.bid || ask != before.ask;
    if (!quoteChanged && effect == TickEffect::Nothing)
        return;
    if (effect == TickEffect::Appended)
        viewChanged();
    else
        newestBarChanged(before);
}

void ChartWidget::setTimeframeMs(qint64 ms)
{
    const qint64 before = m_series.timeframeMs();
    m_series.setTimeframeMs(ms);
    if (m_series.timeframeMs() != before)
        update();
}

void ChartWidget::setSymbolInfo(
    const QString& symbol, const QString& timeframeLabel, const QString& description)
{
    if (symbol == m_symbol && timeframeLabel == m_timeframeLabel && description == m_description)
        return;
    m_symbol = symbol;
    m_timeframeLabel = timeframeLabel;
    m_description = description;
    update();
}

void ChartWidget::setDigits(int digits)
{
    if (digits == m_digits)
        return;
    m_digits = digits;
    update();
}

void ChartWidget::setAutoScroll(bool on)
{
    ViewState state = m_viewState;
    state.autoScroll = false;
    applyView(on ? atEnd() : state);
}

void ChartWidget::scrollToEnd()
{
    applyView(atEnd());
}

void ChartWidget::setChartShift(bool on)
{
    ViewState state = m_viewState;
    state.chartShift = on;
    applyView(state);
}

void ChartWidget::zoomIn()
{
    ViewState state = m_viewState;
    state.barWidth = PanZoom::wider(state.barWidth);
    applyView(state);
}

void ChartWidget::zoomOut()
{
    ViewState state = m_viewState;
    state.barWidth = PanZoom::narrower(state.barWidth);
    applyView(state);
}

void ChartWidget::setChartType(int type)
{
    const bool known = type == static_cast<int>(ChartType::Bars) || type == static_cast<int>(ChartType::Line);
    const ChartType wanted = known ? static_cast<ChartType>(type) : ChartType::Candles;
    if (wanted == m_type)
        return;
    m_type = wanted;
    update();
    Q_EMIT settingsChanged();
}

void ChartWidget::setColors(const ChartColors& colors)
{
    const ChartColors wanted{solidColor(colors.background, m_colors.background),
        solidColor(colors.grid, m_colors.grid), solidColor(colors.axis, m_colors.axis),
        solidColor(colors.up, m_colors.up), solidColor(colors.down, m_colors.down),
        solidColor(colors.line, m_colors.line), solidColor(colors.volume, m_colors.volume)};
    if (wanted == m_colors)
        return;
    m_colors = wanted;
    update();
}

void ChartWidget::setMovingAverages(const QList<MovingAverageSpec>& averages)
{
    QList<MovingAverageSpec> wanted = averages;
    for (MovingAverageSpec& average : wanted)
        average.color = solidColor(average.color, averageColor(0));
    if (wanted == m_averages)
        return;
    m_averages = wanted;
    m_indicators.setAverages(m_averages);
    update();
    Q_EMIT settingsChanged();
}

void ChartWidget::setRsi(bool enabled, int period)
{
    const int usable = std::max(period, shortestRsiPeriod);
    if (enabled == m_rsiEnabled && usable == m_rsiPeriod)
        return;
    m_rsiEnabled = enabled;
    m_rsiPeriod = usable;
    m_indicators.setStrength(enabled ? std::optional(usable) : std::nullopt);
    viewChanged();
    Q_EMIT settingsChanged();
}

void ChartWidget::setDrawings(const QList<Drawing>& drawings)
{
    if (m_drawings.replace(drawings))
        update();
}

bool ChartWidget::deleteSelectedDrawing()
{
    const std::optional<Drawing> removed = m_drawings.takeSelected();
    if (!removed)
        return false;
    update();
    if (!removed->id.isEmpty())
        Q_EMIT drawingDeleted(removed->id);
    return true;
}

void ChartWidget::setTool(const QString& key)
{
    const QString before = m_tool.key();
    m_tool.choose(key);
    updateCursor();
    update();
    if (m_tool.key() != before)
        Q_EMIT settingsChanged();
}

void ChartWidget::setMeasureMode(bool on)
{
    const bool changed = on != m_ruler.isArmed();
    if (!changed && !m_ruler.span())
        return;
    m_ruler.setArmed(on);
    updateCursor();
    update();
    if (changed)
        Q_EMIT settingsChanged();
}

void ChartWidget::setLegendIndent(int columns)
{
    if (columns == m_legendIndent)
        return;
    m_legendIndent = columns;
    update();
}

void ChartWidget::setTradeLevels(const QList<TradeLevel>& levels)
{
    if (levels == m_levels)
        return;
    m_levels = levels;
    if (m_levelDrag.isActive() && !m_levelDrag.follow(m_levels))
        updateCursor();
    update();
}

std::optional<Candle> ChartWidget::hoveredBar() const
{
    if (m_series.isEmpty() || !pointerInPlot())
        return std::nullopt;
    const qsizetype index = view().barAt(m_pointer.x());
    if (index < 0 || index >= m_series.count())
        return std::nullopt;
    return m_series.candles()[static_cast<std::size_t>(index)];
}

const ChartView& ChartWidget::view() const
{
    refreshView();
    return m_view;
}

void ChartWidget::viewChanged()
{
    m_viewStale = true;
    update();
}

ChartWidget::QuotedView ChartWidget::quotedView() const
{
    // A hidden chart, and one whose view is to be worked out anew, is painted whole.
    const bool usable = isVisible() && !m_viewStale && paintsWholePixels();
    return {usable ? std::optional(m_view) : std::nullopt, m_largestVolume, m_bid, m_ask};
}

void ChartWidget::newestBarChanged(const QuotedView& before)
{
    m_viewStale = true;
    if (!before.view || !(view() == *before.view)) {
        update();
        return;
    }
    QRegion changed = tickarea::newestBar(m_view);
    changed += tickarea::barTexts(m_view);
    for (const double price : {before.bid, before.ask, m_bid, m_ask})
        changed += tickarea::quoteLine(m_view, price);
    if (m_largestVolume != before.largestVolume)
        changed += tickarea::volumes(m_view);
    update(changed);
}

bool ChartWidget::paintsWholePixels() const
{
    return devicePixelRatioF() == std::floor(devicePixelRatioF());
}

void ChartWidget::refreshView() const
{
    if (!m_viewStale && m_view.size() == size())
        return;
    const ChartView bars(size(), m_viewState, m_series.count(), m_rsiEnabled);
    const std::span<const Candle> visible = barsOf(m_series.candles(), bars.visible());
    const double followBid = m_viewState.autoScroll ? m_bid : 0.0;
    m_view = bars.withPrices(paddedPriceRange(visible, followBid, m_ask));
    m_largestVolume = 1;
    for (const Candle& bar : visible)
        m_largestVolume = std::max(m_largestVolume, bar.volume);
    m_viewStale = false;
}

ChartFrame ChartWidget::frame() const
{
    ChartFrame frame;
    frame.view = view();
    frame.candles = m_series.candles();
    frame.bars = frame.view.visible();
    if (const qsizetype newest = m_series.count() - 1; !frame.bars.isEmpty() && frame.bars.last == newest)
        frame.liveBar = newest;
    frame.seriesRevision = m_seriesRevision;
    frame.largestVolume = m_largestVolume;
    frame.colors = m_colors;
    frame.type = m_type;
    frame.digits = m_digits;
    frame.timeframeMs = m_series.timeframeMs();
    frame.symbol = m_symbol;
    frame.timeframeLabel = m_timeframeLabel;
    frame.description = m_description;
    m_indicators.update(m_series.candles());
    frame.averages = m_averages;
    frame.legendIndent = m_legendIndent;
    frame.averageValues = m_indicators.averages();
    frame.rsiPeriod = m_rsiPeriod;
    frame.rsiValues = m_indicators.strength();
    frame.bid = m_bid;
    frame.ask = m_ask;
    frame.drawings = m_drawings.drawings();
    frame.levels = m_levels;
    frame.draggedLevel = m_levelDrag.index();
    frame.draggedPrice = m_levelDrag.price();
    if (m_tool.placed())
        frame.preview = ChartFrame::Preview{*m_tool.kind(), *m_tool.placed()};
    frame.ruler = m_ruler.span();
    frame.autoScroll = m_viewState.autoScroll;
    frame.chartShift = m_viewState.chartShift;
    frame.pointer = m_pointer;
    frame.pointerInPlot = pointerInPlot();
    frame.exposed = rect();
    frame.texts = &m_texts;
    return frame;
}

ViewState ChartWidget::atEnd() const
{
    ViewState state = m_viewState;
    state.rightBarIndex = static_cast<double>(std::max<qsizetype>(m_series.count() - 1, 0));
    state.autoScroll = true;
    return state;
}

void ChartWidget::applyView(const ViewState& state)
{
    if (state == m_viewState)
        return;
    const bool scrollChanged = state.autoScroll != m_viewState.autoScroll;
    const bool shiftChanged = state.chartShift != m_viewState.chartShift;
    m_viewState = state;
    viewChanged();
    if (scrollChanged)
        Q_EMIT autoScrollChanged(state.autoScroll);
    if (scrollChanged || shiftChanged)
        Q_EMIT settingsChanged();
}

bool ChartWidget::pointerInPlot() const
{
    return view().plot().contains(m_pointer);
}

void ChartWidget::paintEvent(QPaintEvent* event)
{
    QPainter painter(this);
    m_bands.paint(painter, frame(), event->region());
}

void ChartWidget::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton) {
        event->ignore();
        return;
    }
    const QPoint position = event->position().toPoint();
    if (!m_viewState.autoScroll && view().scrollToEndButton().contains(position)) {
        scrollToEnd();
        return;
    }
    letGo(); // a release may have been lost
    if (pressTool(position) || pressRuler(position) || pressLevel(position) || pressDrawing(position))
        return;
    m_panZoom.begin(position.x(), m_viewState);
    updateCursor();
}

void ChartWidget::mouseMoveEvent(QMouseEvent* event)
{
    // The release may have gone to another window.
    if (!event->buttons().testFlag(Qt::LeftButton))
        letGo();
    const QPoint position = event->position().toPoint();
    if (m_panZoom.isPanning())
        applyView(m_panZoom.dragged(position.x(), m_viewState, m_series.count()));
    stretchRuler(position);
    dragLevel(position);
    movePointer(position);
    if (const std::optional<Candle> bar = hoveredBar())
        Q_EMIT crosshairMoved(hoverText(*bar, m_digits));
}

void ChartWidget::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton) {
        event->ignore();
        return;
    }
    dropLevel();
    letGo();
}

void ChartWidget::wheelEvent(QWheelEvent* event)
{
    ViewState state = m_viewState;
    state.barWidth = PanZoom::wheeled(state.barWidth, event->angleDelta().y());
    applyView(state);
    event->accept();
}

void ChartWidget::leaveEvent(QEvent* event)
{
    movePointer(nowhere);
    Q_EMIT crosshairMoved(QString());
    QWidget::leaveEvent(event);
}

void ChartWidget::movePointer(const QPoint& position)
{
    if (position == m_pointer)
        return;
    const QPoint before = std::exchange(m_pointer, position);
    const bool wasInPlot = view().plot().contains(before);
    const bool isInPlot = pointerInPlot();
    if (wasInPlot && isInPlot && !m_series.isEmpty())
        updateOverlay(crosshair::area(view(), before) + crosshair::area(view(), position)
            + previewArea(before) + previewArea(position));
    else if (wasInPlot || isInPlot)
        update();
}

void ChartWidget::keyPressEvent(QKeyEvent* event)
{
    const bool deletes = event->key() == Qt::Key_Delete || event->key() == Qt::Key_Backspace;
    if ((event->key() == Qt::Key_Escape && cancelGesture()) || (deletes && deleteSelectedDrawing()))
        return;
    QWidget::keyPressEvent(event);
}

void ChartWidget::hideEvent(QHideEvent* event)
{
    letGo();
    QWidget::hideEvent(event);
}

bool ChartWidget::pressTool(const QPoint& position)
{
    if (!m_tool.isActive() || !view().plot().contains(position))
        return false;
    const std::optional<DrawingPoint> point
        = DrawingGeometry(view(), m_series.candles(), timeframeMs()).anchor(position);
    if (!point)
        return false;
    if (const std::optional<Drawing> drawing = m_tool.click(*point)) {
        m_drawings.append(*drawing);
        Q_EMIT drawingCreated(*drawing);
        finishTool();
    }
    update();
    return true;
}

bool ChartWidget::pressRuler(const QPoint& position)
{
    if (!m_ruler.isArmed() || m_series.isEmpty() || !view().plot().contains(position))
        return false;
    const QRegion before = rulerArea();
    m_ruler.begin(position);
    updateOverlay(before + rulerArea());
    return true;
}

bool ChartWidget::pressLevel(const QPoint& position)
{
    if (m_series.isEmpty() || !m_levelDrag.begin(m_levels, view(), position.y()))
        return false;
    updateCursor();
    updateOverlay(draggedLevelArea());
    return true;
}

bool ChartWidget::pressDrawing(const QPoint& position)
{
    if (m_tool.isActive() || m_series.isEmpty())
        return false;
    const DrawingGeometry geometry(view(), m_series.candles(), timeframeMs());
    const qsizetype hit = geometry.topmostHit(m_drawings.drawings(), position);
    if (m_drawings.select(hit))
        update();
    return hit >= 0;
}

void ChartWidget::finishTool()
{
    setTool(QString());
    Q_EMIT toolFinished();
}

void ChartWidget::stretchRuler(const QPoint& position)
{
    if (!m_ruler.isStretching())
        return;
    const QRegion before = rulerArea();
    m_ruler.stretch(view(), position);
    updateOverlay(before + rulerArea());
}

void ChartWidget::dragLevel(const QPoint& position)
{
    if (!m_levelDrag.isActive())
        return;
    const QRegion before = draggedLevelArea();
    m_levelDrag.move(view(), position.y());
    updateOverlay(before + draggedLevelArea());
}

void ChartWidget::dropLevel()
{
    if (!m_levelDrag.isActive())
        return;
    const std::optional<LevelDrag::Drop> drop = m_levelDrag.drop(m_digits);
    updateCursor();
    update();
    if (drop)
        Q_EMIT levelDragged(drop->tradeId, drop->kind, drop->price);
}

bool ChartWidget::cancelGesture()
{
    if (m_levelDrag.isActive()) {
        letGo();
        return true;
    }
    if (m_tool.isActive()) {
        finishTool();
        return true;
    }
    if (m_ruler.span()) {
        m_ruler.clear();
        update();
        return true;
    }
    return false;
}

void ChartWidget::letGo()
{
    if (m_levelDrag.isActive()) {
        m_levelDrag.cancel();
        update();
    }
    m_ruler.finish();
    m_panZoom.end();
    updateCursor();
}

void ChartWidget::updateCursor()
{
    Qt::CursorShape shape = Qt::ArrowCursor;
    if (m_levelDrag.isActive())
        shape = Qt::SizeVerCursor;
    else if (m_panZoom.isPanning())
        shape = Qt::ClosedHandCursor;
    else if (m_tool.isActive() || m_ruler.isArmed())
        shape = Qt::CrossCursor;
    if (shape != cursor().shape())
        setCursor(shape);
}

QRegion ChartWidget::previewArea(const QPoint& pointer) const
{
    if (!m_tool.placed())
        return {};
    const std::optional<QPoint> placed
        = DrawingGeometry(view(), m_series.candles(), timeframeMs()).pixel(*m_tool.placed());
    return placed ? overlays::preview(view(), *m_tool.kind(), *placed, pointer) : QRegion();
}

QRegion ChartWidget::rulerArea() const
{
    return m_ruler.span() ? overlays::ruler(view(), *m_ruler.span(), m_digits, m_texts) : QRegion();
}

QRegion ChartWidget::draggedLevelArea() const
{
    return m_levelDrag.isActive() ? overlays::level(view(), m_levelDrag.price()) : QRegion();
}

void ChartWidget::updateOverlay(const QRegion& area)
{
    if (paintsWholePixels())
        update(area);
    else
        update();
}
