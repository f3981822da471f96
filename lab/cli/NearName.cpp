#include "lab/cli/NearName.h"

#include <algorithm>
#include <cstddef>
#include <numeric>

namespace lab {

namespace {

std::string lowered(std::string_view text)
{
    std::string small(text);
    for (char& c : small)
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    return small;
}

/// How many letters have to be put in, taken out or exchanged to make the one of the other.
std::size_t distance(const std::string& one, const std::string& other)
{
    std::vector<std::size_t> row(other.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < one.size(); ++i) {
        std::size_t diagonal = row[0];
        row[0] = i + 1;
        for (std::size_t j = 0; j < other.size(); ++j) {
            const std::size_t exchanged = diagonal + (one[i] == other[j] ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({exchanged, row[j] + 1, diagonal + 1});
        }
    }
    return row.back();
}

} // namespace

std::string suggestion(std::string_view word, const std::vector<std::string_view>& names)
{
    constexpr std::size_t longest = 64; // nothing is near to more
    if (word.size() < 2 || word.size() > longest)
        return {};
    const std::string small = lowered(word);
    const std::size_t bearable = 1 + small.size() / 4;
    std::size_t least = bearable + 1;
    std::string_view nearest;
    for (const std::string_view name : names) {
        const std::string other = lowered(name);
        const std::size_t far = other == small                           ? 0
            : small.size() > 3 && other.find(small) != std::string::npos ? 1
                                                                         : distance(small, other);
        if (far < least) {
            least = far;
            nearest = name;
        }
    }
    return nearest.empty() ? std::string() : "; did you mean " + std::string(nearest) + '?';
}

} // namespace lab
