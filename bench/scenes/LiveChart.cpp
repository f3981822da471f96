#include "scenes/LiveChart.h"

#include "scenes/Series.h"

#include <QCoreApplication>
#include <QMouseEvent>

using namespace Qt::StringLiterals;

namespace {

constexpr double halfSpread = 0.00005;
constexpr double point = 0.00001;
constexpr qint32 largestVolume = 1'000;

} // namespace

LiveChart::LiveChart(QSize size, std::size_t loaded, double barWidth)
    : LiveChart(size, newestOf(loaded), barWidth)
{
}

LiveChart::LiveChart(QSize size, std::vector<Candle> candles, double barWidth)
{
    m_chart.resize(size);
    m_chart.setSymbolInfo(u"EURUSD"_s, u"M15"_s, u"Euro / US Dollar"_s);
    m_chart.setMovingAverages({{IndicatorKind::Sma, 20, QColor(0xff, 0xd5, 0x4f)},
        {IndicatorKind::Ema, 50, QColor(0x4f, 0xc3, 0xf7)},
        {IndicatorKind::Sma, 100, QColor(0xba, 0x68, 0xc8)}});
    m_chart.setPane(IndicatorKind::Rsi, true, 14);
    m_chart.setCandles(std::move(candles));
    while (m_chart.barWidth() > barWidth)
        m_chart.zoomOut();
    m_mid = m_chart.candles().back().close;
    tick(m_mid - halfSpread, m_mid + halfSpread);
    m_chart.show();
    QCoreApplication::processEvents();
    m_chart.repaint();
}

void LiveChart::paintWhatChanged()
{
    // What the event loop does next: one paint of all that was asked to be updated.
    QCoreApplication::sendPostedEvents(&m_chart, QEvent::UpdateRequest);
}

void LiveChart::sendMouse(QEvent::Type type, QPoint position, Qt::MouseButtons buttons)
{
    const Qt::MouseButton button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
    QMouseEvent event(type, position, m_chart.mapToGlobal(position), button, buttons, Qt::NoModifier);
    QCoreApplication::sendEvent(&m_chart, &event);
}

void LiveChart::pointerFrame()
{
    ++m_step;
    sendMouse(QEvent::MouseMove, QPoint(200 + m_step % 1000, 100 + m_step % 600), Qt::NoButton);
    paintWhatChanged();
}

void LiveChart::tickFrame()
{
    const double mid = m_mid + (++m_step % 2 == 0 ? point : 0.0);
    tickFrame(mid - halfSpread, mid + halfSpread);
}

void LiveChart::tickFrame(double bid, double ask)
{
    tick(bid, ask);
    paintWhatChanged();
}

void LiveChart::tick(double bid, double ask)
{
    m_chart.onTick(bid, ask, m_chart.candles().back().time);
}

void LiveChart::largestTickFrame()
{
    if (m_chart.candles().back().volume < largestVolume) {
        std::vector<Candle> candles = m_chart.candles();
        candles.back().volume = largestVolume;
        m_chart.setCandles(std::move(candles));
    }
    tickFrame();
}

void LiveChart::panFrame()
{
    if (!m_panning) {
        m_panning = true;
        sendMouse(QEvent::MouseButtonPress, QPoint(400, 500), Qt::LeftButton);
    }
    ++m_step;
    sendMouse(QEvent::MouseMove, QPoint(420 + m_step % 400, 500), Qt::LeftButton);
    paintWhatChanged();
}

void LiveChart::endPan()
{
    if (!m_panning)
        return;
    m_panning = false;
    sendMouse(QEvent::MouseButtonRelease, QPoint(420, 500), Qt::NoButton);
    m_chart.scrollToEnd();
    paintWhatChanged();
}
