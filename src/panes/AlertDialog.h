#pragma once

#include "panes/PriceAlert.h"

#include <QDialog>

#include <functional>

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

    /// Begins with one of the symbols, where it is there, and its bid in place of 0. Another symbol brings
    /// its own bid until the price is changed by hand. `bidOf` gives 0 where none is known.
    void beginWith(const QString& symbol, const std::function<double(const QString& symbol)>& bidOf);

    /// What was entered; unusable without a symbol or with a price of 0.
    [[nodiscard]] PriceAlert alert() const;

private:
    QComboBox* m_symbol;
    QComboBox* m_condition;
    DecimalSpinBox* m_price;
};
