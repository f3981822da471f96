#include "experts/ScriptOrder.h"
#include "support/TestMain.h"

#include <limits>

using namespace Qt::StringLiterals;

/// Which orders of scripts go no further, and what is said of them.
class tst_ScriptOrder final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void anOrderOfUsableNumbersHasNoReasonAgainstIt()
    {
        QVERIFY(!reasonToIgnore(0.01, 0.0, 0.0));
        QVERIFY(!reasonToIgnore(1e9, -1.0, 1e300));
    }

    void lotsMustBeANumberAboveNought_data()
    {
        QTest::addColumn<double>("lots");
        QTest::addColumn<QString>("shown");
        QTest::newRow("nought") << 0.0 << u"0"_s;
        QTest::newRow("below") << -0.1 << u"-0.1"_s;
        QTest::newRow("infinite") << std::numeric_limits<double>::infinity() << u"inf"_s;
        QTest::newRow("no number") << std::numeric_limits<double>::quiet_NaN() << u"nan"_s;
    }

    void lotsMustBeANumberAboveNought()
    {
        QFETCH(double, lots);
        QFETCH(QString, shown);
        QCOMPARE(reasonToIgnore(lots, 0.0, std::numeric_limits<double>::quiet_NaN()),
            std::optional(u"Order ignored: the lots must be a number above 0, not "_s + shown));
    }

    void levelsMustBeNumbers()
    {
        const std::optional<QString> reason(u"Order ignored: stop loss or take profit is not a number"_s);
        QCOMPARE(reasonToIgnore(0.1, std::numeric_limits<double>::quiet_NaN(), 0.0), reason);
        QCOMPARE(reasonToIgnore(0.1, 0.0, -std::numeric_limits<double>::infinity()), reason);
    }
};

TAVORAN_TEST(tst_ScriptOrder)
#include "tst_ScriptOrder.moc"
