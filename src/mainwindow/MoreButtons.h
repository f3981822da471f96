#pragma once

#include <QList>
#include <QObject>
#include <QPointer>

class QToolBar;
class QToolButton;

/// The keyboard at the arrow of a toolbar behind which Qt keeps the buttons that have no room: a key that
/// unfolds them leads to the first one. Escape folds them again and goes back to the arrow, and so does
/// whatever takes the keyboard elsewhere, which then stays there.
class MoreButtons final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(MoreButtons)

public:
    /// The toolbar, which has all its buttons by now, is also the parent; `arrow` is its own.
    MoreButtons(QToolBar& bar, QToolButton& arrow);
    ~MoreButtons() override = default;

    /// All buttons in the order of the toolbar, those too that have no room; the arrow stands before the
    /// first of these.
    [[nodiscard]] QList<QToolButton*> inOrder() const;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void onToggled(bool unfolded);
    void onFocusChanged(const QWidget* now);
    void fold();
    [[nodiscard]] bool isUnfolded() const;
    /// Those of the toolbar's actions.
    [[nodiscard]] QList<QToolButton*> buttons() const;

    QToolBar& m_bar;
    QToolButton& m_arrow;
    QList<QToolButton*> m_behind;   ///< had no room when they were unfolded
    QPointer<QToolButton> m_wanted; ///< gets the keyboard when it appears, which takes Qt a moment
    bool m_entered = false;         ///< the keyboard has been in the unfolded toolbar
};
