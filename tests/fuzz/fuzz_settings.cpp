// The settings file. An input that begins with the line "set" is what a terminal saves: lines of a key, "=",
// a letter for the kind and the value, as percentEncoding leaves it. What is saved is there at the next
// start, and no word is lost about it. One that begins with "beside", a blank and three letters is the file
// and what stands beside it, in parts with a line of three equals signs between them: the letters say what
// the copy, its digest and the mark of a save are made of. Any other input is the file alone. Whatever they
// hold, the terminal starts. What is known to have been saved whole is there, be it in the file or in the
// copy, and what else the file held is there or kept aside, with a word. What the terminal could read and did
// not call left out is there at the next start, and so is what it saves then.

#include "fuzz/FuzzQt.h"

#include "app/base/SettingsStore.h"
#include "app/base/SettingsValues.h"

#include <QByteArrayList>
#include <QCryptographicHash>
#include <QDataStream>
#include <QDir>
#include <QTemporaryDir>
#include <QVariant>

#include <algorithm>
#include <map>
#include <optional>
#include <utility>

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

/// What a terminal finds at its start.
struct Found {
    QByteArray file;
    std::optional<QByteArray> copy, digest, mark;
};

QByteArray hashOf(const QByteArray& content)
{
    return QCryptographicHash::hash(content, QCryptographicHash::Sha256).toHex();
}

/// The digest of the values that Qt reads of such a file; nothing where it cannot.
std::optional<QByteArray> valuesHash(const QByteArray& content, const QString& path)
{
    write(path, content);
    const QSettings settings(path, QSettings::IniFormat);
    const QByteArray hash = digestOf(settingsValues(settings));
    return settings.status() == QSettings::NoError ? std::optional(hash) : std::nullopt;
}

/// Whether a terminal can have saved this: Qt reads again what it writes.
bool canBeSaved(const QByteArray& content, const QString& path)
{
    const QString another = u"Terminal/check"_s;
    Values values = valuesIn(content, path);
    write(path + "-saved"_L1, content);
    {
        QSettings settings(path + "-saved"_L1, QSettings::IniFormat);
        settings.setValue(another, u"1"_s);
        settings.sync();
    }
    values[another] = bytesOf(u"1"_s);
    return valuesIn(contentOf(path + "-saved"_L1), path + "-again"_L1) == values;
}

/// The parts are file, copy, digest and mark; some letters do without theirs. A digest is that of something
/// that a terminal can have saved, or any bytes.
Found foundIn(std::string_view letters, std::string_view text, const QString& folder)
{
    Found found;
    found.file = fuzz::bytesOf(fuzz::takePart(text));
    const QByteArray copy = fuzz::bytesOf(fuzz::takePart(text));
    const QByteArray digest = fuzz::bytesOf(fuzz::takePart(text));
    const QByteArray mark = fuzz::bytesOf(fuzz::takePart(text));
    const auto letter
        = [&letters](std::size_t place) { return place < letters.size() ? letters[place] : '-'; };
    const auto isSaveable = [&](char which) {
        return canBeSaved(which == 'f' ? found.file : copy, folder + "/save-"_L1 + QChar::fromLatin1(which));
    };
    const auto digestFor
        = [&](char which) { return isSaveable(which) ? hashOf(which == 'f' ? found.file : copy) : digest; };
    if (letter(0) == 'g' || letter(0) == 's')
        found.copy = letter(0) == 'g' ? copy : found.file;
    if (letter(1) == 'f' || letter(1) == 'c')
        found.digest = digestFor(letter(1));
    else if (letter(1) == 'g')
        found.digest = digest;
    if (letter(2) == 'f' || letter(2) == 'c')
        found.mark = digestFor(letter(2)) + '\n' + mark;
    else if (letter(2) == 'v') // written whole, and not looked at
        found.mark = digestFor('c') + '\n'
            + (isSaveable('f') ? valuesHash(found.file, folder + "/to-save"_L1).value_or(mark) : mark);
    else if (letter(2) == 'g')
        found.mark = mark;
    return found;
}

bool isVouchedFor(const Found& found, const QByteArray& content)
{
    return found.digest == hashOf(content)
        || (found.mark && found.mark->split('\n').constFirst() == hashOf(content));
}

/// Whether a save was under way, and the file holds what was being saved.
bool isWholeSave(const Found& found, const QString& folder)
{
    const QByteArrayList lines = found.mark.value_or(QByteArray()).split('\n');
    return lines.size() > 1 && valuesHash(found.file, folder + "/being-saved"_L1) == lines[1];
}

/// What the file has to hold after the start, as far as the files themselves tell it.
std::optional<QByteArray> promisedFile(const Found& found, const QString& folder)
{
    if (isVouchedFor(found, found.file))
        return found.file;
    if (found.copy == found.file && !found.file.isEmpty())
        return std::nullopt; // but for entries that cannot be saved
    if (isWholeSave(found, folder))
        return found.file;
    const bool copyIsKnown = found.copy && !found.copy->isEmpty() && isVouchedFor(found, *found.copy);
    const bool isCut = copyIsKnown && found.copy->startsWith(found.file);
    return copyIsKnown && (found.mark || isCut) ? found.copy : std::nullopt;
}

/// The lines of a file that may be kept aside: none that tells a token.
QByteArray keptOf(const QByteArray& content)
{
    QByteArrayList kept = content.split('\n');
    kept.removeIf([](const QByteArray& line) { return line.contains("token"); });
    return kept.join('\n');
}

bool holdsAll(const Values& values, const Values& some)
{
    return std::includes(values.begin(), values.end(), some.begin(), some.end());
}

void startWith(const Found& found, QString& folder)
{
    const QString path = folder + name;
    write(path, found.file);
    const std::pair<const char*, const std::optional<QByteArray>&> others[]{
        {".copy", found.copy}, {".digest", found.digest}, {".saving", found.mark}};
    for (const auto& [ending, content] : others) {
        if (content)
            write(path + QLatin1StringView(ending), *content);
    }
    const std::optional<QByteArray> promised = promisedFile(found, folder);
    Values values;
    {
        SettingsStore store(path);
        const QStringList told = store.takeNotices();
        demand(told.size() <= 3, "damage is told in three sentences");
        const QByteArray now = contentOf(path);
        demand(!told.isEmpty() || now == found.file, "nothing changes without a word");
        demand(!promised || now == *promised, "what was saved whole is there");
        demand(!promised || told.isEmpty() == (now == found.file), "nothing is told of what is sound");
        demand(now == found.file || found.file.isEmpty()
                || contentOf(store.damagedPath()).startsWith(keptOf(found.file)),
            "what is replaced is kept aside");
        values = valuesIn(now, path + "-now"_L1);
        demand(holdsAll(valuesIn(found.file, path + "-before"_L1), values)
                || (found.copy && holdsAll(valuesIn(*found.copy, path + "-copied"_L1), values)),
            "what is left is what was there");
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
    } else if (constexpr std::string_view beside = "beside "; text.starts_with(beside)) {
        const std::string_view letters = fuzz::takeLine(text).substr(beside.size());
        startWith(foundIn(letters, text, folder), folder);
    } else {
        startWith({fuzz::bytesOf(text), {}, {}, {}}, folder);
    }
    QDir(folder).removeRecursively();
    return 0;
}

const fuzz::Target target("settings", &attempt);

} // namespace

} // namespace fuzz_settings
