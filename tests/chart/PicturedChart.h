#pragma once

#include "chart/DrawingFixtures.h"
#include "chart/layers/ChartFrame.h"
#include "chart/window/ChartWidget.h"

#include <QImage>
#include <QPainter>

#include <functional>

/// A chart of 360 by 240 pixels with the same bars every time and one of everything on it, for pictures that
/// are compared with stored ones.
class PicturedChart final {
    Q_DISABLE_COPY_MOVE(PicturedChart)

public:
    static constexpr int bars = 70;
    static constexpr QPoint pointer{200, 96};

    explicit PicturedChart(int count = bars)
        : m_drawings(fixtures::oneOfEachKind(count))
    {
        using namespace Qt::StringLiterals;
        m_drawings.last().selected = false;
        m_drawings.last().points = {
            {fixtures::barTime(36), 1.0905}, {fixtures::barTime(62), 1.1065}}; // both ends within the picture
        m_chart.resize(360, 240);
        m_chart.setCandles(fixtures::wave(count));
        m_chart.setSymbolInfo(u"EURUSD"_s, u"M15"_s, u"Euro vs US Dollar"_s);
        m_chart.setChartShift(true);
        m_chart.setMovingAverages({{IndicatorKind::Sma, 5, QColor(0xff, 0xd5, 0x4f)},
            {IndicatorKind::Ema, 12, QColor(0x4f, 0xc3, 0xf7)}});
        m_chart.setPane(IndicatorKind::Rsi, true, 14);
        if (count > 0)
            m_chart.onTick(1.1012, 1.1033, m_chart.candles().back().time);
        m_chart.setTradeLevels({{u"7"_s, u"ENTRY"_s, 1.0975, u"buy 0.10 #7"_s, QColor(0x3b, 0xa7, 0xff),
                                    Qt::SolidLine, false},
            {u"7"_s, u"SL"_s, 1.0915, u"sl #7"_s, QColor(0xff, 0x4a, 0x4a), Qt::DashLine, true},
            {u"7"_s, u"TP"_s, 1.1065, u"tp #7"_s, QColor(0x00, 0xe6, 0x76), Qt::DashLine, true},
            {u"8"_s, u"PRICE"_s, 1.0945, u"sell stop #8"_s, QColor(0xff, 0xa7, 0x26), Qt::DotLine, true}});
    }

    [[nodiscard]] ChartWidget& chart() { return m_chart; }

    /// The pointer is outside and nothing is in the hand.
    [[nodiscard]] ChartFrame atRest()
    {
        ChartFrame frame = m_chart.frame();
        frame.drawings = m_drawings;
        return frame;
    }

    /// The pointer is in the plot, a level is dragged, an object is being placed, a ruler lies, every object
    /// is selected and the view does not follow: more than one hand can do at once.
    [[nodiscard]] ChartFrame inUse()
    {
        for (Drawing& drawing : m_drawings)
            drawing.selected = true;
        ChartFrame frame = atRest();
        frame.pointAt(pointer);
        frame.draggedLevel = 1;
        frame.draggedPrice = 1.0888;
        frame.ruler = Ruler::Span{{40, 130}, {90, 60}};
        frame.preview = ChartFrame::Preview{DrawingKind::TrendLine, {fixtures::barTime(40), 1.0935}};
        frame.autoScroll = false;
        return frame;
    }

    /// What `layers` paint of a frame, as a screen of that device pixel ratio shows it.
    [[nodiscard]] static QImage painted(
        const ChartFrame& frame, qreal ratio, const std::function<void(QPainter&, const ChartFrame&)>& layers)
    {
        QImage image(frame.view.size() * ratio, QImage::Format_RGB32);
        image.setDevicePixelRatio(ratio);
        image.fill(Qt::magenta); // every pixel is the chart's to paint
        QPainter painter(&image);
        layers(painter, frame);
        return image;
    }

private:
    ChartWidget m_chart;
    QList<Drawing> m_drawings;
};
