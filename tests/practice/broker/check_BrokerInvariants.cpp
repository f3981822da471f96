#include "BrokerFixture.h"

#include "practice/core/broker/RecordText.h"

#include <cmath>
#include <map>
#include <memory>
#include <random>
#include <set>

// Long random sessions: commands good and bad, prices that walk and jump, days that turn. After every step
// a second set of books, kept from the change sets alone, must agree with the broker's.

using namespace practice;

namespace {

constexpr int steps = 4'000;

bool isOneOf(TradeStatus status, TradeStatus first, TradeStatus second)
{
    return status == first || status == second;
}

/// What a server's storage would hold, and the rules it must always obey.
class Auditor {
public:
    Auditor(const BrokerState& initial, const std::vector<Quote>& quotes)
        : m_quotes(quotes)
    {
        for (const Account& account : initial.accounts) {
            m_accounts[account.id] = account;
            m_expected[account.id] = account.balance;
        }
    }

    void store(const ChangeSet& changes)
    {
        std::set<std::string> once;
        for (const Trade& trade : changes.trades) {
            CHECK(once.insert(trade.id).second);
            CHECK(!m_finished.contains(trade.id)); // what is finished stays so
            const auto known = m_live.find(trade.id);
            const bool wasOpen = known != m_live.end() && known->second.status == TradeStatus::Open;
            if (!wasOpen && trade.entryPrice != 0)
                checkFill(trade.symbol, trade.entryPrice, trade.side == Side::Buy);
            if (wasOpen)
                CHECK_EQ(trade.entryPrice, known->second.entryPrice);
            if (trade.orderKind == OrderKind::Balance) {
                CHECK(known == m_live.end() && trade.status == TradeStatus::Closed);
                CHECK_EQ(m_expected[trade.accountId] + trade.pnl, 0);
                m_expected[trade.accountId] = 0;
                ++writtenOff;
            } else if (trade.status == TradeStatus::Closed) {
                checkFill(trade.symbol, trade.exitPrice, trade.side == Side::Sell);
                CHECK(trade.closeReason != CloseReason::None);
                m_expected[trade.accountId] += trade.pnl;
                ++closes[trade.closeReason];
            }
            if (isOneOf(trade.status, TradeStatus::Closed, TradeStatus::Cancelled)) {
                m_live.erase(trade.id);
                m_finished.insert(trade.id);
            } else {
                m_live[trade.id] = trade;
            }
        }
        for (const Account& account : changes.accounts) {
            CHECK(once.insert(account.id).second);
            Account& known = m_accounts.at(account.id);
            if (account.phase != known.phase) {
                CHECK(m_expected[account.id] * 10 >= known.initialBalance * 11);
                m_expected[account.id] = account.initialBalance;
                ++phases;
            }
            CHECK(known.status == AccountStatus::Active || account.status == known.status);
            known = account;
        }
    }

    /// The broker's books equal ours, and its figures are their sums.
    void compare(const Broker& broker) const
    {
        const BrokerState state = broker.state();
        bool same = state.liveTrades.size() == m_live.size();
        for (Trade trade : state.liveTrades) {
            const auto stored = m_live.find(trade.id);
            if (stored == m_live.end()) {
                same = false;
                continue;
            }
            trade.pnl = stored->second.pnl; // follows every price, is stored with the next change
            same = same && trade == stored->second;
        }
        CHECK(same);
        for (const Account& account : state.accounts) {
            CHECK(account == m_accounts.at(account.id));
            CHECK_EQ(account.balance, m_expected.at(account.id));
            compareFigures(broker, account);
        }
    }

    [[nodiscard]] BrokerState state() const
    {
        BrokerState result;
        for (const Account& account : fixtureAccounts())
            result.accounts.push_back(m_accounts.at(account.id));
        for (const auto& [id, trade] : m_live)
            result.liveTrades.push_back(trade);
        return result;
    }

    std::map<CloseReason, int> closes;
    int phases = 0;
    int writtenOff = 0;
    bool settled = false; ///< the last step was a price, so that nothing may be left to stop out

private:
    void checkFill(const std::string& symbol, double price, bool atAsk) const
    {
        const Quote& quote = m_quotes[*findSymbol(fixtureSymbols(), symbol)];
        CHECK_EQ(price, atAsk ? quote.ask : quote.bid);
    }

    void compareFigures(const Broker& broker, const Account& account) const
    {
        Cents profit = 0;
        Cents margin = 0;
        for (const Trade& trade : broker.openTrades(account.id)) {
            profit += trade.pnl;
            margin += trade.margin;
            CHECK(trade.status == TradeStatus::Open);
            // The same value by another road: floating point from end to end, off by a rounding at most.
            CHECK_NEAR(toUsd(trade.pnl), worth(trade), 0.0051);
        }
        const AccountFigures figures = broker.figures(account.id);
        CHECK_EQ(figures.balance, account.balance);
        CHECK_EQ(figures.openProfit, profit);
        CHECK_EQ(figures.equity, account.balance + profit);
        CHECK_EQ(figures.margin, margin);
        CHECK_EQ(figures.freeMargin, account.balance + profit - margin);
        if (!settled)
            return;
        if (margin > 0)
            CHECK(figures.equity * 2 > margin);
        if (account.kind == AccountKind::Plan && account.status == AccountStatus::Active) {
            CHECK(figures.equity * 10 > account.initialBalance * 9);
            CHECK(figures.equity * 20 > account.dayStartEquity * 19);
        }
        if (account.status != AccountStatus::Active)
            CHECK(broker.openTrades(account.id).empty() && broker.pendingOrders(account.id).empty());
    }

    double worth(const Trade& trade) const
    {
        const std::size_t symbol = *findSymbol(fixtureSymbols(), trade.symbol);
        const double units = toLots(trade.lots) * fixtureSymbols()[symbol].contractSize;
        const Quote& quote = m_quotes[symbol];
        const double move
            = trade.side == Side::Buy ? quote.bid - trade.entryPrice : trade.entryPrice - quote.ask;
        double rate = 1;
        if (symbol == UsdJpy)
            rate = 2 / (quote.bid + quote.ask);
        else if (symbol == EurGbp)
            rate = (m_quotes[GbpUsd].bid + m_quotes[GbpUsd].ask) / 2;
        return move * units * rate + toUsd(trade.swap) - toUsd(trade.commission);
    }

    const std::vector<Quote>& m_quotes;
    std::map<std::string, Account> m_accounts;
    std::map<std::string, Trade> m_live;
    std::set<std::string> m_finished;
    std::map<std::string, Cents> m_expected; ///< balances that the closed results add up to
};

class Session {
public:
    explicit Session(unsigned seed)
        : m_random(seed)
        , m_auditor({fixtureAccounts(), {}}, m_quotes)
    {
    }

    void run()
    {
        for (int step = 0; step < steps; ++step) {
            const int dice = pick(10);
            m_auditor.settled = dice < 5;
            if (dice < 5)
                tick();
            else
                command(dice);
            m_auditor.compare(m_desk->broker);
            if (step % 500 == 499)
                restart();
        }
    }

    const Auditor& auditor() const { return m_auditor; }
    int refusals = 0;
    int accepted = 0;
    int undone = 0;

private:
    int pick(int count) { return std::uniform_int_distribution<int>(0, count - 1)(m_random); }

    void tick()
    {
        const std::vector<SymbolSpec> symbols = fixtureSymbols();
        std::vector<SymbolQuote> changed;
        for (std::size_t i = 0; i < m_quotes.size(); ++i) {
            if (pick(3) == 0)
                continue;
            const double scale = pick(50) == 0 ? 0.01 : 0.0015; // now and then a jump
            const double pull = std::log(fixtureQuotes()[i].bid / m_quotes[i].bid) * 0.02;
            const double factor = std::exp(pull + scale * std::normal_distribution<double>()(m_random));
            const double points = std::pow(10.0, symbols[i].digits);
            const double bid = std::round(m_quotes[i].bid * factor * points);
            m_quotes[i] = {bid / points, (bid + 1 + pick(20)) / points};
            changed.push_back({i, m_quotes[i]});
        }
        m_desk->now += pick(40) == 0 ? 9 * hourMs : 250;
        ChangeSet changes = m_desk->broker.onPrices(changed, m_desk->now);
        if (!changes.empty() && pick(8) == 0) {
            m_desk->broker.undo(changes); // the disk was full; the same prices come once more
            changes = m_desk->broker.onPrices(changed, m_desk->now);
            ++undone;
        }
        m_auditor.store(changes);
    }

    void command(int dice)
    {
        const BrokerState before = m_desk->broker.state();
        CommandResult result = send(dice, before);
        if (result.refusal) {
            ++refusals;
            CHECK(!result.refusal->message.empty());
            CHECK(result.changes.empty());
            CHECK(m_desk->broker.state() == before);
            return;
        }
        ++accepted;
        if (pick(8) == 0) {
            m_desk->broker.undo(result.changes);
            CHECK(m_desk->broker.state() == before);
            ++undone;
            return;
        }
        m_auditor.store(result.changes);
    }

    CommandResult send(int dice, const BrokerState& before)
    {
        const std::string id = before.liveTrades.empty() || pick(20) == 0
            ? "no-such-trade"
            : before.liveTrades[static_cast<std::size_t>(pick(static_cast<int>(before.liveTrades.size())))]
                  .id;
        switch (dice) {
        case 5:
            if (pick(3) > 0)
                return m_desk->broker.close(id, m_desk->now);
            return m_desk->broker.place(order(), m_desk->now);
        case 6:
            return pick(2) == 0 ? m_desk->broker.cancel(id, m_desk->now) : modify(id);
        default:
            return m_desk->broker.place(order(), m_desk->now);
        }
    }

    CommandResult modify(const std::string& id)
    {
        const Trade* trade = m_desk->broker.trade(id);
        const double around = trade ? std::max(trade->entryPrice, trade->pendingPrice) : 1;
        const int direction = trade && trade->side == Side::Sell ? -1 : 1;
        ModifyRequest request;
        if (pick(3) > 0)
            request.stopLoss = level(around, direction * -1);
        if (pick(3) > 0)
            request.takeProfit = level(around, direction);
        if (pick(4) == 0)
            request.pendingPrice = level(around, pick(2) == 0 ? 1 : -1);
        return m_desk->broker.modify(id, request, m_desk->now);
    }

    /// Mostly a level above (direction 1) or below (-1), sometimes on the wrong side, sometimes nonsense.
    double level(double around, int direction)
    {
        switch (pick(30)) {
        case 0:
            return 0;
        case 1:
            return std::nan("");
        case 2:
            return -1;
        case 3:
            direction = -direction;
            break;
        default:
            break;
        }
        return around * (1 + direction * std::uniform_real_distribution<double>(0.0005, 0.01)(m_random));
    }

    PlaceRequest order()
    {
        static const std::vector<std::string> accounts{
            "demo", "demo", "demo", "tight", "tight", "challenge", "single", "funded", "wallet", "nobody"};
        static const std::vector<std::string> kinds{
            "MARKET", "MARKET", "MARKET", "BUY_LIMIT", "SELL_LIMIT", "BUY_STOP", "SELL_STOP", "BUY"};
        const auto symbol = static_cast<std::size_t>(pick(instrumentCount));
        PlaceRequest request;
        request.accountId = accounts[static_cast<std::size_t>(pick(static_cast<int>(accounts.size())))];
        request.symbol = fixtureSymbols()[symbol].name;
        request.orderKind = kinds[static_cast<std::size_t>(pick(static_cast<int>(kinds.size())))];
        const double price = m_quotes[symbol].bid;
        int direction = request.orderKind.starts_with("SELL") ? -1 : 1;
        if (request.orderKind == "MARKET") {
            direction = pick(2) == 0 ? 1 : -1;
            request.type = direction > 0 ? "BUY" : "SELL";
        } else {
            request.pendingPrice = level(price, request.orderKind.ends_with("STOP") ? direction : -direction);
        }
        request.lots = pick(15) == 0 ? 0.015 : (1 + pick(pick(10) == 0 ? 1000 : 40)) / 100.0;
        if (pick(3) == 0)
            request.stopLoss = level(request.pendingPrice.value_or(price), -direction);
        if (pick(3) == 0)
            request.takeProfit = level(request.pendingPrice.value_or(price), direction);
        return request;
    }

    void restart()
    {
        const TimeMs now = m_desk->now;
        m_desk = std::make_unique<Desk>(m_auditor.state(), false, m_random());
        m_desk->now = now;
        m_auditor.store(m_desk->prices(m_quotes));
        m_auditor.compare(m_desk->broker);
    }

    std::mt19937 m_random;
    std::vector<Quote> m_quotes = fixtureQuotes();
    std::unique_ptr<Desk> m_desk = std::make_unique<Desk>();
    Auditor m_auditor;
};

} // namespace

TEST_CASE("the books agree after every step of random sessions")
{
    std::map<CloseReason, int> closes;
    int writtenOff = 0;
    for (unsigned seed = 1; seed <= 3; ++seed) {
        Session session(seed);
        session.run();
        // A session in which nothing happens would prove nothing.
        CHECK(session.accepted > 500);
        CHECK(session.refusals > 200);
        CHECK(session.undone > 50);
        writtenOff += session.auditor().writtenOff;
        for (const auto& [reason, count] : session.auditor().closes)
            closes[reason] += count;
    }
    for (const auto& [reason, count] : closes)
        std::cout << "  closed " << toText(reason) << ": " << count << '\n';
    std::cout << "  debts written off: " << writtenOff << '\n';
    CHECK(writtenOff > 0);
    for (const auto reason : {CloseReason::Manual, CloseReason::StopLoss, CloseReason::TakeProfit,
             CloseReason::StopOut, CloseReason::Risk})
        CHECK(closes[reason] > 0);
}

CHECK_MAIN()
