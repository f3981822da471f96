#pragma once

#include <QWidget>

class QAbstractItemModel;
class QTreeView;

/// A small window above all others with the live bid and ask of every listed symbol, for keeping an eye
/// on prices while another program is in front. A second view of the Market Watch list: it holds no
/// prices of its own and costs nothing while it is closed.
class PopupPrices final : public QWidget {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(PopupPrices)

public:
    /// `quotes` has the columns of QuoteItem. Closed at first; lives as long as its parent.
    explicit PopupPrices(QAbstractItemModel& quotes, QWidget* parent);
    ~PopupPrices() override = default;

public Q_SLOTS:
    /// Opens the window where it was, without taking the keyboard from where it is, or closes it.
    void toggle();
    /// Call after each price snapshot: the list announces new prices to nobody.
    void refresh();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    QTreeView* m_list;
};
