#include "mainwindow/TabStops.h"

#include <QAbstractScrollArea>

namespace {

bool canBeSeen(const QWidget& widget)
{
    // What a list shows covers the list itself.
    const auto* area = qobject_cast<const QAbstractScrollArea*>(&widget);
    const QWidget* shown = area ? area->viewport() : &widget;
    return shown->isVisible() && !shown->visibleRegion().isEmpty();
}

} // namespace

bool isTabStop(const QWidget& widget)
{
    return (widget.focusPolicy() & Qt::TabFocus) && !widget.focusProxy() && widget.isEnabled()
        && canBeSeen(widget);
}

QWidget* nextTabStop(QWidget& window, bool forward)
{
    QWidget* const from = window.focusWidget() ? window.focusWidget() : &window;
    const auto after = [forward](const QWidget& widget) {
        return forward ? widget.nextInFocusChain() : widget.previousInFocusChain();
    };
    for (QWidget* widget = after(*from); widget && widget != from; widget = after(*widget)) {
        if (widget->window() == &window && isTabStop(*widget))
            return widget;
    }
    return nullptr;
}
