#pragma once

#include "app/ui/SoundPlayer.h"
#include "net/records/LevelsBody.h"
#include "orders/SendingDialog.h"

#include <QJsonObject>

class ApiClient;
class DecimalEdit;
class ErrorLabel;
class QFormLayout;
class QPushButton;

/// Edits the levels of one trade: stop loss and take profit, and the entry price of a pending order.
class ModifyDialog final : public SendingDialog {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ModifyDialog)

public:
    /// `digits`: the symbol's price decimals. `api` must outlive the dialog.
    ModifyDialog(ApiClient& api, const QJsonObject& trade, int digits, QWidget* parent = nullptr);
    ~ModifyDialog() override = default;

Q_SIGNALS:
    /// The server accepted the change; just before the dialog closes.
    void modified();
    /// Played by the dialog itself.
    void soundDue(SoundKind kind);

protected:
    void showError(const QString& text) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    [[nodiscard]] DecimalEdit* addLevel(
        QFormLayout& form, const QString& caption, const QString& name, double level, int digits);
    [[nodiscard]] TypedLevels typed() const;
    void send();
    void onReply(const ReplyOutcome& outcome);

    ApiClient& m_api;
    QJsonObject m_trade;
    DecimalEdit* m_price = nullptr; ///< pending orders only
    DecimalEdit* m_stopLoss;
    DecimalEdit* m_takeProfit;
    QPushButton* m_modify;
    ErrorLabel* m_error;
};
