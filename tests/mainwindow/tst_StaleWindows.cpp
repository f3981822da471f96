#include "FeedLossFixture.h"
#include "chart/window/OneClickPanel.h"
#include "mainwindow/DepthOfMarket.h"
#include "mainwindow/SymbolSpecification.h"
#include "support/Contrast.h"
#include "support/PaintCounter.h"
#include "support/TestMain.h"

#include <QDialog>
#include <QPushButton>
#include <QTreeView>

using namespace Qt::StringLiterals;
using fixtures::euroHello;
using fixtures::Terminal;

namespace {

QColor ink(const QModelIndex& cell)
{
    return cell.data(Qt::ForegroundRole).value<QBrush>().color();
}

bool looksOld(const QModelIndex& cell)
{
    return cell.data(Qt::FontRole).value<QFont>().italic();
}

/// That the cell tells an old price from a live one, to the eye in both themes and in words.
void verifyLooksOld(const QAbstractItemView& list, const QModelIndex& cell, const QColor& live)
{
    for (const bool dark : {true, false}) {
        setTheme(dark);
        applyTheme(*qApp);
        QVERIFY(looksOld(cell));
        QVERIFY(ink(cell) != live);
        const double contrast = contrastRatio(ink(cell), list.palette().color(QPalette::Base));
        QVERIFY2(contrast >= 4.5, qPrintable(ink(cell).name()));
    }
    QCOMPARE(cell.data(Qt::AccessibleTextRole).toString(), cell.data().toString() + u", last known price"_s);
}

/// The colour that a style sheet gives the ground of a widget under `selector`.
QColor groundIn(const QString& sheet, const QString& selector)
{
    const QString rule = sheet.mid(sheet.indexOf(selector + u'{'));
    return QColor(rule.mid(rule.indexOf(u"background:"_s) + 11, 7));
}

struct PanelOfEuro final {
    QPushButton* sell;
    QPushButton* buy;

    explicit PanelOfEuro(const ChartWindow& chart)
    {
        const auto buttons = chart.findChild<OneClickPanel*>()->findChildren<QPushButton*>();
        sell = buttons.at(0);
        buy = buttons.at(1);
    }
    [[nodiscard]] QList<QPushButton*> both() const { return {sell, buy}; }
};

QAbstractItemView& depthRows(const Terminal& t)
{
    t.d.f.window->toggleDepthOfMarket();
    return *t.d.f.window->findChild<QAbstractItemView*>(u"depthRows"_s);
}

QModelIndex bestAsk(const QAbstractItemView& depth)
{
    return depth.model()->index(7, 1);
}

QModelIndex currentPrice(const Terminal& t)
{
    return t.d.f.list("tradeList").model()->index(0, 8);
}

} // namespace

/// The windows and lists beside Market Watch, charts and the order window, while the feed is down.
class tst_StaleWindows final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void the_one_click_panel_tells_old_prices_from_live_ones()
    {
        Terminal t;
        const ChartWindow& chart = *t.d.openChart(u"EURUSD"_s);
        t.quote(1.31, 150);
        const PanelOfEuro panel(chart);
        QTRY_COMPARE(panel.sell->text(), u"SELL\n1.31000"_s);
        const QStringList live{panel.sell->styleSheet(), panel.buy->styleSheet()};
        const QList<QColor> liveGrounds{QColor(0xc0, 0x39, 0x2b), QColor(0x1f, 0x6f, 0xb2)};

        t.loseFeed();
        for (int i = 0; i < 2; ++i) {
            const QPushButton& button = *panel.both().at(i);
            QVERIFY(button.font().italic());
            QVERIFY(button.font().bold());
            QCOMPARE(button.accessibleDescription(), u"last known price"_s);
            for (const QString& state : {u"QPushButton"_s, u"QPushButton:hover"_s}) {
                const QColor ground = groundIn(button.styleSheet(), state);
                QVERIFY(ground.isValid() && ground.saturation() < liveGrounds.at(i).saturation() / 2);
                QVERIFY2(contrastRatio(Qt::white, ground) >= 4.5, qPrintable(ground.name()));
            }
        }
        QCOMPARE(panel.sell->text(), u"SELL\n1.31000"_s);
        const PanelOfEuro opened(*t.d.openChart(u"EURUSD"_s));
        QCOMPARE(opened.sell->text(), u"SELL\n1.31000"_s);
        QVERIFY(opened.sell->font().italic());

        t.findFeed(euroHello(1.31, 1.41));
        QVERIFY(panel.sell->font().italic()); // a hello is no tick of this chart
        t.quote(1.31, 150);                   // the same price, but a new one
        QTRY_VERIFY(!panel.sell->font().italic());
        QCOMPARE(panel.sell->styleSheet(), live.at(0));
        QCOMPARE(panel.buy->styleSheet(), live.at(1));
        QCOMPARE(panel.buy->accessibleDescription(), QString());
        QCOMPARE(opened.sell->styleSheet(), live.at(0));
    }

    void a_chart_opened_after_a_hello_shows_its_price_as_live()
    {
        Terminal t;
        t.loseFeed();
        t.findFeed(euroHello(1.33, 1.43));
        QTRY_COMPARE(t.row(0).text(1), u"1.33000"_s);
        const PanelOfEuro panel(*t.d.openChart(u"EURUSD"_s));
        QCOMPARE(panel.sell->text(), u"SELL\n1.33000"_s);
        QVERIFY(!panel.sell->font().italic());
        t.loseFeed();
        QVERIFY(panel.sell->font().italic());
    }

    void a_tick_without_a_price_leaves_the_one_click_panel_old()
    {
        Terminal t;
        ChartWindow& chart = *t.d.openChart(u"EURUSD"_s);
        t.loseFeed();
        const PanelOfEuro panel(chart);
        chart.onQuote({0.0, 0.0});
        QVERIFY(panel.sell->font().italic());
        chart.onQuote({1.3, 1.4});
        QVERIFY(!panel.sell->font().italic());
    }

    void the_one_click_panel_without_a_price_has_no_old_one()
    {
        Terminal t;
        const PanelOfEuro panel(*t.d.openChart(u"XAUUSD"_s));
        const QString live = panel.sell->styleSheet();
        t.loseFeed();
        QCOMPARE(panel.sell->text(), u"SELL\n—"_s);
        QCOMPARE(panel.sell->styleSheet(), live);
    }

    void the_one_click_panel_trades_at_a_click_whether_or_not_its_prices_are_old()
    {
        Terminal t;
        const ChartWindow& chart = *t.d.openChart(u"EURUSD"_s);
        const QSignalSpy wishes(&chart, &ChartWindow::quickTradeRequested);
        t.loseFeed();
        const PanelOfEuro panel(chart);
        QVERIFY(panel.sell->font().italic());
        for (QPushButton* button : panel.both())
            QTest::mouseClick(button, Qt::LeftButton);
        QCOMPARE(wishes.size(), 2);
        QCOMPARE(wishes.at(0).at(1).toString(), u"SELL"_s);
        QCOMPARE(wishes.at(1).at(1).toString(), u"BUY"_s);
    }

    void the_depth_of_market_tells_old_prices_from_live_ones()
    {
        Terminal t;
        const QAbstractItemView& depth = depthRows(t);
        const QModelIndex ask = bestAsk(depth);
        const QColor live(0xff, 0x4a, 0x4a);
        QCOMPARE(ask.data().toString(), u"1.40000"_s);
        QCOMPARE(ink(ask), live);
        QVERIFY(!looksOld(ask));
        t.loseFeed();
        verifyLooksOld(depth, ask, live);
        QCOMPARE(ask.data().toString(), u"1.40000"_s);
        QCOMPARE(ink(ask.siblingAtColumn(0)), live); // the side of a row does not grow old
        const auto& spread = *t.d.f.window->findChild<QLabel*>(u"depthSpread"_s);
        QVERIFY(spread.font().italic());
        const QString family = spread.font().family();

        t.findFeed(euroHello(1.3, 1.4));
        QTRY_VERIFY(!looksOld(ask));
        QVERIFY(!spread.font().italic());
        QCOMPARE(spread.font().family(), family);
        QCOMPARE(ink(ask), live);
        QCOMPARE(ask.data(Qt::AccessibleTextRole), QVariant());
    }

    void a_depth_of_market_opened_without_the_feed_shows_old_prices()
    {
        Terminal t;
        t.loseFeed();
        QVERIFY(looksOld(bestAsk(depthRows(t))));
    }

    void a_symbol_that_a_hello_leaves_out_stays_old_in_the_depth_of_market()
    {
        Terminal t;
        QVERIFY(t.d.openChart(u"USDJPY"_s));
        const QAbstractItemView& depth = depthRows(t);
        t.loseFeed();
        t.findFeed(euroHello(1.3, 1.4));
        QTRY_COMPARE(t.row(1).text(1), QString());
        QVERIFY(looksOld(bestAsk(depth)));
        t.quote(1.3, 150.7);
        QTRY_VERIFY(!looksOld(bestAsk(depth)));
    }

    void the_specification_tells_old_prices_from_live_ones()
    {
        Terminal t;
        t.d.f.window->showSpecification(u"EURUSD"_s);
        const auto& rows = *t.d.f.window->findChild<QTreeWidget*>(u"specificationRows"_s);
        const int last = rows.topLevelItemCount() - 1;
        const QModelIndex bid = rows.model()->index(last - 2, 1);
        QCOMPARE(bid.data().toString(), u"1.30000"_s);
        t.loseFeed();
        for (int row = last - 2; row <= last; ++row)
            verifyLooksOld(rows, rows.model()->index(row, 1), {});
        QVERIFY(!looksOld(rows.model()->index(0, 1)));
        // Another symbol shows what is known of it.
        t.d.f.window->showSpecification(u"USDJPY"_s);
        const auto yen = [&rows] { return rows.model()->index(rows.topLevelItemCount() - 3, 1); };
        QCOMPARE(yen().data().toString(), u"150.700"_s);
        QVERIFY(looksOld(yen()));

        t.findFeed(euroHello(1.3, 1.4));
        t.quote(1.3, 150.7);
        QTRY_VERIFY(!looksOld(yen()));
    }

    void the_trade_list_tells_old_prices_from_live_ones()
    {
        Terminal t;
        const QTreeWidget& trades = t.d.f.list("tradeList");
        QTRY_COMPARE(currentPrice(t).data().toString(), u"1.30000"_s);
        const QVariant live = currentPrice(t).data(Qt::ForegroundRole);
        QVERIFY(!looksOld(currentPrice(t)));
        t.loseFeed();
        verifyLooksOld(trades, currentPrice(t), Qt::black);
        QVERIFY(!looksOld(currentPrice(t).siblingAtColumn(5))); // the price at which it was opened

        const QSignalSpy readAgain(trades.model(), &QAbstractItemModel::rowsInserted);
        t.findFeed(euroHello(1.3, 1.4));
        QTRY_VERIFY(!readAgain.isEmpty());
        QCOMPARE(trades.topLevelItemCount(), 1);
        QTRY_COMPARE(currentPrice(t).data().toString(), u"1.30000"_s);
        QVERIFY(looksOld(currentPrice(t)));
        t.quote(1.3, 150.7);
        QTRY_VERIFY(!looksOld(currentPrice(t)));
        QCOMPARE(currentPrice(t).data(Qt::ForegroundRole), live);
        QCOMPARE(currentPrice(t).data(Qt::AccessibleTextRole), QVariant());
    }

    void trades_read_again_without_the_feed_still_show_old_prices()
    {
        Terminal t;
        QTRY_COMPARE(currentPrice(t).data().toString(), u"1.30000"_s);
        t.loseFeed();
        t.d.f.server.on("GET", "/api/trades/open?accountId=a1",
            StubAnswer::list({MainWindowFixture::openTrade(), records::position("t2").buy(0.1).at(1.1)}));
        t.d.f.window->onOrdersChanged({{u"accountId"_s, u"a1"_s}});
        QTRY_COMPARE(t.d.f.list("tradeList").topLevelItemCount(), 2);
        for (const int row : {0, 1}) {
            const QModelIndex price = currentPrice(t).siblingAtRow(row);
            QCOMPARE(price.data().toString(), u"1.30000"_s);
            QVERIFY(looksOld(price));
        }
    }

    void a_trade_without_a_price_has_no_old_one()
    {
        Terminal t;
        t.d.f.server.on("GET", "/api/trades/open?accountId=a1",
            StubAnswer::list({records::position("t3").symbol("XAUUSD").buy(0.1).at(1.1)}));
        t.d.f.window->onOrdersChanged({{u"accountId"_s, u"a1"_s}});
        QTRY_COMPARE(currentPrice(t).siblingAtColumn(0).data().toString(), u"XAUUSD"_s);
        t.loseFeed();
        QVERIFY(!looksOld(currentPrice(t)));
    }

    void popup_prices_tell_old_prices_from_live_ones()
    {
        Terminal t;
        t.d.f.window->togglePopupPrices();
        const auto& popup = *t.d.f.window->findChild<QTreeView*>(u"popupPriceList"_s);
        const QModelIndex ask = popup.model()->index(0, 2);
        QVERIFY(!looksOld(ask));
        t.loseFeed();
        QVERIFY(looksOld(ask));
        QVERIFY(ink(ask) != themeUpColor());
        QVERIFY(contrastRatio(ink(ask), popup.palette().color(QPalette::Base)) >= 4.5);
    }

    void prices_are_painted_when_they_grow_old_and_not_with_each_tick()
    {
        Terminal t;
        QAbstractItemView& depth = depthRows(t);
        QVERIFY(QTest::qWaitForWindowExposed(depth.window()));
        QTRY_COMPARE(currentPrice(t).data().toString(), u"1.30000"_s);
        t.d.f.settle();
        PaintCounter trades(*t.d.f.list("tradeList").viewport());
        PaintCounter rungs(*depth.viewport());
        t.quote(1.3, 150.7);
        t.d.f.settle();
        QCOMPARE(trades.taken(), 0);
        QCOMPARE(rungs.taken(), 0);
        t.loseFeed();
        QTRY_VERIFY(trades.count() > 0 && rungs.count() > 0);
    }

    void cleanup()
    {
        setTheme(false);
        applyTheme(*qApp);
    }
};

TAVORAN_TEST(tst_StaleWindows)
#include "tst_StaleWindows.moc"
