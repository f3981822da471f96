#pragma once

#include "app/base/LineKind.h"

#include <QJsonObject>
#include <QObject>
#include <QPointer>

class AccountBook;
class ApiClient;
class OrderDialog;
class QWidget;
class SendingDialog;
class WsClient;

/// Where a trader places and modifies orders: the order dialog and the modify dialogs. Tells what has
/// happened by lines, and what is to be read again.
class TradeDesk final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(TradeDesk)

public:
    /// Clients and book must outlive the desk; dialogs appear over `window`.
    TradeDesk(ApiClient& api, WsClient& feed, const AccountBook& book, QWidget& window);
    ~TradeDesk() override;

public Q_SLOTS:
    /// Opens the order dialog for a symbol and the current account, or brings the one that is open for that
    /// account to the front.
    void openOrderDialog(const QString& symbol);
    /// Opens the modify dialog; an empty trade opens none.
    void openModifyDialog(const QJsonObject& trade);

Q_SIGNALS:
    void journalLine(const QString& source, const QString& message);
    /// What no dialog can show any more, as the Journal has it; empty once an order or a change was accepted.
    void failureChanged(const QString& line);
    void expertLine(const QString& source, const QString& message, LineKind kind);
    void accountsRefreshWanted();
    void tradesRefreshWanted();
    /// Nobody knows what became of a request.
    void everythingRefreshWanted();

private:
    /// `failure`: the Journal's words, with %1 for the reason, where the dialog can no longer show it.
    void open(SendingDialog& dialog, const QString& failure);
    void onOrderPlaced();
    void onModified();

    ApiClient& m_api;
    WsClient& m_feed;
    const AccountBook& m_book;
    QWidget& m_window;
    QPointer<OrderDialog> m_orderDialog;
};
