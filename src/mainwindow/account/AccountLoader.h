#pragma once

#include "net/ReadCoalescer.h"

#include <QJsonArray>
#include <QObject>
#include <QString>

class AccountBook;
class ApiClient;

/// Loads accounts, trades and history into the book. A reply counts only for the account that it was asked
/// for; a failed read never clears what is known, except that pending orders that cannot be read count as
/// none; an answer that is no JSON list counts as an empty one; a read asked for again while it is in flight
/// is repeated once afterwards.
class AccountLoader final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(AccountLoader)

public:
    /// Client and book must outlive the loader.
    AccountLoader(ApiClient& api, AccountBook& book, QObject* parent = nullptr);
    ~AccountLoader() override = default;

public Q_SLOTS:
    /// The list of accounts, then the trades of the account that becomes current.
    void refreshAccounts();
    /// Open trades, then pending orders. Nothing without an account.
    void refreshOpenTrades();
    void refreshHistory();
    void refreshAll();

    /// Makes an account current ("" for none) and loads its trades.
    void selectAccount(const QString& id);

Q_SIGNALS:
    /// The current account's history. The book does not keep it, since it may be large.
    void historyRead(const QJsonArray& rows);
    void journalLine(const QString& source, const QString& message);

private:
    void onAccounts(const QJsonDocument& document, const QString& error);
    void onOpenTrades(const QString& accountId, const QJsonDocument& document, const QString& error);
    void onPendingOrders(const QString& accountId, const QJsonArray& open, const QJsonDocument& document,
        const QString& error);
    void onHistory(const QString& accountId, const QJsonDocument& document, const QString& error);
    void onReplyTooLarge(const QString& path);
    void reportFailure(const QString& message);

    AccountBook& m_book;
    ReadCoalescer m_reads;
    bool m_largeHistoryTold = false; ///< since the account's history was last read, or another was selected
};
