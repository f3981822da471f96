#include "app/base/TerminalSettings.h"
#include "faults/Fault.h"
#include "faults/FaultTable.h"
#include "faults/FaultyLine.h"
#include "faults/Heartbeat.h"
#include "net/WsClient.h"
#include "support/Records.h"
#include "support/ShortSteps.h"
#include "support/StubFeedServer.h"
#include "support/StubHttpServer.h"
#include "support/TestCertificates.h"
#include "support/TestMain.h"

#include <QRegularExpression>
#include <QUrl>

using namespace Qt::StringLiterals;
using namespace faults;

namespace {

// An attempt that hangs is given up; a second of the pauses lasts a millisecond.
constexpr int attemptTimeoutMs = 300;

/// A feed and its client, with a faulty line between.
class FeedDesk final {
public:
    explicit FeedDesk(StubHttpServer::Transport transport)
        : http(transport)
        , feed(http)
        , line(static_cast<quint16>(QUrl(http.url()).port()), transport == StubHttpServer::Transport::Tls)
    {
        TerminalSettings::instance().setServerUrl(line.url());
        TerminalSettings::instance().setToken(
            u"a-token-as-long-as-tokens-are-0123456789abcdef0123456789abcdef"_s);
        client.setRetrySecond(1);
        client.setAttemptTimeout(attemptTimeoutMs);
        feed.setGreeting(
            records::hello({records::symbol("EURUSD")}, records::prices({{"EURUSD", 1.1, 1.2}})));
        QObject::connect(&client, &WsClient::helloReceived, &client, [this] { ++hellos; });
        QObject::connect(&client, &WsClient::disconnected, &client, [this] { ++ends; });
        QObject::connect(
            &client, &WsClient::logMessage, &client, [this](const QString&, const QString& message) {
                if (message.startsWith("Feed error"_L1))
                    errors.append(message);
            });
        QObject::connect(&client, &WsClient::pricesUpdated, &client, [this](const QJsonObject& prices) {
            bids.append(prices.value(u"EURUSD"_s).toObject().value(u"bid"_s).toDouble());
        });
    }
    Q_DISABLE_COPY_MOVE(FeedDesk)

    void sendBid(double bid) { feed.send(records::priceUpdate({{"EURUSD", bid, bid + 1}})); }

    StubHttpServer http;
    StubHttpServer elsewhere; ///< where a redirect would lead
    StubFeedServer feed;
    FaultyLine line;
    WsClient client{TerminalSettings::instance()};
    Heartbeat heart{[] {}};
    int hellos = 0;
    int ends = 0;
    QStringList errors;
    QList<double> bids;
};

bool isWhileOpening(Moment moment)
{
    return moment == Moment::Connecting || moment == Moment::Sending || moment == Moment::Headers;
}

/// Whether the connection goes on as if nothing had been.
bool survives(Fault fault, Moment moment)
{
    return fault == Fault::Crumbs
        || (moment == Moment::Between && (fault == Fault::Duplicate || fault == Fault::OutOfOrder));
}

/// Whether the client cannot know: a feed that says nothing may have nothing to say. It goes on with the end
/// of the connection.
bool isSilent(Fault fault, Moment moment)
{
    return (moment == Moment::Body || moment == Moment::Between)
        && (fault == Fault::BlackHole || fault == Fault::Drip);
}

/// What is told of it, one line for each time, as a pattern.
QString toldOf(Fault fault, Moment moment)
{
    const bool whileOpening = isWhileOpening(moment);
    const QString closed = u"Feed error: The remote host closed the connection"_s;
    const bool isAskedFor = moment != Moment::Connecting; // the server is
    const auto answered = [&](const QString& status) {
        return closed
            + u"(\nFeed error: QWebSocketPrivate::processHandshake: Unhandled http status code: %1\\.)+"_s
                  .arg(status);
    };
    switch (fault) {
    case Fault::Refused:
    case Fault::Reset:
    case Fault::Cut: // of each attempt, until there is a line again
        return whileOpening ? closed + u"(\n(%1|Feed error: Connection refused))*"_s.arg(closed) : closed;
    case Fault::BrokenTls:
        if (moment == Moment::Connecting)
            return closed + u"(\nFeed error: Error during SSL handshake: .+)+"_s;
        return moment == Moment::Sending ? closed : closed + u"(\nFeed error: Error while reading:.*)+"_s;
    case Fault::ServerError:
        if (!whileOpening) // what is no frame ends a feed
            return {};
        return answered(isAskedFor ? uR"(504 \(Gateway Timeout\))"_s : uR"(503 \(Service Unavailable\))"_s);
    case Fault::Html:
    case Fault::GzipBomb:
        return answered(uR"(200 \(OK\))"_s);
    case Fault::Redirect:
        return answered(isAskedFor ? uR"(307 \(Temporary Redirect\))"_s : uR"(302 \(Found\))"_s);
    case Fault::Crumbs:
    case Fault::Duplicate:
    case Fault::OutOfOrder:
        return whileOpening ? closed : QString();
    case Fault::TooLong:
    case Fault::TooShort: // the feed itself ends it
        return {};
    case Fault::BlackHole:
    case Fault::Drip:
        return closed;
    }
    return {};
}

} // namespace

/// The feed, at every moment, with every fault.
class tst_FeedFaults final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void the_feed_is_right_again_after_a_fault_data()
    {
        QTest::addColumn<Moment>("moment");
        QTest::addColumn<Fault>("fault");
        for (const Moment moment : allMoments()) {
            for (const Fault fault : allFaults()) {
                if (feedCanMeet(fault, moment))
                    QTest::addRow("%s, %s", nameOf(moment), nameOf(fault)) << moment << fault;
            }
        }
    }
    void the_feed_is_right_again_after_a_fault();
};

void tst_FeedFaults::the_feed_is_right_again_after_a_fault()
{
    QFETCH(const Moment, moment);
    QFETCH(const Fault, fault);
    const TrustedTestAuthority trust;
    FeedDesk desk(
        fault == Fault::BrokenTls ? StubHttpServer::Transport::Tls : StubHttpServer::Transport::Plain);
    desk.client.start();
    QTRY_COMPARE(desk.hellos, 1);
    desk.sendBid(2);
    QTRY_COMPARE(desk.bids, QList<double>{2});

    desk.line.spoil(
        {fault, moment, "GET /ws/terminal", (desk.elsewhere.url() + u"/ws/terminal"_s).toStdString()});
    desk.heart.restart();
    const bool whileOpening = isWhileOpening(moment);
    if (whileOpening)
        desk.line.cutAll();
    else
        desk.sendBid(3);
    if (fault == Fault::OutOfOrder && moment == Moment::Between) {
        desk.sendBid(4);
        QTRY_COMPARE(desk.bids, (QList<double>{2, 4, 3}));
    }
    if (whileOpening)
        QTRY_VERIFY(desk.ends > 0);
    else if (!survives(fault, moment) && !isSilent(fault, moment))
        QTRY_COMPARE(desk.ends, 1);
    QTRY_VERIFY(desk.line.news().struck > 0);
    if (isSilent(fault, moment)) {
        QCOMPARE(desk.ends, 0);
        desk.line.cutAll();
        QTRY_VERIFY(desk.ends > 0);
    }
    const bool sameConnection = survives(fault, moment) && !whileOpening;
    const int before = sameConnection ? 0 : survives(fault, moment) ? 1 : desk.hellos;
    desk.line.mend();
    QTRY_VERIFY(desk.hellos > before);
    QCOMPARE(desk.elsewhere.requests().size(), 0);
    const QString told = desk.errors.join(u'\n');
    QVERIFY2(
        QRegularExpression(QRegularExpression::anchoredPattern(toldOf(fault, moment))).match(told).hasMatch(),
        qPrintable(told));

    // Each price that came is one that was sent, and the newest one is shown.
    QTRY_COMPARE(desk.feed.clientCount(), 1);
    desk.sendBid(5);
    QTRY_VERIFY(desk.bids.contains(5));
    QCOMPARE(desk.bids.last(), 5.0);
    QCOMPARE(desk.bids.count(5), 1);
    for (const double bid : desk.bids)
        QVERIFY(bid == 2 || bid == 3 || bid == 4 || bid == 5);
    if (sameConnection) {
        QCOMPARE(desk.ends, 0);
        QVERIFY(desk.bids.contains(3));
    }
    QVERIFY2(desk.heart.answersInTime(), qPrintable(desk.heart.told()));
    FaultTable::add({"feed", moment, fault, desk.errors, desk.heart.longest()});
}

TAVORAN_TEST(tst_FeedFaults)
#include "tst_FeedFaults.moc"
