#include "chart/window/DataWindow.h"

#include "app/base/NumberFormat.h"
#include "app/base/ServerText.h"
#include "app/base/UtcTime.h"
#include "chart/window/ChartWidget.h"

#include <QDateTime>
#include <QLabel>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::StringLiterals;

DataWindow::DataWindow(const ChartWidget& chart, const QString& symbol, QWidget* parent)
    : QWidget(parent, Qt::Tool | Qt::WindowStaysOnTopHint)
    , m_chart(chart)
    , m_symbol(symbol)
    , m_label(new QLabel(this))
    , m_timer(this)
{
    constexpr int margin = 8;
    constexpr int pollMs = 150;
    setWindowTitle(tr("Data Window"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(margin, margin, margin, margin);
    layout->addWidget(m_label);
    m_label->setTextFormat(Qt::RichText);
    m_label->setMinimumWidth(200);
    resize(220, 160);
    m_timer.setInterval(pollMs);
    connect(&m_timer, &QTimer::timeout, this, &DataWindow::follow);
}

DataWindow::~DataWindow() = default;

void DataWindow::showEvent(QShowEvent* event)
{
    follow();
    m_timer.start();
    QWidget::showEvent(event);
}

void DataWindow::hideEvent(QHideEvent* event)
{
    m_timer.stop();
    QWidget::hideEvent(event);
}

void DataWindow::follow()
{
    const Shown now{m_chart.hoveredCandle(), m_chart.digits()};
    if (m_shown == now)
        return;
    m_shown = now;
    m_label->setText(text(now));
    // Grows with its texts in large letters, and does not jump back.
    m_label->setMinimumWidth(std::max(m_label->minimumWidth(), m_label->sizeHint().width()));
}

QString DataWindow::text(const Shown& shown) const
{
    if (!shown.candle)
        return tr("Hover over the chart...");
    const Candle& candle = *shown.candle;
    const QDateTime time = utcTime(candle.time);
    return tr("<b>%1</b><br>Date: %2<br>Open: %3<br>High: %4<br>Low: %5<br>Close: %6<br>Volume: %7")
        .arg(shownName(m_symbol).toHtmlEscaped(), time.toString(u"yyyy.MM.dd HH:mm"_s),
            formatPrice(candle.open, shown.digits), formatPrice(candle.high, shown.digits),
            formatPrice(candle.low, shown.digits), formatPrice(candle.close, shown.digits),
            QString::number(candle.volume));
}
