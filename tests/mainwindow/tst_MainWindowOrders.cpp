#include "MainWindowFixture.h"
#include "mainwindow/OrderEvents.h"
#include "orders/OrderDialog.h"
#include "support/TestMain.h"

#include <QPushButton>
#include <QSystemTrayIcon>

using namespace Qt::StringLiterals;

class tst_MainWindowOrders final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void orderDialogTakesTheActiveChartsSymbol();
    void placedOrderIsWrittenDownAndListsAreRead();
    void aDialogClosedWhileItsOrderIsOnItsWayComesBackOnRequest();
    void unknownOutcomeReadsTheLists();
    void orderEventIsWrittenDown();
    void orderEventsAreHeardAndShown();
};

void tst_MainWindowOrders::orderDialogTakesTheActiveChartsSymbol()
{
    MainWindowFixture f;
    f.signInAndSettle();
    f.window->openChart(u"USDJPY"_s);
    f.window->openOrderDialog();
    f.window->openOrderDialog();
    const auto dialogs = f.window->findChildren<OrderDialog*>();
    QCOMPARE(dialogs.size(), 1);
    QVERIFY(dialogs.constFirst()->isVisible());
    QVERIFY(dialogs.constFirst()->windowTitle().contains(u"USDJPY"_s));
    dialogs.constFirst()->reject();
    QTRY_COMPARE(f.window->findChildren<OrderDialog*>().size(), 0);
}

void tst_MainWindowOrders::placedOrderIsWrittenDownAndListsAreRead()
{
    MainWindowFixture f;
    f.signInAndSettle();
    f.http.on("POST", "/api/trades/place", StubAnswer::json("{}"));
    f.action("New Order")->trigger();
    auto* dialog = f.window->findChild<OrderDialog*>();
    QVERIFY(dialog);
    f.http.clearRequests();
    for (QPushButton* button : dialog->findChildren<QPushButton*>()) {
        if (button->text() == "Buy by Market"_L1)
            button->click();
    }
    QTRY_COMPARE(f.journalCount(u"Trade: Order placed"_s), 1);
    QCOMPARE(f.log("expertsList").count(u"Execution: Order placed"_s), 1);
    QCOMPARE(f.http.last("POST", "/api/trades/place").json()["accountId"_L1].toString(), u"a1"_s);
    QTRY_VERIFY(f.http.count("GET", "/api/accounts") >= 1);
    QTRY_VERIFY(f.http.count("GET", "/api/trades/open?accountId=a1") >= 1);
    QTRY_COMPARE(f.window->findChildren<OrderDialog*>().size(), 0);
}

void tst_MainWindowOrders::aDialogClosedWhileItsOrderIsOnItsWayComesBackOnRequest()
{
    MainWindowFixture f;
    f.signInAndSettle();
    f.http.on("POST", "/api/trades/place", StubAnswer::held());
    f.window->openOrderDialog();
    auto* dialog = f.window->findChild<OrderDialog*>();
    auto* buy = dialog->findChild<QPushButton*>(u"orderBuy"_s);
    QVERIFY(buy);
    buy->click();
    QTRY_COMPARE(f.http.heldCount(), 1);
    dialog->close();
    QVERIFY(!dialog->isVisible());
    f.window->openOrderDialog();
    QCOMPARE(f.window->findChildren<OrderDialog*>().size(), 1);
    QVERIFY(dialog->isVisible());
    QVERIFY(!buy->isEnabled());
    QVERIFY(f.http.release(StubAnswer::json("{}")));
    QTRY_COMPARE(f.journalCount(u"Trade: Order placed"_s), 1);
    QTRY_COMPARE(f.window->findChildren<OrderDialog*>().size(), 0);
}

void tst_MainWindowOrders::unknownOutcomeReadsTheLists()
{
    MainWindowFixture f;
    f.signInAndSettle();
    f.window->openOrderDialog();
    auto* dialog = f.window->findChild<OrderDialog*>();
    f.http.clearRequests();
    QVERIFY(QMetaObject::invokeMethod(dialog, "outcomeUnknown"));
    QTRY_VERIFY(f.http.count("GET", "/api/accounts") >= 1);
    QTRY_VERIFY(f.http.count("GET", "/api/trades/open?accountId=a1") >= 1);
    QTRY_VERIFY(f.http.count("GET", "/api/trades/history?accountId=a1") >= 1);
    QCOMPARE(f.journalCount(u"Trade: Order placed"_s), 0);
}

void tst_MainWindowOrders::orderEventIsWrittenDown()
{
    MainWindowFixture f;
    f.signInAndSettle();
    f.http.clearRequests();
    f.feed.send(R"({"type":"orders_changed","closeReason":"TP"})");
    QTRY_COMPARE(f.journalCount(u"Trade: Orders changed (TP) — refreshing"_s), 1);
    QCOMPARE(f.log("expertsList").count(u"Execution: Position closed (TP)"_s), 1);
    QTRY_VERIFY(f.http.count("GET", "/api/accounts") >= 1);
    QTRY_VERIFY(f.http.count("GET", "/api/trades/open?accountId=a1") >= 1);
    QTRY_VERIFY(f.http.count("GET", "/api/trades/history?accountId=a1") >= 1);
}

void tst_MainWindowOrders::orderEventsAreHeardAndShown()
{
    struct Connected final : QObject {
        using QObject::isSignalConnected;
    };
    MainWindowFixture f;
    f.open();
    const auto* events = f.window->findChild<OrderEvents*>();
    QVERIFY(events);
    const auto isConnected
        = [events](const QMetaMethod& signal) { return (events->*(&Connected::isSignalConnected))(signal); };
    QVERIFY(isConnected(QMetaMethod::fromSignal(&OrderEvents::soundWanted)));
    QCOMPARE(isConnected(QMetaMethod::fromSignal(&OrderEvents::balloonWanted)),
        QSystemTrayIcon::isSystemTrayAvailable());
}

TAVORAN_TEST_MAIN(tst_MainWindowOrders)
#include "tst_MainWindowOrders.moc"
