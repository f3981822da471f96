#include "app/ui/MenuKey.h"
#include "support/Hands.h"
#include "support/TestMain.h"

#include <QTreeWidget>

using namespace Qt::StringLiterals;

namespace {

/// A list of three rows with a menu of its own.
struct List {
    List()
    {
        list.addTopLevelItems(
            {new QTreeWidgetItem({u"A"_s}), new QTreeWidgetItem({u"B"_s}), new QTreeWidgetItem({u"C"_s})});
        list.setContextMenuPolicy(Qt::CustomContextMenu);
        list.show();
        list.setFocus();
    }

    QTreeWidget list;
    QSignalSpy asked{&list, &QWidget::customContextMenuRequested};
};

void pressShiftF10()
{
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_F10, Qt::ShiftModifier);
}

} // namespace

class TestMenuKey final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void shift_f10_asks_for_the_menu_of_the_current_row_once()
    {
        const MenuKey key(*qApp);
        List f;
        QVERIFY(hands::arriveAt(&f.list));
        f.list.setCurrentItem(f.list.topLevelItem(1));
        pressShiftF10();
        QCOMPARE(f.asked.size(), 1);
        QCOMPARE(f.list.itemAt(f.asked.at(0).at(0).toPoint()), f.list.topLevelItem(1));
        QKeyEvent held(QEvent::KeyPress, Qt::Key_F10, Qt::ShiftModifier, {}, true);
        QCoreApplication::sendEvent(&f.list, &held);
        QCOMPARE(f.asked.size(), 1);
    }

    void other_keys_ask_for_none()
    {
        const MenuKey key(*qApp);
        List f;
        QVERIFY(hands::arriveAt(&f.list));
        f.list.setCurrentItem(f.list.topLevelItem(1));
        hands::press(Qt::Key_F10);
        QTest::keyClick(&f.list, Qt::Key_F9, Qt::ShiftModifier);
        QTest::keyClick(&f.list, Qt::Key_F10, Qt::ShiftModifier | Qt::ControlModifier);
        QVERIFY(f.asked.isEmpty());
    }
};

TAVORAN_TEST(TestMenuKey)
#include "tst_MenuKey.moc"
