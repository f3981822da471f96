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
#include "support/StubHttpServer.h"

#include <QApplication>
#include <QDateTime>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTimer>
#include <QWebSocket>
#include <QWebSocketServer>
#include <QWidget>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <memory>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

constexpr int patienceMs = 120'000;
const QStringList chartSymbols{u"SYM00"_s, u"SYM01"_s, u"SYM02"_s, u"SYM03"_s};
constexpr int symbolCount = 12;

[[noreturn]] void giveUp(const QString& why)
{
    std::fprintf(stderr, "%s\n", qUtf8Printable(why));
    std::exit(1);
}

qint64 monotonicNs()
{
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return now.tv_sec * 1'000'000'000LL + now.tv_nsec;
}

void waitUntil(const std::function<bool()>& met, const QString& what)
{
    QElapsedTimer clock;
    clock.start();
    QTimer pulse;
    pulse.start(5);
    while (!met()) {
        if (clock.elapsed() > patienceMs)
            giveUp(u"waited in vain for "_s + what);
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
}

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

QString symbolName(int index)
{
    return u"SYM%1"_s.arg(index, 2, 10, QLatin1Char('0'));
}

QByteArray prices(int phase)
{
    QByteArray text;
    for (int i = 0; i < symbolCount; ++i) {
        const double bid = 1.1 + i * 0.1 + (phase * (i + 3) % 41) * 0.00001;
        text += (i ? ",\"" : "\"") + symbolName(i).toLatin1() + "\":{\"bid\":"
            + QByteArray::number(bid, 'f', 5) + ",\"ask\":" + QByteArray::number(bid + 0.0001, 'f', 5) + '}';
    }
    return '{' + text + '}';
}

QByteArray candles(int count)
{
    const QDateTime end = QDateTime::currentDateTimeUtc();
    QByteArray text;
    for (int i = 0; i < count; ++i) {
        const double open = 1.1 + (i * 7 % 97) * 0.0001;
        text += (i ? "," : "") + QByteArray("{\"timestamp\":\"")
            + end.addSecs(900LL * (i - count)).toString(Qt::ISODateWithMs).toLatin1() + "\",\"open\":"
            + QByteArray::number(open, 'f', 5) + ",\"high\":" + QByteArray::number(open + 0.0008, 'f', 5)
            + ",\"low\":" + QByteArray::number(open - 0.0007, 'f', 5)
            + ",\"close\":" + QByteArray::number(open + 0.0003, 'f', 5)
            + ",\"volume\":" + QByteArray::number(100 + i % 50) + '}';
    }
    return '[' + text + ']';
}

/// The platform as far as the terminal asks it; keeps the last feed connection.
class Platform final {
public:
    Platform()
    {
        QByteArray symbols;
        for (int i = 0; i < symbolCount; ++i)
            symbols += (i ? ",{\"name\":\"" : "{\"name\":\"") + symbolName(i).toLatin1() + "\",\"digits\":5}";
        m_hello = QString::fromLatin1(
            "{\"type\":\"hello\",\"symbols\":[" + symbols + "],\"prices\":" + prices(0) + '}');
        m_http.on("GET", "/api/settings/public", StubAnswer::json("{\"settings\":{}}"));
        m_http.on("POST", "/api/auth/login",
            StubAnswer::json("{\"token\":\"secret-token-123\",\"email\":\"trader@example.test\"}"));
        m_http.on("GET", "/api/accounts",
            StubAnswer::json(
                "[{\"id\":\"a1\",\"type\":\"DEMO\",\"status\":\"ACTIVE\",\"balance\":\"1000\"}]"));
        for (const char* list : {"/api/trades/open", "/api/trades/pending", "/api/trades/history"})
            m_http.on("GET", list, StubAnswer::json("[]"));
        m_http.on("GET", "/api/candles", StubAnswer::json(candles(1000)));
        QObject::connect(
            &m_http, &StubHttpServer::requestReceived, &m_http, [this](const StubRequest& request) {
                if (request.target == "/api/auth/login")
                    acceptedAt = monotonicNs();
                QMetaObject::invokeMethod(
                    &m_http, [this] { m_http.clearRequests(); }, Qt::QueuedConnection);
            });
        m_http.setUpgradeHandler([this](QTcpSocket* socket) { m_feeds.handleConnection(socket); });
        QObject::connect(&m_feeds, &QWebSocketServer::newConnection, &m_feeds, [this] {
            client.reset(m_feeds.nextPendingConnection());
            QObject::connect(client.get(), &QWebSocket::pong, &m_feeds, [this] { ++m_pongs; });
            client->sendTextMessage(m_hello);
            ++connections;
        });
    }

    [[nodiscard]] QString url() const { return m_http.url(); }

    /// Sends price snapshots, a few ahead of what the terminal has dealt with.
    void sendSnapshots(int count)
    {
        constexpr int stride = 200;
        for (int sent = 0; sent < count;) {
            for (int i = 0; i < stride && sent < count; ++i, ++sent)
                client->sendTextMessage(
                    QString::fromLatin1("{\"type\":\"price_update\",\"data\":" + prices(++m_phase) + '}'));
            const int before = m_pongs;
            client->ping();
            waitUntil([&] { return m_pongs > before; }, u"the snapshots to be read"_s);
        }
    }

    qint64 acceptedAt = 0;
    int connections = 0;
    std::unique_ptr<QWebSocket> client;

private:
    StubHttpServer m_http;
    QWebSocketServer m_feeds{u"bench"_s, QWebSocketServer::NonSecureMode};
    QString m_hello;
    int m_phase = 0;
    int m_pongs = 0;
};

/// A program under the watcher's eyes. Ends with this object.
class Watched final {
    Q_DISABLE_COPY_MOVE(Watched)

public:
    explicit Watched(const QString& path)
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"QT_PLUGIN_PATH"_s, QStringLiteral(PROBE_PLUGINS));
        environment.insert(u"QT_QPA_GENERIC_PLUGINS"_s, u"tavoran-probe"_s);
        m_program.setProcessEnvironment(environment);
        m_program.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        startedAt = monotonicNs();
        m_program.start(path, {});
    }
    ~Watched()
    {
        m_program.kill();
        m_program.waitForFinished();
    }

    void tell(const QByteArray& errand) { m_program.write(errand + '\n'); }

    /// The number at the end of the next line that starts so; earlier lines are dropped.
    qint64 next(const QByteArray& start)
    {
        qint64 number = -1;
        waitUntil(
            [&] {
                const bool ended = m_program.state() == QProcess::NotRunning;
                while (number < 0 && m_program.canReadLine()) {
                    const QByteArray line = m_program.readLine().trimmed();
                    if (line.startsWith(start + ' '))
                        number = line.mid(line.lastIndexOf(' ') + 1).toLongLong();
                }
                if (ended && number < 0)
                    giveUp(u"the program ended by itself"_s);
                return number >= 0;
            },
            QString::fromLatin1(start));
        return number;
    }

    /// Sum of a field of the kernel's summary of the program's memory, in bytes.
    [[nodiscard]] double memory(const QByteArray& field) const
    {
        QFile file(u"/proc/%1/smaps_rollup"_s.arg(m_program.processId()));
        if (!file.open(QIODevice::ReadOnly))
            giveUp(u"the kernel tells nothing about the program's memory"_s);
        for (const QByteArray& line : file.readAll().split('\n')) {
            if (line.startsWith(field + ':'))
                return line.simplified().split(' ').value(1).toDouble() * 1024.0;
        }
        return 0.0;
    }
    /// Memory that is the program's alone and backed by no file, in bytes.
    [[nodiscard]] double ownMemory() const { return memory("Anonymous") + memory("Swap"); }

    qint64 startedAt = 0;

private:
    QProcess m_program;
};

const QString terminal = QStringLiteral(TERMINAL_PROGRAM);
const QString bare = QStringLiteral(BARE_PROGRAM);

/// Settings as an earlier run left them: four charts side by side.
void writeSettings(const Platform& platform)
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

void pause(int milliseconds)
{
    bool over = false;
    QTimer::singleShot(milliseconds, qApp, [&over] { over = true; });
    waitUntil([&over] { return over; }, u"the time to pass"_s);
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

Times signIn(Watched& program, Platform& platform)
{
    Times times;
    times.toSignIn = ms(program.startedAt, program.next("painted LoginDialog"));
    // As a person would, who types for longer; what the program still does by itself ends meanwhile.
    pause(300);
    program.tell("signin");
    times.toWindow = ms(platform.acceptedAt, program.next("painted MainWindow"));
    for (int i = 0; i < chartSymbols.size(); ++i)
        times.toCharts = std::max(times.toCharts, ms(platform.acceptedAt, program.next("charted")));
    return times;
}

void measureStart(int rounds)
{
    Platform platform;
    std::vector<double> bares;
    std::vector<double> signIns;
    std::vector<double> windows;
    std::vector<double> charts;
    // The first round only fills the caches of the system and of Qt.
    for (int round = 0; round <= rounds; ++round) {
        double bareMs = 0.0;
        {
            Watched program(bare);
            bareMs = ms(program.startedAt, program.next("painted QMainWindow"));
        }
        writeSettings(platform);
        Watched program(terminal);
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

qint64 journalRows(Watched& program)
{
    program.tell("rows");
    return program.next("rows");
}

/// Ends the feed connections and waits until the terminal is back with its charts reloaded.
void reconnect(Watched& program, Platform& platform, int times)
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
void measureGrowth(Watched& program, const QByteArray& name, int count, double bytesARow,
    const std::function<void(int)>& act)
{
    const auto sample = [&] {
        pause(300);
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
void measureJournal(Watched& program, int rows)
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
    Platform platform;
    writeSettings(platform);
    Watched program(terminal);
    signIn(program, platform);
    pause(1000);
    print("pss_mb", program.memory("Pss") / 1e6);
    print("rss_mb", program.memory("Rss") / 1e6);
    measureJournal(program, rows);
}

void measureGrowth(const QByteArray& activity, int count, double bytesARow)
{
    Platform platform;
    const auto errand = [&activity](Watched& program, int n) {
        program.tell(activity + ' ' + QByteArray::number(n));
        program.next("done");
    };
    writeSettings(platform);
    Watched program(terminal);
    signIn(program, platform);
    pause(1000);
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
    const QTemporaryDir folders;
    for (const char* variable : {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME", "TMPDIR"})
        qputenv(variable, folders.path().toLocal8Bit());
    // Both programs get a screen that is as large as their windows want to be.
    qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" SCREEN_FILE);
    const QApplication application(argc, argv);
    // The program's own names, since its settings lie in a folder called so.
    QCoreApplication::setOrganizationName(u"Tavoran"_s);
    QCoreApplication::setApplicationName(u"Tavoran Terminal"_s);
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
