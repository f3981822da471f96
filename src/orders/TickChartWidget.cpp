#include "orders/TickChartWidget.h"

#include "app/base/NumberFormat.h"
#include "orders/TickChartGeometry.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace {

constexpr QColor background(0xff, 0xff, 0xff);
constexpr QColor gridColor(0xe6, 0xe6, 0xe6);
constexpr QColor scaleColor(0x66, 0x66, 0x66);
constexpr QColor askColor(0xdd, 0x33, 0x33);
constexpr QColor bidColor(0x33, 0x66, 0xcc);
constexpr QColor staleAskColor(0x73, 0x73, 0x73);
constexpr QColor staleBidColor(0x55, 0x55, 0x55);

void drawScale(QPainter& painter, const TickChartGeometry& geometry, int digits)
{
    for (int i = 0; i < TickChartGeometry::scaleSteps; ++i) {
        const auto step = geometry.scaleStep(i);
        painter.setPen(gridColor);
        painter.drawLine(geometry.plot().x(), step.y, geometry.plotRight(), step.y);
        painter.setPen(scaleColor);
        painter.drawText(geometry.scaleLabelBox(step.y), Qt::AlignLeft | Qt::AlignVCenter,
            formatPrice(step.value, digits));
    }
}

void drawSeries(
    QPainter& painter, const TickChartGeometry& geometry, const QList<double>& values, const QColor& color)
{
    painter.setPen(QPen(color, 1.1, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawLines(geometry.segments(values));
}

void drawTag(
    QPainter& painter, const TickChartGeometry& geometry, double value, const QColor& color, int digits)
{
    const QRect box = geometry.tagBox(value);
    painter.fillRect(box, color);
    painter.setPen(Qt::white);
    painter.drawText(box, Qt::AlignCenter, formatPrice(value, digits));
}

} // namespace

TickChartWidget::TickChartWidget(QWidget* parent)
    : QWidget(parent)
    , ReadAloud(static_cast<QWidget&>(*this), QAccessible::Chart)
{
    setSymbol({});
    setMinimumWidth(200);
    setAttribute(Qt::WA_StyledBackground);
    setStyleSheet("background:#ffffff;"_L1);
}

void TickChartWidget::setDigits(int digits)
{
    m_digits = digits;
}

void TickChartWidget::clear()
{
    m_bids.clear();
    m_asks.clear();
    noteReading();
}

void TickChartWidget::append(double bid, double ask)
{
    if (!std::isfinite(bid) || !std::isfinite(ask))
        return;
    m_bids.append(bid);
    m_asks.append(ask);
    if (m_bids.size() > mostQuotes) {
        m_bids.removeFirst();
        m_asks.removeFirst();
    }
    noteReading();
}

void TickChartWidget::setSymbol(const QString& symbol)
{
    //: %1 a symbol
    setAccessibleName(tr("Tick chart %1").arg(symbol));
}

QString TickChartWidget::reading() const
{
    if (m_bids.isEmpty())
        return tr("No prices yet");
    const double lowest = std::min(
        *std::min_element(m_bids.begin(), m_bids.end()), *std::min_element(m_asks.begin(), m_asks.end()));
    const double highest = std::max(
        *std::max_element(m_bids.begin(), m_bids.end()), *std::max_element(m_asks.begin(), m_asks.end()));
    const QString text = m_stale ? tr("Disconnected; last bid %1, ask %2, lowest %3, highest %4")
                                 : tr("Bid %1, ask %2, lowest %3, highest %4");
    return text.arg(formatPrice(m_bids.last(), m_digits), formatPrice(m_asks.last(), m_digits),
        formatPrice(lowest, m_digits), formatPrice(highest, m_digits));
}

void TickChartWidget::setStale(bool stale)
{
    m_stale = stale;
    update();
    noteReading();
}

void TickChartWidget::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(rect(), background);
    const auto geometry = TickChartGeometry::of(size(), m_bids, m_asks);
    if (!geometry)
        return;
    painter.setFont(QFont(u"Segoe UI"_s, 7));
    drawScale(painter, *geometry, m_digits);
    const QColor ask = m_stale ? staleAskColor : askColor;
    const QColor bid = m_stale ? staleBidColor : bidColor;
    drawSeries(painter, *geometry, m_asks, ask);
    drawSeries(painter, *geometry, m_bids, bid);
    drawTag(painter, *geometry, m_asks.last(), ask, m_digits);
    drawTag(painter, *geometry, m_bids.last(), bid, m_digits);
}
