#include "app/base/SettingsLeftOvers.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>

using namespace Qt::StringLiterals;

void removeSettingsLeftOvers(const QString& filePath)
{
    // Qt takes six letters by chance. A word has no capital within small ones.
    static const QRegularExpression chance(
        u"^(\\.copy|\\.damaged)?\\.(?=[A-Za-z]*[a-z])(?=[A-Za-z]+[A-Z])[A-Za-z]{6}$"_s);
    static const QRegularExpression locks(u"^\\.lock(\\.rmlock)+$"_s);
    const QFileInfo file(filePath);
    const QDir folder(file.path());
    const QStringList names
        = folder.entryList({file.fileName() + ".*"_L1}, QDir::Files | QDir::Hidden | QDir::System);
    for (const QString& name : names) {
        const QString end = name.mid(file.fileName().size());
        if (chance.match(end).hasMatch() || locks.match(end).hasMatch())
            QFile::remove(folder.filePath(name));
    }
    removeSettingsLock(filePath);
}

void removeSettingsLock(const QString& filePath)
{
    QFile::remove(filePath + ".lock"_L1);
}
