#pragma once

#include <QRegion>

#include <optional>

class ChartView;
struct QuotedView;

/// What a tick into the newest candle changes while the scales stay as they are.
namespace tickarea {

/// The newest candle and the price axis beside it, with all tags.
[[nodiscard]] QRect newestCandle(const ChartView& view);
/// The line of a bid or ask at `price`.
[[nodiscard]] QRect quoteLine(const ChartView& view, double price);
/// The texts at the top that tell the newest candle's prices.
[[nodiscard]] QRect candleTexts(const ChartView& view);
/// The columns of the volume histogram, which change together when its scale does.
[[nodiscard]] QRect volumes(const ChartView& view);
/// A pane by its number, for those whose scale follows their values.
[[nodiscard]] QRect pane(const ChartView& view, int number);

/// All of it but such panes, from one picture to the next. Nothing when the scales do not stay: everything
/// changes.
[[nodiscard]] std::optional<QRegion> changed(const QuotedView& before, const QuotedView& after);

} // namespace tickarea
