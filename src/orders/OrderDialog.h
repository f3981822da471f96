#pragma once

#include "app/SoundPlayer.h"
#include "orders/OrderBody.h"

#include <QDialog>
#include <QElapsedTimer>
#include <QJsonArray>
#include <QJsonObject>
#include <QPointer>

class ApiClient;
class DecimalEdit;
class DecimalSpinBox;
class QComboBox;
class QFormLayout;
class QLabel;
class QNetworkReply;
class QPushButton;
class QVBoxLayout;
class TickChartWidget;
class WsClient;

/// The modal window that places one order. While an order is on its way the window stays open, so that
/// the trader sees what became of it.
class OrderDialog final : public QDialog {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(OrderDialog)

public:
    /// `symbols`: the symbol records in the order to offer them. An unknown or empty `initialSymbol`
    /// leaves the first one selected. `api` must outlive the dialog.
    OrderDialog(ApiClient& api, WsClient& feed, const QJsonArray& symbols, const QString& accountId,
        const QString& initialSymbol, QWidget* parent = nullptr);
    ~OrderDialog() override = default;

    /// How long, in ms, the window refuses to close while an order is on its way; a little longer than
    /// the client waits for a silent server unless set.
    void setPatience(int milliseconds) { m_patienceMs = milliseconds; }

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

private:
    [[nodiscard]] QWidget* buildForm();
    [[nodiscard]] QFormLayout* buildFields();
    void addButtons(QVBoxLayout* column);
    void addField(QFormLayout* form, const QString& label, QWidget* field, const QString& name);
    void fillSymbols(const QString& initialSymbol);
    void setOrderType(OrderType type);
    void onSymbolChanged();
    void place(OrderSide side);
    void onReply(QNetworkReply* reply);
    void setSending(bool sending);
    void showError(const QString& text);
    [[nodiscard]] QString symbol() const;
    [[nodiscard]] int digits() const;

    ApiClient& m_api;
    QString m_accountId;
    QJsonArray m_symbols;
    QJsonObject m_record; ///< of the selected symbol
    OrderType m_orderType = OrderType::Market;
    double m_bid = 0.0;
    double m_ask = 0.0;
    bool m_sending = false;
    QElapsedTimer m_sentSince;
    int m_patienceMs = 20000;
    QPointer<QWidget> m_focusBefore;

    QComboBox* m_symbolCombo;
    DecimalSpinBox* m_volume;
    QLabel* m_units;
    DecimalEdit* m_stopLoss;
    DecimalEdit* m_takeProfit;
    QLabel* m_priceLabel = nullptr;
    DecimalEdit* m_price;
    QComboBox* m_comment;
    QLabel* m_priceDisplay;
    QLabel* m_error;
    QPushButton* m_sell;
    QPushButton* m_buy;
    TickChartWidget* m_tickChart;
};
