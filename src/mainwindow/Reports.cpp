#include "mainwindow/Reports.h"

#include "app/base/Log.h"
#include "app/base/TerminalSettings.h"
#include "panes/TerminalPane.h"

Reports::Reports(TerminalPane& toolbox, TerminalSettings& settings, TrayIcon* tray, QObject* parent)
    : QObject(parent)
    , m_toolbox(toolbox)
    , m_settings(settings)
    , m_tray(tray)
{
}

Reports::~Reports()
{
    m_settings.setTeller({});
}

void Reports::followSettings()
{
    m_settings.setTeller([this](const QString& notice) { journal(tr("Terminal"), notice); });
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
