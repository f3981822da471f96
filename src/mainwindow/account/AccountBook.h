#pragma once

#include "net/records/Quote.h"

#include <QHash>
#include <QJsonArray>
#include <QJsonObject>
#include <QMap>
#include <QObject>
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

/// What the terminal knows about the user's accounts, the current account's trades and the tradable symbols:
/// the records as they came, and the rules on them. Its signals tell what has changed; receivers ask the book
/// for the values.
class AccountBook final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(AccountBook)

public:
    using QObject::QObject;
    ~AccountBook() override = default;

    /// Replaces the account list; the current account stays, listed or not.
    void setAccounts(const QJsonArray& accounts);
    [[nodiscard]] const QJsonArray& accounts() const { return m_accounts; }
    /// Which account to select: the current one if listed (of equal ids the last), else the first
    /// active one that is no wallet, else the first. 0 for an empty list.
    [[nodiscard]] int preferredIndex() const;
    /// The same by its id; empty for an empty list.
    [[nodiscard]] QString preferredAccountId() const;

    [[nodiscard]] const QString& currentAccountId() const { return m_currentAccountId; }
    /// Makes an account current ("" for none) and forgets the profits until its trades are read again.
    void selectAccount(const QString& id);

    /// Takes profit and margin of every trade from a fresh list of open trades.
    void readFigures(const QJsonArray& openTrades);
    /// Takes newer profits from trade records; those of other accounts are left out.
    void noteProfits(const QJsonArray& rows);
    /// The newest profit of a trade: what was last read or noted under its id, else what the record says.
    [[nodiscard]] double profitOf(const QJsonObject& trade) const;
    [[nodiscard]] double usedMargin() const { return m_usedMargin; }
    /// Nothing while the current account is not in the list.
    [[nodiscard]] const std::optional<AccountSummary>& summary() const { return m_summary; }

    /// The lists on show, as the server sent them.
    void setTrades(const QJsonArray& open, const QJsonArray& pending);
    [[nodiscard]] const QJsonArray& openTrades() const { return m_openTrades; }
    [[nodiscard]] const QJsonArray& pendingOrders() const { return m_pendingOrders; }

    /// Replaces the symbol list. Records without a name are kept in the list but cannot be looked up. A known
    /// price that is none by the new decimals is forgotten.
    void setSymbols(const QJsonArray& symbols);
    [[nodiscard]] const QJsonArray& symbols() const { return m_symbols; }
    /// The symbols in the order of every list, those without a name left out.
    [[nodiscard]] QJsonArray sortedSymbols() const;
    [[nodiscard]] const QHash<QString, QJsonObject>& symbolsByName() const { return m_symbolsByName; }
    /// In alphabetical order.
    [[nodiscard]] QStringList symbolNames() const;
    /// Price decimals by symbol name, as the records state them (5 where they do not).
    [[nodiscard]] const QHash<QString, int>& digits() const { return m_digits; }

    /// Looks through a price map, once for all, and remembers the latest quote of every symbol in it.
    void notePrices(const QJsonObject& prices);
    /// The same for the prices of a hello, which are no ticks. They are the latest quotes until a snapshot
    /// names the symbol.
    void noteHelloPrices(const QJsonObject& prices);
    /// The feed has gone: all quotes may not hold any more until newer ones come.
    void noteInterruption();
    /// The latest quote of one symbol; nothing when none has come.
    [[nodiscard]] std::optional<Quote> quote(const QString& symbol) const;
    /// The same, those of a hello left out.
    [[nodiscard]] std::optional<Quote> tickedQuote(const QString& symbol) const;
    /// Whether what quote() tells came before the feed had gone; false when none has come.
    [[nodiscard]] bool isQuoteOld(const QString& symbol) const;
    /// The same of tickedQuote().
    [[nodiscard]] bool isTickOld(const QString& symbol) const;

Q_SIGNALS:
    // A list that was read again counts as a change even if it is the same: views are filled from it anew.
    void accountsChanged();
    void currentAccountChanged();
    /// Open trades and pending orders.
    void tradesChanged();
    void symbolsChanged();

    /// A newer profit of one of the current account's trades, known or not.
    void profitChanged(const QString& tradeId, double profit);
    void summaryChanged();
    /// There are newer quotes, of a snapshot or a hello.
    void quotesChanged(const PriceSnapshot& quotes);
    /// A snapshot of live prices has come; after quotesChanged().
    void ticked(const PriceSnapshot& quotes);
    void quotesGrewOld();

private:
    struct KnownQuote final {
        Quote latest;                ///< of a snapshot or a hello
        std::optional<Quote> ticked; ///< of the latest snapshot; absent before the first
        bool isOld = false;          ///< the latest
        bool isTickOld = false;
    };

    [[nodiscard]] PriceSnapshot readPrices(const QJsonObject& prices) const;
    void judgeQuotesAgain();
    [[nodiscard]] std::optional<AccountSummary> summaryOfNow() const;
    void updateAccountSummary();
    /// True when it has changed. Due before any signal: who hears of another account finds its figures.
    [[nodiscard]] bool renewSummary();

    QJsonArray m_accounts;
    QString m_currentAccountId;
    QMap<QString, double> m_tradePnl;
    double m_usedMargin = 0.0;
    std::optional<AccountSummary> m_summary;
    QJsonArray m_openTrades;
    QJsonArray m_pendingOrders;
    QJsonArray m_symbols;
    QHash<QString, QJsonObject> m_symbolsByName;
    QHash<QString, int> m_digits;
    QHash<QString, KnownQuote> m_quotes;
};
