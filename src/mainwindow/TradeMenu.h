#pragma once

#include <QJsonObject>
#include <QObject>

class QPoint;
class QWidget;

/// The context menu of a trade row, and the question before a position is closed.
class TradeMenu final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(TradeMenu)

public:
    /// Menu and question appear over `window`.
    explicit TradeMenu(QWidget& window);

public Q_SLOTS:
    /// Shows the menu for a trade; an empty one has none.
    void popUp(const QPoint& globalPos, const QJsonObject& trade);

Q_SIGNALS:
    /// The trader has confirmed it.
    void closeConfirmed(const QJsonObject& trade);
    void cancelRequested(const QJsonObject& trade);
    void modifyRequested(const QJsonObject& trade);
    void newOrderRequested();

private:
    void askToClose(const QJsonObject& trade);

    QWidget& m_window;
};
