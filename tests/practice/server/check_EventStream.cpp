#include "practice/Check.h"
#include "practice/server/ServerFixture.h"

#include "practice/core/market/SimulatedMarket.h"
#include "practice/server/Platform.h"

#include <algorithm>
#include <map>

using namespace practice;
using nlohmann::json;

namespace {

/// Everything a terminal would be told, with the random ids replaced by their order of appearance.
class Listener final : public PlatformListener {
public:
    void pricesMoved(std::span<const SymbolQuote> changed, TimeMs) override
    {
        for (const SymbolQuote& quote : changed)
            m_lines.push_back(std::to_string(quote.symbol) + ' ' + std::to_string(quote.quote.bid) + ' '
                + std::to_string(quote.quote.ask));
    }
    void accountEvent(const std::string&, const std::string& message) override
    {
        json event = json::parse(message);
        for (const char* key : {"accountId", "tradeId", "id"}) {
            if (event.contains(key))
                event[key] = m_ids.try_emplace(event[key].get<std::string>(), m_ids.size()).first->second;
        }
        m_lines.push_back(event.dump());
        m_events.push_back(std::move(event));
    }
    [[nodiscard]] const std::vector<std::string>& lines() const { return m_lines; }
    [[nodiscard]] const std::vector<json>& events() const { return m_events; }
    [[nodiscard]] bool closed(std::string_view reason) const
    {
        return std::ranges::any_of(
            m_events, [&](const json& event) { return event.value("closeReason", "") == reason; });
    }

private:
    std::map<std::string, std::size_t> m_ids;
    std::vector<std::string> m_lines;
    std::vector<json> m_events;
};

/// Ten minutes of a market with a few orders close to its first price.
void session(Listener& listener, std::uint64_t seed, double speed)
{
    constexpr TimeMs length = 10 * minuteMs;
    constexpr TimeMs step = 250;
    const TemporaryFolder folder;
    Database database(folder / "x.db");
    SettableClock clock;
    prepareFirstUse(database, clock.now());
    SimulatedMarket market(seed, speed);
    Platform platform(database, market, clock);
    platform.addListener(listener);
    platform.advance();

    const std::vector<Account> accounts = platform.broker().accounts();
    const auto demo = std::ranges::find(accounts, AccountKind::Demo, &Account::kind);
    REQUIRE(demo != accounts.end());
    const Quote first = platform.quotes().front().quote;
    const auto place = [&](const char* kind, double price) {
        PlaceRequest request;
        request.accountId = demo->id;
        request.symbol = market.symbols().front().name;
        request.lots = 0.1;
        request.orderKind = kind;
        if (request.orderKind == "MARKET")
            request.type = price < first.bid ? "BUY" : "SELL";
        else
            request.pendingPrice = price;
        request.stopLoss = price < first.bid ? price - 0.002 : price + 0.002;
        request.takeProfit = price < first.bid ? price + 0.004 : price - 0.004;
        platform.execute(request);
    };
    place("MARKET", first.bid - 0.0005);
    place("MARKET", first.ask + 0.0005);
    place("BUY_LIMIT", first.bid - 0.001);
    place("SELL_LIMIT", first.ask + 0.001);
    for (TimeMs passed = 0; passed < length; passed += step) {
        clock.set(clock.now() + step);
        platform.advance();
    }
}

std::vector<std::string> script(std::uint64_t seed, double speed)
{
    Listener listener;
    session(listener, seed, speed);
    return listener.lines();
}

} // namespace

TEST_CASE("seed and speed write the script: the same orders at the same time meet the same events")
{
    Listener listener;
    session(listener, 7, 60);
    CHECK(listener.lines().size() > 1000);
    CHECK(listener.lines() == script(7, 60));
    CHECK(listener.closed("SL"));
    CHECK(listener.closed("TP"));
    CHECK(std::ranges::any_of(
        listener.events(), [](const json& event) { return event.value("filled", false); }));
}

TEST_CASE("another seed or another speed is another script")
{
    const std::vector<std::string> lines = script(7, 60);
    CHECK(lines != script(8, 60));
    CHECK(lines != script(7, 30));
}

CHECK_MAIN()
