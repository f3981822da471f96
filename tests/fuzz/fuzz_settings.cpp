// The settings file. An input that begins with the line "set" is what a terminal saves: lines of a key, "=",
// a letter for the kind and the value, as percentEncoding leaves it. What is saved is there at the next
// start, and no word is lost about it. Any other input is the file itself: whatever it holds, the terminal
// starts, and what it could read and did not call left out is there at the next start, and so is what it
// saves then.

#include "fuzz/FuzzQt.h"

#include "app/base/SettingsStore.h"

#include <QDataStream>
#include <QDir>
#include <QTemporaryDir>
#include <QVariant>

#include <map>

using fuzz::demand;
using namespace Qt::StringLiterals;

namespace fuzz_settings {

namespace {

/// Of each key, all that its value is.
using Values = std::map<QString, QByteArray>;

/// A folder of its own for each start: Qt keeps what it has read or written of a file for a while, by its
/// path.
QString freshFolder()
{
    static const QTemporaryDir root;
    static int number = 0;
    return root.filePath(QString::number(++number));
}

constexpr auto name = "/Terminal.conf"_L1;

/// The same files for another terminal, which has to read them.
QString moved(const QString& folder)
{
    const QString to = freshFolder();
    demand(QDir().rename(folder, to), "a folder gets another name");
    return to;
}

void write(const QString& path, const QByteArray& content)
{
    QFile file(path);
    demand(
        file.open(QIODevice::WriteOnly) && file.write(content) == content.size(), "there is room for a file");
}

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    demand(file.open(QIODevice::ReadOnly), "the settings file is there");
    return file.readAll();
}

/// Qt reads the same list as one of texts or as one of anything.
QByteArray bytesOf(const QVariant& value)
{
    const bool isTexts = value.typeId() == QMetaType::QStringList;
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream << (isTexts ? QVariant(value.toList()) : value);
    return bytes;
}

/// What Qt reads of such a file.
Values valuesIn(const QByteArray& content, const QString& path)
{
    write(path, content);
    const QSettings settings(path, QSettings::IniFormat);
    Values values;
    const QStringList keys = settings.allKeys();
    for (const QString& key : keys)
        values[key] = bytesOf(settings.value(key));
    return values;
}

void demandSame(const Values& found, const Values& expected, const char* what)
{
    if (found == expected)
        return;
    const auto tell = [](const Values& some, const Values& others, const char* whose) {
        for (const auto& [key, bytes] : some) {
            const auto other = others.find(key);
            if (other == others.end() || other->second != bytes)
                std::fprintf(stderr, "%s: %s=%s\n", whose, qUtf8Printable(key), bytes.toHex(' ').constData());
        }
    };
    tell(expected, found, "expected");
    tell(found, expected, "found");
    demand(false, what);
}

/// Whether a value is asked for by this key. Qt takes slashes too many for fewer, and "\\" for "/" in places.
bool isAskedFor(const QString& key)
{
    return !key.isEmpty() && !key.startsWith(u'/') && !key.endsWith(u'/') && !key.contains("//"_L1)
        && !key.contains(u'\\') && !key.contains(QChar(0)) && QString::fromLatin1(key.toLatin1()) == key;
}

void demandGiven(const SettingsStore& store, const Values& values)
{
    for (const auto& [key, bytes] : values) {
        const QByteArray latin = key.toLatin1();
        demand(!isAskedFor(key) || bytesOf(store.value(QLatin1StringView(latin))) == bytes,
            "each value is found by its key");
    }
}

void change(SettingsStore& store)
{
    store.setValue("auth/email"_L1, u"trader@example.org"_s);
    store.setValue("window/state"_L1, QByteArray("\0\xff\x01\"", 4));
    demand(store.sync(), "what the trader changes is saved");
}

/// The next start, after the change.
void demandKept(const QString& folder, Values values)
{
    const QString path = folder + name;
    SettingsStore store(path);
    demand(store.takeNotices().isEmpty(), "what was saved is sound");
    values[u"auth/email"_s] = bytesOf(u"trader@example.org"_s);
    values[u"window/state"_s] = bytesOf(QByteArray("\0\xff\x01\"", 4));
    demandSame(
        valuesIn(contentOf(path), path + "-after"_L1), values, "everything is there again, and no more");
    demandGiven(store, values);
}

void startWith(const QByteArray& content, QString& folder)
{
    const QString path = folder + name;
    write(path, content);
    Values values;
    {
        SettingsStore store(path);
        const QStringList told = store.takeNotices();
        demand(told.size() <= 3, "damage is told in three sentences");
        const QByteArray now = contentOf(path);
        demand(!told.isEmpty() || now == content, "nothing changes without a word");
        values = valuesIn(now, path + "-now"_L1);
        const Values before = valuesIn(content, path + "-before"_L1);
        for (const auto& [key, bytes] : values) {
            const auto was = before.find(key);
            demand(was != before.end() && was->second == bytes, "what is left is what was there");
        }
        demandGiven(store, values);
        change(store);
    }
    folder = moved(folder);
    demandKept(folder, values);
}

QVariant valueOf(char kind, std::string_view text)
{
    const QByteArray bytes = QByteArray::fromPercentEncoding(fuzz::bytesOf(text));
    switch (kind) {
    case 'b':
        return bytes;
    case 'f':
        return !bytes.isEmpty();
    case 'n':
        return bytes.toInt();
    case 'l': {
        QStringList list;
        const QList<QByteArray> parts = bytes.split(',');
        for (const QByteArray& part : parts)
            list.append(QString::fromUtf8(part));
        return list;
    }
    default:
        return QString::fromUtf8(bytes);
    }
}

void save(std::string_view text, QString& folder)
{
    std::map<QByteArray, QVariant> saved;
    while (!text.empty()) {
        const std::string_view line = fuzz::takeLine(text);
        const std::size_t end = line.find('=');
        const QByteArray key = QByteArray::fromPercentEncoding(fuzz::bytesOf(line.substr(0, end)));
        if (end == std::string_view::npos || end + 1 == line.size() || !isAskedFor(QString::fromLatin1(key)))
            continue;
        saved[key] = valueOf(line[end + 1], line.substr(end + 2));
    }
    {
        SettingsStore store(folder + name);
        for (const auto& [key, value] : saved)
            store.setValue(QLatin1StringView(key), value);
        demand(store.takeNotices().isEmpty() && store.sync(), "a first start saves what it has");
    }
    folder = moved(folder);
    const QString path = folder + name;
    Values values;
    {
        SettingsStore store(path);
        demand(store.takeNotices().isEmpty(), "what was saved is sound");
        for (const auto& [key, value] : saved)
            demand(comparable(store.value(QLatin1StringView(key))) == comparable(value),
                "what was saved is there");
        values = valuesIn(contentOf(path), path + "-saved"_L1);
        demand(values.size() == saved.size(), "no value is made up");
        demandGiven(store, values);
        change(store);
    }
    folder = moved(folder);
    demandKept(folder, values);
}

int attempt(const std::uint8_t* data, std::size_t size)
{
    QString folder = freshFolder();
    demand(QDir().mkpath(folder), "there is a folder to write in");
    std::string_view text = fuzz::textOf(data, size);
    if (text.starts_with("set\n")) {
        fuzz::takeLine(text);
        save(text, folder);
    } else {
        startWith(fuzz::bytesOf(text), folder);
    }
    QDir(folder).removeRecursively();
    return 0;
}

const fuzz::Target target("settings", &attempt);

} // namespace

} // namespace fuzz_settings
