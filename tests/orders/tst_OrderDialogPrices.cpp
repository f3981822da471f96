#include "OrderDeskFixture.h"
#include "app/ui/DecimalSpinBox.h"
#include "app/ui/Theme.h"
#include "support/TestMain.h"

using namespace Qt::StringLiterals;
using fixtures::Desk;
using fixtures::placePath;

class TestOrderDialogPrices final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        setTheme(false);
        applyTheme(*qApp);
    }

    void pricesAreShownAndDrawn()
    {
        Desk desk;
        desk.quote("EURUSD", "1.0712", 1.07135);
        QCOMPARE(desk.prices()->text(), u"1.07120 / 1.07135"_s);
        QCOMPARE(desk.ticks()->bids(), QList<double>{1.0712});
        QCOMPARE(desk.ticks()->asks(), QList<double>{1.07135});
        QCOMPARE(desk.units()->text(), u"1000 EURUSD"_s);
        desk.quote("EURUSD", "1.0712", 1.07135);
        QCOMPARE(desk.ticks()->bids().size(), 2);
    }

    void pricesAreShownToTheirLastDigit_data()
    {
        QTest::addColumn<int>("digits");
        QTest::addColumn<double>("bid");
        QTest::newRow("whole") << 0 << 39000.0;
        QTest::newRow("five decimals") << 5 << 1.0712;
        QTest::newRow("six figures") << 2 << 165432.12;
        QTest::newRow("eight decimals") << 8 << 0.00001234;
        QTest::newRow("twelve decimals") << 12 << 0.000000012345;
    }
    void pricesAreShownToTheirLastDigit()
    {
        QFETCH(int, digits);
        QFETCH(double, bid);
        Desk desk({}, {records::symbol("X").digits(digits)});
        const QPoint buttons = desk.sell()->mapTo(desk.dialog.data(), QPoint());
        desk.quote("X", bid, bid);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
        const QRect place(desk.prices()->mapTo(desk.dialog.data(), QPoint()), desk.prices()->size());
        const QImage shown = desk.dialog->grab(place).toImage();
        QList<int> inked;
        for (int x = 0; x < shown.width(); ++x) {
            for (int y = 0; y < shown.height(); ++y) {
                if (shown.pixelColor(x, y) != QColor(Qt::white))
                    inked.append(x);
            }
        }
        QVERIFY(!inked.isEmpty());
        // A text that is cut has ink at the very edge.
        QVERIFY2(inked.first() > 0 && inked.last() < shown.width() - 1, qPrintable(desk.prices()->text()));
        // What is about to be clicked stays where it is.
        QCOMPARE(desk.sell()->mapTo(desk.dialog.data(), QPoint()), buttons);
    }

    void otherSymbolsPricesAreLeftAlone()
    {
        Desk desk;
        desk.quote("GOLD", 1, 2);
        QCOMPARE(desk.prices()->text(), u"— / —"_s);
        QVERIFY(desk.ticks()->bids().isEmpty());
        QCOMPARE(desk.units()->text(), QString());
    }

    void aPriceThatIsMissingIsShownAsZero_data()
    {
        QTest::addColumn<QByteArray>("record");
        QTest::addColumn<double>("bid");
        QTest::addColumn<double>("ask");
        const auto row = [](const char* record, double bid, double ask) {
            QTest::newRow(record) << QByteArray(record) << bid << ask;
        };
        row("{}", 0, 0);
        row("5", 0, 0);
        row("null", 0, 0);
        row(R"({"bid":1})", 1, 0);
        row(R"({"ask":1})", 0, 1);
        row(R"({"bid":"x","ask":1})", 0, 1);
        row(R"({"bid":1e308,"ask":1})", 0, 1);
        row(R"({"bid":0,"ask":0})", 0, 0);
        row(R"({"bid":1e-9,"ask":1e12})", 0, 0);
        row(R"({"bid":-1,"ask":1})", -1, 1);
        row(R"({"bid":"nan","ask":1})", 0, 1);
    }
    void aPriceThatIsMissingIsShownAsZero()
    {
        QFETCH(QByteArray, record);
        QFETCH(double, bid);
        QFETCH(double, ask);
        const QString shown = u"%1 / %2"_s.arg(QString::number(bid, 'f', 5), QString::number(ask, 'f', 5));
        Desk first; // the window begins with 0 for both, and says that it has none
        first.quote(fixtures::parse("{\"EURUSD\":" + record + "}"));
        QCOMPARE(first.prices()->text(), shown);
        QCOMPARE(first.units()->text(), u"1000 EURUSD"_s);
        Desk desk;
        desk.quote("EURUSD", 1.1, 1.2);
        desk.quote(fixtures::parse("{\"EURUSD\":" + record + "}"));
        QCOMPARE(desk.prices()->text(), shown);
        QCOMPARE(desk.ticks()->bids(), (QList<double>{1.1, bid}));
        QCOMPARE(desk.ticks()->asks(), (QList<double>{1.2, ask}));
    }

    void theSymbolsDecimalsSayHowSmallItsPricesAre()
    {
        Desk desk({}, {records::symbol("SHIB").digits(9), records::symbol("OIL")});
        desk.quote("SHIB", 4e-9, "0.000000006");
        QCOMPARE(desk.prices()->text(), u"0.000000004 / 0.000000006"_s);
        desk.combo(u"orderSymbol"_s)->setCurrentIndex(1);
        desk.quote("OIL", 4e-9, 6e-9);
        QCOMPARE(desk.prices()->text(), u"0.00000 / 0.00000"_s);
        QCOMPARE(desk.ticks()->bids(), QList<double>{0.0});
    }

    void changingTheSymbolStartsAgain()
    {
        Desk desk;
        desk.quote("EURUSD", 1.1, 1.2);
        desk.click(u"Stop Order"_s);
        desk.combo(u"orderSymbol"_s)->setFocus();
        QTest::keyClick(desk.combo(u"orderSymbol"_s), Qt::Key_Down);
        QCOMPARE(desk.combo(u"orderSymbol"_s)->currentData().toString(), u"GOLD"_s);
        QCOMPARE(desk.prices()->text(), u"— / —"_s);
        QVERIFY(desk.ticks()->bids().isEmpty());
        QCOMPARE(desk.ticks()->digits(), 2);
        QCOMPARE(desk.dialog->windowTitle(), u"Order: GOLD - Gold"_s);
        QCOMPARE(desk.sell()->text(), u"Sell Stop"_s);
        desk.quote("GOLD", 1900, 1901);
        QCOMPARE(desk.prices()->text(), u"1900.00 / 1901.00"_s);
        QTest::keyClick(desk.combo(u"orderSymbol"_s), Qt::Key_Up);
        desk.quote("EURUSD", 1.1, 1.2);
        QCOMPARE(desk.prices()->text(), u"1.10000 / 1.20000"_s);
    }

    void unitsFollowPricesNotTheSpinBox()
    {
        Desk desk;
        desk.quote("EURUSD", 1.1, 1.2);
        desk.part<DecimalSpinBox>(u"orderVolume"_s)->setValue(2.0);
        QCOMPARE(desk.units()->text(), u"1000 EURUSD"_s);
        desk.quote("EURUSD", 1.1, 1.2);
        QCOMPARE(desk.units()->text(), u"200000 EURUSD"_s);
        desk.combo(u"orderSymbol"_s)->setCurrentIndex(1);
        QCOMPARE(desk.units()->text(), u"200000 EURUSD"_s);
        desk.quote("GOLD", 1900, 1901);
        QCOMPARE(desk.units()->text(), u"200 GOLD"_s);
    }

    void anUnusableContractSizeCountsAsOne_data()
    {
        QTest::addColumn<QByteArray>("size");
        for (const char* size : {"0", "-5", "\"x\"", "null", "{}", "1e308"})
            QTest::newRow(size) << QByteArray(size);
    }
    void anUnusableContractSizeCountsAsOne()
    {
        QFETCH(QByteArray, size);
        Desk desk({}, fixtures::parseArray("[{\"name\":\"A\",\"contractSize\":" + size + "}]"));
        desk.part<DecimalSpinBox>(u"orderVolume"_s)->setValue(3.0);
        desk.quote("A", 1.1, 1.2);
        QCOMPARE(desk.units()->text(), u"3 A"_s);
    }

    void oddSymbolListsDoNoHarm()
    {
        Desk odd({}, fixtures::parseArray(R"([1,null,{},{"name":7},{"name":"A","digits":-4},{"name":"A"}])"));
        QCOMPARE(odd.combo(u"orderSymbol"_s)->count(), 2);
        odd.quote("A", 1.1, 1.2);
        QVERIFY(odd.prices()->text().contains(u" / "_s));
        Desk empty({}, {});
        empty.quote("", 1.1, 1.2);
        empty.server.on("POST", placePath, StubAnswer::message(u"Unknown symbol"_s, 400));
        QTest::mouseClick(empty.buy(), Qt::LeftButton);
        QTRY_COMPARE(empty.error()->text(), u"Unknown symbol"_s);
    }
};

TAVORAN_TEST(TestOrderDialogPrices)
#include "tst_OrderDialogPrices.moc"
