#include "scenes/FloorChart.h"

#include "app/base/UtcTime.h"
#include "scenes/PlainIndicators.h"

#include <QDateTime>
#include <QPainter>
#include <QPolygon>

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr QColor background(0, 0, 0);
constexpr QColor grid(0x23, 0x23, 0x23);
constexpr QColor axis(0xc0, 0xc0, 0xc0);
constexpr QColor up(0, 0xe6, 0);
constexpr QColor down(0xff, 0xff, 0xff);
constexpr QColor volumeColor(0x2f, 0x6b, 0x3f);
constexpr QColor bidColor(0x3b, 0xa7, 0xff);
constexpr QColor askColor(0xff, 0x4a, 0x4a);
constexpr double spread = 0.00010;
constexpr int paneHeight = 130;
constexpr std::array averageColors{
    QColor(0xff, 0xd5, 0x4f), QColor(0x4f, 0xc3, 0xf7), QColor(0xba, 0x68, 0xc8)};
const std::array averageTexts{u"SMA(20)"_s, u"EMA(50)"_s, u"SMA(100)"_s};

QString price(double value)
{
    return QString::number(value, 'f', 5);
}

void tag(QPainter& painter, int left, int y, const QColor& fill, const QColor& text, double value)
{
    const QRect box(left, y - 9, 66, 18);
    painter.fillRect(box, fill);
    painter.setPen(text);
    painter.drawText(box, Qt::AlignCenter, price(value));
}

} // namespace

FloorChart::FloorChart(QSize size, std::vector<Candle> candles, double barWidth)
    : m_image(size, QImage::Format_RGB32)
    , m_candles(std::move(candles))
    , m_barWidth(barWidth)
    , m_rightBar(static_cast<double>(m_candles.size()) - 1)
    , m_plot(0, 0, size.width() - 68, size.height() - 22 - paneHeight - 1)
    , m_pane(0, size.height() - 22 - paneHeight, size.width() - 68, paneHeight)
    , m_averages{plain::simple(m_candles, 20), plain::exponential(m_candles, 50),
          plain::simple(m_candles, 100)}
    , m_rsi(plain::rsi(m_candles, 14))
{
}

void FloorChart::setLastClose(double close)
{
    m_candles.back().close = close;
}

int FloorChart::x(qsizetype index) const
{
    return static_cast<int>(m_plot.right() - (m_rightBar - static_cast<double>(index)) * m_barWidth);
}

int FloorChart::y(double value) const
{
    return static_cast<int>((m_max - value) / (m_max - m_min) * m_plot.height());
}

void FloorChart::paint()
{
    m_last = std::min<qsizetype>(std::lround(m_rightBar), static_cast<qsizetype>(m_candles.size()) - 1);
    m_first = std::max<qsizetype>(m_last - static_cast<qsizetype>(m_plot.width() / m_barWidth), 0);
    m_min = 1e300;
    m_max = -1e300;
    for (qsizetype i = m_first; i <= m_last; ++i) {
        m_min = std::min(m_min, m_candles[static_cast<std::size_t>(i)].low);
        m_max = std::max(m_max, m_candles[static_cast<std::size_t>(i)].high);
    }
    const double margin = (m_max - m_min) * 0.06;
    m_min -= margin;
    m_max += margin;

    QPainter painter(&m_image);
    QFont font(u"Segoe UI"_s, 8);
    painter.setFont(font);
    painter.fillRect(m_image.rect(), background);
    paintGrid(painter);
    paintBars(painter);
    paintAverages(painter);
    paintOverlays(painter);
    paintRsi(painter);
}

void FloorChart::paintGrid(QPainter& painter)
{
    const int lines = m_plot.height() / 46;
    const double step = (m_max - m_min) / lines;
    for (int i = 1; i < lines; ++i) {
        const double value = m_min + i * step;
        painter.setPen(QPen(grid, 1, Qt::DotLine));
        painter.drawLine(0, y(value), m_plot.right(), y(value));
        painter.setPen(axis);
        painter.drawText(
            QRect(m_plot.right() + 4, y(value) - 8, 62, 16), Qt::AlignLeft | Qt::AlignVCenter, price(value));
    }
    const qsizetype every = std::max(static_cast<qsizetype>(90 / m_barWidth), qsizetype(1));
    for (qsizetype i = m_last - m_last % every; i >= m_first; i -= every) {
        painter.setPen(QPen(grid, 1, Qt::DotLine));
        painter.drawLine(x(i), 0, x(i), m_plot.bottom());
        painter.setPen(axis);
        painter.drawText(QRect(x(i) - 44, m_plot.bottom() + 3, 88, 18), Qt::AlignCenter,
            utcTime(m_candles[static_cast<std::size_t>(i)].time).toString(u"HH:mm"_s));
    }
}

void FloorChart::paintBars(QPainter& painter)
{
    qint32 most = 1;
    for (qsizetype i = m_first; i <= m_last; ++i)
        most = std::max(most, m_candles[static_cast<std::size_t>(i)].volume);
    const int histogram = static_cast<int>(m_plot.height() * 0.14);
    const int volumeWidth = std::max(static_cast<int>(m_barWidth * 0.6), 1);
    const int bodyWidth = std::max(static_cast<int>(m_barWidth * 0.72), 1);
    for (qsizetype i = m_first; i <= m_last; ++i) {
        const Candle& bar = m_candles[static_cast<std::size_t>(i)];
        const int height = static_cast<int>(static_cast<double>(bar.volume) / most * histogram);
        painter.fillRect(x(i) - volumeWidth / 2, m_plot.bottom() - height, volumeWidth, height, volumeColor);
    }
    for (qsizetype i = m_first; i <= m_last; ++i) {
        const Candle& bar = m_candles[static_cast<std::size_t>(i)];
        const bool rising = bar.close >= bar.open;
        const QColor& color = rising ? up : down;
        const int top = y(std::max(bar.open, bar.close));
        const int bottom = y(std::min(bar.open, bar.close));
        painter.fillRect(x(i), y(bar.high), 1, y(bar.low) - y(bar.high) + 1, color);
        const QRect body(x(i) - bodyWidth / 2, top, bodyWidth, std::max(bottom - top, 1));
        painter.fillRect(body, color);
        if (rising && body.width() > 2 && body.height() > 2)
            painter.fillRect(body.adjusted(1, 1, -1, -1), background);
    }
}

void FloorChart::paintAverages(QPainter& painter)
{
    int left = 6;
    for (std::size_t i = 0; i < m_averages.size(); ++i) {
        QPolygon line;
        for (qsizetype bar = m_first; bar <= m_last; ++bar) {
            const double value = m_averages.at(i)[static_cast<std::size_t>(bar)];
            if (!std::isnan(value))
                line.append(QPoint(x(bar), y(value)));
        }
        painter.setPen(averageColors.at(i));
        painter.drawPolyline(line);
        painter.drawText(left, 28, averageTexts.at(i));
        left += painter.fontMetrics().horizontalAdvance(averageTexts.at(i)) + 12;
    }
}

void FloorChart::paintRsi(QPainter& painter)
{
    painter.fillRect(m_pane, QColor(0x0a, 0x0a, 0x0a));
    painter.setPen(grid);
    painter.drawLine(m_pane.topLeft(), m_pane.topRight());
    const auto row = [this](double value) {
        return static_cast<int>(m_pane.top() + m_pane.height() * (100.0 - value) / 100.0);
    };
    for (const int bound : {30, 70}) {
        painter.setPen(QPen(QColor(0x44, 0x44, 0x44), 1, Qt::DotLine));
        painter.drawLine(m_pane.left(), row(bound), m_pane.right(), row(bound));
        painter.setPen(axis);
        painter.drawText(QRect(m_pane.right() + 4, row(bound) - 8, 62, 16), Qt::AlignLeft | Qt::AlignVCenter,
            QString::number(bound));
    }
    QPolygon line;
    for (qsizetype bar = m_first; bar <= m_last; ++bar) {
        const double value = m_rsi[static_cast<std::size_t>(bar)];
        if (!std::isnan(value))
            line.append(QPoint(x(bar), row(value)));
    }
    painter.setPen(QColor(0xc7, 0x92, 0xea));
    painter.drawPolyline(line);
    painter.setPen(axis);
    painter.drawText(m_pane.left() + 6, m_pane.top() + 14, u"RSI(14)"_s);
}

void FloorChart::paintOverlays(QPainter& painter)
{
    const double bid = m_candles.back().close - spread / 2;
    for (const auto& [value, color] : {std::pair(bid + spread, askColor), std::pair(bid, bidColor)}) {
        painter.setPen(QPen(color, 1, Qt::DashLine));
        painter.drawLine(0, y(value), m_plot.right(), y(value));
        tag(painter, m_plot.right() + 1, y(value), color, Qt::black, value);
    }
    if (m_pointer.x() >= 0) {
        painter.setPen(QPen(QColor(0x77, 0x77, 0x77), 1, Qt::DashLine));
        painter.drawLine(0, m_pointer.y(), m_plot.right(), m_pointer.y());
        painter.drawLine(m_pointer.x(), 0, m_pointer.x(), m_plot.bottom());
        const double value = m_max - m_pointer.y() * (m_max - m_min) / m_plot.height();
        tag(painter, m_plot.right() + 1, m_pointer.y(), QColor(0x33, 0x33, 0x33), Qt::white, value);
        const auto index
            = static_cast<qsizetype>(std::lround(m_rightBar - (m_plot.right() - m_pointer.x()) / m_barWidth));
        if (index >= m_first && index <= m_last) {
            const Candle& bar = m_candles[static_cast<std::size_t>(index)];
            const QRect box(m_pointer.x() - 50, m_plot.bottom() + 2, 100, 19);
            painter.fillRect(box, QColor(0x33, 0x33, 0x33));
            painter.setPen(Qt::white);
            painter.drawText(box, Qt::AlignCenter, utcTime(bar.time).toString(u"dd MMM HH:mm"_s));
            painter.setPen(axis);
            painter.drawText(QRect(6, 4, m_plot.width() - 12, 16), Qt::AlignLeft | Qt::AlignVCenter,
                u"O: %1   H: %2   L: %3   C: %4"_s.arg(
                    price(bar.open), price(bar.high), price(bar.low), price(bar.close)));
        }
    } else {
        const Candle& bar = m_candles.back();
        painter.setPen(axis);
        painter.drawText(6, 13,
            u"EURUSD,M15: Euro / US Dollar   O: %1  H: %2  L: %3  C: %4"_s.arg(
                price(bar.open), price(bar.high), price(bar.low), price(bar.close)));
    }
    painter.setPen(grid);
    painter.drawLine(m_plot.right(), 0, m_plot.right(), m_plot.bottom());
    painter.drawLine(0, m_plot.bottom(), m_plot.right(), m_plot.bottom());
}
