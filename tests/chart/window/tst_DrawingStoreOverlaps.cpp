#include "chart/DrawingStoreFixture.h"
#include "support/TestMain.h"

using namespace Qt::StringLiterals;
using namespace fixtures;

/// Requests that overlap: several at once, replies in any order, a change of account in between.
class tst_DrawingStoreOverlaps final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aSecondObjectDuringTheReloadIsNeitherLostNorDoubled_data()
    {
        QTest::addColumn<bool>("listedAlready");
        QTest::newRow("the overtaken list lacks it") << false;
        QTest::newRow("the overtaken list has it") << true;
    }
    void aSecondObjectDuringTheReloadIsNeitherLostNorDoubled()
    {
        QFETCH(bool, listedAlready);
        StoredDrawings f;
        f.server.once("POST", drawingsPath, created);
        f.server.once("POST", drawingsPath, StubAnswer::held());
        f.server.once("GET", listOne, StubAnswer::held());
        f.open();
        f.draw(1);
        QTRY_COMPARE(f.server.heldCount(), 1); // the reload after the first object
        f.draw(2);
        QTRY_COMPARE(f.server.heldCount(), 2);
        const StubAnswer both = listOf({{u"a"_s, 1}, {u"b"_s, 2}});
        QVERIFY(f.server.release(listedAlready ? both : listOf({{u"a"_s, 1}}), listOne));
        f.exchange();
        QCOMPARE(f.shown(), QStringList({u"@1"_s, u"@2"_s}));
        f.server.on("GET", listOne, both);
        QVERIFY(f.server.release(created, drawingsPath));
        QTRY_COMPARE(f.shown(), QStringList({u"a@1"_s, u"b@2"_s}));
        f.exchange();
        QCOMPARE(f.server.count("GET", drawingsPath), 2);
    }

    void theListWaitsForEveryCreate()
    {
        StoredDrawings f;
        f.server.on("POST", drawingsPath, StubAnswer::held());
        f.server.on("GET", listOne, listOf({{u"a"_s, 1}, {u"b"_s, 2}}));
        f.open();
        f.draw(1);
        f.draw(2);
        f.store->load();
        QTRY_COMPARE(f.server.heldCount(), 2);
        QVERIFY(f.server.release(created));
        f.exchange();
        QCOMPARE(f.server.count("GET", drawingsPath), 0);
        QVERIFY(f.server.release(created));
        QTRY_COMPARE(f.shown(), QStringList({u"a@1"_s, u"b@2"_s}));
        QCOMPARE(f.server.count("GET", drawingsPath), 1);
    }

    void manyObjectsInARowCostFewReads()
    {
        StoredDrawings f;
        f.server.on("POST", drawingsPath, created);
        QList<QPair<QString, double>> lines;
        QStringList expected;
        for (int i = 0; i < 20; ++i) {
            lines.append({QString::number(i), i});
            expected << u"%1@%1"_s.arg(i);
        }
        f.server.on("GET", listOne, listOf(lines));
        f.open();
        for (int i = 0; i < 20; ++i)
            f.draw(i);
        QTRY_COMPARE(f.shown(), expected);
        QCOMPARE(f.server.count("POST", drawingsPath), 20);
        QVERIFY(f.server.count("GET", drawingsPath) <= 2);
    }

    void anObjectDeletedDuringAReloadDoesNotComeBack()
    {
        StoredDrawings f;
        f.server.once("GET", listOne, listOf({{u"a"_s, 1}, {u"b"_s, 2}}));
        f.server.once("GET", listOne, StubAnswer::held());
        f.server.on("DELETE", "/api/drawings/a", StubAnswer::json("{}"));
        f.open().load();
        QTRY_COMPARE(f.shown().size(), 2);
        f.store->load();
        QTRY_COMPARE(f.server.heldCount(), 1);
        f.deleteAt(0);
        QTRY_COMPARE(f.server.count("DELETE", "/api/drawings/a"), 1);
        f.exchange();
        f.server.on("GET", listOne, listOf({{u"b"_s, 2}, {u"c"_s, 3}}));
        QVERIFY(f.server.release(listOf({{u"a"_s, 1}, {u"b"_s, 2}})));
        QTRY_COMPARE(f.shown(), QStringList({u"b@2"_s, u"c@3"_s}));
    }

    void anotherAccountShowsItsOwnObjects()
    {
        StoredDrawings f;
        f.server.on("GET", listOne, listOf({{u"a"_s, 1}}));
        f.server.on("GET", listTwo, listOf({{u"b"_s, 2}}));
        f.open().load();
        QTRY_COMPARE(f.shown(), QStringList{u"a@1"_s});
        f.store->setAccountId(u"two"_s);
        QCOMPARE(f.shown(), QStringList());
        QTRY_COMPARE(f.shown(), QStringList{u"b@2"_s});
        QCOMPARE(f.store->accountId(), u"two"_s);
    }

    void theSameAccountAsksForNothing()
    {
        StoredDrawings f;
        f.open().setAccountId(u"one"_s);
        f.exchange();
        QCOMPARE(f.server.requests().size(), 1);
    }

    void aLateReplyOfAnotherAccountIsDropped()
    {
        StoredDrawings f;
        f.server.on("GET", listOne, StubAnswer::held());
        f.server.on("GET", listTwo, listOf({{u"b"_s, 2}}));
        f.open().load();
        QTRY_COMPARE(f.server.heldCount(), 1);
        f.store->setAccountId(u"two"_s);
        QTRY_COMPARE(f.shown(), QStringList{u"b@2"_s});
        QVERIFY(f.server.release(listOf({{u"a"_s, 1}})));
        f.exchange();
        QCOMPARE(f.shown(), QStringList{u"b@2"_s});
        QCOMPARE(f.failures, QStringList());
    }

    void anUnsavedObjectComesBackWithItsAccount()
    {
        StoredDrawings f;
        f.server.on("POST", drawingsPath, StubAnswer::message(u"No"_s, 500));
        f.server.on("GET", listOne, listOf({{u"a"_s, 1}}));
        f.server.on("GET", listTwo, listOf({{u"b"_s, 2}}));
        f.open();
        f.draw(7);
        QTRY_COMPARE(f.failures.size(), 1);
        f.store->setAccountId(u"two"_s);
        QTRY_COMPARE(f.shown(), QStringList{u"b@2"_s});
        f.store->setAccountId(u"one"_s);
        QCOMPARE(f.shown(), QStringList{u"@7"_s});
        QTRY_COMPARE(f.shown(), QStringList({u"a@1"_s, u"@7"_s}));
    }

    void anObjectSavedWhileAnotherAccountIsShownIsNotDoubled()
    {
        StoredDrawings f;
        f.server.on("POST", drawingsPath, StubAnswer::held());
        f.server.on("GET", listOne, listOf({{u"a"_s, 7.5}}));
        f.server.on("GET", listTwo, listOf({}));
        f.open();
        f.draw(7.5000000321); // the server keeps fewer decimals
        QTRY_COMPARE(f.server.heldCount(), 1);
        f.store->setAccountId(u"two"_s);
        QTRY_COMPARE(f.server.count("GET", listTwo), 1);
        QVERIFY(f.server.release(created));
        f.exchange();
        QCOMPARE(f.server.count("GET", listOne), 0);
        QCOMPARE(f.server.count("GET", listTwo), 1); // nothing of this account has changed
        QCOMPARE(f.shown(), QStringList());
        f.store->setAccountId(u"one"_s);
        QTRY_COMPARE(f.shown(), QStringList{u"a@7.5"_s});
    }

    void aSlowCreateOfOneAccountDoesNotHoldUpAnother()
    {
        StoredDrawings f;
        f.server.on("POST", drawingsPath, StubAnswer::held());
        f.server.on("GET", listTwo, listOf({{u"b"_s, 2}}));
        f.open();
        f.draw(1);
        QTRY_COMPARE(f.server.heldCount(), 1);
        f.store->setAccountId(u"two"_s);
        QTRY_COMPARE(f.shown(), QStringList{u"b@2"_s});
    }

    void theStoreMayGoWhileRequestsAreUnderWay()
    {
        StoredDrawings f;
        f.server.on("POST", drawingsPath, StubAnswer::held());
        f.server.on("GET", listTwo, StubAnswer::held());
        f.open();
        f.draw(1);
        f.store->setAccountId(u"two"_s);
        QTRY_COMPARE(f.server.heldCount(), 2);
        f.store.reset();
        f.chart.reset();
        QVERIFY(f.server.release(created));
        QVERIFY(f.server.release(listOf({})));
        f.exchange();
        QCOMPARE(f.server.requests().size(), 3); // the two, and the further exchange
    }
};

TAVORAN_TEST(tst_DrawingStoreOverlaps)
#include "tst_DrawingStoreOverlaps.moc"
