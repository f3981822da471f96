#include "MainWindowFixture.h"
#include "app/FileFixture.h"
#include "app/ui/Theme.h"
#include "mainwindow/PopupPrices.h"
#include "mainwindow/TrayIcon.h"
#include "panes/AlertsPane.h"
#include "panes/MarketWatchWidget.h"
#include "panes/NavigatorWidget.h"
#include "panes/NewsPane.h"
#include "panes/TerminalPane.h"
#include "support/TestMain.h"

#include <QDockWidget>
#include <QKeySequence>
#include <QMenu>
#include <QMenuBar>
#include <QMetaMethod>
#include <QTreeWidget>

using namespace Qt::StringLiterals;

class tst_MainWindow final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void windowIsBuiltAsPromised()
    {
        MainWindowFixture f;
        f.open();
        QCOMPARE(f.window->windowTitle(), u"Tavoran Terminal"_s);
        QCOMPARE(MainWindow().size(), QSize(1280, 800));
        const auto* area = qobject_cast<QMdiArea*>(f.window->centralWidget());
        QVERIFY(area);
        QCOMPARE(area->viewMode(), QMdiArea::TabbedView);
        QCOMPARE(area->tabPosition(), QTabWidget::South);
        QVERIFY(area->tabsClosable());
        QVERIFY(area->tabsMovable());
        QCOMPARE(area->background(), QBrush(themeBackdropColor(), Qt::SolidPattern));
        QVERIFY(f.window->findChild<QTimer*>(u"dockSnapshotTimer"_s)->isActive());
        const auto* toolbox
            = qobject_cast<QTabWidget*>(f.window->findChild<QDockWidget*>(u"dockTerminal"_s)->widget());
        QStringList tabs;
        for (int i = 0; i < toolbox->count(); ++i)
            tabs.append(toolbox->tabText(i));
        QCOMPARE(tabs,
            QStringList({u"Trade"_s, u"History"_s, u"Experts"_s, u"Journal"_s, u"Calendar"_s, u"Alerts"_s}));
        QCOMPARE(f.window->menuBar()->actions().value(0)->text(), u"&File"_s);
        QCOMPARE(f.action("New Order")->shortcut(), QKeySequence(Qt::Key_F9));
        QVERIFY(f.window->findChild<TrayIcon*>() == nullptr || QSystemTrayIcon::isSystemTrayAvailable());
    }

    void docksAndPagesHoldTheirPanes()
    {
        MainWindowFixture f;
        f.open();
        const auto paneOf
            = [&f](const QString& dock) { return f.window->findChild<QDockWidget*>(dock)->widget(); };
        QVERIFY(qobject_cast<MarketWatchWidget*>(paneOf(u"dockMarketWatch"_s)));
        QVERIFY(qobject_cast<NavigatorWidget*>(paneOf(u"dockNavigator"_s)));
        const auto* toolbox = qobject_cast<TerminalPane*>(paneOf(u"dockTerminal"_s));
        QVERIFY(toolbox);
        QVERIFY(qobject_cast<NewsPane*>(toolbox->widget(4)));
        QVERIFY(qobject_cast<AlertsPane*>(toolbox->widget(5)));
    }

    void slotsAreKnownByName()
    {
        QSet<QByteArray> known;
        for (int i = 0; i < MainWindow::staticMetaObject.methodCount(); ++i) {
            const QMetaMethod method = MainWindow::staticMetaObject.method(i);
            if (method.methodType() == QMetaMethod::Slot)
                known.insert(method.name());
        }
        for (const char* slot : {"onHello", "onTradesUpdated", "onOrdersChanged", "onAccountUpdated",
                 "onAccountSelected", "openChart", "onTimeframeAction", "onSubWindowActivated",
                 "openOrderDialog", "onTradeContextMenu", "onTradeDoubleClicked", "onChartModifyLevel",
                 "onQuickTrade", "showSpecification", "togglePopupPrices", "toggleDepthOfMarket",
                 "onExpertOrder", "onExpertCloseAll"})
            QVERIFY2(known.contains(slot), slot);
    }

    void exampleScriptsStandInTheNavigator()
    {
        MainWindowFixture f;
        f.open();
        const auto* navigator
            = f.window->findChild<QDockWidget*>(u"dockNavigator"_s)->findChild<QTreeWidget*>();
        for (const auto& script : {u"MA_Cross"_s, u"RSI_Reversal"_s})
            QCOMPARE(navigator->findItems(script, Qt::MatchExactly | Qt::MatchRecursive).size(), 1);
    }

    void startIsWrittenToTheJournal()
    {
        QCoreApplication::setApplicationVersion(u"9.8.7"_s);
        MainWindowFixture f;
        f.open();
        QCOMPARE(f.journal().value(0), u"Terminal: Tavoran Terminal 9.8.7 started"_s);
    }

    void aFailedSaveIsToldInTheJournalOnce()
    {
        MainWindowFixture f;
        f.open();
        TerminalSettings& settings = TerminalSettings::instance();
        const QString line
            = u"Terminal: The settings could not be saved to %1. What was saved before is kept."_s.arg(
                SettingsStore::userFilePath());
        const auto saveInVain = [&settings] {
            const fixtures::FullDisk full(0);
            settings.setAlerts(u"[1]"_s);
            settings.setAlerts(u"[]"_s);
        };
        saveInVain();
        QCOMPARE(f.journalCount(line), 1);
        saveInVain();
        QCOMPARE(f.journalCount(line), 1);
        QVERIFY(settings.sync());
        saveInVain();
        QCOMPARE(f.journalCount(line), 2);
        QVERIFY(settings.sync());
    }

    void aFailedSaveAfterTheWindowIsGoneIsToldToTheNextOne()
    {
        MainWindowFixture f;
        f.open();
        f.window.reset();
        TerminalSettings& settings = TerminalSettings::instance();
        {
            const fixtures::FullDisk full(0);
            settings.setAlerts(u"[1]"_s);
        }
        settings.setAlerts(u"[]"_s);
        f.open();
        QCOMPARE(f.journal().filter(u"The settings could not be saved"_s).size(), 1);
    }

    void what_asks_the_server_goes_while_the_window_has_its_clients()
    {
        MainWindowFixture f;
        f.signInAndSettle();
        f.window->openChart(u"EURUSD"_s);
        f.window->openOrderDialog();
        f.settle();
        QStringList left{u"NewsPane"_s, u"ChartArea"_s, u"ChartWindow"_s, u"OrderDialog"_s,
            u"AccountLoader"_s, u"TradeActions"_s, u"TradeDesk"_s};
        // The clients are members: once they are gone, what is left of the window is a bare one of Qt's.
        const QObject* window = f.window.get();
        const QList<QObject*> parts = f.window->findChildren<QObject*>();
        for (const QObject* part : parts) {
            const QString name = QString::fromLatin1(part->metaObject()->className());
            if (!left.contains(name))
                continue;
            connect(part, &QObject::destroyed, this, [&left, name, window] {
                if (window->metaObject() == &MainWindow::staticMetaObject)
                    left.removeOne(name);
            });
        }
        f.window.reset();
        QCOMPARE(left, QStringList());
    }

    void themeSwitchAppliesAtOnce()
    {
        MainWindowFixture f;
        f.open();
        f.action("Dark")->trigger();
        QVERIFY(isDarkTheme());
        QVERIFY(f.action("Dark")->isChecked());
        QVERIFY(!f.action("Light")->isChecked());
        QCOMPARE(QApplication::palette().color(QPalette::Window), QColor(0x2b, 0x2b, 0x2b));
        f.open();
        QVERIFY(f.action("Dark")->isChecked());
        f.action("Light")->trigger();
        QVERIFY(!isDarkTheme());
        QVERIFY(f.action("Light")->isChecked());
        QCOMPARE(QApplication::palette().color(QPalette::Window), QColor(0xf0, 0xf0, 0xf0));
    }

    void dockKeysShowAndHide()
    {
        MainWindowFixture f;
        f.open();
        f.window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(f.window.get()));
        auto* watch = f.window->findChild<QDockWidget*>(u"dockMarketWatch"_s);
        auto* toolbox = f.window->findChild<QDockWidget*>(u"dockTerminal"_s);
        QTest::keyClick(f.window.get(), Qt::Key_M, Qt::ControlModifier);
        QVERIFY(watch->isHidden());
        QTest::keyClick(f.window.get(), Qt::Key_M, Qt::ControlModifier);
        QVERIFY(!watch->isHidden());
        QTest::keyClick(f.window.get(), Qt::Key_T, Qt::ControlModifier);
        QVERIFY(toolbox->isHidden());
    }

    void minimizedWindowIsRepaired()
    {
        MainWindowFixture f;
        f.open();
        auto* watch = f.window->findChild<QDockWidget*>(u"dockMarketWatch"_s);
        f.window->showMinimized();
        QTRY_VERIFY(f.window->isMinimized());
        watch->hide();
        f.window->showNormal();
        QTRY_VERIFY(!watch->isHidden());
    }

    void otherChangesOfTheWindowRepairNothing()
    {
        MainWindowFixture f;
        f.open();
        auto* watch = f.window->findChild<QDockWidget*>(u"dockMarketWatch"_s);
        watch->hide();
        for (const Qt::WindowState state : {Qt::WindowMaximized, Qt::WindowNoState, Qt::WindowMinimized}) {
            f.window->setWindowState(state);
            QTRY_COMPARE(f.window->windowState(), Qt::WindowStates(state));
            QCoreApplication::processEvents(); // the first repair would come at once
            QVERIFY(watch->isHidden());
        }
    }

    void windowComesToTheFront()
    {
        MainWindowFixture f;
        f.open();
        f.window->showMinimized();
        QTRY_VERIFY(f.window->isMinimized());
        f.window->bringToFront();
        QTRY_VERIFY(!f.window->isMinimized());
        QTRY_VERIFY(f.window->isActiveWindow());
        f.window->hide();
        f.window->bringToFront();
        QVERIFY(f.window->isVisible());
    }

    void popupPricesShowAndHideWithTheirKey()
    {
        MainWindowFixture f;
        f.open();
        f.window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(f.window.get()));
        QVERIFY(!f.window->findChild<PopupPrices*>());
        for (int i = 0; i < 5; ++i) {
            QTest::keyClick(f.window.get(), Qt::Key_F10);
            QCOMPARE(f.window->findChildren<PopupPrices*>().size(), 1);
            const auto* popup = f.window->findChild<PopupPrices*>();
            QVERIFY(popup->isVisible());
            QVERIFY(popup->isWindow());
            QVERIFY(popup->windowFlags() & Qt::WindowStaysOnTopHint);
            QCOMPARE(popup->windowTitle(), u"Popup Prices"_s);
            // The keyboard stays where it was; the offscreen platform takes no notice of the wish.
            QVERIFY(popup->testAttribute(Qt::WA_ShowWithoutActivating));
            QTest::keyClick(f.window.get(), Qt::Key_F10);
            QVERIFY(!popup->isVisible());
        }
        f.window->togglePopupPrices();
        auto* popup = f.window->findChild<PopupPrices*>();
        QVERIFY(popup->isVisible());
        QTest::keyClick(popup, Qt::Key_Escape);
        QVERIFY(!popup->isVisible());
    }

    void popupPricesDoNotKeepTheTerminalOpen()
    {
        MainWindowFixture f;
        f.open();
        f.window->togglePopupPrices();
        QVERIFY(f.window->findChild<PopupPrices*>()->isVisible());
        // Qt counts windows only inside the application's own loop.
        QVERIFY(QGuiApplication::quitOnLastWindowClosed());
        constexpr int stillOpen = 7;
        QTimer::singleShot(5000, f.window.get(), [] { QCoreApplication::exit(stillOpen); });
        QTimer::singleShot(0, f.window.get(), &QWidget::close);
        QCOMPARE(QCoreApplication::exec(), 0);
    }

    void trayMenuOffersShowAndExit()
    {
        TrayIcon tray;
        QCOMPARE(tray.icon().icon().cacheKey(), appIcon().cacheKey());
        QCOMPARE(tray.icon().toolTip(), u"Tavoran Terminal"_s);
        const QList<QAction*> entries = tray.icon().contextMenu()->actions();
        QCOMPARE(entries.size(), 2);
        QCOMPARE(entries[0]->text(), u"Show"_s);
        QCOMPARE(entries[1]->text(), u"Exit"_s);
        QSignalSpy show(&tray, &TrayIcon::showRequested);
        QSignalSpy exit(&tray, &TrayIcon::exitRequested);
        entries[0]->trigger();
        entries[1]->trigger();
        Q_EMIT tray.icon().activated(QSystemTrayIcon::Trigger);
        Q_EMIT tray.icon().activated(QSystemTrayIcon::Context);
        QCOMPARE(show.count(), 2);
        QCOMPARE(exit.count(), 1);
    }
};

TAVORAN_TEST(tst_MainWindow)
#include "tst_MainWindow.moc"
