#pragma once

#include <filesystem>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>

namespace lab {

/// The hidden name, beside its place, of a file on its way there. Machine and process stand in it: by them
/// what a killed process has left is told from what others are making.
[[nodiscard]] std::filesystem::path draftOf(const std::filesystem::path& place);

/// The name of the file that is on its way under this name, with `end` behind it, by a process of this
/// machine that is no more; nothing for every other name.
[[nodiscard]] std::optional<std::string> leftDraftOf(std::string_view draft, std::string_view end);

/// Removes what such processes have left of the file at this place, under names with one of these ends.
void removeLeftDrafts(const std::filesystem::path& place, std::initializer_list<std::string_view> ends);

} // namespace lab
