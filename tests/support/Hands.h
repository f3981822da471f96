#pragma once

#include <QAbstractButton>
#include <QApplication>
#include <QDragEnterEvent>
#include <QMenu>
#include <QMimeData>
#include <QtTest>

/// A person's hands: keys go to whatever has the focus, a drop and a turn of the wheel to whatever lies
/// there.
namespace hands {

/// Waits until a window has the keyboard; a person types no sooner.
[[nodiscard]] inline bool arriveAt(const QWidget* window)
{
    return QTest::qWaitFor([window] {
        const QWidget* widget = QApplication::focusWidget();
        return QApplication::activeWindow() == window && widget && widget->window() == window;
    });
}

inline void type(const QString& text)
{
    QTest::keyClicks(QApplication::focusWidget(), text);
}

inline void press(Qt::Key key)
{
    QTest::keyClick(QApplication::focusWidget(), key);
}

/// What the desktop sends while a key is held down after its press.
inline void hold(Qt::Key key)
{
    QKeyEvent again(QEvent::KeyPress, key, {}, {}, true);
    QApplication::sendEvent(QApplication::focusWidget(), &again);
}

/// The name of what has the focus, or its caption where it has no name; "nothing" without any.
inline QString focused()
{
    const QWidget* widget = QApplication::focusWidget();
    if (!widget)
        return QStringLiteral("nothing");
    const auto* button = qobject_cast<const QAbstractButton*>(widget);
    return widget->objectName().isEmpty() && button ? button->text() : widget->objectName();
}

/// What has the focus and what Tab comes to after it, once around.
inline QStringList tabOrder()
{
    constexpr int mostSteps = 40;
    const QWidget* start = QApplication::focusWidget();
    QStringList order;
    for (int step = 0; step < mostSteps && start; ++step) {
        order.append(focused());
        press(Qt::Key_Tab);
        if (QApplication::focusWidget() == start)
            break;
    }
    return order;
}

/// Drags a text from elsewhere and drops it in the middle of a widget.
inline void drop(QWidget& widget, const QString& text)
{
    QMimeData data;
    data.setText(text);
    const QPoint middle = widget.rect().center();
    QDragEnterEvent enter(middle, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&widget, &enter);
    QDropEvent drop(middle, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&widget, &drop);
}

/// Moves to an entry of an open menu and clicks it. A menu that was clicked without a movement of the mouse
/// since it opened takes that for the end of the click which opened it.
inline void choose(QMenu& menu, QAction* entry)
{
    constexpr int fewSteps = 8;
    const QPoint place = menu.actionGeometry(entry).center();
    for (int step = fewSteps; step >= 0; --step)
        QTest::mouseMove(&menu, place - QPoint(step, 0));
    QTest::mouseClick(&menu, Qt::LeftButton, {}, place);
}

/// The same by its text.
inline void choose(QMenu& menu, const QString& text)
{
    for (QAction* entry : menu.actions()) {
        if (entry->text() == text)
            return choose(menu, entry);
    }
    QFAIL(qPrintable(text));
}

/// Turns the wheel over the middle of a widget as the desktop does: only then is it offered to what lies
/// below.
inline void turnWheel(QWidget& widget, int angle)
{
    const QPointF middle = widget.rect().center();
    QWheelEvent event(middle, widget.mapToGlobal(middle), QPoint(), QPoint(0, angle), Qt::NoButton, {},
        Qt::NoScrollPhase, false);
    QSpontaneKeyEvent::setSpontaneous(&event);
    qApp->notify(&widget, &event);
}

} // namespace hands
