#include "app/base/TerminalSettings.h"
#include "chart/window/ChartWidget.h"
#include "chart/window/ChartWindow.h"
#include "mainwindow/ChartArea.h"
#include "mainwindow/MainWindow.h"
#include "mainwindow/StatusPanel.h"
#include "net/WsClient.h"
#include "scenes/FeedSource.h"
#include "scenes/Series.h"
#include "support/GapWatch.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QJsonArray>
#include <QJsonObject>

#include <benchmark/benchmark.h>

using namespace Qt::StringLiterals;

namespace {

constexpr int symbols = 20;

QByteArray symbolName(int index)
{
    return "SYM" + QByteArray::number(1000 + index);
}

/// Messages of one symbol each, by turns, and an event behind them. Each may have so many bytes that say
/// nothing.
std::vector<QByteArray> priceMessages(int count, qsizetype padding = 0)
{
    const QByteArray head = padding > 0
        ? "{\"pad\":\"" + QByteArray(padding, 'x') + "\",\"type\":\"price_update\",\"data\":{\""
        : QByteArray("{\"type\":\"price_update\",\"data\":{\"");
    std::vector<QByteArray> texts;
    for (int i = 0; i < count; ++i) {
        const double bid = 1.1 + (i / symbols % 100) * 0.00001;
        texts.push_back(head + symbolName(i % symbols) + "\":{\"bid\":" + QByteArray::number(bid, 'f', 5)
            + ",\"ask\":" + QByteArray::number(bid + 0.0001, 'f', 5) + "}}}");
    }
    texts.push_back(R"({"type":"orders_changed"})");
    return texts;
}

/// Nobody answers there: the charts get no history but what they are given here.
void leaveRequestsUnanswered()
{
    TerminalSettings::instance().setServerUrl(u"http://127.0.0.1:9"_s);
}

/// The main window with twenty charts side by side, fed through a socket.
class Desk final {
public:
    Desk()
        : m_window((leaveRequestsUnanswered(), nullptr))
    {
        QJsonArray records;
        for (int i = 0; i < symbols; ++i)
            records.append(QJsonObject{
                {u"name"_s, QString::fromLatin1(symbolName(i))}, {u"digits"_s, 5}, {u"dailyOpen"_s, 1.0}});
        m_window.onHello({{u"symbols"_s, records}});
        for (int i = 0; i < symbols; ++i)
            m_window.openChart(QString::fromLatin1(symbolName(i)));
        for (const ChartWindow* chart : m_window.findChildren<ChartWindow*>())
            chart->chart().setCandles(walk(1000));
        m_window.resize(1600, 900);
        m_window.show();
        m_window.findChild<ChartArea*>()->tileSubWindows();
        m_window.findChild<StatusPanel*>()->follow(m_feed);
        QObject::connect(&m_feed, &WsClient::pricesUpdated, &m_window, &MainWindow::onPrices);
        QObject::connect(&m_feed, &WsClient::connected, &m_turn, &QEventLoop::quit);
        QObject::connect(&m_feed, &WsClient::ordersChanged, &m_turn, &QEventLoop::quit);
        TerminalSettings::instance().setServerUrl(m_source.url());
        m_feed.start();
        m_turn.exec();
        QCoreApplication::processEvents();
    }

    /// The longest gap until the last of the messages is handled, and that time itself.
    void receive(benchmark::State& state, const std::vector<QByteArray>& texts, int batch)
    {
        QElapsedTimer clock;
        clock.start();
        m_source.send(texts, batch);
        static_cast<void>(m_watch.take()); // from here on, without the making of what is sent
        m_watch.resume();
        m_turn.exec();
        m_watch.pause();
        const GapWatch::Gaps gaps = m_watch.take();
        state.counters["gap_ms"] = gaps.longestMs;
        state.counters["gap_cpu_ms"] = gaps.longestRunMs;
        state.counters["whole_ms"] = static_cast<double>(clock.elapsed());
    }

private:
    FeedSource m_source;
    MainWindow m_window;
    WsClient m_feed{TerminalSettings::instance()};
    QEventLoop m_turn;
    GapWatch m_watch{1};
};

void receive(benchmark::State& state, int messages, int aMillisecond, qsizetype padding = 0)
{
    const std::vector<QByteArray> texts = priceMessages(messages, padding);
    Desk desk;
    for ([[maybe_unused]] auto _ : state)
        desk.receive(state, texts, aMillisecond);
}

BENCHMARK_CAPTURE(receive, burst, 50'000, 0)->Name("feed/burst_50000")->Iterations(1)->UseRealTime();
// More than may wait to be read.
BENCHMARK_CAPTURE(receive, overload, 100'000, 0, 400)
    ->Name("feed/overload_100000")
    ->Iterations(1)
    ->UseRealTime();
BENCHMARK_CAPTURE(receive, steady, 15'000, 5)
    ->Name("feed/steady_5000_a_second")
    ->Iterations(1)
    ->UseRealTime();

} // namespace
