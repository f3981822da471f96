#include "fuzz/Desk.h"

#include "practice/core/broker/DefaultAccounts.h"
#include "practice/server/AccountsResource.h"
#include "practice/server/AuthResource.h"
#include "practice/server/CandlesResource.h"
#include "practice/server/Credentials.h"
#include "practice/server/DrawingsResource.h"
#include "practice/server/FeedResource.h"
#include "practice/server/HttpSession.h"
#include "practice/server/NewsResource.h"
#include "practice/server/SettingsResource.h"
#include "practice/server/TradesResource.h"
#include "practice/storage/Statement.h"

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/write.hpp>

#include <algorithm>
#include <limits>
#include <map>

#include <sys/socket.h>

namespace net = boost::asio;

// A real check of a password takes a tenth of a second and a thread; what the answer depends on is the same
// here.
namespace practice {

PasswordWorker::PasswordWorker(boost::asio::io_context& context)
    : m_context(context)
{
}

PasswordWorker::~PasswordWorker() = default;

bool PasswordWorker::check(std::string password, std::string hash, Done done)
{
    net::post(m_context, [matches = password == hash, done = std::move(done)] { done(matches); });
    return true;
}

} // namespace practice

namespace fuzz {

namespace {

constexpr practice::TimeMs noon = 1'750'000'000'000;

/// Ids that corpora can name: id-1 and so on.
practice::IdSource numbers()
{
    return [count = 0]() mutable { return "id-" + std::to_string(++count); };
}

void addTrades(practice::Broker& broker, practice::TradeStore& trades, const std::string& account,
    const std::string& comment)
{
    practice::PlaceRequest order{account, "EURUSD", "MARKET", "BUY", 0.1, {}, {}, {}, comment};
    trades.store(broker.place(order, noon).changes);
    order.orderKind = "BUY_LIMIT";
    order.pendingPrice = 1.0;
    trades.store(broker.place(order, noon).changes);
}

void addHistory(practice::Broker& broker, practice::TradeStore& trades, const std::string& account,
    const std::string& comment)
{
    const auto placed = broker.place({account, "EURUSD", "MARKET", "SELL", 0.01, {}, {}, {}, comment}, noon);
    trades.store(placed.changes);
    trades.store(broker.close(placed.tradeId, noon).changes);
}

/// What a broker has, to be compared: the order of the trades says nothing.
practice::BrokerState sorted(practice::BrokerState state)
{
    std::sort(state.liveTrades.begin(), state.liveTrades.end(),
        [](const practice::Trade& a, const practice::Trade& b) { return a.id < b.id; });
    return state;
}

} // namespace

practice::TimeMs StillClock::now() const
{
    return noon;
}

const std::vector<practice::SymbolSpec>& StillMarket::symbols() const
{
    return practice::symbolCatalog();
}

practice::Quote StillMarket::quote(std::size_t /*symbol*/, practice::TimeMs /*now*/)
{
    return {1.1, 1.2};
}

practice::TimeMs StillMarket::nextTick(std::size_t /*symbol*/, practice::TimeMs /*now*/)
{
    return std::numeric_limits<practice::TimeMs>::max();
}

practice::PriceSpan StillMarket::span(
    std::size_t /*symbol*/, practice::TimeMs /*from*/, practice::TimeMs /*to*/)
{
    return {1.15, 1.15, 0.05};
}

double StillMarket::dailyOpen(std::size_t /*symbol*/, practice::TimeMs /*now*/)
{
    return 1.1;
}

std::vector<practice::Bar> StillMarket::bars(
    std::size_t /*symbol*/, practice::Timeframe /*timeframe*/, std::size_t count, practice::TimeMs now)
{
    return std::vector<practice::Bar>(std::min<std::size_t>(count, 3), {now, 1.1, 1.2, 1.1, 1.2, 5});
}

std::filesystem::path preparedDatabase(const Folder& folder)
{
    const std::string second(secondWord);
    const std::filesystem::path file = folder.path() / "before.db";
    practice::Database database(file);
    practice::UserStore users(database);
    practice::TradeStore trades(database);
    practice::DrawingStore drawings(database);
    const practice::IdSource ids = numbers();
    StillMarket market;
    practice::Transaction transaction(database);
    std::map<std::string, std::string> owners;
    for (const std::string& name : {std::string("first"), second}) {
        users.add({name, name + "@example.org", name, name == "first" ? "password" : name});
        const std::vector<practice::Account> accounts = practice::defaultAccounts(ids, noon);
        trades.addAccounts(name, accounts);
        for (const practice::Account& account : accounts)
            owners[account.id] = name;
        for (const std::string& account : {std::string(), accounts[1].id})
            drawings.add(name,
                {(name == "first" ? "line-" : "other-") + account, account, "EURUSD", "hline", "#00ff00",
                    R"([{"price":1.1,"time":"1"}])"});
    }
    practice::Broker broker(market.symbols(), ids, trades.load());
    const std::array<practice::SymbolQuote, 1> quotes{{{0, market.quote(0, noon)}}};
    trades.store(broker.onPrices(quotes, noon));
    for (const practice::Account& account : broker.accounts())
        addTrades(broker, trades, account.id, owners[account.id]);
    for (const practice::Account& account : broker.accounts())
        addHistory(broker, trades, account.id, owners[account.id]);
    transaction.commit();
    for (const std::string& name : {std::string("first"), second})
        users.addToken(practice::tokenDigest(name), name, noon);
    return file;
}

Desk::Desk(
    net::io_context& context, practice::PasswordWorker& passwords, const std::filesystem::path& database)
    : m_context(context)
    , m_database(database)
    , m_sessions(m_database)
    , m_platform(m_database, m_market, m_clock)
    , m_hub(m_platform, m_limits)
    , m_guard("127.0.0.1", {})
    , m_router([this](std::string_view header) { return m_sessions.userOfHeader(header); })
{
    addAccountsRoutes(m_router, m_platform);
    addAuthRoutes(m_router, m_sessions, passwords, m_brake, m_clock);
    addCandlesRoutes(m_router, m_platform);
    addDrawingsRoutes(m_router, m_platform);
    addFeedRoutes(m_router);
    addNewsRoutes(m_router, m_platform, 1);
    addSettingsRoutes(m_router);
    addTradesRoutes(m_router, m_platform);
    m_platform.advance();
    m_platform.addListener(m_hub);
}

std::string Desk::answerTo(std::string_view requests, std::string_view frames)
{
    std::array<int, 2> ends{};
    demand(::socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data()) == 0, "there is a pair of sockets");
    net::local::stream_protocol::socket client(m_context, net::local::stream_protocol(), ends[0]);
    net::ip::tcp::socket server(m_context, net::ip::tcp::v4(), ends[1]);
    net::co_spawn(m_context,
        practice::serveConnection(std::move(server), {m_router, m_sessions, m_hub, m_guard, m_limits},
            m_connections.admit("client")),
        [](const std::exception_ptr& fault) { demand(!fault, "a connection ends without a fault"); });
    std::string answer;
    read(client, answer);
    for (const std::string_view part : {requests, frames}) {
        net::async_write(client, net::buffer(part), [](boost::system::error_code, std::size_t) {});
        settle();
    }
    boost::system::error_code error;
    client.shutdown(net::socket_base::shutdown_send, error);
    m_context.restart();
    m_context.run_for(std::chrono::minutes(10)); // the fuzzer itself is less patient
    demand(m_context.stopped(), "a connection whose client has ended ends too");
    return answer;
}

void Desk::read(net::local::stream_protocol::socket& client, std::string& answer)
{
    client.async_read_some(
        net::buffer(m_piece), [this, &client, &answer](boost::system::error_code error, std::size_t size) {
            answer.append(m_piece.data(), size);
            if (!error)
                read(client, answer);
        });
}

/// Goes on until the platform waits for its client, or for time to pass.
void Desk::settle()
{
    do {
        m_context.restart();
    } while (m_context.poll() > 0);
}

Belongings Desk::belongingsOf(const std::string& user)
{
    Belongings all;
    all.state = sorted(m_platform.broker().state());
    std::erase_if(
        all.state.accounts, [&](const auto& account) { return !m_platform.owns(user, account.id); });
    std::erase_if(
        all.state.liveTrades, [&](const auto& trade) { return !m_platform.owns(user, trade.accountId); });
    for (const practice::Trade& trade : all.state.liveTrades)
        all.ids.push_back(trade.id);
    for (const practice::Account& account : all.state.accounts) {
        all.ids.push_back(account.id);
        for (const practice::Trade& trade : m_platform.trades().history(account.id, 1000)) {
            all.ids.push_back(trade.id);
            all.history.push_back(trade);
        }
    }
    practice::Statement& rows
        = m_database.statement("SELECT id, account_id || ' ' || symbol || ' ' || tool || ' ' "
                               "|| color || ' ' || points FROM drawings WHERE user_id = ?1");
    rows.bind(1, user);
    while (rows.step()) {
        all.ids.push_back(rows.text(0));
        all.drawings.push_back(rows.text(0) + ' ' + rows.text(1));
    }
    return all;
}

practice::BrokerState Desk::live() const
{
    return sorted(m_platform.broker().state());
}

practice::BrokerState Desk::stored()
{
    return sorted(m_platform.trades().load());
}

} // namespace fuzz
