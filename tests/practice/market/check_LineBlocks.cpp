#include "practice/Check.h"

#include "practice/core/market/HashRandom.h"
#include "practice/core/market/LineBlocks.h"

#include <sstream>
#include <streambuf>
#include <string>
#include <vector>

using namespace practice;

namespace {

std::vector<std::string> linesOf(const std::string& text)
{
    std::istringstream input(text);
    LineBlocks blocks(input);
    std::vector<std::string> lines;
    while (const auto line = blocks.next())
        lines.emplace_back(*line);
    CHECK(!blocks.next());
    CHECK(!blocks.failed());
    return lines;
}

// As the standard library divides a text into lines.
std::vector<std::string> expectedLines(const std::string& text)
{
    std::istringstream input(text);
    std::vector<std::string> lines;
    for (std::string line; std::getline(input, line);) {
        if (line.ends_with('\r'))
            line.pop_back();
        lines.push_back(line);
    }
    return lines;
}

// Gives some bytes and breaks off.
class BrokenSource final : public std::streambuf {
    int_type underflow() override
    {
        if (m_isAsked)
            throw 1;
        m_isAsked = true;
        setg(m_bytes, m_bytes, m_bytes + 3);
        return 'a';
    }
    char m_bytes[3] = {'a', '\n', 'b'};
    bool m_isAsked = false;
};

} // namespace

TEST_CASE("lines end with a line feed, with or without a carriage return, the last one with neither")
{
    CHECK(linesOf("").empty());
    CHECK(linesOf("one\r\n\n two\rthree\nfour")
        == (std::vector<std::string>{"one", "", " two\rthree", "four"}));
    CHECK(linesOf("one\n") == std::vector<std::string>{"one"});
    CHECK(linesOf("\r") == std::vector<std::string>{""});
    CHECK(linesOf(std::string("a\0b\n", 4)) == std::vector<std::string>{std::string("a\0b", 3)});
}

TEST_CASE("wherever a block ends, the lines are the same")
{
    constexpr std::size_t block = 262'144;
    for (std::size_t before = block - 4; before < block + 4; ++before) {
        const std::string text = std::string(before, 'x') + "\r\nyy\r\n\nz";
        CHECK(linesOf(text) == expectedLines(text));
    }
    HashRandom random(3);
    std::string text;
    while (text.size() < 5 * block)
        text += std::string(static_cast<std::size_t>(random.uniform() * 300), 'a') + "\n";
    text += std::string(3 * block, 'b') + "\nend";
    const std::vector<std::string> lines = linesOf(text);
    CHECK(lines.size() > 8000);
    CHECK(lines == expectedLines(text));
}

TEST_CASE("a stream that breaks off is told apart from its end")
{
    BrokenSource source;
    std::istream input(&source);
    LineBlocks blocks(input);
    while (blocks.next()) { }
    CHECK(blocks.failed());
}

CHECK_MAIN()
