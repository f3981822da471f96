#include "chart/window/ChartWidget.h"

#include "chart/layers/ChartFrame.h"
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
    , m_hands(*this, m_drawings, m_texts)
{
    connect(&m_hands, &ChartHands::crosshairMoved, this, &ChartWidget::crosshairMoved);
    connect(&m_hands, &ChartHands::settingsChanged, this, &ChartWidget::settingsChanged);
    connect(&m_hands, &ChartHands::drawingCreated, this, &ChartWidget::drawingCreated);
    connect(&m_hands, &ChartHands::toolFinished, this, &ChartWidget::toolFinished);
    connect(&m_hands, &ChartHands::levelDragged, this, &ChartWidget::levelDragged);
    ChartAccessible::install();
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    setMinimumSize(240, 160);
    setAttribute(Qt::WA_OpaquePaintEvent);
}

ChartWidget::~ChartWidget() = default;

void ChartWidget::setCandles(std::vector<Candle> candles)
{
    m_hands.cancelLevel();
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
    setViewState(place ? m_scene.at(*place) : m_scene.atEnd());
    m_hands.renumberBars(rightBarIndex() - before);
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
    setViewState(m_scene.withAutoScroll(on));
}

void ChartWidget::scrollToEnd()
{
    setViewState(m_scene.atEnd());
}

void ChartWidget::setChartShift(bool on)
{
    setViewState(m_scene.withShift(on));
}

void ChartWidget::zoomIn()
{
    setViewState(m_scene.withBarWidth(PanZoom::wider(barWidth())));
}

void ChartWidget::zoomOut()
{
    setViewState(m_scene.withBarWidth(PanZoom::narrower(barWidth())));
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

void ChartWidget::setCovered(const QRect& part)
{
    if (assign(m_look.covered, part))
        update();
}

void ChartWidget::setTradeLevels(const QList<TradeLevel>& levels)
{
    if (!assign(m_levels, levels))
        return;
    m_hands.followLevels();
    update();
    m_reader.noteMarks();
}

std::optional<Candle> ChartWidget::hoveredCandle() const
{
    const std::optional<CrosshairPlace> place = crosshair();
    return place ? m_scene.candleAt(place->bar) : std::nullopt;
}

ChartFrame ChartWidget::frame() const
{
    ChartFrame frame = frameOf(m_scene, size(), m_look, m_hands.gestures());
    m_indicators.update(candles());
    frame.averageValues = m_indicators.averages();
    frame.paneValues = m_indicators.panes();
    frame.drawings = m_drawings.drawings();
    frame.levels = m_levels;
    frame.quoteStale = m_quoteStale;
    frame.pointer = m_hands.crosshairPixel().value_or(frame.pointer);
    frame.crosshair = crosshair();
    frame.texts = &m_texts;
    return frame;
}

void ChartWidget::setViewState(const ViewState& state)
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
    event->setAccepted(m_hands.press(*event));
}

void ChartWidget::mouseMoveEvent(QMouseEvent* event)
{
    m_hands.move(*event);
}

void ChartWidget::mouseReleaseEvent(QMouseEvent* event)
{
    event->setAccepted(m_hands.release(*event));
}

void ChartWidget::wheelEvent(QWheelEvent* event)
{
    setViewState(m_scene.withBarWidth(PanZoom::wheeled(barWidth(), event->angleDelta().y())));
    event->accept();
}

void ChartWidget::leaveEvent(QEvent* event)
{
    m_hands.leave();
    QWidget::leaveEvent(event);
}

void ChartWidget::keyPressEvent(QKeyEvent* event)
{
    if (!m_hands.takeKey(*event))
        QWidget::keyPressEvent(event);
}

void ChartWidget::focusOutEvent(QFocusEvent* event)
{
    m_hands.loseFocus();
    QWidget::focusOutEvent(event);
}

void ChartWidget::hideEvent(QHideEvent* event)
{
    m_hands.letGo();
    QWidget::hideEvent(event);
}

bool ChartWidget::paintsWholePixels() const
{
    return devicePixelRatioF() == std::floor(devicePixelRatioF());
}

void ChartWidget::updatePart(const QRegion& area)
{
    if (paintsWholePixels())
        update(area);
    else
        update();
}
