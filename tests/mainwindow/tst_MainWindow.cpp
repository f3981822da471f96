#include "MainWindowFixture.h"
#include "app/Theme.h"
#include "mainwindow/PopupPrices.h"
#include "mainwindow/TrayIcon.h"
#include "support/TestMain.h"

#include <QDockWidget>
#include <QKeySequence>
#include <QMenuBar>
#include <QTreeWidget>

using namespace Qt::StringLiterals;

class tst_MainWindow final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void windowIsBuiltAsPromised();
    void menusHoldTheirEntriesInOrder();
    void exampleScriptsStandInTheNavigator();
    void startIsWrittenToTheJournal();
    void themeSwitchAppliesAtOnce();
    void dockKeysShowAndHide();
    void minimizedWindowIsRepaired();
    void windowComesToTheFront();
    void popupPricesShowAndHideWithTheirKey();
    void popupPricesDoNotKeepTheTerminalOpen();
    void trayMenuOffersShowAndExit();
};

void tst_MainWindow::windowIsBuiltAsPromised()
{
    MainWindowFixture f;
    f.open();
    QCOMPARE(f.window->windowTitle(), u"Tavoran Terminal"_s);
    QCOMPARE(f.window->size(), QSize(1280, 800));
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

void tst_MainWindow::menusHoldTheirEntriesInOrder()
{
    MainWindowFixture f;
    f.open();
    const auto entries = [](const QMenu* menu) {
        QStringList texts;
        for (const QAction* entry : menu->actions()) {
            const QString key = entry->shortcut().toString(QKeySequence::PortableText);
            texts.append(entry->isSeparator() ? u"-"_s : entry->text() + (key.isEmpty() ? key : u'|' + key));
        }
        return texts;
    };
    const QList<QAction*> menus = f.window->menuBar()->actions();
    QCOMPARE(menus.value(0)->text(), u"&File"_s);
    QCOMPARE(entries(menus[0]->menu()),
        QStringList({u"New Chart"_s, u"New Order|F9"_s, u"-"_s, u"E&xit|Ctrl+Q"_s}));
    QCOMPARE(menus.value(1)->text(), u"&View"_s);
    QCOMPARE(entries(menus[1]->menu()),
        QStringList({u"Market Watch|Ctrl+M"_s, u"Toolbox|Ctrl+T"_s, u"Popup Prices|F10"_s, u"-"_s,
            u"Restore Default Layout"_s, u"-"_s, u"Theme"_s}));
    const QMenu* themes = menus[1]->menu()->actions().constLast()->menu();
    QVERIFY(themes);
    QCOMPARE(entries(themes), QStringList({u"Light"_s, u"Dark"_s}));
    QVERIFY(f.action("Light")->isCheckable() && f.action("Dark")->isCheckable());
    QVERIFY(f.action("Light")->isChecked() != f.action("Dark")->isChecked());
}

void tst_MainWindow::exampleScriptsStandInTheNavigator()
{
    MainWindowFixture f;
    f.open();
    const auto* navigator = f.window->findChild<QDockWidget*>(u"dockNavigator"_s)->findChild<QTreeWidget*>();
    for (const auto& script : {u"MA_Cross"_s, u"RSI_Reversal"_s})
        QCOMPARE(navigator->findItems(script, Qt::MatchExactly | Qt::MatchRecursive).size(), 1);
}

void tst_MainWindow::startIsWrittenToTheJournal()
{
    QCoreApplication::setApplicationVersion(u"9.8.7"_s);
    MainWindowFixture f;
    f.open();
    QCOMPARE(f.journal().value(0), u"Terminal: Tavoran Terminal 9.8.7 started"_s);
}

void tst_MainWindow::themeSwitchAppliesAtOnce()
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

void tst_MainWindow::dockKeysShowAndHide()
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

void tst_MainWindow::minimizedWindowIsRepaired()
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

void tst_MainWindow::windowComesToTheFront()
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

void tst_MainWindow::popupPricesShowAndHideWithTheirKey()
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
        QTest::keyClick(f.window.get(), Qt::Key_F10);
        QVERIFY(!popup->isVisible());
    }
    f.window->togglePopupPrices();
    auto* popup = f.window->findChild<PopupPrices*>();
    QVERIFY(popup->isVisible());
    QTest::keyClick(popup, Qt::Key_Escape);
    QVERIFY(!popup->isVisible());
}

void tst_MainWindow::popupPricesDoNotKeepTheTerminalOpen()
{
    MainWindowFixture f;
    f.open();
    f.window->togglePopupPrices();
    QVERIFY(f.window->findChild<PopupPrices*>()->isVisible());
    // The toolkit counts windows only inside the application's own loop.
    QVERIFY(QGuiApplication::quitOnLastWindowClosed());
    constexpr int stillOpen = 7;
    QTimer::singleShot(5000, f.window.get(), [] { QCoreApplication::exit(stillOpen); });
    QTimer::singleShot(0, f.window.get(), &QWidget::close);
    QCOMPARE(QCoreApplication::exec(), 0);
}

void tst_MainWindow::trayMenuOffersShowAndExit()
{
    TrayIcon tray;
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

TAVORAN_TEST_MAIN(tst_MainWindow)
#include "tst_MainWindow.moc"
