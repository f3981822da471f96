#include "app/ui/FocusMark.h"
#include "app/ui/FocusRing.h"
#include "app/ui/Theme.h"
#include "support/Hands.h"
#include "support/RingContrast.h"
#include "support/TestMain.h"

#include <QAccessible>
#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QSpinBox>
#include <QTabBar>
#include <QToolButton>
#include <QTreeWidget>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

const FocusRing* ring()
{
    const QWidgetList widgets = QApplication::allWidgets();
    for (const QWidget* widget : widgets) {
        const auto* found = qobject_cast<const FocusRing*>(widget);
        if (found && found->isVisible())
            return found;
    }
    return nullptr;
}

/// Waits for what the mark does in the next turn of the event loop.
const FocusRing* ringSoon()
{
    QCoreApplication::processEvents();
    return ring();
}

/// A dialog's worth of everything that can have the focus, beginning with a field that nothing is tried on.
class Desk final : public QWidget {
public:
    Desk()
    {
        add(new QLineEdit(this), u"first"_s);
        auto* standard = add(new QPushButton(u"Default"_s, this), u"default button"_s);
        standard->setDefault(true);
        add(new QPushButton(u"Button"_s, this), u"button"_s);
        auto* swatch = add(new QPushButton(this), u"swatch"_s);
        swatch->setStyleSheet(u"background:#777777;border:1px solid #777777;min-width:0;"_s);
        swatch->setFixedSize(40, 20);
        auto* tool = add(new QToolButton(this), u"tool button"_s);
        tool->setText(u"M1"_s);
        tool->setCheckable(true);
        tool->setChecked(true);
        tool->setFocusPolicy(Qt::TabFocus);
        add(new QCheckBox(u"Box"_s, this), u"check box"_s);
        add(new QLineEdit(this), u"line edit"_s);
        add(new QSpinBox(this), u"spin box"_s);
        add(new QComboBox(this), u"combo box"_s)->addItems({u"A"_s, u"B"_s});
        auto* tabs = add(new QTabBar(this), u"tabs"_s);
        for (const auto& name : {u"One"_s, u"Two"_s})
            tabs->addTab(name);
        auto* list = add(new QTreeWidget(this), u"list"_s);
        list->setRootIsDecorated(false);
        list->setFixedHeight(120);
        for (int row = 0; row < 30; ++row)
            list->addTopLevelItem(new QTreeWidgetItem({QString::number(row)}));
        show();
        activateWindow();
    }

    template <typename Widget> [[nodiscard]] Widget& part(const QString& name)
    {
        return *findChild<Widget*>(name);
    }
    /// Goes there by Tab.
    void tabTo(const QString& name)
    {
        part<QWidget>(u"first"_s).setFocus(Qt::OtherFocusReason);
        for (int step = 0; step < 20 && hands::focused() != name; ++step)
            hands::press(Qt::Key_Tab);
        QCOMPARE(hands::focused(), name);
    }
    [[nodiscard]] QImage picture()
    {
        QCoreApplication::processEvents();
        return grab().toImage();
    }

private:
    template <typename Widget> Widget* add(Widget* widget, const QString& name)
    {
        widget->setObjectName(name);
        m_column->addWidget(widget);
        return widget;
    }

    QVBoxLayout* m_column = new QVBoxLayout(this);
};

/// Counts what an object puts off until the next turn of the event loop.
class CallCount final : public QObject {
public:
    explicit CallCount(QObject& object) { object.installEventFilter(this); }

    int count = 0;

protected:
    bool eventFilter(QObject* /*watched*/, QEvent* event) override
    {
        count += event->type() == QEvent::MetaCall ? 1 : 0;
        return false;
    }
};

/// Goes to another window, does something there, and comes back.
template <typename Deed> void visitAnotherWindow(QWidget& from, const Deed& deed)
{
    QWidget other;
    other.show();
    other.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&other));
    deed(other);
    from.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&from));
}

void addEachInBothThemes()
{
    QTest::addColumn<bool>("dark");
    QTest::addColumn<QString>("name");
    for (const auto& name : {u"default button"_s, u"button"_s, u"swatch"_s, u"tool button"_s, u"check box"_s,
             u"line edit"_s, u"spin box"_s, u"combo box"_s, u"tabs"_s, u"list"_s}) {
        QTest::addRow("%s, dark", qPrintable(name)) << true << name;
        QTest::addRow("%s, light", qPrintable(name)) << false << name;
    }
}

} // namespace

class tst_FocusMark final : public QObject {
    Q_OBJECT

    std::unique_ptr<FocusMark> m_mark;

private Q_SLOTS:
    void init()
    {
        setTheme(false);
        applyTheme(*qApp);
        m_mark = std::make_unique<FocusMark>(*qApp);
    }
    void cleanup() { m_mark.reset(); }

    void what_tab_leads_to_has_a_ring_that_stands_out_data() { addEachInBothThemes(); }
    void what_tab_leads_to_has_a_ring_that_stands_out()
    {
        QFETCH(const bool, dark);
        QFETCH(const QString, name);
        setTheme(dark);
        applyTheme(*qApp);
        Desk desk;
        QVERIFY(hands::arriveAt(&desk));
        // The same focus without the ring.
        desk.part<QWidget>(name).setFocus(Qt::OtherFocusReason);
        QVERIFY(!ringSoon());
        const QImage before = desk.picture();
        desk.tabTo(name);
        const FocusRing* mark = ringSoon();
        QVERIFY(mark);
        const int width = name == u"tabs"_s || name == u"list"_s ? 2 : 4;
        const double least = fixtures::leastContrast(before, desk.picture(), mark->geometry(), width);
        QVERIFY2(least >= 3.0, qPrintable(QString::number(least)));
    }

    void the_mouse_sees_no_ring()
    {
        Desk desk;
        QVERIFY(hands::arriveAt(&desk));
        QVERIFY(!ringSoon());
        for (const auto& name : {u"button"_s, u"check box"_s, u"line edit"_s}) {
            desk.tabTo(name);
            QVERIFY(ringSoon());
            QTest::mouseClick(&desk.part<QWidget>(name), Qt::LeftButton);
            QVERIFY(!ringSoon());
        }
        QTest::mouseClick(&desk.part<QWidget>(u"line edit"_s), Qt::LeftButton);
        hands::type(u"text"_s);
        QVERIFY(!ringSoon());
        hands::press(Qt::Key_Tab);
        QVERIFY(ringSoon());
    }

    void a_press_elsewhere_leaves_the_ring_while_the_keyboard_stays()
    {
        Desk desk;
        QVERIFY(hands::arriveAt(&desk));
        desk.tabTo(u"button"_s);
        QTest::mouseClick(&desk.part<QWidget>(u"tool button"_s), Qt::LeftButton); // takes no focus
        QTest::mouseClick(&desk, Qt::LeftButton, {}, {1, 1});
        QCOMPARE(hands::focused(), u"button"_s);
        QVERIFY(ringSoon());
        QTest::mouseClick(&desk.part<QWidget>(u"line edit"_s), Qt::LeftButton);
        QCOMPARE(hands::focused(), u"line edit"_s);
        QVERIFY(!ringSoon());
    }

    void a_press_on_a_row_takes_the_ring_of_the_list_away()
    {
        Desk desk;
        QVERIFY(hands::arriveAt(&desk));
        desk.tabTo(u"list"_s);
        QVERIFY(ringSoon());
        QTest::mouseClick(desk.part<QTreeWidget>(u"list"_s).viewport(), Qt::LeftButton);
        QCOMPARE(hands::focused(), u"list"_s);
        QVERIFY(!ringSoon());
    }

    void the_ring_goes_where_a_key_makes_the_program_put_the_keyboard_data()
    {
        QTest::addColumn<bool>("byKey");
        QTest::newRow("key") << true;
        QTest::newRow("mouse") << false;
    }
    void the_ring_goes_where_a_key_makes_the_program_put_the_keyboard()
    {
        QFETCH(const bool, byKey);
        Desk desk;
        QVERIFY(hands::arriveAt(&desk));
        auto& button = desk.part<QPushButton>(u"button"_s);
        auto& field = desk.part<QLineEdit>(u"line edit"_s);
        connect(&button, &QPushButton::clicked, &field, qOverload<>(&QWidget::setFocus));
        desk.tabTo(u"button"_s);
        if (byKey)
            hands::press(Qt::Key_Space);
        else
            QTest::mouseClick(&button, Qt::LeftButton);
        QVERIFY(field.hasFocus());
        QCOMPARE(ringSoon() != nullptr, byKey);
    }

    void what_the_mouse_closes_leaves_no_ring()
    {
        Desk desk;
        QVERIFY(hands::arriveAt(&desk));
        desk.tabTo(u"button"_s);
        // Qt says that it was Tab when it leaves what is closed.
        QTest::mouseClick(&desk.part<QWidget>(u"button"_s), Qt::LeftButton);
        desk.part<QWidget>(u"button"_s).hide();
        QVERIFY(desk.focusWidget() != &desk.part<QWidget>(u"button"_s));
        QVERIFY(!ringSoon());
    }

    void the_first_key_shows_where_the_keyboard_is()
    {
        Desk desk;
        QVERIFY(hands::arriveAt(&desk));
        desk.part<QWidget>(u"list"_s).setFocus();
        QVERIFY(!ringSoon());
        hands::press(Qt::Key_Control);
        QVERIFY(!ringSoon());
        hands::press(Qt::Key_Down);
        QCOMPARE(hands::focused(), u"list"_s);
        QVERIFY(ringSoon());
    }

    void the_ring_goes_where_its_widget_goes()
    {
        Desk desk;
        QVERIFY(hands::arriveAt(&desk));
        desk.tabTo(u"button"_s);
        auto& button = desk.part<QWidget>(u"button"_s);
        const QMargins around(2, 2, 2, 2);
        QVERIFY(ringSoon());
        QCOMPARE(ring()->geometry(), button.geometry() + around);
        button.setGeometry(button.geometry().translated(5, 3));
        QVERIFY(ringSoon());
        QCOMPARE(ring()->geometry(), button.geometry() + around);
        desk.resize(desk.width() + 60, desk.height());
        QVERIFY(ringSoon());
        QCOMPARE(ring()->geometry(), button.geometry() + around);
        button.hide();
        QVERIFY(!ring() || ring()->geometry() != button.geometry() + around);
        desk.tabTo(u"swatch"_s);
        QVERIFY(ringSoon());
        delete &desk.part<QWidget>(u"swatch"_s);
        QVERIFY(!ringSoon());
    }

    void the_ring_goes_with_the_current_tab()
    {
        Desk desk;
        QVERIFY(hands::arriveAt(&desk));
        desk.tabTo(u"tabs"_s);
        const auto& tabs = desk.part<QTabBar>(u"tabs"_s);
        for (const int tab : {0, 1, 0}) {
            if (tab != tabs.currentIndex())
                hands::press(tab == 1 ? Qt::Key_Right : Qt::Key_Left);
            QCOMPARE(tabs.currentIndex(), tab);
            QTRY_COMPARE(ringSoon()->geometry(), tabs.tabRect(tab).translated(tabs.pos()));
        }
    }

    void the_ring_goes_with_the_current_row()
    {
        Desk desk;
        QVERIFY(hands::arriveAt(&desk));
        desk.tabTo(u"list"_s);
        auto& list = desk.part<QTreeWidget>(u"list"_s);
        const auto rowPlace = [&list, &desk](int row) {
            QRect place = list.visualItemRect(list.topLevelItem(row));
            place.setLeft(0);
            place.setWidth(list.viewport()->width());
            place &= list.viewport()->rect();
            return place.translated(list.viewport()->mapTo(&desk, QPoint()));
        };
        QTRY_COMPARE(ringSoon()->geometry(), rowPlace(0));
        hands::press(Qt::Key_Down);
        QTRY_COMPARE(ringSoon()->geometry(), rowPlace(1));
        hands::press(Qt::Key_PageDown);
        QTRY_COMPARE(ringSoon()->geometry(), rowPlace(list.indexOfTopLevelItem(list.currentItem())));
        // Where the current row is out of sight, the whole list is marked.
        list.verticalScrollBar()->setValue(list.verticalScrollBar()->maximum());
        hands::press(Qt::Key_Home);
        list.verticalScrollBar()->setValue(list.verticalScrollBar()->maximum());
        const QRect whole(list.viewport()->mapTo(&desk, QPoint()), list.viewport()->size());
        QTRY_COMPARE(ringSoon()->geometry(), whole);
    }

    void a_list_without_rows_is_marked_as_a_whole()
    {
        Desk desk;
        QVERIFY(hands::arriveAt(&desk));
        auto& list = desk.part<QTreeWidget>(u"list"_s);
        list.clear();
        desk.tabTo(u"list"_s);
        QTRY_VERIFY(ringSoon() && !list.verticalScrollBar()->isVisible());
        const QRect whole(list.viewport()->mapTo(&desk, QPoint()), list.viewport()->size());
        QTRY_COMPARE(ringSoon()->geometry(), whole);
    }

    void the_ring_is_there_again_after_a_visit_to_another_window()
    {
        Desk desk;
        QVERIFY(hands::arriveAt(&desk));
        desk.tabTo(u"button"_s);
        visitAnotherWindow(desk, [](QWidget&) { QVERIFY(!ringSoon()); });
        QVERIFY(ringSoon());
    }

    void a_press_in_another_window_leaves_the_ring_to_come_back_to()
    {
        Desk desk;
        QVERIFY(hands::arriveAt(&desk));
        desk.tabTo(u"button"_s);
        visitAnotherWindow(desk, [](QWidget& other) { QTest::mouseClick(&other, Qt::LeftButton); });
        QCOMPARE(hands::focused(), u"button"_s);
        QVERIFY(ringSoon());
    }

    void a_visit_brings_no_ring_to_what_the_mouse_was_pressed_on()
    {
        Desk desk;
        QVERIFY(hands::arriveAt(&desk));
        QTest::mouseClick(&desk.part<QWidget>(u"line edit"_s), Qt::LeftButton);
        hands::type(u"text"_s);
        visitAnotherWindow(desk, [](QWidget& other) { QTest::keyClick(&other, Qt::Key_Escape); });
        QCOMPARE(hands::focused(), u"line edit"_s);
        QVERIFY(!ringSoon());
        hands::type(u"text"_s);
        QVERIFY(!ringSoon());
    }

    void a_paint_that_moves_no_row_makes_no_work()
    {
        Desk desk;
        QVERIFY(hands::arriveAt(&desk));
        desk.tabTo(u"list"_s);
        auto& list = desk.part<QTreeWidget>(u"list"_s);
        QTRY_VERIFY(ringSoon() && ring()->height() < list.height() / 2);
        CallCount calls(*m_mark);
        list.viewport()->repaint();
        QCoreApplication::processEvents();
        QCOMPARE(calls.count, 0);
        hands::press(Qt::Key_Down);
        QTRY_COMPARE(calls.count, 1);
    }

    void a_dialog_that_a_key_opens_shows_its_focus_data()
    {
        QTest::addColumn<bool>("byKey");
        QTest::newRow("key") << true;
        QTest::newRow("mouse") << false;
    }
    void a_dialog_that_a_key_opens_shows_its_focus()
    {
        QFETCH(const bool, byKey);
        Desk desk;
        QVERIFY(hands::arriveAt(&desk));
        QDialog dialog(&desk);
        auto* field = new QLineEdit(&dialog);
        field->setFocus();
        auto& button = desk.part<QPushButton>(u"button"_s);
        connect(&button, &QPushButton::clicked, &dialog, &QDialog::open);
        desk.tabTo(u"button"_s);
        if (byKey)
            hands::press(Qt::Key_Space);
        else
            QTest::mouseClick(&button, Qt::LeftButton);
        QVERIFY(hands::arriveAt(&dialog));
        QCOMPARE(ringSoon() != nullptr, byKey);
        if (byKey)
            QCOMPARE(ring()->parentWidget(), &dialog);
        hands::press(Qt::Key_Escape);
        desk.activateWindow(); // as a desktop does
        QVERIFY(hands::arriveAt(&desk));
        QVERIFY(button.hasFocus());
        QCOMPARE(ringSoon() != nullptr, byKey);
    }

    void a_ring_takes_no_mouse_and_no_key_and_is_nothing_to_a_screen_reader()
    {
        Desk desk;
        QVERIFY(hands::arriveAt(&desk));
        const int parts = QAccessible::queryAccessibleInterface(&desk)->childCount();
        desk.tabTo(u"check box"_s);
        QVERIFY(ringSoon());
        const QPoint onRing = ring()->geometry().topLeft() + QPoint(2, 8);
        QVERIFY(ring()->testAttribute(Qt::WA_TransparentForMouseEvents));
        QCOMPARE(ring()->focusPolicy(), Qt::NoFocus);
        QCOMPARE(QAccessible::queryAccessibleInterface(&desk)->childCount(), parts);
        QCOMPARE(desk.childAt(onRing), &desk.part<QWidget>(u"check box"_s));
    }
};

TAVORAN_TEST(tst_FocusMark)
#include "tst_FocusMark.moc"
