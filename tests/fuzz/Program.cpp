// A program of fuzz targets. Called as fuzz_NAME it is the target of that name; with --longest it only tells
// how long inputs get.

#include "fuzz/Target.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace {

struct Known {
    fuzz::Attempt attempt = nullptr;
    std::size_t longest = 0;
    const char* option = nullptr;
};

std::map<std::string, Known>& targets()
{
    static std::map<std::string, Known> all;
    return all;
}

Known chosen;

/// A piece of an input that stands for itself, written many times.
struct Repeat {
    std::string_view piece;
    std::size_t times = 1;
    std::size_t markSize = 0; ///< what stands for it
};

/// The one that a text begins with.
std::optional<Repeat> repeatAt(std::string_view text)
{
    constexpr std::string_view end = "~)";
    if (text.size() < 4 || text[2] < 'A' || text[2] > 'Z')
        return std::nullopt;
    const std::size_t times = std::size_t{1} << static_cast<unsigned>(text[2] - 'A');
    if (text.starts_with("~*"))
        return Repeat{text.substr(3, 1), times, 4};
    const std::size_t place = text.find(end, 3);
    if (!text.starts_with("~(") || place == std::string_view::npos)
        return std::nullopt;
    return Repeat{text.substr(3, place - 3), times, place + end.size()};
}

/// The text with its repeats written out, cut where it gets too long.
std::string writtenOut(std::string_view text, std::size_t longest)
{
    std::string result;
    while (!text.empty() && result.size() < longest) {
        const Repeat next = repeatAt(text).value_or(Repeat{text.substr(0, 1), 1, 1});
        const std::size_t room = next.piece.empty() ? 0 : longest / next.piece.size() + 1;
        for (std::size_t i = 0; i < std::min(next.times, room); ++i)
            result += next.piece;
        text.remove_prefix(next.markSize);
    }
    result.resize(std::min(result.size(), longest));
    return result;
}

} // namespace

fuzz::Target::Target(const char* name, Attempt attempt, std::size_t longest, const char* option)
{
    targets().emplace(name, Known{attempt, longest, option});
}

// libFuzzer calls both of these.
extern "C" int LLVMFuzzerInitialize(int* count, char*** arguments)
{
    const std::string called = **arguments;
    const std::string name = called.substr(called.rfind('/') + 1);
    const auto found = targets().find(name.substr(name.find('_') + 1));
    if (found == targets().end()) {
        std::fprintf(stderr, "%s is no target; call this program by the name of one\n", called.c_str());
        std::exit(1);
    }
    chosen = found->second;
    if (*count == 2 && std::string_view((*arguments)[1]) == "--longest") {
        std::printf("%zu\n", chosen.longest);
        std::exit(0);
    }
    // The first of all options: another one behind them has the last word.
    static std::string longest = "-max_len=" + std::to_string(chosen.longest);
    static std::vector<char*> all(*arguments, *arguments + *count);
    all.insert(all.begin() + 1, longest.data());
    static std::string option = chosen.option ? chosen.option : "";
    if (!option.empty())
        all.insert(all.begin() + 1, option.data());
    *count = static_cast<int>(all.size());
    all.push_back(nullptr);
    *arguments = all.data();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    if (text.find('~') == std::string_view::npos)
        return chosen.attempt(data, size);
    const std::string all = writtenOut(text, chosen.longest);
    // Of just this size, so that reading on behind the end is noticed.
    const std::vector<std::uint8_t> bytes(all.begin(), all.end());
    return chosen.attempt(bytes.data(), bytes.size());
}
