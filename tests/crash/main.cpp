#include "crash/SavedState.h"

#include "app/base/TerminalSettings.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

#include <cstdio>
#include <dlfcn.h>
#include <limits>

using namespace Qt::StringLiterals;

namespace {

void say(const QString& line)
{
    std::printf("%s\n", line.toUtf8().constData());
    std::fflush(stdout);
}

/// Reads as a terminal does that starts, and says what is there.
savedstate::Found start(const TerminalSettings& settings)
{
    const savedstate::Found found = savedstate::read(settings);
    say(found.fault.isEmpty() ? u"read %1"_s.arg(found.number) : u"broken %1"_s.arg(found.fault));
    return found;
}

/// What a trader would read of the settings in the Journal.
void sayNotices(TerminalSettings& settings)
{
    const QStringList notices = settings.takeNotices();
    for (const QString& notice : notices)
        say(u"told "_s + notice);
}

/// The size of the journal by now, in which later operations follow; nothing where none is kept.
QString journalSize()
{
    const QString path = qEnvironmentVariable("TAVORAN_DISK_JOURNAL");
    return path.isEmpty() ? QString() : u" %1"_s.arg(QFileInfo(path).size());
}

int saveOnAndOn(const QString& file, int count)
{
    TerminalSettings settings(file);
    const int first = start(settings).number + 1;
    sayNotices(settings);
    for (int number = first; number - first < count; ++number) {
        const bool isSaved = savedstate::save(settings, number);
        say((isSaved ? u"saved %1"_s : u"refused %1"_s).arg(number) + journalSize());
        sayNotices(settings);
    }
    return 0;
}

/// As another process would find it: a copy of the folder, in which nothing is known of the file.
savedstate::Found readElsewhere(const QString& file)
{
    const QTemporaryDir elsewhere;
    const QDir folder(QFileInfo(file).path());
    const QStringList names = folder.entryList(QDir::Files | QDir::Hidden);
    for (const QString& name : names)
        QFile::copy(folder.filePath(name), elsewhere.filePath(name));
    const TerminalSettings settings(elsewhere.filePath(QFileInfo(file).fileName()));
    return savedstate::read(settings);
}

/// Saves once for each room from `from` to `to` bytes, says what does not hold, and ends with 1 if anything
/// does not. Needs the faulty disk (disk/FaultyDisk.h) in front.
int fillDisk(const QString& file, int from, int to, int step)
{
    const auto setRoom
        = reinterpret_cast<void (*)(long long, int)>(::dlsym(RTLD_DEFAULT, "tavoran_disk_room"));
    if (!setRoom)
        return 2;
    constexpr long long plenty = std::numeric_limits<long long>::max();
    TerminalSettings settings(file);
    int told = 0;
    settings.setTeller([&told](const QString& notice) {
        told += notice.startsWith("The settings could not be saved to "_L1) ? 1 : 100;
    });
    int number = savedstate::read(settings).number;
    // The first save leaves its copy and digest.
    for (int i = 0; i < 3; ++i) {
        if (!savedstate::save(settings, ++number))
            return 2;
    }
    int refused = 0;
    int saved = 0;
    int faults = 0;
    const auto expect = [&](bool isRight, const QString& what, int room) {
        if (isRight)
            return;
        ++faults;
        say(u"fault: step %1, room for %2 bytes: %3"_s.arg(number).arg(room).arg(what));
    };
    for (int room = from; room <= to; room += step) {
        // On some file systems the last bytes go before the last names, on others with them.
        for (const int namesTakeRoom : {0, 1}) {
            told = 0;
            ++number;
            setRoom(room, namesTakeRoom);
            const bool isSaved = savedstate::save(settings, number);
            setRoom(plenty, 0);
            ++(isSaved ? saved : refused);
            savedstate::Found found = readElsewhere(file);
            expect(found.fault.isEmpty(), u"not whole: "_s + found.fault, room);
            expect(found.number == number || (!isSaved && found.number == number - 1),
                u"state %1 is there"_s.arg(found.number), room);
            expect(told == (isSaved ? 0 : 1), u"told %1 times"_s.arg(told), room);

            expect(settings.sync(), u"not saved when there is room again"_s, room);
            found = readElsewhere(file);
            expect(found.fault.isEmpty() && found.number == number, u"not there when there is room again"_s,
                room);
        }
    }
    say(u"sizes %1 saved %2 refused %3 faults %4"_s.arg((to - from) / step + 1)
            .arg(saved)
            .arg(refused)
            .arg(faults));
    return faults == 0 ? 0 : 1;
}

} // namespace

/// tavoran-crash-saver save FILE COUNT | read FILE | disk FILE FROM TO STEP
int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const QString what = arguments.value(1);
    const QString file = arguments.value(2);
    const auto number = [&arguments](int index) { return arguments.value(index).toInt(); };
    if (what == "save"_L1 && arguments.size() == 4)
        return saveOnAndOn(file, number(3));
    if (what == "read"_L1 && arguments.size() == 3)
        return start(TerminalSettings(file)).fault.isEmpty() ? 0 : 1;
    if (what == "disk"_L1 && arguments.size() == 6)
        return fillDisk(file, number(3), number(4), number(5));
    return 2;
}
