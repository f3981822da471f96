#include "app/ui/FocusMark.h"

#include "app/ui/FocusRing.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAbstractSpinBox>
#include <QApplication>
#include <QComboBox>
#include <QFocusEvent>
#include <QLineEdit>
#include <QMenuBar>
#include <QTabBar>

namespace {

bool isControl(const QWidget& widget)
{
    return qobject_cast<const QAbstractButton*>(&widget) || qobject_cast<const QAbstractSpinBox*>(&widget)
        || qobject_cast<const QComboBox*>(&widget) || qobject_cast<const QLineEdit*>(&widget);
}

/// The part of a list that has the keyboard: the current row, or all of it where there is none in sight.
QRect rowOf(const QAbstractItemView& list)
{
    const QRect all = list.viewport()->rect();
    const QRect cell = list.visualRect(list.currentIndex());
    const QRect row = QRect(all.left(), cell.top(), all.width(), cell.height()) & all;
    return cell.isEmpty() || row.isEmpty() ? all : row;
}

QRect inWindow(const QWidget& widget, const QRect& part)
{
    return {widget.mapTo(widget.window(), part.topLeft()), part.size()};
}

FocusRing::Place placeFor(const QWidget& widget)
{
    if (const auto* list = qobject_cast<const QAbstractItemView*>(&widget))
        return {inWindow(*list->viewport(), rowOf(*list)), FocusRing::Thin};
    if (const auto* tabs = qobject_cast<const QTabBar*>(&widget))
        return {inWindow(widget, tabs->tabRect(tabs->currentIndex()) & widget.rect()), FocusRing::Thin};
    if (isControl(widget)) {
        // Half outside, so that it stands out from what the control lies on, and hides none of its text.
        constexpr int outside = FocusRing::Thick / 2;
        const QRect around = widget.rect().adjusted(-outside, -outside, outside, outside);
        return {inWindow(widget, around) & widget.window()->rect(), FocusRing::Thick};
    }
    return {inWindow(widget, widget.rect()), FocusRing::Thin};
}

/// Whether the keyboard goes to another window, or comes back from there.
bool isVisit(Qt::FocusReason reason)
{
    return reason == Qt::ActiveWindowFocusReason || reason == Qt::PopupFocusReason
        || reason == Qt::MenuBarFocusReason;
}

/// Whether this is the widget or a part of it, such as the rows of a list.
bool liesOn(const QWidget& widget, const QObject* part)
{
    return part == &widget
        || (part->isWidgetType() && widget.isAncestorOf(static_cast<const QWidget*>(part)));
}

bool isMarkable(const QWidget& widget)
{
    // Menus and lists that pop up show their current entry anyway.
    return !widget.isWindow() && widget.window()->windowType() != Qt::Popup
        && !qobject_cast<const QMenuBar*>(&widget);
}

/// Keys that do nothing by themselves; the mouse is used with them too.
bool isModifier(int key)
{
    return (key >= Qt::Key_Shift && key <= Qt::Key_Alt) || key == Qt::Key_AltGr
        || (key >= Qt::Key_Super_L && key <= Qt::Key_Hyper_R);
}

} // namespace

FocusMark::FocusMark(QApplication& application)
{
    application.installEventFilter(this);
}

FocusMark::~FocusMark()
{
    delete m_ring;
}

bool FocusMark::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::ShortcutOverride: // all that is seen of a key that is a shortcut
    case QEvent::KeyPress:
        if (!isModifier(static_cast<QKeyEvent*>(event)->key()))
            onKey();
        break;
    case QEvent::MouseButtonPress:
    case QEvent::TouchBegin:
        onPress(*watched);
        break;
    case QEvent::FocusIn:
        if (watched->isWidgetType())
            onFocusIn(*static_cast<QWidget*>(watched), *static_cast<QFocusEvent*>(event));
        break;
    case QEvent::FocusOut:
        onFocusOut(*watched, isVisit(static_cast<QFocusEvent*>(event)->reason()));
        break;
    case QEvent::Paint: // the current row or tab may be another one, or elsewhere
        if (m_marked && isPaintedFor(watched) && placeFor(*m_marked) != m_place)
            follow();
        break;
    case QEvent::Move:
    case QEvent::Resize:
    case QEvent::Show:
    case QEvent::Hide:
        if (m_marked && carriesMarked(watched))
            follow();
        break;
    default:
        break;
    }
    return false;
}

bool FocusMark::isPaintedFor(const QObject* watched) const
{
    if (const auto* list = qobject_cast<const QAbstractItemView*>(m_marked))
        return watched == list->viewport();
    return watched == m_marked && qobject_cast<const QTabBar*>(m_marked);
}

bool FocusMark::carriesMarked(const QObject* watched) const
{
    return watched == m_marked
        || (watched->isWidgetType() && static_cast<const QWidget*>(watched)->isAncestorOf(m_marked));
}

void FocusMark::onKey()
{
    m_byKey = true;
    QWidget* focus = QApplication::focusWidget();
    // Nobody has shown where the keyboard is, as after the start.
    if (focus && !m_marked && focus != m_pressed && !QApplication::activePopupWidget())
        mark(*focus);
}

void FocusMark::onPress(const QObject& target)
{
    m_byKey = false;
    // Elsewhere the keyboard may stay where it is, and then it has to be seen there.
    m_left.removeIf([&target](const QPointer<QWidget>& left) { return !left || liesOn(*left, &target); });
    QWidget* focus = QApplication::focusWidget();
    if (!focus || !liesOn(*focus, &target))
        return;
    m_pressed = focus;
    unmark();
}

void FocusMark::onFocusIn(QWidget& widget, const QFocusEvent& event)
{
    // A dialog tells its first field of a focus that it only gets later.
    if (&widget != QApplication::focusWidget())
        return;
    const Qt::FocusReason reason = event.reason();
    if (reason == Qt::MouseFocusReason)
        m_pressed = &widget;
    const bool isBack = isVisit(reason) && m_left.removeAll(&widget) > 0;
    // The reason tells little: a chart that Enter opens has another one than one that Tab leads to, and Qt
    // says "Tab" too when it moves the focus away from what the mouse has closed.
    if (isBack || (m_byKey && &widget != m_pressed))
        mark(widget);
    else
        unmark();
}

void FocusMark::onFocusOut(const QObject& widget, bool isForVisit)
{
    if (&widget == m_pressed && !isForVisit)
        m_pressed = nullptr;
    if (&widget != m_marked)
        return;
    if (isForVisit)
        m_left.append(m_marked);
    unmark();
}

void FocusMark::mark(QWidget& widget)
{
    if (!isMarkable(widget))
        return unmark();
    m_marked = &widget;
    connect(&widget, &QObject::destroyed, this, &FocusMark::onDestroyed, Qt::UniqueConnection);
    follow();
}

void FocusMark::unmark()
{
    m_marked = nullptr;
    if (m_ring)
        m_ring->hide();
}

void FocusMark::onDestroyed()
{
    if (!m_marked) // it was this one
        unmark();
}

void FocusMark::follow()
{
    if (m_following)
        return;
    m_following = true;
    QMetaObject::invokeMethod(this, &FocusMark::place, Qt::QueuedConnection);
}

void FocusMark::place()
{
    m_following = false;
    if (!m_marked || !m_marked->isVisible()) {
        unmark();
        return;
    }
    QWidget* window = m_marked->window();
    if (!m_ring || m_ring->parentWidget() != window) {
        delete m_ring;
        m_ring = new FocusRing(*window);
    }
    m_place = placeFor(*m_marked);
    m_ring->showAlong(m_place);
}
