#include "MainWindowFixture.h"
#include "chart/window/ChartWidget.h"
#include "chart/window/ChartWindow.h"
#include "support/NamelessParts.h"
#include "support/TestMain.h"

#include <QDialog>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace {

/// A window that has something to show in every list.
struct FullWindow final : MainWindowFixture {
    FullWindow()
    {
        server.on("GET", "/api/trades/history", StubAnswer::list({records::closedTrade("h1")}));
        server.on("GET", "/api/trades/pending?accountId=a1", StubAnswer::list({records::pendingOrder("p1")}));
        server.on("GET", "/api/news/upcoming",
            StubAnswer::json(records::news({records::newsEvent("n1").title(u"Rates"_s)})));
        feed.setGreeting(records::hello(
            {records::symbol("EURUSD").with("dailyOpen", 1.0)}, records::prices({{"EURUSD", 1.1, 1.2}})));
        signIn();
    }

    void settleWithAChart()
    {
        QTRY_VERIFY(action("New Order")->isEnabled());
        QTRY_COMPARE(list("newsList").topLevelItemCount(), 1);
        settle();
        window->openChart(u"EURUSD"_s);
        feed.send(records::priceUpdate({{"EURUSD", 1.15, 1.19}}));
        QTRY_COMPARE(charts().constFirst()->chart().bid(), 1.15);
    }

    void trigger(const char* text) const
    {
        QAction* entry = action(text);
        QVERIFY2(entry, text);
        entry->trigger();
    }
    void press(const QString& text) const
    {
        for (QPushButton* button : window->findChildren<QPushButton*>()) {
            if (button->text() == text)
                return button->click();
        }
        QFAIL(qPrintable(text));
    }
    [[nodiscard]] QJsonObject firstTrade() const
    {
        return list("tradeList").topLevelItem(0)->data(0, Qt::UserRole).toJsonObject();
    }
};

QString nameless()
{
    return NamelessParts::find().join(u'\n');
}

} // namespace

class TestAccessibleNames final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void every_part_of_the_main_window_has_a_name()
    {
        FullWindow f;
        f.settleWithAChart();
        f.charts().constFirst()->setOneClickTrading(true);
        f.charts().constFirst()->chart().setAutoScroll(false);
        QVERIFY2(nameless().isEmpty(), qPrintable(nameless()));
    }

    void every_part_of_the_small_windows_has_a_name()
    {
        FullWindow f;
        f.settleWithAChart();
        for (const char* name : {"Popup Prices", "Depth of Market", "Data Window", "Properties...",
                 "Symbol Specification...", "About Tavoran Terminal"})
            f.trigger(name);
        QVERIFY2(nameless().isEmpty(), qPrintable(nameless()));
    }

    void every_part_of_the_dialogs_has_a_name()
    {
        FullWindow f;
        f.settleWithAChart();
        f.trigger("New Order");
        f.window->onTradeDoubleClicked(f.firstTrade());
        f.press(u"Add Alert"_s);
        f.trigger("Moving Average (SMA)");
        QVERIFY(f.window->findChildren<QDialog*>().size() >= 4);
        QVERIFY2(nameless().isEmpty(), qPrintable(nameless()));
    }

    void every_part_of_the_question_before_a_close_has_a_name()
    {
        FullWindow f;
        f.settleWithAChart();
        f.window->onTradeContextMenu({}, f.firstTrade());
        f.window->findChild<QMenu*>(u"tradeMenu"_s)->actions().constFirst()->trigger();
        QVERIFY(f.window->findChild<QMessageBox*>());
        QVERIFY2(nameless().isEmpty(), qPrintable(nameless()));
    }

    void every_part_of_the_menus_has_a_name()
    {
        FullWindow f;
        f.settleWithAChart();
        f.window->onTradeContextMenu({}, f.firstTrade());
        QContextMenuEvent ask(QContextMenuEvent::Mouse, {100, 100}, {100, 100});
        QApplication::sendEvent(f.charts().constFirst(), &ask);
        QVERIFY(f.window->findChild<QMenu*>(u"tradeMenu"_s));
        QVERIFY2(nameless().isEmpty(), qPrintable(nameless()));
    }

    void a_close_button_names_its_chart()
    {
        FullWindow f;
        f.settleWithAChart();
        const auto name = [&f] {
            const auto* bar = f.chartArea()->findChild<QTabBar*>({}, Qt::FindDirectChildrenOnly);
            const QWidget* left = bar->tabButton(0, QTabBar::LeftSide);
            return (left ? left : bar->tabButton(0, QTabBar::RightSide))->accessibleName();
        };
        QCOMPARE(name(), u"Close EURUSD,M15"_s);
        f.charts().constFirst()->setTimeframe(u"1h"_s);
        QCOMPARE(name(), u"Close EURUSD,H1"_s);
    }

    void the_triangles_of_the_market_watch_say_where_the_bid_went()
    {
        FullWindow f;
        f.settleWithAChart();
        const QModelIndex cell = f.list("marketWatchSymbols").model()->index(0, 0);
        QCOMPARE(cell.data().toString(), u"EURUSD"_s);
        QCOMPARE(cell.data(Qt::AccessibleTextRole).toString(), u"EURUSD, rising"_s);
        f.feed.send(records::priceUpdate({{"EURUSD", 1.14, 1.19}}));
        QTRY_COMPARE(cell.data(Qt::AccessibleTextRole).toString(), u"EURUSD, falling"_s);
        QCOMPARE(cell.data().toString(), u"EURUSD"_s);
    }
};

TAVORAN_TEST(TestAccessibleNames)
#include "tst_AccessibleNames.moc"
