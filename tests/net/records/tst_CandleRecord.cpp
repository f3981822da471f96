#include "net/records/CandleRecord.h"
#include "support/ParseJson.h"
#include "support/TestMain.h"

using namespace fixtures;
using namespace Qt::StringLiterals;

class TestCandleRecord final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void its_fields_are_read()
    {
        const QJsonObject record
            = parse(R"({"timestamp":"then","open":"1.1","high":1.4,"low":"1.0","close":1.2,"volume":"7"})");
        QCOMPARE(candle::time(record), u"then"_s);
        QCOMPARE(candle::open(record), 1.1);
        QCOMPARE(candle::high(record), 1.4);
        QCOMPARE(candle::low(record), 1.0);
        QCOMPARE(candle::close(record), 1.2);
        QCOMPARE(candle::volume(record), 7.0);
        QCOMPARE(candle::close({}), 0.0);
    }
};

TAVORAN_TEST(TestCandleRecord)
#include "tst_CandleRecord.moc"
