#include "app/ui/DecimalSpinBox.h"
#include "app/ui/Theme.h"
#include "chart/ChartFixtures.h"
#include "chart/ChartWindowFixture.h"
#include "chart/window/OneClickPanel.h"
#include "support/Hands.h"
#include "support/TestMain.h"

#include <QLabel>
#include <QLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QStandardPaths>

#include <utility>

using namespace Qt::StringLiterals;
using fixtures::ServedChart;

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

} // namespace

class tst_OneClickPanel final : public QObject {
    Q_OBJECT

    [[nodiscard]] static OneClickPanel& panelOf(const ServedChart& served)
    {
        return *served.chart().findChild<OneClickPanel*>(u"oneClickPanel"_s);
    }
    [[nodiscard]] static QPushButton& button(const OneClickPanel& panel, QStringView caption)
    {
        const QList<QPushButton*> buttons = panel.findChildren<QPushButton*>();
        return *(buttons.at(0)->text().startsWith(caption) ? buttons.at(0) : buttons.at(1));
    }
    [[nodiscard]] static DecimalSpinBox& volume(const OneClickPanel& panel)
    {
        return *panel.findChild<DecimalSpinBox*>();
    }

    static void addThemes()
    {
        QTest::addColumn<bool>("dark");
        QTest::newRow("light") << false;
        QTest::newRow("dark") << true;
    }

private Q_SLOTS:
    void init()
    {
        setTheme(false);
        applyTheme(*qApp);
    }

    void liesInTheCornerOfEveryChart()
    {
        const ServedChart served;
        served.show();
        const OneClickPanel& panel = panelOf(served);
        QCOMPARE(panel.parentWidget(), &served.chart());
        QCOMPARE(panel.pos(), QPoint(6, 20));
        QVERIFY(panel.isVisible());
        QCOMPARE(panel.layout()->contentsMargins(), QMargins(3, 3, 3, 3));
        const QPushButton& sell = button(panel, u"SELL"_s);
        const QPushButton& buy = button(panel, u"BUY"_s);
        QVERIFY(sell.x() < volume(panel).x());
        QVERIFY(volume(panel).x() < buy.x());
        QCOMPARE(sell.cursor().shape(), Qt::PointingHandCursor);
        QCOMPARE(buy.cursor().shape(), Qt::PointingHandCursor);
        QCOMPARE(volume(panel).value(), 0.01);
        QCOMPARE(volume(panel).singleStep(), 0.01);
        QCOMPARE(volume(panel).decimals(), 2);
        QCOMPARE(volume(panel).accessibleName(), u"Volume in lots"_s);
        // The least chart holds all of it.
        QVERIFY(QRect({}, served.chart().minimumSize()).contains(panel.geometry()));
    }

    void doesNotHideTheNamesOfTheAverages()
    {
        const ServedChart served;
        served.chart().setCandles(fixtures::wave(3));
        served.chart().setMovingAverages({{IndicatorKind::Sma, 20, QColor(u"#ff00ff"_s)}});
        served.show();
        const QRect panel = panelOf(served).geometry();
        const auto named = [&served](int from, int to) {
            const QRect row(from, 16, to - from, 16);
            const QImage picture = served.chart().grab(row).toImage();
            int magenta = 0;
            for (int y = 0; y < picture.height(); ++y) {
                for (int x = 0; x < picture.width(); ++x) {
                    const QColor color = picture.pixelColor(x, y);
                    magenta += color.red() > 100 && color.blue() > 100 && color.green() < 60 ? 1 : 0;
                }
            }
            return magenta > 10;
        };
        QVERIFY(named(panel.right() + 1, panel.right() + 80));
        served.window->setOneClickTrading(false);
        QVERIFY(named(6, 80));
        QVERIFY(!named(panel.right() + 1, panel.right() + 80));
        served.window->setOneClickTrading(true);
        QVERIFY(!named(6, panel.right()));
        QVERIFY(named(panel.right() + 1, panel.right() + 80));
    }

    void keepsItsSizesInEveryTheme_data() { addThemes(); }
    void keepsItsSizesInEveryTheme()
    {
        QFETCH(bool, dark);
        const ServedChart served;
        served.show();
        const OneClickPanel& panel = panelOf(served);
        const auto check = [&panel] {
            QCoreApplication::processEvents();
            QCOMPARE(button(panel, u"SELL"_s).size(), QSize(62, 30));
            QCOMPARE(volume(panel).size(), QSize(66, 30));
            QCOMPARE(button(panel, u"BUY"_s).size(), QSize(62, 30));
            QCOMPARE(panel.height(), 36);
        };
        check();
        setTheme(dark);
        applyTheme(*qApp);
        check();
        served.window->onPrices(fixtures::quote(u"EURUSD"_s, 12345.67891, 12345.67899));
        check();
    }

    void keepsItsColoursInEveryTheme_data() { addThemes(); }
    void keepsItsColoursInEveryTheme()
    {
        QFETCH(bool, dark);
        setTheme(dark);
        applyTheme(*qApp);
        const ServedChart served;
        served.show();
        const OneClickPanel& panel = panelOf(served);
        const QImage sell = button(panel, u"SELL"_s).grab().toImage();
        const QImage buy = button(panel, u"BUY"_s).grab().toImage();
        QVERIFY(fixtures::pixelsOf(sell, sell.rect(), QColor(0xc0, 0x39, 0x2b)) > 62 * 30 / 2);
        QVERIFY(fixtures::pixelsOf(buy, buy.rect(), QColor(0x1f, 0x6f, 0xb2)) > 62 * 30 / 2);
        const QImage box = volume(panel).grab().toImage();
        QCOMPARE(box.pixelColor(0, 15), QColor(0x66, 0x66, 0x66));
        QCOMPARE(box.pixelColor(2, 3), QColor(Qt::white));
        const QColor arrow(0x1a, 0x1a, 0x1a);
        QVERIFY(fixtures::pixelsOf(box, QRect(50, 1, 15, 14), arrow) > 5);
        QVERIFY(fixtures::pixelsOf(box, QRect(50, 16, 15, 13), arrow) > 5);
        QVERIFY(fixtures::pixelsOf(box, QRect(50, 1, 15, 14), QColor(0xdc, 0xdc, 0xdc)) > 50);
    }

    void itsGroundIsATranslucentPlate()
    {
        const ServedChart served;
        served.show();
        ChartColors white = served.chart().colors();
        white.background = Qt::white;
        served.chart().setColors(white);
        const QRect place = panelOf(served).geometry();
        const QPoint inside = place.topLeft() + QPoint(2, 15);
        const QPoint border = place.topLeft() + QPoint(0, 15);
        const QImage picture = served.chart().grab().toImage();
        const int gray = (28 * 205 + 255 * 50) / 255;
        const QColor ground = picture.pixelColor(inside);
        for (const int part : {ground.red(), ground.green(), ground.blue()})
            QVERIFY2(std::abs(part - gray) <= 2, qPrintable(ground.name()));
        QCOMPARE(picture.pixelColor(border), QColor(0x3a, 0x3a, 0x3a));
        QCOMPARE(picture.pixelColor(border - QPoint(1, 0)), QColor(Qt::white));
    }

    void itsStyleSheetsAreThese()
    {
        const ServedChart served;
        const OneClickPanel& panel = panelOf(served);
        const auto buttonSheet = [](const QString& color, const QString& hovered) {
            return u"QPushButton{background:%1;border:none;color:#ffffff;font-weight:bold;font-size:7.5pt;"
                   "border-radius:2px;}QPushButton:hover{background:%2;}"_s.arg(color, hovered);
        };
        QCOMPARE(panel.styleSheet(),
            u"#oneClickPanel{background:rgba(28,28,28,205);border:1px solid #3a3a3a;border-radius:2px;}"_s);
        QCOMPARE(button(panel, u"SELL"_s).styleSheet(), buttonSheet(u"#c0392b"_s, u"#d64535"_s));
        QCOMPARE(button(panel, u"BUY"_s).styleSheet(), buttonSheet(u"#1f6fb2"_s, u"#2a80c8"_s));
        const QString folder = QStandardPaths::writableLocation(QStandardPaths::TempLocation);
        QCOMPARE(volume(panel).styleSheet(),
            u"QDoubleSpinBox{background:#ffffff;color:#000000;border:1px solid #666666;font-size:9pt;"
            "padding:1px 2px 1px 4px;}"
            "QDoubleSpinBox::up-button{subcontrol-origin:border;subcontrol-position:top "
            "right;width:16px;background:#dcdcdc;border-left:1px solid #8f8f8f;border-bottom:1px solid "
            "#b5b5b5;}QDoubleSpinBox::down-button{subcontrol-origin:border;subcontrol-position:bottom "
            "right;width:16px;background:#dcdcdc;border-left:1px solid "
            "#8f8f8f;}QDoubleSpinBox::up-button:hover,QDoubleSpinBox::down-button:hover{background:#bcd8f0;}"
            "QDoubleSpinBox::up-arrow{image:url(\"%1/tavoran_spin_up.png\");width:9px;height:6px;}"
            "QDoubleSpinBox::down-arrow{image:url(\"%1/tavoran_spin_down.png\");width:9px;height:6px;}"_s.arg(
                folder));
    }

    void captionsShowADashBeforeTheFirstPrice()
    {
        const ServedChart served;
        served.window->setSymbolInfo(3, u"Euro"_s);
        QCOMPARE(button(panelOf(served), u"SELL"_s).text(), u"SELL\n—"_s);
        QCOMPARE(button(panelOf(served), u"BUY"_s).text(), u"BUY\n—"_s);
    }

    void captionsFollowThePricesOfTheSymbol()
    {
        const ServedChart served;
        served.window->onPrices(fixtures::quote(u"EURUSD"_s, 1.1, 1.10009));
        served.window->onPrices(fixtures::quote(u"USDJPY"_s, 155.1, 155.2));
        QCOMPARE(button(panelOf(served), u"SELL"_s).text(), u"SELL\n1.10000"_s);
        QCOMPARE(button(panelOf(served), u"BUY"_s).text(), u"BUY\n1.10009"_s);
        served.window->onPrices(fixtures::quote(u"EURUSD"_s, 1.2, 1.10009));
        QCOMPARE(button(panelOf(served), u"SELL"_s).text(), u"SELL\n1.20000"_s);
        QCOMPARE(button(panelOf(served), u"BUY"_s).text(), u"BUY\n1.10009"_s);
        served.window->onPrices(fixtures::quote(u"EURUSD"_s, 1.2, 1.20001));
        QCOMPARE(button(panelOf(served), u"SELL"_s).text(), u"SELL\n1.20000"_s);
        QCOMPARE(button(panelOf(served), u"BUY"_s).text(), u"BUY\n1.20001"_s);
        served.window->onPrices(fixtures::quote(u"EURUSD"_s, 12345.678, 20000.0));
        QCOMPARE(button(panelOf(served), u"SELL"_s).text(), u"SELL\n12345.67800"_s);
        QCOMPARE(button(panelOf(served), u"BUY"_s).text(), u"BUY\n20000.00000"_s);
    }

    void captionsFollowTheDigits()
    {
        const ServedChart served;
        served.window->onPrices(fixtures::quote(u"EURUSD"_s, 1.1, 1.2));
        served.window->setSymbolInfo(2, u"Euro"_s);
        QCOMPARE(button(panelOf(served), u"SELL"_s).text(), u"SELL\n1.10"_s);
        QCOMPARE(button(panelOf(served), u"BUY"_s).text(), u"BUY\n1.20"_s);
    }

    void noEndOfAPriceIsCutByItsButton_data()
    {
        QTest::addColumn<double>("price");
        QTest::addColumn<int>("digits");
        QTest::newRow("usual") << 1.08505 << 5;
        QTest::newRow("five figures") << 65432.12345 << 5;
        QTest::newRow("eight decimals") << 0.00001234 << 8;
        QTest::newRow("fifteen decimals") << 0.000000012345678 << 15;
    }
    void noEndOfAPriceIsCutByItsButton()
    {
        QFETCH(const double, price);
        QFETCH(const int, digits);
        // As the charts do that are opened with the prices known: before anything is on the screen.
        QWidget ground;
        OneClickPanel panel(u"EURUSD"_s, &ground);
        panel.setQuote(price, price, digits);
        ground.show();
        const auto isCut = [&panel](QStringView caption, const QColor& plate) {
            const QImage image = button(panel, caption).grab().toImage();
            for (int y = 4; y < image.height() - 4; ++y) { // within the round corners
                if (image.pixelColor(0, y) != plate || image.pixelColor(image.width() - 1, y) != plate)
                    return true;
            }
            return false;
        };
        const QColor red(0xc0, 0x39, 0x2b);
        const QColor blue(0x1f, 0x6f, 0xb2);
        QVERIFY(!isCut(u"SELL", red));
        QVERIFY(!isCut(u"BUY", blue));
        setTheme(true);
        applyTheme(*qApp);
        QVERIFY(!isCut(u"SELL", red));
        // A shorter price stands there as wide as ever.
        panel.setQuote(2.5, 2.5, 1);
        QVERIFY(!isCut(u"SELL", red));
        QCOMPARE(button(panel, u"SELL").font().stretch(), int(QFont::AnyStretch));
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
                    QVERIFY(!served.chart().hoveredBar());
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
        QTRY_VERIFY(served.chart().hoveredBar());
        fixtures::moveTo(served.chart(), panelOf(served).pos() + QPoint(1, 1));
        QTRY_VERIFY(!served.chart().hoveredBar());
        fixtures::moveTo(served.chart(), QPoint(300, 100));
        QTRY_VERIFY(served.chart().hoveredBar());
    }
};

TAVORAN_TEST(tst_OneClickPanel)
#include "tst_OneClickPanel.moc"
