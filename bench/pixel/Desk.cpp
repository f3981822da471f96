#include "pixel/Desk.h"

#include "app/base/NumberFormat.h"
#include "app/base/TerminalSettings.h"
#include "chart/data/ChartView.h"
#include "mainwindow/ChartsLayout.h"
#include "pixel/Monotonic.h"
#include "pixel/OwnProcessors.h"
#include "scenes/Waiting.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QWidget>

#include <algorithm>
#include <cmath>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr QSize screenSize(1920, 1200);
// What the panes of the main window leave to the charts.
constexpr QSize roomForCharts(1540, 840);

PixelRect toPixels(const QRect& rectangle)
{
    return {rectangle.x(), rectangle.y(), rectangle.width(), rectangle.height()};
}

QByteArray geometryOf(const QRect& place)
{
    QWidget widget;
    widget.setGeometry(place);
    return widget.saveGeometry();
}

/// On that display, for programs that are started from now on.
QString terminalOn(const QString& display)
{
    qputenv("DISPLAY", display.toLatin1());
    qputenv("QT_QPA_PLATFORM", "xcb");
    return QStringLiteral(TERMINAL_PROGRAM);
}

} // namespace

Desk::Settings::Settings(const StubPlatform& platform, int charts)
{
    const int rows = static_cast<int>(std::sqrt(charts));
    const int columns = (charts + rows - 1) / rows;
    const QSize size(roomForCharts.width() / columns, roomForCharts.height() / rows);
    QList<SavedChart> saved;
    for (int i = 0; i < charts; ++i) {
        const QPoint place(i % columns * size.width(), i / columns * size.height());
        // A day's candle, so that none ends while prices are watched.
        saved.append({StubPlatform::symbolName(i), u"1d"_s, geometryOf({place, size}), false, {}});
    }
    TerminalSettings& settings = TerminalSettings::instance();
    settings.setServerUrl(platform.url());
    settings.setChartsLayout(chartsLayoutText(saved));
    settings.setWindowLayout(geometryOf({QPoint(0, 0), screenSize}), {});
    settings.setRestoringLayout(false);
    if (!settings.sync())
        giveUp(u"the settings could not be written"_s);
}

Desk::Desk(int charts)
    : m_charts(charts)
    , m_server(screenSize)
    , m_file(m_server.screenFile().toStdString())
    , m_settings(m_platform, charts)
    , m_program(terminalOn(m_server.display()))
{
    m_program.nextLine("painted LoginDialog");
    m_program.tell("signin");
    m_program.nextLine("painted MainWindow");
    for (int i = 0; i < charts; ++i)
        m_program.nextLine("charted");
    m_isApart = ownprocessors::separate(
        m_program.processId(), {m_server.processId(), QCoreApplication::applicationPid()});
    waitForRest({0, 0, screenSize.width(), screenSize.height()});
    findPlaces();
}

void Desk::findPlaces()
{
    m_program.tell("places");
    // Of each chart, and of its button.
    for (int i = 0; i < 2 * m_charts; ++i) {
        const QByteArrayList words = m_program.nextLine("place").split(' ');
        const QRect place(
            words.value(3).toInt(), words.value(4).toInt(), words.value(5).toInt(), words.value(6).toInt());
        if (!QRect(QPoint(0, 0), screenSize).contains(place))
            giveUp(u"a chart reaches beyond the screen"_s);
        const QByteArray symbol = words.value(2);
        if (words.value(1) == "chart")
            m_places.insert(symbol, place);
        else if (symbol == StubPlatform::symbolName(0).toLatin1())
            m_buy = place;
    }
}

qint64 Desk::send(const QString& message)
{
    const qint64 now = monotonicNs();
    m_platform.client->sendTextMessage(message);
    m_platform.client->flush();
    return now;
}

void Desk::waitForRest(const PixelRect& part) const
{
    constexpr int looks = 4;
    constexpr int betweenMs = 50;
    Picture last = screen().picture(part);
    for (int same = 0; same < looks;) {
        pauseFor(betweenMs);
        same = screen().shows(part, last) ? same + 1 : 0;
        last = screen().picture(part);
    }
}

void Desk::checkNewestCloses()
{
    // On a machine where others take the processors, snapshots still wait to be read.
    constexpr qint64 patienceMs = 60'000;
    QElapsedTimer waited;
    waited.start();
    QString wrong = wrongReading();
    while (!wrong.isEmpty() && waited.elapsed() < patienceMs) {
        pauseFor(100);
        wrong = wrongReading();
    }
    if (!wrong.isEmpty())
        giveUp(u"a chart has not taken the last price, "_s + wrong);
}

QString Desk::wrongReading()
{
    m_program.tell("readings");
    QString wrong;
    for (int i = 0; i < m_charts; ++i) {
        const QByteArray line = m_program.nextLine("reading");
        const QByteArray symbol = line.split(' ').value(1);
        const QString reading = QString::fromUtf8(line.mid(line.indexOf(symbol)));
        const int chart = symbol.mid(3).toInt();
        const QString close = u"close %1,"_s.arg(formatPrice(m_prices.middle(chart), StubPlatform::digits));
        if (!reading.contains(close))
            wrong = u"%1 but: %2"_s.arg(close, reading);
    }
    return wrong;
}

PixelRect Desk::axisOf(int chart) const
{
    QRect place = m_places.value(StubPlatform::symbolName(chart).toLatin1());
    place.setLeft(place.right() + 1 - ChartView::priceAxisWidth);
    return toPixels(place);
}

void Desk::showEverywhere(int price)
{
    std::vector<std::pair<PixelRect, Picture>> before;
    for (int chart = 0; chart < m_charts; ++chart) {
        if (m_prices.of(chart) != price)
            before.emplace_back(axisOf(chart), screen().picture(axisOf(chart)));
        m_prices.set(chart, price);
    }
    send(m_prices.message(0, m_charts - 1));
    waitUntil(
        [&] {
            return std::none_of(before.cbegin(), before.cend(),
                [this](const auto& axis) { return screen().shows(axis.first, axis.second); });
        },
        u"a price on every chart"_s);
    waitForRest({0, 0, screenSize.width(), screenSize.height()});
}

std::vector<Spot> Desk::learnSpots()
{
    std::vector<std::vector<Picture>> pictures(static_cast<std::size_t>(m_charts));
    // In the first round the newest candles get their highs and lows.
    for (const bool keep : {false, true}) {
        for (int price = 0; price < ChartedPrices::prices; ++price) {
            showEverywhere(price);
            for (int chart = 0; keep && chart < m_charts; ++chart)
                pictures[static_cast<std::size_t>(chart)].push_back(screen().picture(axisOf(chart)));
        }
    }
    std::vector<Spot> spots;
    for (int chart = 0; chart < m_charts; ++chart) {
        const auto spot = Spot::of(axisOf(chart), pictures[static_cast<std::size_t>(chart)]);
        if (!spot)
            giveUp(u"two prices look the same on chart %1"_s.arg(chart));
        spots.push_back(*spot);
    }
    return spots;
}
