#include "soak/Sampler.h"

#include "chart/window/ChartWidget.h"
#include "chart/window/ChartWindow.h"
#include "mainwindow/ChartArea.h"
#include "mainwindow/account/AccountBook.h"
#include "net/WsClient.h"
#include "soak/ProcessFigures.h"
#include "soak/Relay.h"
#include "soak/Trader.h"
#include "soak/XResources.h"
#include "support/LiveObjects.h"

#include <QAbstractEventDispatcher>
#include <QAction>
#include <QApplication>
#include <QTreeView>
#include <QWindow>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

int rowsOf(const QWidget& window, const QString& list)
{
    const auto* view = window.findChild<QTreeView*>(list);
    return view ? view->model()->rowCount() : 0;
}

} // namespace

Sampler::Sampler(const Trader& trader, const Relay& relay, qint64 platformProcess, const QString& file)
    : m_trader(trader)
    , m_relay(relay)
    , m_platformProcess(platformProcess)
    , m_file(file)
{
    if (!file.isEmpty() && !m_file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        qFatal("%s cannot be written", qUtf8Printable(file));
    m_clock.start();
    if (const auto* feed = liveobjects::first<WsClient>())
        count(*feed);
}

void Sampler::count(const WsClient& feed)
{
    QObject::connect(&feed, &WsClient::connected, &m_ears, [this] {
        ++m_connects;
        m_messagesBefore = m_messages;
    });
    // Told of each message, and of each ping that is sent.
    QObject::connect(&feed, &WsClient::trafficChanged, &m_ears, [this](quint64 received, quint64) {
        if (std::exchange(m_received, received) != received)
            ++m_messages;
    });
}

qint64 Sampler::underWay() const
{
    return m_relay.sentHere() - (m_messages - m_messagesBefore);
}

double Sampler::Sample::of(const QByteArray& name) const
{
    for (const auto& [known, figure] : figures) {
        if (known == name)
            return figure;
    }
    return 0.0;
}

void Sampler::Sample::lower(const Sample& other)
{
    for (auto& [name, figure] : figures)
        figure = std::min(figure, other.of(name));
    for (auto each = classes.begin(); each != classes.end(); ++each)
        each.value() = std::min(each.value(), other.classes.value(each.key()));
}

Sampler::Sample Sampler::take(bool rest)
{
    m_gaps.pause();
    const GapWatch::Gaps gaps = m_gaps.take();
    const qint64 heap = heapInUse();
    const ProcessFigures own = ProcessFigures::of(QCoreApplication::applicationPid());
    const ProcessFigures platform = ProcessFigures::of(m_platformProcess);
    const XResources x = XResources::ofThisProcess();
    const QList<QObject*> objects = liveobjects::here();
    int timers = 0;
    int widgets = 0;
    int actions = 0;
    int nativeWindows = 0;
    for (QObject* object : objects) {
        nativeWindows += qobject_cast<QWindow*>(object) ? 1 : 0;
        timers += static_cast<int>(QAbstractEventDispatcher::instance()->registeredTimers(object).size());
        widgets += object->isWidgetType() ? 1 : 0;
        actions += qobject_cast<QAction*>(object) ? 1 : 0;
    }
    qsizetype candles = 0;
    qsizetype drawings = 0;
    int experts = 0;
    for (const ChartWindow* chart : m_trader.area().charts()) {
        candles += std::ssize(chart->chart().candles());
        drawings += chart->chart().drawings().size();
        experts += chart->expertName().isEmpty() ? 0 : 1;
    }
    const QWidget& window = *m_trader.area().window();
    const auto number = [](auto value) { return static_cast<double>(value); };

    Sample sample;
    sample.classes = liveobjects::classes(objects);
    sample.figures = {
        {"seconds", seconds()},
        {"rest", rest ? 1 : 0},
        {"rss_kb", number(own.rssKb)},
        {"pss_kb", number(own.pssKb)},
        {"heap_kb", number(heap) / 1024.0},
        {"files", own.files},
        {"sockets", own.sockets},
        {"threads", own.threads},
        {"objects", number(objects.size())},
        {"timer_objects", sample.classes.value("QTimer")},
        {"timers", timers},
        {"widgets", widgets},
        {"top_levels", number(QApplication::topLevelWidgets().size())},
        {"actions", actions},
        {"native_windows", nativeWindows},
        {"x_windows", x.windows},
        {"x_pixmaps", x.pixmaps},
        {"x_resources", x.all},
        {"journal_rows", rowsOf(window, u"journalList"_s) + rowsOf(window, u"expertsList"_s)},
        {"history_rows", rowsOf(window, u"historyList"_s)},
        {"trade_rows", rowsOf(window, u"tradeList"_s)},
        {"alert_rows", rowsOf(window, u"alertsList"_s)},
        {"charts", number(m_trader.area().charts().size())},
        {"experts", experts},
        {"candles", number(candles)},
        {"drawings", number(drawings)},
        {"messages", number(m_messages)},
        {"passed", number(m_relay.passed())},
        {"flooded", number(m_relay.flooded())},
        {"under_way", number(underWay())},
        {"connects", m_connects},
        {"cuts", number(m_relay.cuts())},
        {"activities", m_trader.total()},
        {"timeframe_switches", m_trader.done().value(u"timeframe switches"_s)},
        {"gap_ms", gaps.longestMs},
        {"gap_cpu_ms", gaps.longestRunMs},
        {"gap_p99_ms", gaps.p99Ms},
        {"platform_rss_kb", number(platform.rssKb)},
        {"platform_files", platform.files},
        {"platform_sockets", platform.sockets},
        {"platform_threads", platform.threads},
    };
    write(sample);
    m_gaps.resume();
    return sample;
}

void Sampler::write(const Sample& sample)
{
    if (!m_file.isOpen())
        return;
    QByteArrayList names;
    QByteArrayList values;
    for (const auto& [name, figure] : sample.figures) {
        names.append(name);
        values.append(QByteArray::number(figure, 'f', figure == static_cast<double>(qint64(figure)) ? 0 : 1));
    }
    if (m_file.pos() == 0)
        m_file.write(names.join(',') + '\n');
    m_file.write(values.join(',') + '\n');
    m_file.flush();
}
