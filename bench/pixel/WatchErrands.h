#pragma once

#include "pixel/Lookout.h"
#include "pixel/Screen.h"

#include <cstdint>
#include <iosfwd>
#include <string>

/// What tavoran-pixel-watch is asked to find, a line each, and its answers; watch_main.cpp lists both.
class WatchErrands final {
public:
    /// The screen and the stream must outlive this object.
    WatchErrands(const Screen& screen, const Lookout& lookout, std::ostream& answers);

    /// Comes back when the errand is done.
    void run(const std::string& line);

private:
    [[nodiscard]] bool understand(const std::string& errand, std::istream& words);
    bool readPart(std::istream& words, PixelRect& part) const;
    bool readMs(std::istream& words, std::int64_t& ns) const;
    [[nodiscard]] bool findMoving(std::istream& words);
    [[nodiscard]] bool watchChange(std::istream& words);

    const Screen& m_screen;
    Lookout m_lookout;
    std::ostream& m_answers;
};
