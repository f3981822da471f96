#include "support/TestMain.h"

#include <QDir>
#include <QFileInfo>
#include <QMap>
#include <QTemporaryDir>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

QMap<QString, TestRegistry::Run>& classes()
{
    static QMap<QString, TestRegistry::Run> known;
    return known;
}

/// In memory where there is such a folder: a disk takes its time to confirm each of thousands of small files.
QString placeForFolders()
{
    const QString memory = u"/dev/shm"_s;
    return QFileInfo(memory).isWritable() ? memory : QDir::tempPath();
}

} // namespace

TestRegistry::TestRegistry(const char* path, Run run)
{
    classes().insert(QFileInfo(QString::fromUtf8(path)).completeBaseName(), run);
}

int TestRegistry::runNamed(int argc, char** argv)
{
    const QString name = argc > 1 ? QString::fromLocal8Bit(argv[1]) : QString();
    const Run run = classes().value(name);
    if (!run) {
        std::fprintf(stderr, "Say which, and what else Qt Test is to know: %s\n",
            qPrintable(classes().keys().join(u' ')));
        return 2;
    }
    argv[1] = argv[0];
    return run(argc - 1, argv + 1);
}

void usePrivateFolders()
{
    static const QTemporaryDir root(placeForFolders() + QStringLiteral("/tavoran-test-XXXXXX"));
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
