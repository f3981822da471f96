#pragma once

#include "net/records/OrderBody.h"

#include <QPointer>
#include <QWidget>

class DecimalEdit;
class DecimalSpinBox;
class ErrorLabel;
class PriceDisplay;
class QComboBox;
class QFormLayout;
class QJsonArray;
class QLabel;
class QPushButton;

/// The middle of the order window: the fields of an order, the large prices, the error line and the two
/// buttons. Knows what was typed, but not how it is sent.
class OrderForm final : public QWidget {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(OrderForm)

public:
    /// `symbols`: the symbol records in the order to offer them; entries without a "name" are left out.
    /// An unknown or empty `initialSymbol` leaves the first one selected.
    OrderForm(const QJsonArray& symbols, const QString& initialSymbol, QWidget* parent = nullptr);
    ~OrderForm() override = default;

    /// The selected symbol's name; empty when there is none.
    [[nodiscard]] QString symbol() const;
    [[nodiscard]] double lots() const;
    /// What was typed, without account, side and type. A field that holds no number reads as 0.
    [[nodiscard]] OrderTicket ticket() const;

    /// Names the buttons after the type; only pending orders have a price to type.
    void setOrderType(OrderType type);
    /// The selected symbol as it is shown, for the prices' accessible name.
    void namePrices(const QString& symbol);
    /// Bid and ask in large type; empty ones show that there is no price yet.
    void showPrices(const QString& bid, const QString& ask);
    /// Whether the prices may not hold any more.
    void showStale(bool stale);
    void showUnits(const QString& text);
    /// Plain text under the fields; empty hides it.
    void showError(const QString& text);
    /// Nothing can be typed or pressed while an order is on its way.
    void setSending(bool sending);
    /// Gives the volume the focus and selects it, so that a number typed at once replaces it.
    void focusVolume();
    /// The widgets that Tab goes through here, from the top.
    [[nodiscard]] QList<QWidget*> focusOrder() const;

Q_SIGNALS:
    void symbolChanged();
    void placeRequested(Side side);

private:
    [[nodiscard]] QFormLayout* buildFields();
    [[nodiscard]] QWidget* buildVolumeRow();
    [[nodiscard]] QLayout* buildButtons();
    QLabel* addField(QFormLayout* form, const QString& caption, QWidget* field, const QString& name);
    void fillSymbols(const QJsonArray& symbols, const QString& initialSymbol);

    QComboBox* m_symbolCombo;
    DecimalSpinBox* m_volume;
    QLabel* m_units;
    DecimalEdit* m_stopLoss;
    DecimalEdit* m_takeProfit;
    QLabel* m_priceLabel = nullptr;
    DecimalEdit* m_price;
    QComboBox* m_comment;
    PriceDisplay* m_priceDisplay;
    ErrorLabel* m_error;
    QPushButton* m_sell;
    QPushButton* m_buy;
    QPointer<QWidget> m_focusBefore;
};
