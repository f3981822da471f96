#include "app/ui/MenuKey.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QKeyEvent>

MenuKey::MenuKey(QApplication& application)
{
    application.installEventFilter(this);
}

bool MenuKey::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() != QEvent::KeyPress || watched != QApplication::focusWidget())
        return false;
    const auto* press = static_cast<QKeyEvent*>(event);
    if (press->key() != Qt::Key_F10 || press->modifiers() != Qt::ShiftModifier)
        return false;
    if (press->isAutoRepeat())
        return true;
    // Where Qt opens it for the menu key: at the current row or the text cursor.
    auto& widget = *static_cast<QWidget*>(watched);
    const QPoint place = widget.inputMethodQuery(Qt::ImCursorRectangle).toRect().center();
    QContextMenuEvent menu(QContextMenuEvent::Keyboard, place, widget.mapToGlobal(place), press->modifiers());
    QCoreApplication::sendEvent(&widget, &menu);
    return true;
}
