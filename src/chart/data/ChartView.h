#pragma once

#include "chart/data/CrosshairPlace.h"
#include "chart/data/ViewState.h"
#include "chart/series/Candle.h"

#include <QPoint>
#include <QRect>
#include <QSize>

#include <optional>
#include <span>

/// Indices of neighbouring bars, both ends included.
struct BarRange {
    qsizetype first = 0;
    qsizetype last = -1;

    [[nodiscard]] bool isEmpty() const { return first > last; }
    [[nodiscard]] bool contains(qsizetype index) const { return index >= first && index <= last; }
    bool operator==(const BarRange&) const = default;
};

/// Prices at the bottom and the top of the plot.
struct PriceRange {
    double min = 0.0;
    double max = 1.0;

    [[nodiscard]] bool contains(double price) const { return price >= min && price <= max; }
    bool operator==(const PriceRange&) const = default;
};

/// The range that holds all `candles` and a margin below and above. While the view follows the market
/// (`followBid` above 0) it holds bid and ask as well, so that the live price lines stay in view. Without
/// candles and prices it is 0..1 and the margin.
[[nodiscard]] PriceRange paddedPriceRange(
    std::span<const Candle> candles, double followBid, double followAsk);

/// The geometry of one chart picture: rectangles, and both directions of every mapping between bars,
/// prices and pixels. An immutable value; any size, an empty series included, has a defined answer.
/// Right and bottom edges are the last pixel inside, as with QRect.
class ChartView final {
public:
    static constexpr int priceAxisWidth = 68;
    static constexpr int timeAxisHeight = 22;
    static constexpr int minPlotSide = 10;

    ChartView()
        : ChartView(QSize(), ViewState(), 0, 0)
    {
    }
    /// `size` of the widget in pixels; `count` candles in the series; `panes` lie below the plot.
    ChartView(QSize size, const ViewState& state, qsizetype count, int panes);

    /// The same view with another vertical scale.
    [[nodiscard]] ChartView withPrices(const PriceRange& prices) const;

    [[nodiscard]] QSize size() const { return m_size; }
    [[nodiscard]] const QRect& plot() const { return m_plot; }
    [[nodiscard]] int panes() const { return m_panes; }
    /// A pane by its number, 0 the lowest; empty where there is none.
    [[nodiscard]] QRect pane(int number) const;
    /// The pixel row that the time axis lies under: the last of the plot, or of the lowest pane.
    [[nodiscard]] int timeAxisEdge() const { return m_panes > 0 ? m_lowestPane.bottom() : m_plot.bottom(); }
    [[nodiscard]] QRect scrollToEndButton() const;
    /// Empty pixels kept right of the anchor bar.
    [[nodiscard]] int shift() const { return m_shift; }
    [[nodiscard]] double barWidth() const { return m_barWidth; }
    [[nodiscard]] double rightBarIndex() const { return m_rightBarIndex; }
    [[nodiscard]] qsizetype count() const { return m_count; }
    [[nodiscard]] const BarRange& visible() const { return m_visible; }
    [[nodiscard]] const PriceRange& prices() const { return m_prices; }

    /// Centre of a bar, in pixels; any index, also outside the series.
    [[nodiscard]] double barX(double index) const;
    /// The pixel column of a bar's centre.
    [[nodiscard]] int barPixel(qsizetype index) const;
    /// The nearest bar to a pixel column; may lie outside the series.
    [[nodiscard]] qsizetype barAt(double x) const;

    [[nodiscard]] double priceY(double price) const;
    /// The pixel row of a price, cut to an integer.
    [[nodiscard]] int pricePixel(double price) const;
    [[nodiscard]] double priceAt(double y) const;
    /// What lies below a pixel of the plot; nothing for a pixel outside it.
    [[nodiscard]] std::optional<CrosshairPlace> placeAt(const QPoint& pixel) const;

    bool operator==(const ChartView&) const = default;

private:
    QSize m_size;
    QRect m_plot;
    int m_panes;
    QRect m_lowestPane;
    int m_shift = 0;
    double m_barWidth;
    double m_rightBarIndex;
    qsizetype m_count;
    BarRange m_visible;
    PriceRange m_prices;
};
