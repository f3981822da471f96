#include "app/ui/FocusMark.h"
#include "app/ui/FocusRing.h"
#include "chart/OneClickPanelFixture.h"
#include "support/Hands.h"
#include "support/PaintCounter.h"
#include "support/RingContrast.h"
#include "support/TestMain.h"

#include <QLayout>
#include <QStandardPaths>

using namespace Qt::StringLiterals;
using fixtures::button;
using fixtures::panelOf;
using fixtures::ServedChart;
using fixtures::volume;

/// How the panel looks and what its buttons say.
class tst_OneClickPanel final : public QObject {
    Q_OBJECT

    static void addThemes()
    {
        QTest::addColumn<bool>("dark");
        QTest::newRow("light") << false;
        QTest::newRow("dark") << true;
    }

private Q_SLOTS:
    void init() { fixtures::useLightTheme(); }

    void what_tab_leads_to_has_a_ring_that_stands_out_data() { addThemes(); }
    void what_tab_leads_to_has_a_ring_that_stands_out()
    {
        QFETCH(const bool, dark);
        setTheme(dark);
        applyTheme(*qApp);
        const FocusMark mark(*qApp);
        const ServedChart served;
        served.show();
        QVERIFY(hands::arriveAt(served.window.get()));
        QWidget& window = *served.window;
        OneClickPanel& panel = panelOf(served);
        // What shows the focus by itself, such as the volume's cursor, lies inside the ring.
        const QImage before = window.grab().toImage();
        served.chart().setFocus(Qt::OtherFocusReason);
        for (const QWidget* stop : std::initializer_list<const QWidget*>{
                 &button(panel, u"SELL"_s), &volume(panel), &button(panel, u"BUY"_s)}) {
            hands::press(Qt::Key_Tab);
            QVERIFY(stop->hasFocus());
            QCoreApplication::processEvents();
            const auto* ring = window.findChild<FocusRing*>();
            QVERIFY(ring && ring->isVisible());
            const QRect around(stop->mapTo(&window, QPoint(-2, -2)), stop->size() + QSize(4, 4));
            QCOMPARE(ring->geometry(), around);
            const double least = fixtures::leastContrast(before, window.grab().toImage(), around, 4);
            QVERIFY2(least >= 3.0, qPrintable(QString::number(least)));
        }
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

    void doesNotHideTheLabelsOfLevels_data()
    {
        QTest::addColumn<bool>("drawn");
        QTest::newRow("of a trade") << false;
        QTest::newRow("of a drawn line") << true;
    }
    void doesNotHideTheLabelsOfLevels()
    {
        QFETCH(const bool, drawn);
        const ServedChart served;
        ChartWidget& chart = served.chart();
        std::vector<Candle> candles = fixtures::wave(2);
        chart.setCandles(candles);
        served.show();
        const QRect panel = panelOf(served).geometry();
        const QColor color(u"#ff00ff"_s);
        const auto inkAbove = [&](int row, int from, int to) {
            const QImage picture = chart.grab(QRect(from, row - 13, to - from, 12)).toImage();
            int ink = 0;
            for (int y = 0; y < picture.height(); ++y) {
                for (int x = 0; x < picture.width(); ++x) {
                    const QColor pixel = picture.pixelColor(x, y);
                    ink += pixel.red() > 100 && pixel.blue() > 100 && pixel.green() < 60 ? 1 : 0;
                }
            }
            return ink;
        };
        for (int wanted = 15; wanted < 90; wanted += 3) {
            const double price = chart.view().priceAt(wanted + 0.5);
            const int row = chart.view().pricePixel(price);
            if (drawn)
                chart.setDrawings({{u"1"_s, u"hline"_s, {{fixtures::barTime(0), price}}, color, false}});
            else
                chart.setTradeLevels({{u"7"_s, u"SL"_s, price, u"sl #77777"_s, color, Qt::SolidLine, false}});
            const bool behind = row - 13 <= panel.bottom() && row - 2 >= panel.top();
            const int left = inkAbove(row, 6, panel.right());
            const int right = inkAbove(row, panel.right() + 1, panel.right() + 90);
            served.window->setOneClickTrading(false);
            const int whole = inkAbove(row, 6, panel.right());
            served.window->setOneClickTrading(true);
            QVERIFY2(whole > 10, qPrintable(QString::number(row)));
            // Other texts of the chart may lie below a few of its pixels.
            const auto isWhole = [whole](int ink) { return ink * 10 > whole * 7; };
            QVERIFY2(isWhole(right) || (isWhole(left) && !behind),
                qPrintable(u"row %1: %2 left, %3 right of %4"_s.arg(row).arg(left).arg(right).arg(whole)));
        }
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

    void a_price_is_painted_in_one_go_and_leaves_the_volume()
    {
        ServedChart served;
        served.server.on("GET", "/api/candles", StubAnswer::json(fixtures::candleBody(50, 1.1)));
        served.window->reload();
        QTRY_COMPARE(served.chart().candles().size(), 50U);
        served.show();
        OneClickPanel& panel = panelOf(served);
        served.window->onPrices(fixtures::quote(u"EURUSD"_s, 1.1, 1.2));
        PaintCounter ofChart(served.chart());
        PaintCounter ofPanel(panel);
        PaintCounter ofVolume(volume(panel));
        PaintCounter ofSell(button(panel, u"SELL"_s));
        PaintCounter ofBuy(button(panel, u"BUY"_s));
        served.window->onPrices(fixtures::quote(u"EURUSD"_s, 1.1, 1.15));
        for (PaintCounter* counter : {&ofChart, &ofPanel, &ofVolume, &ofSell, &ofBuy})
            counter->taken();
        served.window->onPrices(
            fixtures::quote(u"EURUSD"_s, 1.1, 1.14)); // within the range of prices in view
        QCOMPARE(ofChart.taken(), 1);
        QCOMPARE(ofPanel.taken(), 1);
        QCOMPARE(ofPanel.region(), QRegion(button(panel, u"BUY"_s).geometry()));
        QCOMPARE(ofBuy.taken(), 1);
        QCOMPARE(ofSell.taken(), 0);
        QCOMPARE(ofVolume.taken(), 0);
        QVERIFY(button(panel, u"BUY"_s).updatesEnabled());
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

    void a_price_that_was_old_looks_as_ever_however_long_it_is_data()
    {
        noEndOfAPriceIsCutByItsButton_data();
    }
    void a_price_that_was_old_looks_as_ever_however_long_it_is()
    {
        QFETCH(const double, price);
        QFETCH(const int, digits);
        QWidget ground;
        OneClickPanel panel(u"EURUSD"_s, &ground);
        panel.setQuote(price, price, digits);
        ground.show();
        QPushButton& sell = button(panel, u"SELL");
        const QImage live = sell.grab().toImage();
        for (int time = 0; time < 2; ++time) {
            panel.setStale(true);
            panel.setQuote(2.5, 2.5, 1); // by other decimals
            panel.setQuote(price, price, digits);
            QVERIFY(sell.font().italic());
            const QImage old = sell.grab().toImage();
            for (int y = 4; y < old.height() - 4; ++y) {
                QCOMPARE(old.pixelColor(0, y), old.pixelColor(0, 15));
                QCOMPARE(old.pixelColor(old.width() - 1, y), old.pixelColor(0, 15));
            }
            panel.setStale(false);
            QVERIFY(!sell.font().italic());
            QCOMPARE(sell.grab().toImage(), live);
        }
    }
};

TAVORAN_TEST(tst_OneClickPanel)
#include "tst_OneClickPanel.moc"
