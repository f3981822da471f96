#include "CommandDriver.h"

#include "app/base/UpdateFramework.h"
#include "chart/data/IndicatorTable.h"
#include "chart/window/OneClickPanel.h"
#include "mainwindow/ActionIcons.h"
#include "orders/OrderDialog.h"
#include "support/TestMain.h"
#include "support/UrlCatcher.h"

#include <QAbstractSpinBox>
#include <QActionGroup>
#include <QKeySequence>
#include <QLineEdit>
#include <QShortcut>
#include <QSpinBox>
#include <QToolButton>
#include <QTreeWidget>

using namespace Qt::StringLiterals;

namespace {

QStringList entries(const QWidget* menu)
{
    QStringList texts;
    for (const QAction* entry : menu->actions()) {
        const QString key = entry->shortcut().toString(QKeySequence::PortableText);
        texts.append(entry->isSeparator() ? u"-"_s : entry->text() + (key.isEmpty() ? key : u'|' + key));
    }
    return texts;
}

/// Every command of the menus below `menu`, submenus included.
QList<QAction*> commandsOf(const QWidget* menu)
{
    QList<QAction*> commands;
    for (QAction* action : menu->actions()) {
        if (action->menu())
            commands.append(commandsOf(action->menu()));
        else if (!action->isSeparator())
            commands.append(action);
    }
    return commands;
}

QList<QAction*> allCommands(const MainWindow& window)
{
    QList<QAction*> commands = commandsOf(window.menuBar());
    for (const QToolBar* bar : window.findChildren<QToolBar*>(Qt::FindDirectChildrenOnly))
        commands.append(commandsOf(bar));
    return commands;
}

} // namespace

class tst_TerminalActions final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void menusHoldTheirEntriesInOrder_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QStringList>("expected");
        const auto row = [](const char* path, const QStringList& expected) {
            QTest::newRow(path) << QString::fromLatin1(path) << expected;
        };
        row("&File", {u"New Chart"_s, u"New Order|F9"_s, u"-"_s, u"E&xit|Ctrl+Q"_s});
        row("&View",
            {u"Market Watch|Ctrl+M"_s, u"Toolbox|Ctrl+T"_s, u"Popup Prices|F10"_s, u"-"_s,
                u"Restore Default Layout"_s, u"-"_s, u"Theme"_s});
        row("&View/Theme", {u"Light"_s, u"Dark"_s});
        row("&Insert", {u"Indicators"_s, u"Objects"_s});
        QStringList indicators;
        for (const IndicatorRow& indicator : indicatorTable())
            indicators.append(indicatorText(indicator.command));
        row("&Insert/Indicators", indicators);
        row("&Insert/Objects",
            {u"Horizontal Line"_s, u"Vertical Line"_s, u"Trend Line"_s, u"Rectangle"_s,
                u"Fibonacci Retracement"_s});
        row("&Charts",
            {u"Chart Type"_s, u"Timeframe"_s, u"-"_s, u"Zoom In|+"_s, u"Zoom Out|-"_s, u"Refresh"_s,
                u"Data Window|Ctrl+D"_s, u"-"_s, u"Properties...|F8"_s, u"Symbol Specification..."_s});
        row("&Charts/Chart Type", {u"Candlesticks"_s, u"Bars"_s, u"Line"_s});
        row("&Charts/Timeframe", {u"M1"_s, u"M5"_s, u"M15"_s, u"H1"_s, u"H4"_s, u"D1"_s, u"W1"_s, u"MN"_s});
        row("&Tools", {u"New Order|F9"_s, u"Depth of Market|Alt+B"_s, u"-"_s, u"Open Experts Folder"_s});
        row("&Window", {u"Tile"_s, u"Cascade"_s, u"-"_s, u"Close"_s});
        row("&Help",
            {u"Expert Advisors Guide..."_s, u"Check for Updates..."_s, u"-"_s, u"About Tavoran Terminal"_s});
    }
    void menusHoldTheirEntriesInOrder()
    {
        QFETCH(const QString, path);
        QFETCH(const QStringList, expected);
        MainWindowFixture f;
        f.open();
        const QWidget* menu = f.window->menuBar();
        for (const QString& text : path.split(u'/')) {
            const QAction* entry = CommandDriver::entry(menu, text);
            QVERIFY(entry && entry->menu());
            menu = entry->menu();
        }
        QCOMPARE(entries(menu), expected);
    }

    void theMenuBarHoldsSevenMenus()
    {
        const CommandDriver d;
        QCOMPARE(entries(d.f.window->menuBar()),
            QStringList(
                {u"&File"_s, u"&View"_s, u"&Insert"_s, u"&Charts"_s, u"&Tools"_s, u"&Window"_s, u"&Help"_s}));
    }

    void toolbarsHoldTheirActionsInOrder_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("title");
        QTest::addColumn<QStringList>("expected");
        QTest::newRow("standard") << u"toolbarStandard"_s << u"Standard"_s
                                  << QStringList({u"New Chart"_s, u"Market Watch"_s, u"Navigator"_s,
                                         u"Toolbox"_s, u"New Order"_s, u"Algo Trading"_s});
        QTest::newRow("timeframes") << u"toolbarTimeframes"_s << u"Timeframes"_s
                                    << QStringList({u"M1"_s, u"M5"_s, u"M15"_s, u"H1"_s, u"H4"_s, u"D1"_s,
                                           u"W1"_s, u"MN"_s, u"Candlesticks"_s, u"Bars"_s, u"Line"_s,
                                           u"Auto Scroll"_s, u"Chart Shift"_s});
        QTest::newRow("studies") << u"toolbarStudies"_s << u"Line Studies"_s
                                 << QStringList({u"Cursor"_s, u"Crosshair"_s, u"Horizontal Line"_s,
                                        u"Vertical Line"_s, u"Trend Line"_s, u"Rectangle"_s, u"Fibonacci"_s,
                                        u"Zoom In"_s, u"Zoom Out"_s});
    }
    void toolbarsHoldTheirActionsInOrder()
    {
        QFETCH(const QString, name);
        QFETCH(const QString, title);
        QFETCH(const QStringList, expected);
        MainWindowFixture f;
        f.open();
        const QList<QToolBar*> bars = f.window->findChildren<QToolBar*>(Qt::FindDirectChildrenOnly);
        QCOMPARE(bars.size(), 3);
        const auto* bar = f.window->findChild<QToolBar*>(name);
        QVERIFY(bar);
        QCOMPARE(bar->windowTitle(), title);
        QStringList texts;
        for (const QAction* action : bar->actions())
            texts.append(action->isSeparator() ? u"-"_s : action->iconText());
        QCOMPARE(texts, expected);
        QVERIFY(bar->isVisible());
        QCOMPARE(bar->iconSize(), QSize(16, 16)); // as they are drawn
        QCOMPARE(f.window->toolBarArea(bar), Qt::TopToolBarArea);
        // All are there to see without a second row, in their order.
        for (QAction* action : bar->actions())
            QVERIFY2(bar->widgetForAction(action)->isVisible(), qPrintable(action->text()));
        QCOMPARE(bar->y(), bars.constFirst()->y());
        if (name != "toolbarStandard"_L1)
            QVERIFY(bar->x() > f.window->findChild<QToolBar*>(u"toolbarStandard"_s)->x());
        if (name == "toolbarStudies"_L1)
            QVERIFY(bar->x() > f.window->findChild<QToolBar*>(u"toolbarTimeframes"_s)->x());
    }

    void everyCommandIsOneAction()
    {
        MainWindowFixture f;
        f.open();
        QHash<QString, QAction*> byText;
        const QList<QAction*> commands = allCommands(*f.window);
        for (QAction* action : commands) {
            QCOMPARE(byText.value(action->text(), action), action);
            byText.insert(action->text(), action);
        }
        QCOMPARE(byText.size(), 45 + std::ssize(indicatorTable()));
        QCOMPARE(commands.count(f.window->findChild<TerminalActions*>()->newOrder), 3);
    }

    void noKeyMeansTwoThings()
    {
        const CommandDriver d;
        QVERIFY(d.openChart(u"EURUSD"_s));
        QHash<QKeySequence, const QObject*> owners;
        const auto claim = [&owners](const QKeySequence& key, const QObject* owner) {
            if (key.isEmpty())
                return;
            const QByteArray name = key.toString().toLatin1();
            QVERIFY2(!owners.contains(key) || owners.value(key) == owner, name.constData());
            owners.insert(key, owner);
        };
        for (const QAction* action : d.f.window->findChildren<QAction*>()) {
            for (const QKeySequence& key : action->shortcuts())
                claim(key, action);
        }
        for (const QShortcut* shortcut : d.f.window->findChildren<QShortcut*>())
            claim(shortcut->key(), shortcut);
        for (const Qt::Key key : {Qt::Key_F9, Qt::Key_F10, Qt::Key_Plus, Qt::Key_Equal, Qt::Key_Minus})
            QVERIFY(owners.contains(QKeySequence(key)));
    }

    void everyCommandHasAnIconOfItsOwn()
    {
        MainWindowFixture f;
        f.open();
        const QList<QAction*> commands = allCommands(*f.window);
        const QSet<QAction*> distinct(commands.begin(), commands.end());
        QList<QImage> seen;
        for (const QAction* action : distinct) {
            QVERIFY2(!action->icon().isNull(), qPrintable(action->text()));
            const QImage image = action->icon().pixmap(16, 16).toImage();
            QVERIFY2(!seen.contains(image), qPrintable(action->text()));
            seen.append(image);
        }
    }

    void toolTipsSayWhatTheSwitchesDo()
    {
        MainWindowFixture f;
        f.open();
        const TerminalActions& actions = *f.window->findChild<TerminalActions*>();
        QCOMPARE(actions.algoTrading->toolTip(), u"Algo Trading — allow Expert Advisors to place orders"_s);
        QCOMPARE(actions.autoScroll->toolTip(), u"Auto Scroll — keep the chart on the newest tick"_s);
        QCOMPARE(actions.chartShift->toolTip(), u"Chart Shift — shift the newest bar off the right border"_s);
        QCOMPARE(actions.fibonacci->toolTip(), u"Fibonacci"_s);
        for (const QAction* toggle : {actions.algoTrading, actions.autoScroll, actions.chartShift})
            QVERIFY(toggle->isCheckable());
    }

    void codesStandAsData()
    {
        MainWindowFixture f;
        f.open();
        const TerminalActions& actions = *f.window->findChild<TerminalActions*>();
        QStringList codes;
        for (const QAction* timeframe : actions.timeframes->actions())
            codes.append(timeframe->data().toString());
        QCOMPARE(
            codes, QStringList({u"1m"_s, u"5m"_s, u"15m"_s, u"1h"_s, u"4h"_s, u"1d"_s, u"1w"_s, u"1mn"_s}));
        codes.clear();
        for (const QAction* tool : actions.drawingTools())
            codes.append(tool->data().toString());
        QCOMPARE(
            codes, QStringList({u"hline"_s, u"vline"_s, u"trendline"_s, u"rectangle"_s, u"fibonacci"_s}));
    }

    void whatNeedsAChartWaitsForOne()
    {
        const CommandDriver d;
        TerminalActions& a = d.actions();
        QList<QAction*> needChart{a.cursor, a.crosshair, a.candlesticks, a.bars, a.line, a.autoScroll,
            a.chartShift, a.zoomIn, a.zoomOut, a.refresh, a.dataWindow, a.properties, a.specification, a.tile,
            a.cascade, a.closeChart};
        needChart.append(a.indicators);
        needChart.append(a.drawingTools());
        needChart.append(a.timeframes->actions());
        const auto state = [&needChart] {
            int enabled = 0;
            for (const QAction* action : needChart)
                enabled += action->isEnabled() ? 1 : 0;
            return enabled;
        };
        QCOMPARE(state(), 0);
        QVERIFY(d.openChart(u"EURUSD"_s));
        QCOMPARE(state(), int(needChart.size()));
        d.choose({u"&Window"_s, u"Close"_s});
        QTRY_VERIFY(d.f.charts().isEmpty());
        QTRY_COMPARE(state(), 0);
        for (const QAction* always : {a.exit, a.popupPrices, a.restoreLayout, a.lightTheme, a.darkTheme,
                 a.algoTrading, a.openExpertsFolder, a.openGuide, a.about, a.toggleNavigator})
            QVERIFY2(always->isEnabled(), qPrintable(always->text()));

        MainWindowFixture f;
        f.open();
        const TerminalActions& early = *f.window->findChild<TerminalActions*>();
        for (const QAction* action : {early.newChart, early.newOrder, early.depthOfMarket})
            QVERIFY(!action->isEnabled());
        f.window->onHello(records::hello({records::symbol("X")}));
        for (const QAction* action : {early.newChart, early.newOrder, early.depthOfMarket})
            QVERIFY(action->isEnabled());
    }

    void checkMarksAreSeenInMenus()
    {
        MainWindowFixture f;
        f.open();
        int checkable = 0;
        for (const QAction* action : commandsOf(f.window->menuBar())) {
            QCOMPARE(action->isIconVisibleInMenu(), !action->isCheckable());
            checkable += action->isCheckable() ? 1 : 0;
        }
        QCOMPARE(checkable, 2 + 2 + 5 + 3 + 8);
    }

    void theEntryForUpdatesSaysPlainlyThatThereAreNone()
    {
        UpdateFramework::instance() = UpdateFramework({});
        MainWindowFixture f;
        f.open();
        const QAction* updates = f.window->findChild<TerminalActions*>()->checkForUpdates;
        QVERIFY(!updates->isEnabled());
        QCOMPARE(updates->toolTip(), u"This system's package manager keeps the terminal up to date"_s);
        const QAction* help = CommandDriver::entry(f.window->menuBar(), u"&Help"_s);
        QVERIFY(help->menu()->toolTipsVisible());
    }

    void theEntryForUpdatesAsksTheFrameworkWhereThereIsOne()
    {
        int checks = 0;
        UpdateCalls calls;
        calls.setAppcastUrl = [](const char*) {};
        calls.setShutdownRequestCallback = [](void (*)()) {};
        calls.setAppDetails = [](const wchar_t*, const wchar_t*, const wchar_t*) {};
        calls.setAutomaticCheck = [](int) {};
        calls.setCheckInterval = [](int) {};
        calls.init = [] {};
        calls.cleanUp = [] {};
        calls.checkWithUi = [&checks] { ++checks; };
        UpdateFramework::instance() = UpdateFramework(calls);
        const auto putBack = qScopeGuard([] { UpdateFramework::instance() = UpdateFramework({}); });
        UpdateFramework::instance().setUp(u"1.0"_s);
        const CommandDriver d;
        const QAction* updates = d.actions().checkForUpdates;
        QVERIFY(updates->isEnabled());
        QVERIFY(!updates->toolTip().contains("package manager"_L1));
        d.choose({u"&Help"_s, u"Check for Updates..."_s});
        QCOMPARE(checks, 1);
    }

    void keysWorkWithMenusAndToolbarsHidden()
    {
        const CommandDriver d;
        QVERIFY(d.openChart(u"EURUSD"_s));
        d.activate();
        d.f.window->menuBar()->hide();
        for (QToolBar* bar : d.f.window->findChildren<QToolBar*>(Qt::FindDirectChildrenOnly))
            bar->hide();
        const TerminalActions& a = d.actions();
        for (QAction* action : {a.newOrder, a.exit, a.zoomIn, a.zoomOut, a.dataWindow, a.properties,
                 a.depthOfMarket, a.toggleMarketWatch, a.toggleToolbox, a.popupPrices}) {
            const QSignalSpy spy(action, &QAction::triggered);
            const QKeyCombination key = action->shortcut()[0];
            d.activate();
            QTest::keyClick(d.f.window.get(), key.key(), key.keyboardModifiers());
            QCOMPARE(spy.count(), 1);
            for (QWidget* window : QApplication::topLevelWidgets()) {
                if (window != d.f.window.get() && window->isVisible())
                    window->close();
            }
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        }
    }

    void zoomKeysDoNotStealTypingFromAnyField()
    {
        const CommandDriver d;
        ChartWindow* chart = d.openChart(u"EURUSD"_s);
        d.activate();
        const double width = chart->chart().barWidth();
        int typedInto = 0;
        const auto type = [&typedInto](QWidget* field) {
            if (!field->isVisible() || !field->isEnabled())
                return;
            ++typedInto;
            field->activateWindow();
            field->setFocus();
            QTRY_VERIFY2(field->hasFocus() || field->focusProxy(),
                qPrintable(QLatin1StringView(field->metaObject()->className()) + u' ' + field->objectName()));
            for (const char key : {'+', '=', '-'})
                QTest::keyClick(field, key);
        };

        // Fields within the window itself: that of the one-click volumes, and a plain one.
        auto* volume = chart->findChild<OneClickPanel*>()->findChild<QAbstractSpinBox*>();
        QVERIFY(volume && volume->isVisible());
        type(volume);
        QCOMPARE(chart->chart().barWidth(), width);
        auto* text = new QLineEdit(chart);
        text->show();
        type(text);
        QCOMPARE(text->text(), u"+=-"_s);
        QCOMPARE(chart->chart().barWidth(), width);

        // The order window.
        QTest::keyClick(d.f.window.get(), Qt::Key_F9);
        auto* dialog = d.f.window->findChild<OrderDialog*>();
        QVERIFY(dialog);
        QVERIFY(QTest::qWaitForWindowActive(dialog));
        for (QWidget* field : dialog->findChildren<QAbstractSpinBox*>())
            type(field);
        for (QWidget* field : dialog->findChildren<QLineEdit*>())
            type(field);
        QCOMPARE(chart->chart().barWidth(), width);
        dialog->close();

        QVERIFY(typedInto >= 5); // in the order window volume, stop loss and take profit at least

        // The dialog that asks for a period.
        d.activate();
        d.actions().indicators.first()->trigger();
        QDialog* period = nullptr;
        QTRY_VERIFY((period = chart->findChild<QDialog*>()));
        type(period->findChild<QSpinBox*>());
        QCOMPARE(chart->chart().barWidth(), width);
        period->reject();

        // A list takes no text: there the keys act on the chart.
        d.activate();
        QTreeWidget& watch = d.f.list("marketWatchSymbols");
        watch.setFocus();
        QTRY_VERIFY(watch.hasFocus());
        QTest::keyClick(&watch, Qt::Key_Plus);
        QVERIFY(chart->chart().barWidth() > width);
    }

    void inATreeZoomKeysZoomTheChartOnPurposeAndFoldWithoutOne()
    {
        const CommandDriver d;
        d.activate();
        QTreeWidget& tree = d.f.list("navigatorTree");
        QTreeWidgetItem* folder = tree.topLevelItem(0)->child(1);
        tree.setCurrentItem(folder);
        tree.setFocus();
        QTRY_VERIFY(tree.hasFocus());
        QVERIFY(folder->isExpanded());
        QTest::keyClick(&tree, Qt::Key_Minus);
        QVERIFY(!folder->isExpanded());
        QTest::keyClick(&tree, Qt::Key_Plus);
        QVERIFY(folder->isExpanded());

        // Someone who looks at a chart zooms it, wherever the last click was; the arrow keys still fold.
        const ChartWindow* chart = d.openChart(u"EURUSD"_s);
        tree.setFocus();
        QTRY_VERIFY(tree.hasFocus());
        const double width = chart->chart().barWidth();
        QTest::keyClick(&tree, Qt::Key_Minus);
        QVERIFY(chart->chart().barWidth() < width);
        QVERIFY(folder->isExpanded());
        QTest::keyClick(&tree, Qt::Key_Left);
        QVERIFY(!folder->isExpanded());
    }

    void timeframeButtonsShowTheirNames()
    {
        const CommandDriver d;
        for (QAction* timeframe : d.actions().timeframes->actions()) {
            auto* button = qobject_cast<QToolButton*>(d.bar("toolbarTimeframes").widgetForAction(timeframe));
            QVERIFY(button);
            QCOMPARE(button->toolButtonStyle(), Qt::ToolButtonTextOnly);
            QCOMPARE(button->text(), timeframe->text());
        }
    }

    void algoTradingIsOffAtEveryStartAndTold()
    {
        CommandDriver d;
        QVERIFY(!d.actions().algoTrading->isChecked());
        const auto told = [&d](const QString& line) { return d.f.log("expertsList").count(line); };
        d.press("toolbarStandard", d.actions().algoTrading);
        QVERIFY(d.actions().algoTrading->isChecked());
        QCOMPARE(told(u"Expert: Algo Trading enabled"_s), 1);
        d.press("toolbarStandard", d.actions().algoTrading);
        QCOMPARE(told(u"Expert: Algo Trading disabled"_s), 1);
        d.press("toolbarStandard", d.actions().algoTrading);
        d.f.window->close();
        d.f.open();
        QVERIFY(!d.actions().algoTrading->isChecked());
        QCOMPARE(told(u"Expert: Algo Trading enabled"_s), 0);
    }

    void theFolderOfExpertsAndTheGuideOpenFromTheMenus()
    {
        UrlCatcher catcher;
        const CommandDriver d;
        d.actions().openExpertsFolder->trigger();
        d.actions().openGuide->trigger();
        QCOMPARE(catcher.urls.size(), 2);
        QVERIFY(catcher.urls.constFirst().path().endsWith("/Experts"_L1));
        QVERIFY(catcher.urls.constLast().path().endsWith("/Tavoran-EA-Guide.html"_L1));
    }

    void f1OpensTheGuide()
    {
        UrlCatcher catcher;
        const CommandDriver d;
        d.activate();
        QTest::keyClick(d.f.window.get(), Qt::Key_F1);
        QCOMPARE(catcher.urls.size(), 1);
        QVERIFY(catcher.urls.constFirst().path().endsWith("/Tavoran-EA-Guide.html"_L1));
    }
};

TAVORAN_TEST(tst_TerminalActions)
#include "tst_TerminalActions.moc"
