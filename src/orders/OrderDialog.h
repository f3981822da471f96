#pragma once

#include "app/ui/SoundPlayer.h"
#include "net/records/OrderBody.h"
#include "net/records/Quote.h"
#include "orders/SendingDialog.h"

#include <QJsonArray>
#include <QJsonObject>

#include <optional>

class ApiClient;
class OrderForm;
class TickChartWidget;
class WsClient;

/// The modal window that places one order.
class OrderDialog final : public SendingDialog {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(OrderDialog)

public:
    /// `symbols`: the symbol records in the order to offer them. An unknown or empty `initialSymbol`
    /// leaves the first one selected. `api` must outlive the dialog.
    OrderDialog(ApiClient& api, WsClient& feed, const QJsonArray& symbols, const QString& accountId,
        const QString& initialSymbol, QWidget* parent = nullptr);
    ~OrderDialog() override = default;

public Q_SLOTS:
    /// A price map keyed by symbol. A quote that lacks a positive bid or ask is ignored.
    void onPrices(const QJsonObject& prices);

Q_SIGNALS:
    /// The server accepted the order; just before the window closes.
    void orderPlaced();
    /// Played by the dialog itself.
    void soundDue(SoundKind kind);

protected:
    void showError(const QString& text) override;

private:
    void setOrderType(OrderType type);
    void onSymbolChanged();
    void place(Side side);
    void onReply(const ReplyOutcome& outcome);
    void showSending(bool sending);
    /// Whether the feed has gone since the price on show.
    void showStale(bool stale);
    [[nodiscard]] int digits() const;

    ApiClient& m_api;
    QString m_accountId;
    QJsonArray m_symbols;
    QJsonObject m_record; ///< of the selected symbol
    QString m_shownSymbol;
    OrderType m_orderType = OrderType::Market;
    std::optional<Quote> m_quote; ///< the selected symbol's; none until a price comes
    bool m_stale = false;

    OrderForm* m_form;
    TickChartWidget* m_tickChart;
};
