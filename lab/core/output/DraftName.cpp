#include "lab/core/output/DraftName.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <system_error>
#include <unistd.h>
#include <vector>

namespace lab {

namespace fs = std::filesystem;

namespace {

/// The name of this machine; empty where it has none.
std::string machine()
{
    char name[256] = {};
    return ::gethostname(name, sizeof name - 1) == 0 ? name : "";
}

bool isGone(std::string_view process)
{
    pid_t number = 0;
    const char* const end = process.data() + process.size();
    const auto [rest, error] = std::from_chars(process.data(), end, number);
    return error == std::errc() && rest == end && number > 0 && ::kill(number, 0) != 0 && errno == ESRCH;
}

} // namespace

fs::path draftOf(const fs::path& place)
{
    return place.parent_path()
        / ('.' + place.filename().string() + '.' + machine() + '.' + std::to_string(::getpid()));
}

std::optional<std::string> leftDraftOf(std::string_view draft, std::string_view end)
{
    if (!draft.starts_with('.') || !draft.ends_with(end))
        return std::nullopt;
    draft.remove_suffix(end.size());
    const std::size_t dot = draft.rfind('.');
    const std::string mark = '.' + machine();
    if (!isGone(draft.substr(dot + 1)) || !draft.substr(0, dot).ends_with(mark) || dot < mark.size() + 2)
        return std::nullopt;
    return std::string(draft.substr(1, dot - mark.size() - 1));
}

void removeLeftDrafts(const fs::path& place, std::initializer_list<std::string_view> ends)
{
    const fs::path parent = place.parent_path();
    const std::string name = place.filename().string();
    std::error_code error;
    std::vector<fs::path> left;
    for (fs::directory_iterator file(parent.empty() ? "." : parent, error), last; !error && file != last;
         file.increment(error)) {
        const std::string found = file->path().filename().string();
        if (std::ranges::any_of(ends, [&](std::string_view end) { return leftDraftOf(found, end) == name; }))
            left.push_back(file->path());
    }
    for (const fs::path& file : left)
        fs::remove(file, error);
}

} // namespace lab
