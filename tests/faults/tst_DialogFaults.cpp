#include "faults/Fault.h"
#include "faults/FaultTable.h"
#include "faults/WindowDesk.h"
#include "support/Hands.h"
#include "support/TestMain.h"

#include <QDialog>
#include <QPointer>

#include <functional>

using namespace Qt::StringLiterals;
using namespace faults;

namespace {

/// A window that sends, as it is worked by keys.
struct Sender final {
    const char* name;
    QByteArray verb;
    QByteArray path;
    QString error;   ///< the name of its label
    QString success; ///< what the Journal says then
    Qt::Key key;     ///< sends
    /// Opens it and types, until one press of the key is left to do.
    std::function<void(const WindowDesk&)> begin;
    QJsonObject body;                              ///< that is sent
    QJsonArray after;                              ///< open positions once it is carried out
    std::function<bool(const QTreeWidget&)> shows; ///< whether these are on show
};

QDialog* shownDialog()
{
    return qobject_cast<QDialog*>(QApplication::activeModalWidget());
}

void typeOrder(const WindowDesk& desk)
{
    QTest::keyClick(desk.f.window.get(), Qt::Key_F9);
    QTRY_VERIFY(shownDialog());
    QVERIFY(hands::arriveAt(shownDialog()));
    for (const QString& text : {u"0.2"_s, u"1.05"_s, u"1.35"_s, u"note"_s}) {
        hands::type(text);
        hands::press(Qt::Key_Tab);
    }
    hands::press(Qt::Key_Tab);
    QCOMPARE(hands::focused(), u"orderBuy"_s);
}

void typeLevels(const WindowDesk& desk)
{
    QTreeWidget& trades = desk.f.list("tradeList");
    trades.setFocus();
    trades.setCurrentItem(trades.topLevelItem(0));
    hands::press(Qt::Key_Return);
    QTRY_VERIFY(shownDialog());
    QVERIFY(hands::arriveAt(shownDialog()));
    hands::type(u"1.05"_s);
}

Sender orderWindow()
{
    return {"order window", "POST", "/api/trades/place", u"orderError"_s, u"Trade: Order placed"_s,
        Qt::Key_Space, typeOrder,
        {{u"symbol"_s, u"EURUSD"_s}, {u"lotSize"_s, 0.2}, {u"accountId"_s, u"a1"_s},
            {u"orderKind"_s, u"MARKET"_s}, {u"type"_s, u"BUY"_s}, {u"stopLoss"_s, 1.05},
            {u"takeProfit"_s, 1.35}, {u"comment"_s, u"note"_s}},
        {MainWindowFixture::openTrade(), records::position("t2")},
        [](const QTreeWidget& trades) { return trades.topLevelItemCount() == 2; }};
}

Sender modifyWindow()
{
    constexpr int stopLossColumn = 6;
    return {"modify window", "PUT", "/api/trades/modify/t1", u"modifyError"_s, u"Trade: Order modified"_s,
        Qt::Key_Return, typeLevels, {{u"stopLoss"_s, 1.05}},
        {MainWindowFixture::openTrade().stopLoss("1.05")}, [](const QTreeWidget& trades) {
            return trades.topLevelItemCount() == 1
                && trades.topLevelItem(0)->text(stopLossColumn) == "1.05000"_L1;
        }};
}

/// What the desktop goes on to send while somebody keeps a key down.
void holdKeys()
{
    for (int i = 0; i < 5; ++i) {
        for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Space}) {
            if (QApplication::focusWidget()) // a window that closes may leave none
                hands::hold(key);
        }
        QCoreApplication::processEvents();
    }
}

} // namespace

/// The windows that send orders and changes, worked by the keyboard over a line that fails.
class tst_DialogFaults final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { liveobjects::watch(); }

    void what_is_sent_by_keys_is_sent_once_and_its_window_tells_what_came_of_it_data()
    {
        QTest::addColumn<bool>("isOrder");
        QTest::addColumn<Fault>("fault");
        QTest::addColumn<Moment>("moment");
        QTest::addColumn<QString>("told"); // empty where it counts as done
        const auto page = [](const QString& status) {
            return uR"(Error transferring http://127\.0\.0\.1:\d+/api/trades/\S+ - server replied: %1)"_s.arg(
                status);
        };
        const auto add = [](Fault fault, Moment moment, const QString& told) {
            for (const bool isOrder : {true, false}) {
                QTest::addRow("%s, %s, %s", isOrder ? "order" : "modify", nameOf(moment), nameOf(fault))
                    << isOrder << fault << moment << told;
            }
        };
        add(Fault::Reset, Moment::Headers, u"Connection closed"_s);
        add(Fault::Cut, Moment::Headers, u"Connection closed"_s);
        add(Fault::BlackHole, Moment::Headers, u"no answer; the order may have been carried out"_s);
        add(Fault::ServerError, Moment::Headers, page(u"Gateway Timeout"_s));
        add(Fault::ServerError, Moment::Connecting, page(u"Service Unavailable"_s));
        add(Fault::Redirect, Moment::Connecting, u"The server answered with a redirect"_s);
        add(Fault::Html, Moment::Headers, {});
        add(Fault::Html, Moment::Connecting, {});
    }
    void what_is_sent_by_keys_is_sent_once_and_its_window_tells_what_came_of_it();
};

void tst_DialogFaults::what_is_sent_by_keys_is_sent_once_and_its_window_tells_what_came_of_it()
{
    QFETCH(const bool, isOrder);
    QFETCH(const Fault, fault);
    QFETCH(const Moment, moment);
    QFETCH(const QString, told);
    const Sender what = isOrder ? orderWindow() : modifyWindow();
    const bool isCarriedOut = moment == Moment::Headers; // before that, somebody else has answered
    WindowDesk desk;
    StubHttpServer& server = desk.f.server;
    const QTreeWidget& trades = desk.f.list("tradeList");
    server.on(what.verb, what.path, StubAnswer::json("{}"));
    QObject::connect(&server, &StubHttpServer::requestReceived, &server, [&](const StubRequest& request) {
        if (request.method == what.verb && request.path() == what.path)
            server.on("GET", "/api/trades/open?accountId=a1", StubAnswer::list(what.after));
    });
    const auto arrived = [&] { return server.count(what.verb, what.path); };

    const auto begin = [&] { // the desktop makes the window active when another one closes
        desk.f.window->activateWindow();
        return QTest::qWaitForWindowActive(desk.f.window.get())
            && (what.begin(desk), !QTest::currentTestFailed());
    };
    QVERIFY(begin());
    desk.line.spoil({fault, moment, (what.verb + ' ' + what.path).toStdString(),
        desk.elsewhere.url().toStdString() + '/'});
    const QPointer<QDialog> dialog = shownDialog();
    desk.heart.restart();
    hands::press(what.key);
    holdKeys();
    if (told.isEmpty()) {
        QTRY_VERIFY(!dialog);
        QCOMPARE(desk.tradeLines(), QStringList{what.success});
    } else {
        const auto* error = dialog->findChild<QLabel*>(what.error);
        QTRY_VERIFY(error->isVisible());
        QVERIFY2(
            QRegularExpression(QRegularExpression::anchoredPattern(told)).match(error->text()).hasMatch(),
            qPrintable(error->text()));
        QVERIFY(dialog->isVisible());
        QCOMPARE(desk.tradeLines(), QStringList());
    }
    QVERIFY(desk.line.news().struck > 0);

    // Whoever keeps the keys down sends nothing more and opens nothing.
    holdKeys();
    desk.f.settle();
    QCOMPARE(arrived(), isCarriedOut ? 1 : 0);
    QCOMPARE(shownDialog(), dialog.data());
    if (isCarriedOut)
        QCOMPARE(server.last(what.verb, what.path).json(), what.body);
    // Nobody knows, so the lists are read; but a redirect has carried nothing out.
    if (fault != Fault::Redirect)
        QTRY_VERIFY(server.count("GET", "/api/trades/open?accountId=a1") > 0);
    QTRY_COMPARE(what.shows(trades), isCarriedOut);
    QCOMPARE(desk.elsewhere.requests().size(), 0);
    QVERIFY2(desk.heart.answersInTime(), qPrintable(desk.heart.told()));
    const FaultTable::Row row{what.name, moment, fault,
        told.isEmpty() ? desk.tradeLines() : QStringList{dialog->findChild<QLabel*>(what.error)->text()},
        desk.heart.longest()};

    // The trader decides to send it (again), and the line is good.
    desk.line.mend();
    if (told.isEmpty())
        QVERIFY(begin());
    const QPointer<QDialog> again = shownDialog();
    hands::press(what.key);
    QTRY_VERIFY(!again);
    desk.f.settle();
    QCOMPARE(arrived(), isCarriedOut ? 2 : 1);
    QCOMPARE(server.last(what.verb, what.path).json(), what.body);
    QCOMPARE(desk.tradeLines().count(what.success), told.isEmpty() ? 2 : 1);
    QTRY_VERIFY(what.shows(trades));
    FaultTable::add(row);
}

TAVORAN_TEST(tst_DialogFaults)
#include "tst_DialogFaults.moc"
