#include "MainWindowFixture.h"

#include "app/ui/SoundPlayer.h"
#include "app/ui/Theme.h"
#include "mainwindow/TrayIcon.h"
#include "support/TestMain.h"

#include <QDockWidget>
#include <QMenu>

using namespace Qt::StringLiterals;

namespace {

struct ShownBalloon final {
    QString title;
    QString text;
    QSystemTrayIcon::MessageIcon icon = QSystemTrayIcon::NoIcon;
    int milliseconds = 0;
};

bool desktopHasTray = true;
QList<ShownBalloon> balloons;
QList<SoundKind> sounds;

} // namespace

// Offscreen there is no tray, and nobody hears a sound. These stand in front of the functions of their
// names for everything that is linked into this program: they make up the tray that the window asks for,
// and note its balloons and sounds.
void play(SoundKind kind)
{
    sounds.append(kind);
}

bool QSystemTrayIcon::isSystemTrayAvailable()
{
    return desktopHasTray;
}

void QSystemTrayIcon::showMessage(
    const QString& title, const QString& message, MessageIcon icon, int milliseconds)
{
    balloons.append({title, message, icon, milliseconds});
}

namespace {

QStringList shownTexts()
{
    QStringList texts;
    for (const ShownBalloon& balloon : balloons)
        texts.append(balloon.text);
    return texts;
}

/// Counts how often a window is brought in front of the others.
class RaiseCounter final : public QObject {
public:
    explicit RaiseCounter(QWidget& window) { window.installEventFilter(this); }
    bool eventFilter(QObject*, QEvent* event) override
    {
        if (event->type() == QEvent::ZOrderChange)
            ++count;
        return false;
    }
    int count = 0;
};

} // namespace

/// What the main window and its icon at the tray have to do with each other.
class tst_TrayWiring final : public QObject {
    Q_OBJECT

    static TrayIcon* trayOf(const MainWindowFixture& f) { return f.window->findChild<TrayIcon*>(); }
    static QAction* entry(TrayIcon& tray, const QString& text)
    {
        const QList<QAction*> actions = tray.icon().contextMenu()->actions();
        const auto found = std::find_if(
            actions.cbegin(), actions.cend(), [&](const QAction* action) { return action->text() == text; });
        return found == actions.cend() ? nullptr : *found;
    }

private Q_SLOTS:
    void init()
    {
        desktopHasTray = true;
        balloons.clear();
        sounds.clear();
        TerminalSettings::instance().setAlerts({});
    }

    void theIconAppearsWithItsMenu()
    {
        MainWindowFixture f;
        f.open();
        TrayIcon* const tray = trayOf(f);
        QVERIFY(tray);
        QVERIFY(tray->icon().isVisible());
        QCOMPARE(tray->icon().icon().cacheKey(), appIcon().cacheKey());
        QCOMPARE(tray->icon().toolTip(), u"Tavoran Terminal"_s);
        QStringList entries;
        for (const QAction* action : tray->icon().contextMenu()->actions())
            entries.append(action->text());
        QCOMPARE(entries, QStringList({u"Show"_s, u"Exit"_s}));
    }

    void withoutATrayThereIsNoIconAndNoBalloon()
    {
        desktopHasTray = false;
        MainWindowFixture f;
        f.signInAndSettle();
        QVERIFY(!trayOf(f));
        f.feed.send(records::ordersChanged().filled());
        f.feed.send(records::ordersChanged().closed("MANUAL"));
        f.feed.send(records::accountUpdate("a1", "FAILED"));
        f.feed.send(records::accountUpdate("a1", "PASSED"));
        QTRY_VERIFY(f.journal().contains(u"Account: Account a1 status changed to PASSED"_s));
        QCOMPARE(f.journalCount(u"Account: Account a1 status changed to FAILED"_s), 1);
        QCOMPARE(f.journalCount(u"Trade: Orders changed — refreshing"_s), 1);
        QCOMPARE(f.journalCount(u"Trade: Orders changed (MANUAL) — refreshing"_s), 1);
        QCOMPARE(f.log("expertsList"),
            QStringList({u"Execution: Pending order filled"_s, u"Execution: Position closed (MANUAL)"_s}));
        QCOMPARE(balloons.size(), 0);
        // The failed account is silent on purpose: its sound belongs to the balloon.
        QCOMPARE(sounds, QList<SoundKind>({SoundKind::Fill, SoundKind::Close}));
    }

    void theIconAndItsMenuBringTheWindowBack_data()
    {
        QTest::addColumn<int>("activation"); // 0: the menu's entry
        QTest::addColumn<Qt::WindowStates>("state");
        QTest::addColumn<bool>("hidden");
        const struct {
            const char* name;
            int activation;
        } ways[] = {{"click", QSystemTrayIcon::Trigger}, {"double-click", QSystemTrayIcon::DoubleClick},
            {"Show", QSystemTrayIcon::Unknown}};
        for (const auto& [name, activation] : ways) {
            QTest::addRow("%s, hidden", name) << activation << Qt::WindowStates(Qt::WindowNoState) << true;
            QTest::addRow("%s, minimized", name)
                << activation << Qt::WindowStates(Qt::WindowMinimized) << false;
            QTest::addRow("%s, hidden while minimized", name)
                << activation << Qt::WindowStates(Qt::WindowMinimized) << true;
            QTest::addRow("%s, behind another", name)
                << activation << Qt::WindowStates(Qt::WindowNoState) << false;
        }
    }
    void theIconAndItsMenuBringTheWindowBack()
    {
        QFETCH(const int, activation);
        QFETCH(const Qt::WindowStates, state);
        QFETCH(const bool, hidden);
        MainWindowFixture f;
        f.open();
        TrayIcon* const tray = trayOf(f);
        QVERIFY(tray);
        f.window->setWindowState(state);
        f.window->setHidden(hidden);
        QWidget other;
        other.show();
        other.activateWindow();
        QTRY_VERIFY(!f.window->isActiveWindow());
        const RaiseCounter raises(*f.window);

        if (activation == QSystemTrayIcon::Unknown)
            entry(*tray, u"Show"_s)->trigger();
        else
            Q_EMIT tray->icon().activated(static_cast<QSystemTrayIcon::ActivationReason>(activation));

        QVERIFY(f.window->isVisible());
        QVERIFY(!f.window->isMinimized());
        QVERIFY(raises.count > 0);
        QTRY_VERIFY(f.window->isActiveWindow());
    }

    void askingForTheMenuLeavesTheWindowAlone()
    {
        MainWindowFixture f;
        f.open();
        TrayIcon* const tray = trayOf(f);
        QVERIFY(tray);
        f.window->hide();
        Q_EMIT tray->icon().activated(QSystemTrayIcon::Context);
        QCoreApplication::processEvents();
        QVERIFY(!f.window->isVisible());
    }

    void exitSavesTheLayoutAndQuits_data()
    {
        QTest::addColumn<bool>("hidden");
        QTest::newRow("shown") << false;
        QTest::newRow("hidden, which no close event reaches") << true;
    }
    void exitSavesTheLayoutAndQuits()
    {
        QFETCH(const bool, hidden);
        MainWindowFixture f;
        f.open();
        TrayIcon* const tray = trayOf(f);
        QVERIFY(tray);
        f.window->resize(777, 666);
        f.window->setHidden(hidden);
        QVERIFY(TerminalSettings::instance().windowState().isEmpty());
        QTimer::singleShot(0, tray, [&] { entry(*tray, u"Exit"_s)->trigger(); });
        QTimer::singleShot(10000, tray, [] { QCoreApplication::exit(9); });
        QCOMPARE(QCoreApplication::exec(), 0);

        const TerminalSettings kept(SettingsStore::userFilePath());
        QVERIFY(!kept.windowState().isEmpty());
        QWidget restored;
        QVERIFY(restored.restoreGeometry(kept.windowGeometry()));
        QCOMPARE(restored.size(), QSize(777, 666));
    }

    void orderAndAccountEventsShowBalloons_data()
    {
        QTest::addColumn<QJsonObject>("event");
        QTest::addColumn<QString>("title");
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("critical");
        QTest::addColumn<int>("milliseconds");
        QTest::addColumn<QList<SoundKind>>("heard");
        QTest::newRow("filled") << QJsonObject(records::ordersChanged("123456789012").filled())
                                << u"Order Filled"_s << u"A pending order on 12345678 was filled."_s << false
                                << 8000 << QList<SoundKind>({SoundKind::Fill});
        QTest::newRow("stop loss") << QJsonObject(records::ordersChanged().closed("SL"))
                                   << u"Position Closed (SL)"_s << u"A position hit its SL."_s << false
                                   << 8000 << QList<SoundKind>({SoundKind::Fill});
        QTest::newRow("take profit") << QJsonObject(records::ordersChanged().closed("TP"))
                                     << u"Position Closed (TP)"_s << u"A position hit its TP."_s << false
                                     << 8000 << QList<SoundKind>({SoundKind::Fill});
        QTest::newRow("failed") << QJsonObject(records::accountUpdate("a1", "FAILED")) << u"Account Failed"_s
                                << u"An account breached its risk limit and was closed."_s << true << 12000
                                << QList<SoundKind>({SoundKind::Error});
        QTest::newRow("passed") << QJsonObject(records::accountUpdate("a1", "PASSED"))
                                << u"Challenge Passed"_s
                                << u"An account passed its target — pending review."_s << false << 12000
                                << QList<SoundKind>();
    }
    void orderAndAccountEventsShowBalloons()
    {
        QFETCH(const QJsonObject, event);
        QFETCH(const QString, title);
        QFETCH(const QString, text);
        QFETCH(const bool, critical);
        QFETCH(const int, milliseconds);
        QFETCH(const QList<SoundKind>, heard);
        MainWindowFixture f;
        f.signInAndSettle();
        f.feed.send(event);
        QTRY_COMPARE(balloons.size(), 1);
        QCOMPARE(sounds, heard);
        QCOMPARE(balloons[0].title, title);
        QCOMPARE(balloons[0].text, text);
        QCOMPARE(balloons[0].icon, critical ? QSystemTrayIcon::Critical : QSystemTrayIcon::Information);
        QCOMPARE(balloons[0].milliseconds, milliseconds);
    }

    void otherEventsShowNone()
    {
        MainWindowFixture f;
        f.signInAndSettle();
        f.feed.send(records::ordersChanged());
        f.feed.send(records::ordersChanged().closed("MANUAL"));
        f.feed.send(records::tradesUpdate({records::position("t1").profit(-99)}));
        f.feed.send(records::accountUpdate("a1", "ACTIVE"));
        QTRY_VERIFY(f.journal().contains(u"Account: Account a1 status changed to ACTIVE"_s));
        QCOMPARE(balloons.size(), 0);
        QCOMPARE(sounds, QList<SoundKind>({SoundKind::Close}));
    }

    void alertsAndNewsShowBalloons()
    {
        TerminalSettings::instance().setAlerts(uR"([{"symbol":"EURUSD","above":true,"price":1.2}])"_s);
        MainWindowFixture f;
        f.server.on("GET", "/api/news/upcoming",
            StubAnswer::json(records::news({records::newsEvent("e").title("Rates")})));
        f.signInAndSettle();
        QTRY_COMPARE(balloons.size(), 1);
        QCOMPARE(balloons[0].title, u"Upcoming News — USD"_s);
        QCOMPARE(balloons[0].text, u"Rates in 5 minutes"_s);
        QCOMPARE(balloons[0].icon, QSystemTrayIcon::Warning);
        QCOMPARE(balloons[0].milliseconds, 15000);
        f.feed.send(records::priceUpdate({{"EURUSD", 1.25, 1.2501}}));
        QTRY_COMPARE(balloons.size(), 2);
        QCOMPARE(balloons[1].title, u"Price Alert — EURUSD"_s);
        QCOMPARE(balloons[1].text, u"EURUSD ≥ 1.20000 (now 1.25000)"_s);
        QCOMPARE(balloons[1].icon, QSystemTrayIcon::Information);
        QCOMPARE(balloons[1].milliseconds, 12000);
        QCOMPARE(sounds, QList<SoundKind>({SoundKind::Fill}));
    }

    void withoutATrayAnAlertStillFires()
    {
        desktopHasTray = false;
        TerminalSettings::instance().setAlerts(uR"([{"symbol":"EURUSD","above":true,"price":1.2}])"_s);
        MainWindowFixture f;
        f.signInAndSettle();
        f.feed.send(records::priceUpdate({{"EURUSD", 1.25, 1.2501}}));
        QTRY_COMPARE(sounds, QList<SoundKind>({SoundKind::Fill}));
        QVERIFY(TerminalSettings::instance().alerts().contains(u"\"triggered\":true"_s));
        QCOMPARE(balloons.size(), 0);
    }

    void whatBecameOfATradeIsHeard()
    {
        MainWindowFixture f;
        f.signInAndSettle();
        f.server.once("POST", "/api/trades/place", StubAnswer::json("{}"));
        f.server.once("POST", "/api/trades/place", StubAnswer::message(u"No"_s, 400));
        f.window->onQuickTrade(u"EURUSD"_s, u"BUY"_s, 0.1);
        QTRY_COMPARE(sounds, QList<SoundKind>({SoundKind::Open}));
        f.window->onQuickTrade(u"EURUSD"_s, u"BUY"_s, 0.1);
        QTRY_COMPARE(sounds, QList<SoundKind>({SoundKind::Open, SoundKind::Error}));
    }

    void balloonsThatComeTogetherAreAllShownAtOnce()
    {
        TrayIcon tray;
        tray.showBalloon({u"News"_s, u"one"_s, Balloon::Kind::Warning, 15000});
        tray.showBalloon({u"Alert"_s, u"two"_s, Balloon::Kind::Information, 12000});
        tray.showBalloon({u"Account"_s, u"three"_s, Balloon::Kind::Critical, 12000});
        tray.showBalloon({u"Filled"_s, u"four"_s, Balloon::Kind::Information, 8000});
        QCOMPARE(shownTexts(), QStringList({u"one"_s, u"two"_s, u"three"_s, u"four"_s}));
        QList<int> times;
        for (const ShownBalloon& balloon : balloons)
            times.append(balloon.milliseconds);
        QCOMPARE(times, QList<int>({15000, 12000, 12000, 8000}));
    }

    void severalAlertsOfOneSnapshotEachShowTheirBalloon()
    {
        TerminalSettings::instance().setAlerts(uR"([{"symbol":"EURUSD","above":true,"price":1.2},)"
                                               uR"({"symbol":"USDJPY","above":false,"price":150},)"
                                               uR"({"symbol":"EURUSD","above":true,"price":1.21}])"_s);
        MainWindowFixture f;
        f.signInAndSettle();
        f.feed.send(records::priceUpdate({{"EURUSD", 1.25, 1.2501}, {"USDJPY", 149, 149.1}}));
        f.feed.send(records::ordersChanged().filled());
        QTRY_COMPARE(sounds.size(), 4);
        QStringList titles;
        for (const ShownBalloon& balloon : balloons)
            titles.append(balloon.title);
        QCOMPARE(titles,
            QStringList({u"Price Alert — EURUSD"_s, u"Price Alert — USDJPY"_s, u"Price Alert — EURUSD"_s,
                u"Order Filled"_s}));
    }

    void aBalloonHoldsNoMarkup()
    {
        TrayIcon tray;
        tray.showBalloon(
            {u"<b>1 < 2</b> &amp; %1"_s, u"<img src='file:///x'> %2"_s, Balloon::Kind::Warning, 1});
        QCOMPARE(balloons.size(), 1);
        QCOMPARE(balloons[0].title, u"<\u200bb>1 < 2<\u200b/b> &amp; %1"_s);
        QCOMPARE(balloons[0].text, u"<\u200bimg src='file:///x'> %2"_s);
    }
};

TAVORAN_TEST(tst_TrayWiring)
#include "tst_TrayWiring.moc"
