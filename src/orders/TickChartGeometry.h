#pragma once

#include <QLine>
#include <QList>
#include <QRect>
#include <QSize>

#include <optional>

/// Where the parts of the tick chart lie: a value computed for one widget size and one set of quotes.
class TickChartGeometry final {
public:
    static constexpr int scaleSteps = 5;

    struct ScaleStep {
        double value;
        int y;
    };

    /// Nothing when there is nothing to draw: fewer than two quotes, or no room for the plot. Both lists
    /// are of the same length and finite.
    [[nodiscard]] static std::optional<TickChartGeometry> of(
        QSize size, const QList<double>& bids, const QList<double>& asks);

    /// The area of the lines; the scale and the tags are to its right.
    [[nodiscard]] const QRect& plot() const { return m_plot; }
    [[nodiscard]] double low() const { return m_low; }
    [[nodiscard]] double high() const { return m_high; }
    /// The x just beyond the plot, where scale and tags begin.
    [[nodiscard]] int plotRight() const { return m_plot.x() + m_plot.width(); }

    [[nodiscard]] int yOf(double value) const;
    /// Of the quote at `index`, oldest first.
    [[nodiscard]] int xOf(qsizetype index) const;

    [[nodiscard]] ScaleStep scaleStep(int index) const;
    [[nodiscard]] QRect scaleLabelBox(int y) const;
    [[nodiscard]] QRect tagBox(double value) const;
    [[nodiscard]] QList<QLine> segments(const QList<double>& values) const;

private:
    TickChartGeometry(const QRect& plot, double low, double high, qsizetype quotes);

    QRect m_plot;
    double m_low;
    double m_high;
    qsizetype m_quotes;
};
