#pragma once

#include "chart/data/ChartView.h"

#include <QPoint>
#include <QRect>
#include <QString>

#include <optional>

/// Measuring between two pixels of the plot: armed, a press sets the start, moving with the button held
/// stretches it, and after the release it stays on show until the next press, until cleared, or until it is
/// disarmed. It is held by pixels, not by prices: when the chart moves below it, it measures something else.
class Ruler final {
public:
    struct Span {
        QPoint start;
        QPoint end;

        bool operator==(const Span&) const = default;
    };

    /// Arms or disarms; a shown ruler goes.
    void setArmed(bool armed);
    [[nodiscard]] bool isArmed() const { return m_armed; }

    void begin(const QPoint& position);
    /// The end follows a position, kept within the plot.
    void stretch(const ChartView& view, const QPoint& position);
    /// The button is released: the ruler stays on show as it is.
    void finish() { m_stretching = false; }
    /// Nothing is shown any more; stays armed.
    void clear();

    [[nodiscard]] bool isStretching() const { return m_stretching; }
    /// What is shown.
    [[nodiscard]] const std::optional<Span>& span() const { return m_span; }

    /// "12 bars,  -340 points  (-0.31%)" from start to end; a point is the last of `digits` decimals.
    [[nodiscard]] static QString text(const ChartView& view, const Span& span, int digits);
    /// The box of a text that is `advance` pixels wide: beside and above the end, or on its other sides where
    /// it would leave the plot.
    [[nodiscard]] static QRect box(const ChartView& view, const QPoint& end, int advance);

private:
    bool m_armed = false;
    bool m_stretching = false;
    std::optional<Span> m_span;
};
