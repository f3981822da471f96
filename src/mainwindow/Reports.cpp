#include "mainwindow/Reports.h"

#include "app/Log.h"

using namespace Qt::StringLiterals;

Reports::Reports(TerminalPane& toolbox, AccountFlow& accounts, TrayIcon* tray, QObject* parent)
    : QObject(parent)
    , m_toolbox(toolbox)
    , m_accounts(accounts)
    , m_tray(tray)
{
}

void Reports::journal(const QString& source, const QString& message)
{
    m_toolbox.journal(source, message);
    appLog(u"[%1] %2"_s.arg(source, message));
}
