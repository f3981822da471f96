#include "mainwindow/AccountBook.h"

#include "app/base/NumberFormat.h"
#include "app/base/PriceRule.h"
#include "app/base/ServerText.h"
#include "net/records/JsonNumber.h"
#include "net/records/PriceSnapshot.h"
#include "panes/AccountLabel.h"
#include "panes/SymbolOrder.h"

#include <algorithm>
#include <numeric>

using namespace Qt::StringLiterals;

namespace {

bool isTradable(const QJsonObject& account)
{
    return !jsonBool(account["isWallet"_L1], false) && account["status"_L1].toString() == "ACTIVE"_L1;
}

QJsonObject recordOf(const Quote& quote)
{
    QJsonObject record;
    if (quote.bid != 0.0)
        record.insert("bid"_L1, quote.bid);
    if (quote.ask != 0.0)
        record.insert("ask"_L1, quote.ask);
    return record;
}

} // namespace

QString AccountBook::selectorText(const QJsonObject& account)
{
    return u"%1  [%2]  %3"_s.arg(accountLabel(account), shownName(account["status"_L1].toString()),
        formatMoney(jsonNumber(account["balance"_L1])));
}

int AccountBook::preferredIndex() const
{
    std::optional<int> current;
    std::optional<int> tradable;
    for (int i = 0; i < m_accounts.size(); ++i) {
        const QJsonObject account = m_accounts.at(i).toObject();
        if (account["id"_L1].toString() == m_currentAccountId && !m_currentAccountId.isEmpty())
            current = i;
        if (!tradable && isTradable(account))
            tradable = i;
    }
    return current.value_or(tradable.value_or(0));
}

void AccountBook::selectAccount(const QString& id)
{
    if (id != m_currentAccountId)
        m_usedMargin = 0.0; // another account's margin is never shown as this one's
    m_currentAccountId = id;
    m_tradePnl.clear();
}

void AccountBook::readFigures(const QJsonArray& openTrades)
{
    m_tradePnl.clear();
    m_usedMargin = 0.0;
    for (const QJsonValue value : openTrades) {
        const QJsonObject trade = value.toObject();
        m_tradePnl.insert(trade["id"_L1].toString(), jsonNumber(trade["pnl"_L1]));
        m_usedMargin += jsonNumber(trade["margin"_L1]);
    }
}

std::optional<AccountSummary> AccountBook::summary() const
{
    const auto found = std::find_if(m_accounts.begin(), m_accounts.end(), [this](const QJsonValue& value) {
        return value.isObject() && value["id"_L1].toString() == m_currentAccountId;
    });
    if (found == m_accounts.end())
        return std::nullopt;

    AccountSummary summary;
    summary.balance = jsonNumber((*found)["balance"_L1]);
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
}

void AccountBook::setSymbols(const QJsonArray& symbols)
{
    m_symbols = symbols;
    m_symbolsByName.clear();
    m_digits.clear();
    for (const QJsonValue value : symbols) {
        const QJsonObject record = value.toObject();
        const QString name = record["name"_L1].toString();
        if (name.isEmpty())
            continue;
        m_symbolsByName.insert(name, record);
        m_digits.insert(name, clampDigits(jsonInt(record["digits"_L1], usualPriceDigits)));
    }
}

QJsonArray AccountBook::sortedSymbols() const
{
    QJsonArray sorted;
    const QList<QJsonObject> records = symbolsInListOrder(m_symbols);
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

void AccountBook::notePrices(const PriceSnapshot& prices)
{
    for (const PriceSnapshot::Entry& entry : prices.entries())
        m_quotes.insert(entry.symbol, {entry.quote, entry.quote});
}

void AccountBook::noteHelloPrices(const PriceSnapshot& prices)
{
    for (const PriceSnapshot::Entry& entry : prices.entries())
        m_quotes[entry.symbol].latest = entry.quote;
}

QJsonObject AccountBook::knownPrice(const QString& symbol) const
{
    const auto found = m_quotes.constFind(symbol);
    return found == m_quotes.cend() ? QJsonObject() : QJsonObject{{symbol, recordOf(found->latest)}};
}

Quote AccountBook::knownQuote(const QString& symbol) const
{
    return m_quotes.value(symbol).latest;
}

QJsonObject AccountBook::knownTradePrices() const
{
    QJsonObject known;
    for (const QJsonArray* list : {&m_openTrades, &m_pendingOrders}) {
        for (const QJsonValue trade : *list) {
            const QString symbol = trade["symbol"_L1].toString();
            const auto found = m_quotes.constFind(symbol);
            if (found != m_quotes.cend() && found->ticked)
                known.insert(symbol, recordOf(*found->ticked));
        }
    }
    return known;
}
