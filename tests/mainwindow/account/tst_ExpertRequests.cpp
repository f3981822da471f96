#include "TradeActionsFixture.h"
#include "support/TestMain.h"

using namespace Qt::StringLiterals;
using fixtures::ActingDesk;
using fixtures::addFailures;
using fixtures::everything;
using fixtures::placePath;
using fixtures::sound;

namespace {

const QJsonObject order = records::marketOrder("EURUSD").buy(1);
const QJsonObject goldOrder = records::marketOrder("GOLD");

/// The switch is on.
struct ExpertDesk final : ActingDesk {
    ExpertDesk()
    {
        actions.setAlgoTrading(true);
        said.clear();
    }
};

} // namespace

class TestExpertRequests final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void algoSwitchIsOffAtStartAndTellsEachChange()
    {
        ActingDesk desk;
        QVERIFY(!desk.actions.isAlgoTradingOn());
        desk.actions.setAlgoTrading(true);
        desk.actions.setAlgoTrading(true);
        desk.actions.setAlgoTrading(false);
        QCOMPARE(desk.said,
            QStringList({u"E Expert: Algo Trading enabled"_s, u"E Expert: Algo Trading disabled"_s}));
    }

    void expertOrdersAreRefusedEveryTimeWhileTheSwitchIsOff()
    {
        ActingDesk desk;
        const QString refusal = u"E Expert: Algo Trading is OFF — order ignored. Enable it in the toolbar."_s;
        desk.actions.expertOrder(order);
        desk.actions.expertOrder(order);
        QCOMPARE(desk.said, QStringList({refusal, refusal}));
        desk.actions.setAlgoTrading(true);
        desk.actions.quickTrade(u"GOLD"_s, u"BUY"_s, 1.0);
        QTRY_COMPARE(desk.server.requests().size(), 1);
        QCOMPARE(desk.placed()["symbol"_L1].toString(), u"GOLD"_s);
    }

    void expertOrdersGetTheAccountAndAreReported()
    {
        ExpertDesk desk;
        desk.server.on("POST", placePath, StubAnswer::json("{}"));
        const auto sale = records::marketOrder("EURUSD").sell(0.1).stopLoss(1.2);
        desk.actions.expertOrder(sale);
        QTRY_COMPARE(desk.said,
            QStringList({sound(SoundKind::Open), u"E Expert: SELL 0.10 EURUSD executed"_s, u"accounts"_s,
                u"trades"_s}));
        QCOMPARE(desk.placed(), QJsonObject(records::Trade(sale).account("acc-1")));
    }

    void expertOrdersNeverNameAnotherAccount()
    {
        ExpertDesk desk;
        desk.actions.expertOrder(records::marketOrder("EURUSD").account("of somebody else"));
        QTRY_COMPARE(desk.server.count("POST", placePath), 1);
        QCOMPARE(desk.placed(), QJsonObject(records::marketOrder("EURUSD").account("acc-1")));
    }

    void expertOrdersFail_data() { addFailures(); }

    void expertOrdersFail()
    {
        QFETCH(StubAnswer, answer);
        ExpertDesk desk;
        desk.server.on("POST", placePath, answer);
        desk.actions.expertOrder(order);
        desk.expectFailure(u"E Expert: Order failed: "_s, {u"accounts"_s, u"trades"_s});
    }

    void expertOrdersNeedAnAccount()
    {
        ExpertDesk desk;
        desk.book.selectAccount({});
        desk.said.clear();
        desk.actions.expertOrder(order);
        QCOMPARE(desk.said, QStringList());
        desk.book.selectAccount(u"acc-2"_s);
        desk.actions.expertOrder(goldOrder);
        QTRY_COMPARE(desk.server.requests().size(), 1);
        QCOMPARE(desk.placed()["symbol"_L1].toString(), u"GOLD"_s);
    }

    void ordersOfExpertsInFlightAreFewAndGoOutInTheirOrder()
    {
        ExpertDesk desk;
        desk.server.on("POST", placePath, StubAnswer::held());
        for (int i = 0; i < 5; ++i)
            desk.actions.expertOrder({{u"lotSize"_s, i}});
        QTRY_COMPARE(desk.server.heldCount(), 2);
        desk.settle();
        QCOMPARE(desk.server.count("POST", placePath), 2);
        for (int sent = 3; sent <= 5; ++sent) {
            desk.server.release(StubAnswer::json("{}"));
            QTRY_COMPARE(desk.server.count("POST", placePath), sent);
            QCOMPARE(desk.placed()["lotSize"_L1].toInt(), sent - 1);
        }
    }

    void whatWaitsIsDroppedWhenTheSwitchGoesOff()
    {
        ExpertDesk desk;
        desk.server.on("POST", placePath, StubAnswer::held());
        for (int i = 0; i < 400; ++i)
            desk.actions.expertOrder(order);
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
        QCOMPARE(desk.server.count("POST", placePath), 2);
        desk.actions.setAlgoTrading(true);
        desk.actions.expertOrder(goldOrder);
        QTRY_COMPARE(desk.server.count("POST", placePath), 3);
        QCOMPARE(desk.placed()["symbol"_L1].toString(), u"GOLD"_s);
    }

    void nothingIsSaidOfADropWhereNothingWaits()
    {
        ExpertDesk desk;
        desk.server.on("POST", placePath, StubAnswer::held());
        desk.actions.expertOrder(order);
        desk.said.clear();
        desk.actions.setAlgoTrading(false);
        QCOMPARE(desk.said, QStringList({u"E Expert: Algo Trading disabled"_s}));
    }

    void aTradersOrderDoesNotWaitBehindThoseOfExperts()
    {
        ExpertDesk desk;
        desk.server.on("POST", placePath, StubAnswer::held());
        desk.server.on("POST", "/api/trades/close/t1", StubAnswer::json("{}"));
        for (int i = 0; i < 400; ++i)
            desk.actions.expertOrder(order);
        desk.said.clear();
        desk.actions.closePosition(records::position("t1"));
        QTRY_COMPARE(desk.said.value(1), u"J Trade: Position closed"_s);
        QVERIFY(desk.server.count("POST", placePath) <= 2);
    }

    void anExpertsOrderThatWaitedTooLongIsNotSent()
    {
        ExpertDesk desk;
        desk.server.on("POST", placePath, StubAnswer::held());
        desk.actions.expertOrder(order);
        desk.actions.expertOrder(order);
        QTRY_COMPARE(desk.server.heldCount(), 2);
        desk.actions.expertRequests().setLongestWait(0);
        desk.actions.expertOrder(order);
        desk.said.clear();
        desk.server.release(StubAnswer::message(u"No"_s, 400));
        QTRY_COMPARE(desk.said,
            QStringList({sound(SoundKind::Error), u"E Expert: Order failed: No"_s, u"accounts"_s, u"trades"_s,
                sound(SoundKind::Error), u"E Expert: Order failed: not sent: too many orders before it"_s,
                u"accounts"_s, u"trades"_s}));
        desk.settle();
        QCOMPARE(desk.server.count("POST", placePath), 2);
    }

    void anExpertsCloseIsNeverTooLate()
    {
        ExpertDesk desk;
        desk.server.on("POST", placePath, StubAnswer::held());
        desk.actions.expertOrder(order);
        desk.actions.expertOrder(order);
        QTRY_COMPARE(desk.server.heldCount(), 2);
        desk.actions.expertRequests().setLongestWait(0);
        desk.actions.expertCloseAll(u"GOLD"_s);
        desk.server.release(StubAnswer::json("{}"));
        QTRY_COMPARE(desk.server.count("POST", "/api/trades/close/t2"), 1);
    }

    void closeAllClosesEveryPositionOfTheSymbolAndSaysSoOnce()
    {
        ExpertDesk desk;
        desk.server.on("POST", "/api/trades/close/t1", StubAnswer::held());
        desk.server.on("POST", "/api/trades/close/t3", StubAnswer::held());
        desk.server.on("POST", "/api/trades/close/t4", StubAnswer::held());
        desk.actions.expertCloseAll(u"EURUSD"_s);
        QCOMPARE(desk.said,
            QStringList({sound(SoundKind::Close), u"E Expert: Closing 3 position(s) on EURUSD"_s}));
        QTRY_COMPARE(desk.server.heldCount(), 2);
        desk.server.release(StubAnswer::json("{}"));
        QTRY_COMPARE(desk.server.requests().size(), 3);
        QTRY_COMPARE(desk.server.heldCount(), 2);
        for (const char* id : {"t1", "t3", "t4"})
            QCOMPARE(desk.server.count("POST", "/api/trades/close/"_ba + id), 1);
    }

    void closeAllReadsEverythingAfterEachReplyAndTellsNoFailure()
    {
        ExpertDesk desk;
        desk.server.on("POST", "/api/trades/close/t1", StubAnswer::json("{}"));
        desk.server.on("POST", "/api/trades/close/t3", StubAnswer::message(u"No"_s, 400));
        desk.server.on("POST", "/api/trades/close/t4", StubAnswer::closed());
        desk.actions.expertCloseAll(u"EURUSD"_s);
        desk.said.clear();
        QStringList expected;
        for (int i = 0; i < 3; ++i)
            expected += everything;
        QTRY_COMPARE(desk.said, expected);
    }

    void closeAllWithoutPositionsIsSilent()
    {
        ExpertDesk desk;
        desk.actions.expertCloseAll(u"SILVER"_s);
        desk.actions.expertCloseAll(u"OIL"_s); // its only position has no usable id
        desk.settle();
        QCOMPARE(desk.said, QStringList());
        QCOMPARE(desk.asked(), 0);
    }

    void closeAllIsRefusedWhileTheSwitchIsOff()
    {
        ActingDesk desk;
        desk.actions.expertCloseAll(u"EURUSD"_s);
        QCOMPARE(desk.said, QStringList({u"E Expert: Algo Trading is OFF — close ignored."_s}));
    }
};

TAVORAN_TEST(TestExpertRequests)
#include "tst_ExpertRequests.moc"
