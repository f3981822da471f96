#include "support/TestMain.h"

#include <QDir>
#include <QTemporaryDir>

void usePrivateFolders()
{
    static const QTemporaryDir root(QDir::tempPath() + QStringLiteral("/tavoran-test-XXXXXX"));
    const auto provide = [](const char* variable, const QString& name) {
        const QString path = root.filePath(name);
        QDir().mkpath(path);
        QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        qputenv(variable, path.toLocal8Bit());
    };
    provide("HOME", QStringLiteral("home"));
    provide("XDG_CONFIG_HOME", QStringLiteral("config"));
    provide("XDG_DATA_HOME", QStringLiteral("data"));
    provide("XDG_CACHE_HOME", QStringLiteral("cache"));
    provide("XDG_RUNTIME_DIR", QStringLiteral("runtime"));
    provide("TMPDIR", QStringLiteral("tmp"));
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
}
