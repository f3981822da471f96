#include "net/records/PriceSnapshot.h"
#include "panes/AlertBook.h"
#include "support/Records.h"
#include "support/TestMain.h"

#include <QtTest>

#include <random>

using namespace Qt::StringLiterals;

namespace {

QList<qsizetype> indexes(const QList<AlertBook::Fired>& fired)
{
    QList<qsizetype> result;
    for (const AlertBook::Fired& hit : fired)
        result.append(hit.index);
    return result;
}

/// Prices of the named symbol among others.
PriceSnapshot snapshot(const QString& symbol, const QJsonValue& bid, int others)
{
    QJsonObject prices{{symbol, QJsonObject{{u"bid"_s, bid}}}};
    for (int i = 0; i < others; ++i)
        prices.insert(u"OTHER%1"_s.arg(i), QJsonObject{{u"bid"_s, 1.0}});
    return PriceSnapshot(prices);
}

} // namespace

class TestAlertBook final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void whatFires_data()
    {
        QTest::addColumn<bool>("above");
        QTest::addColumn<QJsonValue>("bid");
        QTest::addColumn<bool>("fires");
        for (const bool above : {true, false}) {
            const char* side = above ? "above" : "below";
            QTest::addRow("%s, equal", side) << above << QJsonValue(1.5) << true;
            QTest::addRow("%s, higher", side) << above << QJsonValue(1.50001) << above;
            QTest::addRow("%s, lower", side) << above << QJsonValue(1.49999) << !above;
            QTest::addRow("%s, text", side) << above << QJsonValue(u"1.5"_s) << true;
            QTest::addRow("%s, zero", side) << above << QJsonValue(0.0) << false;
            QTest::addRow("%s, negative", side) << above << QJsonValue(-2.0) << false;
            QTest::addRow("%s, no number", side) << above << QJsonValue(u"x"_s) << false;
            QTest::addRow("%s, infinite", side) << above << QJsonValue(u"inf"_s) << false;
            QTest::addRow("%s, missing", side) << above << QJsonValue() << false;
        }
    }
    void whatFires()
    {
        QFETCH(bool, above);
        QFETCH(QJsonValue, bid);
        QFETCH(bool, fires);
        for (const int others : {0, 20}) {
            AlertBook book;
            book.add({u"EURUSD"_s, above, 1.5, false});
            QCOMPARE(book.check(snapshot(u"EURUSD"_s, bid, others)).size(), fires ? 1 : 0);
            QCOMPARE(book.alerts().first().triggered, fires);
            QCOMPARE(book.check(snapshot(u"GOLD"_s, 1.5, others)).size(), 0);
        }
    }

    void anAlertFiresOnce()
    {
        AlertBook book;
        book.add({u"EURUSD"_s, true, 1.5, false});
        const QList<AlertBook::Fired> fired = book.check(snapshot(u"EURUSD"_s, 1.6, 0));
        QCOMPARE(fired.size(), 1);
        QCOMPARE(fired.first().bid, 1.6);
        QCOMPARE(book.check(snapshot(u"EURUSD"_s, 1.7, 0)).size(), 0);
        AlertBook restarted = AlertBook::fromJson(book.toJson());
        QCOMPARE(restarted.check(snapshot(u"EURUSD"_s, 1.7, 0)).size(), 0);
    }

    void aFiredAlertLeavesTheOthersActive()
    {
        AlertBook book;
        book.add({u"EURUSD"_s, true, 1.5, false});
        book.add({u"EURUSD"_s, true, 1.8, false});
        book.add({u"EURUSD"_s, false, 1.2, false});
        QCOMPARE(indexes(book.check(snapshot(u"EURUSD"_s, 1.6, 0))), QList<qsizetype>({0}));
        QCOMPARE(indexes(book.check(snapshot(u"EURUSD"_s, 1.1, 0))), QList<qsizetype>({2}));
        QCOMPARE(indexes(book.check(snapshot(u"EURUSD"_s, 1.9, 0))), QList<qsizetype>({1}));
    }

    void firedAlertsComeInListOrder()
    {
        AlertBook book;
        book.add({u"B"_s, true, 1.0, false});
        book.add({u"A"_s, true, 1.0, false});
        book.add({u"B"_s, false, 9.0, false});
        const PriceSnapshot prices(records::prices({{"A", 2}, {"B", 2}}));
        QCOMPARE(indexes(book.check(prices)), QList<qsizetype>({0, 1, 2}));
    }

    void removingKeepsTheRestWatched()
    {
        AlertBook book;
        book.add({u"A"_s, true, 1.0, false});
        book.add({u"A"_s, true, 2.0, false});
        book.removeAt(-1);
        book.removeAt(2);
        QCOMPARE(book.alerts().size(), 2);
        book.removeAt(0);
        QCOMPARE(book.alerts().size(), 1);
        QCOMPARE(book.check(snapshot(u"A"_s, 1.5, 0)).size(), 0);
        QCOMPARE(indexes(book.check(snapshot(u"A"_s, 2.0, 0))), QList<qsizetype>({0}));
    }

    void badTextsAreNoAlerts_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("empty") << QString();
        QTest::newRow("cut") << u"[{\"symbol\":"_s;
        QTest::newRow("an object") << u"{\"symbol\":\"A\"}"_s;
        QTest::newRow("words") << u"none"_s;
    }
    void badTextsAreNoAlerts()
    {
        QFETCH(QString, text);
        QCOMPARE(AlertBook::fromJson(text).alerts().size(), 0);
    }

    void badFieldsCountAsMissing()
    {
        AlertBook book = AlertBook::fromJson(
            uR"([{"symbol":7,"above":"yes","price":"1","triggered":1}, 5, {"symbol":"A","above":true}])"_s);
        QCOMPARE(book.alerts(), QList<PriceAlert>({{}, {}, {u"A"_s, true, 0.0, false}}));
        QCOMPARE(indexes(book.check(snapshot(QString(), 1.0, 0))), QList<qsizetype>());
    }

    void textComesBackAsItWas()
    {
        const QString text
            = u"[{\"above\":true,\"price\":1.23456,\"symbol\":\"A \\\"quoted\\\" ≥\",\"triggered\":false},"
              "{\"above\":false,\"price\":2,\"symbol\":\"B\",\"triggered\":true}]"_s;
        QCOMPARE(AlertBook::fromJson(text).toJson(), text);
    }

    void agreesWithLookingAtEveryAlert()
    {
        std::mt19937 random(7);
        std::uniform_int_distribution<int> symbols(0, 30);
        std::uniform_real_distribution<double> prices(1.0, 2.0);
        AlertBook book;
        for (int i = 0; i < 500; ++i)
            book.add({u"S%1"_s.arg(symbols(random)), i % 2 == 0, prices(random), false});
        for (int turn = 0; turn < 200; ++turn) {
            QJsonObject data;
            for (int i = 0; i < (turn % 2 ? 2 : 200); ++i) {
                data.insert(u"S%1"_s.arg(symbols(random)), records::quote(prices(random)));
                data.insert(u"X%1"_s.arg(i), records::quote(prices(random)));
            }
            QList<qsizetype> expected;
            for (qsizetype i = 0; i < book.alerts().size(); ++i) {
                const PriceAlert& alert = book.alerts().at(i);
                const double bid = data.value(alert.symbol).toObject().value("bid"_L1).toDouble();
                if (!alert.triggered && bid > 0.0 && (alert.above ? bid >= alert.price : bid <= alert.price))
                    expected.append(i);
            }
            QCOMPARE(indexes(book.check(PriceSnapshot(data))), expected);
        }
    }
};

TAVORAN_TEST(TestAlertBook)
#include "tst_AlertBook.moc"
