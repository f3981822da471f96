#include "mainwindow/account/OrderEvents.h"
#include "support/ParseJson.h"
#include "support/TestMain.h"

using namespace Qt::StringLiterals;
using fixtures::parse;

namespace {

constexpr int Silent = -1;

int soundOf(const OrderReaction& reaction)
{
    return reaction.sound ? int(*reaction.sound) : Silent;
}

QString balloonOf(const OrderReaction& reaction)
{
    if (!reaction.balloon)
        return {};
    const Balloon& balloon = *reaction.balloon;
    return u"%1|%2|%3|%4"_s.arg(balloon.title, balloon.text,
        balloon.kind == Balloon::Kind::Critical ? u"critical"_s : u"information"_s,
        QString::number(balloon.milliseconds));
}

} // namespace

class tst_OrderReaction final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void ordersEventSaysPlaysAndShows_data()
    {
        QTest::addColumn<QByteArray>("event");
        QTest::addColumn<QString>("journal");
        QTest::addColumn<QString>("expert");
        QTest::addColumn<int>("sound");
        QTest::addColumn<QString>("balloon");
        const auto row = [](const char* name, const char* event, const QString& journal,
                             const QString& expert, int sound, const QString& balloon) {
            QTest::newRow(name) << QByteArray(event) << journal << expert << sound << balloon;
        };
        const int fill = int(SoundKind::Fill);
        const int close = int(SoundKind::Close);
        row("neither filled nor closed", "{}", u"Orders changed — refreshing"_s, u"Order state changed"_s,
            Silent, {});
        row("filled", R"({"filled":true,"accountId":"abcdefghijkl"})", u"Orders changed — refreshing"_s,
            u"Pending order filled"_s, fill,
            u"Order Filled|A pending order on abcdefgh was filled.|information|8000"_s);
        row("filled with a reason", R"({"filled":true,"closeReason":"SL","accountId":"a"})",
            u"Orders changed (SL) — refreshing"_s, u"Pending order filled"_s, fill,
            u"Order Filled|A pending order on a was filled.|information|8000"_s);
        row("stop loss", R"({"closeReason":"SL"})", u"Orders changed (SL) — refreshing"_s,
            u"Position closed (SL)"_s, fill,
            u"Position Closed (SL)|A position hit its SL.|information|8000"_s);
        row("take profit", R"({"closeReason":"TP","filled":false})", u"Orders changed (TP) — refreshing"_s,
            u"Position closed (TP)"_s, fill,
            u"Position Closed (TP)|A position hit its TP.|information|8000"_s);
        row("any other reason", R"({"closeReason":"MANUAL"})", u"Orders changed (MANUAL) — refreshing"_s,
            u"Position closed (MANUAL)"_s, close, {});
        row("case matters", R"({"closeReason":"sl"})", u"Orders changed (sl) — refreshing"_s,
            u"Position closed (sl)"_s, close, {});
        row("blanks matter", R"({"closeReason":"SL "})", u"Orders changed (SL ) — refreshing"_s,
            u"Position closed (SL )"_s, close, {});
        row("wrong types", R"({"closeReason":5,"filled":"true"})", u"Orders changed — refreshing"_s,
            u"Order state changed"_s, Silent, {});
    }
    void ordersEventSaysPlaysAndShows()
    {
        QFETCH(QByteArray, event);
        const OrderReaction reaction = reactionToOrders(parse(event));
        QTEST(reaction.journal, "journal");
        QTEST(reaction.expert, "expert");
        QTEST(soundOf(reaction), "sound");
        QTEST(balloonOf(reaction), "balloon");
    }

    void accountEventSaysPlaysAndShows_data()
    {
        QTest::addColumn<QByteArray>("event");
        QTest::addColumn<QString>("journal");
        QTest::addColumn<int>("sound");
        QTest::addColumn<QString>("balloon");
        QTest::newRow("failed")
            << QByteArray(R"({"accountId":"a1","status":"FAILED"})")
            << u"Account a1 status changed to FAILED"_s << int(SoundKind::Error)
            << u"Account Failed|An account breached its risk limit and was closed.|critical|12000"_s;
        QTest::newRow("passed")
            << QByteArray(R"({"accountId":"a1","status":"PASSED"})")
            << u"Account a1 status changed to PASSED"_s << Silent
            << u"Challenge Passed|An account passed its target — pending review.|information|12000"_s;
        QTest::newRow("any other status") << QByteArray(R"({"accountId":"%2","status":"failed"})")
                                          << u"Account %2 status changed to failed"_s << Silent << QString();
    }
    void accountEventSaysPlaysAndShows()
    {
        QFETCH(QByteArray, event);
        const OrderReaction reaction = reactionToAccount(parse(event), true);
        QTEST(reaction.journal, "journal");
        QTEST(soundOf(reaction), "sound");
        QTEST(balloonOf(reaction), "balloon");
    }

    void failedAccountWithoutTrayStaysSilentOnPurpose()
    {
        for (const char* status : {"FAILED", "PASSED"}) {
            const QJsonObject event{{u"accountId"_s, u"a"_s}, {u"status"_s, QString::fromLatin1(status)}};
            const OrderReaction reaction = reactionToAccount(event, false);
            QVERIFY(!reaction.journal.isEmpty());
            QCOMPARE(soundOf(reaction), Silent);
            QCOMPARE(balloonOf(reaction), QString());
        }
    }

    void fillBalloonNamesTheAccountOnPurpose()
    {
        const OrderReaction reaction
            = reactionToOrders(parse(R"({"filled":true,"symbol":"EURUSD","accountId":"account-0042"})"));
        QCOMPARE(reaction.balloon->text, u"A pending order on account- was filled."_s);
    }

    void serverTextStaysOneLine()
    {
        QCOMPARE(reactionToOrders(parse(R"({"closeReason":"a\nb"})")).journal,
            u"Orders changed (a b) — refreshing"_s);
        QCOMPARE(reactionToAccount(parse(R"({"accountId":"x\ny","status":"a\r\nb"})"), true).journal,
            u"Account x y status changed to a  b"_s);
    }

    void ordersEventRefreshesThreeLists()
    {
        OrderEvents events(true);
        QSignalSpy journal(&events, &OrderEvents::journalLine);
        QSignalSpy expert(&events, &OrderEvents::expertLine);
        QSignalSpy sound(&events, &OrderEvents::soundWanted);
        QSignalSpy balloon(&events, &OrderEvents::balloonWanted);
        QSignalSpy accounts(&events, &OrderEvents::accountsRefreshWanted);
        QSignalSpy trades(&events, &OrderEvents::tradesRefreshWanted);
        QSignalSpy history(&events, &OrderEvents::historyRefreshWanted);
        events.onOrdersChanged({});
        QCOMPARE(journal.value(0), QVariantList({u"Trade"_s, u"Orders changed — refreshing"_s}));
        QCOMPARE(expert.value(0),
            QVariantList(
                {u"Execution"_s, u"Order state changed"_s, QVariant::fromValue(LineKind::Ordinary)}));
        QCOMPARE(sound.count(), 0);
        QCOMPARE(balloon.count(), 0);
        QCOMPARE(accounts.count(), 1);
        QCOMPARE(trades.count(), 1);
        QCOMPARE(history.count(), 1);
        events.onOrdersChanged(parse(R"({"closeReason":"TP"})"));
        QCOMPARE(sound.count(), 1);
        QCOMPARE(balloon.count(), 1);
        QCOMPARE(history.count(), 2);
    }

    void ordersEventWithoutTrayShowsNoBalloonButPlays()
    {
        OrderEvents events(false);
        QSignalSpy sound(&events, &OrderEvents::soundWanted);
        QSignalSpy balloon(&events, &OrderEvents::balloonWanted);
        for (const char* event : {R"({"filled":true})", R"({"closeReason":"SL"})", R"({"closeReason":"TP"})",
                 R"({"closeReason":"MANUAL"})"})
            events.onOrdersChanged(parse(event));
        QList<SoundKind> heard;
        for (const QList<QVariant>& call : sound)
            heard.append(call.at(0).value<SoundKind>());
        QCOMPARE(
            heard, QList<SoundKind>({SoundKind::Fill, SoundKind::Fill, SoundKind::Fill, SoundKind::Close}));
        QCOMPARE(balloon.count(), 0);
    }

    void accountEventRefreshesAccountsOnly_data()
    {
        QTest::addColumn<QByteArray>("event");
        QTest::addColumn<QString>("line");
        QTest::addColumn<int>("balloons");
        QTest::newRow("failed") << QByteArray(R"({"accountId":"a","status":"FAILED"})")
                                << u"Account a status changed to FAILED"_s << 1;
        QTest::newRow("passed") << QByteArray(R"({"accountId":"a","status":"PASSED"})")
                                << u"Account a status changed to PASSED"_s << 1;
        QTest::newRow("any other status") << QByteArray(R"({"accountId":"a","status":"ACTIVE"})")
                                          << u"Account a status changed to ACTIVE"_s << 0;
        QTest::newRow("wrong types") << QByteArray(R"({"accountId":1,"status":{}})")
                                     << u"Account  status changed to "_s << 0;
    }
    void accountEventRefreshesAccountsOnly()
    {
        QFETCH(QByteArray, event);
        QFETCH(QString, line);
        QFETCH(int, balloons);
        OrderEvents events(true);
        QSignalSpy balloon(&events, &OrderEvents::balloonWanted);
        QSignalSpy history(&events, &OrderEvents::historyRefreshWanted);
        QSignalSpy accounts(&events, &OrderEvents::accountsRefreshWanted);
        QSignalSpy trades(&events, &OrderEvents::tradesRefreshWanted);
        QSignalSpy expert(&events, &OrderEvents::expertLine);
        QSignalSpy journal(&events, &OrderEvents::journalLine);
        events.onAccountUpdated(parse(event));
        QCOMPARE(accounts.count(), 1);
        QCOMPARE(trades.count(), 0);
        QCOMPARE(history.count(), 0);
        QCOMPARE(expert.count(), 0);
        QCOMPARE(journal.count(), 1);
        QCOMPARE(journal.at(0), QVariantList({u"Account"_s, line}));
        QCOMPARE(balloon.count(), balloons);
    }
};

TAVORAN_TEST(tst_OrderReaction)
#include "tst_OrderReaction.moc"
