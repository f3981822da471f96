#include "lab/cli/Screen.h"

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <unistd.h>

namespace lab {

namespace {

std::string_view environment(const char* name)
{
    const char* value = std::getenv(name);
    return value ? value : "";
}

std::string_view codeOf(Tone tone)
{
    switch (tone) {
    case Tone::Plain:
        break;
    case Tone::Strong:
        return "\x1b[1m";
    case Tone::Good:
        return "\x1b[32m";
    case Tone::Bad:
        return "\x1b[31m";
    case Tone::Warning:
        return "\x1b[33m";
    }
    return {};
}

} // namespace

bool isTerminal(Stream stream)
{
    return ::isatty(stream == Stream::Output ? STDOUT_FILENO : STDERR_FILENO) != 0;
}

bool hasColours()
{
    return isTerminal(Stream::Output) && environment("NO_COLOR").empty() && environment("TERM") != "dumb";
}

std::string toned(std::string_view text, Tone tone, bool colours)
{
    if (!colours || tone == Tone::Plain)
        return std::string(text);
    return std::string(codeOf(tone)).append(text).append("\x1b[0m");
}

std::size_t placesOf(std::string_view text)
{
    return static_cast<std::size_t>(
        std::ranges::count_if(text, [](char byte) { return (byte & 0xC0) != 0x80; }));
}

std::string columns(const std::vector<std::vector<std::string>>& rows, const std::vector<std::size_t>& right)
{
    std::vector<std::size_t> widths;
    for (const auto& row : rows) {
        widths.resize(std::max(widths.size(), row.size()), 0);
        for (std::size_t i = 0; i < row.size(); ++i)
            widths[i] = std::max(widths[i], placesOf(row[i]));
    }
    std::string text;
    for (const auto& row : rows) {
        std::string line;
        for (std::size_t i = 0; i < row.size(); ++i) {
            const std::string gap(widths[i] - placesOf(row[i]), ' ');
            const bool isRight = std::ranges::find(right, i) != right.end();
            line += (i > 0 ? "  " : "") + (isRight ? gap + row[i] : row[i] + gap);
        }
        line.resize(line.find_last_not_of(' ') + 1);
        text += line + '\n';
    }
    return text;
}

std::string wrapped(std::string_view text, std::size_t places, std::string_view indent)
{
    std::string result;
    std::size_t used = 0;
    while (!text.empty()) {
        std::size_t end = std::min(text.find(' '), text.size());
        if (text.substr(end).starts_with(" %")) // a number keeps its sign
            end = std::min(text.find(' ', end + 1), text.size());
        const std::string_view word = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        if (word.empty())
            continue;
        const std::size_t width = placesOf(word);
        if (used > 0 && used + 1 + width > places) {
            result.append("\n").append(indent);
            used = placesOf(indent);
        } else if (used > 0) {
            result.append(" ");
            ++used;
        }
        result.append(word);
        used += width;
    }
    return result;
}

void tellError(std::string_view text)
{
    const std::string line = "tavoran-lab: " + std::string(text);
    const bool isWrapped = isTerminal(Stream::Error) && line.find('\n') == std::string::npos;
    std::cerr << (isWrapped ? wrapped(line, screenWidth - 1, "  ") : line) << std::endl;
}

} // namespace lab
