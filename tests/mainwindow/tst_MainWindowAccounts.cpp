#include "MainWindowFixture.h"
#include "support/Hands.h"
#include "support/TestMain.h"

#include <QAbstractItemView>
#include <QDockWidget>

using namespace Qt::StringLiterals;

/// The road from the server's accounts and trades to what a trader sees, through a whole window.
class tst_MainWindowAccounts final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void signInLoadsAccountsTradesAndSummary()
    {
        MainWindowFixture f;
        f.signInAndSettle();
        QCOMPARE(f.selector().count(), 3);
        QCOMPARE(f.selector().itemText(0), u"Real  [ACTIVE]  5.00"_s);
        QCOMPARE(f.selector().itemText(2), u"Pro — Challenge 2/2  [ACTIVE]  2,000.00"_s);
        QCOMPARE(f.selector().currentData().toString(), u"a1"_s);
        QTRY_VERIFY(f.summary().contains(u"Equity: 1,012.50"_s));
        QVERIFY(f.summary().contains(u"Margin: 100.00"_s));
        QVERIFY(f.summary().contains(u"Free Margin: 912.50"_s));
        QCOMPARE(f.list("tradeList").topLevelItem(0)->text(1), u"t1"_s);
        QVERIFY(f.server.count("GET", "/api/trades/history?accountId=a1") >= 1);
    }

    void helloReadsTheAccountsAgain()
    {
        MainWindowFixture f;
        f.signInAndSettle();
        f.feed.send(records::hello({records::symbol("EURUSD")}));
        QTRY_COMPARE(f.server.count("GET", "/api/accounts"), 3);
        QCOMPARE(f.selector().currentData().toString(), u"a1"_s);
    }

    void switchingLoadsTheOtherAccountsLists()
    {
        MainWindowFixture f;
        f.signInAndSettle();
        f.selector().setCurrentIndex(2);
        QTRY_COMPARE(f.server.count("GET", "/api/trades/pending?accountId=a2"), 1);
        QCOMPARE(f.server.count("GET", "/api/trades/open?accountId=a2"), 1);
        QCOMPARE(f.server.count("GET", "/api/trades/history?accountId=a2"), 1);
        QTRY_COMPARE(f.list("tradeList").topLevelItemCount(), 0);
        QVERIFY(f.summary().contains(u"Balance: 2,000.00"_s));
        QVERIFY(f.summary().contains(u"Margin: 0.00"_s));
        f.window->onAccountSelected(1);
        QVERIFY(f.summary().contains(u"Balance: 1,000.00"_s));
        QTRY_COMPARE(f.list("tradeList").topLevelItemCount(), 1);
    }

    void a_letter_and_enter_switch_the_account()
    {
        MainWindowFixture f;
        f.signInAndSettle();
        f.window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(f.window.get()));
        f.selector().setFocus(Qt::TabFocusReason);
        hands::type(u"p"_s);
        QVERIFY(f.selector().view()->isVisible());
        QCOMPARE(f.selector().currentData().toString(), u"a1"_s);
        QCOMPARE(f.server.count("GET", "/api/trades/open?accountId=a2"), 0);
        hands::press(Qt::Key_Return);
        QCOMPARE(f.selector().currentData().toString(), u"a2"_s);
        QTRY_COMPARE(f.server.count("GET", "/api/trades/open?accountId=a2"), 1);
    }

    void selectedAccountStaysSelectedWhenTheListChanges()
    {
        MainWindowFixture f;
        f.signInAndSettle();
        f.server.on("GET", "/api/accounts",
            StubAnswer::list({records::account("a2"), records::account("n"),
                records::account("a1").status("FAILED").balance(7)}));
        f.feed.send(records::accountUpdate("a1", "FAILED"));
        QTRY_COMPARE(f.selector().itemText(2), u"Demo  [FAILED]  7.00"_s);
        QCOMPARE(f.selector().currentData().toString(), u"a1"_s);
    }

    void vanishedAccountGivesWayToTheFirstActiveOne()
    {
        MainWindowFixture f;
        f.signInAndSettle();
        f.server.on("GET", "/api/accounts",
            StubAnswer::list({records::account("w").wallet(), records::account("f").status("FAILED"),
                records::account("a2").balance(3)}));
        f.feed.send(records::accountUpdate("a1", "GONE"));
        QTRY_COMPARE(f.selector().currentData().toString(), u"a2"_s);
        QTRY_COMPARE(f.list("tradeList").topLevelItemCount(), 0);
        QVERIFY(f.summary().contains(u"Balance: 3.00"_s));
    }

    void failedAccountsKeepEverythingAndAreReported()
    {
        MainWindowFixture f;
        f.signInAndSettle();
        const QString summary = f.summary();
        f.server.on("GET", "/api/accounts", StubAnswer::message(u"Out of order %1"_s, 500));
        f.feed.send(records::accountUpdate("a1", "ACTIVE"));
        QTRY_COMPARE(f.journalCount(u"Network: Failed to load accounts: Out of order %1"_s), 1);
        QCOMPARE(f.selector().count(), 3);
        QCOMPARE(f.summary(), summary);
        QCOMPARE(f.list("tradeList").topLevelItemCount(), 1);
    }

    void anAnswerThatIsNoListCountsAsAnEmptyOne_data()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::newRow("nothing") << ""_ba;
        QTest::newRow("a page") << "<html>"_ba;
        QTest::newRow("a cut list") << "[{\"id\":\"w\""_ba;
        QTest::newRow("a word") << "null"_ba;
        QTest::newRow("an object") << R"({"rows":[]})"_ba;
    }
    void anAnswerThatIsNoListCountsAsAnEmptyOne()
    {
        QFETCH(QByteArray, body);
        MainWindowFixture f;
        f.server.on("GET", "/api/trades/history?accountId=a1",
            StubAnswer::list({records::closedTrade("h").profit(1)}));
        f.server.on(
            "GET", "/api/trades/pending?accountId=a1", StubAnswer::list({records::pendingOrder("p1")}));
        f.signIn();
        QTRY_COMPARE(f.list("tradeList").topLevelItemCount(), 2);
        QTRY_COMPARE(f.list("historyList").topLevelItemCount(), 1);
        f.settle();
        const qsizetype lines = f.journal().size();

        f.server.on("GET", "/api/trades/history?accountId=a1", StubAnswer::json(body));
        f.server.on("GET", "/api/trades/pending?accountId=a1", StubAnswer::json(body));
        f.feed.send(records::ordersChanged());
        QTRY_COMPARE(f.list("tradeList").topLevelItemCount(), 1);
        QCOMPARE(f.list("tradeList").topLevelItem(0)->text(1), u"t1"_s);
        QTRY_COMPARE(f.list("historyList").topLevelItemCount(), 0);
        f.settle();

        f.server.on("GET", "/api/trades/open?accountId=a1", StubAnswer::json(body));
        f.feed.send(records::ordersChanged());
        QTRY_COMPARE(f.list("tradeList").topLevelItemCount(), 0);
        QVERIFY2(f.summary().contains(u"Equity: 1,000.00"_s), qPrintable(f.summary()));
        QVERIFY(f.summary().contains(u"Margin: 0.00"_s));
        QCOMPARE(f.selector().count(), 3);
        f.settle();

        f.server.on("GET", "/api/accounts", StubAnswer::json(body));
        f.feed.send(records::ordersChanged());
        QTRY_COMPARE(f.selector().count(), 0);
        QCOMPARE(f.summary(), u"Balance: —"_s);
        QCOMPARE(f.list("navigatorTree").topLevelItem(0)->child(0)->childCount(), 0);
        f.settle();
        // There is no account now, so nothing more is asked for it.
        f.server.clearRequests();
        f.feed.send(records::ordersChanged());
        QTRY_COMPARE(f.server.count("GET", "/api/accounts"), 1);
        f.settle();
        QCOMPARE(f.server.count("GET", "/api/trades/open"), 0);
        QCOMPARE(f.server.count("GET", "/api/trades/history"), 0);
        // And only the events themselves are in the Journal.
        QCOMPARE(f.journal().mid(lines), QStringList(4, u"Trade: Orders changed — refreshing"_s));
    }

    void aHistoryTooLargeToBeReadIsToldOnce()
    {
        const auto line = u"Network: Failed to load history: the reply is larger than 16 MiB"_s;
        const QByteArray tooLarge = '[' + QByteArray(qsizetype{17} * 1024 * 1024, ' ') + ']';
        const QByteArray path = "/api/trades/history?accountId=a1";
        MainWindowFixture f;
        f.server.on("GET", path, StubAnswer::list({records::closedTrade("h").profit(1)}));
        f.signInAndSettle();
        QTRY_COMPARE(f.list("historyList").topLevelItemCount(), 1);
        const auto readAgain = [&f, &path] {
            f.server.clearRequests();
            f.feed.send(records::ordersChanged());
            QTRY_VERIFY(f.server.count("GET", path) >= 1);
            f.settle();
        };

        f.server.on("GET", path, StubAnswer::json(tooLarge));
        readAgain();
        QTRY_COMPARE(f.journalCount(line), 1);
        QCOMPARE(f.list("historyList").topLevelItemCount(), 1);
        readAgain();
        f.server.on("GET", path, StubAnswer::message(u"No history"_s, 500));
        readAgain();
        f.server.on("GET", path, StubAnswer::json(tooLarge));
        readAgain();
        QCOMPARE(f.journalCount(line), 1);

        f.server.on("GET", path, StubAnswer::json("[]"));
        readAgain();
        QCOMPARE(f.list("historyList").topLevelItemCount(), 0);
        f.server.on("GET", path, StubAnswer::json(tooLarge));
        readAgain();
        QTRY_COMPARE(f.journalCount(line), 2);

        f.selector().setCurrentIndex(2);
        f.settle();
        f.selector().setCurrentIndex(1);
        QTRY_COMPARE(f.journalCount(line), 3);
    }

    void aHistoryTooLargeOfAnotherAccountIsNotTold()
    {
        const QByteArray tooLarge = '[' + QByteArray(qsizetype{17} * 1024 * 1024, ' ') + ']';
        MainWindowFixture f;
        f.signInAndSettle();
        const QByteArray path = "/api/trades/history?accountId=a2";
        f.server.once("GET", path, StubAnswer::held());
        f.selector().setCurrentIndex(2);
        QTRY_COMPARE(f.server.heldCount(), 1);
        // Asked for once more, it is read once more as soon as the first read has been given up.
        f.selector().setCurrentIndex(1);
        f.selector().setCurrentIndex(2);
        f.selector().setCurrentIndex(1);
        f.settle();
        const QStringList journal = f.journal();
        QVERIFY(f.server.release(StubAnswer::json(tooLarge)));
        QTRY_COMPARE(f.server.count("GET", path), 2);
        f.settle();
        QCOMPARE(f.journal(), journal);
    }

    void openDropDownStaysAsItIsDuringARefresh()
    {
        MainWindowFixture f;
        f.signInAndSettle();
        f.selector().showPopup();
        QAbstractItemView* lines = f.selector().view();
        QTRY_VERIFY(lines->isVisible());
        lines->setCurrentIndex(f.selector().model()->index(2, 0));
        QSignalSpy removed(f.selector().model(), &QAbstractItemModel::rowsRemoved);
        QSignalSpy reset(f.selector().model(), &QAbstractItemModel::modelReset);
        f.server.on("GET", "/api/accounts", StubAnswer::list(MainWindowFixture::accounts(3000)));
        f.feed.send(records::ordersChanged());
        QTRY_COMPARE(f.selector().itemText(2), u"Pro — Challenge 2/2  [ACTIVE]  3,000.00"_s);
        f.settle();
        QVERIFY(lines->isVisible());
        QCOMPARE(lines->currentIndex().row(), 2);
        QCOMPARE(removed.count() + reset.count(), 0);
        QCOMPARE(f.selector().currentData().toString(), u"a1"_s);
        f.selector().hidePopup();
    }

    void expiredSessionIsReportedEachTime()
    {
        const QString line = u"Auth: Session expired — please restart the terminal and log in again."_s;
        MainWindowFixture f;
        f.signInAndSettle();
        QCOMPARE(f.journalCount(line), 0);
        f.server.on("GET", "/api/accounts", StubAnswer::message(u"Token expired"_s, 401));
        f.feed.send(records::accountUpdate("a1", "ACTIVE"));
        QTRY_COMPARE(f.journalCount(line), 1);
        QTRY_COMPARE(f.journalCount(u"Network: Failed to load accounts: Token expired"_s), 1);
        f.feed.send(records::accountUpdate("a1", "ACTIVE"));
        QTRY_COMPARE(f.journalCount(line), 2);
        QCOMPARE(f.list("tradeList").topLevelItemCount(), 1);
    }

    void idsArePercentEncoded()
    {
        MainWindowFixture f;
        f.server.on("GET", "/api/accounts", StubAnswer::list({records::account("a&b=c+d/..#?").balance(1)}));
        f.signIn();
        QTRY_VERIFY(f.server.count("GET", "/api/trades/pending?accountId=a%26b%3Dc%2Bd%2F..%23%3F") >= 1);
        QTRY_VERIFY(f.server.count("GET", "/api/trades/open?accountId=a%26b%3Dc%2Bd%2F..%23%3F") >= 1);
        QTRY_VERIFY(f.server.count("GET", "/api/trades/history?accountId=a%26b%3Dc%2Bd%2F..%23%3F") >= 1);
    }

    void liveProfitsChangeRowAndSummary()
    {
        MainWindowFixture f;
        f.signInAndSettle();
        const QStringList journal = f.journal();
        f.server.clearRequests();
        f.feed.send(records::tradesUpdate({records::position("t1").profit("-20.25").margin("9999")}));
        QTRY_COMPARE(f.list("tradeList").topLevelItem(0)->text(11), u"-20.25"_s);
        QVERIFY(f.summary().contains(u"Equity: 979.75"_s));
        QVERIFY(f.summary().contains(u"Margin: 100.00"_s));
        // That is all: nothing is said, and nothing read again.
        f.settle();
        QCOMPARE(f.server.requests().size(), f.server.count("GET", "/marker"));
        QCOMPARE(f.journal(), journal);
        QCOMPARE(f.log("expertsList"), QStringList());
    }

    void liveProfitsOfAnotherAccountChangeNothing()
    {
        MainWindowFixture f;
        f.signInAndSettle();
        const QString summary = f.summary();
        f.feed.send(
            R"({"type":"trades_update","data":[{"accountId":"a2","id":"t1","pnl":77},{"id":"t1","pnl":1},5,null]})");
        f.feed.send(records::accountUpdate("mark", "X"));
        QTRY_COMPARE(f.journalCount(u"Account: Account mark status changed to X"_s), 1);
        QCOMPARE(f.list("tradeList").topLevelItem(0)->text(11), u"12.50"_s);
        f.settle();
        QCOMPARE(f.summary(), summary);
    }

    void profitNewerThanTheReplyIsKept()
    {
        MainWindowFixture f;
        f.signInAndSettle();
        f.server.on("GET", "/api/trades/pending?accountId=a1", StubAnswer::held());
        f.feed.send(records::ordersChanged());
        QTRY_COMPARE(f.server.heldCount(), 1);
        f.settle();
        f.feed.send(records::tradesUpdate({records::position("t1").profit(55)}));
        QTRY_COMPARE(f.list("tradeList").topLevelItem(0)->text(11), u"55.00"_s);
        f.server.on(
            "GET", "/api/trades/pending?accountId=a1", StubAnswer::list({records::pendingOrder("p1")}));
        QVERIFY(f.server.release(StubAnswer::list({records::pendingOrder("p1")})));
        QTRY_COMPARE(f.list("tradeList").topLevelItemCount(), 2);
        QCOMPARE(f.list("tradeList").topLevelItem(0)->text(11), u"55.00"_s);
    }

    void manyEventsDoNotPileUpReads()
    {
        MainWindowFixture f;
        f.signInAndSettle();
        f.server.on("GET", "/api/accounts", StubAnswer::held());
        f.server.clearRequests();
        for (int i = 0; i < 200; ++i)
            f.feed.send(records::accountUpdate("a1", "ACTIVE"));
        QTRY_COMPARE(f.journalCount(u"Account: Account a1 status changed to ACTIVE"_s), 200);
        QTRY_COMPARE(f.server.heldCount(), 1);
        f.settle();
        QCOMPARE(f.server.count("GET", "/api/accounts"), 1);
        f.server.on(
            "GET", "/api/accounts", StubAnswer::list({records::account("a1").status("NEW").balance(1)}));
        QVERIFY(f.server.release(StubAnswer::list(MainWindowFixture::accounts())));
        QTRY_COMPARE(f.selector().itemText(0), u"Demo  [NEW]  1.00"_s);
        f.settle();
        QCOMPARE(f.server.count("GET", "/api/accounts"), 2);
    }

    void navigatorListsTheAccountsAndSwitchesThem()
    {
        MainWindowFixture f;
        f.signInAndSettle();
        QTreeWidget& tree = f.list("navigatorTree");
        const QTreeWidgetItem* accounts = tree.topLevelItem(0)->child(0);
        const auto bold = [accounts] {
            QStringList texts;
            for (int i = 0; i < accounts->childCount(); ++i) {
                if (accounts->child(i)->font(0).weight() == QFont::Bold)
                    texts.append(accounts->child(i)->text(0));
            }
            return texts;
        };
        QCOMPARE(accounts->childCount(), 3);
        QCOMPARE(bold(), QStringList{u"Demo  (1000)"_s});

        const QPoint spot = tree.visualItemRect(accounts->child(2)).center();
        QTest::mouseClick(tree.viewport(), Qt::LeftButton, {}, spot);
        QTest::mouseDClick(tree.viewport(), Qt::LeftButton, {}, spot);
        QCOMPARE(f.selector().currentData().toString(), u"a2"_s);
        QCOMPARE(bold(), QStringList{u"Pro — Challenge 2/2  (2000)"_s});
        QTRY_COMPARE(f.server.count("GET", "/api/trades/open?accountId=a2"), 1);

        f.server.on("GET", "/api/accounts", StubAnswer::list(MainWindowFixture::accounts(3000)));
        f.feed.send(records::ordersChanged());
        QTRY_COMPARE(bold(), QStringList{u"Pro — Challenge 2/2  (3000)"_s});

        auto* navigator = f.window->findChild<QDockWidget*>(u"dockNavigator"_s)->widget();
        QVERIFY(QMetaObject::invokeMethod(navigator, "accountActivated", Q_ARG(QString, u"unknown"_s)));
        QCOMPARE(f.selector().currentData().toString(), u"a2"_s);
    }
};

TAVORAN_TEST(tst_MainWindowAccounts)
#include "tst_MainWindowAccounts.moc"
