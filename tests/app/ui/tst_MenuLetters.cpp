#include "app/ui/MenuLetters.h"
#include "app/ui/Theme.h"
#include "support/Hands.h"
#include "support/TestMain.h"

#include <QMenu>

using namespace Qt::StringLiterals;

namespace {

/// An open menu with a submenu, an entry that cannot be chosen, and one with an underlined letter.
struct OpenMenu {
    OpenMenu()
    {
        menu.addAction(u"Tile"_s);
        submenu = menu.addMenu(u"Timeframe"_s);
        submenu->addAction(u"M1"_s);
        submenu->addAction(u"H1"_s);
        menu.addAction(u"Trend Line"_s)->setEnabled(false);
        menu.addSeparator();
        menu.addAction(u"Zoom In"_s);
        menu.addAction(u"Zoom Out"_s);
        exit = menu.addAction(u"E&xit"_s);
        menu.addAction(u"Expert"_s);
        menu.popup({100, 100});
    }

    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) const
    {
        QTest::keyClick(QApplication::activePopupWidget(), key, modifiers);
        QCoreApplication::processEvents();
    }
    [[nodiscard]] QString active() const
    {
        return menu.activeAction() ? menu.activeAction()->text() : u"none"_s;
    }

    QMenu menu;
    QMenu* submenu = nullptr;
    QAction* exit = nullptr;
    QSignalSpy chosen{&menu, &QMenu::triggered};
};

} // namespace

class tst_MenuLetters final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { applyTheme(*qApp); }

    void a_letter_goes_to_the_next_entry_that_begins_with_it_and_chooses_none()
    {
        const MenuLetters letters(*qApp);
        const OpenMenu f;
        for (const auto& entry : {u"Zoom In"_s, u"Zoom Out"_s, u"Zoom In"_s}) {
            f.press(Qt::Key_Z);
            QCOMPARE(f.active(), entry);
        }
        f.press(Qt::Key_T, Qt::ShiftModifier);
        QCOMPARE(f.active(), u"Tile"_s);
        QVERIFY(f.menu.isVisible());
        QVERIFY(f.chosen.isEmpty());
        f.press(Qt::Key_Return);
        QCOMPARE(f.chosen.size(), 1);
    }

    void a_letter_opens_a_submenu_which_takes_letters_too()
    {
        const MenuLetters letters(*qApp);
        const OpenMenu f;
        f.press(Qt::Key_T);
        f.press(Qt::Key_T);
        QCOMPARE(f.active(), u"Timeframe"_s);
        QTRY_COMPARE(QApplication::activePopupWidget(), f.submenu);
        f.press(Qt::Key_H);
        QCOMPARE(f.submenu->activeAction()->text(), u"H1"_s);
        f.press(Qt::Key_Return);
        QVERIFY(!f.menu.isVisible());
    }

    void an_underlined_letter_chooses_its_entry()
    {
        const MenuLetters letters(*qApp);
        const OpenMenu f;
        f.press(Qt::Key_X);
        QVERIFY(!f.menu.isVisible());
        QCOMPARE(f.chosen.size(), 1);
        QCOMPARE(f.chosen.at(0).at(0).value<QAction*>(), f.exit);
    }

    void other_keys_are_the_menus()
    {
        const MenuLetters letters(*qApp);
        const OpenMenu f;
        f.press(Qt::Key_Q);
        QCOMPARE(f.active(), u"none"_s);
        f.press(Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(f.active(), u"none"_s);
        f.press(Qt::Key_Down);
        QCOMPARE(f.active(), u"Tile"_s);
        f.press(Qt::Key_Escape);
        QVERIFY(!f.menu.isVisible());
    }
};

TAVORAN_TEST(tst_MenuLetters)
#include "tst_MenuLetters.moc"
