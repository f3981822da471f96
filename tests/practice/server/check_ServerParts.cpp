#include "practice/Check.h"

#include "practice/server/Api.h"
#include "practice/server/BodyReader.h"
#include "practice/server/Connections.h"
#include "practice/server/Credentials.h"
#include "practice/server/Failure.h"
#include "practice/server/JsonText.h"
#include "practice/server/NewsCalendar.h"
#include "practice/server/Options.h"
#include "practice/server/Sha256.h"
#include "practice/server/Target.h"
#include "practice/server/WireRecords.h"
#include "practice/storage/StorageError.h"

#include "practice/core/market/MinuteFile.h"

#include <boost/asio/error.hpp>

#include <algorithm>
#include <clocale>
#include <map>
#include <random>

using namespace practice;

TEST_CASE("digests agree with published ones, whatever the length of the last block")
{
    CHECK_EQ(sha256Hex(""), std::string("e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855"));
    CHECK_EQ(
        sha256Hex("abc"), std::string("ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"));
    CHECK_EQ(sha256Hex("abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq"),
        std::string("248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1"));
    CHECK_EQ(sha256Hex(std::string(1'000'000, 'a')),
        std::string("cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0"));
}

TEST_CASE("tokens are 256 bits that never repeat")
{
    const std::string token = newToken();
    CHECK_EQ(token.size(), std::size_t(64));
    CHECK(token.find_first_not_of("0123456789abcdef") == std::string::npos);
    CHECK(token != newToken());
    CHECK(tokenDigest(token) != token);
}

TEST_CASE("a password matches its own salted hash only")
{
    const std::string hash = hashPassword("practice");
    CHECK(hash.find("$y$") == 0);
    CHECK(hash.find("practice") == std::string::npos);
    CHECK(passwordMatches("practice", hash));
    CHECK(!passwordMatches("Practice", hash));
    CHECK(!passwordMatches("", hash));
    CHECK(!passwordMatches(std::string("practice\0x", 10), hash));
    CHECK(!passwordMatches(std::string(100'000, 'x'), hash));
    CHECK(!passwordMatches("practice", ""));
    CHECK(!passwordMatches("practice", "*0"));
    CHECK(hashPassword("practice") != hash);
}

TEST_CASE("addresses are cut at slashes before their escapes are undone")
{
    const auto target = Target::parse("/api/trades/close/a%2Fb%20c?x=1&y=%26%3D&z&x=2&p=a+b");
    REQUIRE(target);
    CHECK(target->segments == std::vector<std::string>({"api", "trades", "close", "a/b c"}));
    CHECK(target->item("x") == "1");
    CHECK(target->item("y") == "&=");
    CHECK(target->item("z") == "");
    CHECK(target->item("p") == "a+b");
    CHECK(!target->item("w"));
    CHECK(Target::parse("/api/%2e%2e/x")->segments[1] == "..");
}

TEST_CASE("broken addresses are not guessed at")
{
    for (const char* text : {"", "api", "*", "http://x/", "/%", "/%4", "/%zz", "/a%00b", "/a?x=%f", "/a?%"})
        CHECK(!Target::parse(text));
    CHECK(percentDecode("%41%62") == "Ab");
    CHECK(percentDecode("%C3%A4") == "\xc3\xa4");
}

TEST_CASE("times are written in UTC with milliseconds")
{
    CHECK_EQ(isoTime(0), std::string("1970-01-01T00:00:00.000Z"));
    CHECK_EQ(isoTime(1'709'210'096'007), std::string("2024-02-29T12:34:56.007Z"));
    CHECK_EQ(isoTime(-1), std::string("1969-12-31T23:59:59.999Z"));
}

TEST_CASE("numbers are written with a point in every locale")
{
    std::setlocale(LC_ALL, "de_DE.UTF-8");
    CHECK_EQ(fixedText(1.5, 3), std::string("1.500"));
    CHECK_EQ(fixedText(1e20, 0), std::string("100000000000000000000"));
    std::setlocale(LC_ALL, "C");
}

TEST_CASE("text that is not UTF-8 is repaired on its way out")
{
    const ApiReply reply = errorReply(400, "bad \xff byte");
    CHECK(nlohmann::json::accept(reply.body));
}

TEST_CASE("numbers in a body may be texts but must be whole, finite and sane")
{
    const BodyReader body(
        R"({"a":1.5,"b":"2.25","c":"1,5","d":"","e":true,"f":1e300,"g":"nan","h":null,"i":" 1"})");
    CHECK(body.optionalNumber("a") == 1.5);
    CHECK(body.optionalNumber("b") == 2.25);
    CHECK(!body.optionalNumber("h"));
    CHECK(!body.optionalNumber("z"));
    for (const char* name : {"c", "d", "e", "f", "g", "i"})
        CHECK_THROWS(body.optionalNumber(name), ApiError);
    CHECK_THROWS(body.number("z"), ApiError);
    CHECK_THROWS(body.text("a"), ApiError);
}

TEST_CASE("bodies that are no object are refused")
{
    for (const char* text : {"", "[]", "1", "null", "{", "{\"a\":1}x", "{\"a\":1e999}", "{'a':1}"})
        CHECK_THROWS(BodyReader{text}, ApiError);
    CHECK_THROWS(BodyReader(std::string(60'000, '[')), ApiError);
}

TEST_CASE("at any moment one high-impact event lies within the next quarter of an hour")
{
    std::mt19937_64 random(7);
    std::uniform_int_distribution<TimeMs> anyTime(1'600'000'000'000, 2'600'000'000'000);
    for (int i = 0; i < 3000; ++i) {
        const TimeMs now = anyTime(random);
        const auto events = NewsCalendar(random()).around(now);
        const auto near = std::ranges::count_if(events, [&](const NewsEvent& event) {
            const auto minutes = minutesUntil(event.time, now);
            return event.impact == "HIGH" && minutes >= 0 && minutes <= 15;
        });
        CHECK(near >= 1);
        CHECK(std::ranges::is_sorted(events, {}, &NewsEvent::time));
    }
}

TEST_CASE("of the events without high impact a third has a low one")
{
    std::map<std::string_view, int> impacts;
    for (int day = 0; day < 100; ++day) {
        for (const NewsEvent& event : NewsCalendar(42).around(1'750'000'000'000 + day * dayMs))
            ++impacts[event.impact];
    }
    const double share = impacts["LOW"] / (1.0 * impacts["LOW"] + impacts["MEDIUM"]);
    CHECK(share > 0.3 && share < 0.367);
}

TEST_CASE("an event keeps its id, time and words while time goes by")
{
    const NewsCalendar calendar(42);
    const TimeMs start = 1'750'000'000'123;
    std::map<std::string, NewsEvent> seen;
    for (TimeMs now = start; now < start + 3 * hourMs; now += 7 * minuteMs) {
        for (const NewsEvent& event : NewsCalendar(42).around(now))
            CHECK(seen.emplace(event.id, event).first->second == event);
    }
    std::map<std::string_view, int> impacts;
    for (const NewsEvent& event : calendar.around(start))
        ++impacts[event.impact];
    CHECK(impacts["HIGH"] > 0 && impacts["MEDIUM"] > 0 && impacts["LOW"] > 0);
    CHECK(NewsCalendar(43).around(start) != calendar.around(start));
}

TEST_CASE("minutes are rounded down and negative once an event has begun")
{
    CHECK_EQ(minutesUntil(15 * minuteMs, 0), std::int64_t(15));
    CHECK_EQ(minutesUntil(15 * minuteMs - 1, 0), std::int64_t(14));
    CHECK_EQ(minutesUntil(0, 0), std::int64_t(0));
    CHECK_EQ(minutesUntil(0, 1), std::int64_t(-1));
}

TEST_CASE("prices go out in the digits of their symbol")
{
    SymbolSpec symbol;
    symbol.name = "A\"B";
    symbol.digits = 3;
    const std::vector<SymbolSpec> symbols{symbol};
    const std::vector<SymbolQuote> quotes{{0, {1.5, 1.5021}}};
    CHECK_EQ(priceMap(symbols, quotes), std::string(R"({"A\"B":{"bid":1.500,"ask":1.502}})"));
    CHECK_EQ(priceMap(symbols, {}), std::string("{}"));
    const std::vector<Bar> bars{{60'000, 1, 2, 0.5, 1.5, 7}};
    CHECK_EQ(candleArray(bars, 1),
        std::string(
            R"([{"timestamp":"1970-01-01T00:01:00.000Z","open":1.0,"high":2.0,"low":0.5,"close":1.5,"volume":7}])"));
}

TEST_CASE("an account update is the account's record under the message's own type")
{
    Account account;
    account.id = "acc";
    account.kind = AccountKind::Plan;
    account.plan = {"Practice", 2};
    account.status = AccountStatus::Passed;
    account.balance = 2'750'012;
    const auto message = nlohmann::json::parse(eventMessage(account, {account.balance, 0, 0, 0, 0}));
    auto record = accountRecord(account, {account.balance, 0, 0, 0, 0});
    record["type"] = "account_update";
    record["accountId"] = "acc";
    CHECK_EQ(message, record);
    CHECK_EQ(message["status"], "PASSED");
    CHECK_EQ(message["balance"], "27500.12");
}

TEST_CASE("only what a person can put right ends with 2; nothing but listening is said to be about listening")
{
    const auto ended = [](const auto& error) { return describeFailure(std::make_exception_ptr(error)); };
    for (const Failure& failure : {ended(UsageError("why")), ended(ListenError("why")),
             ended(MarketDataError("why")), ended(StorageError("why"))}) {
        CHECK_EQ(failure.exitCode, 2);
        CHECK_EQ(failure.text, std::string("why"));
    }
    const Failure fault = ended(
        boost::system::system_error(boost::asio::error::make_error_code(boost::asio::error::no_descriptors)));
    CHECK_EQ(fault.exitCode, 1);
    CHECK(fault.text.find("fault") != std::string::npos && fault.text.find("listen") == std::string::npos);
}

TEST_CASE("an event names its reason only when there is one")
{
    const auto plain
        = nlohmann::json::parse(eventMessage(OrdersChanged{"acc", "t", false, CloseReason::None}));
    CHECK(!plain.contains("filled") && !plain.contains("closeReason"));
    const auto closed
        = nlohmann::json::parse(eventMessage(OrdersChanged{"acc", "t", false, CloseReason::StopLoss}));
    CHECK_EQ(closed["closeReason"], "SL");
    const auto filled
        = nlohmann::json::parse(eventMessage(OrdersChanged{"acc", "t", true, CloseReason::None}));
    CHECK_EQ(filled["filled"], true);
}

TEST_CASE("places are cleared for newcomers: the largest crowd's, the silent first, those at work never")
{
    using Phase = Connections::Phase;
    Connections connections(5);
    std::string cleared;
    std::map<char, std::shared_ptr<Connections::Place>> places;
    const auto now = std::chrono::steady_clock::now();
    int moment = 0;
    const auto admit = [&](char name, const std::string& client) {
        auto place = connections.admit(client);
        if (place) {
            place->setEnd([&cleared, name] { cleared += name; });
            place->enter(Phase::Asking, now + std::chrono::seconds(moment++));
            places[name] = place;
        }
        return place != nullptr;
    };
    const auto enter
        = [&](char name, Phase phase) { places[name]->enter(phase, now + std::chrono::seconds(moment++)); };
    for (const char name : {'a', 'b', 'c', 'd'})
        CHECK(admit(name, "crowd"));
    CHECK(admit('x', "other")); // silent for less long, but alone
    enter('a', Phase::Answering);
    enter('b', Phase::Answering);
    enter('b', Phase::Replying);
    enter('c', Phase::Answering);
    enter('c', Phase::Replying);
    enter('c', Phase::Asking);
    CHECK_EQ(cleared, std::string());
    CHECK(admit('e', "crowd")); // the silent one
    CHECK_EQ(cleared, std::string("d"));
    enter('e', Phase::Answering);
    enter('e', Phase::Replying);
    CHECK(admit('f', "crowd")); // the idle one
    enter('f', Phase::Answering);
    CHECK_EQ(cleared, std::string("dc"));
    enter('a', Phase::Bringing);
    CHECK(admit('i', "crowd")); // the body that is on its way
    enter('i', Phase::Answering);
    CHECK_EQ(cleared, std::string("dca"));
    CHECK(admit('g', "crowd")); // the reply that takes longest
    enter('g', Phase::Answering);
    CHECK(admit('h', "crowd"));
    enter('h', Phase::Answering);
    CHECK_EQ(cleared, std::string("dcabe"));
    CHECK(admit('y', "third")); // the crowd is at work, so the lonely one has to go
    CHECK_EQ(cleared, std::string("dcabex"));
    enter('y', Phase::Answering);
    CHECK(!admit('z', "third"));
    places.erase('g');
    CHECK(admit('z', "third"));
    CHECK_EQ(cleared, std::string("dcabex"));
}

TEST_CASE("a place that cannot be cleared yet is left alone")
{
    Connections connections(1);
    const auto first = connections.admit("one");
    CHECK(first != nullptr);
    CHECK(connections.admit("one") == nullptr);
}

CHECK_MAIN()
