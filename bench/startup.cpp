// Start-up and memory of the real program, offscreen, against scripted servers in this process. A plugin
// of Qt tells from inside when something is painted; the program itself is the unchanged one.
//   tavoran-bench-startup start ROUNDS   times of the terminal and of the bare program, alternating
//   tavoran-bench-startup memory ROWS    memory with four charts, and what rows of the Journal take
//   tavoran-bench-startup growth snapshots|timeframes|dialogs|reconnects TIMES BYTES
//                                        growth of memory by an activity, where a row of the Journal takes
//                                        BYTES
// Prints "name value" lines.

#include "app/base/TerminalSettings.h"
#include "mainwindow/ChartsLayout.h"
#include "scenes/MeasuringApplication.h"
#include "scenes/StubPlatform.h"
#include "scenes/Waiting.h"
#include "scenes/WatchedProgram.h"

#include <QDir>
#include <QWebSocket>
#include <QWidget>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

const QStringList chartSymbols{u"SYM00"_s, u"SYM01"_s, u"SYM02"_s, u"SYM03"_s};
constexpr int symbolCount = 12;

void print(const QByteArray& name, double value)
{
    std::printf("%s %.6g\n", name.constData(), value);
    std::fflush(stdout);
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values.at(values.size() / 2);
}

const QString terminal = QStringLiteral(TERMINAL_PROGRAM);
const QString bare = QStringLiteral(BARE_PROGRAM);

/// Settings as an earlier run left them: four charts side by side.
void writeSettings(const StubPlatform& platform)
{
    QList<SavedChart> charts;
    for (int i = 0; i < chartSymbols.size(); ++i) {
        QWidget place;
        place.setGeometry(i % 2 * 480, i / 2 * 250, 470, 245);
        charts.append({chartSymbols[i], u"15m"_s, place.saveGeometry(), false, {}});
    }
    TerminalSettings& settings = TerminalSettings::instance();
    settings.setServerUrl(platform.url());
    settings.setChartsLayout(chartsLayoutText(charts));
    settings.setRestoringLayout(false);
    if (!settings.sync())
        giveUp(u"the settings could not be written"_s);
}

struct Times {
    double toSignIn = 0.0;
    double toWindow = 0.0; ///< from the accepted sign-in, ms
    double toCharts = 0.0; ///< the same until every chart has painted its history
};

double ms(qint64 from, qint64 to)
{
    return static_cast<double>(to - from) / 1e6;
}

Times signIn(WatchedProgram& program, StubPlatform& platform)
{
    Times times;
    times.toSignIn = ms(program.startedAt, program.next("painted LoginDialog"));
    // As a person would, who types for longer; what the program still does by itself ends meanwhile.
    pauseFor(300);
    program.tell("signin");
    times.toWindow = ms(platform.acceptedAt, program.next("painted MainWindow"));
    for (int i = 0; i < chartSymbols.size(); ++i)
        times.toCharts = std::max(times.toCharts, ms(platform.acceptedAt, program.next("charted")));
    return times;
}

void measureStart(int rounds)
{
    StubPlatform platform(symbolCount);
    std::vector<double> bares;
    std::vector<double> signIns;
    std::vector<double> windows;
    std::vector<double> charts;
    // The first round only fills the caches of the system and of Qt.
    for (int round = 0; round <= rounds; ++round) {
        double bareMs = 0.0;
        {
            WatchedProgram program(bare);
            bareMs = ms(program.startedAt, program.next("painted QMainWindow"));
        }
        writeSettings(platform);
        WatchedProgram program(terminal);
        const Times times = signIn(program, platform);
        if (round == 0)
            continue;
        bares.push_back(bareMs);
        signIns.push_back(times.toSignIn);
        windows.push_back(times.toWindow);
        charts.push_back(times.toCharts);
    }
    print("bare_ms", median(bares));
    print("signin_ms", median(signIns));
    print("window_ms", median(windows));
    print("charts_ms", median(charts));
}

qint64 journalRows(WatchedProgram& program)
{
    program.tell("rows");
    return program.next("rows");
}

/// Ends the feed connections and waits until the terminal is back with its charts reloaded.
void reconnect(WatchedProgram& program, StubPlatform& platform, int times)
{
    for (int i = 0; i < times; ++i) {
        const int before = platform.connections;
        platform.client->abort();
        waitUntil([&] { return platform.connections > before; }, u"the terminal to reconnect"_s);
        for (int chart = 0; chart < chartSymbols.size(); ++chart)
            program.next("charted");
    }
}

/// What an activity leaves behind in MB, rows of the Journal aside.
void measureGrowth(WatchedProgram& program, const QByteArray& name, int count, double bytesARow,
    const std::function<void(int)>& act)
{
    const auto sample = [&] {
        pauseFor(300);
        return program.ownMemory() - bytesARow * static_cast<double>(journalRows(program));
    };
    act(std::max(10, count / 20)); // what is allocated once is no growth
    const double first = sample();
    act(count / 2);
    const double middle = sample();
    act(count - count / 2);
    const double last = sample();
    print("count_"_ba + name, count);
    print("growth_"_ba + name, (last - first) / 1e6);
    print("second_"_ba + name, (last - middle) / 1e6);
}

/// Bytes a row of the Journal, and how much longer a row takes late than early.
void measureJournal(WatchedProgram& program, int rows)
{
    const auto add = [&](int count) {
        program.tell("journal " + QByteArray::number(count));
        return static_cast<double>(program.next("done")) / count;
    };
    add(20'000);
    const double memoryBefore = program.ownMemory();
    const int block = rows / 10;
    const double early = add(block);
    for (int i = 0; i < 8; ++i)
        add(block);
    const double late = add(block);
    const double bytes = (program.ownMemory() - memoryBefore) / (10.0 * block);
    print("journal_rows", 10.0 * block);
    print("journal_bytes", bytes);
    print("journal_late_early", late / early);
}

void measureMemory(int rows)
{
    StubPlatform platform(symbolCount);
    writeSettings(platform);
    WatchedProgram program(terminal);
    signIn(program, platform);
    pauseFor(1000);
    print("pss_mb", program.memory("Pss") / 1e6);
    print("rss_mb", program.memory("Rss") / 1e6);
    measureJournal(program, rows);
}

void measureGrowth(const QByteArray& activity, int count, double bytesARow)
{
    StubPlatform platform(symbolCount);
    const auto errand = [&activity](WatchedProgram& program, int n) {
        program.tell(activity + ' ' + QByteArray::number(n));
        program.next("done");
    };
    writeSettings(platform);
    WatchedProgram program(terminal);
    signIn(program, platform);
    pauseFor(1000);
    measureGrowth(program, activity, count, bytesARow, [&](int n) {
        if (activity == "snapshots")
            platform.sendSnapshots(n);
        else if (activity == "reconnects")
            reconnect(program, platform, n);
        else
            errand(program, n);
    });
}

} // namespace

int main(int argc, char** argv)
{
    // Both programs get a screen that is as large as their windows want to be.
    const MeasuringApplication application(argc, argv, SCREEN_FILE);
    const QStringList arguments = QCoreApplication::arguments();
    const int number = arguments.value(2).toInt();
    const QByteArray activity = arguments.value(2).toLatin1();
    const QByteArrayList activities{"snapshots", "timeframes", "dialogs", "reconnects"};
    if (arguments.value(1) == "start"_L1 && number > 0)
        measureStart(number);
    else if (arguments.value(1) == "memory"_L1 && number > 0)
        measureMemory(number);
    else if (arguments.value(1) == "growth"_L1 && activities.contains(activity)
        && arguments.value(3).toInt() > 0)
        measureGrowth(activity, arguments.value(3).toInt(), arguments.value(4).toDouble());
    else
        giveUp(u"usage: tavoran-bench-startup start ROUNDS | memory ROWS | growth ACTIVITY TIMES BYTES"_s);
    return 0;
}
