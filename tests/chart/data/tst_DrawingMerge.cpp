#include "chart/data/DrawingMerge.h"
#include "support/TestMain.h"

using namespace Qt::StringLiterals;

namespace {

Drawing line(const QString& id, double price, bool selected = false)
{
    return {id, u"hline"_s, {{1000, price}}, QColor(0xe0, 0xe0, 0xe0), selected};
}

using Drawings = QList<Drawing>;

} // namespace

class tst_DrawingMerge final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void showsWhatTheServerHas()
    {
        QCOMPARE(mergeDrawings({line(u"a"_s, 1), line(u"b"_s, 2)}, {line(u"c"_s, 3)}, {}),
            Drawings({line(u"a"_s, 1), line(u"b"_s, 2)}));
    }

    void keepsWhatTheServerHasNot()
    {
        QCOMPARE(mergeDrawings({line(u"a"_s, 1)}, {line({}, 5), line(u"a"_s, 1)}, {}),
            Drawings({line(u"a"_s, 1), line({}, 5)}));
    }

    void dropsTheLocalCopyOfAConfirmedObject()
    {
        QCOMPARE(mergeDrawings({line(u"a"_s, 1)}, {line({}, 1)}, {line({}, 1)}), Drawings{line(u"a"_s, 1)});
    }

    void dropsAConfirmedObjectWhosePriceTheServerRounded()
    {
        QCOMPARE(mergeDrawings({line(u"a"_s, 1.23457)}, {line({}, 1.2345678)}, {line({}, 1.2345678)}),
            Drawings{line(u"a"_s, 1.23457)});
    }

    void ofTwoEqualObjectsOnlyTheConfirmedOneGoes()
    {
        QCOMPARE(mergeDrawings({line(u"a"_s, 1)}, {line({}, 1), line({}, 1)}, {line({}, 1)}),
            Drawings({line(u"a"_s, 1), line({}, 1)}));
    }

    void anObjectThatArrivedInSpiteOfAFailureIsShownOnce()
    {
        QCOMPARE(
            mergeDrawings({line(u"a"_s, 1.1)}, {line({}, 1.1 + 1e-12)}, {}), Drawings{line(u"a"_s, 1.1)});
    }

    void anotherObjectIsNoSuchArrival_data()
    {
        QTest::addColumn<Drawing>("other");
        Drawing kind = line(u"a"_s, 1);
        kind.type = u"vline"_s;
        Drawing colour = line(u"a"_s, 1);
        colour.color = QColor(0xe0, 0xe0, 0xe1);
        Drawing time = line(u"a"_s, 1);
        time.points.first().time = 1001;
        Drawing longer = line(u"a"_s, 1);
        longer.points.append({2000, 1});
        QTest::newRow("of another kind") << kind;
        QTest::newRow("in another colour") << colour;
        QTest::newRow("at another time") << time;
        QTest::newRow("at another price") << line(u"a"_s, 1.000001);
        QTest::newRow("with a further point") << longer;
    }
    void anotherObjectIsNoSuchArrival()
    {
        QFETCH(Drawing, other);
        QCOMPARE(mergeDrawings({other}, {line({}, 1)}, {}), Drawings({other, line({}, 1)}));
    }

    void anEqualObjectThatWasThereBeforeIsNoSuchArrival()
    {
        QCOMPARE(mergeDrawings({line(u"a"_s, 1)}, {line(u"a"_s, 1), line({}, 1)}, {}),
            Drawings({line(u"a"_s, 1), line({}, 1)}));
    }

    void keepsTheSelection()
    {
        QCOMPARE(
            mergeDrawings({line(u"a"_s, 1), line(u"b"_s, 2)}, {line(u"a"_s, 1), line(u"b"_s, 2, true)}, {}),
            Drawings({line(u"a"_s, 1), line(u"b"_s, 2, true)}));
        QCOMPARE(mergeDrawings({}, {line({}, 2, true)}, {}), Drawings{line({}, 2, true)});
    }

    void theSelectionPassesToTheStoredObject()
    {
        QCOMPARE(mergeDrawings({line(u"a"_s, 1)}, {line({}, 1, true)}, {line({}, 1)}),
            Drawings{line(u"a"_s, 1, true)});
    }
};

TAVORAN_TEST(tst_DrawingMerge)
#include "tst_DrawingMerge.moc"
