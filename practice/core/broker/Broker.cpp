#include "practice/core/broker/Broker.h"

#include "practice/core/broker/AccountGuard.h"
#include "practice/core/broker/OrderCheck.h"
#include "practice/core/broker/QuietCheck.h"
#include "practice/core/broker/RecordText.h"
#include "practice/core/broker/TradeSteps.h"
#include "practice/core/broker/Triggers.h"
#include "practice/core/broker/Valuation.h"

#include <algorithm>
#include <cstddef>
#include <numeric>

namespace practice {
namespace {

constexpr std::ptrdiff_t longestComment = 256;

CommandResult refused(Refusal refusal)
{
    return {std::move(refusal), {}, {}};
}

// UTF-8: every byte but those that go on with a character begins one.
std::ptrdiff_t characters(const std::string& text)
{
    return std::ranges::count_if(text, [](char byte) { return (byte & 0xc0) != 0x80; });
}

Refusal noPrice(const std::string& symbol)
{
    return badRequest("There is no price for " + symbol + " at the moment. Try again in a few seconds.");
}

Refusal noSuchTrade()
{
    return notFound("There is no open position or pending order with this id; it may be closed already. "
                    "Refresh the list.");
}

std::vector<Trade> tradesWith(TradeStatus status, const LiveAccount* account)
{
    std::vector<Trade> result;
    if (!account)
        return result;
    for (const LiveTrade* trade : account->trades) {
        if (trade->record.status == status)
            result.push_back(trade->record);
    }
    return result;
}

} // namespace

Broker::Broker(std::vector<SymbolSpec> symbols, IdSource ids, BrokerState state)
    : m_symbols(std::move(symbols))
    , m_ids(std::move(ids))
    , m_prices(m_symbols)
    , m_ledger(m_symbols, std::move(state))
{
}

std::optional<Refusal> Broker::checkAccount(const std::string& accountId) const
{
    const LiveAccount* account = m_ledger.findAccount(accountId);
    if (!account)
        return notFound("There is no such account. Choose one of your accounts.");
    if (account->record.kind == AccountKind::Wallet)
        return badRequest("The wallet cannot trade. Choose another account.");
    if (account->record.status != AccountStatus::Active) {
        return badRequest("This account cannot trade any more, its status is "
            + std::string(toText(account->record.status)) + ". Choose an active account.");
    }
    if (account->trades.size() >= mostLiveTrades) {
        return badRequest("This account has " + std::to_string(account->trades.size())
            + " open positions and pending orders; " + std::to_string(mostLiveTrades)
            + " are the most it may have. Close a position or cancel an order first.");
    }
    return std::nullopt;
}

std::string Broker::newId() const
{
    std::string id = m_ids();
    while (m_ledger.findTrade(id))
        id = m_ids();
    return id;
}

CommandResult Broker::place(const PlaceRequest& request, TimeMs now)
{
    if (auto refusal = checkAccount(request.accountId))
        return refused(std::move(*refusal));
    const std::optional<std::size_t> symbol = findSymbol(m_symbols, request.symbol);
    if (!symbol)
        return refused(badRequest("There is no such symbol. Choose one from Market Watch."));
    const SymbolSpec& spec = m_symbols[*symbol];
    Checked<OrderShape> shape = checkShape(request.orderKind, request.type);
    if (shape.refusal)
        return refused(std::move(*shape.refusal));
    Checked<LotHundredths> lots = checkLots(spec, request.lots);
    if (lots.refusal)
        return refused(std::move(*lots.refusal));
    if (characters(request.comment) > longestComment)
        return refused(badRequest("The comment is too long: at most 256 characters."));
    Checked<Levels> levels = checkLevels(spec, request);
    if (levels.refusal)
        return refused(std::move(*levels.refusal));
    const std::optional<Quote> quote = m_prices.quote(*symbol);
    if (!quote || !m_prices.usdRate(*symbol))
        return refused(noPrice(spec.name));

    Trade trade;
    trade.accountId = request.accountId;
    trade.symbol = request.symbol;
    trade.side = shape.value.side;
    trade.orderKind = shape.value.kind;
    trade.lots = lots.value;
    trade.pendingPrice = levels.value.pendingPrice;
    trade.stopLoss = levels.value.stopLoss;
    trade.takeProfit = levels.value.takeProfit;
    trade.createdAt = trade.updatedAt = now;
    trade.comment = request.comment;
    if (auto refusal = checkPrices(spec, trade, *quote))
        return refused(std::move(*refusal));
    if (trade.orderKind == OrderKind::Market) {
        if (auto refusal = open(trade, *symbol, *quote))
            return refused(std::move(*refusal));
    } else {
        trade.status = TradeStatus::Pending;
    }

    trade.id = newId();
    TradeSteps steps(m_ledger, m_prices, now);
    return finish(steps.accept(std::move(trade)).record.id);
}

std::optional<Refusal> Broker::open(Trade& trade, std::size_t symbol, const Quote& quote) const
{
    const SymbolSpec& spec = m_symbols[symbol];
    const LiveAccount& account = *m_ledger.findAccount(trade.accountId);
    trade.status = TradeStatus::Open;
    trade.entryPrice = openingPrice(trade.side, quote);
    trade.margin
        = marginFor(spec, trade.lots, trade.entryPrice, *m_prices.usdRate(symbol), account.record.leverage);
    if (trade.margin > account.freeMargin()) {
        return badRequest("Not enough free margin: " + decimalText(trade.lots) + " lots of " + spec.name
            + " need " + moneyText(trade.margin) + " USD, but " + moneyText(account.freeMargin())
            + " USD are free. Lower the volume or close a position first.");
    }
    trade.commission = commissionFor(spec, trade.lots);
    trade.pnl = m_prices.netProfit(trade, symbol).value_or(0);
    return std::nullopt;
}

CommandResult Broker::close(std::string_view tradeId, TimeMs now)
{
    LiveTrade* trade = m_ledger.findTrade(tradeId);
    if (!trade)
        return refused(noSuchTrade());
    if (trade->record.status == TradeStatus::Pending)
        return refused(badRequest("This order is still pending. Cancel it instead of closing it."));
    LiveAccount& account = *trade->owner;
    TradeSteps steps(m_ledger, m_prices, now);
    if (!steps.closePosition(*trade, CloseReason::Manual))
        return refused(noPrice(trade->record.symbol));
    advancePhase(steps, account);
    return finish(std::string(tradeId));
}

CommandResult Broker::cancel(std::string_view tradeId, TimeMs now)
{
    LiveTrade* trade = m_ledger.findTrade(tradeId);
    if (!trade)
        return refused(noSuchTrade());
    if (trade->record.status == TradeStatus::Open)
        return refused(badRequest("This order has been filled. Close the position instead of cancelling."));
    TradeSteps(m_ledger, m_prices, now).cancelOrder(*trade, CloseReason::Manual);
    return finish(std::string(tradeId));
}

CommandResult Broker::modify(std::string_view tradeId, const ModifyRequest& request, TimeMs now)
{
    LiveTrade* trade = m_ledger.findTrade(tradeId);
    if (!trade)
        return refused(noSuchTrade());
    const std::optional<Quote> quote = m_prices.quote(trade->symbol);
    if (!quote)
        return refused(noPrice(trade->record.symbol));
    const SymbolSpec& spec = m_symbols[trade->symbol];
    Checked<Trade> changed = checkModification(spec, trade->record, request, *quote);
    if (changed.refusal)
        return refused(std::move(*changed.refusal));
    if (changed.value == trade->record)
        return {{}, std::string(tradeId), {}};
    changed.value.updatedAt = now;
    m_ledger.change(*trade) = std::move(changed.value);
    m_ledger.emit(OrdersChanged{trade->record.accountId, trade->record.id, false, CloseReason::None});
    return finish(std::string(tradeId));
}

CommandResult Broker::finish(std::string tradeId)
{
    return {{}, std::move(tradeId), m_ledger.take()};
}

ChangeSet Broker::closeEverything(TimeMs now)
{
    TradeSteps steps(m_ledger, m_prices, now);
    for (const auto& account : m_ledger.accounts()) {
        steps.closeEverything(*account, CloseReason::Reset);
        advancePhase(steps, *account);
    }
    return m_ledger.take();
}

ChangeSet Broker::cancelEverything(TimeMs now)
{
    TradeSteps steps(m_ledger, m_prices, now);
    for (const auto& account : m_ledger.accounts()) {
        const std::vector<LiveTrade*> trades = account->trades; // cancelling takes them out of the list
        for (LiveTrade* trade : trades)
            steps.voidTrade(*trade, CloseReason::Reset);
    }
    return m_ledger.take();
}

ChangeSet Broker::reset(std::string_view accountId, TimeMs now)
{
    TradeSteps steps(m_ledger, m_prices, now);
    if (LiveAccount* account = m_ledger.findAccount(accountId))
        startAnew(steps, *account, [this] { return newId(); });
    return m_ledger.take();
}

ChangeSet Broker::onPrices(std::span<const SymbolQuote> quotes, TimeMs now)
{
    std::vector<std::size_t> affected = m_prices.update(quotes);
    if (m_checkAll) {
        affected.resize(m_symbols.size());
        std::iota(affected.begin(), affected.end(), std::size_t{0});
        m_checkAll = false;
    }
    for (const std::size_t symbol : affected) {
        for (LiveTrade* position : m_ledger.openOf(symbol)) {
            if (const std::optional<Cents> pnl = m_prices.netProfit(position->record, symbol))
                m_ledger.revalue(*position, *pnl);
        }
    }
    TradeSteps steps(m_ledger, m_prices, now);
    // The day turns before anything is closed, so that no night held is forgotten.
    for (const auto& account : m_ledger.accounts())
        rollDay(steps, *account);
    for (const std::size_t symbol : affected)
        runTriggers(steps, symbol);
    for (const auto& account : m_ledger.accounts()) {
        enforceLossLimits(steps, *account);
        enforceStopOut(steps, *account);
        clearDebt(steps, *account, [this] { return newId(); });
        advancePhase(steps, *account);
    }
    return m_ledger.take();
}

std::vector<std::size_t> Broker::watchedSymbols() const
{
    std::vector<char> marks(m_symbols.size(), 0);
    for (std::size_t symbol = 0; symbol < m_symbols.size(); ++symbol) {
        if (m_ledger.openOf(symbol).empty() && m_ledger.pendingOf(symbol).empty())
            continue;
        marks[symbol] = 1;
        if (const auto pair = m_prices.ratePair(symbol))
            marks[*pair] = 1;
    }
    std::vector<std::size_t> watched;
    for (std::size_t symbol = 0; symbol < marks.size(); ++symbol) {
        if (marks[symbol])
            watched.push_back(symbol);
    }
    return watched;
}

bool Broker::staysQuiet(std::span<const std::optional<PriceSpan>> spans) const
{
    // After undo() the next prices cause something, whichever they are.
    return !m_checkAll && practice::staysQuiet(m_ledger, m_prices, spans);
}

void Broker::undo(const ChangeSet& changes)
{
    m_ledger.undo(changes);
    m_checkAll = true;
}

std::vector<Account> Broker::accounts() const
{
    std::vector<Account> result;
    for (const auto& account : m_ledger.accounts())
        result.push_back(account->record);
    return result;
}

const Account* Broker::account(std::string_view accountId) const
{
    const LiveAccount* account = m_ledger.findAccount(accountId);
    return account ? &account->record : nullptr;
}

AccountFigures Broker::figures(std::string_view accountId) const
{
    const LiveAccount* account = m_ledger.findAccount(accountId);
    if (!account)
        return {};
    return {account->record.balance, account->openProfit, account->equity(), account->margin,
        account->freeMargin()};
}

std::vector<Trade> Broker::openTrades(std::string_view accountId) const
{
    return tradesWith(TradeStatus::Open, m_ledger.findAccount(accountId));
}

std::vector<Trade> Broker::pendingOrders(std::string_view accountId) const
{
    return tradesWith(TradeStatus::Pending, m_ledger.findAccount(accountId));
}

const Trade* Broker::trade(std::string_view tradeId) const
{
    const LiveTrade* trade = m_ledger.findTrade(tradeId);
    return trade ? &trade->record : nullptr;
}

BrokerState Broker::state() const
{
    return m_ledger.state();
}

} // namespace practice
