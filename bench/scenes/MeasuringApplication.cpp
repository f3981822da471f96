#include "scenes/MeasuringApplication.h"

using namespace Qt::StringLiterals;

MeasuringApplication::MeasuringApplication(int& argumentCount, char** arguments, const char* screenFile)
{
    for (const char* variable : {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME", "TMPDIR"})
        qputenv(variable, m_folders.path().toLocal8Bit());
    qputenv("QT_QPA_PLATFORM", QByteArray("offscreen:configfile=") + screenFile);
    m_application.emplace(argumentCount, arguments);
    QCoreApplication::setOrganizationName(u"Tavoran"_s);
    QCoreApplication::setApplicationName(u"Tavoran Terminal"_s);
}

MeasuringApplication::~MeasuringApplication() = default;
