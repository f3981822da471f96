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
        return moment == Moment::Body      ? Outcome::Done
            : moment == Moment::Connecting ? Outcome::Error
                                           : Outcome::Strange;
    case Fault::OutOfOrder:
        return moment == Moment::Headers ? Outcome::Closed : Outcome::Strange;
    case Fault::TooShort:
    case Fault::Html:
        return Outcome::Strange;
    case Fault::ServerError:
        return moment == Moment::Body ? Outcome::Closed : Outcome::Error;
    case Fault::Redirect:
        return Outcome::Redirect;
    case Fault::GzipBomb:
        return Outcome::Packed;
    case Fault::BrokenTls:
        return between || moment == Moment::Sending ? Outcome::GivenUp : Outcome::Cipher;
    }
    return Outcome::Done;
}

/// How the line's own pages name the error.
QString statusOf(Fault fault, Moment moment)
{
    if (fault == Fault::Duplicate || moment == Moment::Sending)
        return u"Bad Gateway"_s;
    if (moment == Moment::Connecting)
        return u"Service Unavailable"_s;
    return moment == Moment::Between ? u"Request Timeout"_s : u"Gateway Timeout"_s;
}

/// Whether the line answers, or not even that, in the server's place.
bool isKeptFromTheServer(Fault fault, Moment moment)
{
    switch (moment) {
    case Moment::Connecting:
        return fault != Fault::OutOfOrder;
    case Moment::Sending:
        return fault != Fault::Crumbs;
    case Moment::Headers:
    case Moment::Body:
        return false;
    case Moment::Between:
        break;
    }
    switch (fault) {
    case Fault::Refused:
    case Fault::Reset:
    case Fault::Cut:
    case Fault::BlackHole:
    case Fault::ServerError:
    case Fault::Html:
    case Fault::Redirect:
    case Fault::BrokenTls:
        return true;
    default:
        return false;
    }
}

/// Pending orders are asked for once the open positions are there, and drawings once the candles are. Whether
/// already what is asked for first meets the fault, which then is one of each connection.
bool meetsItBefore(const Request& what, Fault fault, Moment moment)
{
    if (what.name != "pending orders" && what.name != "drawings")
        return false;
    if (fault == Fault::BrokenTls)
        return true;
    return moment == Moment::Connecting ? fault == Fault::Refused || fault == Fault::Reset
            || fault == Fault::Cut || fault == Fault::BlackHole || fault == Fault::OutOfOrder
                                        : moment == Moment::Between
            && (fault == Fault::Duplicate || fault == Fault::OutOfOrder || fault == Fault::ServerError);
}

/// The reason that is told, as a pattern.
QString reasonOf(Outcome outcome, const Request& what, Fault fault, Moment moment)
{
    const bool read = what.kind == Request::Kind::Read;
    // The start of the program has no window yet that could name the server.
    const QString server = what.name == "settings" ? QString() : uR"( \(https?://127\.0\.0\.1:\d+\))"_s;
    // Qt never notices some of the connections that break before it has used them.
    const bool isNoticed = moment != Moment::Connecting || (fault != Fault::Reset && fault != Fault::Cut);
    if (outcome == Outcome::Closed && !isNoticed)
        return u"(Connection closed|%1)"_s.arg(reasonOf(Outcome::GivenUp, what, fault, moment));
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
            statusOf(fault, moment));
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

/// How often the server has got the request. An answer that was there already has the asking end before what
/// was asked has come to the server, which is waited for.
int timesSent(Desk& desk, const Request& what, int due)
{
    const auto count = [&] { return desk.server.count(what.verb, what.path); };
    static_cast<void>(QTest::qWaitFor([&] { return count() >= due; }));
    desk.turn();
    return count();
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

/// How often it is tried until new connections are made: answers that belong to nobody may lie on those that
/// are there.
int mostTries(Fault fault, Moment moment)
{
    const bool strays
        = (moment == Moment::Between
              && (fault == Fault::Duplicate || fault == Fault::OutOfOrder || fault == Fault::ServerError))
        || (moment == Moment::Connecting && fault == Fault::OutOfOrder);
    return strays ? 8 : 1;
}

/// For every day: the order with all of it, a fourth of it with the positions, which are read most often, and
/// a fourteenth of it, another one for each, with everything else.
bool isOfEveryDay(const Request& what, Moment moment, Fault fault)
{
    if (what.name == "place")
        return true;
    const auto turn = static_cast<int>(fault) + static_cast<int>(moment);
    if (what.name == "open trades")
        return turn % 4 == 0;
    return turn % 14 == allRequests().indexOf(what) % 14;
}

} // namespace

/// Every request, at every moment, with every fault.
class tst_FaultMatrix final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void every_request_of_the_description_is_here();
    void the_documentation_shows_when_each_fault_is_met();
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
    static void checkTold(
        const Request& what, Outcome outcome, Fault fault, Moment moment, const QStringList& said);
    static void checkShown(
        const Request& what, Outcome outcome, Fault fault, Moment moment, const Desk& desk);
    /// Asks again, where the platform's answer is one that it has not given before: other lists, or a refusal
    /// in words of its own, after which the same must go well. Counts refusals that passed for a success.
    static bool isAnsweredRightly(Desk& desk, const Request& what, int number, int& misled);
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

void tst_FaultMatrix::the_documentation_shows_when_each_fault_is_met()
{
    QFile documentation(QStringLiteral(PROJECT_ROOT "/docs/reliability.md"));
    QVERIFY(documentation.open(QIODevice::ReadOnly));
    QString head = u"| fault |"_s;
    for (const Moment moment : allMoments())
        head += u" %1 |"_s.arg(QString::fromLatin1(nameOf(moment)));
    const QStringList lines = QString::fromUtf8(documentation.readAll()).split(u'\n');
    const auto first
        = std::ranges::find_if(lines, [&](const QString& line) { return line.startsWith(head); });
    QVERIFY(lines.end() - first > 2 + allFaults().size());
    auto line = first + 2;
    for (const Fault fault : allFaults()) {
        const QStringList cells = (line++)->split(u'|');
        QCOMPARE(cells.value(1).trimmed(), QString::fromLatin1(nameOf(fault)));
        for (const Moment moment : allMoments()) {
            QStringList wanted;
            if (canMeet(fault, moment))
                wanted.append(u"R"_s);
            if (feedCanMeet(fault, moment))
                wanted.append(u"F"_s);
            QCOMPARE(cells.value(2 + static_cast<int>(moment)).trimmed(), wanted.join(u' '));
        }
    }
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

void tst_FaultMatrix::checkTold(
    const Request& what, Outcome outcome, Fault fault, Moment moment, const QStringList& said)
{
    const QString all = said.join(u'\n');
    const QString reason = reasonOf(outcome, what, fault, moment);
    if (what.failure.isEmpty()) { // it fails without a word, but the positions before it do not
        if (reason.isEmpty() || !meetsItBefore(what, fault, moment)) {
            QVERIFY2(said.isEmpty(), qPrintable(all));
            return;
        }
        const QRegularExpression ofTrades(
            QRegularExpression::anchoredPattern(u"Network: Failed to load trades: "_s + reason));
        QVERIFY2(said.size() == 1 && ofTrades.match(all).hasMatch(), qPrintable(all));
        return;
    }
    const QString success = what.successWith(2);
    if (reason.isEmpty()) { // nothing has failed
        QVERIFY2(!all.contains(what.failure), qPrintable(all));
        const bool told = outcome == Outcome::Done && !success.isEmpty();
        QVERIFY2(!told || said.count(success) == 1, qPrintable(all));
        return;
    }
    const QRegularExpression whole(
        u'^' + QRegularExpression::escape(what.failure) + reason + u'$', QRegularExpression::MultilineOption);
    QVERIFY2(all.count(whole) == 1, qPrintable(all));
    QVERIFY2(success.isEmpty() || what.name == "drawings" || !all.contains(success), qPrintable(all));
}

void tst_FaultMatrix::checkShown(
    const Request& what, Outcome outcome, Fault fault, Moment moment, const Desk& desk)
{
    const int shown = numberOf(what.shows, desk.shown());
    const bool before = meetsItBefore(what, fault, moment);
    // A failed read of pending orders shows none. It does not come to that where the open positions failed.
    const bool isEmptied = what.name == "pending orders" && !before;
    const int wanted = outcome == Outcome::Done ? 2 : outcome == Outcome::Strange || isEmptied ? 0 : 1;
    // What is asked for second may get the answer to what was asked for first.
    const bool isTheOther = before && outcome == Outcome::Strange && shown == 2;
    QVERIFY2(shown == wanted || isTheOther, qPrintable(desk.shown()));
}

bool tst_FaultMatrix::isAnsweredRightly(Desk& desk, const Request& what, int number, int& misled)
{
    const auto ask = [&] {
        desk.turn();
        desk.said.clear();
        desk.server.clearRequests();
        what.ask(desk);
        desk.settle();
        return !what.isSentOnce() || timesSent(desk, what, 1) == 1;
    };
    const auto goesWell = [&](int count) {
        const QString success = what.successWith(count);
        return ask()
            && (success.isEmpty() ? desk.said.filter(what.failure).isEmpty() : desk.said.contains(success))
            && (what.shows.isEmpty() || numberOf(what.shows, desk.shown()) == count);
    };
    if (!what.isSentOnce()) {
        const int count = 3 + number; // other than before, and than at the last try
        desk.stock(count);
        return goesWell(count);
    }
    const QString words = u"not today, for the %1. time"_s.arg(number);
    desk.server.on(what.verb, what.path, StubAnswer::message(words, 409));
    const bool isSent = ask();
    desk.acceptChanges();
    if (desk.said.filter(what.failure).isEmpty())
        ++misled;
    return isSent && desk.said.count(what.failure + words) == 1 && goesWell(2);
}

void tst_FaultMatrix::a_fault_has_its_outcome_and_is_over_when_it_is_over()
{
    QFETCH(const int, request);
    QFETCH(const Moment, moment);
    QFETCH(const Fault, fault);
    const Request& what = allRequests().at(request);
    const TrustedTestAuthority trust;
    Desk desk(fault == Fault::BrokenTls ? StubHttpServer::Transport::Tls : StubHttpServer::Transport::Plain);
    prepare(desk, what, moment);
    desk.line.spoil({fault, moment, (what.verb + ' ' + what.path).toStdString(),
        (desk.elsewhere.url() + u"/stolen"_s).toStdString()});
    desk.turn();
    desk.heart.restart();
    what.ask(desk);
    desk.settle();
    FaultTable::Row row{what.name, moment, fault, desk.said, desk.heart.longest()};
    QVERIFY(desk.line.news().struck > 0);

    // Nothing is sent twice, nor to anybody else, and what is called done was done.
    if (what.isSentOnce()) {
        const int due = isKeptFromTheServer(fault, moment) ? 0 : 1;
        QCOMPARE(timesSent(desk, what, due), due);
    }
    QCOMPARE(desk.elsewhere.requests().size(), 0);
    const Outcome outcome = expected(fault, moment, what);
    checkTold(what, outcome, fault, moment, desk.said);
    if (QTest::currentTestFailed())
        return;

    // What was known is still known, unless the answer said otherwise.
    if (!what.shows.isEmpty())
        checkShown(what, outcome, fault, moment, desk);
    if (QTest::currentTestFailed())
        return;
    QVERIFY2(desk.heart.answersInTime(), qPrintable(desk.heart.told()));

    // When it is over, it is over: at once, but where answers that belong to nobody lie in wait on idle
    // connections; then at the latest with new connections, when one more may have failed for the old ones.
    desk.line.mend();
    const int most = mostTries(fault, moment);
    while (!isAnsweredRightly(desk, what, row.tries, row.misled)) {
        const bool isOver = most == 1 || row.tries > most + 1;
        QVERIFY2(!isOver, qPrintable(desk.shown() + u'\n' + desk.said.join(u'\n')));
        if (row.tries++ == most) {
            desk.api.setLimits({.silence = 2000}); // Qt may wait for a connection that has ended
            desk.line.cutAll();
        }
    }
    if (row.tries > most)
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
    QCOMPARE(desk.server.count(what->verb, what->path), what->isSentOnce() ? 1 : 2);
    QCOMPARE(desk.line.news().struck, 1);
    QTRY_COMPARE(desk.api.findChildren<QNetworkAccessManager*>().size(), 2); // for reads and for changes
}

TAVORAN_TEST(tst_FaultMatrix)
#include "tst_FaultMatrix.moc"
