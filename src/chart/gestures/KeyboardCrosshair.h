#pragma once

#include "chart/data/ChartView.h"
#include "chart/data/CrosshairPlace.h"
#include "chart/data/ViewState.h"
#include "chart/series/Candle.h"

#include <QPoint>
#include <QtGlobal>

#include <optional>
#include <span>

/// A crosshair that is moved by keys. It holds a moment and a price rather than a pixel, so that it stays on
/// its candle while others come and the scales change. Where that is out of view, the next move brings it
/// back. Knows no widget.
class KeyboardCrosshair final {
public:
    /// What one key does.
    struct Move {
        qsizetype bars = 0; ///< to the right; ends with the series
        int prices = 0;     ///< steps upwards

        bool operator==(const Move&) const = default;
    };

    /// What a key does with these modifiers: arrows one step, ten with Shift; Home and End all bars at once.
    /// Nothing for any other key.
    [[nodiscard]] static std::optional<Move> moveOf(int key, Qt::KeyboardModifiers modifiers);

    /// The price `steps` steps above `price`, or below: a whole number of points (the last of `digits`
    /// decimals), round ones, at least a pixel apart. Ends with the plot; a price beyond it comes no further
    /// out.
    [[nodiscard]] static double stepped(const ChartView& view, double price, int steps, int digits);
    /// The view that shows a bar: `state`, moved no further along the series than needed. Follows the market
    /// where that brings the newest bar to the edge.
    [[nodiscard]] static ViewState revealing(const ChartView& view, ViewState state, qsizetype bar);

    [[nodiscard]] bool isShown() const { return m_spot.has_value(); }
    void hide() { m_spot.reset(); }

    /// Goes so many bars to the right. A hidden crosshair starts at `from`, else at the newest bar in view
    /// and the close of the bar that it comes to. Gives that bar; without candles it stays hidden.
    qsizetype walk(const ChartView& view, std::span<const Candle> candles, qsizetype bars,
        const std::optional<CrosshairPlace>& from);
    /// Goes so many steps up (see stepped()).
    void climb(const ChartView& view, int steps, int digits);
    /// Comes back to the plot's prices where these have moved away, on a whole point if there is one.
    void returnToPlot(const ChartView& view, int digits);
    void setPrice(double price);

    /// Where it stands, in view or not; nothing while it is hidden, or without candles. A moment without a
    /// candle of its own belongs to the candle before.
    [[nodiscard]] std::optional<CrosshairPlace> place(std::span<const Candle> candles) const;
    /// Where it stands in the plot; nothing while it is out of view.
    [[nodiscard]] std::optional<CrosshairPlace> placeIn(
        const ChartView& view, std::span<const Candle> candles) const;
    /// Its pixel, in the plot or not.
    [[nodiscard]] std::optional<QPoint> pixel(const ChartView& view, std::span<const Candle> candles) const;

private:
    struct Spot {
        qint64 time = 0; ///< of the candle, ms since the epoch
        double price = 0.0;
    };
    std::optional<Spot> m_spot;
};
