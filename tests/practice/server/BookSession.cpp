#include "practice/server/BookSession.h"

#include "practice/server/BookComparison.h"

#include "practice/core/SymbolCatalog.h"
#include "practice/server/Api.h"
#include "practice/server/Reset.h"
#include "practice/storage/Database.h"
#include "practice/storage/TradeStore.h"
#include "practice/storage/UserStore.h"

#include <algorithm>
#include <cmath>
#include <iostream>

using namespace practice;

namespace {

std::vector<Account> someAccounts()
{
    const auto make = [](const char* id, AccountKind kind, Cents dollars, int leverage, int steps) {
        Account account;
        account.id = id;
        account.kind = kind;
        account.plan = {steps > 0 ? "Plan" : "", std::max(1, steps)};
        account.balance = account.initialBalance = account.dayStartEquity = dollars * 100;
        account.leverage = leverage;
        account.dayIndex = floorDivide(HandClock::firstMoment, dayMs);
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

} // namespace

BookSession::Seen& BookSession::Seen::operator+=(const Seen& other)
{
    for (const auto& [reason, count] : other.ends)
        ends[reason] += count;
    accepted += other.accepted;
    refused += other.refused;
    restarts += other.restarts;
    clocksSet += other.clocksSet;
    stalls += other.stalls;
    phases += other.phases;
    debts += other.debts;
    nights += other.nights;
    lines += other.lines;
    return *this;
}

BookSession::BookSession(unsigned seed)
    : m_random(seed)
    , m_seed(seed)
    , m_books(symbolCatalog(), someAccounts())
    , m_trader(m_random, m_books)
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

void BookSession::run(int steps)
{
    try {
        for (m_step = 0; m_step < steps; ++m_step) {
            step();
            BookComparison::ofNow(*m_platform, m_books);
        }
        m_counted.lines += BookComparison::ofHistory(*m_platform, m_books);
    } catch (...) {
        std::cout << "  seed " << m_seed << ", step " << m_step << std::endl;
        throw;
    }
}

BookSession::Seen BookSession::seen() const
{
    Seen all = m_counted;
    all.ends = m_books.ends;
    all.phases = m_books.phases;
    all.debts = m_books.debts;
    all.nights = m_books.nights;
    return all;
}

void BookSession::step()
{
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
}

void BookSession::tick()
{
    pass(pick(60) == 0 ? 9 * hourMs : pick(300) == 0 ? 3 * dayMs + hourMs : 250);
    movePrices(m_now);
    advance();
}

void BookSession::command()
{
    pass(pick(50) == 0 ? 7 * hourMs : 1 + pick(20));
    catchUp(); // as the platform does before it carries anything out
    const int dice = pick(10);
    const Line* line = m_books.live().empty()
        ? nullptr
        : &m_books.live()[static_cast<std::size_t>(pick(static_cast<int>(m_books.live().size())))];
    if (dice < 5 || !line)
        place(m_trader.newOrder(m_prices));
    else if (dice < 8)
        end(Line(*line)); // a copy: ending it takes it out of the books
    else
        modify(m_trader.changeOf(*line, m_prices));
}

// Closed for a moment, a night or some days, and an account begins anew in between now and then.
void BookSession::restart()
{
    ++m_counted.restarts;
    m_counted.lines += BookComparison::ofHistory(*m_platform, m_books);
    m_platform.reset();
    m_database.reset();
    constexpr TimeMs pauses[] = {1, minuteMs, 11 * hourMs, 5 * dayMs};
    m_machine.pass(pauses[pick(4)]);
    m_machine.shown += pick(8) == 0 ? someStep() : 0;
    const TimeMs before = m_now;
    open();
    m_booked = std::min(m_booked, m_now);
    writePath(before);
    BookComparison::must(
        m_now >= before || m_books.live().empty() || m_now >= lastEvent(), "time has run backwards");
    resetSome();
    movePrices(m_now);
    start();
}

// As a person or a time server does; half of the time it was set before, and is put right now.
void BookSession::setClock()
{
    ++m_counted.clocksSet;
    m_machine.shown = m_machine.shown == m_machine.unset() || pick(2) == 0 ? m_machine.shown + someStep()
                                                                           : m_machine.unset();
    pass(0);
    advance();
}

// What makes a challenge pass its phase.
void BookSession::takeGains()
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

void BookSession::open()
{
    m_database = std::make_unique<Database>(m_folder / "x.db");
    m_database->execute("PRAGMA synchronous=OFF"); // no power will fail here
    m_clock = std::make_unique<PlatformTime>(m_machine, earliestMoment(*m_database, m_machine.shown));
    m_now = m_clock->now();
}

void BookSession::start()
{
    m_platform = std::make_unique<Platform>(*m_database, m_market, *m_clock);
    advance();
}

void BookSession::advance()
{
    m_platform->advance();
    catchUp();
}

void BookSession::pass(TimeMs time)
{
    m_machine.pass(time);
    const TimeMs before = m_now;
    m_now = m_clock->now();
    BookComparison::must(m_now >= before && m_now - before <= time + dayMs, "time has run backwards or away");
    writePath(before);
}

// The books see each price and each midnight since they were last open.
void BookSession::catchUp()
{
    while (m_booked < m_now) {
        const TimeMs midnight = (floorDivide(m_booked, dayMs) + 1) * dayMs;
        m_booked = std::min({m_market.nextSheet(m_booked), midnight, m_now});
        m_books.tick(m_market.sheetAt(m_booked), m_booked);
    }
    m_booked = m_now;
    m_books.tick(m_prices, m_now);
}

void BookSession::movePrices(TimeMs from)
{
    for (std::size_t i = 0; i < m_prices.size(); ++i) {
        if (pick(3) == 0)
            continue;
        const SymbolSpec& symbol = symbolCatalog()[i];
        const double scale = pick(100) == 0 ? 0.05 : 0.0012; // now and then a jump
        const auto base = static_cast<double>(m_books.pointsOf(symbol.basePrice, i));
        const auto bid = static_cast<double>(m_prices[i].bid);
        const double pull = std::log(base / bid) * 0.01;
        m_prices[i].bid = std::max<SecondBooks::Points>(
            100, std::llround(bid * std::exp(pull + scale * std::normal_distribution<double>()(m_random))));
        m_prices[i].ask = m_prices[i].bid + 1 + pick(2 * symbol.spreadPoints);
    }
    m_market.write(from, m_prices);
}

// Prices that move while nobody looks, from the time before until now.
void BookSession::writePath(TimeMs before)
{
    if (m_now - before < 1000)
        return;
    ++m_counted.stalls;
    for (int i = 0; i < 6; ++i) {
        before += 1 + static_cast<TimeMs>(between(0, 0.5) * static_cast<double>(m_now - before - 1));
        if (before >= m_now)
            return;
        movePrices(before);
    }
}

// An account that has come to its end begins anew, and some other now and then.
void BookSession::resetSome()
{
    const auto account = static_cast<std::size_t>(pick(static_cast<int>(m_books.books().size())));
    const SecondBooks::Book& book = m_books.books()[account];
    if (book.status == AccountStatus::Active && book.balance * 2 >= book.terms.initialBalance && pick(4) != 0)
        return;
    static_cast<void>(resetAccounts(*m_database, book.terms.id, m_now));
    m_books.reset(account, m_now);
}

TimeMs BookSession::someStep()
{
    constexpr TimeMs steps[] = {800 * dayMs, 30 * dayMs, 20 * hourMs, 3 * hourMs, 700};
    return (pick(2) == 0 ? 1 : -1) * steps[pick(5)];
}

// The last moment that a trade which is still there tells of.
TimeMs BookSession::lastEvent() const
{
    TimeMs last = 0;
    for (const Line& line : m_books.live())
        last = std::max(last, line.begun);
    return last;
}

void BookSession::place(Line order)
{
    const PlaceRequest request = m_trader.requestOf(order);
    const bool expected = m_books.mayPlace(order);
    const auto trade = execute(request);
    BookComparison::must(trade.has_value() == expected, "place " + request.accountId + ' ' + request.symbol);
    if (trade)
        m_books.place(std::move(order), trade->id, m_now);
}

void BookSession::modify(const RandomTrader::Change& change)
{
    const std::string& id = change.line.id;
    const bool expected = m_books.mayModify(change.line);
    const auto trade = execute(ModifyCommand{id, change.request});
    BookComparison::must(trade.has_value() == expected, "modify " + id);
    if (trade)
        m_books.modify(change.line);
}

void BookSession::end(const Line& line)
{
    const bool open = line.status == TradeStatus::Open;
    const auto trade = open ? execute(CloseCommand{line.id}) : execute(CancelCommand{line.id});
    BookComparison::must(trade.has_value(), "end " + line.id);
    if (open)
        m_books.close(line.id, m_now);
    else
        m_books.cancel(line.id);
}

// Nothing when it was refused.
std::optional<Trade> BookSession::execute(const TradeCommand& command)
{
    try {
        const Trade trade = m_platform->execute(command);
        ++m_counted.accepted;
        return trade;
    } catch (const ApiError&) {
        ++m_counted.refused;
        return std::nullopt;
    }
}
