// What finds a price in the pixels of a screen: on screens made here, without an X server.

#include "pixel/ScreenFile.h"
#include "pixel/WatchErrands.h"
#include "pixel/XwdHeader.h"
#include "practice/Check.h"

#include <array>
#include <atomic>
#include <bit>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <unistd.h>

namespace {

constexpr int width = 16;
constexpr int height = 8;
constexpr std::uint32_t red = 0xff0000;

using Pixels = std::array<std::uint32_t, width * height>;

struct Announced {
    std::uint32_t version = 7;
    std::uint32_t width = ::width;
    std::uint32_t bits = 32;
    std::uint32_t order = std::endian::native == std::endian::little ? 0 : 1;
    std::uint32_t bytesPerLine = ::width * 4;
    std::uint32_t colors = 256;
};

/// A file as Xvfb writes it: header, name of the window, colours, pixels counted from 0.
std::vector<std::uint8_t> screenBytes(const Announced& announced = {})
{
    std::array<std::uint32_t, 25> fields{};
    fields[0] = 160;
    fields[1] = announced.version;
    fields[2] = 2;
    fields[3] = 24;
    fields[4] = announced.width;
    fields[5] = height;
    fields[7] = announced.order;
    fields[11] = announced.bits;
    fields[12] = announced.bytesPerLine;
    fields[19] = announced.colors;
    std::vector<std::uint8_t> bytes;
    for (const std::uint32_t field : fields) {
        for (const int shift : {24, 16, 8, 0})
            bytes.push_back(static_cast<std::uint8_t>(field >> shift));
    }
    bytes.resize(160 + 256 * 12);
    for (std::uint32_t pixel = 0; pixel < width * height; ++pixel) {
        const auto raw = std::bit_cast<std::array<std::uint8_t, 4>>(pixel);
        bytes.insert(bytes.end(), raw.begin(), raw.end());
    }
    return bytes;
}

Screen screenOf(const Pixels& pixels)
{
    return {pixels.data(), width, height, width};
}

/// Keeps what is answered, and knows when the looking has begun.
class Answers final : public std::stringbuf {
public:
    std::atomic<int> armed = 0;

private:
    int sync() override
    {
        const std::string all = str();
        const std::size_t line = all.rfind('\n', all.size() - 2);
        armed += all.substr(line == std::string::npos ? 0 : line + 1).starts_with("armed") ? 1 : 0;
        return 0;
    }
};

/// Errands for a screen, and somebody who changes it while they are done, as an X server would.
class Watched final {
public:
    explicit Watched(Pixels& pixels)
        : m_screen(pixels.data(), width, height, width)
        , m_errands(m_screen, Lookout(20'000), m_stream)
    {
    }

    /// `change` happens once the looking has begun.
    void run(const std::string& errand, const std::function<void()>& change = {})
    {
        const int before = m_answers.armed;
        std::thread server([&] {
            while (change && m_answers.armed == before)
                std::this_thread::yield();
            changedFrom = monotonicNs();
            if (change)
                change();
            changedUntil = monotonicNs();
        });
        m_errands.run(errand);
        server.join();
    }

    [[nodiscard]] std::string answers() const { return m_answers.str(); }

    std::int64_t changedFrom = 0;
    std::int64_t changedUntil = 0;

private:
    Screen m_screen;
    Answers m_answers;
    std::ostream m_stream{&m_answers};
    WatchErrands m_errands;
};

std::string firstWords(const std::string& answers)
{
    std::istringstream lines(answers);
    std::string words;
    for (std::string line; std::getline(lines, line);)
        words += (words.empty() ? "" : " ") + line.substr(0, line.find(' '));
    return words;
}

void paint(Pixels& pixels, std::size_t place, std::uint32_t color)
{
    *const_cast<volatile std::uint32_t*>(&pixels.at(place)) = color;
}

TEST_CASE("the header of Xvfb's file says where the pixels are")
{
    const auto header = XwdHeader::read(screenBytes());
    REQUIRE(header.has_value());
    CHECK_EQ(header->width, width);
    CHECK_EQ(header->height, height);
    CHECK_EQ(header->pixelsAt, std::size_t{160 + 256 * 12});
    CHECK_EQ(header->bytesPerLine, std::size_t{width * 4});
}

TEST_CASE("what is no such file, or another kind of it, has no header")
{
    CHECK(!XwdHeader::read({}).has_value());
    CHECK(!XwdHeader::read(screenBytes({.version = 6})).has_value());
    CHECK(!XwdHeader::read(screenBytes({.bits = 16})).has_value());
    CHECK(!XwdHeader::read(screenBytes({.order = 7})).has_value());
    CHECK(!XwdHeader::read(screenBytes({.width = 0})).has_value());
    CHECK(!XwdHeader::read(screenBytes({.width = 0xffffffff})).has_value());
    CHECK(!XwdHeader::read(screenBytes({.bytesPerLine = width * 4 - 4})).has_value());
    CHECK(!XwdHeader::read(screenBytes({.colors = 0xffffffff})).has_value());
    auto bytes = screenBytes();
    bytes.pop_back();
    CHECK(!XwdHeader::read(bytes).has_value());
}

TEST_CASE("a file of a screen is mapped, and its pixels are those that somebody writes later")
{
    std::string path = "/tmp/check_PixelWatch-XXXXXX";
    const int made = mkstemp(path.data());
    REQUIRE(made >= 0);
    close(made);
    const auto bytes = screenBytes();
    std::fstream file(path, std::ios::in | std::ios::out | std::ios::binary);
    file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()))
        .flush();

    const ScreenFile mapped(path);
    CHECK_EQ(mapped.screen().width(), width);
    CHECK(mapped.screen().picture({3, 2, 2, 2}) == (Picture{35, 36, 51, 52}));
    const std::uint32_t color = red;
    file.seekp(160 + 256 * 12 + 4 * 36);
    file.write(reinterpret_cast<const char*>(&color), sizeof(color)).flush();
    CHECK(mapped.screen().picture({3, 2, 2, 2}) == (Picture{35, red, 51, 52}));
    std::remove(path.c_str());
}

TEST_CASE("a file that is not there, or holds no screen, is refused with its name")
{
    for (const std::string path : {"/nonexistent/Xvfb_screen0", "/proc/self/cmdline", "/etc/hostname"}) {
        std::string said;
        try {
            const ScreenFile mapped(path);
        } catch (const std::runtime_error& error) {
            said = error.what();
        }
        CHECK(said.starts_with(path));
    }
}

TEST_CASE("a part is on the screen or is not looked at")
{
    const Pixels pixels{};
    const Screen screen = screenOf(pixels);
    CHECK(screen.contains({0, 0, width, height}));
    CHECK(screen.contains({width - 1, height - 1, 1, 1}));
    for (const PixelRect part : {PixelRect{-1, 0, 2, 2}, {0, -1, 2, 2}, {0, 0, 0, 1}, {0, 0, 1, 0},
             {0, 0, width + 1, 1}, {0, 0, 1, height + 1}, {width, 0, 1, 1}, {1, 0, 0x7fffffff, 1}})
        CHECK(!screen.contains(part));
}

TEST_CASE("a difference is no larger than what differs")
{
    Pixels pixels{};
    const Screen screen = screenOf(pixels);
    const PixelRect part{2, 1, 10, 6};
    const Picture before = screen.picture(part);
    CHECK(!screen.difference(part, before).has_value());
    CHECK(screen.shows(part, before));
    pixels.at(2 * width + 5) = red;
    pixels.at(4 * width + 3) = red;
    pixels.at(0) = red;
    REQUIRE(screen.difference(part, before).has_value());
    CHECK(*screen.difference(part, before) == (PixelRect{3, 2, 3, 3}));
    CHECK(!screen.shows(part, before));
}

TEST_CASE("the unused byte of a pixel is no difference")
{
    Pixels pixels{};
    const Screen screen = screenOf(pixels);
    const PixelRect part{0, 0, 4, 4};
    const Picture before = screen.picture(part);
    pixels.at(1) = 0xff000000;
    CHECK(screen.shows(part, before));
}

TEST_CASE("a change is dated after it came, and the look before it was earlier")
{
    Pixels pixels{};
    Watched watched(pixels);
    watched.run("change 3 0 4 4 60000", [&] { paint(pixels, width + 4, red); });
    std::istringstream words(watched.answers());
    std::string armed;
    std::string seen;
    std::int64_t armedAt = 0;
    std::int64_t seenAt = 0;
    std::int64_t ago = 0;
    words >> armed >> armedAt >> seen >> seenAt >> ago;
    CHECK_EQ(armed, std::string("armed"));
    CHECK_EQ(seen, std::string("seen"));
    CHECK(armedAt < watched.changedFrom);
    CHECK(seenAt >= watched.changedFrom);
    CHECK(seenAt - ago >= armedAt);
    CHECK(seenAt - ago <= watched.changedUntil);
}

TEST_CASE("a change elsewhere is none")
{
    Pixels pixels{};
    Watched watched(pixels);
    watched.run("change 3 0 4 4 60", [&] { paint(pixels, 0, red); });
    CHECK_EQ(firstWords(watched.answers()), std::string("armed missed"));
}

TEST_CASE("what moves is found with its bounds")
{
    Pixels pixels{};
    Watched watched(pixels);
    watched.run("moving 0 0 16 8 20");
    CHECK_EQ(firstWords(watched.answers()), std::string("armed still"));
    watched.run("moving 0 0 16 8 500", [&] {
        paint(pixels, 2 * width + 3, red);
        paint(pixels, 3 * width + 9, red);
    });
    CHECK(watched.answers().ends_with("\nbox 3 2 7 2\n"));
}

TEST_CASE("what cannot be understood is answered")
{
    Pixels pixels{};
    for (const std::string line :
        {"", "dance", "change", "change 0 0 17 1 10", "change 0 0 1 1", "moving 0 0 1 1 -5"}) {
        Watched asked(pixels);
        asked.run(line);
        CHECK_EQ(asked.answers(), std::string("bad\n"));
    }
}

} // namespace

CHECK_MAIN()
