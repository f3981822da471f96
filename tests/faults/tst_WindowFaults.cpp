#include "faults/Fault.h"
#include "faults/FaultTable.h"
#include "faults/WindowDesk.h"
#include "support/Hands.h"
#include "support/TestMain.h"

#include <QContextMenuEvent>
#include <QDialog>
#include <QMenu>
#include <QMessageBox>

using namespace Qt::StringLiterals;
using namespace faults;

namespace {

void closePosition(const WindowDesk& desk)
{
    QTreeWidget& trades = desk.f.list("tradeList");
    const QPoint place = trades.visualItemRect(trades.topLevelItem(0)).center();
    QContextMenuEvent event(QContextMenuEvent::Mouse, place, trades.viewport()->mapToGlobal(place));
    QApplication::sendEvent(trades.viewport(), &event);
    hands::choose(*desk.f.window->findChild<QMenu*>(u"tradeMenu"_s), u"Close Position"_s);
    auto* question = desk.f.window->findChild<QMessageBox*>();
    QVERIFY(question);
    QTest::mouseClick(question->button(QMessageBox::Yes), Qt::LeftButton);
}

/// Goes through the window as a trader does who wonders.
void use(const WindowDesk& desk)
{
    QTest::keyClick(desk.f.window.get(), Qt::Key_F6);
    desk.f.action("New Order")->trigger();
    QDialog* dialog = nullptr;
    QTRY_VERIFY((dialog = qobject_cast<QDialog*>(QApplication::activeWindow())));
    QTest::keyClick(dialog, Qt::Key_Escape);
    QTRY_VERIFY(!dialog->isVisible());
}

} // namespace

/// What a trader sees of a line that fails.
class tst_WindowFaults final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { liveobjects::watch(); }

    void a_window_without_a_line_is_right_again_with_it_data()
    {
        QTest::addColumn<Moment>("moment");
        QTest::addColumn<Fault>("fault");
        for (const Fault fault : {Fault::Refused, Fault::Reset, Fault::Cut, Fault::BlackHole})
            QTest::newRow(nameOf(fault)) << Moment::Connecting << fault;
        QTest::newRow(nameOf(Fault::Drip)) << Moment::Headers << Fault::Drip;
    }
    void a_window_without_a_line_is_right_again_with_it();

    void a_window_whose_reads_hang_answers_and_keeps_what_it_knew_data()
    {
        QTest::addColumn<Moment>("moment");
        QTest::addColumn<Fault>("fault");
        for (const Fault fault : {Fault::BlackHole, Fault::Drip}) {
            for (const Moment moment : {Moment::Headers, Moment::Body})
                QTest::addRow("%s, %s", nameOf(fault), nameOf(moment)) << moment << fault;
        }
    }
    void a_window_whose_reads_hang_answers_and_keeps_what_it_knew();

    void a_position_is_closed_once_and_the_lists_tell_whether_data()
    {
        QTest::addColumn<Fault>("fault");
        QTest::addColumn<QString>("told");
        QTest::newRow("reset") << Fault::Reset << u"Connection closed"_s;
        QTest::newRow("cut") << Fault::Cut << u"Connection closed"_s;
        QTest::newRow("black hole") << Fault::BlackHole
                                    << u"no answer; the order may have been carried out"_s;
        QTest::newRow("drip") << Fault::Drip << u"no answer; the order may have been carried out"_s;
        QTest::newRow("crumbs") << Fault::Crumbs << QString();
        QTest::newRow("server error") << Fault::ServerError << u"Error transferring http://127"_s;
        QTest::newRow("redirect") << Fault::Redirect << u"The server answered with a redirect"_s;
    }
    void a_position_is_closed_once_and_the_lists_tell_whether();
};

void tst_WindowFaults::a_window_without_a_line_is_right_again_with_it()
{
    QFETCH(const Moment, moment);
    QFETCH(const Fault, fault);
    WindowDesk desk;
    desk.line.spoil({fault, moment, "GET /ws/terminal", {}});
    desk.line.cutAll();
    QTRY_VERIFY(!desk.isConnected());
    QTRY_VERIFY(desk.line.news().struck > 0);

    // Meanwhile the window answers, and keeps what it knew.
    use(desk);
    QCOMPARE(desk.f.list("tradeList").topLevelItemCount(), 1);
    QCOMPARE(desk.f.list("marketWatchSymbols").topLevelItemCount(), 2);

    desk.f.feed.setGreeting(
        records::hello({records::symbol("EURUSD")}, records::prices({{"EURUSD", 1.7, 1.8}})));
    desk.line.mend();
    QTRY_VERIFY_WITH_TIMEOUT(desk.isConnected(), 20000);
    QTRY_COMPARE(desk.f.list("marketWatchSymbols").topLevelItem(0)->text(1), u"1.70000"_s);
    // Each attempt that failed is told, in words, and nothing else is.
    const QStringList told = desk.f.journal().filter(u"Feed error"_s);
    const QStringList known = told.filter(QRegularExpression(
        u"^Network: Feed error: (The remote host closed the connection|Connection refused)$"_s));
    QVERIFY2(!told.isEmpty() && known == told, qPrintable(told.join(u'\n')));
    QVERIFY2(desk.heart.answersInTime(), qPrintable(desk.heart.told()));
    FaultTable::add({"main window", moment, fault, told, desk.heart.longest()});
}

void tst_WindowFaults::a_window_whose_reads_hang_answers_and_keeps_what_it_knew()
{
    QFETCH(const Moment, moment);
    QFETCH(const Fault, fault);
    WindowDesk desk;
    desk.line.spoil({fault, moment, "GET /api/trades/open?accountId=a1", {}});
    desk.f.server.on("GET", "/api/trades/open?accountId=a1", StubAnswer::list({}));
    desk.f.feed.send(R"({"type":"orders_changed"})");
    QTRY_VERIFY(desk.line.news().struck > 0);
    use(desk);
    const auto failures = [&] {
        return desk.f.journal().filter(QRegularExpression(
            u"^Network: Failed to load trades: Operation canceled \\(http://127\\.0\\.0\\.1:\\d+\\)$"_s));
    };
    QTRY_VERIFY2(!failures().isEmpty(), qPrintable(desk.f.journal().join(u'\n')));
    QCOMPARE(desk.f.list("tradeList").topLevelItemCount(), 1);

    desk.line.mend();
    desk.f.feed.send(R"({"type":"orders_changed"})");
    QTRY_COMPARE(desk.f.list("tradeList").topLevelItemCount(), 0);
    QVERIFY2(desk.heart.answersInTime(), qPrintable(desk.heart.told()));
    FaultTable::add({"main window", moment, fault, failures(), desk.heart.longest()});
}

void tst_WindowFaults::a_position_is_closed_once_and_the_lists_tell_whether()
{
    QFETCH(const Fault, fault);
    QFETCH(const QString, told);
    WindowDesk desk;
    desk.line.spoil(
        {fault, Moment::Headers, "POST /api/trades/close/t1", desk.elsewhere.url().toStdString() + '/'});
    desk.f.server.on("GET", "/api/trades/open?accountId=a1", StubAnswer::list({})); // it was carried out
    desk.f.server.on("POST", "/api/trades/close/t1", StubAnswer::json(R"({"id":"t1"})"));
    closePosition(desk);
    QTRY_COMPARE(desk.tradeLines().size(), 1);
    const QString wanted = told.isEmpty() ? u"Trade: Position closed"_s : u"Trade: Close failed: "_s + told;
    QVERIFY2(desk.tradeLines().constFirst().startsWith(wanted), qPrintable(desk.tradeLines().constFirst()));
    desk.line.mend();
    QTRY_COMPARE(desk.f.list("tradeList").topLevelItemCount(), 0);
    desk.f.awaitAllLists();
    QCOMPARE(desk.f.server.count("POST", "/api/trades/close/t1"), 1);
    QCOMPARE(desk.elsewhere.requests().size(), 0);
    QVERIFY2(desk.heart.answersInTime(), qPrintable(desk.heart.told()));
    FaultTable::add({"main window", Moment::Headers, fault, desk.tradeLines(), desk.heart.longest()});
}

TAVORAN_TEST(tst_WindowFaults)
#include "tst_WindowFaults.moc"
