#include "pixel/WatchErrands.h"

#include <algorithm>
#include <istream>
#include <ostream>
#include <sstream>

WatchErrands::WatchErrands(const Screen& screen, const Lookout& lookout, std::ostream& answers)
    : m_screen(screen)
    , m_lookout(lookout)
    , m_answers(answers)
{
}

void WatchErrands::run(const std::string& line)
{
    std::istringstream words(line);
    std::string errand;
    words >> errand;
    if (!understand(errand, words))
        m_answers << "bad" << std::endl;
}

bool WatchErrands::understand(const std::string& errand, std::istream& words)
{
    return (errand == "moving" && findMoving(words)) || (errand == "change" && watchChange(words));
}

bool WatchErrands::readPart(std::istream& words, PixelRect& part) const
{
    return words >> part.x >> part.y >> part.width >> part.height && m_screen.contains(part);
}

bool WatchErrands::readMs(std::istream& words, std::int64_t& ns) const
{
    constexpr std::int64_t millisecond = 1'000'000;
    constexpr std::int64_t anHour = 3'600'000;
    std::int64_t ms = 0;
    if (!(words >> ms) || ms < 0 || ms > anHour)
        return false;
    ns = ms * millisecond;
    return true;
}

bool WatchErrands::findMoving(std::istream& words)
{
    PixelRect part;
    std::int64_t ns = 0;
    if (!readPart(words, part) || !readMs(words, ns))
        return false;
    const Picture before = m_screen.picture(part);
    std::optional<PixelRect> box;
    const auto look = [&] {
        if (const auto found = m_screen.difference(part, before))
            box = box ? box->united(*found) : *found;
        return false;
    };
    const std::int64_t armedAt = monotonicNs();
    m_answers << "armed " << armedAt << std::endl;
    static_cast<void>(m_lookout.lookUntil(armedAt + ns, look));
    if (box)
        m_answers << "box " << box->x << ' ' << box->y << ' ' << box->width << ' ' << box->height
                  << std::endl;
    else
        m_answers << "still" << std::endl;
    return true;
}

bool WatchErrands::watchChange(std::istream& words)
{
    PixelRect part;
    std::int64_t ns = 0;
    if (!readPart(words, part) || !readMs(words, ns))
        return false;
    const Picture before = m_screen.picture(part);
    const std::int64_t armedAt = monotonicNs();
    m_answers << "armed " << armedAt << std::endl;
    const auto sighting = m_lookout.lookUntil(armedAt + ns, [&] { return !m_screen.shows(part, before); });
    if (sighting)
        m_answers << "seen " << sighting->seenNs << ' '
                  << sighting->seenNs - std::max(sighting->lookedBeforeNs, armedAt) << std::endl;
    else
        m_answers << "missed " << monotonicNs() << std::endl;
    return true;
}
