#include "practice/server/SecondBooks.h"

#include <algorithm>
#include <cmath>
#include <tuple>

namespace practice {
namespace {

__extension__ using Whole = __int128;

constexpr TimeMs day = 86'400'000;

std::int64_t dayOf(TimeMs time)
{
    return time >= 0 ? time / day : -((-time + day - 1) / day);
}

/// To the nearest whole number, halves away from zero.
Cents nearest(Whole over, Whole under)
{
    const bool negative = (over < 0) != (under < 0);
    const Whole size = over < 0 ? -over : over;
    const Whole part = under < 0 ? -under : under;
    const Whole rounded = (2 * size + part) / (2 * part);
    return static_cast<Cents>(negative ? -rounded : rounded);
}

std::int64_t tenTo(int digits)
{
    std::int64_t power = 1;
    for (int i = 0; i < digits; ++i)
        power *= 10;
    return power;
}

std::int64_t whole(double number)
{
    return std::llround(number);
}

} // namespace

SecondBooks::SecondBooks(const std::vector<SymbolSpec>& symbols, const std::vector<Account>& accounts)
    : m_symbols(symbols)
    , m_prices(symbols.size())
{
    for (const Account& account : accounts) {
        m_books.push_back({account, account.balance, account.phase, account.status, account.dayStartEquity,
            account.dayIndex, {}});
    }
}

SecondBooks::Points SecondBooks::pointsOf(double price, std::size_t symbol) const
{
    return whole(price * static_cast<double>(tenTo(m_symbols[symbol].digits)));
}

double SecondBooks::priceOf(Points points, std::size_t symbol) const
{
    return static_cast<double>(points) / static_cast<double>(tenTo(m_symbols[symbol].digits));
}

// One unit of a currency in dollars, at the middle between bid and ask of its pair with the dollar.
SecondBooks::Fraction SecondBooks::dollarsFor(const std::string& currency) const
{
    if (currency == "USD")
        return {1, 1};
    for (std::size_t i = 0; i < m_symbols.size(); ++i) {
        const std::int64_t twice = m_prices[i].bid + m_prices[i].ask;
        const std::int64_t unit = 2 * tenTo(m_symbols[i].digits);
        if (m_symbols[i].name == currency + "USD")
            return {twice, unit};
        if (m_symbols[i].name == "USD" + currency)
            return {unit, twice};
    }
    return {0, 1};
}

SecondBooks::Points SecondBooks::closing(const Line& position) const
{
    return position.buys ? m_prices[position.symbol].bid : m_prices[position.symbol].ask;
}

SecondBooks::Points SecondBooks::opening(const Line& order) const
{
    return order.buys ? m_prices[order.symbol].ask : m_prices[order.symbol].bid;
}

// A hundredth of a lot and a cent are both a hundredth: they cancel out.
Cents SecondBooks::profitNow(const Line& position) const
{
    const SymbolSpec& symbol = m_symbols[position.symbol];
    const Fraction rate = m_rates[position.symbol];
    const Points gained
        = position.buys ? closing(position) - position.entry : position.entry - closing(position);
    const Cents gross = nearest(Whole(gained) * position.lots * whole(symbol.contractSize) * rate.over,
        Whole(tenTo(symbol.digits)) * rate.under);
    return gross + position.swap - position.commission;
}

Cents SecondBooks::nightly(const Line& position) const
{
    const SymbolSpec& symbol = m_symbols[position.symbol];
    const Fraction rate = m_rates[position.symbol];
    const std::int64_t tenths = whole((position.buys ? symbol.swapLong : symbol.swapShort) * 10);
    return nearest(Whole(tenths) * position.lots * whole(symbol.contractSize) * rate.over,
        Whole(10) * tenTo(symbol.digits) * rate.under);
}

Cents SecondBooks::marginOf(const Line& order, Points price) const
{
    const SymbolSpec& symbol = m_symbols[order.symbol];
    const std::int64_t leverage = std::max<std::int64_t>(
        1, std::min<std::int64_t>(m_books[order.account].terms.leverage, whole(symbol.maxLeverage)));
    const Whole units = Whole(order.lots) * whole(symbol.contractSize);
    if (symbol.baseCurrency == "USD")
        return nearest(units, leverage);
    const Fraction rate = m_rates[order.symbol];
    return nearest(units * price * rate.over, Whole(tenTo(symbol.digits)) * rate.under * leverage);
}

Cents SecondBooks::equity(std::size_t account) const
{
    Cents sum = m_books[account].balance;
    for (const Line& line : m_live) {
        if (line.account == account && line.status == TradeStatus::Open)
            sum += profitNow(line);
    }
    return sum;
}

Cents SecondBooks::margin(std::size_t account) const
{
    Cents sum = 0;
    for (const Line& line : m_live) {
        if (line.account == account && line.status == TradeStatus::Open)
            sum += line.margin;
    }
    return sum;
}

bool SecondBooks::hasOpen(std::size_t account) const
{
    return std::any_of(m_live.begin(), m_live.end(),
        [account](const Line& line) { return line.account == account && line.status == TradeStatus::Open; });
}

SecondBooks::Line* SecondBooks::find(const std::string& id)
{
    const auto found = std::ranges::find(m_live, id, &Line::id);
    return found == m_live.end() ? nullptr : &*found;
}

std::vector<std::string> SecondBooks::idsOf(std::optional<std::size_t> account,
    std::optional<std::size_t> symbol, std::optional<TradeStatus> status) const
{
    std::vector<const Line*> lines;
    for (const Line& line : m_live) {
        if ((!account || line.account == *account) && (!symbol || line.symbol == *symbol)
            && (!status || line.status == *status))
            lines.push_back(&line);
    }
    std::ranges::sort(lines, [](const Line* left, const Line* right) {
        return std::tie(left->begun, left->id) < std::tie(right->begun, right->id);
    });
    std::vector<std::string> ids;
    ids.reserve(lines.size());
    for (const Line* line : lines)
        ids.push_back(line->id);
    return ids;
}

bool SecondBooks::stopsFit(const Line& line, Points reference) const
{
    const Points side = line.buys ? 1 : -1;
    return (line.stop == 0 || (reference - line.stop) * side > 0)
        && (line.target == 0 || (line.target - reference) * side > 0);
}

// A limit waits for a better price than the market's, a stop for a worse one.
bool SecondBooks::triggerFits(const Line& order) const
{
    const bool limit = order.kind == OrderKind::BuyLimit || order.kind == OrderKind::SellLimit;
    const Points market = opening(order);
    return order.buys == limit ? order.trigger < market : order.trigger > market;
}

bool SecondBooks::mayPlace(const Line& order) const
{
    const Book& book = m_books[order.account];
    const auto count
        = std::ranges::count_if(m_live, [&](const Line& line) { return line.account == order.account; });
    if (book.terms.kind == AccountKind::Wallet || book.status != AccountStatus::Active || count >= 500)
        return false;
    if (order.kind != OrderKind::Market)
        return triggerFits(order) && stopsFit(order, order.trigger);
    return stopsFit(order, closing(order))
        && marginOf(order, opening(order)) <= equity(order.account) - margin(order.account);
}

void SecondBooks::place(Line order, const std::string& id, TimeMs now)
{
    order.id = id;
    order.begun = now;
    order.status = TradeStatus::Pending;
    m_live.push_back(order);
    if (order.kind == OrderKind::Market)
        fill(id, now);
}

void SecondBooks::close(const std::string& id, TimeMs now)
{
    const std::size_t account = find(id)->account;
    finish(id, TradeStatus::Closed, CloseReason::Manual, now);
    advance(account, now);
}

void SecondBooks::cancel(const std::string& id)
{
    std::erase_if(m_live, [&](const Line& line) { return line.id == id; });
}

bool SecondBooks::mayModify(const Line& changed) const
{
    const Line& known = *std::ranges::find(m_live, changed.id, &Line::id);
    if (known.status == TradeStatus::Pending)
        return (changed.trigger == known.trigger || triggerFits(changed))
            && stopsFit(changed, changed.trigger);
    Line news = changed; // what stays as it is may be reached at this moment
    if (news.stop == known.stop)
        news.stop = 0;
    if (news.target == known.target)
        news.target = 0;
    return stopsFit(news, closing(known));
}

void SecondBooks::modify(const Line& changed)
{
    *find(changed.id) = changed;
}

void SecondBooks::finish(const std::string& id, TradeStatus status, CloseReason reason, TimeMs now)
{
    Line line = *find(id);
    cancel(id);
    if (status == TradeStatus::Closed) {
        line.result = profitNow(line);
        line.exit = closing(line);
        m_books[line.account].balance += line.result;
    }
    line.status = status;
    line.reason = reason;
    line.ended = now;
    ++ends[reason];
    m_books[line.account].finished.push_back(std::move(line));
}

void SecondBooks::fill(const std::string& id, TimeMs now)
{
    Line& order = *find(id);
    const Cents needed = marginOf(order, opening(order));
    if (needed > equity(order.account) - margin(order.account))
        return finish(id, TradeStatus::Cancelled, CloseReason::NoMargin, now);
    order.status = TradeStatus::Open;
    order.entry = opening(order);
    order.margin = needed;
    order.commission
        = nearest(Whole(order.lots) * whole(m_symbols[order.symbol].commissionPerLot * 100), 100);
    order.begun = now;
}

CloseReason SecondBooks::levelReached(const Line& position) const
{
    const Points side = position.buys ? 1 : -1;
    const Points price = closing(position);
    if (position.stop > 0 && (price - position.stop) * side <= 0)
        return CloseReason::StopLoss;
    if (position.target > 0 && (price - position.target) * side >= 0)
        return CloseReason::TakeProfit;
    return CloseReason::None;
}

bool SecondBooks::triggerReached(const Line& order) const
{
    const bool limit = order.kind == OrderKind::BuyLimit || order.kind == OrderKind::SellLimit;
    const Points market = opening(order);
    return order.buys == limit ? market <= order.trigger : market >= order.trigger;
}

void SecondBooks::closeLevels(std::size_t symbol, TimeMs now)
{
    for (const std::string& id : idsOf({}, symbol, TradeStatus::Open)) {
        if (const CloseReason reason = levelReached(*find(id)); reason != CloseReason::None)
            finish(id, TradeStatus::Closed, reason, now);
    }
}

// A night is a midnight (UTC) over which the position was held; the last one may have passed unseen.
void SecondBooks::turnDay(std::size_t account, TimeMs now)
{
    Book& book = m_books[account];
    if (dayOf(now) < book.day && !hasOpen(account)) {
        book.day = dayOf(now);
        book.dayStart = book.balance;
    }
    if (dayOf(now) <= book.day)
        return;
    for (Line& line : m_live) {
        if (line.account != account || line.status != TradeStatus::Open)
            continue;
        const std::int64_t held = dayOf(now) - std::max(book.day, dayOf(line.begun));
        line.swap += nightly(line) * std::max<std::int64_t>(0, held);
        nights += static_cast<int>(held);
    }
    book.day = dayOf(now);
    book.dayStart = equity(account);
}

void SecondBooks::endAll(std::size_t account, CloseReason reason, TimeMs now)
{
    for (const std::string& id : idsOf(account, {}, {})) {
        const bool open = find(id)->status == TradeStatus::Open;
        finish(id, open ? TradeStatus::Closed : TradeStatus::Cancelled, reason, now);
    }
}

void SecondBooks::checkLosses(std::size_t account, TimeMs now)
{
    Book& book = m_books[account];
    if (book.terms.kind != AccountKind::Plan)
        return;
    if (book.status != AccountStatus::Active)
        return endAll(account, CloseReason::Risk, now);
    const Cents worth = equity(account);
    if (worth * 20 > book.dayStart * 19 && worth * 10 > book.terms.initialBalance * 9)
        return;
    endAll(account, CloseReason::Risk, now);
    book.status = AccountStatus::Failed;
}

void SecondBooks::stopOut(std::size_t account, TimeMs now)
{
    while (margin(account) > 0 && equity(account) * 2 <= margin(account)) {
        std::string worst;
        for (const std::string& id : idsOf(account, {}, TradeStatus::Open)) {
            if (worst.empty() || profitNow(*find(id)) < profitNow(*find(worst)))
                worst = id;
        }
        finish(worst, TradeStatus::Closed, CloseReason::StopOut, now);
    }
}

void SecondBooks::payIn(std::size_t account, Cents amount, TimeMs now)
{
    Line line;
    line.account = account;
    line.kind = OrderKind::Balance;
    line.status = TradeStatus::Closed;
    line.result = amount;
    line.begun = line.ended = now;
    m_books[account].balance += amount;
    m_books[account].finished.push_back(line);
}

void SecondBooks::forgive(std::size_t account, TimeMs now)
{
    if (m_books[account].balance >= 0 || hasOpen(account))
        return;
    payIn(account, -m_books[account].balance, now);
    ++debts;
}

void SecondBooks::advance(std::size_t account, TimeMs now)
{
    Book& book = m_books[account];
    if (book.terms.kind != AccountKind::Plan || book.terms.isFunded || book.status != AccountStatus::Active
        || book.balance * 10 < book.terms.initialBalance * 11 || hasOpen(account))
        return;
    endAll(account, CloseReason::Phase, now);
    ++phases;
    if (book.phase >= book.terms.plan.steps) {
        book.status = AccountStatus::Passed;
        return;
    }
    ++book.phase;
    book.balance = book.dayStart = book.terms.initialBalance;
}

void SecondBooks::reset(std::size_t account, TimeMs now)
{
    Book& book = m_books[account];
    for (const std::string& id : idsOf(account, {}, {})) {
        Line& line = *find(id);
        line.swap = line.commission = 0;
        finish(id, TradeStatus::Cancelled, CloseReason::Reset, now);
    }
    if (book.balance != book.terms.initialBalance)
        payIn(account, book.terms.initialBalance - book.balance, now);
    if (!book.terms.isFunded)
        book.phase = 1;
    book.status = AccountStatus::Active;
    book.dayStart = book.balance;
    book.day = dayOf(now);
}

void SecondBooks::tick(const std::vector<Prices>& prices, TimeMs now)
{
    m_prices = prices;
    m_rates.clear();
    for (const SymbolSpec& symbol : m_symbols)
        m_rates.push_back(dollarsFor(symbol.profitCurrency));
    for (std::size_t account = 0; account < m_books.size(); ++account)
        turnDay(account, now);
    for (std::size_t symbol = 0; symbol < m_symbols.size(); ++symbol) {
        closeLevels(symbol, now);
        for (const std::string& id : idsOf({}, symbol, TradeStatus::Pending)) {
            if (triggerReached(*find(id)))
                fill(id, now);
        }
        closeLevels(symbol, now);
    }
    for (std::size_t account = 0; account < m_books.size(); ++account) {
        checkLosses(account, now);
        stopOut(account, now);
        forgive(account, now);
        advance(account, now);
    }
}

} // namespace practice
