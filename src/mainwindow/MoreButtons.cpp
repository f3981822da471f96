#include "mainwindow/MoreButtons.h"

#include <QAction>
#include <QApplication>
#include <QKeyEvent>
#include <QToolBar>
#include <QToolButton>

#include <algorithm>

namespace {

bool isPlainEscape(const QKeyEvent& press)
{
    return press.key() == Qt::Key_Escape && press.modifiers() == Qt::NoModifier;
}

} // namespace

MoreButtons::MoreButtons(QToolBar& bar, QToolButton& arrow)
    : QObject(&bar)
    , m_bar(bar)
    , m_arrow(arrow)
{
    m_arrow.installEventFilter(this);
    for (QToolButton* button : buttons())
        button->installEventFilter(this);
    connect(&m_arrow, &QToolButton::toggled, this, &MoreButtons::onToggled);
    connect(qApp, &QApplication::focusChanged, this,
        [this](const QWidget* /*before*/, const QWidget* now) { onFocusChanged(now); });
}

QList<QToolButton*> MoreButtons::buttons() const
{
    QList<QToolButton*> buttons;
    for (QAction* action : m_bar.actions()) {
        if (auto* button = qobject_cast<QToolButton*>(m_bar.widgetForAction(action)))
            buttons.append(button);
    }
    return buttons;
}

QList<QToolButton*> MoreButtons::inOrder() const
{
    QList<QToolButton*> all = buttons();
    const bool parts = isUnfolded() && !m_behind.isEmpty();
    all.insert(parts ? all.indexOf(m_behind.constFirst()) : all.size(), &m_arrow);
    return all;
}

bool MoreButtons::isUnfolded() const
{
    // Where even the unfolded toolbar has no room, Qt makes a menu of it, which has the keys for itself.
    return m_arrow.isChecked() && !m_arrow.menu();
}

bool MoreButtons::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Show && watched == m_wanted && m_arrow.hasFocus()) {
        m_wanted->setFocus(Qt::TabFocusReason);
        m_wanted = nullptr;
    }
    if (event->type() != QEvent::KeyPress || !isPlainEscape(*static_cast<QKeyEvent*>(event)) || !isUnfolded())
        return false;
    m_arrow.setFocus(Qt::BacktabFocusReason);
    fold();
    return true;
}

void MoreButtons::onToggled(bool unfolded)
{
    m_wanted = nullptr;
    if (unfolded) {
        m_behind = buttons();
        m_behind.removeIf([](const QToolButton* button) { return button->isVisible(); });
        m_entered = m_arrow.hasFocus();
        const auto usable = std::find_if(m_behind.cbegin(), m_behind.cend(),
            [](const QToolButton* button) { return button->isEnabled(); });
        if (m_entered && usable != m_behind.cend())
            m_wanted = *usable;
        return;
    }
    m_entered = false;
    // Qt folds them as well, when the mouse leaves. A dialog may have the keyboard until later.
    auto* focus = qobject_cast<QToolButton*>(m_bar.window()->focusWidget());
    if (m_behind.contains(focus))
        m_arrow.setFocus(Qt::BacktabFocusReason);
}

void MoreButtons::onFocusChanged(const QWidget* now)
{
    if (!now || !isUnfolded())
        return;
    if (m_bar.isAncestorOf(now))
        m_entered = true;
    else if (m_entered)
        fold();
}

void MoreButtons::fold()
{
    m_arrow.click();
}
