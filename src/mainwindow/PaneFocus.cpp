#include "mainwindow/PaneFocus.h"

#include "mainwindow/PaneRing.h"
#include "mainwindow/TabStops.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QKeyEvent>
#include <QShortcut>

#include <algorithm>

namespace {

QWidget* firstTabStop(const QList<QWidget*>& widgets)
{
    const auto stop
        = std::find_if(widgets.begin(), widgets.end(), [](const QWidget* w) { return isTabStop(*w); });
    return stop == widgets.end() ? nullptr : *stop;
}

/// The list on show, else the first widget that Tab comes to.
QWidget* usualEntrance(const QList<QWidget*>& frames)
{
    QList<QWidget*> lists;
    QList<QWidget*> others;
    for (const QWidget* frame : frames) {
        for (QWidget* widget : frame->findChildren<QWidget*>())
            (qobject_cast<QAbstractItemView*>(widget) ? lists : others).append(widget);
    }
    return firstTabStop(lists + others);
}

QWidget* entranceOf(const PaneFocus::Pane& pane)
{
    if (!pane.entrance)
        return usualEntrance(pane.frames);
    QWidget* entrance = pane.entrance();
    if (entrance && entrance->focusProxy())
        entrance = entrance->focusProxy();
    return entrance && isTabStop(*entrance) ? entrance : nullptr;
}

void enter(QWidget& widget)
{
    if (!widget.isActiveWindow()) // a floating pane, or the way back from it
        widget.activateWindow();
    widget.setFocus(Qt::ShortcutFocusReason);
}

bool isPlainEscape(const QEvent* event)
{
    if (event->type() != QEvent::KeyPress)
        return false;
    const auto* press = static_cast<const QKeyEvent*>(event);
    return press->key() == Qt::Key_Escape && press->modifiers() == Qt::NoModifier;
}

} // namespace

PaneFocus::PaneFocus(QWidget& window, const QList<Pane>& panes)
    : QObject(&window)
    , m_panes(panes)
{
    connect(new QShortcut(Qt::Key_F6, &window), &QShortcut::activated, this, [this] { go(true); });
    connect(
        new QShortcut(Qt::SHIFT | Qt::Key_F6, &window), &QShortcut::activated, this, [this] { go(false); });

    window.installEventFilter(this);
    // A floating pane is a window of its own, beyond which no key goes.
    for (const Pane& pane : m_panes) {
        for (QWidget* frame : pane.frames)
            frame->installEventFilter(this);
    }
}

qsizetype PaneFocus::currentPane() const
{
    const QWidget* focus = QApplication::focusWidget();
    const auto holdsFocus = [focus](const Pane& pane) {
        return std::any_of(pane.frames.begin(), pane.frames.end(),
            [focus](const QWidget* frame) { return frame == focus || frame->isAncestorOf(focus); });
    };
    const auto pane = std::find_if(m_panes.begin(), m_panes.end(), holdsFocus);
    return !focus || pane == m_panes.end() ? -1 : pane - m_panes.begin();
}

void PaneFocus::go(bool forward)
{
    QList<bool> onShow;
    for (const Pane& pane : m_panes)
        onShow.append(entranceOf(pane) != nullptr);
    const qsizetype next = nextPane(onShow, currentPane(), forward);
    if (next >= 0)
        enter(*entranceOf(m_panes.at(next)));
}

bool PaneFocus::returnToFirst()
{
    QWidget* first = entranceOf(m_panes.constFirst());
    if (!first || first == QApplication::focusWidget())
        return false;
    enter(*first);
    return true;
}

bool PaneFocus::eventFilter(QObject* /*watched*/, QEvent* event)
{
    // Keys arrive here only after the widget with the focus had no use for them.
    return isPlainEscape(event) && returnToFirst();
}
