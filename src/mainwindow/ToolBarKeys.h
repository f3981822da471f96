#pragma once

#include <QList>
#include <QObject>

class MoreButtons;
class QToolBar;
class QToolButton;

/// The keyboard in a toolbar: arrow keys go from button to button and stay within, whatever is held down with
/// them, Home and End go to the first and the last one, and the status bar tells the name of the button that
/// has the focus.
class ToolBarKeys final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ToolBarKeys)

public:
    /// The toolbar, which has all its buttons by now, is also the parent; `more` is a child of it too.
    ToolBarKeys(QToolBar& bar, const MoreButtons& more);
    ~ToolBarKeys() override = default;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    /// Where the keyboard can go, in their order.
    [[nodiscard]] QList<QToolButton*> stops() const;
    void go(QToolButton& from, int key) const;
    /// Empty: what the status bar said before.
    void tell(const QString& name) const;

    QToolBar& m_bar;
    const MoreButtons& m_more;
};
