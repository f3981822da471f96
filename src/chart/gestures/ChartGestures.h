#pragma once

#include "chart/data/Drawing.h"
#include "chart/gestures/DrawingTool.h"
#include "chart/gestures/KeyboardCrosshair.h"
#include "chart/gestures/LevelDrag.h"
#include "chart/gestures/PanZoom.h"
#include "chart/gestures/Ruler.h"

#include <QList>
#include <QPoint>
#include <QString>

#include <optional>
#include <span>

/// The hand on a chart: decides which behaviour takes a press, and carries that behaviour on until the button
/// is released. Enter at the keyboard's crosshair is such a press, and the next Enter the release. Knows no
/// widget; the answers of its methods say what happens to the chart.
class ChartGestures final {
public:
    /// The chart that a press falls on. Valid as long as what it refers to.
    struct Ground {
        const ChartView& view;
        const ViewState& state;
        std::span<const Candle> candles;
        qint64 timeframeMs; ///< length of a candle
        const QList<TradeLevel>& levels;
        std::span<const Drawing> drawings;
    };

    /// The behaviours, in the order in which a press is offered to them.
    enum class Taker { Tool, Ruler, Level, Drawing, Chart };

    struct Press {
        Taker taker = Taker::Chart;
        std::optional<Drawing> created;    ///< the tool's drawing is complete
        std::optional<qsizetype> selected; ///< the drawing to select, -1 for none; absent: no change
    };

    /// Call letGo() before: nothing may be held any more.
    [[nodiscard]] Press press(const Ground& ground, const QPoint& position);
    /// Whether drag() moves anything.
    [[nodiscard]] bool isDragging() const { return m_level.isActive() || m_ruler.isStretching(); }
    /// Level or ruler follow the pointer.
    void drag(const ChartView& view, const QPoint& position);
    /// The view over `count` candles with the pointer at column `x`: the same unless the chart is in the
    /// hand.
    [[nodiscard]] ViewState panned(int x, const ViewState& state, qsizetype count) const;
    /// The button goes up. Gives what a dropped level asks for (see LevelDrag::drop()).
    [[nodiscard]] std::optional<LevelDrag::Drop> release(int digits);
    /// Ends what only lives while it is held. True when a level goes back to its place.
    bool letGo();
    /// Cancels one thing: a dragged level, else the tool with its points, else a shown ruler. Tells which;
    /// nothing when there is none.
    [[nodiscard]] std::optional<Taker> cancel();

    /// Moves the keyboard's crosshair along the series; a hidden one appears (see KeyboardCrosshair::walk()).
    /// Gives the view that shows it. Once the chart shows that, climb() has to follow.
    [[nodiscard]] ViewState walk(
        const Ground& ground, qsizetype bars, const std::optional<CrosshairPlace>& from);
    /// Moves the keyboard's crosshair so many prices up, and with it what Enter has taken.
    void climb(const Ground& ground, int steps, int digits);
    /// A press at the keyboard's crosshair. Call it while that is in view and nothing is held.
    [[nodiscard]] Press enter(const Ground& ground);
    void hideCrosshair() { m_crosshair.hide(); }
    [[nodiscard]] const KeyboardCrosshair& crosshair() const { return m_crosshair; }
    /// Whether Enter has taken something, which the next one releases.
    [[nodiscard]] bool isHeldByKeys() const { return m_byKeys && isDragging(); }
    /// Whether the mouse holds something; keys have to wait for it.
    [[nodiscard]] bool isHeldByMouse() const { return m_panZoom.isPanning() || (isDragging() && !m_byKeys); }

    void chooseTool(const QString& key) { m_tool.choose(key); }
    void armRuler(bool on) { m_ruler.setArmed(on); }
    void followLevels(const QList<TradeLevel>& levels) { m_level.follow(levels); }
    void cancelLevel() { m_level.cancel(); }
    /// The numbers of the bars in view have become higher by so many.
    void renumberBars(double bars) { m_panZoom.renumber(bars); }

    [[nodiscard]] const DrawingTool& tool() const { return m_tool; }
    [[nodiscard]] const Ruler& ruler() const { return m_ruler; }
    [[nodiscard]] const LevelDrag& level() const { return m_level; }
    [[nodiscard]] Qt::CursorShape cursor() const;

private:
    /// A pixel, and the point of a drawing that is meant by it.
    struct Spot {
        QPoint pixel;
        std::optional<DrawingPoint> point;
    };

    [[nodiscard]] Press pressAt(const Ground& ground, const Spot& spot);
    [[nodiscard]] std::optional<Press> pressTool(const Ground& ground, const Spot& spot);
    [[nodiscard]] bool pressRuler(const Ground& ground, const QPoint& position);
    /// Stretches the ruler to the crosshair, from where it began, however the chart has moved.
    void measureByKeys(const Ground& ground);
    [[nodiscard]] Press pressDrawing(const Ground& ground, const QPoint& position);

    PanZoom m_panZoom;
    Ruler m_ruler;
    DrawingTool m_tool;
    LevelDrag m_level;
    KeyboardCrosshair m_crosshair;
    KeyboardCrosshair m_rulerStart; ///< where Enter has begun to measure
    bool m_byKeys = false;          ///< what is held was taken by Enter
};
