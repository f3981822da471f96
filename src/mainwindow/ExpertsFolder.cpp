#include "mainwindow/ExpertsFolder.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

using namespace Qt::StringLiterals;

ExpertsFolder::ExpertsFolder(QString path)
    : m_path(std::move(path))
{
}

QString ExpertsFolder::defaultPath()
{
    return QStandardPaths::writableLocation(QStandardPaths::AppDataLocation) + "/Experts"_L1;
}

QStringList ExpertsFolder::bundledExamples()
{
    return {u":/examples/MA_Cross.js"_s, u":/examples/RSI_Reversal.js"_s};
}

void ExpertsFolder::prepare(const QStringList& examples) const
{
    QDir().mkpath(m_path);
    if (!scripts().isEmpty())
        return;
    for (const QString& example : examples) {
        const QString target = QDir(m_path).filePath(QFileInfo(example).fileName());
        // Files inside the program are read-only, and a copy inherits that.
        if (QFile::copy(example, target))
            QFile::setPermissions(target, QFile::ReadOwner | QFile::WriteOwner);
    }
}

QStringList ExpertsFolder::scripts() const
{
    QStringList paths;
    const QFileInfoList files = QDir(m_path).entryInfoList({u"*.js"_s}, QDir::Files, QDir::Name);
    for (const QFileInfo& file : files)
        paths.append(file.absoluteFilePath());
    return paths;
}
