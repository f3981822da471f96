#include "chart/ChartFixtures.h"
#include "chart/DrawingStoreFixture.h"
#include "support/TestMain.h"

using namespace Qt::StringLiterals;
using namespace fixtures;

/// What is asked of the server and what becomes of its answers, one at a time.
class tst_DrawingStore final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void asksForTheObjectsOfSymbolAndAccount()
    {
        StoredDrawings f;
        f.open(u"a/1&b"_s, u"EUR+USD #1"_s).load();
        QTRY_COMPARE(f.server.requests().size(), 1);
        QCOMPARE(f.server.requests().first().target,
            "/api/drawings?symbol=EUR%2BUSD%20%231&accountId=a%2F1%26b"_ba);
    }

    void asksForTheSymbolAloneWithoutAnAccount()
    {
        StoredDrawings f;
        f.open({}).load();
        QTRY_COMPARE(f.server.requests().size(), 1);
        QCOMPARE(f.server.requests().first().target, "/api/drawings?symbol=EURUSD"_ba);
    }

    void showsWhatTheServerHas()
    {
        StoredDrawings f;
        f.server.on("GET", listOne, listOf({{u"a"_s, 1}, {u"b"_s, 2}}));
        f.open().load();
        QTRY_COMPARE(f.shown(), QStringList({u"a@1"_s, u"b@2"_s}));
        QCOMPARE(f.failures, QStringList());
    }

    void anEmptyListEmptiesTheChart()
    {
        StoredDrawings f;
        f.server.once("GET", listOne, listOf({{u"a"_s, 1}}));
        f.server.once("GET", listOne, listOf({}));
        f.open().load();
        QTRY_COMPARE(f.shown(), QStringList{u"a@1"_s});
        f.store->load();
        QTRY_COMPARE(f.shown(), QStringList());
    }

    void aFailedReadKeepsWhatIsShownAndIsReported_data()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("reason");
        QTest::newRow("refused") << QByteArray(R"({"message":"No %1\n<b>here</b>"})") << 403
                                 << u"No %1 <b>here</b>"_s;
    }
    void aFailedReadKeepsWhatIsShownAndIsReported()
    {
        QFETCH(QByteArray, body);
        QFETCH(int, status);
        QFETCH(QString, reason);
        StoredDrawings f;
        f.server.once("GET", listOne, listOf({{u"a"_s, 1}}));
        f.server.once("GET", listOne, StubAnswer::json(body, status));
        f.open().load();
        QTRY_COMPARE(f.shown(), QStringList{u"a@1"_s});
        f.store->load();
        QTRY_COMPARE(f.failures, QStringList(u"EURUSD: failed to load drawings: "_s + reason));
        QCOMPARE(f.shown(), QStringList{u"a@1"_s});
    }

    void anAnswerThatIsNoListCountsAsAnEmptyOne_data()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::newRow("object") << "{}"_ba;
        QTest::newRow("a page") << "<html>"_ba;
        QTest::newRow("nothing") << QByteArray();
        QTest::newRow("cut") << "[{\"id\":\"d1\""_ba;
    }
    void anAnswerThatIsNoListCountsAsAnEmptyOne()
    {
        QFETCH(QByteArray, body);
        StoredDrawings f;
        f.server.once("GET", listOne, listOf({{u"a"_s, 1}}));
        f.server.once("GET", listOne, StubAnswer::json(body));
        f.open().load();
        QTRY_COMPARE(f.shown(), QStringList{u"a@1"_s});
        f.store->load();
        QTRY_COMPARE(f.shown(), QStringList());
        QCOMPARE(f.failures, QStringList());
    }

    void aNewObjectIsSentAndComesBackWithItsId()
    {
        StoredDrawings f;
        f.server.on("POST", drawingsPath, created);
        f.server.on("GET", listOne, listOf({{u"a"_s, 1.5}}));
        f.open();
        f.draw(1.5);
        QCOMPARE(f.shown(), QStringList{u"@1.5"_s});
        QTRY_COMPARE(f.shown(), QStringList{u"a@1.5"_s});
        const QJsonObject expected{{u"symbol"_s, u"EURUSD"_s}, {u"toolType"_s, u"hline"_s},
            {u"accountId"_s, u"one"_s}, {u"style"_s, QJsonObject{{u"color"_s, u"#e0e0e0"_s}}},
            {u"points"_s, QJsonArray{QJsonObject{{u"time"_s, u"1000"_s}, {u"price"_s, 1.5}}}}};
        QCOMPARE(f.server.last("POST", drawingsPath).json(), expected);
        QCOMPARE(f.server.requests().size(), 2);
    }

    void aFailedCreateLeavesTheObjectAndIsReported()
    {
        StoredDrawings f;
        f.server.on("POST", drawingsPath, StubAnswer::message(u"The %1 chart\nis full"_s, 400));
        f.open(u"one"_s, u"A%3\nB"_s);
        f.draw(1.5);
        QTRY_COMPARE(f.failures, QStringList{u"A%3 B: failed to save the drawing: The %1 chart is full"_s});
        QCOMPARE(f.shown(), QStringList{u"@1.5"_s});
        f.exchange();
        QCOMPARE(f.server.count("GET", drawingsPath), 0);
    }

    void aFailedObjectSurvivesTheNextReload()
    {
        StoredDrawings f;
        f.server.once("POST", drawingsPath, StubAnswer::message(u"No"_s, 500));
        f.server.on("POST", drawingsPath, created);
        f.server.on("GET", listOne, listOf({{u"b"_s, 2}}));
        f.open();
        f.draw(1);
        QTRY_COMPARE(f.failures.size(), 1);
        f.draw(2);
        QTRY_COMPARE(f.shown(), QStringList({u"b@2"_s, u"@1"_s}));
        f.store->load();
        QTRY_COMPARE(f.server.count("GET", drawingsPath), 2);
        f.exchange();
        QCOMPARE(f.shown(), QStringList({u"b@2"_s, u"@1"_s}));
    }

    void aFailedObjectThatWasDeletedStaysDeleted()
    {
        StoredDrawings f;
        f.server.on("POST", drawingsPath, StubAnswer::message(u"No"_s, 500));
        f.server.on("GET", listOne, listOf({{u"b"_s, 2}}));
        f.open();
        f.draw(1);
        QTRY_COMPARE(f.failures.size(), 1);
        f.deleteAt(0);
        f.store->load();
        QTRY_COMPARE(f.shown(), QStringList{u"b@2"_s});
    }

    void anObjectLikeAnEarlierOneIsNotTakenForIt()
    {
        StoredDrawings f;
        f.server.once("POST", drawingsPath, created);
        f.server.on("POST", drawingsPath, StubAnswer::message(u"No"_s, 500));
        f.server.once("GET", listOne, listOf({{u"a"_s, 1}}));
        f.server.on("GET", listOne, listOf({}));
        f.server.on("DELETE", "/api/drawings/a", StubAnswer::json("{}"));
        f.open();
        f.draw(1);
        QTRY_COMPARE(f.shown(), QStringList{u"a@1"_s});
        f.deleteAt(0);
        f.draw(1);
        QTRY_COMPARE(f.failures.size(), 1);
        f.store->load();
        QTRY_COMPARE(f.server.count("GET", drawingsPath), 2);
        f.exchange();
        QCOMPARE(f.shown(), QStringList{u"@1"_s});
    }

    void aLostAnswerIsNoSecondObject()
    {
        StoredDrawings f;
        f.server.on("POST", drawingsPath, StubAnswer::closed()); // after the object was stored
        f.server.on("GET", listOne, listOf({{u"a"_s, 1.1}}));
        f.open();
        f.draw(1.1);
        QTRY_COMPARE(f.failures, QStringList{u"EURUSD: failed to save the drawing: Connection closed"_s});
        f.store->load();
        QTRY_COMPARE(f.shown(), QStringList{u"a@1.1"_s});
    }

    void deletingSendsTheEncodedId()
    {
        StoredDrawings f;
        f.server.once("GET", listOne, listOf({{u"a/../b c"_s, 1}}));
        f.server.on("DELETE", "/api/drawings/a%2F..%2Fb%20c", StubAnswer::json("{}"));
        f.open().load();
        QTRY_COMPARE(f.shown().size(), 1);
        f.deleteAt(0);
        QTRY_COMPARE(f.server.count("DELETE", "/api/drawings/a%2F..%2Fb%20c"), 1);
        f.exchange();
        QCOMPARE(f.failures, QStringList());
        QCOMPARE(f.server.count("GET", drawingsPath), 1);
    }

    void deletingSendsNothingForIdsThatNameNoObject_data()
    {
        QTest::addColumn<QString>("id");
        QTest::newRow("empty") << QString();
        QTest::newRow("dot") << u"."_s;
        QTest::newRow("dots") << u".."_s;
    }
    void deletingSendsNothingForIdsThatNameNoObject()
    {
        QFETCH(QString, id);
        StoredDrawings f;
        f.open();
        Q_EMIT f.chart->drawingDeleted(id);
        f.exchange();
        QCOMPARE(f.server.requests().size(), 1); // the further exchange
    }

    void anObjectThatTheServerWouldNotDeleteIsShownAgain()
    {
        StoredDrawings f;
        f.server.on("GET", listOne, listOf({{u"a"_s, 1}}));
        f.server.on("DELETE", "/api/drawings/a", StubAnswer::message(u"Locked"_s, 409));
        f.open().load();
        QTRY_COMPARE(f.shown().size(), 1);
        f.deleteAt(0);
        QTRY_COMPARE(f.failures, QStringList{u"EURUSD: failed to delete the drawing: Locked"_s});
        QTRY_COMPARE(f.shown(), QStringList{u"a@1"_s});
    }

    void aDeletionWithoutAnAnswerIsReportedOnly()
    {
        StoredDrawings f;
        f.server.on("GET", listOne, listOf({{u"a"_s, 1}}));
        f.server.on("DELETE", "/api/drawings/a", StubAnswer::closed()); // after the object was deleted
        f.open().load();
        QTRY_COMPARE(f.shown().size(), 1);
        f.deleteAt(0);
        QTRY_COMPARE(f.failures, QStringList{u"EURUSD: failed to delete the drawing: Connection closed"_s});
        f.exchange();
        QCOMPARE(f.server.count("GET", drawingsPath), 1);
        QCOMPARE(f.shown(), QStringList());
    }

    void anObjectDeletedBeforeItHasAnIdIsNotSentAndComesBackOnPurpose()
    {
        StoredDrawings f;
        f.server.on("POST", drawingsPath, StubAnswer::held());
        f.server.on("GET", listOne, listOf({{u"a"_s, 1}}));
        f.open();
        f.draw(1);
        QTRY_COMPARE(f.server.heldCount(), 1);
        f.deleteAt(0);
        QVERIFY(f.server.release(created));
        // The server has it by now: it must be seen to be deleted.
        QTRY_COMPARE(f.shown(), QStringList{u"a@1"_s});
        f.exchange();
        for (const StubRequest& request : f.server.requests())
            QVERIFY(request.method != "DELETE");
    }

    void aChangedObjectIsPutWithPointsAndStyle()
    {
        StoredDrawings f;
        f.server.on("PUT", "/api/drawings/x%2F1", StubAnswer::json("{}"));
        f.open();
        Q_EMIT f.chart->drawingUpdated({u"x/1"_s, u"hline"_s, {{5, 2.5}}, QColor(1, 2, 3)});
        QTRY_COMPARE(f.server.count("PUT", "/api/drawings/x%2F1"), 1);
        const QJsonObject expected{{u"style"_s, QJsonObject{{u"color"_s, u"#010203"_s}}},
            {u"points"_s, QJsonArray{QJsonObject{{u"time"_s, u"5"_s}, {u"price"_s, 2.5}}}}};
        QCOMPARE(f.server.last("PUT", "/api/drawings/x%2F1").json(), expected);
    }

    void aFailedChangeIsReported()
    {
        StoredDrawings f;
        f.server.on("PUT", "/api/drawings/a", StubAnswer::message(u"Locked"_s, 409));
        f.open();
        Q_EMIT f.chart->drawingUpdated({u"a"_s, u"hline"_s, {{5, 2.5}}});
        QTRY_COMPARE(f.failures, QStringList{u"EURUSD: failed to save the drawing: Locked"_s});
    }

    void anEndlessSymbolIsShortenedInReports()
    {
        const QString shown = QString(64, u'x') + u'…';
        StoredDrawings f;
        f.server.on("GET", drawingsPath, StubAnswer::message(u"No"_s, 400));
        f.server.on("PUT", "/api/drawings/a", StubAnswer::message(u"Locked"_s, 409));
        f.open(u"one"_s, QString(100'000, u'x')).load();
        QTRY_COMPARE(f.failures, QStringList{shown + u": failed to load drawings: No"_s});
        Q_EMIT f.chart->drawingUpdated({u"a"_s, u"hline"_s, {{5, 2.5}}});
        QTRY_VERIFY(f.failures.contains(shown + u": failed to save the drawing: Locked"_s));
    }

    void aChangedObjectWithoutAnIdIsNotSent()
    {
        StoredDrawings f;
        f.open();
        Q_EMIT f.chart->drawingUpdated({{}, u"hline"_s, {{5, 2.5}}});
        f.exchange();
        QCOMPARE(f.server.requests().size(), 1);
    }

    void whatAHandPlacesAndDeletesIsSent()
    {
        StoredDrawings f;
        f.chart->resize(400, 300);
        f.chart->setCandles(fixtures::wave(100)); // the last one at column 331
        const double price = f.chart->view().priceAt(100);
        f.server.on("POST", drawingsPath, created);
        f.server.on("GET", listOne, listOf({{u"a"_s, price}}));
        f.server.on("DELETE", "/api/drawings/a", StubAnswer::json("{}"));
        f.open();
        f.chart->setTool(u"hline"_s);
        QTest::mouseClick(f.chart.get(), Qt::LeftButton, {}, QPoint(331, 100));
        QTRY_COMPARE(f.server.count("POST", drawingsPath), 1);
        const QJsonObject sent = f.server.last("POST", drawingsPath).json();
        QCOMPARE(sent[u"toolType"_s].toString(), u"hline"_s);
        const QJsonObject point{
            {u"time"_s, QString::number(midnight + 99 * quarterHour)}, {u"price"_s, price}};
        QCOMPARE(sent[u"points"_s].toArray(), QJsonArray{point});
        QTRY_COMPARE(f.chart->drawings().constFirst().id, u"a"_s);
        QTest::mouseClick(f.chart.get(), Qt::LeftButton, {}, QPoint(50, 100));
        QTest::keyClick(f.chart.get(), Qt::Key_Delete);
        QTRY_COMPARE(f.server.count("DELETE", "/api/drawings/a"), 1);
        QVERIFY(f.chart->drawings().isEmpty());
    }

    void aToolGivenUpSendsNothing()
    {
        StoredDrawings f;
        f.chart->resize(400, 300);
        f.chart->setCandles(fixtures::wave(100));
        f.open();
        for (const QString& tool : {u"trendline"_s, u"rectangle"_s, u"fibonacci"_s}) {
            f.chart->setTool(tool);
            QTest::mouseClick(f.chart.get(), Qt::LeftButton, {}, QPoint(200, 100));
            QTest::keyClick(f.chart.get(), Qt::Key_Escape);
            QCOMPARE(f.chart->tool(), QString());
        }
        f.exchange();
        QCOMPARE(f.server.requests().size(), 1); // the further exchange
        QVERIFY(f.chart->drawings().isEmpty());
    }
};

TAVORAN_TEST(tst_DrawingStore)
#include "tst_DrawingStore.moc"
