#include "experts/ExpertScript.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

QString ExpertScript::nameOf(const QString& path)
{
    return QFileInfo(path).completeBaseName();
}

std::optional<ExpertScript> ExpertScript::read(const QString& path, QString& error)
{
    QFile file(path);
    // A pipe would keep the terminal waiting for a writer.
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly)) {
        error = QCoreApplication::translate("ExpertEngine", "Cannot open %1").arg(path);
        return std::nullopt;
    }
    if (file.size() > largestFile) {
        error = QCoreApplication::translate("ExpertEngine", "%1 is too large for a script").arg(path);
        return std::nullopt;
    }
    return ExpertScript{nameOf(path), QFileInfo(path).fileName(), QString::fromUtf8(file.readAll())};
}
