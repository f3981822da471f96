#include "practice/server/FeedHub.h"

#include "practice/server/FeedSession.h"
#include "practice/server/JsonText.h"
#include "practice/server/WireRecords.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <map>
#include <utility>

namespace practice {

namespace {

SharedMessage shared(std::string text)
{
    return std::make_shared<const std::string>(std::move(text));
}

SharedMessage priceUpdate(const std::vector<SymbolSpec>& symbols, std::span<const SymbolQuote> quotes)
{
    return shared(R"({"type":"price_update","data":)" + priceMap(symbols, quotes) + '}');
}

} // namespace

FeedHub::FeedHub(Platform& platform, const Limits& limits)
    : m_platform(platform)
    , m_limits(limits)
{
}

std::shared_ptr<void> FeedHub::admit()
{
    if (static_cast<std::size_t>(m_place.use_count()) <= m_limits.feeds)
        return m_place;
    const auto silent
        = std::ranges::find_if(m_sessions, [](const auto& session) { return !session->hasSpoken(); });
    if (silent == m_sessions.end())
        return nullptr;
    const auto leaving = *silent;
    leaving->drop();
    return m_place;
}

void FeedHub::join(std::shared_ptr<FeedSession> session)
{
    m_sessions.push_back(std::move(session));
}

void FeedHub::leave(const FeedSession& session)
{
    std::erase_if(m_sessions, [&](const auto& joined) { return joined.get() == &session; });
}

std::size_t FeedHub::symbolCount() const
{
    return m_platform.symbols().size();
}

SharedMessage FeedHub::hello() const
{
    auto symbols = nlohmann::json::array();
    const TimeMs now = m_platform.now();
    for (std::size_t i = 0; i < m_platform.symbols().size(); ++i)
        symbols.push_back(symbolRecord(m_platform.symbols()[i], m_platform.market().dailyOpen(i, now)));
    return shared(R"({"type":"hello","symbols":)" + jsonText(symbols) + R"(,"prices":)"
        + priceMap(m_platform.symbols(), m_platform.quotes()) + '}');
}

SharedMessage FeedHub::prices(const std::vector<bool>& symbols) const
{
    std::vector<SymbolQuote> quotes;
    for (const SymbolQuote& quote : m_platform.quotes()) {
        if (symbols[quote.symbol])
            quotes.push_back(quote);
    }
    return priceUpdate(m_platform.symbols(), quotes);
}

void FeedHub::pricesMoved(std::span<const SymbolQuote> changed, TimeMs)
{
    if (m_sessions.empty())
        return;
    std::vector<bool> marks(symbolCount(), false);
    for (const SymbolQuote& quote : changed)
        marks[quote.symbol] = true;
    const SharedMessage message = priceUpdate(m_platform.symbols(), changed);
    const auto sessions = m_sessions; // a session may leave while it is written to
    for (const auto& session : sessions)
        session->sendPrices(message, marks);
}

void FeedHub::accountEvent(const std::string& userId, const std::string& message)
{
    const SharedMessage event = shared(message);
    const auto sessions = m_sessions;
    for (const auto& session : sessions) {
        if (session->userId() == userId)
            session->sendEvent(event);
    }
}

SharedMessage FeedHub::tradesOf(const std::string& userId) const
{
    auto rows = nlohmann::json::array();
    for (const Account& account : m_platform.accountsOf(userId)) {
        const std::vector<Trade> trades = m_platform.broker().openTrades(account.id);
        if (!trades.empty())
            m_platform.inform([&](PlatformListener& listener) {
                listener.resultsSent(account.id, trades, m_platform.now());
            });
        for (const Trade& trade : trades) {
            auto row = tradeRecord(trade, m_platform.digits(trade.symbol));
            row["pnl"] = toUsd(trade.pnl);
            rows.push_back(std::move(row));
        }
    }
    return rows.empty() ? nullptr : shared(R"({"type":"trades_update","data":)" + jsonText(rows) + '}');
}

void FeedHub::sendTrades()
{
    std::map<std::string, SharedMessage> messages;
    const auto sessions = m_sessions;
    for (const auto& session : sessions) {
        auto [entry, isNew] = messages.try_emplace(session->userId());
        if (isNew)
            entry->second = tradesOf(session->userId());
        if (entry->second)
            session->sendTrades(entry->second);
    }
}

void FeedHub::dropStalled()
{
    const auto sessions = m_sessions;
    for (const auto& session : sessions)
        session->dropIfStalled();
}

void FeedHub::closeAll()
{
    const auto sessions = m_sessions;
    for (const auto& session : sessions)
        session->close();
}

} // namespace practice
