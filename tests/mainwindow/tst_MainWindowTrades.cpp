#include "MainWindowFixture.h"

#include "app/ui/DecimalEdit.h"
#include "chart/window/ChartWidget.h"
#include "chart/window/ChartWindow.h"
#include "chart/window/OneClickPanel.h"
#include "mainwindow/PaintHold.h"
#include "mainwindow/SymbolSpecification.h"
#include "orders/ModifyDialog.h"
#include "orders/OrderDialog.h"
#include "panes/AlertsPane.h"
#include "panes/TerminalPane.h"
#include "support/Hands.h"
#include "support/TestMain.h"
#include "support/Timers.h"

#include <QMdiSubWindow>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QStatusBar>
#include <QTabBar>
#include <QTreeWidget>

using namespace Qt::StringLiterals;

Q_DECLARE_METATYPE(StubAnswer)

/// From a row, a line or a panel under the trader's hand to the request and back.
class tst_MainWindowTrades final : public QObject {
    Q_OBJECT

    static QRect rowOf(const MainWindowFixture& f)
    {
        QTreeWidget& trades = f.list("tradeList");
        return trades.visualItemRect(trades.topLevelItem(0));
    }
    static QMenu* menuOn(const MainWindowFixture& f)
    {
        QTreeWidget& trades = f.list("tradeList");
        const QPoint place = rowOf(f).center();
        QContextMenuEvent event(QContextMenuEvent::Mouse, place, trades.viewport()->mapToGlobal(place));
        QApplication::sendEvent(trades.viewport(), &event);
        return f.window->findChild<QMenu*>(u"tradeMenu"_s);
    }
    static void doubleClickRow(const MainWindowFixture& f)
    {
        QTreeWidget& trades = f.list("tradeList");
        QTest::mouseClick(trades.viewport(), Qt::LeftButton, {}, rowOf(f).center());
        QTest::mouseDClick(trades.viewport(), Qt::LeftButton, {}, rowOf(f).center());
    }

private Q_SLOTS:
    void aRowsMenuClosesThePosition()
    {
        MainWindowFixture f;
        f.signInAndSettle();
        f.server.on("POST", "/api/trades/close/t1", StubAnswer::json("{}"));
        f.server.clearRequests();
        hands::choose(*menuOn(f), u"Close Position"_s);
        auto* question = f.window->findChild<QMessageBox*>();
        QVERIFY(question);
        QTest::mouseClick(question->button(QMessageBox::Yes), Qt::LeftButton);
        QTRY_COMPARE(f.journalCount(u"Trade: Position closed"_s), 1);
        f.awaitAllLists();
    }

    void aRowsMenuCancelsThePendingOrder()
    {
        MainWindowFixture f;
        f.server.on("GET", "/api/trades/open?accountId=a1", StubAnswer::json("[]"));
        f.server.on("GET", "/api/trades/pending?accountId=a1",
            StubAnswer::list({records::pendingOrder("p1").buy(1)}));
        f.signInAndSettle();
        f.server.on("POST", "/api/trades/cancel/p1", StubAnswer::json("{}"));
        f.server.clearRequests();
        hands::choose(*menuOn(f), u"Cancel Order"_s);
        QTRY_COMPARE(f.journalCount(u"Trade: Pending order cancelled"_s), 1);
        QTRY_VERIFY(f.server.count("GET", "/api/trades/open") >= 1);
        f.settle();
        QCOMPARE(f.server.count("GET", "/api/accounts"), 0);
        QCOMPARE(f.server.count("GET", "/api/trades/history"), 0);
    }

    void aRowsMenuModifiesTheTrade()
    {
        MainWindowFixture f;
        f.signInAndSettle();
        hands::choose(*menuOn(f), u"Modify..."_s);
        QVERIFY(f.window->findChild<ModifyDialog*>());
    }

    void aChangeThatNobodyKnowsOfReadsTheLists()
    {
        MainWindowFixture f;
        f.signInAndSettle();
        f.server.on("PUT", "/api/trades/modify/t1", StubAnswer::closed());
        doubleClickRow(f);
        auto* dialog = f.window->findChild<ModifyDialog*>();
        QVERIFY(dialog);
        f.server.clearRequests();
        QTest::keyClick(dialog, Qt::Key_Return);
        f.awaitAllLists();
        QCOMPARE(f.journalCount(u"Trade: Order modified"_s), 0);
        QCOMPARE(f.server.count("PUT", "/api/trades/modify/t1"), 1);
    }

    void aRowsMenuOpensTheOrderDialog()
    {
        MainWindowFixture f;
        f.signInAndSettle();
        hands::choose(*menuOn(f), u"New Order..."_s);
        QVERIFY(f.window->findChild<OrderDialog*>());
    }

    void aDoubleClickModifiesTheTrade()
    {
        MainWindowFixture f;
        f.signInAndSettle();
        f.server.on("PUT", "/api/trades/modify/t1", StubAnswer::json("{}"));
        doubleClickRow(f);
        const QPointer<ModifyDialog> dialog = f.window->findChild<ModifyDialog*>();
        QVERIFY(dialog && dialog->isVisible() && dialog->isModal());
        QTest::keyClicks(dialog->findChild<DecimalEdit*>(u"modifyStopLoss"_s), u"1.05"_s);
        f.server.clearRequests();
        QTest::keyClick(dialog, Qt::Key_Return);
        QTRY_COMPARE(f.journalCount(u"Trade: Order modified"_s), 1);
        QCOMPARE(f.server.last("PUT", "/api/trades/modify/t1").json(), QJsonObject({{u"stopLoss"_s, 1.05}}));
        QTRY_COMPARE(f.server.count("GET", "/api/trades/open?accountId=a1"), 1);
        QTRY_VERIFY(!dialog);
    }

    void aStopLossTypedAtOnceIsSent()
    {
        MainWindowFixture f;
        f.signInAndSettle();
        f.server.on("PUT", "/api/trades/modify/t1", StubAnswer::json("{}"));
        doubleClickRow(f);
        QVERIFY(hands::arriveAt(f.window->findChild<ModifyDialog*>()));
        hands::type(u"1.05000"_s);
        hands::press(Qt::Key_Return);
        QTRY_COMPARE(f.journalCount(u"Trade: Order modified"_s), 1);
        QCOMPARE(f.server.last("PUT", "/api/trades/modify/t1").json(), QJsonObject({{u"stopLoss"_s, 1.05}}));
    }

    void aChangeWhoseWindowWasClosedTwiceIsTold_data()
    {
        QTest::addColumn<StubAnswer>("answer");
        QTest::addColumn<QString>("line");
        QTest::newRow("modified") << StubAnswer::json("{}") << u"Trade: Order modified"_s;
        QTest::newRow("refused") << StubAnswer::message(u"Too close %1"_s, 400)
                                 << u"Trade: Modify failed: Too close %1"_s;
    }
    void aChangeWhoseWindowWasClosedTwiceIsTold()
    {
        QFETCH(StubAnswer, answer);
        QFETCH(QString, line);
        MainWindowFixture f;
        f.signInAndSettle();
        f.server.on("PUT", "/api/trades/modify/t1", StubAnswer::held());
        doubleClickRow(f);
        const QPointer<ModifyDialog> dialog = f.window->findChild<ModifyDialog*>();
        QTest::keyClick(dialog, Qt::Key_Return);
        QTRY_COMPARE(f.server.heldCount(), 1);
        QTest::keyClick(dialog, Qt::Key_Escape);
        dialog->show();
        QTest::keyClick(dialog, Qt::Key_Escape);
        QVERIFY(!dialog->isVisible());
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(f.server.release(answer));
        QTRY_COMPARE(f.journalCount(line), 1);
        QTRY_VERIFY(!dialog);
        QCOMPARE(f.server.count("PUT", "/api/trades/modify/t1"), 1);
    }

    void aChangeOnAFormerAccountIsToldInTheJournal()
    {
        MainWindowFixture f;
        f.signInAndSettle();
        f.server.on("PUT", "/api/trades/modify/t1", StubAnswer::held());
        doubleClickRow(f);
        const QPointer<ModifyDialog> dialog = f.window->findChild<ModifyDialog*>();
        QTest::keyClick(dialog, Qt::Key_Return);
        QTRY_COMPARE(f.server.heldCount(), 1);
        dialog->close();
        f.selector().setCurrentIndex(f.selector().findData(u"a2"_s));
        QVERIFY(f.server.release(StubAnswer::message(u"Too close"_s, 400)));
        QTRY_COMPARE(f.journalCount(u"Trade: Modify failed: Too close"_s), 1);
        QTRY_VERIFY(!dialog);
    }

    void withoutATradeThereIsNothingToModify()
    {
        MainWindowFixture f;
        f.signInAndSettle();
        f.window->onTradeDoubleClicked({});
        QVERIFY(!f.window->findChild<ModifyDialog*>());
        f.window->onTradeContextMenu(f.window->mapToGlobal(QPoint(9, 9)), {});
        QVERIFY(!f.window->findChild<QMenu*>(u"tradeMenu"_s));
    }

    void theModifyDialogKnowsTheSymbolsDigits_data()
    {
        QTest::addColumn<QString>("symbol");
        QTest::addColumn<QString>("stopLoss");
        QTest::newRow("three") << u"USDJPY"_s << u"150.000"_s;
        QTest::newRow("five where they are unknown") << u"XAUUSD"_s << u"150.00000"_s;
    }
    void theModifyDialogKnowsTheSymbolsDigits()
    {
        QFETCH(QString, symbol);
        QFETCH(QString, stopLoss);
        MainWindowFixture f;
        f.server.on("GET", "/api/trades/open?accountId=a1",
            StubAnswer::list({records::position("t2").symbol(symbol).stopLoss(150)}));
        f.signInAndSettle();
        doubleClickRow(f);
        const auto* dialog = f.window->findChild<ModifyDialog*>();
        QVERIFY(dialog);
        QCOMPARE(dialog->findChild<DecimalEdit*>(u"modifyStopLoss"_s)->text(), stopLoss);
    }

    void aDroppedLevelIsSent()
    {
        MainWindowFixture f;
        f.signInAndSettle();
        f.window->openChart(u"EURUSD"_s);
        f.server.on("PUT", "/api/trades/modify/t1", StubAnswer::json("{}"));
        f.settle();
        f.server.clearRequests();
        Q_EMIT f.charts().first()->chart().levelDragged(u"t1"_s, u"SL"_s, 1.07505);
        QTRY_COMPARE(f.journalCount(u"Trade: SL moved to 1.07505"_s), 1);
        QCOMPARE(
            f.server.last("PUT", "/api/trades/modify/t1").json(), QJsonObject({{u"stopLoss"_s, 1.07505}}));
        QTRY_COMPARE(f.server.count("GET", "/api/trades/open?accountId=a1"), 1);
        f.settle();
        QCOMPARE(f.server.count("GET", "/api/accounts"), 0);
    }

    void what_the_server_refuses_is_told_below_the_chart_too_data()
    {
        QTest::addColumn<QString>("deed");
        QTest::addColumn<QString>("line");
        QTest::newRow("level") << u"level"_s << u"Modify failed: Too close"_s;
        QTest::newRow("modify dialog that was closed") << u"modify"_s << u"Modify failed: Too close"_s;
        QTest::newRow("one-click order") << u"one-click"_s << u"One-click order failed: Too close"_s;
        QTest::newRow("close") << u"close"_s << u"Close failed: Too close"_s;
    }
    void what_the_server_refuses_is_told_below_the_chart_too()
    {
        QFETCH(const QString, deed);
        QFETCH(const QString, line);
        MainWindowFixture f;
        f.signInAndSettle();
        f.window->openChart(u"EURUSD"_s);
        const StubAnswer refusal = StubAnswer::message(u"Too\nclose"_s, 400);
        f.server.on("PUT", "/api/trades/modify/t1", refusal);
        f.server.on("POST", "/api/trades/place", refusal);
        f.server.on("POST", "/api/trades/close/t1", refusal);
        f.settle();
        const QStatusBar& bar = *f.window->statusBar();
        const QString idle = bar.currentMessage();
        if (deed == u"level"_s) {
            Q_EMIT f.charts().first()->chart().levelDragged(u"t1"_s, u"SL"_s, 1.07505);
        } else if (deed == u"one-click"_s) {
            f.window->onQuickTrade(u"EURUSD"_s, u"BUY"_s, 1.0);
        } else if (deed == u"close"_s) {
            hands::choose(*menuOn(f), u"Close Position"_s);
            QTest::keyClick(f.window->findChild<QMessageBox*>(), Qt::Key_Return);
        } else {
            f.server.on("PUT", "/api/trades/modify/t1", StubAnswer::held());
            doubleClickRow(f);
            auto* dialog = f.window->findChild<ModifyDialog*>();
            QTest::keyClick(dialog, Qt::Key_Return);
            QTRY_COMPARE(f.server.heldCount(), 1);
            QTest::keyClick(dialog, Qt::Key_Escape);
            dialog->show();
            QTest::keyClick(dialog, Qt::Key_Escape);
            QVERIFY(f.server.release(refusal));
        }
        QTRY_COMPARE(f.journalCount(u"Trade: "_s + line), 1);
        QCOMPARE(bar.currentMessage(), line);
        auto* time = bar.findChild<QTimer*>();
        QVERIFY(time && time->isActive());
        QCOMPARE(time->interval(), 10'000);
        timeOut(*time);
        QCOMPARE(bar.currentMessage(), idle);
    }

    void a_refusal_makes_room_for_what_comes_next()
    {
        MainWindowFixture f;
        f.signInAndSettle();
        f.window->openChart(u"EURUSD"_s);
        f.server.on("PUT", "/api/trades/modify/t1", StubAnswer::message(u"Too close"_s, 400));
        f.settle();
        const QStatusBar& bar = *f.window->statusBar();
        const QString idle = bar.currentMessage();
        const auto move = [&f](double price) { f.window->onChartModifyLevel(u"t1"_s, u"SL"_s, price); };
        move(1.07505);
        QTRY_COMPARE(bar.currentMessage(), u"Modify failed: Too close"_s);
        // What has gone well since then leaves no old refusal behind.
        f.server.on("PUT", "/api/trades/modify/t1", StubAnswer::json("{}"));
        move(1.07);
        QTRY_COMPARE(f.journalCount(u"Trade: SL moved to 1.07"_s), 1);
        QCOMPARE(bar.currentMessage(), idle);
        f.server.on("PUT", "/api/trades/modify/t1", StubAnswer::message(u"Too close"_s, 400));
        move(1.07505);
        QTRY_COMPARE(bar.currentMessage(), u"Modify failed: Too close"_s);
        f.action("Trend Line")->trigger();
        const QString hint = bar.currentMessage();
        QVERIFY(hint != idle && !hint.contains(u"Too close"_s));
    }

    void a_modify_dialog_shows_its_refusal_itself()
    {
        MainWindowFixture f;
        f.signInAndSettle();
        const QString idle = f.window->statusBar()->currentMessage();
        f.server.on("PUT", "/api/trades/modify/t1", StubAnswer::message(u"Too close"_s, 400));
        doubleClickRow(f);
        const auto* dialog = f.window->findChild<ModifyDialog*>();
        QTest::keyClick(f.window->findChild<ModifyDialog*>(), Qt::Key_Return);
        const auto shown = [dialog] {
            const auto labels = dialog->findChildren<QLabel*>();
            return std::any_of(labels.begin(), labels.end(),
                [](const QLabel* label) { return label->isVisible() && label->text() == u"Too close"_s; });
        };
        QTRY_VERIFY(shown());
        QCOMPARE(f.window->statusBar()->currentMessage(), idle);
    }

    void theOneClickPanelTrades()
    {
        MainWindowFixture f;
        f.signInAndSettle();
        f.window->openChart(u"EURUSD"_s);
        f.server.on("POST", "/api/trades/place", StubAnswer::json("{}"));
        f.settle();
        f.server.clearRequests();
        const auto* panel = f.window->findChild<OneClickPanel*>();
        QVERIFY(panel && panel->isVisible());
        for (QPushButton* button : panel->findChildren<QPushButton*>()) {
            if (button->text().startsWith(u"BUY"_s))
                QTest::mouseClick(button, Qt::LeftButton);
        }
        QVERIFY(f.window->findChild<PaintHold*>());
        QTRY_COMPARE(f.journalCount(u"Trade: One-click BUY EURUSD executed"_s), 1);
        QCOMPARE(f.server.last("POST", "/api/trades/place").json(),
            QJsonObject({{u"symbol"_s, u"EURUSD"_s}, {u"type"_s, u"BUY"_s}, {u"orderKind"_s, u"MARKET"_s},
                {u"lotSize"_s, 0.01}, {u"accountId"_s, u"a1"_s}}));
        QTRY_COMPARE(f.server.count("GET", "/api/accounts"), 1);
        QTRY_VERIFY(f.server.count("GET", "/api/trades/open?accountId=a1") >= 1);
    }

    void keysGoToTheChartThatBecomesActive_data()
    {
        QTest::addColumn<QString>("way");
        QTest::addColumn<bool>("maximized");
        for (const char* way : {"close", "next", "tab", "window"}) {
            QTest::addRow("%s", way) << QString::fromLatin1(way) << true;
            QTest::addRow("%s of two beside each other", way) << QString::fromLatin1(way) << false;
        }
    }
    // A button that sells had the focus, and the space bar sold at market.
    void keysGoToTheChartThatBecomesActive()
    {
        QFETCH(const QString, way);
        QFETCH(const bool, maximized);
        MainWindowFixture f;
        f.signInAndSettle();
        QVERIFY(hands::arriveAt(f.window.get()));
        f.window->openChart(u"EURUSD"_s);
        f.window->openChart(u"USDJPY"_s);
        ChartArea& area = *f.chartArea();
        if (!maximized)
            area.tileSubWindows();
        QMdiSubWindow* other = area.subWindowList().constFirst();
        if (way == u"close"_s)
            QTest::keyClick(f.window.get(), Qt::Key_F4, Qt::ControlModifier);
        else if (way == u"next"_s)
            area.activateNextSubWindow();
        else if (way == u"tab"_s)
            area.findChild<QTabBar*>()->setCurrentIndex(0);
        else
            area.setActiveSubWindow(other);
        QTRY_COMPARE(area.activeSubWindow(), other);
        QCoreApplication::processEvents();
        QVERIFY(qobject_cast<ChartWidget*>(QApplication::focusWidget()));
        QVERIFY(other->isAncestorOf(QApplication::focusWidget()));
        f.server.clearRequests();
        hands::type(u"5 "_s);
        hands::press(Qt::Key_Return);
        f.settle();
        QCOMPARE(f.server.count("POST", "/api/trades/place"), 0);
        QCOMPARE(other->findChild<OneClickPanel*>()->lots(), 0.01);
    }

    void keys_trade_only_after_tab_has_led_to_the_button_data()
    {
        QTest::addColumn<QString>("way");
        for (const char* way :
            {"chart and back", "chart and back, beside each other", "dialog", "window", "menu"})
            QTest::newRow(way) << QString::fromLatin1(way);
    }
    void keys_trade_only_after_tab_has_led_to_the_button()
    {
        QFETCH(const QString, way);
        MainWindowFixture f;
        f.signInAndSettle();
        QVERIFY(hands::arriveAt(f.window.get()));
        f.window->openChart(u"EURUSD"_s);
        f.window->openChart(u"USDJPY"_s);
        ChartArea& area = *f.chartArea();
        if (way.endsWith(u"beside each other"_s))
            area.tileSubWindows();
        QTRY_VERIFY(qobject_cast<ChartWidget*>(QApplication::focusWidget()));
        QMdiSubWindow* front = area.activeSubWindow();
        hands::press(Qt::Key_Tab);
        QVERIFY(hands::focused().startsWith(u"SELL"_s));
        if (way.startsWith(u"chart"_s)) {
            area.activateNextSubWindow();
            QTRY_VERIFY(area.activeSubWindow() != front);
            area.setActiveSubWindow(front);
            QTRY_COMPARE(area.activeSubWindow(), front);
        } else if (way == u"dialog"_s) {
            f.action("New Order")->trigger();
            QTRY_VERIFY(QApplication::activeWindow() != f.window.get());
            hands::press(Qt::Key_Escape);
            f.window->activateWindow(); // as a desktop does
        } else if (way == u"window"_s) {
            QWidget other;
            other.show();
            other.activateWindow();
            QVERIFY(QTest::qWaitForWindowActive(&other));
            other.hide();
            f.window->activateWindow();
        } else {
            QMenu menu(f.window.get());
            menu.popup(f.window->mapToGlobal(QPoint(200, 200)));
            QTRY_VERIFY(QApplication::activePopupWidget());
            QTest::keyClick(&menu, Qt::Key_Escape);
        }
        QTRY_COMPARE(QApplication::activeWindow(), f.window.get());
        QTRY_VERIFY(qobject_cast<ChartWidget*>(QApplication::focusWidget()));
        QVERIFY(front->isAncestorOf(QApplication::focusWidget()));
        f.server.clearRequests();
        hands::press(Qt::Key_Space);
        hands::press(Qt::Key_Return);
        f.settle();
        QCOMPARE(f.server.count("POST", "/api/trades/place"), 0);
    }

    void answersAfterTheWindowIsGoneDoNoHarm()
    {
        MainWindowFixture f;
        f.signInAndSettle();
        f.server.on("POST", "/api/trades/place", StubAnswer::held());
        f.server.on("POST", "/api/trades/close/t1", StubAnswer::held());
        f.server.on("PUT", "/api/trades/modify/t1", StubAnswer::held());
        f.window->onQuickTrade(u"EURUSD"_s, u"BUY"_s, 1.0);
        f.window->onChartModifyLevel(u"t1"_s, u"SL"_s, 1.0);
        f.action("Algo Trading")->trigger();
        f.window->onExpertCloseAll(u"EURUSD"_s);
        QTRY_COMPARE(f.server.heldCount(), 3);
        f.window.reset();
        f.server.release(StubAnswer::json("{}"));
        QTRY_COMPARE(f.server.heldCount(), 0);
        f.settle();
        QCOMPARE(f.server.count("POST", "/api/trades/place"), 1);
        QCOMPARE(f.server.count("POST", "/api/trades/close/t1"), 1);
        QCOMPARE(f.server.count("PUT", "/api/trades/modify/t1"), 1);
    }

    void each_chart_hands_on_what_is_wanted_of_it_and_what_it_says_data()
    {
        QTest::addColumn<bool>("restored");
        QTest::newRow("opened by the trader") << false;
        QTest::newRow("restored with the layout") << true;
    }
    void each_chart_hands_on_what_is_wanted_of_it_and_what_it_says()
    {
        QFETCH(const bool, restored);
        MainWindowFixture f;
        if (restored)
            TerminalSettings::instance().setChartsLayout(uR"([{"symbol":"EURUSD","tf":"15m"}])"_s);
        f.signInAndSettle();
        if (!restored)
            f.window->openChart(u"EURUSD"_s);
        f.action("Algo Trading")->setChecked(true);
        f.server.on("POST", "/api/trades/place", StubAnswer::json("{}"));
        f.server.on("PUT", "/api/trades/modify/t1", StubAnswer::json("{}"));
        f.server.on("POST", "/api/trades/close/t1", StubAnswer::json("{}"));
        QCOMPARE(f.charts().size(), 1);
        ChartWindow* chart = f.charts().constFirst();

        Q_EMIT chart->modifyLevelRequested(u"t1"_s, u"SL"_s, 1.05);
        QTRY_COMPARE(f.server.count("PUT", "/api/trades/modify/t1"), 1);
        Q_EMIT chart->quickTradeRequested(u"EURUSD"_s, u"SELL"_s, 0.25);
        QTRY_COMPARE(f.server.count("POST", "/api/trades/place"), 1);
        QCOMPARE(f.server.last("POST", "/api/trades/place").json()["type"_L1].toString(), u"SELL"_s);
        Q_EMIT chart->expertOrderRequested({{u"symbol"_s, u"EURUSD"_s}, {u"type"_s, u"BUY"_s},
            {u"orderKind"_s, u"MARKET"_s}, {u"lotSize"_s, 0.5}});
        QTRY_COMPARE(f.server.count("POST", "/api/trades/place"), 2);
        QCOMPARE(f.server.last("POST", "/api/trades/place").json()["type"_L1].toString(), u"BUY"_s);
        Q_EMIT chart->expertCloseAllRequested(u"EURUSD"_s);
        QTRY_COMPARE(f.server.count("POST", "/api/trades/close/t1"), 1);
        Q_EMIT chart->logMessage(u"Chart"_s, u"says"_s);
        QCOMPARE(f.journalCount(u"Chart: says"_s), 1);
        Q_EMIT chart->expertLog(u"Robot"_s, u"beeps"_s, LineKind::Ordinary);
        QCOMPARE(f.log("expertsList").count(u"Robot: beeps"_s), 1);
        Q_EMIT chart->specificationRequested(u"USDJPY"_s);
        QCOMPARE(f.window->findChildren<SymbolSpecification*>().size(), 1);
    }

    void alertsKnowTheSymbolsInAlphabeticalOrder()
    {
        MainWindowFixture f;
        f.feed.setGreeting(
            records::hello({records::symbol("b"), records::symbol("C"), records::symbol("A")}));
        f.signIn();
        const auto* alerts = f.window->findChild<AlertsPane*>();
        QTRY_COMPARE(alerts->symbols(), QStringList({u"A"_s, u"C"_s, u"b"_s}));
    }

    void theCalendarIsReadAfterEachHello()
    {
        MainWindowFixture f;
        f.server.on("GET", "/api/news/upcoming",
            StubAnswer::json(records::news({records::newsEvent("e").impact("LOW").in(75)})));
        f.signInAndSettle();
        QTRY_COMPARE(f.list("newsList").topLevelItemCount(), 1);
        QCOMPARE(f.list("newsList").topLevelItem(0)->text(4), u"1h 15m"_s);
        QCOMPARE(f.server.count("GET", "/api/news/upcoming"), 1); // none before the hello
        f.feed.send(records::hello({records::symbol("EURUSD")}));
        QTRY_COMPARE(f.server.count("GET", "/api/news/upcoming"), 2);
    }
};

TAVORAN_TEST(tst_MainWindowTrades)
#include "tst_MainWindowTrades.moc"
