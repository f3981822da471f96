#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace lab {

/// A part of a page under a heading. `title` is escaped, `body` is HTML already; `id` needs no escaping.
[[nodiscard]] std::string pageSection(std::string_view id, std::string_view title, std::string_view body);

/// The name of a curve and its colour, a variable of the style sheet such as "--accent".
struct CurveName {
    std::string_view colour;
    std::string name; ///< is escaped
};

/// The place of a chart that the page's script draws: which curve is which, the chart, and a line for the
/// values under the pointer. `label` says what it shows to those who do not see it.
[[nodiscard]] std::string chartPlace(
    std::string_view id, std::string_view label, const std::vector<CurveName>& curves);

/// A whole page with style and scripts in it, which loads nothing and is not allowed to. `title` is escaped;
/// `header` and `body` are HTML; `data` is JSON for the charts, without "<".
[[nodiscard]] std::string pageFrame(
    std::string_view title, std::string_view header, std::string_view body, std::string_view data);

} // namespace lab
