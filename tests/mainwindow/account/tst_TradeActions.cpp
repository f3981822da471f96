#include "TradeActionsFixture.h"
#include "support/ParseJson.h"
#include "support/TestMain.h"

#include <QTcpServer>

using namespace Qt::StringLiterals;
using fixtures::ActingDesk;
using fixtures::addFailures;
using fixtures::everything;
using fixtures::parse;
using fixtures::placePath;
using fixtures::sound;
using fixtures::timedOut;

class TestTradeActions final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void closingReportsAndReadsEverything()
    {
        ActingDesk desk;
        desk.server.on("POST", "/api/trades/close/t1", StubAnswer::json("{}"));
        desk.actions.closePosition(records::position("t1"));
        QTRY_COMPARE(desk.said,
            QStringList({sound(SoundKind::Close), u"J Trade: Position closed"_s, u"accounts"_s, u"trades"_s,
                u"history"_s}));
        QCOMPARE(desk.server.last("POST", "/api/trades/close/t1").body, QByteArray("{}"));
    }

    void closingFails_data() { addFailures(); }

    void closingFails()
    {
        QFETCH(StubAnswer, answer);
        ActingDesk desk;
        desk.server.on("POST", "/api/trades/close/t1", answer);
        desk.actions.closePosition(records::position("t1"));
        desk.expectFailure(u"J Trade: Close failed: "_s, everything);
    }

    void whatComesWithASuccessIsIgnoredOnPurpose_data()
    {
        QTest::addColumn<StubAnswer>("answer");
        QTest::newRow("nothing") << StubAnswer::json("");
        QTest::newRow("no content") << StubAnswer::json("", 204);
        QTest::newRow("a list") << StubAnswer::json("[1]", 201);
        QTest::newRow("a page") << StubAnswer::html("<h1>Done</h1>", 200);
        QTest::newRow("a message") << StubAnswer::message(u"Good luck"_s, 200);
    }
    void whatComesWithASuccessIsIgnoredOnPurpose()
    {
        QFETCH(StubAnswer, answer);
        ActingDesk desk;
        desk.server.on("POST", "/api/trades/close/t1", answer);
        desk.actions.closePosition(records::position("t1"));
        QTRY_COMPARE(desk.said.value(1), u"J Trade: Position closed"_s);
    }

    void cancellingReportsAndReadsTheTrades()
    {
        ActingDesk desk;
        desk.server.on("POST", "/api/trades/cancel/p1", StubAnswer::json("{}"));
        desk.actions.cancelOrder(records::pendingOrder("p1"));
        QTRY_COMPARE(desk.said,
            QStringList({sound(SoundKind::Close), u"J Trade: Pending order cancelled"_s, u"trades"_s}));
        QCOMPARE(desk.server.last("POST", "/api/trades/cancel/p1").body, QByteArray("{}"));
    }

    void cancellingFails_data() { addFailures(); }

    void cancellingFails()
    {
        QFETCH(StubAnswer, answer);
        ActingDesk desk;
        desk.server.on("POST", "/api/trades/cancel/p1", answer);
        desk.actions.cancelOrder(records::pendingOrder("p1"));
        desk.expectFailure(u"J Trade: Cancel failed: "_s, {u"trades"_s});
    }

    void movingALevelSendsTheWholeSet_data()
    {
        QTest::addColumn<QString>("id");
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QByteArray>("body");
        QTest::newRow("stop") << u"t1"_s << u"SL"_s << QByteArray(R"({"stopLoss":1.06})");
        QTest::newRow("target") << u"t1"_s << u"TP"_s << QByteArray(R"({"stopLoss":1.05,"takeProfit":1.06})");
        QTest::newRow("entry") << u"p1"_s << u"PRICE"_s
                               << QByteArray(R"({"stopLoss":1.0,"pendingPrice":1.06})");
    }
    void movingALevelSendsTheWholeSet()
    {
        QFETCH(QString, id);
        QFETCH(QString, kind);
        QFETCH(QByteArray, body);
        ActingDesk desk;
        const QByteArray path = "/api/trades/modify/" + id.toUtf8();
        desk.server.on("PUT", path, StubAnswer::json("{}"));
        desk.actions.moveLevel(id, kind, 1.06);
        QTRY_COMPARE(desk.said,
            QStringList({sound(SoundKind::Open), u"J Trade: %1 moved to 1.06"_s.arg(kind), u"trades"_s}));
        QCOMPARE(desk.server.last("PUT", path).json(), parse(body));
    }

    void movingIsReportedInTheShortestForm_data()
    {
        QTest::addColumn<double>("price");
        QTest::addColumn<QString>("text");
        QTest::newRow("five decimals") << 1.07505 << u"1.07505"_s;
        QTest::newRow("no needless zeros") << 1.10000 << u"1.1"_s;
        QTest::newRow("all of a long price") << 65123.456 << u"65123.456"_s;
        QTest::newRow("a round price has no exponent") << 100000.0 << u"100000"_s;
        QTest::newRow("nor has a small one") << 0.00002 << u"0.00002"_s;
    }
    void movingIsReportedInTheShortestForm()
    {
        QFETCH(double, price);
        QFETCH(QString, text);
        ActingDesk desk;
        desk.server.on("PUT", "/api/trades/modify/t1", StubAnswer::json("{}"));
        desk.actions.moveLevel(u"t1"_s, u"SL"_s, price);
        QTRY_COMPARE(desk.said.value(1), u"J Trade: SL moved to "_s + text);
    }

    void movingFails_data() { addFailures(); }

    void movingFails()
    {
        QFETCH(StubAnswer, answer);
        ActingDesk desk;
        desk.server.on("PUT", "/api/trades/modify/t1", answer);
        desk.actions.moveLevel(u"t1"_s, u"SL"_s, 1.06);
        desk.expectFailure(u"J Trade: Modify failed: "_s, {u"trades"_s});
    }

    void movingAnUnknownTradeSendsNothing()
    {
        ActingDesk desk;
        desk.actions.moveLevel(u"gone"_s, u"SL"_s, 1.06);
        desk.actions.quickTrade(u"EURUSD"_s, u"BUY"_s, 1.0);
        QTRY_COMPARE(desk.server.requests().size(), 1);
        QCOMPARE(desk.server.requests().first().path(), placePath);
    }

    void anIdInBothListsMeansThePosition()
    {
        ActingDesk desk;
        desk.book.setTrades({records::position("x").takeProfit(2)}, {records::pendingOrder("x").awaits(1.5)});
        desk.actions.moveLevel(u"x"_s, u"SL"_s, 1.0);
        QTRY_COMPARE(desk.server.count("PUT", "/api/trades/modify/x"), 1);
        QCOMPARE(desk.server.last("PUT", "/api/trades/modify/x").json(),
            parse(R"({"stopLoss":1.0,"takeProfit":2})"));
    }

    void aSecondDragDoesNotWaitForTheFirst()
    {
        ActingDesk desk;
        desk.server.on("PUT", "/api/trades/modify/t1", StubAnswer::held());
        desk.actions.moveLevel(u"t1"_s, u"SL"_s, 1.06);
        desk.actions.moveLevel(u"t1"_s, u"SL"_s, 1.07);
        QTRY_COMPARE(desk.server.heldCount(), 2);
    }

    void idsNeverReachAnotherPath_data()
    {
        QTest::addColumn<QJsonObject>("trade");
        QTest::addColumn<QByteArray>("target");
        QTest::newRow("none") << QJsonObject() << QByteArray();
        QTest::newRow("a number") << QJsonObject(records::position(5)) << QByteArray();
        QTest::newRow("here") << QJsonObject(records::position(".")) << QByteArray();
        QTest::newRow("above") << QJsonObject(records::position("..")) << QByteArray();
        QTest::newRow("a slash") << QJsonObject(records::position("../place")) << QByteArray("..%2Fplace");
        QTest::newRow("a query") << QJsonObject(records::position("a?b#c")) << QByteArray("a%3Fb%23c");
    }
    void idsNeverReachAnotherPath()
    {
        QFETCH(QJsonObject, trade);
        QFETCH(QByteArray, target);
        ActingDesk desk;
        desk.actions.closePosition(trade);
        if (target.isEmpty()) {
            QCOMPARE(desk.said,
                QStringList(
                    {sound(SoundKind::Error), u"J Trade: Close failed: this trade has no usable id"_s}));
            desk.actions.cancelOrder(trade);
            QCOMPARE(desk.said.last(), u"J Trade: Cancel failed: this trade has no usable id"_s);
            desk.actions.moveLevel(u".."_s, u"SL"_s, 1.0);
            QCOMPARE(desk.said.last(), u"J Trade: Modify failed: this trade has no usable id"_s);
            desk.actions.moveLevel(QString(), u"SL"_s, 1.0);
            QCOMPARE(desk.said.count(u"J Trade: Modify failed: this trade has no usable id"_s), 2);
            desk.settle();
            QCOMPARE(desk.asked(), 0);
            return;
        }
        QTRY_COMPARE(desk.server.requests().size(), 1);
        QCOMPARE(desk.server.requests().first().target, "/api/trades/close/" + target);
        desk.actions.cancelOrder(trade);
        QTRY_COMPARE(desk.server.requests().size(), 2);
        QCOMPARE(desk.server.requests().last().target, "/api/trades/cancel/" + target);
        desk.book.setTrades({trade}, {});
        desk.actions.moveLevel(trade["id"_L1].toString(), u"SL"_s, 1.0);
        QTRY_COMPARE(desk.server.requests().size(), 3);
        QCOMPARE(desk.server.requests().last().target, "/api/trades/modify/" + target);
    }

    void quickTradeSendsAMarketOrder_data()
    {
        QTest::addColumn<QString>("side");
        QTest::newRow("sell") << u"SELL"_s;
        QTest::newRow("buy") << u"BUY"_s;
    }
    void quickTradeSendsAMarketOrder()
    {
        QFETCH(QString, side);
        ActingDesk desk;
        desk.server.on("POST", placePath, StubAnswer::json("{}"));
        desk.actions.quickTrade(u"EURUSD"_s, side, 0.25);
        QTRY_COMPARE(desk.said,
            QStringList({sound(SoundKind::Open), u"J Trade: One-click %1 EURUSD executed"_s.arg(side),
                u"accounts"_s, u"trades"_s}));
        QCOMPARE(desk.placed(),
            QJsonObject(records::marketOrder("EURUSD").buy(0.25).with("type", side).account("acc-1")));
    }

    void quickTradeFails_data() { addFailures(); }

    void quickTradeFails()
    {
        QFETCH(StubAnswer, answer);
        ActingDesk desk;
        desk.server.on("POST", placePath, answer);
        desk.actions.quickTrade(u"EURUSD"_s, u"BUY"_s, 0.25);
        desk.expectFailure(u"J Trade: One-click order failed: "_s, {u"accounts"_s, u"trades"_s});
    }

    void quickTradeIgnoresTheAlgoSwitch()
    {
        ActingDesk desk;
        QVERIFY(!desk.actions.isAlgoTradingOn());
        desk.actions.quickTrade(u"EURUSD"_s, u"BUY"_s, 0.25);
        QTRY_COMPARE(desk.server.count("POST", placePath), 1);
    }

    void quickTradeNeedsAnAccount()
    {
        ActingDesk desk;
        desk.book.selectAccount({});
        desk.actions.quickTrade(u"EURUSD"_s, u"BUY"_s, 0.25);
        desk.book.selectAccount(u"acc-2"_s);
        desk.actions.quickTrade(u"GOLD"_s, u"BUY"_s, 0.25);
        QTRY_COMPARE(desk.server.requests().size(), 1);
        QCOMPARE(desk.placed()["symbol"_L1].toString(), u"GOLD"_s);
    }

    void anEndlessSymbolIsShortenedInTheLinesAlone()
    {
        const QString symbol(100'000, u'x');
        const QString shown = QString(64, u'x') + u'…';
        ActingDesk desk;
        desk.server.on("POST", placePath, StubAnswer::json("{}"));
        desk.server.on("POST", "/api/trades/close/t1", StubAnswer::json("{}"));
        desk.book.setTrades({records::position("t1").symbol(symbol)}, {});
        desk.actions.setAlgoTrading(true);
        desk.actions.quickTrade(symbol, u"BUY"_s, 1.0);
        QTRY_VERIFY(desk.said.contains(u"J Trade: One-click BUY "_s + shown + u" executed"_s));
        QCOMPARE(desk.placed()["symbol"_L1].toString(), symbol);
        desk.actions.expertOrder(records::marketOrder(symbol).sell(1));
        QTRY_VERIFY(desk.said.contains(u"E Expert: SELL 1.00 "_s + shown + u" executed"_s));
        QCOMPARE(desk.placed()["symbol"_L1].toString(), symbol);
        desk.actions.expertCloseAll(symbol);
        QVERIFY(desk.said.contains(u"E Expert: Closing 1 position(s) on "_s + shown));
    }

    void anOrderThatNeverLeftIsToldApart()
    {
        ActingDesk desk;
        // Accepts, and never says a word of the handshake.
        QTcpServer silent;
        QVERIFY(silent.listen(QHostAddress::LocalHost));
        TerminalSettings::instance().setServerUrl(u"https://127.0.0.1:%1"_s.arg(silent.serverPort()));
        desk.api.setLimits({.silence = 100});
        desk.actions.cancelOrder(records::pendingOrder("p1"));
        QTRY_COMPARE(desk.said,
            QStringList({sound(SoundKind::Error),
                u"J Trade: Cancel failed: not sent: no connection to the server (https://127.0.0.1:%1)"_s.arg(
                    silent.serverPort()),
                u"trades"_s}));
    }

    void aDrippingAnswerEndsAndEverythingIsRead()
    {
        ActingDesk desk;
        desk.api.setLimits({.change = 500});
        desk.server.on("POST", placePath, StubAnswer::dripping(QByteArray(1'000'000, ' ')));
        desk.actions.quickTrade(u"EURUSD"_s, u"BUY"_s, 0.25);
        QTRY_VERIFY((desk.server.drip(), !desk.said.isEmpty()));
        QCOMPARE(desk.said,
            QStringList({sound(SoundKind::Error), u"J Trade: One-click order failed: "_s + timedOut})
                + everything);
    }

    void strangeSymbolsAreOneLineOfText()
    {
        const QString strange = u"%2\n%1"_s;
        ActingDesk desk;
        desk.server.on("POST", placePath, StubAnswer::json("{}"));
        desk.book.setTrades({records::position("t").symbol(strange)}, {});
        desk.actions.setAlgoTrading(true);
        desk.said.clear();
        desk.actions.expertCloseAll(strange);
        QCOMPARE(desk.said.value(1), u"E Expert: Closing 1 position(s) on %2 %1"_s);
        QTRY_COMPARE(desk.said.size(), 5);
        desk.said.clear();
        desk.actions.quickTrade(strange, u"SELL"_s, 1.0);
        QTRY_COMPARE(desk.said.value(1), u"J Trade: One-click SELL %2 %1 executed"_s);
        QCOMPARE(desk.placed()["symbol"_L1].toString(), strange);
        desk.said.clear();
        desk.actions.expertOrder(records::marketOrder(strange).buy("2"));
        QTRY_COMPARE(desk.said.value(1), u"E Expert: BUY 2.00 %2 %1 executed"_s);
    }

    void repliesInTheOtherOrderKeepTheirOwnWords()
    {
        ActingDesk desk;
        desk.server.on("PUT", "/api/trades/modify/t1", StubAnswer::held());
        desk.server.on("POST", placePath, StubAnswer::held());
        desk.actions.moveLevel(u"t1"_s, u"TP"_s, 1.5);
        desk.actions.quickTrade(u"GOLD"_s, u"BUY"_s, 1.0);
        QTRY_COMPARE(desk.server.heldCount(), 2);
        desk.server.release(StubAnswer::message(u"No money"_s, 400), placePath);
        QTRY_COMPARE(desk.said.value(1), u"J Trade: One-click order failed: No money"_s);
        desk.said.clear();
        desk.server.release(StubAnswer::json("{}"), "/api/trades/modify/t1");
        QTRY_COMPARE(desk.said.value(1), u"J Trade: TP moved to 1.5"_s);
    }

    void twoDragsAnsweredInTheOtherOrderKeepTheirOwnWords()
    {
        ActingDesk desk;
        desk.server.on("PUT", "/api/trades/modify/t1", StubAnswer::held());
        desk.server.on("PUT", "/api/trades/modify/p1", StubAnswer::held());
        desk.actions.moveLevel(u"t1"_s, u"TP"_s, 1.5);
        desk.actions.moveLevel(u"p1"_s, u"PRICE"_s, 1.25);
        QTRY_COMPARE(desk.server.heldCount(), 2);
        desk.server.release(StubAnswer::json("{}"), "/api/trades/modify/p1");
        QTRY_COMPARE(desk.said.size(), 3);
        desk.server.release(StubAnswer::message(u"Too near"_s, 422), "/api/trades/modify/t1");
        QTRY_COMPARE(desk.said,
            QStringList({sound(SoundKind::Open), u"J Trade: PRICE moved to 1.25"_s, u"trades"_s,
                sound(SoundKind::Error), u"J Trade: Modify failed: Too near"_s, u"trades"_s}));
    }

    void repliesAfterTheEndDoNoHarm()
    {
        ActingDesk desk;
        desk.server.on("POST", placePath, StubAnswer::held());
        auto actions = std::make_unique<TradeActions>(desk.api, desk.book);
        actions->quickTrade(u"GOLD"_s, u"BUY"_s, 1.0);
        QTRY_COMPARE(desk.server.heldCount(), 1);
        QSignalSpy lines(actions.get(), &TradeActions::journalLine);
        actions.reset();
        desk.server.release(StubAnswer::json("{}"));
        QTRY_VERIFY(!desk.isWaiting());
        QCOMPARE(lines.size(), 0);
    }
};

TAVORAN_TEST(TestTradeActions)
#include "tst_TradeActions.moc"
