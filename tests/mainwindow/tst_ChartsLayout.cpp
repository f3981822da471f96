#include "mainwindow/ChartsLayout.h"
#include "support/TestMain.h"

using namespace Qt::StringLiterals;

class tst_ChartsLayout final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void writtenChartsAreReadBackInOrder()
    {
        const QList<SavedChart> charts{
            {u"EURUSD"_s, u"1h"_s, QByteArray("\0\xff", 2), false, {{u"rsi"_s, true}}},
            {u"S&P \"500\"\n<b>"_s, u"1mn"_s, {}, true, {}},
            {u"EURUSD"_s, u"1h"_s, "x", false, {}},
            {u"EURUSD"_s, u"2h"_s, {}, false, {}},
        };
        const QList<SavedChart> read = readChartsLayout(chartsLayoutText(charts));
        QCOMPARE(read.size(), charts.size());
        for (qsizetype i = 0; i < charts.size(); ++i) {
            QCOMPARE(read[i].symbol, charts[i].symbol);
            QCOMPARE(read[i].timeframe, charts[i].timeframe);
            QCOMPARE(read[i].geometry, charts[i].geometry);
            QCOMPARE(read[i].maximized, charts[i].maximized);
            QCOMPARE(read[i].state, charts[i].state);
        }
    }

    void textIsIndentedWithTheKnownKeys()
    {
        const QString text = chartsLayoutText({{u"EURUSD"_s, u"15m"_s, "abc", true, {{u"chartType"_s, 2}}}});
        QCOMPARE(text, uR"([
    {
        "geometry": "YWJj",
        "indicators": {
            "chartType": 2
        },
        "maximized": true,
        "symbol": "EURUSD",
        "tf": "15m"
    }
]
)"_s);
    }

    void unreadableTextsGiveNoCharts_data()
    {
        QTest::addColumn<QString>("text");
        for (const char* text : {"", "   ", "no json", "[", "{}", "null", "7", "[[]]",
                 "[null, 1, \"x\", true, {}]", R"({"symbol":"EURUSD","tf":"15m"})"})
            QTest::newRow(text) << QString::fromLatin1(text);
    }
    void unreadableTextsGiveNoCharts()
    {
        QFETCH(QString, text);
        QVERIFY(readChartsLayout(text).isEmpty());
    }

    void badEntriesAreLeftOutOneByOne()
    {
        const QList<SavedChart> read = readChartsLayout(uR"([
        {"symbol":"A","tf":"15m","unknown":[1,2]},
        {"symbol":"","tf":"15m"},
        {"symbol":5,"tf":"15m"},
        {"symbol":"B"},
        {"symbol":"B","tf":""},
        {"symbol":"B","tf":15},
        {"symbol":"C","tf":"1d","geometry":5,"maximized":"yes","indicators":[]},
        {"symbol":"D","tf":"1w","geometry":"***","maximized":true,"indicators":{"x":1}}
    ])"_s);
        QCOMPARE(read.size(), 3);
        QCOMPARE(read[0].symbol, u"A"_s);
        QCOMPARE(read[1].symbol, u"C"_s);
        QVERIFY(read[1].geometry.isEmpty());
        QVERIFY(!read[1].maximized);
        QVERIFY(read[1].state.isEmpty());
        QCOMPARE(read[2].symbol, u"D"_s);
        QVERIFY(read[2].maximized);
    }

    void thousandsOfEntriesAreCut()
    {
        QList<SavedChart> charts;
        for (int i = 0; i < 5000; ++i)
            charts.append({QString::number(i), u"1m"_s, {}, false, {}});
        const QList<SavedChart> read = readChartsLayout(chartsLayoutText(charts));
        QCOMPARE(read.size(), 100);
        QCOMPARE(read.constFirst().symbol, u"0"_s);
    }
};

TAVORAN_TEST(tst_ChartsLayout)
#include "tst_ChartsLayout.moc"
