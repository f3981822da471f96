#pragma once

#include <cstddef>
#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>

namespace practice {

/// The lines of a stream, read in large blocks: for files of millions of lines, of which only a block is in
/// memory.
class LineBlocks final {
public:
    /// `input` outlives this.
    explicit LineBlocks(std::istream& input)
        : m_input(input)
    {
    }

    /// The next line without its end (a line feed, or a carriage return and a line feed); nothing at the end
    /// of the stream. Valid until the next call.
    [[nodiscard]] std::optional<std::string_view> next();

    /// The stream broke off, which next() tells like an end.
    [[nodiscard]] bool failed() const;

private:
    bool readOn();

    std::istream& m_input;
    std::string m_block;
    std::size_t m_next = 0; // where the next line begins
    std::size_t m_end = 0;  // of what has been read
};

} // namespace practice
