#pragma once

#include "practice/Check.h"
#include "practice/server/HttpClient.h"
#include "practice/storage/TemporaryFolder.h"

#include "practice/core/market/PriceSource.h"
#include "practice/server/Credentials.h"
#include "practice/server/FirstUse.h"
#include "practice/server/ListeningPort.h"
#include "practice/server/Server.h"

#include <boost/asio/post.hpp>

#include <atomic>
#include <functional>
#include <future>
#include <limits>
#include <memory>
#include <thread>

/// The server in the test's own process, with a clock and a market that the test moves.
namespace practice {

/// A clock that a test moves.
class SettableClock final : public Clock {
public:
    [[nodiscard]] TimeMs now() const override { return m_now; }
    void set(TimeMs now) { m_now = now; }

private:
    std::atomic<TimeMs> m_now{1'750'000'000'000};
};

/// EURUSD and as many copies of it as asked for. A test sets the price of the first and of all others.
class ManualMarket final : public PriceSource {
public:
    explicit ManualMarket(std::size_t copies)
        : m_symbols({symbolCatalog().front()})
    {
        for (std::size_t i = 1; i <= copies; ++i) {
            m_symbols.push_back(m_symbols.front());
            m_symbols.back().name += std::to_string(i);
            m_symbols.back().sortOrder += static_cast<int>(i);
        }
    }
    [[nodiscard]] const std::vector<SymbolSpec>& symbols() const override { return m_symbols; }
    [[nodiscard]] Quote quote(std::size_t symbol, TimeMs) override
    {
        if (m_quotesFail)
            throw boost::system::system_error(boost::asio::error::no_descriptors);
        const double bid = symbol == 0 ? m_bid : m_others;
        return {bid, bid + 0.0001};
    }
    [[nodiscard]] TimeMs nextTick(std::size_t, TimeMs) override { return std::numeric_limits<TimeMs>::max(); }
    [[nodiscard]] PriceSpan span(std::size_t symbol, TimeMs, TimeMs) override
    {
        const double mid = (symbol == 0 ? m_bid : m_others) + 0.00005;
        return {mid, mid, 0.00005};
    }
    [[nodiscard]] double dailyOpen(std::size_t, TimeMs) override { return 1.1; }
    [[nodiscard]] std::vector<Bar> bars(std::size_t, Timeframe, std::size_t, TimeMs) override
    {
        if (m_barsFail)
            throw std::runtime_error("no bars");
        return {};
    }
    void failBars() { m_barsFail = true; }
    void failQuotes() { m_quotesFail = true; }
    void setBid(double bid) { m_bid = bid; }
    void setOthers(double bid) { m_others = bid; }

private:
    std::vector<SymbolSpec> m_symbols;
    std::atomic<double> m_bid{1.1};
    std::atomic<double> m_others{1.1};
    std::atomic<bool> m_barsFail{false};
    std::atomic<bool> m_quotesFail{false};
};

/// The server in this process, on a thread of its own.
struct InProcess {
    TemporaryFolder folder;
    SettableClock clock;
    ManualMarket market;
    Database database{folder / "x.db"};
    boost::asio::io_context context{1};
    std::unique_ptr<Server> server;
    std::thread thread;

    explicit InProcess(std::size_t copies = 0, const Limits& limits = {}, RecordFile* recording = nullptr)
        : market(copies)
    {
        prepareFirstUse(database, clock.now());
        UserStore(database).add({"second", "second@example.test", "Second", hashPassword("other")});
        server = std::make_unique<Server>(context, listenOn(context, "127.0.0.1", 0), database, market, clock,
            ServerSettings{"127.0.0.1", {}, 1, std::chrono::milliseconds(10), limits, recording, "1.2.3"});
        thread = std::thread([this] { context.run(); });
    }
    ~InProcess() { stop(); }

    /// Ends the server.
    void stop()
    {
        if (!thread.joinable())
            return;
        context.stop();
        thread.join();
        server.reset();
    }

    /// Runs the work on the server's thread.
    void onServer(const std::function<void()>& work)
    {
        std::promise<void> done;
        boost::asio::post(context, [&] {
            work();
            done.set_value();
        });
        done.get_future().wait();
    }
};

/// The practice trader, signed in over a connection of its own.
struct Trader {
    HttpClient client;

    explicit Trader(const InProcess& place, int receiveBuffer = 0)
        : client(place.server->port(), receiveBuffer)
    {
        client.signIn();
    }

    /// The first account of this type that is not funded.
    [[nodiscard]] std::string account(const char* type)
    {
        for (const nlohmann::json& row : client.get("/api/accounts").json()) {
            if (row.at("type") == type && !row.at("isFunded").get<bool>())
                return row.at("id").get<std::string>();
        }
        throw std::runtime_error("no such account");
    }
    /// Places an order that must be taken; its id.
    std::string place(const nlohmann::json& body)
    {
        const HttpReply reply = client.post("/api/trades/place", body);
        REQUIRE(reply.status == 200);
        return reply.json().at("id").get<std::string>();
    }
};

inline nlohmann::json order(const std::string& account, double lots)
{
    return {{"symbol", "EURUSD"}, {"lotSize", lots}, {"accountId", account}, {"orderKind", "MARKET"},
        {"type", "BUY"}};
}

inline nlohmann::json buyLimit(const std::string& account, double lots, double price)
{
    return {{"symbol", "EURUSD"}, {"lotSize", lots}, {"accountId", account}, {"orderKind", "BUY_LIMIT"},
        {"pendingPrice", price}};
}

} // namespace practice
