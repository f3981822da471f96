#pragma once

#include "net/records/Quote.h"

#include <QHash>
#include <QJsonArray>
#include <QJsonObject>
#include <QMap>
#include <QString>
#include <QStringList>

#include <optional>

class PriceSnapshot;

/// The line under the trade list, in account currency.
struct AccountSummary final {
    double balance = 0.0;
    double equity = 0.0;
    double margin = 0.0;
    double freeMargin = 0.0;
    double profit = 0.0;

    friend bool operator==(const AccountSummary&, const AccountSummary&) = default;
};

/// What the terminal knows about the user's accounts, the current account's trades and the tradable
/// symbols. Plain state with the rules that belong to it: no widget, no network.
class AccountBook final {
public:
    /// Replaces the account list; the current account stays, listed or not.
    void setAccounts(const QJsonArray& accounts) { m_accounts = accounts; }
    [[nodiscard]] const QJsonArray& accounts() const { return m_accounts; }
    /// One line of the account selector: label, status, balance. Server text in it is one line.
    [[nodiscard]] static QString selectorText(const QJsonObject& account);
    /// Which account to select: the current one if listed (of equal ids the last), else the first
    /// active one that is no wallet, else the first. 0 for an empty list.
    [[nodiscard]] int preferredIndex() const;

    [[nodiscard]] const QString& currentAccountId() const { return m_currentAccountId; }
    /// Makes an account current ("" for none) and forgets the profits until its trades are read again.
    void selectAccount(const QString& id);

    /// Takes profit and margin of every trade from a fresh list of open trades.
    void readFigures(const QJsonArray& openTrades);
    /// A newer profit of one trade of the current account.
    void setTradePnl(const QString& tradeId, double profit) { m_tradePnl.insert(tradeId, profit); }
    [[nodiscard]] const QMap<QString, double>& tradePnl() const { return m_tradePnl; }
    [[nodiscard]] double usedMargin() const { return m_usedMargin; }
    /// Nothing while the current account is not in the list.
    [[nodiscard]] std::optional<AccountSummary> summary() const;

    /// The lists on show, as the server sent them.
    void setTrades(const QJsonArray& open, const QJsonArray& pending);
    [[nodiscard]] const QJsonArray& openTrades() const { return m_openTrades; }
    [[nodiscard]] const QJsonArray& pendingOrders() const { return m_pendingOrders; }

    /// Replaces the symbol list. Records without a name are kept in the list but cannot be looked up. What
    /// the new decimals say is no price is forgotten.
    void setSymbols(const QJsonArray& symbols);
    [[nodiscard]] const QJsonArray& symbols() const { return m_symbols; }
    /// The symbols in the order of every list, those without a name left out.
    [[nodiscard]] QJsonArray sortedSymbols() const;
    [[nodiscard]] const QHash<QString, QJsonObject>& symbolsByName() const { return m_symbolsByName; }
    /// In alphabetical order.
    [[nodiscard]] QStringList symbolNames() const;
    /// Price decimals by symbol name, as the records state them (5 where they do not).
    [[nodiscard]] const QHash<QString, int>& digits() const { return m_digits; }

    /// Remembers the latest quote of every symbol in a snapshot.
    void notePrices(const PriceSnapshot& prices);
    /// The same for the prices of a hello, which are no ticks: they count until the symbol's next snapshot.
    void noteHelloPrices(const PriceSnapshot& prices);
    /// The latest quote of one symbol; nothing when none has come.
    [[nodiscard]] std::optional<Quote> quote(const QString& symbol) const;
    /// The same, those of a hello left out.
    [[nodiscard]] std::optional<Quote> tickedQuote(const QString& symbol) const;

private:
    void judgeQuotesAgain();

    struct KnownQuote final {
        Quote latest;                ///< of a snapshot or a hello
        std::optional<Quote> ticked; ///< of the latest snapshot; absent before the first
    };

    QJsonArray m_accounts;
    QString m_currentAccountId;
    QMap<QString, double> m_tradePnl;
    double m_usedMargin = 0.0;
    QJsonArray m_openTrades;
    QJsonArray m_pendingOrders;
    QJsonArray m_symbols;
    QHash<QString, QJsonObject> m_symbolsByName;
    QHash<QString, int> m_digits;
    QHash<QString, KnownQuote> m_quotes;
};
