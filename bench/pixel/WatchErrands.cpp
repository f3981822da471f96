#include "pixel/WatchErrands.h"

#include <charconv>
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
    if (errand == "size") {
        m_answers << "size " << m_screen.width() << ' ' << m_screen.height() << std::endl;
        return true;
    }
    return (errand == "moving" && findMoving(words)) || (errand == "keep" && keep(words))
        || (errand == "change" && watchChange(words)) || (errand == "colour" && watchColor(words))
        || (errand == "picture" && watchPicture(words));
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

bool WatchErrands::keep(std::istream& words)
{
    std::string name;
    PixelRect part;
    if (!(words >> name) || !readPart(words, part))
        return false;
    m_kept.insert_or_assign(name, Kept{part, m_screen.picture(part)});
    m_answers << "kept " << name << std::endl;
    return true;
}

bool WatchErrands::watchChange(std::istream& words)
{
    PixelRect part;
    std::int64_t ns = 0;
    if (!readPart(words, part) || !readMs(words, ns))
        return false;
    std::int64_t after = 0;
    words >> after;
    std::int64_t takenAt = monotonicNs();
    Picture before = m_screen.picture(part);
    watch(ns, [&] {
        if (takenAt < after) {
            takenAt = monotonicNs();
            before = m_screen.picture(part);
        }
        return !m_screen.shows(part, before);
    });
    return true;
}

bool WatchErrands::watchColor(std::istream& words)
{
    PixelRect part;
    std::int64_t ns = 0;
    std::string name;
    if (!readPart(words, part) || !readMs(words, ns) || !(words >> name))
        return false;
    constexpr int hexadecimal = 16;
    std::uint32_t color = 0;
    const char* const end = name.data() + name.size();
    if (const auto read = std::from_chars(name.data(), end, color, hexadecimal);
        read.ec != std::errc() || read.ptr != end)
        return false;
    watch(ns, [&] { return m_screen.hasColor(part, color); });
    return true;
}

bool WatchErrands::watchPicture(std::istream& words)
{
    std::string name;
    std::int64_t ns = 0;
    if (!(words >> name) || !readMs(words, ns))
        return false;
    const auto kept = m_kept.find(name);
    if (kept == m_kept.end())
        return false;
    watch(ns, [&] { return m_screen.shows(kept->second.part, kept->second.picture); });
    return true;
}

template <typename Predicate> void WatchErrands::watch(std::int64_t ns, const Predicate& there)
{
    const bool early = there();
    const std::int64_t armedAt = monotonicNs();
    m_answers << "armed " << armedAt << std::endl;
    if (early) {
        m_answers << "early " << armedAt << std::endl;
        return;
    }
    const auto sighting = m_lookout.lookUntil(armedAt + ns, there);
    if (sighting)
        m_answers << "seen " << sighting->seenNs << ' '
                  << sighting->seenNs - std::max(sighting->lookedBeforeNs, armedAt) << std::endl;
    else
        m_answers << "missed " << monotonicNs() << std::endl;
}
