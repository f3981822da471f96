#pragma once

#include <QObject>
#include <QPointer>

class QMenu;
class QMenuBar;
class QWidget;

/// Gives the keyboard back to what had it before the menu bar: one Escape in a menu is enough for that. Qt
/// would go on in the bar, and after another menu forget where the keyboard was.
class MenuBarFocus final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(MenuBarFocus)

public:
    /// The bar, which has all its menus by now, is also the parent.
    explicit MenuBarFocus(QMenuBar& bar);
    ~MenuBarFocus() override = default;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void leave(QMenu& menu);
    void giveBack();

    QMenuBar& m_bar;
    QPointer<QWidget> m_before;
};
