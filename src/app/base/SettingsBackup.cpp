#include "app/base/SettingsBackup.h"

#include "app/base/PrivateFile.h"

#include <QCryptographicHash>
#include <QFileInfo>

#include <cstdio>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QByteArray digestOf(const QByteArray& content)
{
    return QCryptographicHash::hash(content, QCryptographicHash::Sha256).toHex();
}

/// In one step, also over a file that is there.
bool moveFile(const QString& from, const QString& to)
{
    return std::rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) == 0;
}

} // namespace

SettingsBackup::SettingsBackup(QString filePath)
    : m_filePath(std::move(filePath))
{
}

SettingsBackup::State SettingsBackup::stateOf(const QByteArray& content) const
{
    const QByteArray saved = copy();
    if ((!content.isEmpty() && content == saved) || vouchesFor(content))
        return State::Saved;
    if (QFile::exists(savingPath()))
        return State::Unconfirmed;
    return content.size() < saved.size() && saved.startsWith(content) ? State::Cut : State::Other;
}

bool SettingsBackup::beginSave(const QByteArray& valuesDigest)
{
    const bool isThere = QFile::exists(savingPath()) || moveFile(digestPath(), savingPath());
    QFile mark;
    if (!openPrivateFile(mark, savingPath(), QIODevice::WriteOnly | QIODevice::Append))
        return isThere;
    // The digest before it stays as it is. Without room for this line a save that never ends is undone.
    if (mark.resize(digestInMark().size()) && mark.write('\n' + valuesDigest) > 0)
        settle(mark); // the new file may be there after a power cut, and then nothing else vouches for it
    return true;
}

bool SettingsBackup::wasToSave(const QByteArray& valuesDigest) const
{
    return contentOf(savingPath()).split('\n').value(1) == valuesDigest;
}

bool SettingsBackup::confirm(const QByteArray& content)
{
    if (!copyFrom(content))
        return false;
    // Without room for the digest nothing is lost: file and copy are equal, which proves as much.
    if (contentOf(digestPath()) != digestOf(content))
        writeDigest(content);
    // Without the folder on the disk a power cut would take back this save and those before it.
    if (QFile::remove(savingPath()))
        settleFolder(QFileInfo(m_filePath).path());
    return true;
}

bool SettingsBackup::copyFrom(const QByteArray& content) const
{
    return copy() == content || replacePrivateFile(copyPath(), content);
}

QByteArray SettingsBackup::copy() const
{
    return contentOf(copyPath());
}

bool SettingsBackup::vouchesFor(const QByteArray& content) const
{
    const QByteArray digest = digestOf(content);
    return contentOf(digestPath()) == digest || digestInMark() == digest;
}

bool SettingsBackup::putBack()
{
    return replacePrivateFile(m_filePath, copy()) || moveFile(copyPath(), m_filePath);
}

void SettingsBackup::forget()
{
    for (const QString& path : {copyPath(), digestPath(), savingPath()})
        QFile::remove(path);
}

QString SettingsBackup::copyPath() const
{
    return m_filePath + ".copy"_L1;
}

QString SettingsBackup::digestPath() const
{
    return m_filePath + ".digest"_L1;
}

QString SettingsBackup::savingPath() const
{
    return m_filePath + ".saving"_L1;
}

QByteArray SettingsBackup::digestInMark() const
{
    return contentOf(savingPath()).split('\n').constFirst();
}

void SettingsBackup::writeDigest(const QByteArray& content)
{
    QFile file;
    if (openPrivateFile(file, digestPath(), QIODevice::WriteOnly | QIODevice::Truncate))
        file.write(digestOf(content));
}
