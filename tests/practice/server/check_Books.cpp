#include "practice/Check.h"
#include "practice/server/SecondBooks.h"
#include "practice/storage/TemporaryFolder.h"

#include "practice/core/broker/RecordText.h"
#include "practice/server/Api.h"
#include "practice/server/Platform.h"
#include "practice/server/PlatformTime.h"
#include "practice/server/Reset.h"

#include <algorithm>
#include <limits>
#include <memory>
#include <random>
#include <sstream>

// Random sessions on the platform with all that belongs to it: market, broker and a database that is closed
// and opened again. After every step a second set of books must agree with it to the cent.

using namespace practice;

namespace {

constexpr TimeMs firstMoment = 1'750'000'000'000;

/// A machine whose clock is set by hand.
class HandClock final : public Clock {
public:
    [[nodiscard]] TimeMs now() const override { return shown; }
    [[nodiscard]] TimeMs elapsed() const override { return passed; }
    TimeMs shown = firstMoment;
    TimeMs passed = 0;
};

/// Prices that a test writes down; each set counts from its moment until the next one.
class WrittenMarket final : public PriceSource {
public:
    [[nodiscard]] const std::vector<SymbolSpec>& symbols() const override { return symbolCatalog(); }
    [[nodiscard]] Quote quote(std::size_t symbol, TimeMs now) override
    {
        const SecondBooks::Prices& prices = sheetAt(now).at(symbol);
        const double unit = std::pow(10.0, symbols()[symbol].digits);
        return {static_cast<double>(prices.bid) / unit, static_cast<double>(prices.ask) / unit};
    }
    [[nodiscard]] TimeMs nextTick(std::size_t, TimeMs now) override { return nextSheet(now); }
    [[nodiscard]] PriceSpan span(std::size_t symbol, TimeMs from, TimeMs to) override
    {
        PriceSpan span{1e300, 0, 0};
        for (TimeMs moment = from; moment <= to; moment = nextSheet(moment)) {
            const Quote at = quote(symbol, moment);
            span.low = std::min(span.low, (at.bid + at.ask) / 2);
            span.high = std::max(span.high, (at.bid + at.ask) / 2);
            span.halfSpread = std::max(span.halfSpread, (at.ask - at.bid) / 2);
        }
        return span;
    }
    [[nodiscard]] double dailyOpen(std::size_t symbol, TimeMs now) override { return quote(symbol, now).bid; }
    [[nodiscard]] std::vector<Bar> bars(std::size_t, Timeframe, std::size_t, TimeMs) override { return {}; }

    [[nodiscard]] const std::vector<SecondBooks::Prices>& sheetAt(TimeMs now) const
    {
        auto entry = m_sheets.upper_bound(now);
        if (entry != m_sheets.begin())
            --entry;
        return entry->second;
    }
    /// The moment of the first set of prices after this one; far away when there is none.
    [[nodiscard]] TimeMs nextSheet(TimeMs now) const
    {
        const auto entry = m_sheets.upper_bound(now);
        return entry == m_sheets.end() ? std::numeric_limits<TimeMs>::max() : entry->first;
    }
    /// From this moment on, whatever was written for a later one.
    void write(TimeMs from, const std::vector<SecondBooks::Prices>& prices)
    {
        m_sheets.erase(m_sheets.lower_bound(from), m_sheets.end());
        m_sheets[from] = prices;
    }

private:
    std::map<TimeMs, std::vector<SecondBooks::Prices>> m_sheets;
};

std::vector<Account> someAccounts()
{
    const auto make = [](const char* id, AccountKind kind, Cents dollars, int leverage, int steps) {
        Account account;
        account.id = id;
        account.kind = kind;
        account.plan = {steps > 0 ? "Plan" : "", std::max(1, steps)};
        account.balance = account.initialBalance = account.dayStartEquity = dollars * 100;
        account.leverage = leverage;
        account.dayIndex = floorDivide(firstMoment, dayMs);
        return account;
    };
    std::vector<Account> accounts{make("wallet", AccountKind::Wallet, 2'500, 1, 0),
        make("demo", AccountKind::Demo, 100'000, 100, 0), make("tight", AccountKind::Demo, 2'000, 200, 0),
        make("challenge", AccountKind::Plan, 25'000, 100, 2),
        make("single", AccountKind::Plan, 10'000, 30, 1), make("funded", AccountKind::Plan, 50'000, 50, 2)};
    accounts.back().isFunded = true;
    accounts.back().phase = 2;
    return accounts;
}

/// What a session must have seen to prove anything.
struct Seen {
    std::map<CloseReason, int> ends;
    int accepted = 0;
    int refused = 0;
    int restarts = 0;
    int clocksSet = 0;
    int stalls = 0;
    int phases = 0;
    int debts = 0;
    int nights = 0;
    int lines = 0;
};

class Session final {
public:
    using Line = SecondBooks::Line;

    explicit Session(unsigned seed)
        : m_random(seed)
        , m_seed(seed)
        , m_books(symbolCatalog(), someAccounts())
    {
        for (const SymbolSpec& symbol : symbolCatalog()) {
            const auto bid = std::llround(symbol.basePrice * std::pow(10.0, symbol.digits));
            m_prices.push_back({bid, bid + symbol.spreadPoints});
        }
        m_market.write(m_now, m_prices);
        open();
        UserStore(*m_database).add({"user", "user@example.test", "User", "none"});
        TradeStore(*m_database).addAccounts("user", someAccounts());
        start();
    }

    void run(int steps)
    {
        for (m_step = 0; m_step < steps; ++m_step) {
            const int dice = pick(100);
            if (dice < 45)
                tick();
            else if (dice < 96)
                command();
            else if (dice < 97)
                takeGains();
            else if (dice < 98)
                setClock();
            else
                restart();
            compare();
        }
        compareHistory();
        for (const auto& [reason, count] : m_books.ends)
            seen.ends[reason] += count;
        seen.phases += m_books.phases;
        seen.debts += m_books.debts;
        seen.nights += m_books.nights;
    }

    Seen seen;

private:
    int pick(int count) { return std::uniform_int_distribution<int>(0, count - 1)(m_random); }
    double between(double low, double high)
    {
        return std::uniform_real_distribution<double>(low, high)(m_random);
    }

    /// Lets time pass.
    void pass(TimeMs time)
    {
        m_machine.shown += time;
        m_machine.passed += time;
        const TimeMs before = m_now;
        m_now = m_clock->now();
        must(m_now >= before && m_now - before <= time + dayMs, "time has run backwards or away");
        writePath(before);
    }

    TimeMs someStep()
    {
        constexpr TimeMs steps[] = {800 * dayMs, 30 * dayMs, 20 * hourMs, 3 * hourMs, 700};
        return (pick(2) == 0 ? 1 : -1) * steps[pick(5)];
    }

    // As a person or a time server does; half of the time it was set before, and is put right now.
    void setClock()
    {
        ++seen.clocksSet;
        m_machine.shown = m_machine.shown == firstMoment + m_machine.passed || pick(2) == 0
            ? m_machine.shown + someStep()
            : firstMoment + m_machine.passed;
        pass(0);
        advance();
    }

    void open()
    {
        m_database = std::make_unique<Database>(m_folder / "x.db");
        m_database->execute("PRAGMA synchronous=OFF"); // no power will fail here
        m_clock = std::make_unique<PlatformTime>(m_machine, earliestMoment(*m_database, m_machine.shown));
        m_now = m_clock->now();
    }

    void start()
    {
        m_platform = std::make_unique<Platform>(*m_database, m_market, *m_clock);
        advance();
    }

    void advance()
    {
        m_platform->advance();
        catchUp();
    }

    /// The books see each price and each midnight since they were last open.
    void catchUp()
    {
        while (m_seen < m_now) {
            const TimeMs midnight = (floorDivide(m_seen, dayMs) + 1) * dayMs;
            m_seen = std::min({m_market.nextSheet(m_seen), midnight, m_now});
            m_books.tick(m_market.sheetAt(m_seen), m_seen);
        }
        m_seen = m_now;
        m_books.tick(m_prices, m_now);
    }

    /// Prices that move while nobody looks, from the time before until now.
    void writePath(TimeMs before)
    {
        if (m_now - before < 1000)
            return;
        ++seen.stalls;
        for (int i = 0; i < 6; ++i) {
            before += 1 + static_cast<TimeMs>(between(0, 0.5) * static_cast<double>(m_now - before - 1));
            if (before >= m_now)
                return;
            movePrices(before);
        }
    }

    void movePrices(TimeMs from)
    {
        for (std::size_t i = 0; i < m_prices.size(); ++i) {
            if (pick(3) == 0)
                continue;
            const SymbolSpec& symbol = symbolCatalog()[i];
            const double scale = pick(100) == 0 ? 0.05 : 0.0012; // now and then a jump
            const auto base = static_cast<double>(m_books.pointsOf(symbol.basePrice, i));
            const auto bid = static_cast<double>(m_prices[i].bid);
            const double pull = std::log(base / bid) * 0.01;
            m_prices[i].bid = std::max<SecondBooks::Points>(100,
                std::llround(bid * std::exp(pull + scale * std::normal_distribution<double>()(m_random))));
            m_prices[i].ask = m_prices[i].bid + 1 + pick(2 * symbol.spreadPoints);
        }
        m_market.write(from, m_prices);
    }

    void tick()
    {
        pass(pick(60) == 0 ? 9 * hourMs : pick(300) == 0 ? 3 * dayMs + hourMs : 250);
        movePrices(m_now);
        advance();
    }

    // Closed for a moment, a night or some days, and an account begins anew in between now and then.
    void restart()
    {
        ++seen.restarts;
        compareHistory();
        m_platform.reset();
        m_database.reset();
        constexpr TimeMs pauses[] = {1, minuteMs, 11 * hourMs, 5 * dayMs};
        const TimeMs pause = pauses[pick(4)];
        m_machine.passed += pause;
        m_machine.shown += pause + (pick(8) == 0 ? someStep() : 0);
        const TimeMs before = m_now;
        open();
        m_seen = std::min(m_seen, m_now);
        writePath(before);
        must(m_now >= before || m_books.live().empty() || m_now >= lastEvent(), "time has run backwards");
        const auto account = static_cast<std::size_t>(pick(static_cast<int>(m_books.books().size())));
        const SecondBooks::Book& book = m_books.books()[account];
        if (book.status != AccountStatus::Active || book.balance * 2 < book.terms.initialBalance
            || pick(4) == 0) {
            static_cast<void>(resetAccounts(*m_database, book.terms.id, m_now));
            m_books.reset(account, m_now);
        }
        movePrices(m_now);
        start();
    }

    /// The last moment that a trade which is still there tells of.
    [[nodiscard]] TimeMs lastEvent() const
    {
        TimeMs last = 0;
        for (const Line& line : m_books.live())
            last = std::max(last, line.begun);
        return last;
    }

    void command()
    {
        pass(pick(50) == 0 ? 7 * hourMs : 1 + pick(20));
        catchUp(); // as the platform does before it carries anything out
        const int dice = pick(10);
        const Line* line = m_books.live().empty()
            ? nullptr
            : &m_books.live()[static_cast<std::size_t>(pick(static_cast<int>(m_books.live().size())))];
        if (dice < 5 || !line)
            place(newOrder());
        else if (dice < 8)
            end(*line);
        else
            modify(*line);
    }

    /// Nothing when it was refused.
    std::optional<Trade> execute(const Platform::Command& command)
    {
        try {
            const Trade trade = m_platform->execute(command);
            ++seen.accepted;
            return trade;
        } catch (const ApiError&) {
            ++seen.refused;
            return std::nullopt;
        }
    }

    SecondBooks::Points away(SecondBooks::Points from, int direction)
    {
        if (pick(25) == 0)
            direction = -direction;
        const auto distance = std::llround(static_cast<double>(from) * between(0.0002, 0.008));
        return std::max<SecondBooks::Points>(1, from + direction * std::max(1LL, distance));
    }

    Line newOrder()
    {
        constexpr std::size_t accounts[] = {0, 1, 1, 1, 1, 1, 2, 2, 2, 2, 2, 2, 3, 3, 3, 4, 4, 4, 5, 5};
        constexpr OrderKind kinds[] = {OrderKind::Market, OrderKind::Market, OrderKind::Market,
            OrderKind::BuyLimit, OrderKind::SellLimit, OrderKind::BuyStop, OrderKind::SellStop};
        Line order;
        order.account = accounts[pick(20)];
        order.symbol = static_cast<std::size_t>(pick(static_cast<int>(m_prices.size())));
        order.kind = kinds[pick(7)];
        order.buys = order.kind == OrderKind::Market
            ? pick(2) == 0
            : order.kind == OrderKind::BuyLimit || order.kind == OrderKind::BuyStop;
        const int size = pick(12) == 0 ? 1000 : order.account <= 2 ? 300 : 60;
        order.lots = pick(3) == 0 ? 10 * (1 + pick(size / 10)) : 1 + pick(size);
        if (order.account == 2 && order.kind == OrderKind::Market && pick(4) > 0) {
            // Two or three of these, and the next bad hour ends in a stop-out.
            const auto free = static_cast<double>(m_books.equity(2) - m_books.margin(2));
            const double share = free * between(0.3, 0.7) / static_cast<double>(m_books.marginNeeded(order));
            order.lots = std::clamp(static_cast<std::int64_t>(static_cast<double>(order.lots) * share),
                std::int64_t{1}, std::int64_t{1000});
        }
        const int direction = order.buys ? 1 : -1;
        SecondBooks::Points reference = order.buys ? m_prices[order.symbol].ask : m_prices[order.symbol].bid;
        if (order.kind != OrderKind::Market) {
            const bool limit = order.kind == OrderKind::BuyLimit || order.kind == OrderKind::SellLimit;
            reference = order.trigger = away(reference, limit ? -direction : direction);
        }
        if (pick(3) == 0)
            order.stop = away(reference, -direction);
        if (pick(3) == 0)
            order.target = away(reference, direction);
        return order;
    }

    void place(Line order)
    {
        PlaceRequest request;
        request.accountId = m_books.books()[order.account].terms.id;
        request.symbol = symbolCatalog()[order.symbol].name;
        request.orderKind = toText(order.kind);
        request.type = order.kind == OrderKind::Market ? toText(order.buys ? Side::Buy : Side::Sell) : "";
        request.lots = static_cast<double>(order.lots) / 100;
        if (order.trigger > 0)
            request.pendingPrice = m_books.priceOf(order.trigger, order.symbol);
        request.stopLoss = m_books.priceOf(order.stop, order.symbol);
        request.takeProfit = m_books.priceOf(order.target, order.symbol);
        const bool expected = m_books.mayPlace(order);
        const auto trade = execute([&](Broker& broker, TimeMs now) { return broker.place(request, now); });
        must(trade.has_value() == expected, "place " + request.accountId + ' ' + request.symbol);
        if (trade)
            m_books.place(std::move(order), trade->id, m_now);
    }

    // What makes a challenge pass its phase.
    void takeGains()
    {
        for (std::size_t i = 0; i < m_books.books().size(); ++i) {
            if (m_books.equity(i) * 20 < m_books.books()[i].terms.initialBalance * 21)
                continue;
            const std::vector<Line> lines = m_books.live(); // closing takes them out of it
            for (const Line& line : lines) {
                if (line.account == i && line.status == TradeStatus::Open)
                    end(line);
            }
        }
    }

    void end(Line line)
    {
        const bool open = line.status == TradeStatus::Open;
        const auto trade = execute([&](Broker& broker, TimeMs now) {
            return open ? broker.close(line.id, now) : broker.cancel(line.id, now);
        });
        must(trade.has_value(), "end " + line.id);
        if (open)
            m_books.close(line.id, m_now);
        else
            m_books.cancel(line.id);
    }

    void modify(Line line)
    {
        const int direction = line.buys ? 1 : -1;
        const bool waits = line.status == TradeStatus::Pending;
        ModifyRequest request;
        if (waits && pick(2) == 0) {
            line.trigger = away(line.trigger, pick(2) == 0 ? 1 : -1);
            request.pendingPrice = m_books.priceOf(line.trigger, line.symbol);
        }
        const SecondBooks::Points reference = waits ? line.trigger : m_prices[line.symbol].bid;
        if (pick(3) > 0) {
            line.stop = pick(5) == 0 ? 0 : away(reference, -direction);
            request.stopLoss = m_books.priceOf(line.stop, line.symbol);
        }
        if (pick(3) > 0) {
            line.target = pick(5) == 0 ? 0 : away(reference, direction);
            request.takeProfit = m_books.priceOf(line.target, line.symbol);
        }
        const bool expected = m_books.mayModify(line);
        const auto trade
            = execute([&](Broker& broker, TimeMs now) { return broker.modify(line.id, request, now); });
        must(trade.has_value() == expected, "modify " + line.id);
        if (trade)
            m_books.modify(line);
    }

    /// Ends the session at the first difference: what follows it would only repeat it.
    void must(bool agreed, const std::string& what)
    {
        if (!CHECK(agreed)) {
            std::cout << "  seed " << m_seed << ", step " << m_step << ": " << what << std::endl;
            throw check::CaseAborted{};
        }
    }

    template <typename T> void same(const T& platform, const T& books, const std::string& what)
    {
        std::ostringstream text;
        if (platform != books)
            text << what << ": the platform says " << platform << ", the books " << books;
        must(platform == books, text.str());
    }

    void compare()
    {
        const Broker& broker = m_platform->broker();
        std::size_t live = 0;
        for (std::size_t i = 0; i < m_books.books().size(); ++i) {
            const SecondBooks::Book& book = m_books.books()[i];
            const std::string& id = book.terms.id;
            const Account& account = *broker.account(id);
            const AccountFigures figures = broker.figures(id);
            same(account.balance, book.balance, id + " balance");
            same(figures.equity, m_books.equity(i), id + " equity");
            same(figures.margin, m_books.margin(i), id + " margin");
            same(account.phase, book.phase, id + " phase");
            same(toText(account.status), toText(book.status), id + " status");
            same(account.dayIndex, book.day, id + " day");
            same(account.dayStartEquity, book.dayStart, id + " equity at the day's start");
            live += broker.openTrades(id).size() + broker.pendingOrders(id).size();
        }
        same(live, m_books.live().size(), "live trades");
        for (const Line& line : m_books.live()) {
            const Trade* trade = broker.trade(line.id);
            must(trade != nullptr, "live trade " + line.id);
            compareTrade(*trade, line);
            same(trade->pnl, line.status == TradeStatus::Open ? m_books.profitNow(line) : 0,
                line.id + " profit");
        }
    }

    void compareTrade(const Trade& trade, const Line& line)
    {
        const std::string name = line.id + ' ' + trade.symbol;
        same(trade.accountId, m_books.books()[line.account].terms.id, name + " account");
        same(toText(trade.status), toText(line.status), name + " status");
        same(trade.lots, line.lots, name + " volume");
        same(trade.entryPrice, m_books.priceOf(line.entry, line.symbol), name + " entry");
        same(trade.pendingPrice, m_books.priceOf(line.trigger, line.symbol), name + " price");
        same(trade.stopLoss, m_books.priceOf(line.stop, line.symbol), name + " stop loss");
        same(trade.takeProfit, m_books.priceOf(line.target, line.symbol), name + " take profit");
        same(trade.swap, line.swap, name + " swap");
        same(trade.commission, line.commission, name + " commission");
        same(trade.margin, line.margin, name + " margin");
        same(trade.createdAt, line.begun, name + " begin");
    }

    void compareHistory()
    {
        for (const SecondBooks::Book& book : m_books.books()) {
            std::map<std::string, Trade> trades;
            std::vector<std::pair<TimeMs, Cents>> paidIn;
            for (const Trade& trade : m_platform->trades().history(book.terms.id, 1'000'000)) {
                if (trade.orderKind == OrderKind::Balance)
                    paidIn.emplace_back(trade.closedAt, trade.pnl);
                else
                    must(trades.emplace(trade.id, trade).second, trade.id + " stands twice in the history");
            }
            std::vector<std::pair<TimeMs, Cents>> expected;
            for (const Line& line : book.finished) {
                if (line.kind == OrderKind::Balance) {
                    expected.emplace_back(line.ended, line.result);
                    continue;
                }
                const auto found = trades.find(line.id);
                must(found != trades.end(), line.id + " is not in the history");
                compareTrade(found->second, line);
                same(found->second.pnl, line.result, line.id + " result");
                same(found->second.exitPrice, m_books.priceOf(line.exit, line.symbol), line.id + " exit");
                same(found->second.closedAt, line.ended, line.id + " end");
                same(toText(found->second.closeReason), toText(line.reason), line.id + " reason");
                trades.erase(found);
                ++seen.lines;
            }
            same(trades.size(), std::size_t{0}, book.terms.id + " lines that the books do not know");
            std::ranges::sort(paidIn);
            std::ranges::sort(expected);
            must(paidIn == expected, book.terms.id + " changes of the balance");
        }
    }

    std::mt19937 m_random;
    unsigned m_seed;
    int m_step = 0;
    TemporaryFolder m_folder;
    HandClock m_machine;
    TimeMs m_now = firstMoment;  ///< the platform's
    TimeMs m_seen = firstMoment; ///< the last moment in the books
    WrittenMarket m_market;
    std::vector<SecondBooks::Prices> m_prices;
    std::unique_ptr<Database> m_database;
    std::unique_ptr<PlatformTime> m_clock;
    std::unique_ptr<Platform> m_platform;
    SecondBooks m_books;
};

} // namespace

TEST_CASE("a second set of books agrees to the cent with random sessions, stalls, restarts and jumping "
          "clocks included")
{
    std::map<CloseReason, int> ends;
    Seen all;
    for (unsigned seed = 1; seed <= 8; ++seed) {
        Session session(seed);
        try {
            session.run(1'600);
        } catch (const std::exception&) {
            std::cout << "  seed " << seed << '\n';
            throw;
        }
        for (const auto& [reason, count] : session.seen.ends)
            all.ends[reason] += count;
        all.accepted += session.seen.accepted;
        all.refused += session.seen.refused;
        all.restarts += session.seen.restarts;
        all.clocksSet += session.seen.clocksSet;
        all.stalls += session.seen.stalls;
        all.phases += session.seen.phases;
        all.debts += session.seen.debts;
        all.nights += session.seen.nights;
        all.lines += session.seen.lines;
    }
    for (const auto& [reason, count] : all.ends)
        std::cout << "  ended " << toText(reason) << ": " << count << '\n';
    std::cout << "  accepted " << all.accepted << ", refused " << all.refused << ", restarts " << all.restarts
              << ", clocks set " << all.clocksSet << ", stalls " << all.stalls << ", phases " << all.phases
              << ", debts " << all.debts << ", nights " << all.nights << ", lines of history compared "
              << all.lines << '\n';
    CHECK(all.accepted > 2'000);
    CHECK(all.refused > 200);
    CHECK(all.restarts > 30);
    CHECK(all.clocksSet > 30);
    CHECK(all.stalls > 100);
    CHECK(all.nights > 500);
    for (const CloseReason reason : {CloseReason::Manual, CloseReason::StopLoss, CloseReason::TakeProfit,
             CloseReason::StopOut, CloseReason::Risk, CloseReason::NoMargin, CloseReason::Reset})
        CHECK(all.ends[reason] > 0);
    CHECK(all.ends[CloseReason::StopOut] > 10);
    CHECK(all.phases > 0);
    CHECK(all.debts > 0);
}

CHECK_MAIN()
