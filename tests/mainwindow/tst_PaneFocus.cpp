#include "CommandDriver.h"
#include "app/ui/EnterPress.h"
#include "app/ui/Theme.h"
#include "chart/window/OneClickPanel.h"
#include "support/TestMain.h"

#include <QDialog>
#include <QDockWidget>
#include <QMdiSubWindow>
#include <QMenu>
#include <QSignalSpy>
#include <QTabBar>
#include <QTabWidget>
#include <QToolButton>

using namespace Qt::StringLiterals;

namespace {

void pressF6(Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_F6, modifiers);
}

/// Where the keyboard is, in a person's words.
QString place(const CommandDriver& d)
{
    const QWidget* focus = QApplication::focusWidget();
    if (!focus)
        return u"nothing"_s;
    if (const auto* chart = qobject_cast<const ChartWidget*>(focus))
        return u"chart of "_s + qobject_cast<const ChartWindow*>(chart->parentWidget())->symbol();
    if (qobject_cast<const OneClickPanel*>(focus->parentWidget())) {
        const auto* button = qobject_cast<const QAbstractButton*>(focus);
        return button ? button->text().section(u'\n', 0, 0) : u"volume"_s;
    }
    if (const auto* button = qobject_cast<const QToolButton*>(focus))
        return button->defaultAction() ? button->defaultAction()->text() : button->objectName();
    if (const auto* tabs = qobject_cast<const QTabBar*>(focus)) {
        const bool ofCharts = d.f.chartArea()->isAncestorOf(tabs);
        return u"tabs "_s + (ofCharts ? u"of charts"_s : tabs->tabText(0));
    }
    return hands::focused();
}

QStringList walk(const CommandDriver& d, Qt::Key key)
{
    constexpr int most = 80;
    QStringList places;
    const QWidget* start = QApplication::focusWidget();
    for (int step = 0; step < most; ++step) {
        places.append(place(d));
        hands::press(key);
        if (QApplication::focusWidget() == start)
            break;
    }
    return places;
}

QStringList ring(const CommandDriver& d, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    constexpr int most = 12;
    QStringList places;
    const QWidget* start = QApplication::focusWidget();
    for (int step = 0; step < most; ++step) {
        places.append(place(d));
        pressF6(modifiers);
        if (QApplication::focusWidget() == start)
            break;
    }
    return places;
}

QDockWidget* dock(const CommandDriver& d, const char* name)
{
    return d.f.window->findChild<QDockWidget*>(QString::fromLatin1(name));
}

QStringList reversed(QStringList places)
{
    // Both ways begin at the same place.
    std::reverse(places.begin() + 1, places.end());
    return places;
}

} // namespace

class tst_PaneFocus final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void tab_leads_from_the_chart_through_the_whole_window_and_back()
    {
        const CommandDriver d;
        d.activate();
        d.f.window->openChart(u"EURUSD"_s);
        QTRY_COMPARE(place(d), u"chart of EURUSD"_s);
        const QStringList places = walk(d, Qt::Key_Tab);
        const QStringList first
            = {u"chart of EURUSD"_s, u"SELL"_s, u"volume"_s, u"BUY"_s, u"tabs of charts"_s,
                u"marketWatchSymbols"_s, u"tabs Symbols"_s, u"navigatorTree"_s, u"tabs Common"_s};
        QCOMPARE(places.mid(0, first.size()), first);
        for (const auto& wanted : {u"tradeList"_s, u"tabs Trade"_s, u"accountSelector"_s, u"New Chart"_s,
                 u"Market Watch"_s, u"Navigator"_s, u"Toolbox"_s, u"Algo Trading"_s, u"M1"_s, u"Crosshair"_s})
            QVERIFY2(places.count(wanted) == 1, qPrintable(wanted));
        QCOMPARE(walk(d, Qt::Key_Backtab), reversed(places));
    }

    void tab_goes_down_each_page_of_the_toolbox_to_its_tabs_data()
    {
        QTest::addColumn<int>("page");
        QTest::addColumn<QStringList>("stops");
        QTest::newRow("Trade") << 0 << QStringList{u"tradeList"_s};
        QTest::newRow("History") << 1 << QStringList{u"historyList"_s};
        QTest::newRow("Experts") << 2 << QStringList{u"expertsList"_s};
        QTest::newRow("Journal") << 3 << QStringList{u"journalList"_s};
        QTest::newRow("Calendar") << 4 << QStringList{u"newsList"_s};
        QTest::newRow("Alerts") << 5 << QStringList{u"alertsList"_s, u"Add Alert"_s, u"Delete"_s};
    }
    void tab_goes_down_each_page_of_the_toolbox_to_its_tabs()
    {
        QFETCH(const int, page);
        QFETCH(const QStringList, stops);
        const CommandDriver d;
        d.activate();
        d.f.window->openChart(u"EURUSD"_s);
        QTRY_COMPARE(place(d), u"chart of EURUSD"_s);
        auto* toolbox = qobject_cast<QTabWidget*>(dock(d, "dockTerminal")->widget());
        toolbox->setCurrentIndex(page);
        const QStringList expected
            = QStringList{u"tabs Common"_s} + stops + QStringList{u"tabs Trade"_s, u"accountSelector"_s};
        const QStringList places = walk(d, Qt::Key_Tab);
        QCOMPARE(places.mid(places.indexOf(u"tabs Common"_s), expected.size()), expected);
        QCOMPARE(walk(d, Qt::Key_Backtab), reversed(places));

        // The same in a window of its own.
        dock(d, "dockTerminal")->setFloating(true);
        QVERIFY(QTest::qWaitForWindowExposed(dock(d, "dockTerminal")));
        dock(d, "dockTerminal")->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(dock(d, "dockTerminal")));
        auto* list = dock(d, "dockTerminal")->findChild<QTreeWidget*>(stops.constFirst());
        list->setFocus();
        QCOMPARE(walk(d, Qt::Key_Tab), stops + QStringList{u"tabs Trade"_s});
    }

    void tab_goes_from_chart_to_chart_where_they_stand_beside_each_other()
    {
        const CommandDriver d;
        d.activate();
        d.f.window->openChart(u"EURUSD"_s);
        d.f.window->openChart(u"USDJPY"_s);
        d.f.chartArea()->tileSubWindows();
        d.f.chartArea()->setActiveSubWindow(d.f.chartArea()->subWindowList().constFirst());
        QTRY_COMPARE(place(d), u"chart of EURUSD"_s);
        const QStringList places = walk(d, Qt::Key_Tab);
        const QStringList first = {u"chart of EURUSD"_s, u"SELL"_s, u"volume"_s, u"BUY"_s,
            u"chart of USDJPY"_s, u"SELL"_s, u"volume"_s, u"BUY"_s};
        QCOMPARE(places.mid(0, first.size()), first);
        QVERIFY(places.contains(u"tradeList"_s));
        QCOMPARE(walk(d, Qt::Key_Backtab), reversed(places));
    }

    void a_chart_behind_another_one_is_no_stop()
    {
        const CommandDriver d;
        d.activate();
        d.f.window->openChart(u"EURUSD"_s);
        d.f.window->openChart(u"USDJPY"_s);
        QTRY_COMPARE(place(d), u"chart of USDJPY"_s);
        const QStringList places = walk(d, Qt::Key_Tab);
        QVERIFY(!places.contains(u"chart of EURUSD"_s));
        QCOMPARE(places.count(u"SELL"_s), 1);
    }

    void f6_goes_from_pane_to_pane_and_back_into_the_chart()
    {
        const CommandDriver d;
        d.activate();
        d.f.window->openChart(u"EURUSD"_s);
        QTRY_COMPARE(place(d), u"chart of EURUSD"_s);
        const QStringList places = ring(d);
        const QStringList expected = {u"chart of EURUSD"_s, u"marketWatchSymbols"_s, u"navigatorTree"_s,
            u"tradeList"_s, u"accountSelector"_s, u"New Chart"_s};
        QCOMPARE(places, expected);
        QCOMPARE(place(d), u"chart of EURUSD"_s);
        QCOMPARE(ring(d, Qt::ShiftModifier), reversed(expected));
    }

    void f6_passes_over_what_is_hidden()
    {
        const CommandDriver d;
        d.activate();
        dock(d, "dockNavigator")->hide();
        d.bar("toolbarStandard").hide();
        d.f.window->openChart(u"EURUSD"_s);
        QTRY_COMPARE(place(d), u"chart of EURUSD"_s);
        const QStringList expected
            = {u"chart of EURUSD"_s, u"marketWatchSymbols"_s, u"tradeList"_s, u"accountSelector"_s, u"M1"_s};
        QCOMPARE(ring(d), expected);
    }

    void f6_passes_over_a_pane_behind_another_ones_tab()
    {
        const CommandDriver d;
        d.activate();
        QDockWidget* watch = dock(d, "dockMarketWatch");
        d.f.window->tabifyDockWidget(watch, dock(d, "dockNavigator"));
        watch->raise();
        d.f.window->openChart(u"EURUSD"_s);
        QTRY_COMPARE(place(d), u"chart of EURUSD"_s);
        QCoreApplication::processEvents();
        const QStringList places = ring(d);
        QVERIFY(places.contains(u"marketWatchSymbols"_s));
        QVERIFY(!places.contains(u"navigatorTree"_s));
    }

    void f6_goes_to_the_list_of_the_tab_on_show()
    {
        const CommandDriver d;
        d.activate();
        d.f.window->openChart(u"EURUSD"_s);
        QTRY_COMPARE(place(d), u"chart of EURUSD"_s);
        auto* toolbox = qobject_cast<QTabWidget*>(dock(d, "dockTerminal")->widget());
        for (int page = 0; page < toolbox->count(); ++page) {
            toolbox->setCurrentIndex(page);
            const QStringList places = ring(d);
            const auto* list = qobject_cast<QTreeWidget*>(toolbox->currentWidget());
            if (!list)
                list = toolbox->currentWidget()->findChild<QTreeWidget*>();
            QCOMPARE(places.at(3), list->objectName());
        }
    }

    void f6_reaches_a_floating_pane_and_comes_back()
    {
        const CommandDriver d;
        d.activate();
        d.f.window->openChart(u"EURUSD"_s);
        QTRY_COMPARE(place(d), u"chart of EURUSD"_s);
        dock(d, "dockMarketWatch")->setFloating(true);
        QVERIFY(QTest::qWaitForWindowExposed(dock(d, "dockMarketWatch")));
        d.activate();
        pressF6();
        QTRY_COMPARE(place(d), u"marketWatchSymbols"_s);
        pressF6();
        QTRY_COMPARE(place(d), u"navigatorTree"_s);
        pressF6(Qt::ShiftModifier);
        QTRY_COMPARE(place(d), u"marketWatchSymbols"_s);
        hands::press(Qt::Key_Escape);
        QTRY_COMPARE(place(d), u"chart of EURUSD"_s);
    }

    void without_a_chart_f6_goes_round_among_the_others()
    {
        const CommandDriver d;
        d.activate();
        d.f.list("tradeList").setFocus();
        QCOMPARE(ring(d),
            QStringList({u"tradeList"_s, u"accountSelector"_s, u"New Chart"_s, u"marketWatchSymbols"_s,
                u"navigatorTree"_s}));
        hands::press(Qt::Key_Escape);
        QCOMPARE(place(d), u"tradeList"_s);
    }

    void escape_returns_to_the_chart_from_everywhere()
    {
        const CommandDriver d;
        d.activate();
        d.f.window->openChart(u"EURUSD"_s);
        d.f.window->openChart(u"USDJPY"_s);
        QTRY_COMPARE(place(d), u"chart of USDJPY"_s);
        const int stops = int(walk(d, Qt::Key_Tab).size());
        for (int stop = 0; stop < stops; ++stop) {
            for (int tab = 0; tab < stop; ++tab)
                hands::press(Qt::Key_Tab);
            const QString from = place(d);
            hands::press(Qt::Key_Escape);
            QVERIFY2(place(d) == u"chart of USDJPY"_s, qPrintable(from));
        }
    }

    void escape_still_ends_a_drawing_tool_in_the_chart()
    {
        const CommandDriver d;
        d.activate();
        const ChartWindow* chart = d.openChart(u"EURUSD"_s);
        QTRY_COMPARE(place(d), u"chart of EURUSD"_s);
        d.actions().trendLine->trigger();
        QVERIFY(!chart->chart().tool().isEmpty());
        hands::press(Qt::Key_Escape);
        QVERIFY(chart->chart().tool().isEmpty());
        QCOMPARE(place(d), u"chart of EURUSD"_s);
    }

    void escape_closes_the_list_of_accounts_and_leaves_the_keyboard_there()
    {
        const CommandDriver d;
        d.activate();
        d.f.window->openChart(u"EURUSD"_s);
        QTRY_COMPARE(place(d), u"chart of EURUSD"_s);
        d.f.selector().setFocus();
        hands::press(Qt::Key_Space);
        QTRY_VERIFY(QApplication::activePopupWidget());
        hands::press(Qt::Key_Escape);
        QTRY_VERIFY(!QApplication::activePopupWidget());
        QCOMPARE(place(d), u"accountSelector"_s);
        hands::press(Qt::Key_Escape);
        QCOMPARE(place(d), u"chart of EURUSD"_s);
    }

    void escape_in_a_menu_and_in_a_dialog_is_theirs()
    {
        const CommandDriver d;
        d.activate();
        d.f.window->openChart(u"EURUSD"_s);
        d.f.list("tradeList").setFocus();
        QMenu menu(d.f.window.get());
        menu.addAction(u"Entry"_s);
        menu.popup(d.f.window->mapToGlobal(QPoint(100, 100)));
        QTRY_COMPARE(QApplication::activePopupWidget(), &menu);
        QTest::keyClick(&menu, Qt::Key_Escape);
        QTRY_VERIFY(!menu.isVisible());
        QTRY_COMPARE(place(d), u"tradeList"_s);

        QDialog dialog(d.f.window.get());
        dialog.open();
        QVERIFY(QTest::qWaitForWindowActive(&dialog));
        QTest::keyClick(&dialog, Qt::Key_Escape);
        QTRY_VERIFY(!dialog.isVisible());
        QTRY_COMPARE(place(d), u"tradeList"_s);
    }

    void tool_buttons_are_pressed_by_space_and_by_enter_once()
    {
        const EnterPress enter(*qApp);
        const CommandDriver d;
        d.activate();
        d.f.window->openChart(u"EURUSD"_s);
        QTRY_COMPARE(place(d), u"chart of EURUSD"_s);
        QAction* algo = d.actions().algoTrading;
        for (int tab = 0; tab < 80 && place(d) != u"Algo Trading"_s; ++tab)
            hands::press(Qt::Key_Tab);
        QCOMPARE(place(d), u"Algo Trading"_s);
        hands::press(Qt::Key_Space);
        QVERIFY(algo->isChecked());
        hands::press(Qt::Key_Return);
        QVERIFY(!algo->isChecked());
        hands::hold(Qt::Key_Return);
        QVERIFY(!algo->isChecked());
        QCOMPARE(place(d), u"Algo Trading"_s);
    }

    void buttons_of_panes_are_pressed_by_enter_once()
    {
        const EnterPress enter(*qApp);
        const CommandDriver d;
        d.activate();
        auto* toolbox = qobject_cast<QTabWidget*>(dock(d, "dockTerminal")->widget());
        auto* alerts = d.f.window->findChild<QWidget*>(u"alertsPage"_s);
        toolbox->setCurrentWidget(alerts);
        auto* add = alerts->findChild<QPushButton*>();
        add->setFocus(Qt::TabFocusReason);
        hands::hold(Qt::Key_Return);
        QVERIFY(!QApplication::activeModalWidget());
        hands::press(Qt::Key_Return);
        QVERIFY(QApplication::activeModalWidget());
        QVERIFY(hands::arriveAt(QApplication::activeModalWidget()));
        hands::press(Qt::Key_Escape);
        d.activate(); // as a desktop does
        QTRY_VERIFY(add->hasFocus());
    }

    void arrow_keys_go_from_tool_button_to_tool_button()
    {
        const CommandDriver d;
        d.activate();
        d.f.window->openChart(u"EURUSD"_s);
        QTRY_COMPARE(place(d), u"chart of EURUSD"_s);
        pressF6(Qt::ShiftModifier);
        QCOMPARE(place(d), u"New Chart"_s);
        hands::press(Qt::Key_Right);
        QCOMPARE(place(d), u"Market Watch"_s);
        hands::press(Qt::Key_Space);
        QVERIFY(!dock(d, "dockMarketWatch")->isVisible());
        hands::press(Qt::Key_Left);
        QCOMPARE(place(d), u"New Chart"_s);
    }

    void a_click_on_a_tool_button_leaves_the_keyboard_where_it_was()
    {
        const CommandDriver d;
        d.activate();
        d.f.window->openChart(u"EURUSD"_s);
        d.f.list("tradeList").setFocus();
        d.press("toolbarTimeframes", d.actions().candlesticks);
        QCOMPARE(place(d), u"tradeList"_s);
    }

    void tool_buttons_without_room_can_be_reached_too()
    {
        applyTheme(*qApp);
        const CommandDriver d;
        d.activate();
        d.f.window->resize(1024, 560);
        d.f.window->openChart(u"EURUSD"_s);
        QTRY_COMPARE(place(d), u"chart of EURUSD"_s);
        auto* more = d.bar("toolbarStudies").findChild<QToolButton*>(u"qt_toolbar_ext_button"_s);
        QTRY_VERIFY(more->isVisible());
        QVERIFY(walk(d, Qt::Key_Tab).contains(u"qt_toolbar_ext_button"_s));
        QVERIFY(!walk(d, Qt::Key_Tab).contains(u"Zoom Out"_s));
        more->setFocus(Qt::TabFocusReason);
        const EnterPress enter(*qApp);
        hands::press(Qt::Key_Return);
        QTRY_VERIFY(d.bar("toolbarStudies").widgetForAction(d.actions().zoomOut)->isVisible());
        QVERIFY(walk(d, Qt::Key_Tab).contains(u"Zoom Out"_s));
    }
};

TAVORAN_TEST(tst_PaneFocus)
#include "tst_PaneFocus.moc"
