#include "app/ui/EnterPress.h"

#include "app/ui/EnterKey.h"

#include <QApplication>
#include <QDialog>
#include <QPushButton>
#include <QToolButton>

namespace {

constexpr const char* spared = "sparedByEnter";

/// Check boxes are no buttons to press.
bool isPressed(const QObject* widget)
{
    const bool isButton
        = qobject_cast<const QPushButton*>(widget) || qobject_cast<const QToolButton*>(widget);
    return isButton && !widget->property(spared).toBool();
}

} // namespace

EnterPress::EnterPress(QApplication& application)
{
    application.installEventFilter(this);
}

void EnterPress::spare(QAbstractButton& button)
{
    button.setProperty(spared, true);
}

bool EnterPress::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() != QEvent::KeyPress || !isEnter(*static_cast<QKeyEvent*>(event)))
        return false;
    const auto& press = *static_cast<const QKeyEvent*>(event);
    // Not in the dialog either that the button may have opened.
    if (press.isAutoRepeat() && m_pressing)
        return true;
    m_pressing = false;
    if (watched != QApplication::focusWidget() || !isPressed(watched))
        return false;
    auto& button = *static_cast<QAbstractButton*>(watched);
    if (qobject_cast<const QDialog*>(button.window()))
        return false;
    if (isPlainEnter(press) && !press.isAutoRepeat()) {
        m_pressing = true;
        button.click();
    }
    return true;
}
