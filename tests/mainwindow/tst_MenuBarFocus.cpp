#include "CommandDriver.h"
#include "app/ui/FocusMark.h"
#include "app/ui/FocusRing.h"
#include "support/TestMain.h"

#include <QMenu>
#include <QWindow>

using namespace Qt::StringLiterals;

namespace {

/// Where the desktop sends keys.
QWindow* target(const CommandDriver& d)
{
    const QWidget* popup = QApplication::activePopupWidget();
    return (popup ? popup : d.f.window.get())->windowHandle();
}

void press(const CommandDriver& d, Qt::Key key)
{
    QTest::keyClick(target(d), key);
    QCoreApplication::processEvents();
}

void pressWithAlt(const CommandDriver& d, Qt::Key key)
{
    QTest::keyPress(target(d), Qt::Key_Alt, Qt::AltModifier);
    QTest::keyClick(target(d), key, Qt::AltModifier);
    QTest::keyRelease(target(d), Qt::Key_Alt);
    QCoreApplication::processEvents();
}

/// The title of the open menu, or nothing.
QString openMenu()
{
    const auto* menu = qobject_cast<const QMenu*>(QApplication::activePopupWidget());
    return menu ? menu->title() : QString();
}

} // namespace

class tst_MenuBarFocus final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void escape_in_a_menu_gives_the_keyboard_back()
    {
        const FocusMark mark(*qApp);
        const CommandDriver d;
        d.activate();
        QTreeWidget& list = d.f.list("tradeList");
        list.setFocus(Qt::TabFocusReason);
        for (int round = 0; round < 2; ++round) {
            for (const auto& [key, menu] :
                {std::pair(Qt::Key_T, u"&Tools"_s), std::pair(Qt::Key_C, u"&Charts"_s)}) {
                pressWithAlt(d, key);
                QCOMPARE(openMenu(), menu);
                press(d, Qt::Key_Escape);
                QCOMPARE(openMenu(), QString());
                QVERIFY(!d.f.window->menuBar()->activeAction());
                QVERIFY(list.hasFocus());
                const auto* ring = d.f.window->findChild<FocusRing*>();
                QTRY_VERIFY(ring && ring->isVisible());
            }
        }
    }

    void escape_in_a_menu_leaves_the_keyboard_in_the_chart()
    {
        const CommandDriver d;
        d.activate();
        const ChartWindow* chart = d.openChart(u"EURUSD"_s);
        QTRY_VERIFY(chart->chart().hasFocus());
        pressWithAlt(d, Qt::Key_V);
        QCOMPARE(openMenu(), u"&View"_s);
        press(d, Qt::Key_Right);
        QCOMPARE(openMenu(), u"&Insert"_s);
        press(d, Qt::Key_Escape);
        QVERIFY(chart->chart().hasFocus());
    }

    void escape_in_a_submenu_goes_back_to_its_menu()
    {
        const CommandDriver d;
        d.activate();
        QTreeWidget& list = d.f.list("tradeList");
        list.setFocus();
        pressWithAlt(d, Qt::Key_I);
        press(d, Qt::Key_Right);
        QCOMPARE(openMenu(), u"Indicators"_s);
        press(d, Qt::Key_Escape);
        QCOMPARE(openMenu(), u"&Insert"_s);
        press(d, Qt::Key_Escape);
        QCOMPARE(openMenu(), QString());
        QVERIFY(list.hasFocus());
    }

    void an_entry_that_enter_chooses_in_the_second_menu_gives_the_keyboard_back()
    {
        const CommandDriver d;
        d.activate();
        QTreeWidget& list = d.f.list("tradeList");
        list.setFocus();
        press(d, Qt::Key_Alt);
        QVERIFY(d.f.window->menuBar()->hasFocus());
        pressWithAlt(d, Qt::Key_C);
        QCOMPARE(openMenu(), u"&Charts"_s);
        pressWithAlt(d, Qt::Key_V);
        QCOMPARE(openMenu(), u"&View"_s);
        press(d, Qt::Key_Return);
        QCOMPARE(openMenu(), QString());
        QVERIFY(!d.actions().toggleMarketWatch->isChecked());
        QTRY_VERIFY(list.hasFocus());
    }

    void alt_alone_goes_to_the_menu_bar_and_back()
    {
        const CommandDriver d;
        d.activate();
        QTreeWidget& list = d.f.list("tradeList");
        list.setFocus();
        press(d, Qt::Key_Alt);
        QVERIFY(d.f.window->menuBar()->hasFocus());
        press(d, Qt::Key_Escape);
        QTRY_VERIFY(list.hasFocus());
    }
};

TAVORAN_TEST(tst_MenuBarFocus)
#include "tst_MenuBarFocus.moc"
