#include "app/base/SettingsCheck.h"

#include <QDir>
#include <QSettings>
#include <QTemporaryFile>

#include <algorithm>
#include <utility>

#ifdef Q_OS_UNIX
#include <sys/file.h>
#endif

using namespace Qt::StringLiterals;

namespace {

constexpr auto prefix = "Terminal.check."_L1;

/// Whether the last value's quotes are still open, as in a file that was cut off half-way.
/// Qt takes all that follows an open quote as part of the value and reports nothing.
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

/// Qt's parser takes nearly anything. What it writes itself holds no control characters,
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

/// Whether Qt can look the key up, which it does by another form where there are slashes too many.
bool isReachable(const QString& key)
{
    return !key.isEmpty() && !key.startsWith(u'/') && !key.endsWith(u'/') && !key.contains("//"_L1);
}

/// Tells other terminals that the file is in use, until it is closed or this process ends in any way. True
/// when no other terminal is using it.
bool claim([[maybe_unused]] const QFile& file)
{
#ifdef Q_OS_UNIX
    return ::flock(file.handle(), LOCK_EX | LOCK_NB) == 0;
#else
    return true; // files in use cannot be removed there
#endif
}

} // namespace

SettingsCheck::SettingsCheck(QString folder)
    : m_folder(std::move(folder))
{
}

std::unique_ptr<QFile> SettingsCheck::fileWith(const QByteArray& content) const
{
    auto file = std::make_unique<QTemporaryFile>(m_folder + u'/' + prefix + "XXXXXX"_L1);
    if (!file->open())
        return {};
    claim(*file);
    if (file->write(content) != content.size() || !file->flush())
        return {};
    return file;
}

std::optional<bool> SettingsCheck::parsed(
    const QByteArray& content, const std::function<bool(const QSettings&)>& look) const
{
    const std::unique_ptr<QFile> file = fileWith(content);
    if (!file)
        return std::nullopt;
    const QSettings settings(file->fileName(), QSettings::IniFormat);
    return settings.status() == QSettings::NoError && look(settings);
}

bool SettingsCheck::isDamaged(const QByteArray& content) const
{
    return !looksWritten(content) || !parsed(content, [](const QSettings&) { return true; }).value_or(true);
}

std::optional<SettingsValues> SettingsCheck::entriesOf(const QByteArray& content) const
{
    SettingsValues entries;
    const bool isRead = parsed(content, [&entries](const QSettings& settings) {
        entries = settingsValues(settings);
        return true;
    }).value_or(false);
    return isRead ? std::optional(entries) : std::nullopt;
}

std::optional<QByteArray> SettingsCheck::savedAgain(
    const QByteArray& content, const std::function<void(QSettings&)>& change) const
{
    const std::unique_ptr<QFile> file = fileWith(content);
    if (!file)
        return std::nullopt;
    QSettings settings(file->fileName(), QSettings::IniFormat);
    change(settings);
    settings.sync();
    // Qt has put another file there. It has done so, too, where it calls the format of the content wrong.
    QFile saved(file->fileName());
    if (settings.status() == QSettings::AccessError || !saved.open(QIODevice::ReadOnly))
        return std::nullopt;
    return saved.readAll();
}

bool SettingsCheck::isSavedWhole(const QByteArray& content, SettingsValues entries) const
{
    // Qt writes only where something has changed.
    const QString another = u"Terminal/check"_s;
    const std::optional<QByteArray> saved
        = savedAgain(content, [&](QSettings& settings) { settings.setValue(another, u"1"_s); });
    const std::optional<SettingsValues> again = saved ? entriesOf(*saved) : std::nullopt;
    entries.insert(another, comparable(u"1"_s));
    return !again || *again == entries;
}

std::optional<QByteArray> SettingsCheck::partToSave(const QByteArray& content) const
{
    const std::optional<SettingsValues> read = entriesOf(content);
    if (!read || isSavedWhole(content, *read))
        return std::nullopt;
    const std::optional<QByteArray> part = savedAgain({}, [&](QSettings& settings) {
        static_cast<void>(parsed(content, [&settings](const QSettings& from) {
            const QStringList keys = from.allKeys();
            for (const QString& key : keys) {
                if (isReachable(key))
                    settings.setValue(key, from.value(key));
            }
            return true;
        }));
    });
    const std::optional<SettingsValues> kept = part ? entriesOf(*part) : std::nullopt;
    const bool isFaithful = kept && std::all_of(kept->keyBegin(), kept->keyEnd(), [&](const QString& key) {
        return read->contains(key) && kept->value(key) == read->value(key);
    });
    return isFaithful ? part : std::nullopt;
}

void SettingsCheck::removeLeftOvers() const
{
    const QDir folder(m_folder);
    const QStringList names = folder.entryList({prefix + "*"_L1}, QDir::Files | QDir::Hidden | QDir::System);
    for (const QString& name : names) {
        QFile file(folder.filePath(name));
        // No terminal makes links, so a link is removed without a look at what it points to.
        if (QFileInfo(file).isSymLink() || !file.open(QIODevice::ReadOnly) || claim(file))
            file.remove();
    }
}
