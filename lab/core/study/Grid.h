#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace lab {

/// An input and the values that it takes in a study, in their order.
struct GridAxis {
    std::string name;
    std::vector<std::string> values;
};

/// The axis that "5:20:1" (from, to, step; decimal numbers), "a,b" or a single value stands for. Steps are
/// exact: 0.1:0.3:0.1 ends with 0.3. Only numbers have ranges (`isNumber`); within quotation marks a comma
/// separates nothing. Throws StudyError for what is none of this, a value that comes twice, and more than
/// `mostSets` values.
[[nodiscard]] GridAxis axisOf(const std::string& name, std::string_view text, bool isNumber);

/// Every combination of the values of some inputs. They are numbered from 0, the last axis running fastest.
class Grid final {
public:
    Grid() = default;
    /// Throws StudyError when the combinations cannot be counted.
    explicit Grid(std::vector<GridAxis> axes);

    [[nodiscard]] const std::vector<GridAxis>& axes() const { return m_axes; }
    [[nodiscard]] std::uint64_t size() const { return m_size; }
    /// Whether sets differ by this input; false for one with a single value, and for what is no axis.
    [[nodiscard]] bool isSwept(std::string_view name) const;
    /// How many values each axis has.
    [[nodiscard]] std::vector<std::size_t> sizes() const;
    /// Which value of each axis belongs to a set, whose number is below size().
    [[nodiscard]] std::vector<std::size_t> placesOf(std::uint64_t number) const;
    [[nodiscard]] std::uint64_t numberOf(const std::vector<std::size_t>& places) const;
    /// Name and value of each axis.
    [[nodiscard]] std::vector<std::pair<std::string, std::string>> inputsOf(std::uint64_t number) const;

private:
    std::vector<GridAxis> m_axes;
    std::uint64_t m_size = 1;
};

/// The most sets that a study tries.
inline constexpr std::uint64_t mostSets = 1'000'000;

/// The numbers of all sets. Throws StudyError when they are too many.
[[nodiscard]] std::vector<std::uint64_t> allSets(const Grid& grid);

/// So many different ones, ascending, drawn by a seed; all of them where there are no more. Throws StudyError
/// for more than `mostSets`.
[[nodiscard]] std::vector<std::uint64_t> sampledSets(
    const Grid& grid, std::uint64_t count, std::uint64_t seed);

} // namespace lab
