#include "app/TerminalSettings.h"
#include "chart/ChartWidget.h"
#include "chart/DrawingStore.h"
#include "net/ApiClient.h"
#include "support/StubHttpServer.h"
#include "support/TestMain.h"

#include <QJsonArray>
#include <QJsonDocument>

using namespace Qt::StringLiterals;

class tst_DrawingStore final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void asksForTheObjectsOfSymbolAndAccount();
    void asksForTheSymbolAloneWithoutAnAccount();
    void showsWhatTheServerHas();
    void anEmptyListEmptiesTheChart();
    void aFailedReadKeepsWhatIsShownAndIsReported_data();
    void aFailedReadKeepsWhatIsShownAndIsReported();

    void aNewObjectIsSentAndComesBackWithItsId();
    void aFailedCreateLeavesTheObjectAndIsReported();
    void aFailedObjectSurvivesTheNextReload();
    void aFailedObjectThatWasDeletedStaysDeleted();
    void aLostAnswerIsNoSecondObject();
    void aSecondObjectDuringTheReloadIsNeitherLostNorDoubled_data();
    void aSecondObjectDuringTheReloadIsNeitherLostNorDoubled();
    void theListWaitsForEveryCreate();
    void manyObjectsInARowCostFewReads();

    void deletingSendsTheEncodedId();
    void deletingSendsNothingForIdsThatNameNoObject_data();
    void deletingSendsNothingForIdsThatNameNoObject();
    void anObjectDeletedDuringAReloadDoesNotComeBack();
    void anObjectThatTheServerWouldNotDeleteIsShownAgain();
    void deletingABrandNewObjectSendsNoRequest();
    void aChangedObjectIsPutWithPointsAndStyle();
    void aChangedObjectWithoutAnIdIsNotSent();

    void anotherAccountShowsItsOwnObjects();
    void theSameAccountAsksForNothing();
    void aLateReplyOfAnotherAccountIsDropped();
    void anUnsavedObjectComesBackWithItsAccount();
    void anObjectSavedWhileAnotherAccountIsShownIsNotDoubled();
    void aSlowCreateOfOneAccountDoesNotHoldUpAnother();
    void theStoreMayGoWhileRequestsAreUnderWay();

private:
    DrawingStore& open(const QString& account = u"one"_s, const QString& symbol = u"EURUSD"_s);
    void draw(double price);
    void deleteAt(qsizetype index);
    void settle();
    [[nodiscard]] QStringList shown() const;

    std::unique_ptr<StubHttpServer> m_server;
    std::unique_ptr<ApiClient> m_api;
    std::unique_ptr<ChartWidget> m_chart;
    std::unique_ptr<DrawingStore> m_store;
    QStringList m_failures;
};

namespace {

const QByteArray path = "/api/drawings";
const QByteArray listOne = "/api/drawings?symbol=EURUSD&accountId=one";
const QByteArray listTwo = "/api/drawings?symbol=EURUSD&accountId=two";

/// Horizontal lines as "id" at a price.
StubAnswer listOf(const QList<QPair<QString, double>>& lines)
{
    QJsonArray records;
    for (const auto& [id, price] : lines) {
        records.append(QJsonObject{{u"id"_s, id}, {u"toolType"_s, u"hline"_s},
            {u"points"_s, QJsonArray{QJsonObject{{u"time"_s, u"1000"_s}, {u"price"_s, price}}}}});
    }
    return StubAnswer::json(QJsonDocument(records).toJson());
}

const StubAnswer created = StubAnswer::json("{}", 201);

} // namespace

void tst_DrawingStore::init()
{
    m_server = std::make_unique<StubHttpServer>();
    TerminalSettings::instance().setServerUrl(m_server->url());
    m_api = std::make_unique<ApiClient>();
    m_chart = std::make_unique<ChartWidget>();
    m_server->on("GET", "/api/accounts", StubAnswer::json("[]"));
    m_failures.clear();
}

void tst_DrawingStore::cleanup()
{
    m_store.reset();
    m_chart.reset();
    m_api.reset();
    m_server.reset();
}

DrawingStore& tst_DrawingStore::open(const QString& account, const QString& symbol)
{
    m_store = std::make_unique<DrawingStore>(*m_api, *m_chart, symbol, account);
    connect(m_store.get(), &DrawingStore::failed, this,
        [this](const QString& message) { m_failures.append(message); });
    return *m_store;
}

/// What the chart does when a person has placed a line.
void tst_DrawingStore::draw(double price)
{
    const Drawing drawing{{}, u"hline"_s, {{1000, price}}};
    m_chart->setDrawings(m_chart->drawings() + QList{drawing});
    Q_EMIT m_chart->drawingCreated(drawing);
}

/// What the chart does when a person has deleted an object.
void tst_DrawingStore::deleteAt(qsizetype index)
{
    QList<Drawing> drawings = m_chart->drawings();
    const QString id = drawings.takeAt(index).id;
    m_chart->setDrawings(drawings);
    if (!id.isEmpty())
        Q_EMIT m_chart->drawingDeleted(id);
}

/// A further exchange, after which whatever was answered or sent before has arrived.
void tst_DrawingStore::settle()
{
    bool answered = false;
    m_api->get(
        u"/api/accounts"_s, this, [&answered](const QJsonDocument&, const QString&) { answered = true; });
    QTRY_VERIFY(answered);
}

/// The objects as "id@price", without an id "@price".
QStringList tst_DrawingStore::shown() const
{
    QStringList texts;
    for (const Drawing& drawing : m_chart->drawings())
        texts << drawing.id + u'@' + QString::number(drawing.points.first().price);
    return texts;
}

void tst_DrawingStore::asksForTheObjectsOfSymbolAndAccount()
{
    open(u"a/1&b"_s, u"EUR+USD #1"_s).load();
    QTRY_COMPARE(m_server->requests().size(), 1);
    QCOMPARE(
        m_server->requests().first().target, "/api/drawings?symbol=EUR%2BUSD%20%231&accountId=a%2F1%26b"_ba);
}

void tst_DrawingStore::asksForTheSymbolAloneWithoutAnAccount()
{
    open({}).load();
    QTRY_COMPARE(m_server->requests().size(), 1);
    QCOMPARE(m_server->requests().first().target, "/api/drawings?symbol=EURUSD"_ba);
}

void tst_DrawingStore::showsWhatTheServerHas()
{
    m_server->on("GET", listOne, listOf({{u"a"_s, 1}, {u"b"_s, 2}}));
    open().load();
    QTRY_COMPARE(shown(), QStringList({u"a@1"_s, u"b@2"_s}));
    QCOMPARE(m_failures, QStringList());
}

void tst_DrawingStore::anEmptyListEmptiesTheChart()
{
    m_server->once("GET", listOne, listOf({{u"a"_s, 1}}));
    m_server->once("GET", listOne, listOf({}));
    open().load();
    QTRY_COMPARE(shown(), QStringList{u"a@1"_s});
    m_store->load();
    QTRY_COMPARE(shown(), QStringList());
}

void tst_DrawingStore::aFailedReadKeepsWhatIsShownAndIsReported_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("reason");
    QTest::newRow("refused") << QByteArray(R"({"message":"No %1 <b>here</b>"})") << 403
                             << u"No %1 <b>here</b>"_s;
    QTest::newRow("object") << QByteArray("{}") << 200 << u"Unexpected server response"_s;
    QTest::newRow("a page") << QByteArray("<html>") << 200 << u"Unexpected server response"_s;
    QTest::newRow("nothing") << QByteArray() << 200 << u"Unexpected server response"_s;
}

void tst_DrawingStore::aFailedReadKeepsWhatIsShownAndIsReported()
{
    QFETCH(QByteArray, body);
    QFETCH(int, status);
    QFETCH(QString, reason);
    m_server->once("GET", listOne, listOf({{u"a"_s, 1}}));
    m_server->once("GET", listOne, StubAnswer::json(body, status));
    open().load();
    QTRY_COMPARE(shown(), QStringList{u"a@1"_s});
    m_store->load();
    QTRY_COMPARE(m_failures, QStringList(u"EURUSD: failed to load drawings: "_s + reason));
    QCOMPARE(shown(), QStringList{u"a@1"_s});
}

void tst_DrawingStore::aNewObjectIsSentAndComesBackWithItsId()
{
    m_server->on("POST", path, created);
    m_server->on("GET", listOne, listOf({{u"a"_s, 1.5}}));
    open();
    draw(1.5);
    QCOMPARE(shown(), QStringList{u"@1.5"_s});
    QTRY_COMPARE(shown(), QStringList{u"a@1.5"_s});
    const QJsonObject expected{{u"symbol"_s, u"EURUSD"_s}, {u"toolType"_s, u"hline"_s},
        {u"accountId"_s, u"one"_s}, {u"style"_s, QJsonObject{{u"color"_s, u"#e0e0e0"_s}}},
        {u"points"_s, QJsonArray{QJsonObject{{u"time"_s, u"1000"_s}, {u"price"_s, 1.5}}}}};
    QCOMPARE(m_server->last("POST", path).json(), expected);
    QCOMPARE(m_server->requests().size(), 2);
}

void tst_DrawingStore::aFailedCreateLeavesTheObjectAndIsReported()
{
    m_server->on("POST", path, StubAnswer::message(u"The chart\nis full"_s, 400));
    open();
    draw(1.5);
    QTRY_COMPARE(m_failures, QStringList{u"EURUSD: failed to save the drawing: The chart is full"_s});
    QCOMPARE(shown(), QStringList{u"@1.5"_s});
    settle();
    QCOMPARE(m_server->count("GET", path), 0);
}

void tst_DrawingStore::aFailedObjectSurvivesTheNextReload()
{
    m_server->once("POST", path, StubAnswer::message(u"No"_s, 500));
    m_server->on("POST", path, created);
    m_server->on("GET", listOne, listOf({{u"b"_s, 2}}));
    open();
    draw(1);
    QTRY_COMPARE(m_failures.size(), 1);
    draw(2);
    QTRY_COMPARE(shown(), QStringList({u"b@2"_s, u"@1"_s}));
    m_store->load();
    QTRY_COMPARE(m_server->count("GET", path), 2);
    settle();
    QCOMPARE(shown(), QStringList({u"b@2"_s, u"@1"_s}));
}

void tst_DrawingStore::aFailedObjectThatWasDeletedStaysDeleted()
{
    m_server->on("POST", path, StubAnswer::message(u"No"_s, 500));
    m_server->on("GET", listOne, listOf({{u"b"_s, 2}}));
    open();
    draw(1);
    QTRY_COMPARE(m_failures.size(), 1);
    deleteAt(0);
    m_store->load();
    QTRY_COMPARE(shown(), QStringList{u"b@2"_s});
}

void tst_DrawingStore::aLostAnswerIsNoSecondObject()
{
    m_server->on("POST", path, StubAnswer::closed()); // after the object was stored
    m_server->on("GET", listOne, listOf({{u"a"_s, 1.1}}));
    open();
    draw(1.1);
    QTRY_COMPARE(m_failures, QStringList{u"EURUSD: failed to save the drawing: Connection closed"_s});
    m_store->load();
    QTRY_COMPARE(shown(), QStringList{u"a@1.1"_s});
}

void tst_DrawingStore::aSecondObjectDuringTheReloadIsNeitherLostNorDoubled_data()
{
    QTest::addColumn<bool>("listedAlready");
    QTest::newRow("the overtaken list lacks it") << false;
    QTest::newRow("the overtaken list has it") << true;
}

void tst_DrawingStore::aSecondObjectDuringTheReloadIsNeitherLostNorDoubled()
{
    QFETCH(bool, listedAlready);
    m_server->once("POST", path, created);
    m_server->once("POST", path, StubAnswer::held());
    m_server->once("GET", listOne, StubAnswer::held());
    open();
    draw(1);
    QTRY_COMPARE(m_server->heldCount(), 1); // the reload after the first object
    draw(2);
    QTRY_COMPARE(m_server->heldCount(), 2);
    const StubAnswer both = listOf({{u"a"_s, 1}, {u"b"_s, 2}});
    QVERIFY(m_server->release(listedAlready ? both : listOf({{u"a"_s, 1}}), listOne));
    settle();
    QCOMPARE(shown(), QStringList({u"@1"_s, u"@2"_s}));
    m_server->on("GET", listOne, both);
    QVERIFY(m_server->release(created, path));
    QTRY_COMPARE(shown(), QStringList({u"a@1"_s, u"b@2"_s}));
    settle();
    QCOMPARE(m_server->count("GET", path), 2);
}

void tst_DrawingStore::theListWaitsForEveryCreate()
{
    m_server->on("POST", path, StubAnswer::held());
    m_server->on("GET", listOne, listOf({{u"a"_s, 1}, {u"b"_s, 2}}));
    open();
    draw(1);
    draw(2);
    m_store->load();
    QTRY_COMPARE(m_server->heldCount(), 2);
    QVERIFY(m_server->release(created));
    settle();
    QCOMPARE(m_server->count("GET", path), 0);
    QVERIFY(m_server->release(created));
    QTRY_COMPARE(shown(), QStringList({u"a@1"_s, u"b@2"_s}));
    QCOMPARE(m_server->count("GET", path), 1);
}

void tst_DrawingStore::manyObjectsInARowCostFewReads()
{
    m_server->on("POST", path, created);
    QList<QPair<QString, double>> lines;
    QStringList expected;
    for (int i = 0; i < 20; ++i) {
        lines.append({QString::number(i), i});
        expected << u"%1@%1"_s.arg(i);
    }
    m_server->on("GET", listOne, listOf(lines));
    open();
    for (int i = 0; i < 20; ++i)
        draw(i);
    QTRY_COMPARE(shown(), expected);
    QCOMPARE(m_server->count("POST", path), 20);
    QVERIFY(m_server->count("GET", path) <= 2);
}

void tst_DrawingStore::deletingSendsTheEncodedId()
{
    m_server->once("GET", listOne, listOf({{u"a/../b c"_s, 1}}));
    m_server->on("DELETE", "/api/drawings/a%2F..%2Fb%20c", StubAnswer::json("{}"));
    open().load();
    QTRY_COMPARE(shown().size(), 1);
    deleteAt(0);
    QTRY_COMPARE(m_server->count("DELETE", "/api/drawings/a%2F..%2Fb%20c"), 1);
    settle();
    QCOMPARE(m_failures, QStringList());
    QCOMPARE(m_server->count("GET", path), 1);
}

void tst_DrawingStore::deletingSendsNothingForIdsThatNameNoObject_data()
{
    QTest::addColumn<QString>("id");
    QTest::newRow("empty") << QString();
    QTest::newRow("dot") << u"."_s;
    QTest::newRow("dots") << u".."_s;
}

void tst_DrawingStore::deletingSendsNothingForIdsThatNameNoObject()
{
    QFETCH(QString, id);
    open();
    Q_EMIT m_chart->drawingDeleted(id);
    settle();
    QCOMPARE(m_server->requests().size(), 1); // the one that settles
}

void tst_DrawingStore::anObjectDeletedDuringAReloadDoesNotComeBack()
{
    m_server->once("GET", listOne, listOf({{u"a"_s, 1}, {u"b"_s, 2}}));
    m_server->once("GET", listOne, StubAnswer::held());
    m_server->on("DELETE", "/api/drawings/a", StubAnswer::json("{}"));
    open().load();
    QTRY_COMPARE(shown().size(), 2);
    m_store->load();
    QTRY_COMPARE(m_server->heldCount(), 1);
    deleteAt(0);
    QTRY_COMPARE(m_server->count("DELETE", "/api/drawings/a"), 1);
    settle();
    m_server->on("GET", listOne, listOf({{u"b"_s, 2}, {u"c"_s, 3}}));
    QVERIFY(m_server->release(listOf({{u"a"_s, 1}, {u"b"_s, 2}})));
    QTRY_COMPARE(shown(), QStringList({u"b@2"_s, u"c@3"_s}));
}

void tst_DrawingStore::anObjectThatTheServerWouldNotDeleteIsShownAgain()
{
    m_server->on("GET", listOne, listOf({{u"a"_s, 1}}));
    m_server->on("DELETE", "/api/drawings/a", StubAnswer::message(u"Locked"_s, 409));
    open().load();
    QTRY_COMPARE(shown().size(), 1);
    deleteAt(0);
    QTRY_COMPARE(m_failures, QStringList{u"EURUSD: failed to delete the drawing: Locked"_s});
    QTRY_COMPARE(shown(), QStringList{u"a@1"_s});
}

void tst_DrawingStore::deletingABrandNewObjectSendsNoRequest()
{
    m_server->on("POST", path, StubAnswer::held());
    open();
    draw(1);
    QTRY_COMPARE(m_server->heldCount(), 1);
    deleteAt(0);
    m_server->on("GET", listOne, listOf({}));
    QVERIFY(m_server->release(created));
    QTRY_COMPARE(m_server->count("GET", path), 1);
    settle();
    for (const StubRequest& request : m_server->requests())
        QVERIFY(request.method != "DELETE");
    QCOMPARE(shown(), QStringList());
}

void tst_DrawingStore::aChangedObjectIsPutWithPointsAndStyle()
{
    m_server->on("PUT", "/api/drawings/x%2F1", StubAnswer::json("{}"));
    open();
    Q_EMIT m_chart->drawingUpdated({u"x/1"_s, u"hline"_s, {{5, 2.5}}, QColor(1, 2, 3)});
    QTRY_COMPARE(m_server->count("PUT", "/api/drawings/x%2F1"), 1);
    const QJsonObject expected{{u"style"_s, QJsonObject{{u"color"_s, u"#010203"_s}}},
        {u"points"_s, QJsonArray{QJsonObject{{u"time"_s, u"5"_s}, {u"price"_s, 2.5}}}}};
    QCOMPARE(m_server->last("PUT", "/api/drawings/x%2F1").json(), expected);
}

void tst_DrawingStore::aChangedObjectWithoutAnIdIsNotSent()
{
    open();
    Q_EMIT m_chart->drawingUpdated({{}, u"hline"_s, {{5, 2.5}}});
    settle();
    QCOMPARE(m_server->requests().size(), 1);
}

void tst_DrawingStore::anotherAccountShowsItsOwnObjects()
{
    m_server->on("GET", listOne, listOf({{u"a"_s, 1}}));
    m_server->on("GET", listTwo, listOf({{u"b"_s, 2}}));
    open().load();
    QTRY_COMPARE(shown(), QStringList{u"a@1"_s});
    m_store->setAccountId(u"two"_s);
    QCOMPARE(shown(), QStringList());
    QTRY_COMPARE(shown(), QStringList{u"b@2"_s});
    QCOMPARE(m_store->accountId(), u"two"_s);
}

void tst_DrawingStore::theSameAccountAsksForNothing()
{
    open().setAccountId(u"one"_s);
    settle();
    QCOMPARE(m_server->requests().size(), 1);
}

void tst_DrawingStore::aLateReplyOfAnotherAccountIsDropped()
{
    m_server->on("GET", listOne, StubAnswer::held());
    m_server->on("GET", listTwo, listOf({{u"b"_s, 2}}));
    open().load();
    QTRY_COMPARE(m_server->heldCount(), 1);
    m_store->setAccountId(u"two"_s);
    QTRY_COMPARE(shown(), QStringList{u"b@2"_s});
    QVERIFY(m_server->release(listOf({{u"a"_s, 1}})));
    settle();
    QCOMPARE(shown(), QStringList{u"b@2"_s});
    QCOMPARE(m_failures, QStringList());
}

void tst_DrawingStore::anUnsavedObjectComesBackWithItsAccount()
{
    m_server->on("POST", path, StubAnswer::message(u"No"_s, 500));
    m_server->on("GET", listOne, listOf({{u"a"_s, 1}}));
    m_server->on("GET", listTwo, listOf({{u"b"_s, 2}}));
    open();
    draw(7);
    QTRY_COMPARE(m_failures.size(), 1);
    m_store->setAccountId(u"two"_s);
    QTRY_COMPARE(shown(), QStringList{u"b@2"_s});
    m_store->setAccountId(u"one"_s);
    QCOMPARE(shown(), QStringList{u"@7"_s});
    QTRY_COMPARE(shown(), QStringList({u"a@1"_s, u"@7"_s}));
}

void tst_DrawingStore::anObjectSavedWhileAnotherAccountIsShownIsNotDoubled()
{
    m_server->on("POST", path, StubAnswer::held());
    m_server->on("GET", listOne, listOf({{u"a"_s, 7.5}}));
    m_server->on("GET", listTwo, listOf({}));
    open();
    draw(7.5000000321); // the server keeps fewer decimals
    QTRY_COMPARE(m_server->heldCount(), 1);
    m_store->setAccountId(u"two"_s);
    QTRY_COMPARE(m_server->count("GET", listTwo), 1);
    QVERIFY(m_server->release(created));
    settle();
    QCOMPARE(m_server->count("GET", listOne), 0);
    QCOMPARE(shown(), QStringList());
    m_store->setAccountId(u"one"_s);
    QTRY_COMPARE(shown(), QStringList{u"a@7.5"_s});
}

void tst_DrawingStore::aSlowCreateOfOneAccountDoesNotHoldUpAnother()
{
    m_server->on("POST", path, StubAnswer::held());
    m_server->on("GET", listTwo, listOf({{u"b"_s, 2}}));
    open();
    draw(1);
    QTRY_COMPARE(m_server->heldCount(), 1);
    m_store->setAccountId(u"two"_s);
    QTRY_COMPARE(shown(), QStringList{u"b@2"_s});
}

void tst_DrawingStore::theStoreMayGoWhileRequestsAreUnderWay()
{
    m_server->on("POST", path, StubAnswer::held());
    m_server->on("GET", listTwo, StubAnswer::held());
    open();
    draw(1);
    m_store->setAccountId(u"two"_s);
    QTRY_COMPARE(m_server->heldCount(), 2);
    m_store.reset();
    m_chart.reset();
    QVERIFY(m_server->release(created));
    QVERIFY(m_server->release(listOf({})));
    settle();
    QCOMPARE(m_server->requests().size(), 3); // the two, and the one that settles
}

TAVORAN_TEST_MAIN(tst_DrawingStore)
#include "tst_DrawingStore.moc"
