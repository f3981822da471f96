#pragma once

#include "net/ReadCoalescer.h"

#include <QJsonArray>
#include <QObject>
#include <QString>

class AccountBook;
class ApiClient;
class ChartArea;
class NavigatorWidget;
class QComboBox;
class TerminalPane;

/// Who shows accounts and trades.
struct AccountViews final {
    QComboBox& selector;
    NavigatorWidget& navigator;
    TerminalPane& toolbox;
    ChartArea& charts;
};

/// Loads accounts, trades and history into the book and hands them to the views. A reply counts only
/// for the account that it was asked for; a failed read never clears what is shown, except that pending
/// orders that cannot be read count as none; an answer that is no JSON list counts as an empty one; a read
/// asked for again while it is in flight is repeated once afterwards.
class AccountFlow final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(AccountFlow)

public:
    /// Everything given must outlive the flow.
    AccountFlow(ApiClient& api, AccountBook& book, const AccountViews& views, QObject* parent = nullptr);

public Q_SLOTS:
    void refreshAccounts();
    /// Open trades, then pending orders. Nothing without an account.
    void refreshOpenTrades();
    void refreshHistory();
    void refreshAll();

    /// Makes the account of this line of the selector the current one and loads its trades.
    void onAccountSelected(int index);
    /// Selects an account by its id; an id that is not listed changes nothing.
    void activateAccount(const QString& accountId);
    /// Live profits from the feed.
    void onTradesUpdated(const QJsonArray& rows);

Q_SIGNALS:
    void journalLine(const QString& source, const QString& message);

private:
    void onAccounts(const QJsonDocument& document, const QString& error);
    void onOpenTrades(const QString& accountId, const QJsonDocument& document, const QString& error);
    void onPendingOrders(const QString& accountId, const QJsonArray& open, const QJsonDocument& document,
        const QString& error);
    void onHistory(const QString& accountId, const QJsonDocument& document, const QString& error);
    void onReplyTooLarge(const QString& path);
    void fillSelector();
    void showTrades();
    void updateAccountSummary();
    void reportFailure(const QString& message);

    AccountBook& m_book;
    AccountViews m_views;
    ReadCoalescer m_reads;
    bool m_fillingAccounts = false;
    bool m_largeHistoryTold = false; ///< since the account's history was last read, or another was selected
};
