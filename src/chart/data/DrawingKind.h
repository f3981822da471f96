#pragma once

#include <QStringView>

#include <optional>

/// The kinds of drawings that a chart shows.
enum class DrawingKind { HorizontalLine, VerticalLine, TrendLine, Rectangle, Fibonacci };

/// The kind that a key such as "hline" (see Drawing::type) names; nothing for any other text.
[[nodiscard]] std::optional<DrawingKind> drawingKind(QStringView key);

/// How many points a drawing of this kind needs: 1 or 2.
[[nodiscard]] int pointsNeeded(DrawingKind kind);
