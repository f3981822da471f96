#pragma once

#include "app/ui/FocusRing.h"

#include <QList>
#include <QObject>
#include <QPointer>

class QApplication;
class QFocusEvent;
class QWidget;

/// Shows where the keyboard is once it has got there because of a key, or a key is pressed there: a ring
/// around the button or field, the current tab, or the current row. Whoever uses the mouse sees none, nor do
/// keys that are pressed in what the mouse was pressed on. The style sheets draw no focus by themselves.
class FocusMark final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(FocusMark)

public:
    /// Watches all windows of the application, as long as it lives.
    explicit FocusMark(QApplication& application);
    ~FocusMark() override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void onKey();
    void onPress(const QObject& target);
    void onFocusIn(QWidget& widget, const QFocusEvent& event);
    void onFocusOut(const QObject& widget, bool isForVisit);
    void mark(QWidget& widget);
    void unmark();
    void onDestroyed();
    /// Soon, and once for everything that happens before: within a paint nothing may be moved.
    void follow();
    void place();
    /// Whether this is what the marked list or row of tabs shows itself on.
    [[nodiscard]] bool isPaintedFor(const QObject* watched) const;
    /// Whether the mark has to go where this goes.
    [[nodiscard]] bool carriesMarked(const QObject* watched) const;

    QPointer<QWidget> m_marked;      ///< what has the focus and is marked
    QList<QPointer<QWidget>> m_left; ///< marked when another window took the keyboard, to be marked on return
    QPointer<QWidget> m_pressed; ///< what has the focus, or will have it again, and was pressed by the mouse
    QPointer<FocusRing> m_ring;  ///< ends with its window
    FocusRing::Place m_place;    ///< where the ring was put last
    bool m_byKey = false;        ///< the last thing done was a key
    bool m_following = false;
};
