#include "mainwindow/Reports.h"

#include "app/base/Log.h"

Reports::Reports(TerminalPane& toolbox, AccountLoader& accounts, TrayIcon* tray, QObject* parent)
    : QObject(parent)
    , m_toolbox(toolbox)
    , m_accounts(accounts)
    , m_tray(tray)
{
}

void Reports::journal(const QString& source, const QString& message)
{
    m_toolbox.journal(source, message);
    logReport(source, message);
}

void Reports::expert(const QString& source, const QString& message, LineKind kind)
{
    m_toolbox.expert(source, message);
    if (kind == LineKind::Failure)
        logReport(source, message);
}
