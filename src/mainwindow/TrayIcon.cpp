#include "mainwindow/TrayIcon.h"

#include "app/ServerText.h"
#include "app/Theme.h"

#include <algorithm>

namespace {

constexpr int turnMs = 4000;

bool isUrgent(const Balloon& balloon)
{
    return balloon.kind == Balloon::Kind::Critical;
}

QSystemTrayIcon::MessageIcon iconFor(Balloon::Kind kind)
{
    switch (kind) {
    case Balloon::Kind::Warning:
        return QSystemTrayIcon::Warning;
    case Balloon::Kind::Critical:
        return QSystemTrayIcon::Critical;
    case Balloon::Kind::Information:
        break;
    }
    return QSystemTrayIcon::Information;
}

} // namespace

TrayIcon::TrayIcon(QObject* parent)
    : QObject(parent)
    , m_icon(appIcon())
{
    m_icon.setToolTip(tr("Tavoran Terminal"));
    connect(m_menu.addAction(tr("Show")), &QAction::triggered, this, &TrayIcon::showRequested);
    connect(m_menu.addAction(tr("Exit")), &QAction::triggered, this, &TrayIcon::exitRequested);
    m_icon.setContextMenu(&m_menu);
    connect(&m_icon, &QSystemTrayIcon::activated, this, [this](QSystemTrayIcon::ActivationReason reason) {
        if (reason == QSystemTrayIcon::Trigger || reason == QSystemTrayIcon::DoubleClick)
            Q_EMIT showRequested();
    });
    connect(&m_icon, &QSystemTrayIcon::messageClicked, this, &TrayIcon::showNext); // it is gone by then
    m_turn.setSingleShot(true);
    connect(&m_turn, &QTimer::timeout, this, &TrayIcon::showNext);
    m_icon.show();
}

void TrayIcon::showBalloon(const Balloon& balloon)
{
    if (isUrgent(balloon))
        m_waiting.insert(std::find_if_not(m_waiting.cbegin(), m_waiting.cend(), isUrgent), balloon);
    else if (m_waiting.size() < mostWaiting)
        m_waiting.append(balloon);
    if (!m_turn.isActive())
        showNext();
}

void TrayIcon::showNext()
{
    m_turn.stop();
    if (m_waiting.isEmpty())
        return;
    const Balloon balloon = m_waiting.takeFirst();
    m_turn.start(turnMs);
    m_icon.showMessage(
        balloonText(balloon.title), balloonText(balloon.text), iconFor(balloon.kind), balloon.milliseconds);
}
