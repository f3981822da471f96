#include "practice/core/market/LineBlocks.h"

#include <algorithm>
#include <cstring>
#include <istream>

namespace practice {
namespace {

constexpr std::size_t blockSize = 1U << 18U;

} // namespace

std::optional<std::string_view> LineBlocks::next()
{
    std::size_t length = 0; // of the line, as far as it has been looked for
    const char* end = nullptr;
    do {
        const char* start = m_block.data() + m_next;
        end = static_cast<const char*>(std::memchr(start + length, '\n', m_end - m_next - length));
        length = end ? static_cast<std::size_t>(end - start) : m_end - m_next;
    } while (!end && readOn());
    if (!end && length == 0)
        return std::nullopt;
    std::string_view line(m_block.data() + m_next, length);
    m_next += length + (end ? 1 : 0);
    if (line.ends_with('\r'))
        line.remove_suffix(1);
    return line;
}

bool LineBlocks::failed() const
{
    return m_input.bad();
}

// The beginning of a line, which has come already, moves to the front. A longer line makes the block longer.
bool LineBlocks::readOn()
{
    if (!m_input)
        return false;
    const std::size_t begun = m_end - m_next;
    std::memmove(m_block.data(), m_block.data() + m_next, begun);
    m_next = 0;
    m_end = begun;
    if (m_block.size() < begun + blockSize)
        m_block.resize(std::max(2 * begun, begun + blockSize));
    m_input.read(m_block.data() + begun, static_cast<std::streamsize>(m_block.size() - begun));
    m_end += static_cast<std::size_t>(m_input.gcount());
    return m_end > begun;
}

} // namespace practice
