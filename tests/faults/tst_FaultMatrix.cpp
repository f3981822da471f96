#include "faults/Desk.h"
#include "faults/Fault.h"
#include "faults/FaultTable.h"
#include "faults/Requests.h"
#include "support/ShortSteps.h"
#include "support/TestCertificates.h"
#include "support/TestMain.h"

#include <QFile>
#include <QRegularExpression>

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace faults;

namespace {

/// What a request comes to.
enum class Outcome {
    Done,     ///< it went well
    Closed,   ///< the connection broke
    Refused,  ///< there is none to be had
    GivenUp,  ///< after the time-out: nobody knows
    Error,    ///< a server between said so
    Redirect, ///< refused: another server is no answer
    Packed,   ///< cannot be unpacked
    Cipher,   ///< cannot be decrypted
    /// An answer with a good status and a body that is none. The status counts: a change is taken for done, a
    /// list for empty.
    Strange,
};

Outcome expected(Fault fault, Moment moment, const Request& what)
{
    const bool between = moment == Moment::Between;
    // As long as no whole head has come, Qt asks anew by itself what it may, and meets what there is then.
    const bool again = what.verb == "GET" && moment != Moment::Body;
    switch (fault) {
    case Fault::Refused:
        return again || moment == Moment::Connecting ? Outcome::Refused : Outcome::Closed;
    case Fault::Reset:
    case Fault::Cut:
        return between && again ? Outcome::Done : Outcome::Closed;
    case Fault::BlackHole:
    case Fault::Drip:
        return Outcome::GivenUp;
    case Fault::Crumbs:
        return Outcome::Done;
    case Fault::TooLong:
        return moment == Moment::Headers ? Outcome::GivenUp : Outcome::Closed;
    case Fault::Duplicate:
        return moment == Moment::Body ? Outcome::Done : Outcome::Strange;
    case Fault::OutOfOrder:
        return moment == Moment::Headers ? Outcome::Closed : Outcome::Strange;
    case Fault::TooShort:
    case Fault::Html:
        return Outcome::Strange;
    case Fault::ServerError:
        return Outcome::Error;
    case Fault::Redirect:
        return Outcome::Redirect;
    case Fault::GzipBomb:
        return Outcome::Packed;
    case Fault::BrokenTls:
        return between ? Outcome::GivenUp : Outcome::Cipher;
    }
    return Outcome::Done;
}

/// The reason that is told, as a pattern.
QString reasonOf(Outcome outcome, const Request& what, Moment moment)
{
    const bool read = what.kind == Request::Kind::Read;
    // The start of the program has no window yet that could name the server.
    const QString server = what.name == "settings" ? QString() : uR"( \(https?://127\.0\.0\.1:\d+\))"_s;
    switch (outcome) {
    case Outcome::Closed:
        return u"Connection closed"_s;
    case Outcome::Refused:
        return u"Connection refused"_s + server;
    case Outcome::GivenUp:
        if (what.kind == Request::Kind::Order)
            return u"no answer; the order may have been carried out"_s;
        return read ? u"Operation canceled"_s + server : u"no answer; it may have been carried out"_s;
    case Outcome::Error: // pending orders tell of the open positions, with which they are asked for
        return uR"(Error transferring http://127\.0\.0\.1:\d+%1(\?\S*)? - server replied: %2)"_s.arg(
            what.name == "pending orders" ? u"/api/trades/open"_s : QString::fromLatin1(what.path),
            moment == Moment::Between ? u"Request Timeout"_s : u"Bad Gateway"_s);
    case Outcome::Redirect:
        return what.name == "settings" ? u"the server redirects to another address"_s
                                       : u"The server answered with a redirect"_s;
    case Outcome::Packed:
        return u"Decompression failed: ?"_s;
    case Outcome::Cipher:
        return (moment == Moment::Connecting ? u"SSL handshake failed: Error during SSL handshake"_s
                                             : u"Error while reading"_s)
            + u": error:[0-9A-F]+:SSL routines::[a-z ]+"_s + server;
    case Outcome::Strange:
        return what.name == "sign-in" ? u"Unexpected server response"_s : QString();
    case Outcome::Done:
        break;
    }
    return {};
}

/// The number that Desk::shown() gives for a word.
int numberOf(const QString& word, const QString& shown)
{
    return QRegularExpression(word + u" (\\d+)"_s).match(shown).captured(1).toInt();
}

/// Only some pairs of request and fault exist: settings are asked for on a connection of their own, which has
/// served nothing before.
bool exists(const Request& what, Moment moment, Fault fault)
{
    return canMeet(fault, moment) && !(what.name == "settings" && moment == Moment::Between);
}

/// A few of each kind, for every day: two reads, the order and another change, with every fault in a moment
/// each.
bool isOfEveryDay(const Request& what, Moment moment, Fault fault)
{
    if (what.name == "place")
        return true;
    const auto turn = static_cast<int>(fault) + static_cast<int>(moment);
    if (what.name == "open trades")
        return turn % 3 == 0;
    return turn % 8 == allRequests().indexOf(what) % 8;
}

} // namespace

/// Every request, at every moment, with every fault.
class tst_FaultMatrix final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void every_request_of_the_description_is_here();
    void a_fault_has_its_outcome_and_is_over_when_it_is_over_data()
    {
        QTest::addColumn<int>("request");
        QTest::addColumn<Moment>("moment");
        QTest::addColumn<Fault>("fault");
        const bool all = FaultTable::isWanted();
        for (int request = 0; request < allRequests().size(); ++request) {
            const Request& what = allRequests()[request];
            for (const Moment moment : allMoments()) {
                for (const Fault fault : allFaults()) {
                    if (exists(what, moment, fault) && (all || isOfEveryDay(what, moment, fault))) {
                        QTest::addRow("%s, %s, %s", what.name.constData(), nameOf(moment), nameOf(fault))
                            << request << moment << fault;
                    }
                }
            }
        }
    }
    void a_fault_has_its_outcome_and_is_over_when_it_is_over();
    void connections_that_died_without_an_end_are_left_with_the_first_of_them_data()
    {
        QTest::addColumn<QByteArray>("request");
        QTest::newRow("read") << "accounts"_ba;
        QTest::newRow("order") << "place"_ba;
    }
    void connections_that_died_without_an_end_are_left_with_the_first_of_them();

private:
    static void prepare(Desk& desk, const Request& what, Moment moment);
    static void checkTold(const Request& what, Outcome outcome, Moment moment, const QStringList& said);
};

void tst_FaultMatrix::every_request_of_the_description_is_here()
{
    QFile description(QStringLiteral(PROJECT_ROOT "/docs/openapi.yaml"));
    QVERIFY(description.open(QIODevice::ReadOnly));
    static const QRegularExpression line(
        u"^  (/\\S+):$|^    (get|post|put|delete):$"_s, QRegularExpression::MultilineOption);
    auto found = line.globalMatch(QString::fromUtf8(description.readAll()));
    QString path;
    int described = 0;
    while (found.hasNext()) {
        const QRegularExpressionMatch match = found.next();
        if (match.captured(2).isEmpty()) {
            path = match.captured(1).section(u'{', 0, 0);
            continue;
        }
        if (path.startsWith(u"/ws/"_s)) // tst_FeedFaults
            continue;
        ++described;
        QVERIFY2(
            std::any_of(allRequests().begin(), allRequests().end(),
                [&](const Request& request) {
                    const bool sameVerb = request.verb == match.captured(2).toUpper().toLatin1();
                    const QByteArray wanted = path.toLatin1();
                    return sameVerb
                        && (wanted.endsWith('/') ? request.path.startsWith(wanted) : request.path == wanted);
                }),
            qPrintable(match.captured(2) + u' ' + path));
    }
    QCOMPARE(described, allRequests().size());
}

void tst_FaultMatrix::prepare(Desk& desk, const Request& what, Moment moment)
{
    desk.load();
    desk.said.clear();
    desk.stock(2);
    if (moment != Moment::Between) { // then a new connection is made
        desk.line.cutAll();
    } else if (what.verb == "GET") {
        desk.api.get(u"/warm"_s, [](const QJsonDocument&, const QString&) {});
        desk.settle();
    } else {
        ReplyOutcome::whenFinished(desk.api.put(u"/warm"_s, {}), &desk.api, [](const ReplyOutcome&) {});
        desk.settle();
    }
    desk.turn();
    desk.server.clearRequests();
}

void tst_FaultMatrix::checkTold(const Request& what, Outcome outcome, Moment moment, const QStringList& said)
{
    const QString all = said.join(u'\n');
    const QString reason = reasonOf(outcome, what, moment);
    if (what.failure.isEmpty()) { // it fails without a word
        // But the open positions, which are asked for with the pending orders, may have met the fault.
        const bool withTrades = what.name == "pending orders" && !reason.isEmpty();
        const QRegularExpression ofTrades(
            QRegularExpression::anchoredPattern(u"Network: Failed to load trades: "_s + reason));
        QVERIFY2(said.isEmpty() || (withTrades && said.size() == 1 && ofTrades.match(all).hasMatch()),
            qPrintable(all));
        return;
    }
    if (reason.isEmpty()) { // nothing has failed
        QVERIFY2(!all.contains(what.failure), qPrintable(all));
        const bool told = outcome == Outcome::Done && !what.success.isEmpty();
        QVERIFY2(!told || said.count(what.success) == 1, qPrintable(all));
        return;
    }
    const QRegularExpression whole(
        u'^' + QRegularExpression::escape(what.failure) + reason + u'$', QRegularExpression::MultilineOption);
    QVERIFY2(all.count(whole) == 1, qPrintable(all));
    QVERIFY2(
        what.success.isEmpty() || what.name == "drawings" || !all.contains(what.success), qPrintable(all));
}

void tst_FaultMatrix::a_fault_has_its_outcome_and_is_over_when_it_is_over()
{
    QFETCH(const int, request);
    QFETCH(const Moment, moment);
    QFETCH(const Fault, fault);
    const Request& what = allRequests().at(request);
    const bool changes = what.verb != "GET";
    const TrustedTestAuthority trust;
    Desk desk(fault == Fault::BrokenTls ? StubHttpServer::Transport::Tls : StubHttpServer::Transport::Plain);
    prepare(desk, what, moment);
    desk.line.spoil({fault, moment, (what.verb + ' ' + what.path).toStdString(),
        (desk.elsewhere.url() + u"/stolen"_s).toStdString()});
    desk.turn();
    desk.heart.restart();
    what.ask(desk);
    desk.settle();
    FaultTable::Row row{
        what.name, moment, fault, desk.heart.longestGap(), desk.heart.longestWork(), desk.said};
    QVERIFY(desk.line.news().struck > 0);

    // Nothing is sent twice, nor to anybody else, and what is called done was done.
    const int count = desk.server.count(what.verb, what.path);
    QVERIFY2(!changes || count <= 1, qPrintable(QString::number(count)));
    QCOMPARE(desk.elsewhere.requests().size(), 0);
    const Outcome outcome = expected(fault, moment, what);
    QVERIFY(outcome != Outcome::Done || !changes || count == 1);
    checkTold(what, outcome, moment, desk.said);
    if (QTest::currentTestFailed())
        return;

    // What was known is still known, unless the answer said otherwise.
    if (!what.shows.isEmpty()) {
        const int shown = numberOf(what.shows, desk.shown());
        // What cannot be read counts as none; all are there if the open positions met the fault instead.
        const bool tradesStruck = !desk.said.isEmpty() || numberOf(u"open"_s, desk.shown()) == 0;
        const bool ofPending = what.shows == u"pending"_s && (shown == 0 || (shown == 2 && tradesStruck));
        const int wanted = outcome == Outcome::Done ? 2 : outcome == Outcome::Strange ? 0 : 1;
        QVERIFY2(shown == wanted || ofPending || (what.name == "drawings" && shown == 2),
            qPrintable(desk.shown()));
    }
    QVERIFY2(desk.heart.answersInTime(), qPrintable(desk.heart.told()));

    // When it is over, it is over: at once, but where answers that belong to nobody lie in wait on idle
    // connections, of which each spoils one request; then at the latest with new connections.
    desk.line.mend();
    const bool strays
        = (moment == Moment::Between && (fault == Fault::Duplicate || fault == Fault::ServerError))
        || (moment == Moment::Connecting && fault == Fault::OutOfOrder);
    const int tries = strays ? 8 : 1;
    bool right = false;
    int tried = 0;
    for (; tried <= tries && !right; ++tried) {
        if (tried == tries) {
            if (!strays)
                break;
            desk.line.cutAll();
        }
        desk.turn();
        desk.said.clear();
        desk.server.clearRequests();
        what.ask(desk);
        desk.settle();
        right = (!changes || desk.server.count(what.verb, what.path) == 1)
            && (what.success.isEmpty() || desk.said.contains(what.success))
            && (what.shows.isEmpty() || numberOf(what.shows, desk.shown()) == 2);
    }
    QVERIFY2(right, qPrintable(desk.shown() + u'\n' + desk.said.join(u'\n')));
    if (tried > tries)
        row.said.append(u"stays one answer behind until its connections are cut"_s);
    FaultTable::add(row);
}

void tst_FaultMatrix::connections_that_died_without_an_end_are_left_with_the_first_of_them()
{
    QFETCH(const QByteArray, request);
    const auto what = std::ranges::find(allRequests(), request, &Request::name);
    Desk desk;
    desk.load();
    desk.stock(2);
    constexpr int kept = 3;
    for (int i = 0; i < kept; ++i) {
        desk.api.get(u"/warm"_s, [](const QJsonDocument&, const QString&) {});
        ReplyOutcome::whenFinished(desk.api.put(u"/warm"_s, {}), &desk.api, [](const ReplyOutcome&) {});
    }
    desk.settle();
    desk.turn();
    // Nothing gets through on the connections that are there; new ones are good.
    desk.line.spoil({Fault::BlackHole, Moment::Between, (what->verb + ' ' + what->path).toStdString(), {}});
    const int connections = desk.line.news().connections;
    desk.said.clear();
    what->ask(desk);
    desk.settle();
    QCOMPARE(desk.said.filter(what->failure).size(), 1);
    QCOMPARE(desk.line.news().connections, connections);

    desk.said.clear();
    what->ask(desk);
    desk.settle();
    QCOMPARE(desk.said.filter(what->failure), QStringList());
    QCOMPARE(desk.server.count(what->verb, what->path), what->verb == "GET" ? 2 : 1);
    QCOMPARE(desk.line.news().struck, 1);
}

TAVORAN_TEST(tst_FaultMatrix)
#include "tst_FaultMatrix.moc"
