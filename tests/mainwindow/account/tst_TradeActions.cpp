#include "app/base/TerminalSettings.h"
#include "mainwindow/account/AccountBook.h"
#include "mainwindow/account/TradeActions.h"
#include "net/ApiClient.h"
#include "support/ParseJson.h"
#include "support/Records.h"
#include "support/StubHttpServer.h"
#include "support/TestMain.h"

#include <QNetworkReply>
#include <QSignalSpy>
#include <QtTest>

using namespace Qt::StringLiterals;
using fixtures::parse;
using fixtures::parseArray;

namespace {

const QByteArray place = "/api/trades/place";
const QByteArray openTrades = R"([
    {"id":"t1","symbol":"EURUSD","type":"BUY","lotSize":1,"stopLoss":"1.05","takeProfit":0,"status":"OPEN"},
    {"id":"t2","symbol":"GOLD","status":"OPEN"},
    {"id":"t3","symbol":"EURUSD","status":"OPEN"},
    {"id":"t4","symbol":"EURUSD","status":"OPEN"},
    {"id":"t5","symbol":"eurusd","status":"OPEN"},
    {"id":"","symbol":"OIL"}])";
const QByteArray pendingOrders
    = R"([{"id":"p1","symbol":"EURUSD","status":"PENDING","stopLoss":1.0,"pendingPrice":"1.1"},{"id":"..","symbol":"X"}])";

const auto timedOut = u"no answer; the order may have been carried out"_s;
const QStringList everything{u"accounts"_s, u"trades"_s, u"history"_s};

/// The actions over a scripted server, with all that they say.
struct Desk {
    StubHttpServer server;
    ApiClient api{TerminalSettings::instance()};
    AccountBook book;
    TradeActions actions{api, book};
    QStringList said; ///< Journal and Experts lines, sounds and refreshes in their order

    Desk()
    {
        TerminalSettings::instance().setServerUrl(server.url());
        book.selectAccount(u"acc-1"_s);
        book.setTrades(parseArray(openTrades), parseArray(pendingOrders));
        const auto note = [this](const QString& text) { said.append(text); };
        QObject::connect(&actions, &TradeActions::journalLine, &actions,
            [note](
                const QString& source, const QString& message) { note(u"J %1: %2"_s.arg(source, message)); });
        QObject::connect(&actions, &TradeActions::expertLine, &actions,
            [note](
                const QString& source, const QString& message) { note(u"E %1: %2"_s.arg(source, message)); });
        QObject::connect(&actions, &TradeActions::soundWanted, &actions,
            [note](SoundKind kind) { note(u"sound %1"_s.arg(int(kind))); });
        QObject::connect(
            &actions, &TradeActions::accountsRefreshWanted, &actions, [note] { note(u"accounts"_s); });
        QObject::connect(
            &actions, &TradeActions::tradesRefreshWanted, &actions, [note] { note(u"trades"_s); });
        QObject::connect(
            &actions, &TradeActions::historyRefreshWanted, &actions, [note] { note(u"history"_s); });
    }
    Q_DISABLE_COPY_MOVE(Desk)

    /// Gives up, as the time-out does, where the case is about waiting in vain.
    void waitFor(const QString& reason)
    {
        if (reason != timedOut)
            return;
        QTRY_COMPARE(server.heldCount(), 1);
        api.findChild<QNetworkReply*>()->abort();
    }
    /// An exchange of its own, with which whatever was sent before has arrived.
    void settle()
    {
        bool answered = false;
        api.get(
            u"/marker"_s, &server, [&answered](const QJsonDocument&, const QString&) { answered = true; });
        QTRY_VERIFY(answered);
        QCOMPARE(server.requests().last().path(), "/marker"_ba);
    }
    /// Checks what is said of a failure, and that it was asked for once. A reason that ends with a star is
    /// the beginning of Qt's own words.
    void checkFailure(const QString& words, QString reason) const
    {
        QCOMPARE(said.at(0), sound(SoundKind::Error));
        const QString& line = said.at(1);
        if (reason.endsWith(u'*')) {
            reason.chop(1);
            QVERIFY2(line.startsWith(words + reason), qPrintable(line));
        } else {
            QCOMPARE(line, words + reason);
        }
        QCOMPARE(server.requests().size(), 1);
    }
    [[nodiscard]] static QString sound(SoundKind kind) { return u"sound %1"_s.arg(int(kind)); }
};

/// Every way an answer can come that is no success, the words for it, and whether it is one to go by.
void addFailures()
{
    QTest::addColumn<StubAnswer>("answer");
    QTest::addColumn<QString>("reason");
    QTest::addColumn<bool>("answered");
    QTest::newRow("refused with a message")
        << StubAnswer::message(u"No %1 <b>"_s, 400) << u"No %1 <b>"_s << true;
    QTest::newRow("cut after it was sent") << StubAnswer::closed() << u"Connection closed"_s << false;
    QTest::newRow("no answer in time") << StubAnswer::held() << timedOut << false;
    QTest::newRow("cut within the answer")
        << StubAnswer::raw("HTTP/1.1 200 OK\r\nContent-Length: 90\r\n\r\n{") << u"Connection closed"_s
        << false;
    QTest::newRow("an error page") << StubAnswer::html("<h1>Bad</h1>", 502)
                                   << u"Error transferring http://127.0.0.1:*"_s << true;
    QTest::newRow("a redirect") << StubAnswer::redirect(u"http://127.0.0.1:1/"_s)
                                << u"The server answered with a redirect"_s << true;
}

} // namespace

Q_DECLARE_METATYPE(StubAnswer)

class TestTradeActions final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void closingReportsAndReadsEverything();
    void closingFails_data() { addFailures(); }
    void closingFails();
    void whatComesWithASuccessIsIgnoredOnPurpose_data();
    void whatComesWithASuccessIsIgnoredOnPurpose();
    void cancellingReportsAndReadsTheTrades();
    void cancellingFails_data() { addFailures(); }
    void cancellingFails();
    void movingALevelSendsTheWholeSet_data();
    void movingALevelSendsTheWholeSet();
    void movingIsReportedInTheShortestForm_data();
    void movingIsReportedInTheShortestForm();
    void movingFails_data() { addFailures(); }
    void movingFails();
    void movingAnUnknownTradeSendsNothing();
    void anIdInBothListsMeansThePosition();
    void aSecondDragDoesNotWaitForTheFirst();
    void idsNeverReachAnotherPath_data();
    void idsNeverReachAnotherPath();
    void quickTradeSendsAMarketOrder_data();
    void quickTradeSendsAMarketOrder();
    void quickTradeFails_data() { addFailures(); }
    void quickTradeFails();
    void quickTradeIgnoresTheAlgoSwitch();
    void quickTradeNeedsAnAccount();
    void algoSwitchIsOffAtStartAndTellsEachChange();
    void expertOrdersAreRefusedEveryTimeWhileTheSwitchIsOff();
    void expertOrdersGetTheAccountAndAreReported();
    void expertOrdersNeverNameAnotherAccount();
    void expertOrdersFail_data() { addFailures(); }
    void expertOrdersFail();
    void expertOrdersNeedAnAccount();
    void ordersOfExpertsInFlightAreFewAndGoOutInTheirOrder();
    void anEndlessSymbolIsShortenedInTheLinesAlone();
    void whatWaitsIsDroppedWhenTheSwitchGoesOff();
    void nothingIsSaidOfADropWhereNothingWaits();
    void aTradersOrderDoesNotWaitBehindThoseOfExperts();
    void anExpertsOrderThatWaitedTooLongIsNotSent();
    void anExpertsCloseIsNeverTooLate();
    void anOrderThatNeverLeftIsToldApart();
    void aDrippingAnswerEndsAndEverythingIsRead();
    void closeAllClosesEveryPositionOfTheSymbolAndSaysSoOnce();
    void closeAllReadsEverythingAfterEachReplyAndTellsNoFailure();
    void closeAllWithoutPositionsIsSilent();
    void closeAllIsRefusedWhileTheSwitchIsOff();
    void strangeSymbolsAreOneLineOfText();
    void repliesInTheOtherOrderKeepTheirOwnWords();
    void twoDragsAnsweredInTheOtherOrderKeepTheirOwnWords();
    void repliesAfterTheEndDoNoHarm();
};

void TestTradeActions::closingReportsAndReadsEverything()
{
    Desk desk;
    desk.server.on("POST", "/api/trades/close/t1", StubAnswer::json("{}"));
    desk.actions.closePosition(records::position("t1"));
    QTRY_COMPARE(desk.said,
        QStringList({Desk::sound(SoundKind::Close), u"J Trade: Position closed"_s, u"accounts"_s, u"trades"_s,
            u"history"_s}));
    QCOMPARE(desk.server.last("POST", "/api/trades/close/t1").body, QByteArray("{}"));
}

void TestTradeActions::closingFails()
{
    QFETCH(StubAnswer, answer);
    QFETCH(QString, reason);
    Desk desk;
    desk.server.on("POST", "/api/trades/close/t1", answer);
    desk.actions.closePosition(records::position("t1"));
    desk.waitFor(reason);
    QTRY_COMPARE(desk.said.size(), 5);
    desk.checkFailure(u"J Trade: Close failed: "_s, reason);
    QCOMPARE(desk.said.mid(2), QStringList({u"accounts"_s, u"trades"_s, u"history"_s}));
}

void TestTradeActions::whatComesWithASuccessIsIgnoredOnPurpose_data()
{
    QTest::addColumn<StubAnswer>("answer");
    QTest::newRow("nothing") << StubAnswer::json("");
    QTest::newRow("no content") << StubAnswer::json("", 204);
    QTest::newRow("a list") << StubAnswer::json("[1]", 201);
    QTest::newRow("a page") << StubAnswer::html("<h1>Done</h1>", 200);
    QTest::newRow("a message") << StubAnswer::message(u"Good luck"_s, 200);
}

void TestTradeActions::whatComesWithASuccessIsIgnoredOnPurpose()
{
    QFETCH(StubAnswer, answer);
    Desk desk;
    desk.server.on("POST", "/api/trades/close/t1", answer);
    desk.actions.closePosition(records::position("t1"));
    QTRY_COMPARE(desk.said.value(1), u"J Trade: Position closed"_s);
}

void TestTradeActions::cancellingReportsAndReadsTheTrades()
{
    Desk desk;
    desk.server.on("POST", "/api/trades/cancel/p1", StubAnswer::json("{}"));
    desk.actions.cancelOrder(records::pendingOrder("p1"));
    QTRY_COMPARE(desk.said,
        QStringList({Desk::sound(SoundKind::Close), u"J Trade: Pending order cancelled"_s, u"trades"_s}));
    QCOMPARE(desk.server.last("POST", "/api/trades/cancel/p1").body, QByteArray("{}"));
}

void TestTradeActions::cancellingFails()
{
    QFETCH(StubAnswer, answer);
    QFETCH(QString, reason);
    QFETCH(bool, answered);
    Desk desk;
    desk.server.on("POST", "/api/trades/cancel/p1", answer);
    desk.actions.cancelOrder(records::pendingOrder("p1"));
    desk.waitFor(reason);
    const QStringList lists = answered ? QStringList({u"trades"_s}) : everything;
    QTRY_COMPARE(desk.said.size(), 2 + lists.size());
    desk.checkFailure(u"J Trade: Cancel failed: "_s, reason);
    QCOMPARE(desk.said.mid(2), lists);
}

void TestTradeActions::movingALevelSendsTheWholeSet_data()
{
    QTest::addColumn<QString>("id");
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QByteArray>("body");
    QTest::newRow("stop") << u"t1"_s << u"SL"_s << QByteArray(R"({"stopLoss":1.06})");
    QTest::newRow("target") << u"t1"_s << u"TP"_s << QByteArray(R"({"stopLoss":1.05,"takeProfit":1.06})");
    QTest::newRow("entry") << u"p1"_s << u"PRICE"_s << QByteArray(R"({"stopLoss":1.0,"pendingPrice":1.06})");
}

void TestTradeActions::movingALevelSendsTheWholeSet()
{
    QFETCH(QString, id);
    QFETCH(QString, kind);
    QFETCH(QByteArray, body);
    Desk desk;
    const QByteArray path = "/api/trades/modify/" + id.toUtf8();
    desk.server.on("PUT", path, StubAnswer::json("{}"));
    desk.actions.moveLevel(id, kind, 1.06);
    QTRY_COMPARE(desk.said,
        QStringList({Desk::sound(SoundKind::Open), u"J Trade: %1 moved to 1.06"_s.arg(kind), u"trades"_s}));
    QCOMPARE(desk.server.last("PUT", path).json(), parse(body));
}

void TestTradeActions::movingIsReportedInTheShortestForm_data()
{
    QTest::addColumn<double>("price");
    QTest::addColumn<QString>("text");
    QTest::newRow("five decimals") << 1.07505 << u"1.07505"_s;
    QTest::newRow("no needless zeros") << 1.10000 << u"1.1"_s;
    QTest::newRow("all of a long price") << 65123.456 << u"65123.456"_s;
    QTest::newRow("a round price has no exponent") << 100000.0 << u"100000"_s;
    QTest::newRow("nor has a small one") << 0.00002 << u"0.00002"_s;
}

void TestTradeActions::movingIsReportedInTheShortestForm()
{
    QFETCH(double, price);
    QFETCH(QString, text);
    Desk desk;
    desk.server.on("PUT", "/api/trades/modify/t1", StubAnswer::json("{}"));
    desk.actions.moveLevel(u"t1"_s, u"SL"_s, price);
    QTRY_COMPARE(desk.said.value(1), u"J Trade: SL moved to "_s + text);
}

void TestTradeActions::movingFails()
{
    QFETCH(StubAnswer, answer);
    QFETCH(QString, reason);
    QFETCH(bool, answered);
    Desk desk;
    desk.server.on("PUT", "/api/trades/modify/t1", answer);
    desk.actions.moveLevel(u"t1"_s, u"SL"_s, 1.06);
    desk.waitFor(reason);
    const QStringList lists = answered ? QStringList({u"trades"_s}) : everything;
    QTRY_COMPARE(desk.said.size(), 2 + lists.size());
    desk.checkFailure(u"J Trade: Modify failed: "_s, reason);
    QCOMPARE(desk.said.mid(2), lists);
}

void TestTradeActions::movingAnUnknownTradeSendsNothing()
{
    Desk desk;
    desk.actions.moveLevel(u"gone"_s, u"SL"_s, 1.06);
    desk.actions.quickTrade(u"EURUSD"_s, u"BUY"_s, 1.0);
    QTRY_COMPARE(desk.server.requests().size(), 1);
    QCOMPARE(desk.server.requests().first().path(), place);
}

void TestTradeActions::anIdInBothListsMeansThePosition()
{
    Desk desk;
    desk.book.setTrades({records::position("x").takeProfit(2)}, {records::pendingOrder("x").awaits(1.5)});
    desk.actions.moveLevel(u"x"_s, u"SL"_s, 1.0);
    QTRY_COMPARE(desk.server.count("PUT", "/api/trades/modify/x"), 1);
    QCOMPARE(
        desk.server.last("PUT", "/api/trades/modify/x").json(), parse(R"({"stopLoss":1.0,"takeProfit":2})"));
}

void TestTradeActions::aSecondDragDoesNotWaitForTheFirst()
{
    Desk desk;
    desk.server.on("PUT", "/api/trades/modify/t1", StubAnswer::held());
    desk.actions.moveLevel(u"t1"_s, u"SL"_s, 1.06);
    desk.actions.moveLevel(u"t1"_s, u"SL"_s, 1.07);
    QTRY_COMPARE(desk.server.heldCount(), 2);
}

void TestTradeActions::idsNeverReachAnotherPath_data()
{
    QTest::addColumn<QByteArray>("trade");
    QTest::addColumn<QByteArray>("target");
    QTest::newRow("none") << QByteArray("{}") << QByteArray();
    QTest::newRow("a number") << QByteArray(R"({"id":5})") << QByteArray();
    QTest::newRow("here") << QByteArray(R"({"id":"."})") << QByteArray();
    QTest::newRow("above") << QByteArray(R"({"id":".."})") << QByteArray();
    QTest::newRow("a slash") << QByteArray(R"({"id":"../place"})") << QByteArray("..%2Fplace");
    QTest::newRow("a query") << QByteArray(R"({"id":"a?b#c"})") << QByteArray("a%3Fb%23c");
}

void TestTradeActions::idsNeverReachAnotherPath()
{
    QFETCH(QByteArray, trade);
    QFETCH(QByteArray, target);
    Desk desk;
    desk.actions.closePosition(parse(trade));
    if (target.isEmpty()) {
        QCOMPARE(desk.said,
            QStringList(
                {Desk::sound(SoundKind::Error), u"J Trade: Close failed: this trade has no usable id"_s}));
        desk.actions.cancelOrder(parse(trade));
        QCOMPARE(desk.said.last(), u"J Trade: Cancel failed: this trade has no usable id"_s);
        desk.actions.moveLevel(u".."_s, u"SL"_s, 1.0);
        QCOMPARE(desk.said.last(), u"J Trade: Modify failed: this trade has no usable id"_s);
        desk.actions.moveLevel(QString(), u"SL"_s, 1.0);
        QCOMPARE(desk.said.count(u"J Trade: Modify failed: this trade has no usable id"_s), 2);
        desk.settle();
        QCOMPARE(desk.server.requests().size(), 1);
        return;
    }
    QTRY_COMPARE(desk.server.requests().size(), 1);
    QCOMPARE(desk.server.requests().first().target, "/api/trades/close/" + target);
    desk.actions.cancelOrder(parse(trade));
    QTRY_COMPARE(desk.server.requests().size(), 2);
    QCOMPARE(desk.server.requests().last().target, "/api/trades/cancel/" + target);
    desk.book.setTrades({parse(trade)}, {});
    desk.actions.moveLevel(parse(trade)["id"_L1].toString(), u"SL"_s, 1.0);
    QTRY_COMPARE(desk.server.requests().size(), 3);
    QCOMPARE(desk.server.requests().last().target, "/api/trades/modify/" + target);
}

void TestTradeActions::quickTradeSendsAMarketOrder_data()
{
    QTest::addColumn<QString>("side");
    QTest::newRow("sell") << u"SELL"_s;
    QTest::newRow("buy") << u"BUY"_s;
}

void TestTradeActions::quickTradeSendsAMarketOrder()
{
    QFETCH(QString, side);
    Desk desk;
    desk.server.on("POST", place, StubAnswer::json("{}"));
    desk.actions.quickTrade(u"EURUSD"_s, side, 0.25);
    QTRY_COMPARE(desk.said,
        QStringList({Desk::sound(SoundKind::Open), u"J Trade: One-click %1 EURUSD executed"_s.arg(side),
            u"accounts"_s, u"trades"_s}));
    QCOMPARE(desk.server.last("POST", place).json(),
        QJsonObject({{u"symbol"_s, u"EURUSD"_s}, {u"type"_s, side}, {u"orderKind"_s, u"MARKET"_s},
            {u"lotSize"_s, 0.25}, {u"accountId"_s, u"acc-1"_s}}));
}

void TestTradeActions::quickTradeFails()
{
    QFETCH(StubAnswer, answer);
    QFETCH(QString, reason);
    QFETCH(bool, answered);
    Desk desk;
    desk.server.on("POST", place, answer);
    desk.actions.quickTrade(u"EURUSD"_s, u"BUY"_s, 0.25);
    desk.waitFor(reason);
    const QStringList lists = answered ? QStringList({u"accounts"_s, u"trades"_s}) : everything;
    QTRY_COMPARE(desk.said.size(), 2 + lists.size());
    desk.checkFailure(u"J Trade: One-click order failed: "_s, reason);
    QCOMPARE(desk.said.mid(2), lists);
}

void TestTradeActions::quickTradeIgnoresTheAlgoSwitch()
{
    Desk desk;
    QVERIFY(!desk.actions.isAlgoTradingOn());
    desk.actions.quickTrade(u"EURUSD"_s, u"BUY"_s, 0.25);
    QTRY_COMPARE(desk.server.count("POST", place), 1);
}

void TestTradeActions::quickTradeNeedsAnAccount()
{
    Desk desk;
    desk.book.selectAccount({});
    desk.actions.quickTrade(u"EURUSD"_s, u"BUY"_s, 0.25);
    desk.book.selectAccount(u"acc-2"_s);
    desk.actions.quickTrade(u"GOLD"_s, u"BUY"_s, 0.25);
    QTRY_COMPARE(desk.server.requests().size(), 1);
    QCOMPARE(desk.server.last("POST", place).json()["symbol"_L1].toString(), u"GOLD"_s);
}

void TestTradeActions::algoSwitchIsOffAtStartAndTellsEachChange()
{
    Desk desk;
    QVERIFY(!desk.actions.isAlgoTradingOn());
    desk.actions.setAlgoTrading(true);
    desk.actions.setAlgoTrading(true);
    desk.actions.setAlgoTrading(false);
    QCOMPARE(
        desk.said, QStringList({u"E Expert: Algo Trading enabled"_s, u"E Expert: Algo Trading disabled"_s}));
}

void TestTradeActions::expertOrdersAreRefusedEveryTimeWhileTheSwitchIsOff()
{
    Desk desk;
    const QString refusal = u"E Expert: Algo Trading is OFF — order ignored. Enable it in the toolbar."_s;
    desk.actions.expertOrder(parse(R"({"symbol":"EURUSD"})"));
    desk.actions.expertOrder(parse(R"({"symbol":"EURUSD"})"));
    QCOMPARE(desk.said, QStringList({refusal, refusal}));
    desk.actions.setAlgoTrading(true);
    desk.actions.quickTrade(u"GOLD"_s, u"BUY"_s, 1.0);
    QTRY_COMPARE(desk.server.requests().size(), 1);
    QCOMPARE(desk.server.last("POST", place).json()["symbol"_L1].toString(), u"GOLD"_s);
}

void TestTradeActions::expertOrdersGetTheAccountAndAreReported()
{
    Desk desk;
    desk.server.on("POST", place, StubAnswer::json("{}"));
    desk.actions.setAlgoTrading(true);
    desk.said.clear();
    desk.actions.expertOrder(
        parse(R"({"symbol":"EURUSD","type":"SELL","orderKind":"MARKET","lotSize":0.1,"stopLoss":1.2})"));
    QTRY_COMPARE(desk.said,
        QStringList({Desk::sound(SoundKind::Open), u"E Expert: SELL 0.10 EURUSD executed"_s, u"accounts"_s,
            u"trades"_s}));
    QCOMPARE(desk.server.last("POST", place).json(),
        parse(
            R"({"symbol":"EURUSD","type":"SELL","orderKind":"MARKET","lotSize":0.1,"stopLoss":1.2,"accountId":"acc-1"})"));
}

void TestTradeActions::expertOrdersNeverNameAnotherAccount()
{
    Desk desk;
    desk.actions.setAlgoTrading(true);
    desk.actions.expertOrder(parse(R"({"symbol":"EURUSD","accountId":"of somebody else"})"));
    QTRY_COMPARE(desk.server.count("POST", place), 1);
    QCOMPARE(desk.server.last("POST", place).json(), parse(R"({"symbol":"EURUSD","accountId":"acc-1"})"));
}

void TestTradeActions::expertOrdersFail()
{
    QFETCH(StubAnswer, answer);
    QFETCH(QString, reason);
    QFETCH(bool, answered);
    Desk desk;
    desk.server.on("POST", place, answer);
    desk.actions.setAlgoTrading(true);
    desk.said.clear();
    desk.actions.expertOrder(parse(R"({"symbol":"EURUSD"})"));
    desk.waitFor(reason);
    const QStringList lists = answered ? QStringList({u"accounts"_s, u"trades"_s}) : everything;
    QTRY_COMPARE(desk.said.size(), 2 + lists.size());
    desk.checkFailure(u"E Expert: Order failed: "_s, reason);
    QCOMPARE(desk.said.mid(2), lists);
}

void TestTradeActions::expertOrdersNeedAnAccount()
{
    Desk desk;
    desk.actions.setAlgoTrading(true);
    desk.book.selectAccount({});
    desk.said.clear();
    desk.actions.expertOrder(parse(R"({"symbol":"EURUSD"})"));
    QCOMPARE(desk.said, QStringList());
    desk.book.selectAccount(u"acc-2"_s);
    desk.actions.expertOrder(parse(R"({"symbol":"GOLD"})"));
    QTRY_COMPARE(desk.server.requests().size(), 1);
    QCOMPARE(desk.server.last("POST", place).json()["symbol"_L1].toString(), u"GOLD"_s);
}

void TestTradeActions::ordersOfExpertsInFlightAreFewAndGoOutInTheirOrder()
{
    Desk desk;
    desk.server.on("POST", place, StubAnswer::held());
    desk.actions.setAlgoTrading(true);
    for (int i = 0; i < 5; ++i)
        desk.actions.expertOrder({{u"lotSize"_s, i}});
    QTRY_COMPARE(desk.server.heldCount(), 2);
    desk.settle();
    QCOMPARE(desk.server.count("POST", place), 2);
    for (int sent = 3; sent <= 5; ++sent) {
        desk.server.release(StubAnswer::json("{}"));
        QTRY_COMPARE(desk.server.count("POST", place), sent);
        QCOMPARE(desk.server.last("POST", place).json()["lotSize"_L1].toInt(), sent - 1);
    }
}

void TestTradeActions::anEndlessSymbolIsShortenedInTheLinesAlone()
{
    const QString symbol(100'000, u'x');
    const QString shown = QString(64, u'x') + u'…';
    Desk desk;
    desk.server.on("POST", place, StubAnswer::json("{}"));
    desk.server.on("POST", "/api/trades/close/t1", StubAnswer::json("{}"));
    desk.book.setTrades({QJsonObject{{u"id"_s, u"t1"_s}, {u"symbol"_s, symbol}}}, {});
    desk.actions.setAlgoTrading(true);
    desk.actions.quickTrade(symbol, u"BUY"_s, 1.0);
    QTRY_VERIFY(desk.said.contains(u"J Trade: One-click BUY "_s + shown + u" executed"_s));
    QCOMPARE(desk.server.last("POST", place).json()["symbol"_L1].toString(), symbol);
    desk.actions.expertOrder({{u"symbol"_s, symbol}, {u"type"_s, u"SELL"_s}, {u"lotSize"_s, 1}});
    QTRY_VERIFY(desk.said.contains(u"E Expert: SELL 1.00 "_s + shown + u" executed"_s));
    QCOMPARE(desk.server.last("POST", place).json()["symbol"_L1].toString(), symbol);
    desk.actions.expertCloseAll(symbol);
    QVERIFY(desk.said.contains(u"E Expert: Closing 1 position(s) on "_s + shown));
}

void TestTradeActions::whatWaitsIsDroppedWhenTheSwitchGoesOff()
{
    Desk desk;
    desk.server.on("POST", place, StubAnswer::held());
    desk.actions.setAlgoTrading(true);
    for (int i = 0; i < 400; ++i)
        desk.actions.expertOrder(parse(R"({"symbol":"EURUSD","type":"BUY","lotSize":1})"));
    QTRY_COMPARE(desk.server.heldCount(), 2);
    desk.said.clear();
    desk.actions.setAlgoTrading(false);
    QCOMPARE(desk.said,
        QStringList({u"E Expert: Algo Trading disabled"_s,
            u"E Expert: Algo Trading is OFF — 398 waiting request(s) not sent."_s}));
    desk.said.clear();
    while (desk.server.release(StubAnswer::json("{}"))) { }
    QTRY_COMPARE(desk.said.count(u"E Expert: BUY 1.00 EURUSD executed"_s), 2);
    desk.settle();
    QCOMPARE(desk.server.count("POST", place), 2);
    desk.actions.setAlgoTrading(true);
    desk.actions.expertOrder(parse(R"({"symbol":"GOLD"})"));
    QTRY_COMPARE(desk.server.count("POST", place), 3);
    QCOMPARE(desk.server.last("POST", place).json()["symbol"_L1].toString(), u"GOLD"_s);
}

void TestTradeActions::nothingIsSaidOfADropWhereNothingWaits()
{
    Desk desk;
    desk.server.on("POST", place, StubAnswer::held());
    desk.actions.setAlgoTrading(true);
    desk.actions.expertOrder(parse(R"({"symbol":"EURUSD"})"));
    desk.said.clear();
    desk.actions.setAlgoTrading(false);
    QCOMPARE(desk.said, QStringList({u"E Expert: Algo Trading disabled"_s}));
}

void TestTradeActions::aTradersOrderDoesNotWaitBehindThoseOfExperts()
{
    Desk desk;
    desk.server.on("POST", place, StubAnswer::held());
    desk.server.on("POST", "/api/trades/close/t1", StubAnswer::json("{}"));
    desk.actions.setAlgoTrading(true);
    for (int i = 0; i < 400; ++i)
        desk.actions.expertOrder(parse(R"({"symbol":"EURUSD"})"));
    desk.said.clear();
    desk.actions.closePosition(records::position("t1"));
    QTRY_COMPARE(desk.said.value(1), u"J Trade: Position closed"_s);
    QVERIFY(desk.server.count("POST", place) <= 2);
}

void TestTradeActions::anExpertsOrderThatWaitedTooLongIsNotSent()
{
    Desk desk;
    desk.server.on("POST", place, StubAnswer::held());
    desk.actions.setAlgoTrading(true);
    desk.actions.expertOrder(parse(R"({"symbol":"EURUSD"})"));
    desk.actions.expertOrder(parse(R"({"symbol":"EURUSD"})"));
    QTRY_COMPARE(desk.server.heldCount(), 2);
    desk.actions.expertRequests().setLongestWait(0);
    desk.actions.expertOrder(parse(R"({"symbol":"EURUSD"})"));
    desk.said.clear();
    desk.server.release(StubAnswer::message(u"No"_s, 400));
    QTRY_COMPARE(desk.said,
        QStringList({Desk::sound(SoundKind::Error), u"E Expert: Order failed: No"_s, u"accounts"_s,
            u"trades"_s, Desk::sound(SoundKind::Error),
            u"E Expert: Order failed: not sent: too many orders before it"_s, u"accounts"_s, u"trades"_s}));
    desk.settle();
    QCOMPARE(desk.server.count("POST", place), 2);
}

void TestTradeActions::anExpertsCloseIsNeverTooLate()
{
    Desk desk;
    desk.server.on("POST", place, StubAnswer::held());
    desk.actions.setAlgoTrading(true);
    desk.actions.expertOrder(parse(R"({"symbol":"EURUSD"})"));
    desk.actions.expertOrder(parse(R"({"symbol":"EURUSD"})"));
    QTRY_COMPARE(desk.server.heldCount(), 2);
    desk.actions.expertRequests().setLongestWait(0);
    desk.actions.expertCloseAll(u"GOLD"_s);
    desk.server.release(StubAnswer::json("{}"));
    QTRY_COMPARE(desk.server.count("POST", "/api/trades/close/t2"), 1);
}

void TestTradeActions::anOrderThatNeverLeftIsToldApart()
{
    Desk desk;
    // Accepts, and never says a word of the handshake.
    QTcpServer silent;
    QVERIFY(silent.listen(QHostAddress::LocalHost));
    TerminalSettings::instance().setServerUrl(u"https://127.0.0.1:%1"_s.arg(silent.serverPort()));
    desk.api.setLimits({.silence = 100});
    desk.actions.cancelOrder(records::pendingOrder("p1"));
    QTRY_COMPARE(desk.said,
        QStringList({Desk::sound(SoundKind::Error),
            u"J Trade: Cancel failed: not sent: no connection to the server"_s, u"trades"_s}));
}

void TestTradeActions::aDrippingAnswerEndsAndEverythingIsRead()
{
    Desk desk;
    desk.api.setLimits({.change = 500});
    desk.server.on("POST", place, StubAnswer::dripping(QByteArray(1'000'000, ' ')));
    desk.actions.quickTrade(u"EURUSD"_s, u"BUY"_s, 0.25);
    QTRY_VERIFY((desk.server.drip(), !desk.said.isEmpty()));
    QCOMPARE(desk.said,
        QStringList({Desk::sound(SoundKind::Error), u"J Trade: One-click order failed: "_s + timedOut})
            + everything);
}

void TestTradeActions::closeAllClosesEveryPositionOfTheSymbolAndSaysSoOnce()
{
    Desk desk;
    desk.server.on("POST", "/api/trades/close/t1", StubAnswer::held());
    desk.server.on("POST", "/api/trades/close/t3", StubAnswer::held());
    desk.server.on("POST", "/api/trades/close/t4", StubAnswer::held());
    desk.actions.setAlgoTrading(true);
    desk.said.clear();
    desk.actions.expertCloseAll(u"EURUSD"_s);
    QCOMPARE(desk.said,
        QStringList({Desk::sound(SoundKind::Close), u"E Expert: Closing 3 position(s) on EURUSD"_s}));
    QTRY_COMPARE(desk.server.heldCount(), 2);
    desk.server.release(StubAnswer::json("{}"));
    QTRY_COMPARE(desk.server.requests().size(), 3);
    QTRY_COMPARE(desk.server.heldCount(), 2);
    for (const char* id : {"t1", "t3", "t4"})
        QCOMPARE(desk.server.count("POST", "/api/trades/close/"_ba + id), 1);
}

void TestTradeActions::closeAllReadsEverythingAfterEachReplyAndTellsNoFailure()
{
    Desk desk;
    desk.server.on("POST", "/api/trades/close/t1", StubAnswer::json("{}"));
    desk.server.on("POST", "/api/trades/close/t3", StubAnswer::message(u"No"_s, 400));
    desk.server.on("POST", "/api/trades/close/t4", StubAnswer::closed());
    desk.actions.setAlgoTrading(true);
    desk.actions.expertCloseAll(u"EURUSD"_s);
    desk.said.clear();
    QStringList expected;
    for (int i = 0; i < 3; ++i)
        expected += {u"accounts"_s, u"trades"_s, u"history"_s};
    QTRY_COMPARE(desk.said, expected);
}

void TestTradeActions::closeAllWithoutPositionsIsSilent()
{
    Desk desk;
    desk.actions.setAlgoTrading(true);
    desk.said.clear();
    desk.actions.expertCloseAll(u"SILVER"_s);
    desk.actions.expertCloseAll(u"OIL"_s); // its only position has no usable id
    desk.settle();
    QCOMPARE(desk.said, QStringList());
    QCOMPARE(desk.server.requests().size(), 1);
}

void TestTradeActions::closeAllIsRefusedWhileTheSwitchIsOff()
{
    Desk desk;
    desk.actions.expertCloseAll(u"EURUSD"_s);
    QCOMPARE(desk.said, QStringList({u"E Expert: Algo Trading is OFF — close ignored."_s}));
}

void TestTradeActions::strangeSymbolsAreOneLineOfText()
{
    const QString strange = u"%2\n%1"_s;
    Desk desk;
    desk.server.on("POST", place, StubAnswer::json("{}"));
    desk.book.setTrades({QJsonObject({{u"id"_s, u"t"_s}, {u"symbol"_s, strange}})}, {});
    desk.actions.setAlgoTrading(true);
    desk.said.clear();
    desk.actions.expertCloseAll(strange);
    QCOMPARE(desk.said.value(1), u"E Expert: Closing 1 position(s) on %2 %1"_s);
    QTRY_COMPARE(desk.said.size(), 5);
    desk.said.clear();
    desk.actions.quickTrade(strange, u"SELL"_s, 1.0);
    QTRY_COMPARE(desk.said.value(1), u"J Trade: One-click SELL %2 %1 executed"_s);
    QCOMPARE(desk.server.last("POST", place).json()["symbol"_L1].toString(), strange);
    desk.said.clear();
    desk.actions.expertOrder({{u"symbol"_s, strange}, {u"type"_s, u"BUY"_s}, {u"lotSize"_s, u"2"_s}});
    QTRY_COMPARE(desk.said.value(1), u"E Expert: BUY 2.00 %2 %1 executed"_s);
}

void TestTradeActions::twoDragsAnsweredInTheOtherOrderKeepTheirOwnWords()
{
    Desk desk;
    desk.server.on("PUT", "/api/trades/modify/t1", StubAnswer::held());
    desk.server.on("PUT", "/api/trades/modify/p1", StubAnswer::held());
    desk.actions.moveLevel(u"t1"_s, u"TP"_s, 1.5);
    desk.actions.moveLevel(u"p1"_s, u"PRICE"_s, 1.25);
    QTRY_COMPARE(desk.server.heldCount(), 2);
    desk.server.release(StubAnswer::json("{}"), "/api/trades/modify/p1");
    QTRY_COMPARE(desk.said.size(), 3);
    desk.server.release(StubAnswer::message(u"Too near"_s, 422), "/api/trades/modify/t1");
    QTRY_COMPARE(desk.said,
        QStringList({Desk::sound(SoundKind::Open), u"J Trade: PRICE moved to 1.25"_s, u"trades"_s,
            Desk::sound(SoundKind::Error), u"J Trade: Modify failed: Too near"_s, u"trades"_s}));
}

void TestTradeActions::repliesInTheOtherOrderKeepTheirOwnWords()
{
    Desk desk;
    desk.server.on("PUT", "/api/trades/modify/t1", StubAnswer::held());
    desk.server.on("POST", place, StubAnswer::held());
    desk.actions.moveLevel(u"t1"_s, u"TP"_s, 1.5);
    desk.actions.quickTrade(u"GOLD"_s, u"BUY"_s, 1.0);
    QTRY_COMPARE(desk.server.heldCount(), 2);
    desk.server.release(StubAnswer::message(u"No money"_s, 400), place);
    QTRY_COMPARE(desk.said.value(1), u"J Trade: One-click order failed: No money"_s);
    desk.said.clear();
    desk.server.release(StubAnswer::json("{}"), "/api/trades/modify/t1");
    QTRY_COMPARE(desk.said.value(1), u"J Trade: TP moved to 1.5"_s);
}

void TestTradeActions::repliesAfterTheEndDoNoHarm()
{
    StubHttpServer server;
    ApiClient api{TerminalSettings::instance()};
    AccountBook book;
    TerminalSettings::instance().setServerUrl(server.url());
    book.selectAccount(u"acc-1"_s);
    server.on("POST", place, StubAnswer::held());
    auto actions = std::make_unique<TradeActions>(api, book);
    actions->quickTrade(u"GOLD"_s, u"BUY"_s, 1.0);
    QTRY_COMPARE(server.heldCount(), 1);
    QSignalSpy lines(actions.get(), &TradeActions::journalLine);
    actions.reset();
    server.release(StubAnswer::json("{}"));
    QTRY_COMPARE(api.findChildren<QNetworkReply*>().size(), 0);
    QCOMPARE(lines.size(), 0);
}

TAVORAN_TEST(TestTradeActions)
#include "tst_TradeActions.moc"
