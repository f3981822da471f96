#include "MainWindowFixture.h"

#include "app/ui/MenuKey.h"
#include "support/Hands.h"
#include "support/TestMain.h"

#include <QClipboard>
#include <QMenu>
#include <QMessageBox>
#include <QPointer>
#include <QTabWidget>

using namespace Qt::StringLiterals;

/// What keys do in the lists of the main window.
class tst_MainWindowLists final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void the_rows_of_each_list_can_be_copied_data()
    {
        QTest::addColumn<QString>("headers");
        QTest::addColumn<QString>("end");
        QTest::newRow("marketWatchSymbols")
            << u"Symbol\tBid\tAsk\tDaily"_s << u"USDJPY\t150.500\t150.600\t"_s;
        QTest::newRow("tradeList")
            << u"Symbol\tTicket\tTime\tType\tVolume\tPrice\tS / L\tT / P\tPrice\tCommission\tSwap\tProfit"_s
            << u"12.50"_s;
        QTest::newRow("historyList") << u"Symbol\tTicket\tOpen Time\tType\tVolume\tPrice\tS / L\tT / P\t"
                                        "Close Time\tPrice\tCommission\tSwap\tProfit"_s
                                     << u"7.00"_s;
        QTest::newRow("expertsList") << u"Time\tSource\tMessage"_s << QString();
        QTest::newRow("journalList") << u"Time\tSource\tMessage"_s << QString();
        QTest::newRow("newsList") << u"Time\tCurrency\tImpact\tEvent\tIn"_s << u"5m"_s;
        QTest::newRow("alertsList") << u"Symbol\tCondition\tPrice\tStatus"_s
                                    << u"EURUSD\tBid ≥\t9.00000\tActive"_s;
    }
    void the_rows_of_each_list_can_be_copied()
    {
        QFETCH(const QString, headers);
        QFETCH(const QString, end);
        TerminalSettings::instance().setAlerts(uR"([{"symbol":"EURUSD","price":9,"above":true}])"_s);
        MainWindowFixture f;
        f.server.on("GET", "/api/trades/history", StubAnswer::list({records::closedTrade("h1").profit(7)}));
        f.server.on("GET", "/api/news/upcoming", StubAnswer::json(records::news({records::newsEvent("n1")})));
        f.signInAndSettle();
        TerminalSettings::instance().setAlerts({});
        QTRY_COMPARE(f.list("historyList").topLevelItemCount(), 1);
        QTRY_COMPARE(f.list("newsList").topLevelItemCount(), 1);
        f.action("Algo Trading")->trigger(); // a line of the Experts tab
        QVERIFY(hands::arriveAt(f.window.get()) || QApplication::activeWindow() == f.window.get());
        QTreeWidget& list = f.list(QTest::currentDataTag());
        for (QWidget* page = &list; page; page = page->parentWidget()) {
            const auto toolboxes = f.window->findChildren<QTabWidget*>();
            for (QTabWidget* tabs : toolboxes) {
                if (tabs->indexOf(page) >= 0)
                    tabs->setCurrentWidget(page);
            }
        }
        QTRY_VERIFY(list.isVisible());
        list.setFocus();
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_A, Qt::ControlModifier);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_C, Qt::ControlModifier);
        const QStringList lines = QGuiApplication::clipboard()->text().split(u'\n');
        QCOMPARE(lines.constFirst(), headers);
        QCOMPARE(lines.size(), list.topLevelItemCount() + 2); // headers, and nothing behind the last end
        QVERIFY(list.topLevelItemCount() > 0);
        QVERIFY2(lines.at(lines.size() - 2).endsWith(end), qPrintable(lines.at(lines.size() - 2)));
    }

    void enter_on_a_trade_opens_one_dialog()
    {
        MainWindowFixture f;
        f.signInAndSettle();
        QTreeWidget& trades = f.list("tradeList");
        trades.setFocus();
        hands::press(Qt::Key_Home);
        const auto dialogs = [&f] {
            const auto all = f.window->findChildren<QDialog*>();
            return std::count_if(all.begin(), all.end(), [](const QDialog* d) { return d->isVisible(); });
        };
        QCOMPARE(dialogs(), 0);
        hands::press(Qt::Key_Return);
        QTRY_COMPARE(dialogs(), 1);
        hands::hold(Qt::Key_Return);
        hands::hold(Qt::Key_Return);
        QCOMPARE(dialogs(), 1);
    }

    void a_menu_over_many_selected_positions_closes_one()
    {
        MainWindowFixture f;
        f.server.on("GET", "/api/trades/open?accountId=a1",
            StubAnswer::list({records::position("t1").buy(1), records::position("t2").buy(2)}));
        f.server.on("POST", "/api/trades/close/t1", StubAnswer::json("{}"));
        f.server.on("POST", "/api/trades/close/t2", StubAnswer::json("{}"));
        f.signIn();
        QTreeWidget& trades = f.list("tradeList");
        QTRY_COMPARE(trades.topLevelItemCount(), 2);
        f.settle();
        const MenuKey menuKey(*qApp);
        QVERIFY(hands::arriveAt(f.window.get()) || QApplication::activeWindow() == f.window.get());
        trades.setFocus();
        hands::press(Qt::Key_End);
        QTest::keyClick(&trades, Qt::Key_A, Qt::ControlModifier);
        QCOMPARE(trades.selectedItems().size(), 2);
        QTest::keyClick(&trades, Qt::Key_F10, Qt::ShiftModifier);
        hands::choose(*f.window->findChild<QMenu*>(u"tradeMenu"_s), u"Close Position"_s);
        const QPointer<QMessageBox> question = f.window->findChild<QMessageBox*>();
        QVERIFY(question && question->text().contains(u"buy 2.00"_s));
        QTest::keyClick(question, Qt::Key_Return);
        QTRY_COMPARE(f.journalCount(u"Trade: Position closed"_s), 1);
        QTRY_VERIFY(!question);
        f.settle();
        QCOMPARE(f.server.count("POST", "/api/trades/close/t2"), 1);
        QCOMPARE(f.server.count("POST", "/api/trades/close/t1"), 0);
    }

    void an_enter_held_down_in_a_menu_cancels_no_order()
    {
        MainWindowFixture f;
        f.server.on("GET", "/api/trades/open?accountId=a1", StubAnswer::json("[]"));
        f.server.on("GET", "/api/trades/pending?accountId=a1",
            StubAnswer::list({records::pendingOrder("p1").buy(1)}));
        f.server.on("POST", "/api/trades/cancel/p1", StubAnswer::json("{}"));
        f.signInAndSettle();
        QTreeWidget& trades = f.list("tradeList");
        QTRY_COMPARE(trades.topLevelItemCount(), 1);
        const MenuKey menuKey(*qApp);
        trades.setFocus();
        hands::press(Qt::Key_Home);
        QTest::keyClick(&trades, Qt::Key_F10, Qt::ShiftModifier);
        auto* menu = f.window->findChild<QMenu*>(u"tradeMenu"_s);
        QTRY_VERIFY(menu && menu->isVisible());
        QTest::keyPress(menu, Qt::Key_Return); // goes to the first entry
        for (int again = 0; again < 3; ++again) {
            QKeyEvent held(QEvent::KeyPress, Qt::Key_Return, {}, {}, true);
            QApplication::sendEvent(menu, &held);
            QVERIFY(menu->isVisible());
        }
        QTest::keyRelease(menu, Qt::Key_Return);
        f.settle();
        QCOMPARE(f.server.count("POST", "/api/trades/cancel/p1"), 0);
        QTest::keyPress(menu, Qt::Key_Return);
        QTRY_COMPARE(f.server.count("POST", "/api/trades/cancel/p1"), 1);
    }

    void keys_go_on_to_the_next_position_once_one_is_closed()
    {
        MainWindowFixture f;
        const auto listed = [&f](const QJsonArray& trades) {
            f.server.on("GET", "/api/trades/open?accountId=a1", StubAnswer::list(trades));
        };
        const QJsonObject second = records::position("t2").buy(2);
        listed({records::position("t1").buy(1), second});
        f.server.on("POST", "/api/trades/close/t1", StubAnswer::json("{}"));
        f.signIn();
        QTreeWidget& trades = f.list("tradeList");
        QTRY_COMPARE(trades.topLevelItemCount(), 2);
        f.settle();
        const MenuKey menuKey(*qApp);
        trades.setFocus();
        hands::press(Qt::Key_Home);
        QTest::keyClick(&trades, Qt::Key_F10, Qt::ShiftModifier);
        hands::choose(*f.window->findChild<QMenu*>(u"tradeMenu"_s), u"Close Position"_s);
        listed({second});
        const QPointer<QMessageBox> question = f.window->findChild<QMessageBox*>();
        QTest::keyClick(question, Qt::Key_Return);
        QTRY_COMPARE(trades.topLevelItemCount(), 1);
        QTRY_VERIFY(!question);
        QCOMPARE(trades.currentItem(), trades.topLevelItem(0));
        f.window->activateWindow(); // as a desktop does
        QTRY_COMPARE(QApplication::focusWidget(), &trades);
        hands::hold(Qt::Key_Return);
        QTest::keyClick(&trades, Qt::Key_F10, Qt::ShiftModifier);
        QTRY_VERIFY(QApplication::activePopupWidget());
        hands::choose(*qobject_cast<QMenu*>(QApplication::activePopupWidget()), u"Close Position"_s);
        const auto* next = f.window->findChild<QMessageBox*>();
        QVERIFY(next && next->text().contains(u"buy 2.00"_s));
        f.settle();
        QCOMPARE(f.server.count("POST", "/api/trades/close/t2"), 0);
    }
};

TAVORAN_TEST(tst_MainWindowLists)
#include "tst_MainWindowLists.moc"
