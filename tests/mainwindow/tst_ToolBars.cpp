#include "CommandDriver.h"
#include "app/ui/EnterPress.h"
#include "app/ui/Theme.h"
#include "support/TestMain.h"

#include <QActionGroup>
#include <QDialog>
#include <QDockWidget>
#include <QPushButton>
#include <QStatusBar>
#include <QToolButton>

#include <tuple>

using namespace Qt::StringLiterals;

namespace {

/// A window, with a chart that has the keyboard, in which the last toolbar has no room for all its buttons.
struct SmallWindow {
    CommandDriver d;
    QToolBar& bar = d.bar("toolbarStudies");
    QToolButton* more = bar.findChild<QToolButton*>(u"qt_toolbar_ext_button"_s);
    ChartWindow* chart = nullptr;

    SmallWindow()
    {
        applyTheme(*qApp); // as the program has it: buttons are wider then
        d.activate();
        chart = d.openChart(u"EURUSD"_s);
        d.f.window->resize(1024, 600);
        QTRY_VERIFY(chart->chart().hasFocus());
        QTRY_VERIFY(more->isVisible());
        QTRY_VERIFY(d.actions().fibonacci->isEnabled());
    }

    [[nodiscard]] QList<QToolButton*> buttons() const
    {
        QList<QToolButton*> all;
        for (QAction* action : bar.actions()) {
            if (auto* button = qobject_cast<QToolButton*>(bar.widgetForAction(action)))
                all.append(button);
        }
        return all;
    }
    [[nodiscard]] QList<QToolButton*> hidden() const
    {
        QList<QToolButton*> all = buttons();
        all.removeIf([](const QToolButton* button) { return button->isVisible(); });
        return all;
    }
    void openByKey() const
    {
        const QWidget* first = hidden().constFirst();
        more->setFocus(Qt::TabFocusReason);
        hands::press(Qt::Key_Space);
        QTRY_COMPARE(QApplication::focusWidget(), first);
    }
};

} // namespace

class tst_ToolBars final : public QObject {
    Q_OBJECT

    static constexpr const char* names[] = {"toolbarStandard", "toolbarTimeframes", "toolbarStudies"};

    static void scatter(const CommandDriver& d)
    {
        d.f.window->addToolBar(Qt::BottomToolBarArea, &d.bar("toolbarStandard"));
        for (const char* name : {"toolbarTimeframes", "toolbarStudies"})
            d.f.window->insertToolBarBreak(&d.bar(name));
        d.bar("toolbarTimeframes").hide();
    }

private Q_SLOTS:
    void movedToolBarsStayWhereTheyWerePut()
    {
        CommandDriver d;
        scatter(d);
        QVERIFY(d.f.window->close());
        d.f.open();
        QCOMPARE(d.f.window->toolBarArea(&d.bar("toolbarStandard")), Qt::BottomToolBarArea);
        QCOMPARE(d.f.window->toolBarArea(&d.bar("toolbarStudies")), Qt::TopToolBarArea);
        QVERIFY(d.f.window->toolBarBreak(&d.bar("toolbarStudies")));
        QVERIFY(d.bar("toolbarTimeframes").isHidden());
        QVERIFY(d.bar("toolbarStandard").isVisible() && d.bar("toolbarStudies").isVisible());
    }

    void defaultLayoutBringsMovedToolBarsBack()
    {
        const CommandDriver d;
        QList<QRect> places;
        for (const char* name : names)
            places.append(d.bar(name).geometry());
        scatter(d);
        d.choose({u"&View"_s, u"Restore Default Layout"_s});
        for (const char* name : names) {
            QCOMPARE(d.f.window->toolBarArea(&d.bar(name)), Qt::TopToolBarArea);
            QVERIFY(!d.f.window->toolBarBreak(&d.bar(name)));
            QVERIFY(d.bar(name).isVisible());
        }
        for (qsizetype i = 0; i < places.size(); ++i)
            QTRY_COMPARE(d.bar(names[i]).geometry(), places.at(i));
    }

    void aLayoutSavedWithoutToolBarsShowsThemAll()
    {
        QByteArray geometry;
        QByteArray state;
        {
            QMainWindow earlier; // as an earlier version of the terminal saved it
            earlier.setCentralWidget(new QWidget);
            for (const auto& name : {u"dockMarketWatch"_s, u"dockNavigator"_s, u"dockTerminal"_s}) {
                auto* dock = new QDockWidget(&earlier);
                dock->setObjectName(name);
                earlier.addDockWidget(Qt::RightDockWidgetArea, dock);
            }
            geometry = earlier.saveGeometry();
            state = earlier.saveState();
        }
        MainWindowFixture f;
        TerminalSettings::instance().setWindowLayout(geometry, state);
        f.open();
        QCOMPARE(f.window->dockWidgetArea(f.window->findChild<QDockWidget*>(u"dockMarketWatch"_s)),
            Qt::RightDockWidgetArea);
        for (const char* name : names) {
            auto* bar = f.window->findChild<QToolBar*>(QString::fromLatin1(name));
            QVERIFY2(bar->isVisible(), name);
            QCOMPARE(f.window->toolBarArea(bar), Qt::TopToolBarArea);
        }
    }

    void switchesFollowTheirDocks()
    {
        const CommandDriver d;
        const TerminalActions& a = d.actions();
        for (const auto& [action, name] : {std::pair(a.toggleMarketWatch, u"dockMarketWatch"_s),
                 std::pair(a.toggleNavigator, u"dockNavigator"_s),
                 std::pair(a.toggleToolbox, u"dockTerminal"_s)}) {
            auto* dock = d.f.window->findChild<QDockWidget*>(name);
            QVERIFY(action->isChecked() && dock->isVisible());
            d.press("toolbarStandard", action);
            QVERIFY(!action->isChecked() && !dock->isVisible());
            d.press("toolbarStandard", action);
            QVERIFY(action->isChecked() && dock->isVisible());
            dock->close();
            QVERIFY(!action->isChecked());
        }
    }

    void arrow_keys_stay_in_the_toolbar()
    {
        const CommandDriver d;
        d.activate();
        const ChartWindow* chart = d.openChart(u"EURUSD"_s);
        QTRY_VERIFY(chart->chart().hasFocus());
        for (const auto& [name, first, last] :
            {std::tuple("toolbarStandard", d.actions().newChart, d.actions().algoTrading),
                std::tuple("toolbarTimeframes", d.actions().timeframes->actions().constFirst(),
                    d.actions().chartShift)}) {
            const QToolBar& bar = d.bar(name);
            QWidget* begin = bar.widgetForAction(first);
            const QWidget* end = bar.widgetForAction(last);
            begin->setFocus(Qt::TabFocusReason);
            for (const Qt::Key back : {Qt::Key_Left, Qt::Key_Up, Qt::Key_Home}) {
                hands::press(back);
                QVERIFY(begin->hasFocus());
            }
            hands::press(Qt::Key_Right);
            QCOMPARE(QApplication::focusWidget(), bar.widgetForAction(bar.actions().at(1)));
            for (const Qt::Key on : {Qt::Key_End, Qt::Key_Right, Qt::Key_Down}) {
                hands::press(on);
                QVERIFY(end->hasFocus());
            }
            hands::press(Qt::Key_Home);
            QVERIFY(begin->hasFocus());
            for (int step = 0; step < bar.actions().size() + 2; ++step)
                hands::press(Qt::Key_Right);
            QVERIFY(end->hasFocus());
        }
    }

    void arrow_keys_with_another_key_stay_in_the_toolbar_data()
    {
        QTest::addColumn<Qt::KeyboardModifier>("modifier");
        QTest::newRow("shift") << Qt::ShiftModifier;
        QTest::newRow("control") << Qt::ControlModifier;
        QTest::newRow("alt") << Qt::AltModifier;
    }
    void arrow_keys_with_another_key_stay_in_the_toolbar()
    {
        QFETCH(const Qt::KeyboardModifier, modifier);
        const CommandDriver d;
        d.activate();
        const QToolBar& bar = d.bar("toolbarStandard");
        const auto press
            = [modifier](Qt::Key key) { QTest::keyClick(QApplication::focusWidget(), key, modifier); };
        const QWidget* begin = bar.widgetForAction(d.actions().newChart);
        const QWidget* end = bar.widgetForAction(d.actions().algoTrading);
        bar.widgetForAction(d.actions().newChart)->setFocus(Qt::TabFocusReason);
        for (const Qt::Key back : {Qt::Key_Left, Qt::Key_Up, Qt::Key_Home}) {
            press(back);
            QCOMPARE(QApplication::focusWidget(), begin);
        }
        press(Qt::Key_Right);
        QCOMPARE(QApplication::focusWidget(), bar.widgetForAction(d.actions().toggleMarketWatch));
        for (const Qt::Key on : {Qt::Key_End, Qt::Key_Right, Qt::Key_Down}) {
            press(on);
            QCOMPARE(QApplication::focusWidget(), end);
        }
    }

    void arrow_keys_pass_over_what_cannot_be_used()
    {
        const CommandDriver d;
        d.activate();
        d.actions().toggleMarketWatch->setEnabled(false);
        const QToolBar& bar = d.bar("toolbarStandard");
        bar.widgetForAction(d.actions().newChart)->setFocus(Qt::TabFocusReason);
        hands::press(Qt::Key_Right);
        QVERIFY(bar.widgetForAction(d.actions().toggleNavigator)->hasFocus());
        hands::press(Qt::Key_Left);
        QVERIFY(bar.widgetForAction(d.actions().newChart)->hasFocus());
    }

    void the_status_bar_tells_the_name_of_the_button_that_has_the_keyboard()
    {
        const CommandDriver d;
        d.activate();
        const ChartWindow* chart = d.openChart(u"EURUSD"_s);
        QTRY_VERIFY(chart->chart().hasFocus());
        const QString idle = u"For Help, press F1"_s;
        const auto message = [&d] { return d.f.window->statusBar()->currentMessage(); };
        QCOMPARE(message(), idle);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_F6, Qt::ShiftModifier);
        QCOMPARE(message(), u"New Chart"_s);
        hands::press(Qt::Key_Right);
        QCOMPARE(message(), u"Market Watch"_s);
        hands::press(Qt::Key_End);
        QCOMPARE(message(), u"Algo Trading — allow Expert Advisors to place orders"_s);
        hands::press(Qt::Key_Escape);
        QVERIFY(chart->chart().hasFocus());
        QCOMPARE(message(), idle);
    }

    void the_name_of_a_button_gives_way_to_what_a_tool_waits_for()
    {
        const CommandDriver d;
        d.activate();
        const ChartWindow* chart = d.openChart(u"EURUSD"_s);
        const auto message = [&d] { return d.f.window->statusBar()->currentMessage(); };
        QTRY_VERIFY(chart->chart().hasFocus());
        d.actions().horizontalLine->trigger();
        const QString hint = message();
        QVERIFY(hint != u"For Help, press F1"_s);
        hands::press(Qt::Key_Escape);
        QWidget* button = d.bar("toolbarStudies").widgetForAction(d.actions().horizontalLine);
        button->setFocus(Qt::TabFocusReason);
        QCOMPARE(message(), u"Horizontal Line"_s);
        hands::press(Qt::Key_Space);
        QVERIFY(chart->chart().hasFocus());
        QCOMPARE(message(), hint);
    }

    void a_button_of_a_floating_toolbar_is_named_too()
    {
        const CommandDriver d;
        d.activate();
        QToolBar& bar = d.bar("toolbarStandard");
        QWidget* button = bar.widgetForAction(d.actions().newChart);
        QFocusEvent focus(QEvent::FocusIn, Qt::TabFocusReason);
        bar.setWindowFlags(Qt::Tool | Qt::FramelessWindowHint); // as Qt does when it is torn off
        bar.show();
        QCoreApplication::sendEvent(button, &focus);
        QCOMPARE(d.f.window->statusBar()->currentMessage(), u"New Chart"_s);
    }

    void a_key_that_opens_more_buttons_leads_to_the_first_of_them_data()
    {
        QTest::addColumn<Qt::Key>("key");
        QTest::newRow("space") << Qt::Key_Space;
        QTest::newRow("enter") << Qt::Key_Return;
    }
    void a_key_that_opens_more_buttons_leads_to_the_first_of_them()
    {
        QFETCH(const Qt::Key, key);
        const EnterPress enter(*qApp); // as the program has it
        const SmallWindow w;
        const QList<QToolButton*> hidden = w.hidden();
        QVERIFY(!hidden.isEmpty());
        w.more->setFocus(Qt::TabFocusReason);
        hands::press(key);
        QTRY_COMPARE(QApplication::focusWidget(), hidden.constFirst());
        QVERIFY(w.more->isChecked());
        QCOMPARE(w.hidden(), QList<QToolButton*>());
    }

    void more_buttons_that_the_mouse_has_opened_take_no_keyboard()
    {
        const SmallWindow w;
        const QWidget* last = w.hidden().constLast();
        QTest::mouseClick(w.more, Qt::LeftButton);
        QTRY_VERIFY(last->isVisible());
        QVERIFY(w.chart->chart().hasFocus());
        // They are the mouse's as long as the keyboard does not come to them.
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_F6);
        QVERIFY(!w.chart->chart().hasFocus());
        QVERIFY(w.more->isChecked());
    }

    void arrow_keys_walk_the_opened_toolbar()
    {
        const SmallWindow w;
        const QList<QToolButton*> all = w.buttons();
        w.openByKey();
        hands::press(Qt::Key_Home);
        QList<QWidget*> walked{QApplication::focusWidget()};
        for (qsizetype step = 0; step < all.size(); ++step) {
            hands::press(Qt::Key_Right);
            walked.append(QApplication::focusWidget());
        }
        walked.removeOne(w.more);
        QCOMPARE(walked, QList<QWidget*>(all.begin(), all.end()));
        hands::press(Qt::Key_Down);
        QCOMPARE(QApplication::focusWidget(), all.constLast());
        hands::press(Qt::Key_Home);
        QCOMPARE(QApplication::focusWidget(), all.constFirst());
        hands::press(Qt::Key_Up);
        QCOMPARE(QApplication::focusWidget(), all.constFirst());
        hands::press(Qt::Key_End);
        QCOMPARE(QApplication::focusWidget(), all.constLast());
        QVERIFY(w.more->isChecked());
    }

    void arrow_keys_enter_more_buttons_from_the_arrow()
    {
        const SmallWindow w;
        const QWidget* first = w.hidden().constFirst();
        w.openByKey();
        hands::press(Qt::Key_Left);
        QCOMPARE(QApplication::focusWidget(), w.more);
        hands::press(Qt::Key_Down);
        QCOMPARE(QApplication::focusWidget(), first);
        hands::press(Qt::Key_Up);
        QCOMPARE(QApplication::focusWidget(), w.more);
    }

    void escape_folds_more_buttons_and_then_leads_to_the_chart()
    {
        const SmallWindow w;
        const QList<QToolButton*> hidden = w.hidden();
        w.openByKey();
        hands::press(Qt::Key_Right);
        hands::press(Qt::Key_Escape);
        QCOMPARE(QApplication::focusWidget(), w.more);
        QVERIFY(!w.more->isChecked());
        QTRY_COMPARE(w.hidden(), hidden);
        QCOMPARE(QApplication::focusWidget(), w.more);
        hands::press(Qt::Key_Escape);
        QVERIFY(w.chart->chart().hasFocus());
    }

    void the_key_that_opens_more_buttons_folds_them_too()
    {
        const SmallWindow w;
        const QList<QToolButton*> hidden = w.hidden();
        w.openByKey();
        hands::press(Qt::Key_Left);
        hands::press(Qt::Key_Space);
        QTRY_COMPARE(w.hidden(), hidden);
        QCOMPARE(QApplication::focusWidget(), w.more);
    }

    void who_leaves_more_buttons_finds_them_folded_data()
    {
        QTest::addColumn<Qt::Key>("key");
        QTest::newRow("tab") << Qt::Key_Tab;
        QTest::newRow("backtab") << Qt::Key_Backtab;
        QTest::newRow("f6") << Qt::Key_F6;
    }
    void who_leaves_more_buttons_finds_them_folded()
    {
        QFETCH(const Qt::Key, key);
        const SmallWindow w;
        const QList<QToolButton*> hidden = w.hidden();
        w.openByKey();
        for (int step = 0; step < 20 && w.bar.isAncestorOf(QApplication::focusWidget()); ++step) {
            QVERIFY(w.more->isChecked());
            hands::press(key);
        }
        const QWidget* elsewhere = QApplication::focusWidget();
        QVERIFY(elsewhere && !w.bar.isAncestorOf(elsewhere));
        QVERIFY(!w.more->isChecked());
        QTRY_COMPARE(w.hidden(), hidden);
        QCOMPARE(QApplication::focusWidget(), elsewhere);
    }

    void a_tool_that_is_chosen_folds_more_buttons()
    {
        const SmallWindow w;
        const QList<QToolButton*> hidden = w.hidden();
        QVERIFY(hidden.contains(w.bar.widgetForAction(w.d.actions().fibonacci)));
        w.openByKey();
        const QWidget* fibonacci = w.bar.widgetForAction(w.d.actions().fibonacci);
        for (qsizetype step = 0; step < hidden.size() && QApplication::focusWidget() != fibonacci; ++step)
            hands::press(Qt::Key_Right);
        QCOMPARE(QApplication::focusWidget(), fibonacci);
        hands::press(Qt::Key_Space);
        QVERIFY(w.chart->chart().hasFocus());
        QCOMPARE(w.chart->chart().tool(), u"fibonacci"_s);
        QVERIFY(!w.more->isChecked());
        QTRY_COMPARE(w.hidden(), hidden);
        QVERIFY(w.chart->chart().hasFocus());
    }

    void the_keyboard_is_not_lost_when_qt_folds_the_toolbar()
    {
        const SmallWindow w;
        const QList<QToolButton*> hidden = w.hidden();
        w.openByKey();
        QEvent leave(QEvent::Leave); // the mouse, which happened to lie there
        QCoreApplication::sendEvent(&w.bar, &leave);
        QTRY_COMPARE(w.hidden(), hidden);
        QCOMPARE(QApplication::focusWidget(), w.more);
    }

    void a_dialog_over_more_buttons_gives_the_keyboard_back()
    {
        const SmallWindow w;
        const QList<QToolButton*> hidden = w.hidden();
        w.openByKey();
        {
            QDialog dialog(w.d.f.window.get());
            QPushButton inDialog(&dialog);
            dialog.open();
            QVERIFY(hands::arriveAt(&dialog));
            QTRY_COMPARE(w.hidden(), hidden);
        }
        w.d.activate();
        QTRY_COMPARE(QApplication::focusWidget(), w.more);
    }

    void whatHasNoRoomIsBehindAnArrow_data()
    {
        QTest::addColumn<bool>("dark");
        QTest::newRow("dark") << true;
        QTest::newRow("light") << false;
    }
    void whatHasNoRoomIsBehindAnArrow()
    {
        QFETCH(const bool, dark);
        setTheme(dark);
        applyTheme(*qApp);
        const CommandDriver d;
        d.f.window->resize(1024, 560);
        auto* more = d.bar("toolbarStudies").findChild<QToolButton*>(u"qt_toolbar_ext_button"_s);
        QVERIFY(more);
        QTRY_VERIFY(more->isVisible());
        const QImage shown = d.bar("toolbarStudies").grab(more->geometry()).toImage();
        const auto grayAt = [&shown](int x, int y) { return qGray(shown.pixel(x, y)); };
        int strongest = 0;
        for (int y = 2; y < shown.height() - 2; ++y) {
            for (int x = 2; x < shown.width() - 2; ++x)
                strongest = qMax(strongest, qAbs(grayAt(x, y) - grayAt(2, 2)));
        }
        constexpr int easilySeen = 40;
        QVERIFY2(strongest > easilySeen, qPrintable(QString::number(strongest)));
    }
};

TAVORAN_TEST(tst_ToolBars)
#include "tst_ToolBars.moc"
