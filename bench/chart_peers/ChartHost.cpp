#include "chart_peers/ChartHost.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QUrl>

#include <cstring>

using namespace Qt::StringLiterals;

namespace {

constexpr std::size_t candleFields = 6;
constexpr std::size_t tickFields = 2;

std::vector<double> numbersOf(const QByteArray& message)
{
    std::vector<double> numbers(static_cast<std::size_t>(message.size()) / sizeof(double));
    std::memcpy(numbers.data(), message.constData(), numbers.size() * sizeof(double));
    return numbers;
}

} // namespace

ChartHost::ChartHost(OpenChart open)
    : m_open(std::move(open))
{
    QObject::connect(&m_socket, &QWebSocket::binaryMessageReceived, &m_socket,
        [this](const QByteArray& message) { takeNumbers(message); });
    QObject::connect(&m_socket, &QWebSocket::textMessageReceived, &m_socket,
        [this](const QString& message) { takeText(message); });
    QObject::connect(&m_socket, &QWebSocket::disconnected, qApp, &QCoreApplication::quit);
}

void ChartHost::connectTo(quint16 port)
{
    m_socket.open(QUrl(u"ws://127.0.0.1:%1/socket"_s.arg(port)));
}

void ChartHost::takeNumbers(const QByteArray& message)
{
    const std::vector<double> numbers = numbersOf(message);
    if (m_ticksNext) {
        m_ticks.clear();
        for (std::size_t i = 0; i + tickFields <= numbers.size(); i += tickFields)
            m_ticks.push_back({numbers[i], numbers[i + 1]});
    } else {
        m_candles.clear();
        for (std::size_t i = 0; i + candleFields <= numbers.size(); i += candleFields)
            m_candles.push_back({static_cast<qint64>(numbers[i]), numbers[i + 1], numbers[i + 2],
                numbers[i + 3], numbers[i + 4], static_cast<qint32>(numbers[i + 5])});
    }
    m_ticksNext = !m_ticksNext;
}

void ChartHost::takeText(const QString& message)
{
    const QJsonObject wish = QJsonDocument::fromJson(message.toUtf8()).object();
    QJsonObject answer;
    if (wish.contains("bid"_L1)) {
        m_chart->tick(wish["bid"_L1].toDouble(), wish["ask"_L1].toDouble());
        return;
    }
    const QString what = wish["do"_L1].toString();
    if (what == "load"_L1)
        answer = load(wish["width"_L1].toDouble());
    else if (what == "frames"_L1)
        answer = frames(wish["kind"_L1].toString(), wish["count"_L1].toInt());
    else
        answer = shown();
    m_socket.sendTextMessage(QString::fromUtf8(QJsonDocument(answer).toJson(QJsonDocument::Compact)));
}

QJsonObject ChartHost::load(double barWidth)
{
    m_chart.reset();
    m_chart = m_open(std::move(m_candles), barWidth);
    m_candles = {};
    return shown();
}

QJsonObject ChartHost::frames(const QString& kind, int count)
{
    QJsonArray took;
    QElapsedTimer clock;
    for (int number = 0; number < count; ++number) {
        clock.start();
        frame(kind);
        // Until the display server has drawn it.
        QGuiApplication::sync();
        constexpr double nsPerMs = 1e6;
        took.append(static_cast<double>(clock.nsecsElapsed()) / nsPerMs);
    }
    if (kind == "pan"_L1)
        m_chart->endPan();
    return {{u"took"_s, took}};
}

QJsonObject ChartHost::shown() const
{
    QJsonArray values;
    for (const double value : m_chart->values())
        values.append(value);
    return {{u"values"_s, values}, {u"bars"_s, m_chart->bars()}};
}

void ChartHost::frame(const QString& kind)
{
    if (kind == "tick"_L1) {
        const auto [bid, ask] = m_ticks[++m_step % m_ticks.size()];
        m_chart->tickFrame(bid, ask);
    } else if (kind == "pointer"_L1) {
        m_chart->pointerFrame();
    } else {
        m_chart->panFrame();
    }
}

int runChartHost(int argc, char** argv, OpenChart open)
{
    const QApplication application(argc, argv);
    ChartHost host(std::move(open));
    host.connectTo(QByteArray(argv[argc - 1]).toUShort());
    return QApplication::exec();
}
