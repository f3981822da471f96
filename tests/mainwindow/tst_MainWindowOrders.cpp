#include "MainWindowFixture.h"
#include "mainwindow/account/OrderEvents.h"
#include "orders/OrderDialog.h"
#include "support/TestMain.h"

#include <QPushButton>
#include <QSystemTrayIcon>

using namespace Qt::StringLiterals;

namespace {

/// The order windows that exist, seen or not.
QList<OrderDialog*> dialogs(const MainWindowFixture& f)
{
    return f.window->findChildren<OrderDialog*>();
}

/// The one on the screen.
OrderDialog* shownDialog(const MainWindowFixture& f)
{
    for (OrderDialog* dialog : dialogs(f)) {
        if (dialog->isVisible())
            return dialog;
    }
    return nullptr;
}

/// Opens an order window, or brings back the one that is there.
OrderDialog* openDialog(const MainWindowFixture& f)
{
    f.window->openOrderDialog();
    return shownDialog(f);
}

QPushButton* buyButton(const OrderDialog* dialog)
{
    return dialog->findChild<QPushButton*>(u"orderBuy"_s);
}

/// Sends an order that the server keeps waiting, and closes its window.
QPointer<OrderDialog> leaveWhileSending(MainWindowFixture& f)
{
    f.server.once("POST", "/api/trades/place", StubAnswer::held());
    const QPointer<OrderDialog> dialog = openDialog(f);
    const int before = f.server.heldCount();
    buyButton(dialog)->click();
    if (!QTest::qWaitFor([&] { return f.server.heldCount() == before + 1; }))
        return nullptr;
    dialog->close();
    return dialog;
}

void chooseAccount(const MainWindowFixture& f, const QString& id)
{
    f.selector().setCurrentIndex(f.selector().findData(id));
}

QString sentFor(const MainWindowFixture& f)
{
    return f.server.last("POST", "/api/trades/place").json()["accountId"_L1].toString();
}

} // namespace

Q_DECLARE_METATYPE(StubAnswer)

class tst_MainWindowOrders final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void orderDialogTakesTheActiveChartsSymbol()
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

    void placedOrderIsWrittenDownAndListsAreRead()
    {
        MainWindowFixture f;
        f.signInAndSettle();
        f.server.on("POST", "/api/trades/place", StubAnswer::json("{}"));
        f.action("New Order")->trigger();
        auto* dialog = f.window->findChild<OrderDialog*>();
        QVERIFY(dialog);
        f.server.clearRequests();
        for (QPushButton* button : dialog->findChildren<QPushButton*>()) {
            if (button->text() == "Buy by Market"_L1)
                button->click();
        }
        QTRY_COMPARE(f.journalCount(u"Trade: Order placed"_s), 1);
        QCOMPARE(f.log("expertsList").count(u"Execution: Order placed"_s), 1);
        QCOMPARE(f.server.last("POST", "/api/trades/place").json()["accountId"_L1].toString(), u"a1"_s);
        QTRY_VERIFY(f.server.count("GET", "/api/accounts") >= 1);
        QTRY_VERIFY(f.server.count("GET", "/api/trades/open?accountId=a1") >= 1);
        QTRY_COMPARE(f.window->findChildren<OrderDialog*>().size(), 0);
    }

    void aDialogClosedWhileItsOrderIsOnItsWayComesBackOnRequest()
    {
        MainWindowFixture f;
        f.signInAndSettle();
        f.server.on("POST", "/api/trades/place", StubAnswer::held());
        f.window->openOrderDialog();
        auto* dialog = f.window->findChild<OrderDialog*>();
        auto* buy = dialog->findChild<QPushButton*>(u"orderBuy"_s);
        QVERIFY(buy);
        buy->click();
        QTRY_COMPARE(f.server.heldCount(), 1);
        dialog->close();
        QVERIFY(!dialog->isVisible());
        f.window->openOrderDialog();
        QCOMPARE(f.window->findChildren<OrderDialog*>().size(), 1);
        QVERIFY(dialog->isVisible());
        QVERIFY(!buy->isEnabled());
        QVERIFY(f.server.release(StubAnswer::json("{}")));
        QTRY_COMPARE(f.journalCount(u"Trade: Order placed"_s), 1);
        QTRY_COMPARE(f.window->findChildren<OrderDialog*>().size(), 0);
    }

    void aWindowOfAFormerAccountNeverComesBack_data()
    {
        QTest::addColumn<StubAnswer>("answer");
        QTest::addColumn<QString>("line");
        QTest::newRow("refused") << StubAnswer::message(u"Not enough money %1"_s, 400)
                                 << u"Trade: Order failed: Not enough money %1"_s;
        QTest::newRow("nobody knows")
            << StubAnswer::message(u"Gateway"_s, 504) << u"Trade: Order failed: Gateway"_s;
    }
    void aWindowOfAFormerAccountNeverComesBack()
    {
        QFETCH(StubAnswer, answer);
        QFETCH(QString, line);
        MainWindowFixture f;
        f.signInAndSettle();
        const QPointer<OrderDialog> former = leaveWhileSending(f);
        QVERIFY(former && !former->isVisible());
        chooseAccount(f, u"a2"_s);
        QSignalSpy sounds(former, &OrderDialog::soundDue);
        bool wasSeen = false;
        connect(qApp, &QGuiApplication::focusWindowChanged, former, [&] { wasSeen |= former->isVisible(); });
        QVERIFY(f.server.release(answer));
        QTRY_COMPARE(f.journalCount(line), 1);
        QCOMPARE(sounds.size(), 1);
        QCOMPARE(sounds.at(0).at(0).value<SoundKind>(), SoundKind::Error);
        QTRY_VERIFY(!former);
        QVERIFY(!wasSeen);
        QCOMPARE(f.server.count("POST", "/api/trades/place"), 1);

        f.server.once("POST", "/api/trades/place", StubAnswer::json("{}"));
        const OrderDialog* dialog = openDialog(f);
        QVERIFY(dialog);
        buyButton(dialog)->click();
        QTRY_COMPARE(f.journalCount(u"Trade: Order placed"_s), 1);
        QCOMPARE(sentFor(f), u"a2"_s);
    }

    void aWindowOfAFormerAccountTellsItsSuccess()
    {
        MainWindowFixture f;
        f.signInAndSettle();
        const QPointer<OrderDialog> former = leaveWhileSending(f);
        QVERIFY(former);
        chooseAccount(f, u"a2"_s);
        QSignalSpy sounds(former, &OrderDialog::soundDue);
        QVERIFY(f.server.release(StubAnswer::json("{}")));
        QTRY_COMPARE(f.journalCount(u"Trade: Order placed"_s), 1);
        QCOMPARE(f.log("expertsList").count(u"Execution: Order placed"_s), 1);
        QCOMPARE(sounds.size(), 1);
        QCOMPARE(sounds.at(0).at(0).value<SoundKind>(), SoundKind::Open);
        QTRY_VERIFY(!former);
    }

    void theKeyOpensAWindowForTheCurrentAccount()
    {
        MainWindowFixture f;
        f.signInAndSettle();
        const QPointer<OrderDialog> former = leaveWhileSending(f);
        QVERIFY(former);
        chooseAccount(f, u"a2"_s);
        f.action("New Order")->trigger();
        QVERIFY(!former->isVisible());
        const QPointer<OrderDialog> dialog = shownDialog(f);
        QVERIFY(dialog && dialog != former);
        QCOMPARE(dialogs(f).size(), 2);
        QVERIFY(buyButton(dialog)->isEnabled());
        f.server.once("POST", "/api/trades/place", StubAnswer::json("{}"));
        buyButton(dialog)->click();
        QTRY_COMPARE(f.journalCount(u"Trade: Order placed"_s), 1);
        QCOMPARE(sentFor(f), u"a2"_s);
        QTRY_VERIFY(!dialog);

        // Back on its account, the former window has still left: the key has opened another in the meantime.
        chooseAccount(f, u"a1"_s);
        QVERIFY(f.server.release(StubAnswer::message(u"No"_s, 400)));
        QTRY_COMPARE(f.journalCount(u"Trade: Order failed: No"_s), 1);
        QTRY_VERIFY(!former);
        QCOMPARE(f.server.count("POST", "/api/trades/place"), 2);
    }

    void anIdleWindowOfAFormerAccountMakesRoom()
    {
        MainWindowFixture f;
        f.signInAndSettle();
        const QPointer<OrderDialog> former = openDialog(f);
        chooseAccount(f, u"a2"_s);
        f.window->openOrderDialog();
        QTRY_VERIFY(!former);
        QCOMPARE(dialogs(f).size(), 1);
        f.server.once("POST", "/api/trades/place", StubAnswer::json("{}"));
        buyButton(dialogs(f).constFirst())->click();
        QTRY_COMPARE(f.journalCount(u"Trade: Order placed"_s), 1);
        QCOMPARE(sentFor(f), u"a2"_s);
    }

    void aWindowComesBackForTheAccountThatIsCurrentAgain()
    {
        MainWindowFixture f;
        f.signInAndSettle();
        const QPointer<OrderDialog> dialog = leaveWhileSending(f);
        QVERIFY(dialog);
        chooseAccount(f, u"a2"_s);
        chooseAccount(f, u"a1"_s);
        QVERIFY(f.server.release(StubAnswer::message(u"No"_s, 400)));
        QTRY_VERIFY(dialog->isVisible());
        QCOMPARE(f.journalCount(u"Trade: Order failed: No"_s), 0);
    }

    void aWindowOfAnAccountThatIsNoLongerListedNeverComesBack_data()
    {
        QTest::addColumn<QByteArray>("accounts");
        QTest::newRow("another is left") << R"([{"id":"a2","status":"ACTIVE","balance":2000}])"_ba;
        QTest::newRow("none is left") << "[]"_ba;
        QTest::newRow("the list is no list") << "{}"_ba;
    }
    void aWindowOfAnAccountThatIsNoLongerListedNeverComesBack()
    {
        QFETCH(QByteArray, accounts);
        MainWindowFixture f;
        f.signInAndSettle();
        const QPointer<OrderDialog> former = leaveWhileSending(f);
        QVERIFY(former);
        f.server.on("GET", "/api/accounts", StubAnswer::json(accounts));
        f.feed.send(records::hello({records::symbol("EURUSD")}));
        QTRY_VERIFY(f.selector().findData(u"a1"_s) < 0);
        QVERIFY(f.server.release(StubAnswer::message(u"No such account"_s, 404)));
        QTRY_COMPARE(f.journalCount(u"Trade: Order failed: No such account"_s), 1);
        QTRY_VERIFY(!former);
        QVERIFY(!shownDialog(f));
        QCOMPARE(f.server.count("POST", "/api/trades/place"), 1);
    }

    void aWindowClosedTwiceTellsItsOutcomeInTheJournal_data()
    {
        QTest::addColumn<StubAnswer>("answer");
        QTest::addColumn<QString>("line");
        QTest::newRow("placed") << StubAnswer::json("{}") << u"Trade: Order placed"_s;
        QTest::newRow("refused") << StubAnswer::message(u"Too big"_s, 400)
                                 << u"Trade: Order failed: Too big"_s;
        QTest::newRow("nobody knows")
            << StubAnswer::message(u"Gateway"_s, 504) << u"Trade: Order failed: Gateway"_s;
    }
    void aWindowClosedTwiceTellsItsOutcomeInTheJournal()
    {
        QFETCH(StubAnswer, answer);
        QFETCH(QString, line);
        MainWindowFixture f;
        f.signInAndSettle();
        const QPointer<OrderDialog> waiting = leaveWhileSending(f);
        QVERIFY(waiting);
        QCOMPARE(openDialog(f), waiting);
        QTest::keyClick(waiting, Qt::Key_Escape);
        QVERIFY(!waiting->isVisible());
        const OrderDialog* next = openDialog(f);
        QVERIFY(next && next != waiting);
        QVERIFY(buyButton(next)->isEnabled());
        f.settle();
        f.server.clearRequests();
        QVERIFY(f.server.release(answer));
        QTRY_COMPARE(f.journalCount(line), 1);
        QTRY_VERIFY(!waiting);
        QVERIFY(next->isVisible());
        f.settle();
        const bool isRefusal = line.contains(u"Too big"_s);
        QTRY_COMPARE(f.server.count("GET", "/api/trades/open?accountId=a1") > 0, !isRefusal);
        QCOMPARE(f.server.count("POST", "/api/trades/place"), 0);
    }

    void theTerminalMayEndWhileOrdersAreOnTheirWay()
    {
        MainWindowFixture f;
        f.signInAndSettle();
        QVERIFY(leaveWhileSending(f));
        chooseAccount(f, u"a2"_s);
        QVERIFY(leaveWhileSending(f));
        QCOMPARE(dialogs(f).size(), 2);
        f.window.reset();
        QTRY_COMPARE(f.server.heldCount(), 0);
    }

    void unknownOutcomeReadsTheLists()
    {
        MainWindowFixture f;
        f.signInAndSettle();
        f.window->openOrderDialog();
        auto* dialog = f.window->findChild<OrderDialog*>();
        f.server.clearRequests();
        QVERIFY(QMetaObject::invokeMethod(dialog, "outcomeUnknown"));
        f.awaitAllLists();
        QCOMPARE(f.journalCount(u"Trade: Order placed"_s), 0);
    }

    void orderEventIsWrittenDown()
    {
        MainWindowFixture f;
        f.signInAndSettle();
        f.server.clearRequests();
        f.feed.send(records::ordersChanged().closed("TP"));
        QTRY_COMPARE(f.journalCount(u"Trade: Orders changed (TP) — refreshing"_s), 1);
        QCOMPARE(f.log("expertsList").count(u"Execution: Position closed (TP)"_s), 1);
        f.awaitAllLists();
    }

    void orderEventsAreHeardAndShown()
    {
        struct Connected final : QObject {
            using QObject::isSignalConnected;
        };
        MainWindowFixture f;
        f.open();
        const auto* events = f.window->findChild<OrderEvents*>();
        QVERIFY(events);
        const auto isConnected = [events](const QMetaMethod& signal) {
            return (events->*(&Connected::isSignalConnected))(signal);
        };
        QVERIFY(isConnected(QMetaMethod::fromSignal(&OrderEvents::soundWanted)));
        QCOMPARE(isConnected(QMetaMethod::fromSignal(&OrderEvents::balloonWanted)),
            QSystemTrayIcon::isSystemTrayAvailable());
    }
};

TAVORAN_TEST(tst_MainWindowOrders)
#include "tst_MainWindowOrders.moc"
