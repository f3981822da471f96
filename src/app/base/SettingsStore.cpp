#include "app/base/SettingsStore.h"

#include "app/base/PrivateFile.h"
#include "app/base/SettingsLeftOvers.h"
#include "app/base/SettingsLock.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr QFile::Permissions ownerFile = QFile::ReadOwner | QFile::WriteOwner;
constexpr QFile::Permissions ownerFolder = ownerFile | QFile::ExeOwner;

/// False where the desktop keeps settings in a registry instead of a file.
bool isFile(const QString& path)
{
    return !path.startsWith(u'\\');
}

std::optional<QByteArray> contentOf(const QString& path)
{
    QFile file(path);
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly))
        return std::nullopt;
    return file.readAll();
}

QString notice(const char* text)
{
    return QCoreApplication::translate("SettingsStore", text);
}

} // namespace

SettingsStore::SettingsStore(const QString& filePath)
    : m_filePath(filePath)
    , m_backup(filePath)
    , m_check(folder())
{
    if (isFile(m_filePath)) {
        makePrivate();
        const SettingsLock lock(folder());
        m_check.removeLeftOvers();
        if (lock.isHeld())
            removeSettingsLeftOvers(m_filePath);
        repair();
        m_seen = contentOf(m_filePath);
    }
    open();
}

SettingsStore::~SettingsStore()
{
    if (!m_changes.isEmpty())
        static_cast<void>(sync());
}

QString SettingsStore::userFilePath()
{
    return QSettings(QSettings::NativeFormat, QSettings::UserScope, u"Tavoran"_s, u"Terminal"_s).fileName();
}

QVariant SettingsStore::value(QLatin1StringView key) const
{
    const auto change = m_changes.constFind(QString(key));
    return change == m_changes.cend() ? m_settings->value(QString(key)) : change->value_or(QVariant());
}

// Changes wait here, not in Qt's object: that would write them by itself at any time, whatever
// stands beside the file.
void SettingsStore::setValue(QLatin1StringView key, const QVariant& value)
{
    m_changes.insert(QString(key), value);
}

void SettingsStore::remove(QLatin1StringView key)
{
    m_changes.insert(QString(key), std::nullopt);
}

bool SettingsStore::sync()
{
    if (!isFile(m_filePath)) {
        writeChanges();
        return m_settings->status() == QSettings::NoError;
    }
    const SettingsLock lock(folder());
    if (lock.isHeld())
        removeSettingsLock(m_filePath);
    // Another terminal may have left half a save there.
    if (m_isUnrepaired || (!m_fileIsSuspect && contentOf(m_filePath) != m_seen)) {
        repair();
        open();
        if (m_isUnrepaired)
            return false;
    }
    if (!m_changes.isEmpty() && !mayWrite())
        return false;
    writeChanges();
    // If somebody has deleted the file meanwhile, Qt has made a new one under the usual umask.
    QFile::setPermissions(m_filePath, ownerFile);
    // Qt's status is no help here: good on a full disk, and bad for ever after one failure.
    const std::optional<QByteArray> content = contentOf(m_filePath);
    m_fileIsSuspect = !content || !matchesMemory(*content);
    if (m_fileIsSuspect) {
        // A full disk leaves a short file and no error. The next sync writes every value again; until then
        // the copy holds the last good state.
        const QStringList keys = m_settings->allKeys();
        for (const QString& key : keys)
            m_changes.insert(key, m_settings->value(key));
        return false;
    }
    m_seen = content;
    return m_backup.confirm(*content);
}

QString SettingsStore::damagedPath() const
{
    return m_filePath + ".damaged"_L1;
}

QStringList SettingsStore::takeNotices()
{
    return std::exchange(m_notices, {});
}

void SettingsStore::open()
{
    const QString path = m_isUnrepaired ? m_backup.copyPath() : m_filePath;
    if (!m_settings || m_settings->fileName() != path)
        m_settings = std::make_unique<QSettings>(path, QSettings::NativeFormat);
    // Qt reads a section when one of its keys is asked for, and misses keys that are written in full
    // elsewhere.
    static_cast<void>(m_settings->allKeys());
}

void SettingsStore::makePrivate()
{
    QDir().mkpath(QFileInfo(folder()).path());
    if (!QDir(folder()).exists())
        QDir().mkdir(folder(), ownerFolder);
    QFile::setPermissions(folder(), ownerFolder);
    if (QFileInfo::exists(m_filePath)) {
        QFile::setPermissions(m_filePath, ownerFile);
        return;
    }
    m_backup.forget();
    QFile file;
    // A failure shows at the first sync.
    static_cast<void>(openPrivateFile(file, m_filePath, QIODevice::WriteOnly | QIODevice::Append));
}

void SettingsStore::repair()
{
    // In a folder that cannot be written nothing can be checked or repaired.
    if (!QFileInfo(folder()).isWritable())
        return;
    const bool wasTold = std::exchange(m_isUnrepaired, false);
    const QByteArray damaged = repairDamage();
    if (m_isUnrepaired) {
        if (!wasTold)
            m_notices.append(notice(QT_TRANSLATE_NOOP("SettingsStore",
                "The settings file may be damaged, and there is no room to put it right. It stays as it is; "
                "its last good copy is used, and nothing is saved until there is room.")));
        return;
    }
    if (leaveOutUnsaved(damaged) || !damaged.isEmpty())
        m_notices.append(
            notice(QT_TRANSLATE_NOOP("SettingsStore", "The damaged settings file is kept as %1."))
                .arg(damagedPath()));
}

/// Gives what was set aside.
QByteArray SettingsStore::repairDamage()
{
    using State = SettingsBackup::State;
    const std::optional<QByteArray> content = contentOf(m_filePath);
    if (!content)
        return {};
    const State state = m_backup.stateOf(*content);
    // A copy that is just as damaged proves nothing.
    if (state == State::Saved && (m_backup.vouchesFor(*content) || !m_check.isDamaged(*content)))
        return {};
    const std::optional<bool> isWhole
        = state == State::Unconfirmed ? isWhatWasBeingSaved(*content) : std::optional(false);
    if (isWhole == true) {
        // A terminal was killed before it had looked at it. Without room the mark stays, and does no harm.
        static_cast<void>(m_backup.confirm(*content));
        return {};
    }
    const QByteArray copy = m_backup.copy();
    const bool copyIsGood = !copy.isEmpty() && (m_backup.vouchesFor(copy) || !m_check.isDamaged(copy));
    if (!isWhole && copyIsGood && !content->isEmpty()) {
        m_isUnrepaired = true; // it may be a whole save, or one that was cut
        return {};
    }
    // An edit by hand counts, unless it looks like a save that was cut: then the copy is put back, the edit
    // is kept aside, and the trader is told.
    const bool lacksSomething = copyIsGood && (state == State::Unconfirmed || state == State::Cut);
    if (!lacksSomething && !m_check.isDamaged(*content))
        return {};
    if (content->isEmpty() && !copyIsGood)
        return {}; // The first start.
    // What was cut from the copy is in the copy.
    const bool isKept = !content->isEmpty() && setAside(*content);
    const bool wouldBeLost = !isKept && !content->isEmpty() && state != State::Cut;
    if (copyIsGood) {
        if (wouldBeLost) {
            m_isUnrepaired = true;
            return {};
        }
        if (!m_backup.putBack())
            return {};
        m_notices.append(notice(QT_TRANSLATE_NOOP(
            "SettingsStore", "The settings file was damaged; its last good copy has been put back.")));
    } else {
        // The file is emptied only once its content is kept aside.
        if (!isKept || !replacePrivateFile(m_filePath, {}))
            return {};
        m_notices.append(notice(QT_TRANSLATE_NOOP("SettingsStore",
            "The settings file was damaged and there was no good copy; default settings are used.")));
    }
    return isKept ? *content : QByteArray();
}

/// Entries that Qt cannot write as it has read them would have each save refused. No terminal has saved them.
bool SettingsStore::leaveOutUnsaved(const QByteArray& damaged)
{
    const std::optional<QByteArray> content = contentOf(m_filePath);
    if (!content || content->isEmpty() || m_backup.vouchesFor(*content))
        return false;
    const std::optional<QByteArray> part = m_check.partToSave(*content);
    const QByteArray before = damaged.isEmpty() ? damaged : damaged + '\n';
    if (!part || !setAside(before + *content) || !replacePrivateFile(m_filePath, *part))
        return false;
    m_notices.append(notice(QT_TRANSLATE_NOOP(
        "SettingsStore", "The settings file had entries that cannot be saved; they have been left out.")));
    return true;
}

bool SettingsStore::setAside(const QByteArray& damaged) const
{
    // Kept for a look by hand, without the session token: signing out could not remove it there.
    QByteArray kept;
    for (const QByteArray& line : damaged.split('\n')) {
        if (!line.contains("token"))
            kept += line + '\n';
    }
    kept.chop(1);
    return replacePrivateFile(damagedPath(), kept);
}

/// Whether what is in the file now would survive a write that fails half-way.
bool SettingsStore::mayWrite()
{
    const std::optional<QByteArray> content = contentOf(m_filePath);
    const bool isWorthACopy = content && !content->isEmpty() && !m_fileIsSuspect;
    return (!isWorthACopy || m_backup.copyFrom(*content)) && m_backup.beginSave(digestOf(valuesToCome()));
}

SettingsValues SettingsStore::valuesToCome() const
{
    m_settings->sync(); // another terminal may have saved
    SettingsValues values = settingsValues(*m_settings);
    for (auto change = m_changes.cbegin(); change != m_changes.cend(); ++change) {
        if (change->has_value())
            values.insert(change.key(), comparable(**change));
        else
            values.remove(change.key());
    }
    return values;
}

void SettingsStore::writeChanges()
{
    const auto changes = std::exchange(m_changes, {});
    for (auto change = changes.cbegin(); change != changes.cend(); ++change) {
        if (change->has_value())
            m_settings->setValue(change.key(), **change);
        else
            m_settings->remove(change.key());
    }
    m_settings->sync();
}

bool SettingsStore::matchesMemory(const QByteArray& content) const
{
    return m_check
        .parsed(content,
            [this](const QSettings& onDisk) { return settingsValues(onDisk) == settingsValues(*m_settings); })
        .value_or(false);
}

std::optional<bool> SettingsStore::isWhatWasBeingSaved(const QByteArray& content) const
{
    return m_check.parsed(content,
        [this](const QSettings& onDisk) { return m_backup.wasToSave(digestOf(settingsValues(onDisk))); });
}

QString SettingsStore::folder() const
{
    return QFileInfo(m_filePath).path();
}
