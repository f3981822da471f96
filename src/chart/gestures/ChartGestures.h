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

/// The hand on a chart: decides which behaviour a press goes to, and carries it on until it is let go. Knows
/// no widget; what happens to the chart is told in the answers.
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

    /// Behaviours in the order in which they are asked whether they want a press.
    enum class Taker { Tool, Ruler, Level, Object, Chart };

    struct Press {
        Taker taker = Taker::Chart;
        std::optional<Drawing> created;    ///< the tool's drawing is complete
        std::optional<qsizetype> selected; ///< the drawing to select, or -1 for none; absent: as it is
    };

    /// Whatever was in the hand must have been let go.
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
    /// Ends the foremost of what can be given up: a dragged level, a tool, a shown ruler. Tells which, if
    /// any; without the tool its points are gone as well.
    [[nodiscard]] std::optional<Taker> cancel();

    void chooseTool(const QString& key) { m_tool.choose(key); }
    void armRuler(bool on) { m_ruler.setArmed(on); }
    void followLevels(const QList<TradeLevel>& levels) { m_level.follow(levels); }
    void cancelLevel() { m_level.cancel(); }
    /// The bars in view have other numbers now, so many higher.
    void renumberBars(double bars) { m_panZoom.renumber(bars); }

    [[nodiscard]] const DrawingTool& tool() const { return m_tool; }
    [[nodiscard]] const Ruler& ruler() const { return m_ruler; }
    [[nodiscard]] const LevelDrag& level() const { return m_level; }
    [[nodiscard]] Qt::CursorShape cursor() const;

private:
    [[nodiscard]] std::optional<Press> pressTool(const Ground& ground, const QPoint& position);
    [[nodiscard]] bool pressRuler(const Ground& ground, const QPoint& position);
    [[nodiscard]] Press pressObject(const Ground& ground, const QPoint& position);

    PanZoom m_panZoom;
    Ruler m_ruler;
    DrawingTool m_tool;
    LevelDrag m_level;
};
