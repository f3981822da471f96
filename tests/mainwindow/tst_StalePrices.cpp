#include "FeedLossFixture.h"
#include "orders/TickChartWidget.h"
#include "panes/MarketWatchWidget.h"
#include "support/Contrast.h"
#include "support/PaintCounter.h"
#include "support/TestMain.h"

#include <QDialog>
#include <QTreeView>

using namespace Qt::StringLiterals;
using fixtures::euroHello;
using fixtures::Terminal;

namespace {

constexpr QColor askColor(0xff, 0x4a, 0x4a);
constexpr QColor bidColor(0x3b, 0xa7, 0xff);

bool shows(QWidget& widget, const QColor& color)
{
    const QImage picture = widget.grab().toImage();
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            if (picture.pixelColor(x, y).rgb() == color.rgb())
                return true;
        }
    }
    return false;
}

} // namespace

class tst_StalePrices final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void market_watch_tells_old_prices_from_live_ones_in_both_themes()
    {
        Terminal t;
        const QColor rising = t.color(0, 1);
        QCOMPARE(rising, themeUpColor());
        QVERIFY(!t.looksOld(0, 1));
        t.loseFeed();
        for (const bool dark : {true, false}) {
            setTheme(dark);
            applyTheme(*qApp);
            const QColor base = t.d.f.list("marketWatchSymbols").palette().color(QPalette::Base);
            for (const int column : {1, 2}) {
                QVERIFY(t.looksOld(0, column));
                const QColor color = t.color(0, column);
                for (const QColor& live : {themeUpColor(), themeDownColor(), themeTextColor()})
                    QVERIFY(color != live);
                QVERIFY2(contrastRatio(color, base) >= 4.5, qPrintable(color.name()));
            }
            // The arrow stays, for the names not to jump, but it is no news any more.
            const QImage arrow = t.row(0).icon(0).pixmap(16, 16).toImage();
            QVERIFY(!arrow.isNull());
            QCOMPARE(arrow.pixelColor(8, 10).saturation(), 0);
            QCOMPARE(t.row(0).text(1), u"1.30000"_s);
        }
    }

    void a_symbol_is_live_again_with_its_first_price()
    {
        Terminal t;
        t.loseFeed();
        QVERIFY(t.looksOld(1, 1));
        t.findFeed(euroHello(1.3, 1.4));
        QTRY_COMPARE(t.row(0).text(1), u"1.30000"_s);
        QVERIFY(!t.looksOld(0, 1));
        QCOMPARE(t.row(1).text(1), QString());
        t.quote(1.35, 150.9);
        QTRY_COMPARE(t.row(1).text(1), u"150.900"_s);
        QVERIFY(!t.looksOld(1, 1));
        QCOMPARE(t.color(0, 1), themeUpColor());
    }

    void a_symbol_without_a_price_has_no_old_one()
    {
        Terminal t;
        t.d.f.feed.send(euroHello(1.3, 1.4));
        QTRY_COMPARE(t.row(1).text(1), QString());
        t.loseFeed();
        QVERIFY(t.looksOld(0, 1));
        QCOMPARE(t.row(0).data(0, Qt::AccessibleTextRole).toString(), u"EURUSD, last known prices"_s);
        QVERIFY(!t.looksOld(1, 1));
        QCOMPARE(t.row(1).data(0, Qt::AccessibleTextRole), QVariant());
    }

    void the_daily_change_of_an_old_price_looks_old_too()
    {
        Terminal t;
        t.d.f.feed.send(euroHello(1.1, 1.2));
        QTRY_COMPARE(t.row(0).text(3), u"+10.00%"_s);
        QCOMPARE(t.color(0, 3), themeGreenColor());
        t.loseFeed();
        QVERIFY(t.looksOld(0, 3));
        QVERIFY(t.color(0, 3) != themeGreenColor());
    }

    void a_chart_tells_old_bid_and_ask_from_live_ones()
    {
        Terminal t;
        t.d.f.server.on("GET", "/api/candles",
            StubAnswer::list({records::candle(u"2026-01-01T00:00:00.000Z"_s, 1.3, 1.5, 1.2, 1.35),
                records::candle(u"2026-01-01T00:15:00.000Z"_s, 1.35, 1.5, 1.2, 1.3)}));
        ChartWidget& chart = t.d.openChart(u"EURUSD"_s)->chart();
        QTRY_COMPARE(chart.candles().size(), std::size_t(2));
        t.quote(1.31, 150);
        QTRY_COMPARE(chart.bid(), 1.31);
        QVERIFY(shows(chart, askColor) && shows(chart, bidColor));

        t.loseFeed();
        QVERIFY(!shows(chart, askColor) && !shows(chart, bidColor));
        QCOMPARE(chart.bid(), 1.31);
        ChartWidget& opened = t.d.openChart(u"EURUSD"_s)->chart();
        QTRY_COMPARE(opened.candles().size(), std::size_t(2));
        QCOMPARE(opened.bid(), 1.31);
        QVERIFY(!shows(opened, askColor) && !shows(opened, bidColor));

        t.findFeed(euroHello(1.31, 1.41));
        t.quote(1.31, 150); // the same price, but a new one
        QTRY_VERIFY(shows(chart, askColor) && shows(chart, bidColor));
        QVERIFY(shows(opened, askColor) && shows(opened, bidColor));
    }

    void the_order_window_tells_old_prices_from_live_ones()
    {
        Terminal t;
        t.d.f.window->openOrderDialog();
        auto* display = t.d.f.window->findChild<QLabel*>(u"priceDisplay"_s);
        auto* ticks = t.d.f.window->findChild<TickChartWidget*>();
        QTRY_VERIFY(display && display->isVisible());
        const QString live = display->styleSheet();
        QCOMPARE(live, u"font-size:26pt; font-weight:bold; color:#222;"_s);
        t.quote(1.31, 150);
        t.quote(1.32, 150);
        QTRY_COMPARE(display->text(), u"1.32000 / 1.42000"_s);
        constexpr QColor tickAsk(0xdd, 0x33, 0x33);
        constexpr QColor tickBid(0x33, 0x66, 0xcc);
        QVERIFY(shows(*ticks, tickAsk) && shows(*ticks, tickBid));

        t.loseFeed();
        QVERIFY(display->styleSheet() != live);
        QCOMPARE(display->text(), u"1.32000 / 1.42000"_s);
        const QColor color = display->palette().color(display->foregroundRole());
        QVERIFY2(color != QColor(0x22, 0x22, 0x22) && contrastRatio(color, Qt::white) >= 4.5,
            qPrintable(color.name()));
        QVERIFY(!shows(*ticks, tickAsk) && !shows(*ticks, tickBid));

        t.findFeed(euroHello(1.32, 1.42));
        QVERIFY(display->styleSheet() != live);
        t.quote(1.32, 150);
        QTRY_COMPARE(display->styleSheet(), live);
        QVERIFY(shows(*ticks, tickAsk) && shows(*ticks, tickBid));
    }

    void another_symbol_in_the_order_window_has_no_old_price()
    {
        Terminal t;
        t.d.f.window->openOrderDialog();
        auto* display = t.d.f.window->findChild<QLabel*>(u"priceDisplay"_s);
        const QString live = display->styleSheet();
        t.quote(1.31, 150);
        QTRY_COMPARE(display->text(), u"1.31000 / 1.41000"_s);
        t.loseFeed();
        QVERIFY(display->styleSheet() != live);
        t.d.f.window->findChild<QComboBox*>(u"orderSymbol"_s)->setCurrentIndex(1);
        QCOMPARE(display->text(), u"— / —"_s);
        QCOMPARE(display->styleSheet(), live);
    }

    void market_watch_paints_prices_that_grow_old_or_come_again()
    {
        Terminal t;
        auto* marketWatch = t.d.f.window->findChild<MarketWatchWidget*>();
        t.d.f.settle();
        const PaintCounter paints(*t.d.f.list("marketWatchSymbols").viewport());
        t.loseFeed();
        QTRY_VERIFY(paints.count() > 0);

        t.findFeed(euroHello(1.3, 1.4));
        t.quote(1.3, 150.7);
        QTRY_COMPARE(t.row(1).text(1), u"150.700"_s);
        marketWatch->markStale();
        t.d.f.settle();
        const int before = paints.count();
        t.quote(1.3, 150.7);
        QTRY_VERIFY(!t.looksOld(0, 1));
        QTRY_VERIFY(paints.count() > before);
    }

    void popup_prices_are_painted_when_they_grow_old()
    {
        Terminal t;
        t.d.f.window->togglePopupPrices();
        auto* list = t.d.f.window->findChild<QTreeView*>(u"popupPriceList"_s);
        QVERIFY(QTest::qWaitForWindowExposed(list->window()));
        t.d.f.settle();
        const PaintCounter paints(*list->viewport());
        t.loseFeed();
        QTRY_VERIFY(paints.count() > 0);
    }

    void a_chart_is_painted_when_its_prices_grow_old_or_come_again()
    {
        Terminal t;
        t.d.f.server.on("GET", "/api/candles",
            StubAnswer::list({records::candle(u"2026-01-01T00:00:00.000Z"_s, 1.3, 1.5, 1.2, 1.35)}));
        ChartWidget& chart = t.d.openChart(u"EURUSD"_s)->chart();
        QTRY_COMPARE(chart.candles().size(), std::size_t(1));
        t.quote(1.31, 150);
        QTRY_COMPARE(chart.bid(), 1.31);
        t.d.f.settle();
        const PaintCounter paints(chart);
        chart.markQuoteStale();
        QTRY_VERIFY(paints.count() > 0);
        t.d.f.settle();
        const int before = paints.count();
        chart.onTick(chart.bid(), chart.ask(), chart.candles().back().time);
        QTRY_VERIFY(paints.count() > before);
        QCOMPARE(paints.region(), QRegion(chart.rect())); // all of it, not what a tick changes
    }

    void the_ticks_of_the_order_window_are_painted_when_they_grow_old_or_come_again()
    {
        Terminal t;
        t.d.f.window->openOrderDialog();
        auto* ticks = t.d.f.window->findChild<TickChartWidget*>();
        QTRY_VERIFY(ticks && ticks->isVisible());
        t.quote(1.32, 150);
        QTRY_COMPARE(ticks->bids().size(), 1);
        t.d.f.settle();
        const PaintCounter paints(*ticks);
        t.loseFeed();
        QTRY_VERIFY(paints.count() > 0);
        t.d.f.settle();
        const int before = paints.count();
        ticks->setStale(false);
        QTRY_VERIFY(paints.count() > before);
    }

    void cleanup()
    {
        setTheme(false);
        applyTheme(*qApp);
    }
};

TAVORAN_TEST(tst_StalePrices)
#include "tst_StalePrices.moc"
