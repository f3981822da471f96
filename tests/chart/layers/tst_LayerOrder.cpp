#include "chart/layers/LayerOrder.h"

#include "chart/ChartFixtures.h"
#include "chart/layers/ChartFrame.h"
#include "chart/layers/LayerStack.h"
#include "chart/window/ChartWidget.h"
#include "support/TestMain.h"

#include <QPainter>

class TestLayerOrder final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void layers_are_painted_in_this_order()
    {
        const std::array expected{Layer::Background, Layer::EmptySeries, Layer::PriceGrid, Layer::TimeGrid,
            Layer::Volume, Layer::Prices, Layer::MovingAverages, Layer::Drawings, Layer::Header,
            Layer::AverageLegend, Layer::TradeLevels, Layer::Quotes, Layer::Crosshair, Layer::Ruler,
            Layer::DrawingPreview, Layer::IndicatorPanes, Layer::ScrollButton, Layer::ShiftMarker,
            Layer::Border};
        QCOMPARE(layerOrder.size(), std::size_t{19});
        QCOMPARE(layerOrder.size(), expected.size());
        for (std::size_t i = 0; i < expected.size(); ++i) {
            QVERIFY2(layerOrder.at(i).layer == expected.at(i), qPrintable(QString::number(i)));
            QCOMPARE(static_cast<std::size_t>(layerOrder.at(i).layer), i);
        }
    }

    void every_layer_has_its_code()
    {
        for (const LayerEntry& entry : layerOrder)
            QVERIFY(entry.paint != nullptr);
    }

    void the_kept_picture_holds_none_of_the_newest_bar()
    {
        ChartWidget chart;
        chart.resize(400, 300);
        chart.setCandles(fixtures::wave(100));
        const auto kept = [&chart] {
            QImage picture(chart.size(), QImage::Format_RGB32);
            QPainter painter(&picture);
            layerstack::paintKept(painter, chart.frame());
            return picture;
        };
        const QImage before = kept();
        const Candle last = chart.candles().back();
        chart.onTick((last.low + last.high) / 2, (last.low + last.high) / 2, last.time);
        QVERIFY(chart.candles().back() != last);
        QCOMPARE(kept(), before);
    }
};

TAVORAN_TEST(TestLayerOrder)
#include "tst_LayerOrder.moc"
