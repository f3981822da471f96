// The settings file: whatever it holds, the terminal starts, and what it saves then is there at the next
// start.

#include "fuzz/FuzzQt.h"

#include "app/base/SettingsStore.h"

#include <QDir>
#include <QTemporaryDir>
#include <QVariant>

using fuzz::demand;
using namespace Qt::StringLiterals;

namespace fuzz_settings {

namespace {

/// A folder of its own for each input: Qt keeps what it has read of a file for a while, by its path.
QString freshFolder()
{
    static const QTemporaryDir root;
    static int number = 0;
    const QString folder = root.filePath(QString::number(++number));
    demand(QDir().mkpath(folder), "there is a folder to write in");
    return folder;
}

void write(const QString& path, const QByteArray& content)
{
    QFile file(path);
    demand(
        file.open(QIODevice::WriteOnly) && file.write(content) == content.size(), "there is room for a file");
}

int attempt(const std::uint8_t* data, std::size_t size)
{
    const QString folder = freshFolder();
    const QString path = folder + "/Terminal.conf"_L1;
    write(path, fuzz::bytesOf(fuzz::textOf(data, size)));
    {
        SettingsStore store(path);
        for (const QLatin1StringView key :
            {"auth/email"_L1, "window/state"_L1, "charts/layout"_L1, "alerts"_L1})
            static_cast<void>(store.value(key).toString().size() + store.value(key).toByteArray().size());
        demand(store.takeNotices().size() <= 2, "damage is told in two sentences");
        store.setValue("auth/email"_L1, u"trader@example.org"_s);
        store.setValue("window/state"_L1, QByteArray("\0\xff\x01\"", 4));
        demand(store.sync(), "what the trader changes is saved");
    }
    SettingsStore store(path);
    demand(store.takeNotices().isEmpty(), "what was saved is sound");
    demand(store.value("auth/email"_L1).toString() == "trader@example.org"_L1, "a text is there again");
    demand(store.value("window/state"_L1).toByteArray() == QByteArray("\0\xff\x01\"", 4),
        "bytes are there again");
    QDir(folder).removeRecursively();
    return 0;
}

const fuzz::Target target("settings", &attempt);

} // namespace

} // namespace fuzz_settings
