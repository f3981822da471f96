#include "app/ui/EnterPress.h"
#include "chart/OneClickPanelFixture.h"
#include "support/Hands.h"
#include "support/PaintCounter.h"
#include "support/TestMain.h"

#include <QLineEdit>

#include <functional>
#include <utility>

using namespace Qt::StringLiterals;
using fixtures::button;
using fixtures::panelOf;
using fixtures::ServedChart;
using fixtures::volume;

namespace {

/// Counts what the mouse does on a widget.
class MouseCounter final : public QObject {
public:
    explicit MouseCounter(QWidget& widget) { widget.installEventFilter(this); }

    [[nodiscard]] int taken() { return std::exchange(m_count, 0); }

protected:
    bool eventFilter(QObject* /*widget*/, QEvent* event) override
    {
        switch (event->type()) {
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonRelease:
        case QEvent::MouseButtonDblClick:
        case QEvent::MouseMove:
            ++m_count;
            break;
        default:
            break;
        }
        return false;
    }

private:
    int m_count = 0;
};

/// Remembers the keys that come to a widget.
class KeyRecord final : public QObject {
public:
    explicit KeyRecord(QWidget& widget) { widget.installEventFilter(this); }

    QList<int> keys;

protected:
    bool eventFilter(QObject* /*widget*/, QEvent* event) override
    {
        if (event->type() == QEvent::KeyPress)
            keys.append(static_cast<QKeyEvent*>(event)->key());
        return false;
    }
};

} // namespace

/// Trading from the panel, and mouse and keys that are its own.
class tst_OneClickTrading final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { fixtures::useLightTheme(); }

    void a_click_asks_for_its_trade_before_anything_is_painted()
    {
        ServedChart served;
        served.show();
        QPushButton& buy = button(panelOf(served), u"BUY"_s);
        PaintCounter ofBuy(buy);
        PaintCounter ofChart(served.chart());
        QList<int> painted;
        connect(served.window.get(), &ChartWindow::quickTradeRequested, this,
            [&] { painted.append(ofBuy.count() + ofChart.count()); });
        const auto releaseWith = [&](const std::function<void()>& release) {
            QVERIFY(ofBuy.taken() + ofChart.taken() > 0);
            served.chart().update(); // as a price does
            release();
        };
        QTest::mousePress(&buy, Qt::LeftButton);
        releaseWith([&] { QTest::mouseRelease(&buy, Qt::LeftButton); });
        buy.setFocus(Qt::TabFocusReason);
        QTest::keyPress(&buy, Qt::Key_Space);
        releaseWith([&] { QTest::keyRelease(&buy, Qt::Key_Space); });
        QCOMPARE(painted, QList<int>({0, 0}));
        // And then it is.
        QVERIFY(ofBuy.taken() > 0);
        QVERIFY(!buy.isDown());
    }

    void a_click_that_ends_beside_the_button_leaves_it_painted()
    {
        const ServedChart served;
        served.show();
        QPushButton& buy = button(panelOf(served), u"BUY"_s);
        QTest::mousePress(&buy, Qt::LeftButton);
        QTest::mouseRelease(&buy, Qt::LeftButton, {}, QPoint(-20, 0));
        PaintCounter ofBuy(buy);
        buy.update();
        QVERIFY(ofBuy.taken() > 0);
        QVERIFY(!buy.isDown());
    }

    void aClickAsksForATradeOfTheChosenVolume()
    {
        const ServedChart served;
        served.show();
        QSignalSpy wish(served.window.get(), &ChartWindow::quickTradeRequested);
        QTest::mouseClick(&button(panelOf(served), u"SELL"_s), Qt::LeftButton);
        volume(panelOf(served)).setValue(2.5);
        QTest::mouseClick(&button(panelOf(served), u"BUY"_s), Qt::LeftButton);
        QCOMPARE(wish, QList<QVariantList>({{u"EURUSD"_s, u"SELL"_s, 0.01}, {u"EURUSD"_s, u"BUY"_s, 2.5}}));
    }

    void aTypedCommaIsADecimalPoint()
    {
        QLocale::setDefault(QLocale(QLocale::German));
        const ServedChart served;
        served.show();
        QSignalSpy wish(served.window.get(), &ChartWindow::quickTradeRequested);
        volume(panelOf(served)).selectAll();
        QTest::keyClicks(&volume(panelOf(served)), u"1,25"_s);
        QTest::mouseClick(&button(panelOf(served), u"BUY"_s), Qt::LeftButton);
        QCOMPARE(wish.value(0).value(2).toDouble(), 1.25);
        QCOMPARE(volume(panelOf(served)).text(), u"1.25"_s);
        QLocale::setDefault(QLocale::c());
    }

    void aHalfTypedVolumeIsTradedAsItIsShown()
    {
        const ServedChart served;
        served.show();
        QSignalSpy wish(served.window.get(), &ChartWindow::quickTradeRequested);
        DecimalSpinBox& box = volume(panelOf(served));
        box.setValue(3.0);
        box.selectAll();
        QTest::keyClick(&box, Qt::Key_Delete);
        QTest::mouseClick(&button(panelOf(served), u"BUY"_s), Qt::LeftButton);
        QCOMPARE(wish.size(), 1);
        QCOMPARE(wish.first().at(2).toDouble(), 3.0);
        QCOMPARE(box.text(), u"3.00"_s);
        box.selectAll();
        QTest::keyClicks(&box, u"2."_s);
        QTest::mouseClick(&button(panelOf(served), u"SELL"_s), Qt::LeftButton);
        QCOMPARE(wish.last().at(2).toDouble(), 2.0);
        QCOMPARE(box.text(), u"2.00"_s);
    }

    void lessThanTheLeastVolumeIsNeverTraded()
    {
        const ServedChart served;
        served.show();
        QSignalSpy wish(served.window.get(), &ChartWindow::quickTradeRequested);
        DecimalSpinBox& box = volume(panelOf(served));
        for (const QString& typed : {u"0"_s, u"0.00"_s, u"0.001"_s, u"-1"_s, u"."_s}) {
            box.setValue(0.5);
            box.selectAll();
            QTest::keyClicks(&box, typed);
            QTest::mouseClick(&button(panelOf(served), u"BUY"_s), Qt::LeftButton);
            QVERIFY2(wish.last().at(2).toDouble() >= 0.01, qPrintable(typed));
            QCOMPARE(box.text(), QString::number(wish.last().at(2).toDouble(), 'f', 2));
        }
        QCOMPARE(wish.size(), 5);
    }

    void theVolumeStaysBetweenItsLimits()
    {
        const ServedChart served;
        served.show();
        DecimalSpinBox& box = volume(panelOf(served));
        QTest::keyClick(&box, Qt::Key_Down);
        QCOMPARE(box.value(), 0.01);
        QTest::keyClick(&box, Qt::Key_Up);
        QCOMPARE(box.value(), 0.02);
        box.selectAll();
        QTest::keyClicks(&box, u"1000"_s);
        QTest::keyClick(&box, Qt::Key_Up);
        QCOMPARE(box.value(), 1000.0);
        box.selectAll();
        QTest::keyClicks(&box, u"1001"_s); // the last digit is refused
        QTest::keyClick(&box, Qt::Key_Return);
        QCOMPARE(box.value(), 100.0);
    }

    void hidingAndShowingKeepsTheVolume()
    {
        const ServedChart served;
        served.show();
        volume(panelOf(served)).setValue(7.25);
        served.window->setOneClickTrading(false);
        QVERIFY(!panelOf(served).isVisible());
        QVERIFY(!served.window->oneClickTrading());
        served.window->onPrices(fixtures::quote(u"EURUSD"_s, 1.5, 1.6));
        served.window->setOneClickTrading(true);
        QVERIFY(panelOf(served).isVisible());
        QVERIFY(served.window->oneClickTrading());
        QCOMPARE(panelOf(served).lots(), 7.25);
        QCOMPARE(button(panelOf(served), u"SELL"_s).text(), u"SELL\n1.50000"_s);
        QCOMPARE(button(panelOf(served), u"BUY"_s).text(), u"BUY\n1.60000"_s);
        QSignalSpy wish(served.window.get(), &ChartWindow::quickTradeRequested);
        QTest::mouseClick(&button(panelOf(served), u"BUY"_s), Qt::LeftButton);
        QCOMPARE(wish, QList<QVariantList>({{u"EURUSD"_s, u"BUY"_s, 7.25}}));
    }

    void aPressOnThePanelNeverReachesTheChart()
    {
        const ServedChart served;
        served.chart().setCandles(fixtures::wave(400));
        served.show();
        served.window->setTool(u"trendline"_s);
        QSignalSpy created(&served.chart(), &ChartWidget::drawingCreated);
        const OneClickPanel& panel = panelOf(served);
        const double before = served.chart().rightBarIndex();
        for (int y = 0; y < panel.height(); y += 5) {
            for (int x = 0; x < panel.width(); x += 7) {
                for (const Qt::MouseButton key : {Qt::LeftButton, Qt::MiddleButton}) {
                    const QPoint start = panel.pos() + QPoint(x, y);
                    fixtures::pressAt(served.chart(), start, key);
                    fixtures::moveTo(served.chart(), start + QPoint(150, 60));
                    QVERIFY(!served.chart().hoveredCandle());
                    fixtures::releaseAt(served.chart(), start + QPoint(150, 60), key);
                }
            }
        }
        QCOMPARE(served.chart().rightBarIndex(), before);
        QVERIFY(served.chart().autoScroll());
        QCOMPARE(created.size(), 0);
        QCOMPARE(served.chart().tool(), u"trendline"_s);
    }

    void aDoubleClickOnThePanelNeverReachesTheChart()
    {
        const ServedChart served;
        served.chart().setCandles(fixtures::wave(400));
        served.show();
        served.window->setTool(u"hline"_s); // a single press places it
        QSignalSpy created(&served.chart(), &ChartWidget::drawingCreated);
        const auto doubleClickAt = [&served](const QPoint& position) {
            QTest::mouseDClick(served.window->windowHandle(), Qt::LeftButton, {},
                served.chart().mapTo(served.window.get(), position));
        };
        doubleClickAt(panelOf(served).pos() + QPoint(1, 1));
        QCOMPARE(created.size(), 0);
        QCOMPARE(served.chart().tool(), u"hline"_s);
        doubleClickAt(QPoint(200, 200));
        QCOMPARE(created.size(), 1);
    }

    void noPressOrMoveOfTheMouseReachesTheChart()
    {
        const ServedChart served;
        served.chart().setCandles(fixtures::wave(400));
        served.show();
        const OneClickPanel& panel = panelOf(served);
        MouseCounter seen(served.chart());
        for (const QPoint place :
            {QPoint(1, 1), QPoint(panel.width() - 2, 18), button(panel, u"BUY"_s).pos()}) {
            for (const Qt::MouseButton key : {Qt::LeftButton, Qt::MiddleButton}) {
                const QPoint start = panel.pos() + place;
                fixtures::moveTo(served.chart(), start);
                fixtures::pressAt(served.chart(), start, key);
                fixtures::moveTo(served.chart(), start + QPoint(0, 2));
                fixtures::releaseAt(served.chart(), start + QPoint(0, 2), key);
            }
        }
        QCOMPARE(seen.taken(), 0);
        fixtures::pressAt(served.chart(), QPoint(300, 200));
        fixtures::releaseAt(served.chart(), QPoint(300, 200));
        QVERIFY(seen.taken() >= 2);
    }

    void thePointerOverThePanelIsAnArrowWhateverTheTool()
    {
        const ServedChart served;
        served.show();
        served.window->setTool(u"hline"_s);
        QCOMPARE(served.chart().cursor().shape(), Qt::CrossCursor);
        QCOMPARE(panelOf(served).cursor().shape(), Qt::ArrowCursor);
    }

    void theWheelOverThePanelZoomsTheChartAndKeepsTheVolume()
    {
        const ServedChart served;
        served.show();
        QVERIFY(hands::arriveAt(served.window.get()));
        OneClickPanel& panel = panelOf(served);
        served.chart().setFocus();
        volume(panel).setValue(0.05);
        const auto zoomsFrom = [&served](QWidget& place) {
            const double before = served.chart().barWidth();
            hands::turnWheel(place, 120);
            return served.chart().barWidth() > before;
        };
        QVERIFY(zoomsFrom(volume(panel)));
        QVERIFY(zoomsFrom(*volume(panel).findChild<QLineEdit*>()));
        QVERIFY(zoomsFrom(button(panel, u"SELL"_s)));
        QVERIFY(zoomsFrom(panel));
        const double before = served.chart().barWidth();
        hands::turnWheel(volume(panel), -120);
        QVERIFY(served.chart().barWidth() < before);
        QCOMPARE(panel.lots(), 0.05);
        QVERIFY(!volume(panel).hasFocus());
    }

    void theWheelTurnsAVolumeThatIsBeingTyped()
    {
        const ServedChart served;
        served.show();
        QVERIFY(hands::arriveAt(served.window.get()));
        OneClickPanel& panel = panelOf(served);
        volume(panel).setFocus();
        const double before = served.chart().barWidth();
        hands::turnWheel(volume(panel), 120);
        QCOMPARE(panel.lots(), 0.02);
        for (int turn = 0; turn < 3; ++turn)
            hands::turnWheel(volume(panel), -120); // beyond its least volume
        QCOMPARE(panel.lots(), 0.01);
        QCOMPARE(served.chart().barWidth(), before);
    }

    void aClickLeavesTheKeysWithTheChart()
    {
        const ServedChart served;
        served.show();
        served.chart().setFocus();
        QSignalSpy wish(served.window.get(), &ChartWindow::quickTradeRequested);
        QTest::mouseClick(&button(panelOf(served), u"SELL"_s), Qt::LeftButton);
        QTest::keyClick(served.window->windowHandle(), Qt::Key_Space);
        QCOMPARE(wish.size(), 1);
        QVERIFY(served.chart().hasFocus());
    }

    void one_escape_leaves_the_panel_whatever_the_chart_does_with_it()
    {
        const ServedChart served;
        served.show();
        served.chart().setCandles(fixtures::wave(60));
        QVERIFY(hands::arriveAt(served.window.get()));
        for (int stop = 1; stop <= 3; ++stop) {
            served.chart().setFocus();
            hands::press(Qt::Key_Left);
            QVERIFY(served.chart().crosshair());
            for (int tab = 0; tab < stop; ++tab)
                hands::press(Qt::Key_Tab);
            QVERIFY(!served.chart().hasFocus());
            hands::press(Qt::Key_Escape);
            QVERIFY(served.chart().hasFocus());
        }
    }
    void only_space_trades_and_once_on_the_button_that_tab_led_to_data()
    {
        QTest::addColumn<Qt::Key>("key");
        QTest::addColumn<int>("tabs");
        QTest::addColumn<QString>("side");
        for (const auto& [name, key] : {std::pair("space", Qt::Key_Space),
                 std::pair("return", Qt::Key_Return), std::pair("enter", Qt::Key_Enter)}) {
            QTest::addRow("%s sells", name) << key << 1 << u"SELL"_s;
            QTest::addRow("%s buys", name) << key << 3 << u"BUY"_s;
        }
    }
    void only_space_trades_and_once_on_the_button_that_tab_led_to()
    {
        QFETCH(const Qt::Key, key);
        QFETCH(const int, tabs);
        QFETCH(const QString, side);
        const EnterPress enter(*qApp);
        const ServedChart served;
        served.show();
        QVERIFY(hands::arriveAt(served.window.get()));
        served.chart().setFocus();
        for (int tab = 0; tab < tabs; ++tab)
            hands::press(Qt::Key_Tab);
        QSignalSpy wish(served.window.get(), &ChartWindow::quickTradeRequested);
        QTest::keyPress(QApplication::focusWidget(), key);
        for (int again = 0; again < 3; ++again)
            hands::hold(key);
        QTest::keyRelease(QApplication::focusWidget(), key);
        // Enter draws and drags on the chart: one Tab too many must not make an order of it.
        const QList<QVariantList> asked{{u"EURUSD"_s, side, 0.01}};
        QCOMPARE(wish, key == Qt::Key_Space ? asked : QList<QVariantList>());
    }

    void keys_in_the_panel_do_nothing_to_the_chart_but_escape()
    {
        const ServedChart served;
        served.show();
        QVERIFY(hands::arriveAt(served.window.get()));
        KeyRecord record(served.chart());
        for (int stop = 1; stop <= 3; ++stop) {
            for (const Qt::Key key : {Qt::Key_Left, Qt::Key_Right, Qt::Key_Home, Qt::Key_End, Qt::Key_Delete,
                     Qt::Key_Return, Qt::Key_Escape}) {
                served.chart().setFocus();
                for (int tab = 0; tab < stop; ++tab)
                    hands::press(Qt::Key_Tab);
                QVERIFY(!served.chart().hasFocus());
                record.keys.clear();
                hands::press(key);
                QCOMPARE(record.keys, key == Qt::Key_Escape ? QList<int>{key} : QList<int>());
            }
        }
    }

    void a_panel_that_goes_leaves_the_keyboard_with_the_chart()
    {
        const ServedChart served;
        served.show();
        QVERIFY(hands::arriveAt(served.window.get()));
        for (int stop = 1; stop <= 3; ++stop) {
            served.chart().setFocus();
            for (int tab = 0; tab < stop; ++tab)
                hands::press(Qt::Key_Tab);
            QVERIFY(!served.chart().hasFocus());
            served.window->setOneClickTrading(false);
            QVERIFY(served.chart().hasFocus());
            served.window->setOneClickTrading(true);
        }
    }

    void deletingDigitsDeletesNoObject()
    {
        const ServedChart served;
        served.show();
        served.chart().setDrawings({{u"a"_s, u"hline"_s, {{fixtures::midnight, 1.1}}, Qt::red, true}});
        volume(panelOf(served)).setFocus();
        for (const Qt::Key key :
            {Qt::Key_End, Qt::Key_Delete, Qt::Key_Home, Qt::Key_Backspace, Qt::Key_End, Qt::Key_Backspace,
                Qt::Key_Backspace, Qt::Key_Backspace, Qt::Key_Backspace, Qt::Key_Backspace, Qt::Key_Delete})
            QTest::keyClick(served.window->windowHandle(), key);
        QCOMPARE(served.chart().drawings().size(), 1);
        for (const Qt::Key key : {Qt::Key_Delete, Qt::Key_Backspace}) {
            QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
            QApplication::sendEvent(&panelOf(served), &event);
            QVERIFY(event.isAccepted());
        }
        QCOMPARE(served.chart().drawings().size(), 1);
    }

    void theCrosshairDoesNotStayBehindUnderThePanel()
    {
        const ServedChart served;
        served.chart().setCandles(fixtures::wave(400));
        served.show();
        fixtures::moveTo(served.chart(), QPoint(300, 100));
        QTRY_VERIFY(served.chart().hoveredCandle());
        fixtures::moveTo(served.chart(), panelOf(served).pos() + QPoint(1, 1));
        QTRY_VERIFY(!served.chart().hoveredCandle());
        fixtures::moveTo(served.chart(), QPoint(300, 100));
        QTRY_VERIFY(served.chart().hoveredCandle());
    }
};

TAVORAN_TEST(tst_OneClickTrading)
#include "tst_OneClickTrading.moc"
