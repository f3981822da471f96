#include "chart/data/DrawingList.h"

#include "chart/DrawingBuilders.h"
#include "support/TestMain.h"

using namespace Qt::StringLiterals;
using fixtures::selectedIds;

namespace {

Drawing lineOf(const QString& id, bool selected = false)
{
    return fixtures::horizontalLine(id, 1.25, selected);
}

} // namespace

class TestDrawingList final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void at_most_one_object_is_selected()
    {
        DrawingList list;
        QVERIFY(list.replace({lineOf(u"a"_s), lineOf(u"b"_s, true), lineOf(u"c"_s, true)}));
        QCOMPARE(selectedIds(list.drawings()), u"b"_s);
        QVERIFY(list.select(0));
        QCOMPARE(selectedIds(list.drawings()), u"a"_s);
        QVERIFY(!list.select(0));
        QVERIFY(list.select(-1));
        QCOMPARE(selectedIds(list.drawings()), QString());
        QVERIFY(!list.select(-1));
    }

    void a_replaced_list_keeps_the_selected_id()
    {
        DrawingList list;
        list.replace({lineOf(u"a"_s), lineOf(u"b"_s)});
        list.select(1);
        list.replace({lineOf(u"b"_s), lineOf(u"c"_s), lineOf(u"a"_s)});
        QCOMPARE(selectedIds(list.drawings()), u"b"_s);
        list.replace({lineOf(u"b"_s), lineOf(u"c"_s, true)}); // who replaces may select
        QCOMPARE(selectedIds(list.drawings()), u"c"_s);
        list.replace({lineOf(u"a"_s)});
        QCOMPARE(selectedIds(list.drawings()), QString());
        list.replace({lineOf(QString()), lineOf(QString())}); // objects that the server does not know yet
        list.select(0);
        QCOMPARE(selectedIds(list.drawings()), u"-"_s);
        list.replace({lineOf(u"z"_s), lineOf(QString())});
        QCOMPARE(selectedIds(list.drawings()), QString());
    }

    void a_replaced_list_tells_whether_it_changed()
    {
        DrawingList list;
        QVERIFY(!list.replace({}));
        QVERIFY(list.replace({lineOf(u"a"_s)}));
        QVERIFY(!list.replace({lineOf(u"a"_s)}));
        list.select(0);
        QVERIFY(!list.replace({lineOf(u"a"_s)}));
        QCOMPARE(selectedIds(list.drawings()), u"a"_s);
    }

    void the_selected_object_is_taken_out()
    {
        DrawingList list;
        QVERIFY(!list.takeSelected());
        list.replace({lineOf(u"a"_s), lineOf(u"b"_s, true), lineOf(u"c"_s)});
        const std::optional<Drawing> taken = list.takeSelected();
        QVERIFY(taken);
        QCOMPARE(taken->id, u"b"_s);
        QCOMPARE(list.drawings().size(), 2);
        QVERIFY(!list.takeSelected());
    }
};

TAVORAN_TEST(TestDrawingList)
#include "tst_DrawingList.moc"
