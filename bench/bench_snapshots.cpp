#include "app/base/TerminalSettings.h"
#include "chart/window/ChartWidget.h"
#include "chart/window/ChartWindow.h"
#include "mainwindow/MainWindow.h"
#include "net/WsClient.h"
#include "panes/TerminalPane.h"
#include "scenes/Series.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <benchmark/benchmark.h>

#include <array>

using namespace Qt::StringLiterals;

namespace {

QString symbolName(int index)
{
    return u"SYM%1"_s.arg(index, 4, 10, QLatin1Char('0'));
}

enum class Prices { Numbers, Strings };

/// A feed message with every symbol; `moved` of them differ from one `phase` to the next.
QString snapshot(int symbols, int moved, int phase, Prices prices)
{
    const auto price = [prices](double value) {
        return prices == Prices::Numbers ? QJsonValue(value) : QJsonValue(QString::number(value, 'f', 5));
    };
    QJsonObject data;
    for (int i = 0; i < symbols; ++i) {
        const double bid = 1.1 + i * 0.01 + (i < moved ? phase * 0.00001 : 0.0);
        data.insert(symbolName(i), QJsonObject{{u"bid"_s, price(bid)}, {u"ask"_s, price(bid + 0.0001)}});
    }
    const QJsonObject message{{u"type"_s, u"price_update"_s}, {u"data"_s, data}};
    return QString::fromUtf8(QJsonDocument(message).toJson(QJsonDocument::Compact));
}

/// Alerts on both sides of every symbol's price, too far away to fire.
QString waitingAlerts(int count, int symbols)
{
    QJsonArray alerts;
    for (int i = 0; i < count; ++i) {
        const bool above = i % 2 == 0;
        alerts.append(QJsonObject{{u"symbol"_s, symbolName(i / 2 % symbols)}, {u"above"_s, above},
            {u"price"_s, above ? 1000.0 + i : 0.5 / (i + 1)}, {u"triggered"_s, false}});
    }
    return QString::fromUtf8(QJsonDocument(alerts).toJson(QJsonDocument::Compact));
}

/// What the window finds when it starts.
void prepareSettings(int alerts, int symbols)
{
    // Nobody answers there, and nobody is asked twice.
    TerminalSettings::instance().setServerUrl(u"http://127.0.0.1:9"_s);
    TerminalSettings::instance().setAlerts(waitingAlerts(alerts, symbols));
}

constexpr int usualAlerts = 100;

/// The whole main window with open trades, alerts and some charts, fed like the real one.
class Desk final {
public:
    Desk(int symbols, int trades, int charts, int alerts)
        : m_window((prepareSettings(alerts, symbols), nullptr))
    {
        QJsonArray records;
        for (int i = 0; i < symbols; ++i)
            records.append(QJsonObject{{u"name"_s, symbolName(i)}, {u"digits"_s, 5}, {u"dailyOpen"_s, 1.0}});
        m_window.onHello({{u"symbols"_s, records}});
        QJsonArray open;
        for (int i = 0; i < trades; ++i)
            open.append(QJsonObject{
                {u"id"_s, QString::number(i)}, {u"symbol"_s, symbolName(i)}, {u"type"_s, u"BUY"_s}});
        m_window.findChild<TerminalPane*>()->setOpenRows(open, {}, {});
        for (int i = 0; i < charts; ++i)
            m_window.openChart(symbolName(i));
        for (const ChartWindow* chart : m_window.findChildren<ChartWindow*>())
            chart->chart().setCandles(walk(1000));
        m_window.show();
        QCoreApplication::processEvents();
        QObject::connect(&m_feed, &WsClient::pricesUpdated, &m_window, &MainWindow::onPrices);
    }

    void receive(const QString& text) { m_feed.onTextMessage(text); }

private:
    WsClient m_feed{TerminalSettings::instance()};
    MainWindow m_window;
};

void parse(benchmark::State& state, int symbols, int moved, Prices prices)
{
    const std::array<QByteArray, 2> texts{
        snapshot(symbols, moved, 0, prices).toUtf8(), snapshot(symbols, moved, 1, prices).toUtf8()};
    std::size_t turn = 0;
    for ([[maybe_unused]] auto _ : state)
        benchmark::DoNotOptimize(QJsonDocument::fromJson(texts[++turn % 2]));
}

void receive(benchmark::State& state, int symbols, int moved, int trades, int charts,
    Prices prices = Prices::Numbers, int alerts = usualAlerts)
{
    Desk desk(symbols, trades, charts, alerts);
    const std::array<QString, 2> texts{
        snapshot(symbols, moved, 0, prices), snapshot(symbols, moved, 1, prices)};
    desk.receive(texts[0]);
    std::size_t turn = 0;
    for ([[maybe_unused]] auto _ : state)
        desk.receive(texts[++turn % 2]);
}

/// A hundred snapshots a second on a screen of sixty frames: what has changed is painted with three of five.
void receiveAndPaint(benchmark::State& state, int symbols, int moved, int trades, int charts)
{
    Desk desk(symbols, trades, charts, usualAlerts);
    const std::array<QString, 2> texts{
        snapshot(symbols, moved, 0, Prices::Numbers), snapshot(symbols, moved, 1, Prices::Numbers)};
    constexpr int framesASecond = 60;
    constexpr int snapshotsASecond = 100;
    std::size_t turn = 0;
    int due = 0;
    for ([[maybe_unused]] auto _ : state) {
        desk.receive(texts[++turn % 2]);
        due += framesASecond;
        if (due >= snapshotsASecond) {
            due -= snapshotsASecond;
            QCoreApplication::processEvents();
        }
    }
}

BENCHMARK_CAPTURE(parse, 500_symbols, 500, 100, Prices::Numbers)->Name("snapshot/parse_500");
BENCHMARK_CAPTURE(parse, 500_strings, 500, 100, Prices::Strings)->Name("snapshot/parse_500_strings");
BENCHMARK_CAPTURE(receive, 500_symbols, 500, 100, 50, 4)->Name("snapshot/500_moved_100");
BENCHMARK_CAPTURE(receive, 500_strings, 500, 100, 50, 4, Prices::Strings)
    ->Name("snapshot/500_strings_moved_100");
BENCHMARK_CAPTURE(receive, 500_many_alerts, 500, 100, 50, 4, Prices::Numbers, 10000)
    ->Name("snapshot/500_moved_100_alerts_10000");
BENCHMARK_CAPTURE(receive, 500_symbols_still, 500, 0, 50, 4)->Name("snapshot/500_still");
BENCHMARK_CAPTURE(receiveAndPaint, 500_symbols, 500, 100, 50, 4)
    ->Name("snapshot/500_moved_100_painted")
    ->MeasureProcessCPUTime();
BENCHMARK_CAPTURE(receive, 2000_symbols, 2000, 2000, 50, 4)->Name("snapshot/2000_moved_all");

} // namespace
