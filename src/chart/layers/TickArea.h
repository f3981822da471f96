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
/// The volume histogram, all of which changes when its scale does.
[[nodiscard]] QRect volumes(const ChartView& view);
/// The pane of this number, for panes whose scale follows their values.
[[nodiscard]] QRect pane(const ChartView& view, int number);

/// All of these but the panes, for a tick from one picture to the next. Nothing when the scales change: then
/// everything does.
[[nodiscard]] std::optional<QRegion> changed(const QuotedView& before, const QuotedView& after);

} // namespace tickarea
