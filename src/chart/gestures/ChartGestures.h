#pragma once

#include "chart/data/Drawing.h"
#include "chart/gestures/DrawingTool.h"
#include "chart/gestures/LevelDrag.h"
#include "chart/gestures/PanZoom.h"
#include "chart/gestures/Ruler.h"

#include <QList>
#include <QString>

#include <optional>
#include <span>

class QPoint;

/// The hand on a chart: decides which behaviour takes a press, and carries that behaviour on until the button
/// is released. Knows no widget; the answers of its methods say what happens to the chart.
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
    /// Ends what only lives while the button is held. True when a level goes back to its place.
    bool letGo();
    /// Cancels one thing: a dragged level, else the tool with its points, else a shown ruler. Tells which;
    /// nothing when there is none.
    [[nodiscard]] std::optional<Taker> cancel();

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
    [[nodiscard]] std::optional<Press> pressTool(const Ground& ground, const QPoint& position);
    [[nodiscard]] bool pressRuler(const Ground& ground, const QPoint& position);
    [[nodiscard]] Press pressDrawing(const Ground& ground, const QPoint& position);

    PanZoom m_panZoom;
    Ruler m_ruler;
    DrawingTool m_tool;
    LevelDrag m_level;
};
