#include "mainwindow/PaneRing.h"
#include "support/TestMain.h"

class tst_PaneRing final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void the_ring_passes_over_what_is_not_on_show_data()
    {
        QTest::addColumn<QList<bool>>("onShow");
        QTest::addColumn<qsizetype>("current");
        QTest::addColumn<qsizetype>("forward");
        QTest::addColumn<qsizetype>("back");
        using Shown = QList<bool>;
        const auto row = [](const char* name, const Shown& onShow, qsizetype current, qsizetype forward,
                             qsizetype back) { QTest::newRow(name) << onShow << current << forward << back; };
        row("none there are", {}, -1, -1, -1);
        row("none on show", {false, false}, 1, -1, -1);
        row("the only one", {true}, 0, 0, 0);
        row("the only one on show", {false, true, false}, 1, 1, 1);
        row("the neighbours", {true, true, true, true}, 1, 2, 0);
        row("around both ends", {true, true, true}, 0, 1, 2);
        row("from the last to the first", {true, true, true}, 2, 0, 1);
        row("past a hidden one", {true, false, true, true}, 0, 2, 3);
        row("from outside", {true, true, true}, -1, 0, 0);
        row("from outside past a hidden first", {false, true, true}, -1, 1, 2);
        row("from one that is no longer on show", {true, false, true}, 1, 2, 0);
    }
    void the_ring_passes_over_what_is_not_on_show()
    {
        QFETCH(const QList<bool>, onShow);
        QFETCH(const qsizetype, current);
        QTEST(nextPane(onShow, current, true), "forward");
        QTEST(nextPane(onShow, current, false), "back");
    }
};

TAVORAN_TEST(tst_PaneRing)
#include "tst_PaneRing.moc"
