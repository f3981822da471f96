#include "mainwindow/TrayIcon.h"

#include "app/base/ServerText.h"
#include "app/ui/Theme.h"

namespace {

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
    //: brings the main window to the front
    connect(m_menu.addAction(tr("Show")), &QAction::triggered, this, &TrayIcon::showRequested);
    connect(m_menu.addAction(tr("Exit")), &QAction::triggered, this, &TrayIcon::exitRequested);
    m_icon.setContextMenu(&m_menu);
    connect(&m_icon, &QSystemTrayIcon::activated, this, [this](QSystemTrayIcon::ActivationReason reason) {
        if (reason == QSystemTrayIcon::Trigger || reason == QSystemTrayIcon::DoubleClick)
            Q_EMIT showRequested();
    });
    m_icon.show();
}

void TrayIcon::showBalloon(const Balloon& balloon)
{
    m_icon.showMessage(
        balloonText(balloon.title), balloonText(balloon.text), iconFor(balloon.kind), balloon.milliseconds);
}
