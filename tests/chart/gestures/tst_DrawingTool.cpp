#include "chart/gestures/DrawingTool.h"

#include "chart/DrawingBuilders.h"
#include "chart/data/DrawingList.h"
#include "support/TestMain.h"

using namespace Qt::StringLiterals;
using fixtures::selectedIds;

namespace {

constexpr DrawingPoint first{1000, 1.25};
constexpr DrawingPoint second{2000, 1.5};

Drawing lineOf(const QString& id, bool selected = false)
{
    return fixtures::horizontalLine(id, first.price, selected);
}

} // namespace

class TestDrawingTool final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void plain_lines_take_one_click()
    {
        for (const QString& key : {u"hline"_s, u"vline"_s}) {
            DrawingTool tool;
            tool.choose(key);
            QVERIFY(tool.isActive());
            QCOMPARE(tool.key(), key);
            const std::optional<Drawing> drawing = tool.click(first);
            QVERIFY(drawing);
            QCOMPARE(drawing->type, key);
            QCOMPARE(drawing->points, QList<DrawingPoint>{first});
        }
    }

    void the_others_take_two_clicks()
    {
        for (const QString& key : {u"trendline"_s, u"rectangle"_s, u"fibonacci"_s}) {
            DrawingTool tool;
            tool.choose(key);
            QVERIFY(!tool.placed());
            QVERIFY(!tool.click(first));
            QVERIFY(tool.placed() == first);
            const std::optional<Drawing> drawing = tool.click(second);
            QVERIFY(drawing);
            QCOMPARE(drawing->type, key);
            QCOMPARE(drawing->points, (QList<DrawingPoint>{first, second}));
            QVERIFY(!tool.placed());
        }
    }

    void choosing_again_drops_the_placed_point()
    {
        DrawingTool tool;
        tool.choose(u"trendline"_s);
        QVERIFY(!tool.click(first));
        tool.choose(u"trendline"_s);
        QVERIFY(!tool.placed());
        QVERIFY(!tool.click(second));
        tool.cancel();
        QVERIFY(!tool.isActive());
        QVERIFY(!tool.placed());
        QVERIFY(!tool.click(first));
    }

    void an_unknown_tool_is_no_tool()
    {
        DrawingTool tool;
        tool.choose(u"ellipse"_s);
        QVERIFY(!tool.isActive());
        QCOMPARE(tool.key(), QString());
        QVERIFY(!tool.click(first));
    }

    void new_objects_are_grey_not_selected_and_without_id()
    {
        for (const QString& key : {u"hline"_s, u"vline"_s, u"trendline"_s, u"rectangle"_s, u"fibonacci"_s}) {
            DrawingTool tool;
            tool.choose(key);
            std::optional<Drawing> drawing = tool.click(first);
            if (!drawing)
                drawing = tool.click(second);
            QVERIFY(drawing);
            QCOMPARE(drawing->type, key);
            QCOMPARE(drawing->color, QColor(u"#e0e0e0"_s));
            QVERIFY(!drawing->selected);
            QCOMPARE(drawing->id, QString());
        }
    }

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

TAVORAN_TEST(TestDrawingTool)
#include "tst_DrawingTool.moc"
