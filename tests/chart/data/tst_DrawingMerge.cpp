#include "chart/data/DrawingMerge.h"

#include "chart/DrawingBuilders.h"
#include "support/TestMain.h"

using namespace Qt::StringLiterals;
using fixtures::horizontalLine;

namespace {

using Drawings = QList<Drawing>;

} // namespace

class tst_DrawingMerge final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void showsWhatTheServerHas()
    {
        QCOMPARE(mergeDrawings(
                     {horizontalLine(u"a"_s, 1), horizontalLine(u"b"_s, 2)}, {horizontalLine(u"c"_s, 3)}, {}),
            Drawings({horizontalLine(u"a"_s, 1), horizontalLine(u"b"_s, 2)}));
    }

    void keepsWhatTheServerHasNot()
    {
        QCOMPARE(mergeDrawings(
                     {horizontalLine(u"a"_s, 1)}, {horizontalLine({}, 5), horizontalLine(u"a"_s, 1)}, {}),
            Drawings({horizontalLine(u"a"_s, 1), horizontalLine({}, 5)}));
    }

    void dropsTheLocalCopyOfAConfirmedObject()
    {
        QCOMPARE(mergeDrawings({horizontalLine(u"a"_s, 1)}, {horizontalLine({}, 1)}, {horizontalLine({}, 1)}),
            Drawings{horizontalLine(u"a"_s, 1)});
    }

    void dropsAConfirmedObjectWhosePriceTheServerRounded()
    {
        QCOMPARE(mergeDrawings({horizontalLine(u"a"_s, 1.23457)}, {horizontalLine({}, 1.2345678)},
                     {horizontalLine({}, 1.2345678)}),
            Drawings{horizontalLine(u"a"_s, 1.23457)});
    }

    void ofTwoEqualObjectsOnlyTheConfirmedOneGoes()
    {
        QCOMPARE(mergeDrawings({horizontalLine(u"a"_s, 1)}, {horizontalLine({}, 1), horizontalLine({}, 1)},
                     {horizontalLine({}, 1)}),
            Drawings({horizontalLine(u"a"_s, 1), horizontalLine({}, 1)}));
    }

    void anObjectThatArrivedInSpiteOfAFailureIsShownOnce()
    {
        QCOMPARE(mergeDrawings({horizontalLine(u"a"_s, 1.1)}, {horizontalLine({}, 1.1 + 1e-12)}, {}),
            Drawings{horizontalLine(u"a"_s, 1.1)});
    }

    void anotherObjectIsNoSuchArrival_data()
    {
        QTest::addColumn<Drawing>("other");
        Drawing kind = horizontalLine(u"a"_s, 1);
        kind.type = u"vline"_s;
        Drawing colour = horizontalLine(u"a"_s, 1);
        colour.color = QColor(0xe0, 0xe0, 0xe1);
        Drawing time = horizontalLine(u"a"_s, 1);
        time.points.first().time = 1001;
        Drawing longer = horizontalLine(u"a"_s, 1);
        longer.points.append({2000, 1});
        QTest::newRow("of another kind") << kind;
        QTest::newRow("in another colour") << colour;
        QTest::newRow("at another time") << time;
        QTest::newRow("at another price") << horizontalLine(u"a"_s, 1.000001);
        QTest::newRow("with a further point") << longer;
    }
    void anotherObjectIsNoSuchArrival()
    {
        QFETCH(Drawing, other);
        QCOMPARE(
            mergeDrawings({other}, {horizontalLine({}, 1)}, {}), Drawings({other, horizontalLine({}, 1)}));
    }

    void anEqualObjectThatWasThereBeforeIsNoSuchArrival()
    {
        QCOMPARE(mergeDrawings(
                     {horizontalLine(u"a"_s, 1)}, {horizontalLine(u"a"_s, 1), horizontalLine({}, 1)}, {}),
            Drawings({horizontalLine(u"a"_s, 1), horizontalLine({}, 1)}));
    }

    void keepsTheSelection()
    {
        QCOMPARE(mergeDrawings({horizontalLine(u"a"_s, 1), horizontalLine(u"b"_s, 2)},
                     {horizontalLine(u"a"_s, 1), horizontalLine(u"b"_s, 2, true)}, {}),
            Drawings({horizontalLine(u"a"_s, 1), horizontalLine(u"b"_s, 2, true)}));
        QCOMPARE(mergeDrawings({}, {horizontalLine({}, 2, true)}, {}), Drawings{horizontalLine({}, 2, true)});
    }

    void theSelectionPassesToTheStoredObject()
    {
        QCOMPARE(mergeDrawings(
                     {horizontalLine(u"a"_s, 1)}, {horizontalLine({}, 1, true)}, {horizontalLine({}, 1)}),
            Drawings{horizontalLine(u"a"_s, 1, true)});
    }
};

TAVORAN_TEST(tst_DrawingMerge)
#include "tst_DrawingMerge.moc"
