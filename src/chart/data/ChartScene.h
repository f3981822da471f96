#pragma once

#include "chart/data/ChartView.h"
#include "chart/data/ViewState.h"
#include "chart/series/CandleSeries.h"

#include <optional>
#include <vector>

/// A view and what a tick may change in its picture.
struct QuotedView {
    ChartView view;
    qint32 largestVolume = 1; ///< of the visible candles, at least 1
    double bid = 0.0;         ///< 0 where there is none
    double ask = 0.0;         ///< 0 where there is none
};

/// The candles of a chart, the quote on them and the part of them that is shown. Works the view out when it
/// is asked for, not when something changes.
class ChartScene final {
public:
    /// What stands at the right edge of a view.
    struct Place {
        qint64 time = 0;   ///< of the bar nearest to the edge, ms since the epoch
        double beyond = 0; ///< bars from there to the edge
    };

    /// Replaces the series (see CandleSeries for bad candles); the view stays where it is.
    void setCandles(std::vector<Candle> candles);
    /// Takes a quote at `timeMs` (ms since the epoch) and follows the market to a new candle. A price of 0
    /// means that there is none now: the last one is forgotten, and the quote goes into no candle. Gives
    /// nothing when the picture stays as it is. Quotes with a price that is no number or absurd are ignored.
    [[nodiscard]] std::optional<TickEffect> tick(double bid, double ask, qint64 timeMs);
    /// See CandleSeries::setTimeframeMs(). Tells whether it has changed.
    bool setTimeframeMs(qint64 ms);
    void setState(const ViewState& state);
    /// Reserves room for so many panes below the prices.
    void setPanes(int count);

    [[nodiscard]] const CandleSeries& series() const { return m_series; }
    /// Counts changes other than ticks into the newest candle.
    [[nodiscard]] quint64 seriesRevision() const { return m_seriesRevision; }
    [[nodiscard]] double bid() const { return m_bid; } ///< 0 where there is none
    [[nodiscard]] double ask() const { return m_ask; } ///< 0 where there is none
    [[nodiscard]] const ViewState& state() const { return m_state; }

    /// The state that shows the newest bar and follows it.
    [[nodiscard]] ViewState atEnd() const;
    /// Where the view stands; nothing while it follows the newest bar, or without candles.
    [[nodiscard]] std::optional<Place> place() const;
    /// The state that shows a place that was noted in another reading of the same series: the bar in which
    /// the place's time lies, or the nearer end of the series.
    [[nodiscard]] ViewState at(const Place& place) const;
    [[nodiscard]] ViewState withAutoScroll(bool on) const;
    [[nodiscard]] ViewState withShift(bool on) const;
    [[nodiscard]] ViewState withBarWidth(double pixels) const;
    /// The view of a picture of this size.
    [[nodiscard]] const ChartView& view(const QSize& size) const;
    [[nodiscard]] QuotedView quotedView(const QSize& size) const;
    /// The view as it was last asked for; nothing when it is to be worked out anew.
    [[nodiscard]] std::optional<QuotedView> lastView() const;
    /// The candle of a bar; nothing outside the series.
    [[nodiscard]] std::optional<Candle> candleAt(qsizetype bar) const;

private:
    CandleSeries m_series;
    quint64 m_seriesRevision = 0;
    ViewState m_state;
    int m_panes = 0;
    double m_bid = 0.0;
    double m_ask = 0.0;

    mutable bool m_viewStale = true;
    mutable ChartView m_view;
    mutable qint32 m_largestVolume = 1;
};
