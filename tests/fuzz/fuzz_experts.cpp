// The folder of scripts: a file whose name is the first line, as percentEncoding leaves it, and whose bytes
// are all the rest.

#include "fuzz/Files.h"
#include "fuzz/FuzzQt.h"

#include "experts/ExpertScript.h"
#include "mainwindow/ExpertsFolder.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <fcntl.h>

using fuzz::demand;
using namespace Qt::StringLiterals;

namespace fuzz_experts {

namespace {

constexpr auto exampleName = "Example.js"_L1;

QString pathIn(const fuzz::Folder& folder, const char* name)
{
    return QString::fromStdString((folder.path() / name).string());
}

/// False where no file can be called so.
bool write(const QString& folder, const QByteArray& name, std::string_view content)
{
    const QByteArray path = QFile::encodeName(folder) + '/' + name;
    const int file = ::open(path.constData(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, 0600);
    if (file < 0)
        return false;
    const bool isWritten
        = ::write(file, content.data(), content.size()) == static_cast<ssize_t>(content.size());
    ::close(file);
    demand(isWritten, "there is room for a file");
    return true;
}

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    demand(file.open(QIODevice::ReadOnly), "the file is there");
    return file.readAll();
}

/// Whether the terminal has to list a file by this name.
bool isScriptName(const QByteArray& name)
{
    return !name.startsWith('.') && name.toLower().endsWith(".js") && name.isValidUtf8();
}

void demandRead(const QString& path, const QByteArray& name, const QByteArray& bytes)
{
    QString error;
    const std::optional<ExpertScript> script = ExpertScript::read(path, error);
    demand(script && error.isEmpty(), "what is listed can be read");
    demand(script->fileName == QString::fromUtf8(name), "a script's file is the one that is listed");
    demand(script->fileName.startsWith(script->name + u'.') && script->name == ExpertScript::nameOf(path)
            && !script->fileName.sliced(script->name.size() + 1).contains(u'.'),
        "a script is called as its file, without the last extension");
    constexpr auto byteOrderMark = "\xEF\xBB\xBF";
    const QByteArray plain = bytes.startsWith(byteOrderMark) ? bytes.sliced(3) : bytes;
    demand(script->text.toUtf8() == plain
            || (!bytes.isValidUtf8() && script->text.contains(QChar::ReplacementCharacter)),
        "a script's text is what the file holds");
}

int attempt(const std::uint8_t* data, std::size_t size)
{
    static const fuzz::Folder place;
    static const QString example
        = QString::fromStdString(place.write("Example.js", "var example = 1;\n").string());
    std::string_view text = fuzz::textOf(data, size);
    const QByteArray name = QByteArray::fromPercentEncoding(fuzz::bytesOf(fuzz::takeLine(text)));
    const QString path = pathIn(place, "Experts");
    QDir(path).removeRecursively();
    demand(QDir().mkpath(path), "there is a folder to write in");
    if (name.isEmpty() || name.contains('/') || name.contains('\0') || !write(path, name, text))
        return 0;

    const ExpertsFolder folder(path);
    const QStringList scripts = folder.scripts();
    demand(scripts.size() == (isScriptName(name) ? 1 : 0), "what is a script by its name is listed");
    if (!scripts.isEmpty())
        demandRead(scripts.constFirst(), name, fuzz::bytesOf(text));
    folder.prepare({example});
    const QStringList after = folder.scripts();
    if (scripts.isEmpty())
        demand(after == QStringList{QDir(path).filePath(exampleName)}
                && contentOf(after.constFirst()) == contentOf(example),
            "a folder without a script gets the examples");
    else
        demand(after == scripts && contentOf(after.constFirst()) == fuzz::bytesOf(text),
            "a folder with a script stays as it is");

    QString error;
    demand(!ExpertScript::read(path, error) && !error.isEmpty(), "a folder is no script, and that is told");
    return 0;
}

const fuzz::Target target("experts", &attempt);

} // namespace

} // namespace fuzz_experts
