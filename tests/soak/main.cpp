// The terminal and the practice platform in one long, busy session, and what is counted meanwhile.
//   tavoran-soak --seconds N [--samples FILE] [--summary FILE] ...   see --help
// Exit status 1: something is left that should have gone, or the session did not get to its end.

#include "app/StartUp.h"
#include "app/base/Log.h"
#include "app/base/TerminalSettings.h"
#include "mainwindow/MainWindow.h"
#include "net/signin/LoginDialog.h"
#include "practice/server/ServerProcess.h"
#include "soak/Relay.h"
#include "soak/Soak.h"
#include "support/LiveObjects.h"
#include "support/TestMain.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QPixmapCache>

#include <cstdio>
#include <cstdlib>

using namespace Qt::StringLiterals;

namespace {

struct Wanted {
    SoakPlan plan;
    QString speed;
    QString summary;
    bool baseline = false;
};

Wanted readOptions(const QCoreApplication& application)
{
    QCommandLineParser parser;
    const auto option = [&parser](const QString& name, const QString& what, const QString& usual) {
        const QCommandLineOption added(name, what, name, usual);
        parser.addOption(added);
        return added;
    };
    const auto seconds = option(u"seconds"_s, u"How long."_s, u"60"_s);
    const auto activities = option(u"activities"_s, u"Ends after so many; 0 for no such end."_s, u"0"_s);
    const auto turn = option(u"turn"_s, u"Milliseconds between two moves."_s, u"30"_s);
    const auto rate = option(u"rate"_s, u"Price messages a second to add."_s, u"1500"_s);
    const auto burst = option(u"burst"_s, u"Messages of a burst."_s, u"20000"_s);
    const auto bursts = option(u"burst-every"_s, u"Seconds."_s, u"30"_s);
    const auto cuts = option(u"cut-every"_s, u"Seconds."_s, u"5"_s);
    const auto samplesEvery = option(u"sample-every"_s, u"Seconds."_s, u"5"_s);
    const auto rests = option(u"rest-every"_s, u"Seconds."_s, u"30"_s);
    const auto patience
        = option(u"patience-at-end"_s, u"Seconds that the last rest may be long in coming."_s, u"60"_s);
    const auto seed = option(u"seed"_s, u"What chance does."_s, u"1"_s);
    const auto speed = option(u"speed"_s, u"Of the platform's market."_s, u"60"_s);
    const auto samples = option(u"samples"_s, u"File for the samples."_s, {});
    const auto summary = option(u"summary"_s, u"File for the sums."_s, {});
    const QCommandLineOption baseline(u"baseline"_s, u"Fail unless all counts are what they were."_s);
    parser.addOption(baseline);
    parser.addHelpOption();
    parser.process(application);

    const auto number = [&parser](const QCommandLineOption& which) {
        bool isNumber = false;
        const double value = parser.value(which).toDouble(&isNumber);
        // A session with rests all the time, say, would do nothing and find nothing.
        if (!isNumber || value < 0.0) {
            std::fprintf(stderr, "--%s is no number\n", qPrintable(which.names().constFirst()));
            std::exit(1);
        }
        return value;
    };
    Wanted wanted;
    wanted.plan.seconds = number(seconds);
    wanted.plan.activities = static_cast<int>(number(activities));
    wanted.plan.turnMs = static_cast<int>(number(turn));
    wanted.plan.rate = number(rate);
    wanted.plan.burst = static_cast<int>(number(burst));
    wanted.plan.burstEvery = number(bursts);
    wanted.plan.cutEvery = number(cuts);
    wanted.plan.sampleEvery = number(samplesEvery);
    wanted.plan.restEvery = number(rests);
    wanted.plan.patienceAtEnd = number(patience);
    wanted.plan.seed = static_cast<quint32>(number(seed));
    wanted.plan.samples = parser.value(samples);
    wanted.speed = parser.value(speed);
    wanted.summary = parser.value(summary);
    wanted.baseline = parser.isSet(baseline);
    return wanted;
}

/// What is more at the end than it was at the beginning, each with its numbers.
QStringList leftovers(const Sampler::Sample& before, const Sampler::Sample& after)
{
    QStringList left;
    for (const QByteArray name : {"files", "timer_objects", "timers", "widgets", "top_levels", "actions",
             "native_windows", "objects", "threads"}) {
        if (after.of(name) > before.of(name))
            left.append(
                u"%1: %2, then %3"_s.arg(QString::fromLatin1(name)).arg(before.of(name)).arg(after.of(name)));
    }
    // Connections are kept for a while: six at most, each with two more ends in the relay.
    constexpr double keptSockets = 18;
    if (after.of("sockets") > before.of("sockets") + keptSockets)
        left.append(u"sockets: %1, then %2"_s.arg(before.of("sockets")).arg(after.of("sockets")));
    for (auto each = after.classes.cbegin(); !left.isEmpty() && each != after.classes.cend(); ++each) {
        const int was = before.classes.value(each.key());
        if (each.value() > was)
            left.append(
                u"  %1: %2, then %3"_s.arg(QString::fromLatin1(each.key())).arg(was).arg(each.value()));
    }
    return left;
}

int judge(const Soak& soak, const Wanted& wanted)
{
    int status = 0;
    if (!soak.baseline()) {
        std::fprintf(stderr, "The session did not get to its end.\n");
        return 1;
    }
    if (!soak.last()) {
        std::fprintf(stderr, "The desk did not get calm at the end: there is nothing to compare.\n");
        return 1;
    }
    if (!soak.neverDone().isEmpty()) {
        std::fprintf(stderr, "Never had an effect: %s\n", qPrintable(soak.neverDone().join(u", "_s)));
        status = 1;
    }
    if (const QStringList missing = soak.neverHappened(); !missing.isEmpty()) {
        std::fprintf(stderr, "Never happened: %s\n", qPrintable(missing.join(u", "_s)));
        status = 1;
    }
    if (wanted.baseline) {
        const QStringList left = leftovers(*soak.baseline(), *soak.last());
        for (const QString& line : left)
            std::fprintf(stderr, "%s\n", qPrintable(line));
        status = left.isEmpty() ? status : 1;
    }
    return status;
}

/// Widgets that live on although their windows have gone.
int survivors()
{
    int count = 0;
    for (const QObject* object : liveobjects::here()) {
        if (!object->isWidgetType())
            continue;
        ++count;
        std::fprintf(stderr, "still there: %s %s\n", object->metaObject()->className(),
            qPrintable(object->objectName()));
    }
    return count;
}

void print(const QStringList& lines, const QString& path)
{
    const QByteArray text = lines.join(u'\n').toUtf8() + '\n';
    std::fputs(text.constData(), stdout);
    QFile file(path);
    if (!path.isEmpty() && (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size()))
        qFatal("%s cannot be written", qUtf8Printable(path));
}

} // namespace

int main(int argc, char** argv)
{
    liveobjects::watch();
    usePrivateFolders();
    installMessageHandler();
    QApplication application(argc, argv);
    const Wanted wanted = readOptions(application);
    // Of each picture that leaves its cache Qt 6.4 keeps the name for ever, some 0.3 KB: icons and parts of
    // menus that are made anew have new names. What we leave lying about would not be seen beside that, so
    // nothing goes in.
    QPixmapCache::setCacheLimit(0);
    nameApplication();

    const ServerProcess platform(QDir::temp().filePath(u"practice.db"_s).toStdString(),
        {"--seed", "7", "--speed", wanted.speed.toStdString()});
    Relay relay(platform.port());
    TerminalSettings::instance().setServerUrl(u"http://127.0.0.1:%1"_s.arg(relay.port()));

    Soak soak(relay, platform.pid(), wanted.plan);
    runTerminal(application,
        {
            .makeSignIn = [] { return std::make_unique<LoginDialog>(TerminalSettings::instance()); },
            .userOf = [](const QDialog& signIn) { return static_cast<const LoginDialog&>(signIn).user(); },
            .makeMainWindow = [] { return std::make_unique<MainWindow>(); },
            .setUser = [](QWidget& mainWindow,
                           const QJsonObject& user) { static_cast<MainWindow&>(mainWindow).setUser(user); },
        });
    print(soak.summary(), wanted.summary);
    const int status = judge(soak, wanted);
    return survivors() > 0 ? 1 : status;
}
