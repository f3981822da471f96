#pragma once

#include "app/SoundPlayer.h"
#include "orders/OrderBody.h"

#include <QDialog>
#include <QJsonArray>
#include <QJsonObject>

class ApiClient;
class OrderForm;
class QNetworkReply;
class TickChartWidget;
class WsClient;

/// The modal window that places one order. Closed while an order is on its way it only leaves the
/// screen, so that the trader can act elsewhere, and waits for the answer: an accepted order is reported
/// as ever, a refused one brings the window back with the reason. Whoever shows it again meanwhile sees
/// it waiting; closing it once more gives up the wait.
class OrderDialog final : public QDialog {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(OrderDialog)

public:
    /// `symbols`: the symbol records in the order to offer them. An unknown or empty `initialSymbol`
    /// leaves the first one selected. `api` must outlive the dialog.
    OrderDialog(ApiClient& api, WsClient& feed, const QJsonArray& symbols, const QString& accountId,
        const QString& initialSymbol, QWidget* parent = nullptr);
    ~OrderDialog() override = default;

    void done(int result) override;

public Q_SLOTS:
    /// A price map keyed by symbol. Quotes without a positive bid and ask are no quotes.
    void onPrices(const QJsonObject& prices);

Q_SIGNALS:
    /// The server accepted the order; just before the window closes.
    void orderPlaced();
    /// The order may or may not have been placed: no proper answer came. What the server holds is to be
    /// asked for.
    void outcomeUnknown();
    /// Played by the dialog itself.
    void soundDue(SoundKind kind);

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void setOrderType(OrderType type);
    void onSymbolChanged();
    void place(OrderSide side);
    void onReply(QNetworkReply* reply);
    void setSending(bool sending);
    void comeBack();
    [[nodiscard]] int digits() const;

    ApiClient& m_api;
    QString m_accountId;
    QJsonArray m_symbols;
    QJsonObject m_record; ///< of the selected symbol
    OrderType m_orderType = OrderType::Market;
    double m_bid = 0.0;
    double m_ask = 0.0;
    bool m_sending = false;
    bool m_left = false; ///< closed by the trader while sending

    OrderForm* m_form;
    TickChartWidget* m_tickChart;
};
