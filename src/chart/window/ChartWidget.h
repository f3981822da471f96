#pragma once

#include "chart/data/ChartLook.h"
#include "chart/data/ChartScene.h"
#include "chart/data/CrosshairPlace.h"
#include "chart/data/DrawingList.h"
#include "chart/data/IndicatorCache.h"
#include "chart/data/TradeLevel.h"
#include "chart/gestures/ToolHint.h"
#include "chart/layers/BandCache.h"
#include "chart/layers/TextPainter.h"
#include "chart/window/ChartHands.h"
#include "chart/window/ChartReader.h"

#include <QPoint>
#include <QWidget>

#include <optional>
#include <vector>

struct ChartFrame;

/// The chart canvas: holds a series, folds ticks into it, keeps the view and paints the layers.
/// Setters that change nothing repaint nothing; several changes within one turn of the event loop make one
/// paint.
class ChartWidget final : public QWidget {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ChartWidget)

public:
    using Drawing = ::Drawing;

    explicit ChartWidget(QWidget* parent = nullptr);
    ~ChartWidget() override;

    /// Replaces the series (see CandleSeries for bad candles), goes to its end and follows it.
    void setCandles(std::vector<Candle> candles);
    /// Replaces the series by a later reading of the same one. A view that follows the market goes to the
    /// end; any other keeps its candles in their places, and a gesture under way goes on. An empty list acts
    /// as with setCandles().
    void renewCandles(std::vector<Candle> candles);
    [[nodiscard]] const std::vector<Candle>& candles() const { return m_scene.series().candles(); }
    /// Changes whenever a candle other than the newest does, and when candles come or go.
    [[nodiscard]] quint64 seriesRevision() const { return m_scene.seriesRevision(); }

    /// A price update at `timeMs` (ms since the epoch); see ChartScene::tick() for prices that are missing.
    void onTick(double bid, double ask, qint64 timeMs);
    /// No prices come any more: bid and ask look old until the next tick with a price.
    void markQuoteStale();
    [[nodiscard]] double bid() const { return m_scene.bid(); } ///< 0 where there is none
    [[nodiscard]] double ask() const { return m_scene.ask(); } ///< 0 where there is none

    /// Length in ms of the candles that ticks build; below 1 means 15 minutes.
    void setTimeframeMs(qint64 ms);
    [[nodiscard]] qint64 timeframeMs() const { return m_scene.series().timeframeMs(); }

    /// Header texts; shown as plain text on one line.
    void setSymbolInfo(const QString& symbol, const QString& timeframeLabel, const QString& description);
    /// Decimals of every price text; shown clamped to 0..8.
    void setDigits(int digits);
    [[nodiscard]] int digits() const { return m_look.digits; }

    void setAutoScroll(bool on);
    [[nodiscard]] bool autoScroll() const { return m_scene.state().autoScroll; }
    void scrollToEnd();
    void setChartShift(bool on);
    [[nodiscard]] bool chartShift() const { return m_scene.state().chartShift; }
    [[nodiscard]] double barWidth() const { return m_scene.state().barWidth; }
    [[nodiscard]] double rightBarIndex() const { return m_scene.state().rightBarIndex; }
    /// What is in view; a state comes from the scene or from a gesture on it.
    [[nodiscard]] const ViewState& viewState() const { return m_scene.state(); }
    void setViewState(const ViewState& state);
    /// One step wider or narrower, within 1 to 40 pixels a bar, about the right edge.
    void zoomIn();
    void zoomOut();

    /// 0 candles, 1 bars, 2 line; any other value means candles.
    void setChartType(int type);
    [[nodiscard]] int chartType() const { return static_cast<int>(m_look.type); }
    /// An invalid colour keeps the one in use.
    void setColors(const ChartColors& colors);
    [[nodiscard]] const ChartColors& colors() const { return m_look.colors; }

    /// The averages drawn over the prices, in the order of their legend. An invalid colour becomes the first
    /// one of the palette; transparency is dropped.
    void setMovingAverages(const QList<MovingAverageSpec>& averages);
    [[nodiscard]] const QList<MovingAverageSpec>& movingAverages() const { return m_look.averages; }

    /// Shows or hides an indicator that has a pane of its own; a period below 2 becomes 2.
    void setPane(IndicatorKind kind, bool shown, int period);
    /// Hidden for an indicator without a pane of its own.
    [[nodiscard]] IndicatorPane pane(IndicatorKind kind) const;
    /// Every pane there is, shown or hidden.
    [[nodiscard]] const QList<IndicatorPane>& panes() const { return m_look.panes; }

    /// The drawings on the chart, later ones on top; replaces those shown. The selected drawing stays
    /// selected when its server id is among them. A drawing being placed is not touched.
    void setDrawings(const QList<Drawing>& drawings);
    [[nodiscard]] const QList<Drawing>& drawings() const { return m_drawings.drawings(); }
    /// Removes the selected drawing and tells its server id; false when none is selected.
    bool deleteSelectedDrawing();
    /// The kind of drawing that the next clicks place (see Drawing::type); empty or unknown ends placing.
    /// Points placed so far are dropped.
    void setTool(const QString& key) { m_hands.setTool(key); }
    [[nodiscard]] QString tool() const { return m_hands.gestures().tool().key(); }
    /// What the next click does; see toolHint().
    [[nodiscard]] QString hint() const { return toolHint(m_hands.gestures()); }

    /// Arms or disarms the ruler (see Ruler); a shown ruler goes. While armed, presses in the plot measure
    /// instead of panning, selecting or taking levels; placing a drawing goes first.
    void setMeasureMode(bool on) { m_hands.setMeasureMode(on); }
    [[nodiscard]] bool measureMode() const { return m_hands.gestures().ruler().isArmed(); }

    /// Texts that would lie below what covers this part of the chart are shown beside it.
    void setCovered(const QRect& part);

    /// The drag of a level goes on while its line is among them at the same price; otherwise it ends without
    /// asking for anything.
    void setTradeLevels(const QList<TradeLevel>& levels);
    [[nodiscard]] const QList<TradeLevel>& tradeLevels() const { return m_levels; }

    /// Where the crosshair stands, and with it all that tells of the candle there: the keyboard's, or that of
    /// the mouse. Nothing while it is out of view.
    [[nodiscard]] std::optional<CrosshairPlace> crosshair() const { return m_hands.crosshair(); }
    /// The candle under the crosshair; nothing while the pointer is outside the plot or beside the candles.
    [[nodiscard]] std::optional<Candle> hoveredCandle() const;

    /// Repaints what a step of a gesture has changed.
    void updatePart(const QRegion& area);

    /// What screen readers hear of the chart.
    [[nodiscard]] ChartReader& reader() { return m_reader; }

    /// The geometry that the next paint uses.
    [[nodiscard]] const ChartView& view() const { return m_scene.view(size()); }
    /// The snapshot that the next paint shows; valid until the widget changes.
    [[nodiscard]] ChartFrame frame() const;
    /// How often candles other than the newest were painted so far.
    [[nodiscard]] quint64 seriesPaints() const { return m_bands.seriesPaints(); }
    /// How many indicator values were computed so far.
    [[nodiscard]] quint64 indicatorValues() const { return m_indicators.computed(); }

Q_SIGNALS:
    void autoScrollChanged(bool on);
    /// Prices of the candle under the pointer as text; empty when the pointer has left.
    void crosshairMoved(const QString& ohlc);
    /// Chart type, shift, scrolling, indicators, tool (or what it has placed) or ruler have changed: what
    /// menus and the status bar show of a chart.
    void settingsChanged();
    void drawingCreated(const Drawing& drawing);
    void drawingUpdated(const Drawing& drawing);
    void drawingDeleted(const QString& id);
    void toolFinished();
    /// A level line was dropped at a new price.
    void levelDragged(const QString& tradeId, const QString& kind, double price);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    /// The panes that a tick may change as a whole, since their scales follow their values.
    [[nodiscard]] QRegion panesOfTick() const;
    void replaceCandles(std::vector<Candle> candles);
    /// Between device pixels an area may be rounded to less than what is painted into it.
    [[nodiscard]] bool paintsWholePixels() const;
    void setQuoteStale(bool stale);

    ChartScene m_scene;
    ChartLook m_look;
    DrawingList m_drawings;
    QList<TradeLevel> m_levels;
    bool m_quoteStale = false;

    mutable IndicatorCache m_indicators;
    mutable TextPainter m_texts;
    BandCache m_bands;
    ChartReader m_reader;
    ChartHands m_hands;
};
