#pragma once

#include "lab/core/RunResult.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace lab {

// How values are written into files and pages. None of this asks the locale or the time zone.

/// "2024-02-29T23:59:59.999Z".
[[nodiscard]] std::string isoTime(practice::TimeMs time);

/// "2024-02-29 23:59", for people; seconds and less are cut off.
[[nodiscard]] std::string minuteText(practice::TimeMs time);

/// "2024-02-29", of days since 1970-01-01.
[[nodiscard]] std::string isoDate(std::int64_t day);

/// The shortest text that reads as the same number; "null" for what is no finite one.
[[nodiscard]] std::string shortestText(double value);

/// With so many decimals, rounded half to even in the last one; never "-0.00". "null" for what is not finite.
[[nodiscard]] std::string fixedText(double value, int decimals);

/// The same with a comma between thousands, for people.
[[nodiscard]] std::string groupedText(double value, int decimals);

/// 16 hexadecimal digits.
[[nodiscard]] std::string hexText(std::uint64_t value);

/// BUY or SELL.
[[nodiscard]] std::string_view sideText(practice::Side side);

/// SL, TP, SCRIPT, END, MARGIN or RULE.
[[nodiscard]] std::string_view reasonText(ExitReason reason);

/// The text as one line of valid UTF-8: control characters become blanks, bytes that are no UTF-8 the
/// replacement character.
[[nodiscard]] std::string oneLine(std::string_view text);

/// The text as one line of at most so many bytes; where it was longer it ends in an ellipsis.
[[nodiscard]] std::string shortened(std::string_view text, std::size_t maxBytes);

/// The text as one line for an element or a quoted attribute of a page.
[[nodiscard]] std::string escaped(std::string_view text);

/// A minus as typography has it, for numbers that people read: "-1.5" becomes "−1.5".
[[nodiscard]] std::string typeset(std::string number);

} // namespace lab
