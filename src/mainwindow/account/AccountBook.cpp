#include "mainwindow/account/AccountBook.h"

#include "app/base/NumberFormat.h"
#include "app/base/PriceRule.h"
#include "net/records/AccountRecord.h"
#include "net/records/PriceSnapshot.h"
#include "net/records/SymbolRecord.h"
#include "net/records/TradeRecord.h"

#include <algorithm>
#include <numeric>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

Quote pricesOf(const Quote& quote, int digits)
{
    return {priceOrNone(quote.bid, digits), priceOrNone(quote.ask, digits)};
}

} // namespace

void AccountBook::setAccounts(const QJsonArray& accounts)
{
    m_accounts = accounts;
    const bool summed = renewSummary();
    Q_EMIT accountsChanged();
    if (summed)
        Q_EMIT summaryChanged();
}

int AccountBook::preferredIndex() const
{
    std::optional<int> current;
    std::optional<int> tradable;
    for (int i = 0; i < m_accounts.size(); ++i) {
        const QJsonObject account = m_accounts.at(i).toObject();
        if (account::id(account) == m_currentAccountId && !m_currentAccountId.isEmpty())
            current = i;
        if (!tradable && account::isTradable(account))
            tradable = i;
    }
    return current.value_or(tradable.value_or(0));
}

QString AccountBook::preferredAccountId() const
{
    return account::id(m_accounts.at(preferredIndex()).toObject());
}

void AccountBook::selectAccount(const QString& id)
{
    const bool another = id != m_currentAccountId;
    if (another)
        m_usedMargin = 0.0; // another account's margin is never shown as this one's
    m_currentAccountId = id;
    m_tradePnl.clear();
    const bool summed = renewSummary();
    if (another)
        Q_EMIT currentAccountChanged();
    if (summed)
        Q_EMIT summaryChanged();
}

void AccountBook::readFigures(const QJsonArray& openTrades)
{
    m_tradePnl.clear();
    m_usedMargin = 0.0;
    for (const QJsonValue value : openTrades) {
        const QJsonObject trade = value.toObject();
        m_tradePnl.insert(trade::id(trade), trade::profit(trade));
        m_usedMargin += trade::margin(trade);
    }
    updateAccountSummary();
}

void AccountBook::noteProfits(const QJsonArray& rows)
{
    bool matched = false;
    for (const QJsonValue value : rows) {
        const QJsonObject row = value.toObject();
        if (m_currentAccountId.isEmpty() || trade::accountId(row) != m_currentAccountId)
            continue;
        matched = true;
        const QString id = trade::id(row);
        const double profit = trade::profit(row);
        m_tradePnl.insert(id, profit);
        Q_EMIT profitChanged(id, profit);
    }
    if (matched)
        updateAccountSummary();
}

double AccountBook::profitOf(const QJsonObject& trade) const
{
    const auto known = m_tradePnl.constFind(trade::id(trade));
    return known == m_tradePnl.cend() ? trade::profit(trade) : *known;
}

void AccountBook::updateAccountSummary()
{
    if (renewSummary())
        Q_EMIT summaryChanged();
}

bool AccountBook::renewSummary()
{
    const std::optional<AccountSummary> before = std::exchange(m_summary, summaryOfNow());
    return m_summary != before;
}

std::optional<AccountSummary> AccountBook::summaryOfNow() const
{
    const auto found = std::find_if(m_accounts.begin(), m_accounts.end(), [this](const QJsonValue& value) {
        return value.isObject() && account::id(value.toObject()) == m_currentAccountId;
    });
    if (found == m_accounts.end())
        return std::nullopt;

    AccountSummary summary;
    summary.balance = account::balance((*found).toObject());
    summary.profit = std::accumulate(m_tradePnl.cbegin(), m_tradePnl.cend(), 0.0);
    summary.equity = summary.balance + summary.profit;
    summary.margin = m_usedMargin;
    summary.freeMargin = summary.equity - summary.margin;
    return summary;
}

void AccountBook::setTrades(const QJsonArray& open, const QJsonArray& pending)
{
    m_openTrades = open;
    m_pendingOrders = pending;
    Q_EMIT tradesChanged();
}

void AccountBook::setSymbols(const QJsonArray& symbols)
{
    m_symbols = symbols;
    m_symbolsByName.clear();
    m_digits.clear();
    for (const QJsonValue value : symbols) {
        const QJsonObject record = value.toObject();
        const QString name = symbol::name(record);
        if (name.isEmpty())
            continue;
        m_symbolsByName.insert(name, record);
        m_digits.insert(name, clampDigits(symbol::digits(record)));
    }
    judgeQuotesAgain();
    Q_EMIT symbolsChanged();
}

QJsonArray AccountBook::sortedSymbols() const
{
    QJsonArray sorted;
    const QList<QJsonObject> records = symbol::inListOrder(m_symbols);
    for (const QJsonObject& record : records)
        sorted.append(record);
    return sorted;
}

QStringList AccountBook::symbolNames() const
{
    QStringList names = m_symbolsByName.keys();
    std::sort(names.begin(), names.end());
    return names;
}

PriceSnapshot AccountBook::readPrices(const QJsonObject& prices) const
{
    return PriceSnapshot(
        prices, [this](const QString& symbol) { return m_digits.value(symbol, usualPriceDigits); });
}

void AccountBook::notePrices(const QJsonObject& prices)
{
    const PriceSnapshot snapshot = readPrices(prices);
    for (const PriceSnapshot::Entry& entry : snapshot.entries())
        m_quotes.insert(entry.symbol, {entry.quote, entry.quote});
    Q_EMIT quotesChanged(snapshot);
    Q_EMIT ticked(snapshot);
}

void AccountBook::noteHelloPrices(const QJsonObject& prices)
{
    const PriceSnapshot snapshot = readPrices(prices);
    for (const PriceSnapshot::Entry& entry : snapshot.entries()) {
        KnownQuote& known = m_quotes[entry.symbol];
        known.latest = entry.quote;
        known.isOld = false;
    }
    Q_EMIT quotesChanged(snapshot);
}

void AccountBook::noteInterruption()
{
    for (KnownQuote& known : m_quotes)
        known.isOld = known.isTickOld = true;
    Q_EMIT quotesGrewOld();
}

bool AccountBook::isQuoteOld(const QString& symbol) const
{
    const auto found = m_quotes.constFind(symbol);
    return found != m_quotes.cend() && found->isOld;
}

bool AccountBook::isTickOld(const QString& symbol) const
{
    const auto found = m_quotes.constFind(symbol);
    return found != m_quotes.cend() && found->isTickOld;
}

std::optional<Quote> AccountBook::quote(const QString& symbol) const
{
    const auto found = m_quotes.constFind(symbol);
    return found == m_quotes.cend() ? std::nullopt : std::optional(found->latest);
}

std::optional<Quote> AccountBook::tickedQuote(const QString& symbol) const
{
    const auto found = m_quotes.constFind(symbol);
    return found == m_quotes.cend() ? std::nullopt : found->ticked;
}

void AccountBook::judgeQuotesAgain()
{
    for (auto known = m_quotes.begin(); known != m_quotes.end(); ++known) {
        const int digits = m_digits.value(known.key(), usualPriceDigits);
        known->latest = pricesOf(known->latest, digits);
        if (known->ticked)
            known->ticked = pricesOf(*known->ticked, digits);
    }
}
