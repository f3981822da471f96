#include "MainWindowFixture.h"
#include "orders/ModifyDialog.h"
#include "orders/OrderDialog.h"
#include "support/LogMessages.h"
#include "support/TestMain.h"

#include <QApplication>
#include <QDockWidget>
#include <QMessageBox>
#include <QPushButton>

#include <functional>

using namespace Qt::StringLiterals;
using fixtures::logMessages;

namespace {

constexpr int stillRunning = 9;

/// Runs the application's own loop, in which `leave` is done; its exit code.
int runAnd(MainWindow& window, const std::function<void()>& leave)
{
    QTimer::singleShot(0, &window, leave);
    QTimer::singleShot(5000, &window, [] { QCoreApplication::exit(stillRunning); });
    return QCoreApplication::exec();
}

/// The hands of the session manager, which hands over a manager that nobody here asks for anything.
void commitSession()
{
    QObject manager;
    QVERIFY(QMetaObject::invokeMethod(
        qApp, "commitDataRequest", Qt::DirectConnection, QGenericArgument("QSessionManager&", &manager)));
}

void press(const QWidget& dialog, const QString& text)
{
    for (QPushButton* button : dialog.findChildren<QPushButton*>()) {
        if (button->text() == text)
            button->click();
    }
}

} // namespace

/// The ways out of the terminal: what is kept, and what is on its way.
class tst_Leaving final : public QObject {
    Q_OBJECT

    static QDockWidget& dock(const MainWindowFixture& f, const QString& name)
    {
        return *f.window->findChild<QDockWidget*>(name);
    }

private Q_SLOTS:
    void init() { QFile::remove(logFilePath()); }

    void floatingPanesAreThereAgainAfterEveryWayOut_data()
    {
        QTest::addColumn<std::function<void(MainWindowFixture&)>>("leave");
        const auto row = [](const char* name, const std::function<void(MainWindowFixture&)>& leave) {
            QTest::newRow(name) << leave;
        };
        row("Exit", [](MainWindowFixture& f) { f.action("E&xit")->trigger(); });
        row("Ctrl+Q",
            [](MainWindowFixture& f) { QTest::keyClick(f.window.get(), Qt::Key_Q, Qt::ControlModifier); });
        row("the window's own button", [](MainWindowFixture& f) { f.window->close(); });
        row("a wish from outside", [](MainWindowFixture&) { QCoreApplication::quit(); });
        row("the session's end", [](MainWindowFixture&) {
            commitSession();
            QEvent quit(QEvent::Quit);
            QCoreApplication::sendEvent(qApp, &quit);
        });
    }
    void floatingPanesAreThereAgainAfterEveryWayOut()
    {
        QFETCH(const std::function<void(MainWindowFixture&)>, leave);
        const QStringList floating{u"dockMarketWatch"_s, u"dockNavigator"_s, u"dockTerminal"_s};
        // Qt walks through its windows in the order of their addresses.
        for (int time = 0; time < 6; ++time) {
            MainWindowFixture f;
            f.open();
            f.window->resize(900, 700);
            f.window->activateWindow();
            QVERIFY(QTest::qWaitForWindowActive(f.window.get()));
            for (const QString& name : floating)
                dock(f, name).setFloating(true);
            QCoreApplication::processEvents();
            const QByteArray state = f.window->saveState();
            const QByteArray geometry = f.window->saveGeometry();

            QCOMPARE(runAnd(*f.window, [&] { leave(f); }), 0);

            const TerminalSettings kept(SettingsStore::userFilePath());
            QCOMPARE(kept.windowState(), state);
            QCOMPARE(kept.windowGeometry(), geometry);
            f.open();
            for (const QString& name : floating) {
                QVERIFY2(dock(f, name).isFloating(), qPrintable(name));
                QVERIFY2(dock(f, name).isVisible(), qPrintable(name));
            }
        }
    }

    void theLayoutIsKeptWhenTheSessionEnds()
    {
        MainWindowFixture f;
        f.open();
        dock(f, u"dockMarketWatch"_s).setFloating(true);
        const QByteArray state = f.window->saveState();
        // A session manager may end the process without another word.
        commitSession();
        const TerminalSettings kept(SettingsStore::userFilePath());
        QCOMPARE(kept.windowState(), state);
    }

    void theLayoutIsStoredOnce()
    {
        MainWindowFixture f;
        f.open();
        TerminalSettings& settings = TerminalSettings::instance();
        const int code = runAnd(*f.window, [&] {
            f.window->close();
            QVERIFY(!settings.windowState().isEmpty());
            settings.setWindowLayout({}, {}); // the end of the loop is still to come
        });
        QCOMPARE(code, 0);
        QVERIFY(settings.windowState().isEmpty());
    }

    void aWindowShownAgainIsKeptAsItThenIs()
    {
        MainWindowFixture f;
        f.open();
        f.window->close();
        f.window->show();
        f.window->resize(777, 666);
        f.window->close();
        QWidget restored;
        QVERIFY(restored.restoreGeometry(TerminalSettings::instance().windowGeometry()));
        QCOMPARE(restored.size(), QSize(777, 666));
    }

    void aSendingWindowDoesNotHoldTheTerminalBack_data()
    {
        QTest::addColumn<bool>("modifies");
        QTest::addColumn<bool>("fromOutside");
        QTest::newRow("order, Exit") << false << false;
        QTest::newRow("order, a wish from outside") << false << true;
        QTest::newRow("modification, Exit") << true << false;
        QTest::newRow("modification, a wish from outside") << true << true;
    }
    void aSendingWindowDoesNotHoldTheTerminalBack()
    {
        QFETCH(const bool, modifies);
        QFETCH(const bool, fromOutside);
        MainWindowFixture f;
        f.signInAndSettle();
        f.server.on("POST", "/api/trades/place", StubAnswer::held());
        f.server.on("PUT", "/api/trades/modify/t1", StubAnswer::held());
        if (modifies)
            f.window->onTradeDoubleClicked({{u"id"_s, u"t1"_s}, {u"symbol"_s, u"EURUSD"_s}});
        else
            f.window->openOrderDialog();
        const QWidget* dialog = QApplication::activeModalWidget();
        QVERIFY(dialog);
        press(*dialog, modifies ? u"Modify"_s : u"Buy by Market"_s);
        QTRY_COMPARE(f.server.heldCount(), 1);
        QVERIFY(dialog->isVisible());

        const int code = runAnd(*f.window, [&] {
            if (fromOutside)
                QCoreApplication::quit();
            else
                f.action("E&xit")->trigger(); // the tray's entry does the same, also under a modal window
        });
        QCOMPARE(code, 0);
        QVERIFY(!TerminalSettings::instance().windowState().isEmpty());
        const QStringList told
            = logMessages().filter(modifies ? u"PUT /api/trades/modify/t1"_s : u"POST /api/trades/place"_s);
        QCOMPARE(told.size(), 1);
    }

    void whatHadNoAnswerStandsInTheLog()
    {
        MainWindowFixture f;
        f.signInAndSettle();
        f.server.on("POST", "/api/trades/place", StubAnswer::held());
        f.server.on("GET", "/api/candles", StubAnswer::held());
        f.window->openChart(u"EURUSD"_s);
        f.window->onQuickTrade(u"EURUSD"_s, u"BUY"_s, 0.25);
        f.window->onQuickTrade(u"USDJPY"_s, u"SELL"_s, 0.5);
        QTRY_COMPARE(f.server.heldCount(), 3);
        QFile::remove(logFilePath());

        QCOMPARE(runAnd(*f.window, [&] { f.action("E&xit")->trigger(); }), 0);
        QCOMPARE(logMessages(),
            QStringList({uR"([Network] Left without an answer to POST /api/trades/place )"
                         R"({"accountId":"a1","lotSize":0.25,"orderKind":"MARKET","symbol":"EURUSD","type":"BUY"})"_s,
                uR"([Network] Left without an answer to POST /api/trades/place )"
                R"({"accountId":"a1","lotSize":0.5,"orderKind":"MARKET","symbol":"USDJPY","type":"SELL"})"_s}));
    }

    void whatExpertsWaitedForIsCountedInTheLog()
    {
        MainWindowFixture f;
        f.signInAndSettle();
        f.server.on("POST", "/api/trades/place", StubAnswer::held());
        f.action("Algo Trading")->setChecked(true);
        for (int i = 0; i < 5; ++i)
            f.window->onExpertOrder({{u"symbol"_s, u"EURUSD"_s}});
        QTRY_COMPARE(f.server.heldCount(), 2);
        const QStringList journal = f.journal();
        QFile::remove(logFilePath());

        QCOMPARE(runAnd(*f.window, [&] { f.action("E&xit")->trigger(); }), 0);
        const QStringList told = logMessages();
        QCOMPARE(told.filter(u"Left without an answer"_s).size(), 2);
        QCOMPARE(told.filter(u"[Expert]"_s), QStringList({u"[Expert] Left with 3 request(s) not sent"_s}));
        QCOMPARE(f.journal(), journal);
    }

    void whatWasAnsweredIsNotTold()
    {
        MainWindowFixture f;
        f.signInAndSettle();
        f.server.once("POST", "/api/trades/place", StubAnswer::json("{}"));
        f.server.once("POST", "/api/trades/place", StubAnswer::message(u"No"_s, 400));
        f.window->onQuickTrade(u"EURUSD"_s, u"BUY"_s, 0.25);
        f.window->onQuickTrade(u"EURUSD"_s, u"BUY"_s, 0.25);
        QTRY_COMPARE(f.journalCount(u"Trade: One-click BUY EURUSD executed"_s), 1);
        QTRY_COMPARE(f.journalCount(u"Trade: One-click order failed: No"_s), 1);
        QCOMPARE(runAnd(*f.window, [&] { f.action("E&xit")->trigger(); }), 0);
        QVERIFY(logMessages().filter(u"/api/trades/place"_s).isEmpty());
    }

    void anOpenQuestionDoesNotHoldTheTerminalBack()
    {
        MainWindowFixture f;
        f.open();
        QMessageBox question(QMessageBox::Question, {}, u"?"_s, QMessageBox::Yes | QMessageBox::YesToAll,
            f.window.get()); // without a button to escape by it cannot be closed
        question.open();
        QCOMPARE(runAnd(*f.window, [&] { f.action("E&xit")->trigger(); }), 0);
    }
};

TAVORAN_TEST(tst_Leaving)
#include "tst_Leaving.moc"
