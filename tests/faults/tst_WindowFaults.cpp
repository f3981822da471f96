#include "faults/Fault.h"
#include "faults/FaultTable.h"
#include "faults/FaultyLine.h"
#include "faults/Heartbeat.h"
#include "mainwindow/MainWindowFixture.h"
#include "support/Hands.h"
#include "support/TestMain.h"

#include <QContextMenuEvent>
#include <QMenu>
#include <QMessageBox>
#include <QUrl>

using namespace Qt::StringLiterals;
using namespace faults;

namespace {

/// The whole main window behind a faulty line.
struct WindowDesk final {
    MainWindowFixture f;
    FaultyLine line{static_cast<quint16>(QUrl(f.server.url()).port())};
    Heartbeat heart{[] {}};

    WindowDesk()
    {
        TerminalSettings::instance().setServerUrl(line.url());
        f.server.on("POST", "/api/trades/close/t1", StubAnswer::json(R"({"id":"t1"})"));
        f.signInAndSettle();
        QTRY_VERIFY(isConnected());
        f.server.clearRequests();
    }
    Q_DISABLE_COPY_MOVE(WindowDesk)

    [[nodiscard]] bool isConnected() const
    {
        return f.window->findChild<QLabel*>(u"connectionLabel"_s)->text().contains("</span> Connected"_L1);
    }
    void closePosition() const
    {
        QTreeWidget& trades = f.list("tradeList");
        const QPoint place = trades.visualItemRect(trades.topLevelItem(0)).center();
        QContextMenuEvent event(QContextMenuEvent::Mouse, place, trades.viewport()->mapToGlobal(place));
        QApplication::sendEvent(trades.viewport(), &event);
        hands::choose(*f.window->findChild<QMenu*>(u"tradeMenu"_s), u"Close Position"_s);
        auto* question = f.window->findChild<QMessageBox*>();
        QVERIFY(question);
        QTest::mouseClick(question->button(QMessageBox::Yes), Qt::LeftButton);
    }
    [[nodiscard]] QStringList tradeLines() const
    {
        return f.journal().filter(QRegularExpression(u"^Trade: "_s));
    }
};

} // namespace

/// What a trader sees of a line that fails.
class tst_WindowFaults final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void a_window_without_a_line_is_right_again_with_it_data()
    {
        QTest::addColumn<Fault>("fault");
        for (const Fault fault : {Fault::Refused, Fault::Reset, Fault::Cut})
            QTest::newRow(nameOf(fault)) << fault;
    }
    void a_window_without_a_line_is_right_again_with_it();

    void a_position_is_closed_once_and_the_lists_tell_whether_data()
    {
        QTest::addColumn<Fault>("fault");
        QTest::addColumn<QString>("told");
        QTest::newRow("reset") << Fault::Reset << u"Connection closed"_s;
        QTest::newRow("cut") << Fault::Cut << u"Connection closed"_s;
        QTest::newRow("crumbs") << Fault::Crumbs << QString();
        QTest::newRow("server error") << Fault::ServerError << u"Error transferring http://127"_s;
        QTest::newRow("redirect") << Fault::Redirect << u"The server answered with a redirect"_s;
    }
    void a_position_is_closed_once_and_the_lists_tell_whether();
};

void tst_WindowFaults::a_window_without_a_line_is_right_again_with_it()
{
    QFETCH(const Fault, fault);
    WindowDesk desk;
    desk.heart.restart();
    desk.line.spoil({fault, Moment::Connecting, "GET /ws/terminal", {}});
    desk.line.cutAll();
    QTRY_VERIFY(!desk.isConnected());
    QTRY_VERIFY(desk.line.news().struck > 0);

    // Meanwhile the window answers, and keeps what it knew.
    QTest::keyClick(desk.f.window.get(), Qt::Key_F6);
    QCOMPARE(desk.f.list("tradeList").topLevelItemCount(), 1);
    QCOMPARE(desk.f.list("marketWatchSymbols").topLevelItemCount(), 2);

    desk.f.feed.setGreeting(
        records::hello({records::symbol("EURUSD")}, records::prices({{"EURUSD", 1.7, 1.8}})));
    desk.line.mend();
    QTRY_VERIFY_WITH_TIMEOUT(desk.isConnected(), 20000);
    QTRY_COMPARE(desk.f.list("marketWatchSymbols").topLevelItem(0)->text(1), u"1.70000"_s);
    QVERIFY(desk.heart.longestWork() < std::chrono::seconds(2));
    FaultTable::add(
        {"main window", Moment::Connecting, fault, desk.heart.longestGap(), desk.heart.longestWork(), {}});
}

void tst_WindowFaults::a_position_is_closed_once_and_the_lists_tell_whether()
{
    QFETCH(const Fault, fault);
    QFETCH(const QString, told);
    WindowDesk desk;
    desk.heart.restart();
    desk.line.spoil({fault, Moment::Headers, "POST /api/trades/close/t1", "http://127.0.0.1:1/"});
    desk.f.server.on("GET", "/api/trades/open?accountId=a1", StubAnswer::list({})); // it was carried out
    desk.closePosition();
    QTRY_COMPARE(desk.tradeLines().size(), 1);
    const QString wanted = told.isEmpty() ? u"Trade: Position closed"_s : u"Trade: Close failed: "_s + told;
    QVERIFY2(desk.tradeLines().constFirst().startsWith(wanted), qPrintable(desk.tradeLines().constFirst()));
    desk.line.mend();
    QTRY_COMPARE(desk.f.list("tradeList").topLevelItemCount(), 0);
    desk.f.awaitAllLists();
    QCOMPARE(desk.f.server.count("POST", "/api/trades/close/t1"), 1);
    QVERIFY(desk.heart.longestWork() < std::chrono::seconds(2));
    FaultTable::add({"main window", Moment::Headers, fault, desk.heart.longestGap(), desk.heart.longestWork(),
        desk.tradeLines()});
}

TAVORAN_TEST(tst_WindowFaults)
#include "tst_WindowFaults.moc"
