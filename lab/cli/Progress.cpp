#include "lab/cli/Progress.h"

#include "lab/cli/Screen.h"

#include <algorithm>
#include <iostream>
#include <utility>

namespace lab {

namespace {

std::string clockText(std::int64_t seconds)
{
    const auto twoDigits
        = [](std::int64_t number) { return (number < 10 ? "0" : "") + std::to_string(number); };
    const std::int64_t minutes = seconds / 60;
    if (minutes < 60)
        return std::to_string(minutes) + ':' + twoDigits(seconds % 60);
    return std::to_string(minutes / 60) + ':' + twoDigits(minutes % 60) + ':' + twoDigits(seconds % 60);
}

} // namespace

std::string progressLine(const std::string& label, double done, std::chrono::steady_clock::duration elapsed)
{
    constexpr std::size_t widest = 79;
    const double share = std::clamp(done, 0.0, 1.0);
    const std::string percent = std::to_string(static_cast<int>(share * 100));
    std::string line
        = label.substr(0, widest - 30) + ' ' + std::string(4 - percent.size(), ' ') + percent + " %";
    // The first moments say nothing about the rest.
    if (share < 0.01)
        return line;
    const double seconds = std::chrono::duration<double>(elapsed).count();
    const double left = seconds * (1 - share) / share;
    return line + ", " + clockText(static_cast<std::int64_t>(left + 0.5)) + " left";
}

Progress::Progress(std::string label)
    : m_label(std::move(label))
    , m_isSeen(isTerminal(Stream::Error))
    , m_start(std::chrono::steady_clock::now())
{
}

Progress::~Progress()
{
    if (m_isShown)
        std::cerr << "\r\x1b[K" << std::flush;
}

void Progress::show(double done)
{
    if (!m_isSeen)
        return;
    const auto now = std::chrono::steady_clock::now();
    if (m_isShown && now - m_shownAt < std::chrono::milliseconds(200))
        return;
    m_isShown = true;
    m_shownAt = now;
    std::cerr << '\r' << progressLine(m_label, done, now - m_start) << "\x1b[K" << std::flush;
}

void Progress::showLabel()
{
    if (!m_isSeen)
        return;
    m_isShown = true;
    std::cerr << '\r' << m_label.substr(0, 79) << "\x1b[K" << std::flush;
}

} // namespace lab
