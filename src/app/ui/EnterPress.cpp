#include "app/ui/EnterPress.h"

#include "app/ui/EnterKey.h"

#include <QApplication>
#include <QDialog>
#include <QPushButton>
#include <QToolButton>

namespace {

/// Check boxes are no buttons to press.
bool isPressed(const QObject* widget)
{
    return qobject_cast<const QPushButton*>(widget) || qobject_cast<const QToolButton*>(widget);
}

} // namespace

EnterPress::EnterPress(QApplication& application)
{
    application.installEventFilter(this);
}

bool EnterPress::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() != QEvent::KeyPress || watched != QApplication::focusWidget() || !isPressed(watched))
        return false;
    const auto& press = *static_cast<const QKeyEvent*>(event);
    auto& button = *static_cast<QAbstractButton*>(watched);
    if (!isEnter(press) || qobject_cast<const QDialog*>(button.window()))
        return false;
    if (isPlainEnter(press) && !press.isAutoRepeat())
        button.click();
    return true;
}
