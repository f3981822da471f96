#pragma once

#include "panes/PriceAlert.h"

#include <QDialog>

class DecimalSpinBox;
class QComboBox;

/// Asks for a new price alert.
class AlertDialog final : public QDialog {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(AlertDialog)

public:
    /// `symbols`: the names to choose from.
    explicit AlertDialog(const QStringList& symbols, QWidget* parent = nullptr);
    ~AlertDialog() override = default;

    /// What was entered; unusable without a symbol or with a price of 0.
    [[nodiscard]] PriceAlert alert() const;

private:
    QComboBox* m_symbol;
    QComboBox* m_condition;
    DecimalSpinBox* m_price;
};
