#include "CommandDriver.h"
#include "app/ui/EnterPress.h"
#include "app/ui/FocusMark.h"
#include "app/ui/FocusRing.h"
#include "support/TestMain.h"

#include <QDockWidget>
#include <QTabWidget>
#include <QToolButton>

using namespace Qt::StringLiterals;

namespace {

/// Whether the ring is on show around what has the focus, or within it.
bool ringShowsTheFocus()
{
    const QWidget* focus = QApplication::focusWidget();
    const auto* ring = focus ? focus->window()->findChild<FocusRing*>() : nullptr;
    if (!ring || !ring->isVisible())
        return false;
    const QRect around(focus->mapTo(focus->window(), QPoint(-2, -2)), focus->size() + QSize(4, 4));
    return around.contains(ring->geometry());
}

const QWidget* chartOf(const CommandDriver& d)
{
    return d.f.charts().isEmpty() ? nullptr : &d.f.charts().constLast()->chart();
}

} // namespace

/// Where the keyboard gets because of a key, and that it is seen there.
class tst_MainWindowKeys final : public QObject {
    Q_OBJECT

    // As the program has them.
    std::unique_ptr<FocusMark> m_mark;
    std::unique_ptr<EnterPress> m_enter;

private Q_SLOTS:
    void init()
    {
        m_mark = std::make_unique<FocusMark>(*qApp);
        m_enter = std::make_unique<EnterPress>(*qApp);
    }
    void cleanup()
    {
        m_mark.reset();
        m_enter.reset();
    }

    void a_chart_that_enter_has_opened_shows_the_keyboard()
    {
        const CommandDriver d;
        d.activate();
        QTreeWidget& list = d.f.list("marketWatchSymbols");
        list.setFocus();
        list.setCurrentItem(list.topLevelItem(0));
        hands::press(Qt::Key_Return);
        QTRY_VERIFY(chartOf(d) && chartOf(d)->hasFocus());
        QTRY_VERIFY(ringShowsTheFocus());
    }

    void a_chart_that_the_mouse_has_opened_shows_no_ring()
    {
        const CommandDriver d;
        d.activate();
        const QTreeWidget& list = d.f.list("marketWatchSymbols");
        const QPoint row = list.visualItemRect(list.topLevelItem(0)).center();
        QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, row);
        QTest::mouseDClick(list.viewport(), Qt::LeftButton, {}, row);
        QTRY_VERIFY(chartOf(d) && chartOf(d)->hasFocus());
        QCoreApplication::processEvents();
        QVERIFY(!ringShowsTheFocus());
    }

    void a_chart_shows_the_keyboard_once_a_key_has_chosen_a_tool_data()
    {
        QTest::addColumn<Qt::Key>("key");
        QTest::addColumn<bool>("ruler");
        QTest::newRow("line by space") << Qt::Key_Space << false;
        QTest::newRow("line by enter") << Qt::Key_Return << false;
        QTest::newRow("ruler by space") << Qt::Key_Space << true;
    }
    void a_chart_shows_the_keyboard_once_a_key_has_chosen_a_tool()
    {
        QFETCH(const Qt::Key, key);
        QFETCH(const bool, ruler);
        const CommandDriver d;
        d.activate();
        const ChartWindow* chart = d.openChart(u"EURUSD"_s);
        QWidget* button
            = d.bar("toolbarStudies").widgetForAction(ruler ? d.actions().crosshair : d.actions().trendLine);
        QTRY_VERIFY(button->isEnabled());
        button->setFocus(Qt::TabFocusReason);
        hands::press(key);
        QCOMPARE(chart->chart().measureMode(), ruler);
        QCOMPARE(chart->chart().tool().isEmpty(), ruler);
        QTRY_VERIFY(chart->chart().hasFocus());
        QTRY_VERIFY(ringShowsTheFocus());
    }

    void a_page_of_the_toolbox_that_ctrl_tab_leads_to_shows_the_keyboard()
    {
        const CommandDriver d;
        d.activate();
        d.f.list("tradeList").setFocus();
        const auto* toolbox
            = qobject_cast<QTabWidget*>(d.f.window->findChild<QDockWidget*>(u"dockTerminal"_s)->widget());
        for (int page = 1; page < toolbox->count(); ++page) {
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab, Qt::ControlModifier);
            QCOMPARE(toolbox->currentIndex(), page);
            QVERIFY(toolbox->isAncestorOf(QApplication::focusWidget()));
            QTRY_VERIFY2(ringShowsTheFocus(), qPrintable(hands::focused()));
        }
    }

    void without_a_chart_the_keyboard_is_in_the_first_pane()
    {
        CommandDriver d;
        d.f.open();
        d.activate();
        QTRY_COMPARE(hands::focused(), u"marketWatchSymbols"_s);
        QVERIFY(!ringShowsTheFocus());
        hands::press(Qt::Key_Down);
        QTRY_VERIFY(ringShowsTheFocus());
    }

    void the_keyboard_goes_to_the_first_pane_when_the_last_chart_is_closed()
    {
        const CommandDriver d;
        d.activate();
        d.f.window->openChart(u"EURUSD"_s);
        QTRY_VERIFY(chartOf(d) && chartOf(d)->hasFocus());
        hands::press(Qt::Key_Right);
        d.actions().closeChart->trigger();
        QTRY_VERIFY(d.f.charts().isEmpty());
        QTRY_COMPARE(hands::focused(), u"marketWatchSymbols"_s);
        QTRY_VERIFY(ringShowsTheFocus());
    }

    void the_first_key_after_the_start_shows_the_keyboard()
    {
        CommandDriver d;
        d.f.window->openChart(u"EURUSD"_s);
        QVERIFY(d.f.window->close());
        d.f.open();
        d.activate();
        QTRY_VERIFY(chartOf(d) && chartOf(d)->hasFocus());
        QVERIFY(!ringShowsTheFocus());
        hands::press(Qt::Key_Right);
        QTRY_VERIFY(ringShowsTheFocus());
    }
};

TAVORAN_TEST(tst_MainWindowKeys)
#include "tst_MainWindowKeys.moc"
