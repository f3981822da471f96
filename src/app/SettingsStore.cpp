#include "app/SettingsStore.h"

#include "app/PrivateFile.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QTemporaryFile>

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

/// Whether the last value's quotes are still open, as in a file that was cut off half-way. The
/// toolkit takes all that follows an open quote as part of the value and reports nothing.
bool endsInsideQuotes(const QByteArray& content)
{
    bool quoted = false;
    bool comment = false;
    for (qsizetype i = 0; i < content.size(); ++i) {
        const char c = content[i];
        if (c == '\n' || c == '\r')
            comment = false;
        else if (comment)
            continue;
        else if (c == '\\')
            ++i;
        else if (c == '"')
            quoted = !quoted;
        else if (c == ';' && !quoted)
            comment = true;
    }
    return quoted;
}

/// The toolkit's parser takes nearly anything. What it writes itself holds no control characters,
/// closes its quotes, and a store that is not empty holds at least one "key=value".
bool looksWritten(const QByteArray& content)
{
    const auto isForeign = [](char c) {
        const auto code = static_cast<unsigned char>(c);
        return (code < 0x20 && c != '\n' && c != '\r' && c != '\t') || code == 0x7f;
    };
    return content.contains('=') && std::none_of(content.cbegin(), content.cend(), isForeign)
        && !endsInsideQuotes(content);
}

/// Parses `content` as the toolkit would and hands the result to `look`; false when it is damaged.
/// The toolkit parses files only, hence the short-lived private one in `folder`.
template <typename Look> bool parsed(const QByteArray& content, const QString& folder, Look look)
{
    QTemporaryFile file(folder + "/Terminal.check.XXXXXX"_L1);
    if (!file.open() || file.write(content) != content.size() || !file.flush())
        return false;
    const QSettings settings(file.fileName(), QSettings::IniFormat);
    return settings.status() == QSettings::NoError && look(settings);
}

bool isSound(const QByteArray& content, const QString& folder)
{
    return looksWritten(content) && parsed(content, folder, [](const QSettings&) { return true; });
}

QString notice(const char* text)
{
    return QCoreApplication::translate("SettingsStore", text);
}

} // namespace

SettingsStore::SettingsStore(const QString& filePath)
    : m_filePath(filePath)
{
    if (isFile(m_filePath)) {
        makePrivate();
        repair();
    }
    m_settings = std::make_unique<QSettings>(m_filePath, QSettings::NativeFormat);
}

QString SettingsStore::userFilePath()
{
    return QSettings(QSettings::NativeFormat, QSettings::UserScope, u"Tavoran"_s, u"Terminal"_s).fileName();
}

QVariant SettingsStore::value(QLatin1StringView key) const
{
    return m_settings->value(QString(key));
}

void SettingsStore::setValue(QLatin1StringView key, const QVariant& value)
{
    m_settings->setValue(QString(key), value);
}

void SettingsStore::remove(QLatin1StringView key)
{
    m_settings->remove(QString(key));
}

bool SettingsStore::sync()
{
    m_settings->sync();
    if (!isFile(m_filePath))
        return m_settings->status() == QSettings::NoError;
    // Made anew under the usual umask when somebody deleted it meanwhile.
    QFile::setPermissions(m_filePath, ownerFile);
    // The toolkit's status is no help here: good on a full disk, and bad for ever after one failure.
    const std::optional<QByteArray> content = contentOf(m_filePath);
    if (!content)
        return false;
    if (!matchesMemory(*content)) {
        // A full disk leaves a short file and no error. Mark every value as changed, so that the next
        // sync writes them again; until then the copy holds the last good state.
        const QStringList keys = m_settings->allKeys();
        for (const QString& key : keys)
            m_settings->setValue(key, m_settings->value(key));
        return false;
    }
    return contentOf(copyPath()) == content || replacePrivateFile(copyPath(), *content);
}

QString SettingsStore::copyPath() const
{
    return m_filePath + ".copy"_L1;
}

QString SettingsStore::damagedPath() const
{
    return m_filePath + ".damaged"_L1;
}

QStringList SettingsStore::takeNotices()
{
    return std::exchange(m_notices, {});
}

void SettingsStore::makePrivate()
{
    const QString folder = QFileInfo(m_filePath).path();
    QDir().mkpath(QFileInfo(folder).path());
    if (!QDir(folder).exists())
        QDir().mkdir(folder, ownerFolder);
    QFile::setPermissions(folder, ownerFolder);
    if (QFileInfo::exists(m_filePath)) {
        QFile::setPermissions(m_filePath, ownerFile);
        return;
    }
    QFile::remove(copyPath());
    QFile file;
    // A failure shows at the first sync.
    static_cast<void>(openPrivateFile(file, m_filePath, QIODevice::WriteOnly | QIODevice::Append));
}

void SettingsStore::repair()
{
    const std::optional<QByteArray> content = contentOf(m_filePath);
    const QString folder = QFileInfo(m_filePath).path();
    // In a folder that cannot be written nothing can be checked or repaired.
    if (!content || !QFileInfo(folder).isWritable() || isSound(*content, folder))
        return;
    const QByteArray copy = contentOf(copyPath()).value_or(QByteArray());
    const bool copyIsSound = isSound(copy, folder);
    if (content->isEmpty() && !copyIsSound)
        return; // The first start.
    if (!content->isEmpty())
        setAside(*content);
    if (!replacePrivateFile(m_filePath, copyIsSound ? copy : QByteArray()))
        return;
    m_notices.append(copyIsSound
            ? notice(QT_TRANSLATE_NOOP(
                "SettingsStore", "The settings file was damaged; its last good copy has been put back."))
            : notice(QT_TRANSLATE_NOOP("SettingsStore",
                "The settings file was damaged and there was no good copy; default settings are used.")));
    if (!content->isEmpty())
        m_notices.append(
            notice(QT_TRANSLATE_NOOP("SettingsStore", "The damaged settings file is kept as %1."))
                .arg(damagedPath()));
}

void SettingsStore::setAside(const QByteArray& damaged) const
{
    // Kept for a look by hand, without the session token: signing out could not remove it there.
    QByteArray kept;
    for (const QByteArray& line : damaged.split('\n')) {
        if (!line.contains("token"))
            kept += line + '\n';
    }
    kept.chop(1);
    static_cast<void>(replacePrivateFile(damagedPath(), kept));
}

bool SettingsStore::matchesMemory(const QByteArray& content) const
{
    return parsed(content, QFileInfo(m_filePath).path(), [this](const QSettings& onDisk) {
        const QStringList keys = m_settings->allKeys();
        return onDisk.allKeys() == keys && std::all_of(keys.cbegin(), keys.cend(), [&](const QString& key) {
            return onDisk.value(key).toString() == m_settings->value(key).toString();
        });
    });
}
