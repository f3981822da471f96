#include "practice/Check.h"

#include "practice/line/ChanceScript.h"

#include <algorithm>
#include <chrono>
#include <string>
#include <vector>

using namespace practice;
using std::chrono::milliseconds;
using std::chrono::nanoseconds;

namespace {

/// Writes down what a script wants.
class Notes final : public LineCarrier {
public:
    void send(Way way, std::string bytes, nanoseconds delay) override
    {
        sent[way == Way::ToServer ? 0 : 1] += bytes;
        delays.push_back(delay);
    }
    void end(LineEnd how) override { ends.push_back(how); }

    std::string sent[2];
    std::vector<nanoseconds> delays;
    std::vector<LineEnd> ends;
};

Throttles free()
{
    return {Throttle(0), Throttle(0)};
}

LineQuality dropping(double share)
{
    LineQuality quality;
    quality.drop = share;
    return quality;
}

} // namespace

TEST_CASE("a good line hands everything on at once")
{
    Throttles throttles = free();
    ChanceScript script({}, 0, throttles);
    Notes notes;
    script.open(notes);
    script.pass(Way::ToServer, "question", notes);
    script.pass(Way::ToClient, std::string(5000, 'a'), notes);
    CHECK(notes.ends.empty());
    CHECK_EQ(notes.sent[0], std::string("question"));
    CHECK_EQ(notes.sent[1], std::string(5000, 'a'));
    CHECK(std::ranges::all_of(notes.delays, [](nanoseconds delay) { return delay.count() == 0; }));
}

TEST_CASE("everything is late by the latency, and by the jitter at most besides")
{
    LineQuality quality;
    quality.latency = milliseconds(100);
    quality.jitter = milliseconds(40);
    Throttles throttles = free();
    ChanceScript script(quality, 3, throttles);
    Notes notes;
    for (int i = 0; i < 500; ++i)
        script.pass(Way::ToClient, "x", notes);
    for (int i = 0; i < 500; ++i)
        notes.delays.push_back(script.endDelay());
    const auto [least, most] = std::ranges::minmax(notes.delays);
    CHECK(least >= milliseconds(100) && least < milliseconds(103));
    CHECK(most <= milliseconds(140) && most > milliseconds(137));
}

TEST_CASE("the share of connections that are refused is the one asked for")
{
    Throttles throttles = free();
    for (const double share : {0.0, 0.25, 1.0}) {
        LineQuality quality;
        quality.refuse = share;
        int refused = 0;
        for (std::uint64_t connection = 0; connection < 4000; ++connection) {
            Notes notes;
            ChanceScript(quality, connection, throttles).open(notes);
            CHECK(notes.ends.empty() || notes.ends == std::vector<LineEnd>{LineEnd::Reset});
            refused += static_cast<int>(notes.ends.size());
        }
        CHECK_NEAR(refused / 4000.0, share, share > 0 && share < 1 ? 0.03 : 0);
    }
}

TEST_CASE("a connection falls silent with its first lost packet, which comes as often as asked for")
{
    Throttles throttles = free();
    double packets = 0;
    int atOnce = 0;
    for (std::uint64_t connection = 0; connection < 4000; ++connection) {
        const auto bytes = ChanceScript(dropping(0.1), connection, throttles).silentAfter(Way::ToClient);
        REQUIRE(bytes.has_value());
        CHECK_EQ(*bytes % ChanceScript::packet, 0U);
        packets += static_cast<double>(*bytes / ChanceScript::packet);
        atOnce += *bytes == 0 ? 1 : 0;
    }
    CHECK_NEAR(packets / 4000, 9, 0.6); // the mean number of packets before the first of a tenth
    CHECK_NEAR(atOnce / 4000.0, 0.1, 0.02);
    CHECK(!ChanceScript(dropping(0), 1, throttles).silentAfter(Way::ToClient));
    CHECK(ChanceScript(dropping(1), 1, throttles).silentAfter(Way::ToServer) == 0U);
}

TEST_CASE("what gets through before the silence does not depend on the pieces in which it comes")
{
    Throttles throttles = free();
    std::uint64_t connection = 0;
    while (ChanceScript(dropping(0.2), connection, throttles).silentAfter(Way::ToClient).value() < 2800)
        ++connection;
    const std::size_t limit
        = ChanceScript(dropping(0.2), connection, throttles).silentAfter(Way::ToClient).value();
    const std::string all(limit + 3000, 'p');
    for (const std::size_t step : {all.size(), std::size_t(1), std::size_t(1400), std::size_t(999)}) {
        ChanceScript script(dropping(0.2), connection, throttles);
        Notes notes;
        for (std::size_t begin = 0; begin < all.size() && notes.ends.empty(); begin += step)
            script.pass(Way::ToClient, all.substr(begin, step), notes);
        CHECK_EQ(notes.sent[1].size(), limit);
        CHECK(notes.ends == std::vector<LineEnd>{LineEnd::Silence});
    }
}

TEST_CASE("the same seed hits the same connections, and another one others")
{
    Throttles throttles = free();
    const auto fates = [&](std::uint64_t seed) {
        LineQuality quality = dropping(0.1);
        quality.refuse = 0.5;
        quality.seed = seed;
        std::vector<std::size_t> all;
        for (std::uint64_t connection = 0; connection < 50; ++connection) {
            const ChanceScript script(quality, connection, throttles);
            all.push_back(script.isRefused() ? 1 : 0);
            all.push_back(script.silentAfter(Way::ToServer).value());
            all.push_back(script.silentAfter(Way::ToClient).value());
        }
        return all;
    };
    CHECK(fates(7) == fates(7));
    CHECK(fates(7) != fates(8));
}

TEST_CASE("a throttled line takes its time, and all that share a direction wait for each other")
{
    const auto now = std::chrono::steady_clock::now();
    Throttle throttle(1000);
    CHECK(throttle.enter(500, now) == milliseconds(500));
    CHECK(throttle.enter(250, now) == milliseconds(750));
    CHECK(throttle.enter(100, now + milliseconds(700)) == milliseconds(150));
    CHECK(throttle.enter(100, now + std::chrono::seconds(60)) == milliseconds(100));
    CHECK(Throttle(0).enter(1'000'000, now).count() == 0);

    LineQuality quality;
    quality.throttle = 1e5;
    Throttles throttles{Throttle(quality.throttle), Throttle(quality.throttle)};
    ChanceScript first(quality, 0, throttles);
    ChanceScript second(quality, 1, throttles);
    Notes notes;
    first.pass(Way::ToClient, std::string(5000, 'a'), notes);
    CHECK_EQ(notes.delays.size(), 4U); // packet by packet
    second.pass(Way::ToClient, "b", notes);
    CHECK(notes.delays.back() > milliseconds(45));
    second.pass(Way::ToServer, "c", notes);
    CHECK(notes.delays.back() < milliseconds(1));
}

CHECK_MAIN()
