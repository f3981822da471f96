#include "chart/ChartWidgetFixture.h"
#include "chart/DrawingFixtures.h"
#include "chart/layers/ChartFrame.h"
#include "chart/layers/LayerStack.h"
#include "support/TestMain.h"

#include <QPainter>
#include <QRandomGenerator>
#include <QScreen>

#include <array>

using namespace Qt::StringLiterals;

namespace {

QImage allLayers(const ChartWidget& chart)
{
    QImage image(chart.size(), QImage::Format_RGB32);
    QPainter painter(&image);
    layerstack::paintAll(painter, chart.frame());
    return image;
}

/// A hand that does anything a hand can do with a mouse, its button held or not, and with keys.
class Hand {
public:
    Hand(ChartWidget& chart, quint32 seed)
        : m_chart(chart)
        , m_random(seed)
    {
    }

    void act()
    {
        QPoint position(
            m_random.bounded(m_chart.width() + 20) - 10, m_random.bounded(m_chart.height() + 20) - 10);
        if (m_random.bounded(4) == 0) // where there is a level to take
            position.setY(m_chart.view().pricePixel(m_chart.tradeLevels().first().price));
        const Candle last = m_chart.candles().back();
        const double price = last.low + (last.high - last.low) * m_random.bounded(1.0);
        switch (m_random.bounded(20)) {
        case 0:
            return m_chart.setMeasureMode(m_random.bounded(2) > 0);
        case 1:
            return m_chart.setTool(aTool());
        case 2:
            return m_chart.onTick(price, price + 0.0001, last.time);
        case 3:
            return m_chart.onTick(price, price + 0.0001, last.time + fixtures::quarterHour);
        case 4:
            return QTest::keyClick(&m_chart, m_random.bounded(2) == 0 ? Qt::Key_Escape : Qt::Key_Delete);
        case 5:
            return m_chart.setDrawings(fixtures::oneOfEachKind(static_cast<int>(m_chart.candles().size())));
        case 6:
            return setLevels();
        case 7:
            return fixtures::turnWheel(m_chart, QPoint(0, m_random.bounded(2) == 0 ? 120 : -120));
        case 8:
            return fixtures::leave(m_chart);
        case 9:
        case 10:
        case 11:
            m_held = !m_held;
            return m_held ? fixtures::press(m_chart, position) : fixtures::release(m_chart, position);
        case 12:
        case 13:
        case 14:
            return QTest::keyClick(
                &m_chart, aCrosshairKey(), m_random.bounded(3) == 0 ? Qt::ShiftModifier : Qt::NoModifier);
        case 15:
            return QTest::keyClick(&m_chart, Qt::Key_Return);
        default:
            return fixtures::hover(m_chart, position, m_held ? Qt::LeftButton : Qt::NoButton);
        }
    }

    void setLevels()
    {
        const double price = 1.1 + m_random.bounded(0.01);
        m_chart.setTradeLevels({{u"1"_s, u"SL"_s, 1.094, u"sl #1"_s, QColor(Qt::red), Qt::DashLine, true},
            {u"1"_s, u"ENTRY"_s, 1.1, u"buy"_s, QColor(Qt::blue), Qt::SolidLine, false},
            {u"2"_s, u"TP"_s, price, u"tp #2"_s, QColor(Qt::green), Qt::DotLine, true}});
    }

private:
    QString aTool()
    {
        const QStringList tools{QString(), QString(), QString(), u"hline"_s, u"vline"_s, u"trendline"_s,
            u"rectangle"_s, u"fibonacci"_s};
        return tools.at(m_random.bounded(static_cast<int>(tools.size())));
    }

    Qt::Key aCrosshairKey()
    {
        constexpr std::array keys{Qt::Key_Left, Qt::Key_Right, Qt::Key_Up, Qt::Key_Down, Qt::Key_Up,
            Qt::Key_Down, Qt::Key_Home, Qt::Key_End};
        return keys.at(m_random.bounded(static_cast<quint32>(keys.size())));
    }

    ChartWidget& m_chart;
    QRandomGenerator m_random;
    bool m_held = false;
};

} // namespace

class TestChartGesturePictures final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void whatever_a_hand_does_the_window_shows_all_layers_in_order_data()
    {
        QTest::addColumn<quint32>("seed");
        for (quint32 seed = 1; seed <= 6; ++seed)
            QTest::addRow("seed %u", seed) << seed;
    }
    void whatever_a_hand_does_the_window_shows_all_layers_in_order()
    {
        // Gestures paint only a part; the rest of the window is what earlier frames left there.
        QFETCH(quint32, seed);
        QWidget window;
        window.resize(340, 220);
        auto* chart = new ChartWidget(&window);
        chart->resize(300, 200);
        chart->setSymbolInfo(u"EURUSD"_s, u"M15"_s, u"Euro"_s);
        chart->setCandles(fixtures::wave(150));
        chart->setDrawings(fixtures::oneOfEachKind(150));
        chart->setPane(IndicatorKind::Rsi, seed % 2 == 0, 5);
        Hand hand(*chart, seed);
        hand.setLevels();
        window.show();
        window.activateWindow();
        chart->setFocus();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        QScreen* screen = window.screen();
        int previews = 0;
        int rulers = 0;
        int drags = 0;
        for (int step = 0; step < 400; ++step) {
            hand.act();
            previews += chart->frame().preview ? 1 : 0;
            rulers += chart->frame().ruler ? 1 : 0;
            drags += chart->frame().draggedLevel >= 0 ? 1 : 0;
            QCoreApplication::processEvents();
            const QImage shown = screen->grabWindow(window.winId(), 0, 0, 300, 200)
                                     .toImage()
                                     .convertToFormat(QImage::Format_RGB32);
            QCOMPARE(shown.size(), QSize(300, 200));
            QVERIFY2(shown == allLayers(*chart), qPrintable(u"step %1"_s.arg(step)));
        }
        QVERIFY(previews > 0 && rulers > 0 && drags > 0);
    }

    void pointer_moves_over_objects_paint_no_older_candle()
    {
        ChartWidget chart;
        fixtures::showChart(chart, 150);
        fixtures::addObjects(chart);
        fixtures::hover(chart, QPoint(100, 100));
        QCoreApplication::processEvents();
        fixtures::hover(chart, QPoint(101, 100));
        QCoreApplication::processEvents();
        const quint64 before = chart.seriesPaints();
        for (int i = 0; i < 20; ++i) {
            fixtures::hover(chart, QPoint(20 + i * 5, 50 + i));
            QCoreApplication::processEvents();
        }
        QCOMPARE(chart.seriesPaints(), before);
    }
};

TAVORAN_TEST(TestChartGesturePictures)
#include "tst_ChartGesturePictures.moc"
