#include "chart/gestures/DrawingTool.h"

#include "support/TestMain.h"

using namespace Qt::StringLiterals;

namespace {

constexpr DrawingPoint first{1000, 1.25};
constexpr DrawingPoint second{2000, 1.5};

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
};

TAVORAN_TEST(TestDrawingTool)
#include "tst_DrawingTool.moc"
