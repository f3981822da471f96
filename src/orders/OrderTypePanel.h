#pragma once

#include "net/records/OrderBody.h"

#include <QList>
#include <QWidget>

/// The left-hand list of the order window: the order types, tools that do not exist yet, and the button
/// that leaves the window.
class OrderTypePanel final : public QWidget {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(OrderTypePanel)

public:
    /// Starts with the market order checked.
    explicit OrderTypePanel(QWidget* parent = nullptr);
    ~OrderTypePanel() override = default;

    /// The widgets that Tab goes through here, from the top.
    [[nodiscard]] QList<QWidget*> focusOrder() const { return m_focusOrder; }

Q_SIGNALS:
    void typeChosen(OrderType type);
    void leaveRequested();

private:
    QList<QWidget*> m_focusOrder;
};
