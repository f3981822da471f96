#include "OrderDeskFixture.h"
#include "app/ui/DecimalSpinBox.h"
#include "app/ui/Theme.h"
#include "support/TestMain.h"

using namespace Qt::StringLiterals;
using fixtures::Desk;
using fixtures::parse;
using fixtures::placePath;

class TestOrderDialog final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        setTheme(false);
        applyTheme(*qApp);
    }

    void startsAsAMarketOrder()
    {
        const Desk desk;
        QVERIFY(desk.dialog->isModal());
        QCOMPARE(desk.dialog->minimumSize(), QSize(920, 440));
        QCOMPARE(desk.dialog->windowTitle(), u"Order: EURUSD - Euro vs US Dollar"_s);
        QVERIFY(desk.button(u"Market Execution"_s)->isChecked());
        QCOMPARE(desk.sell()->text(), u"Sell by Market"_s);
        QCOMPARE(desk.buy()->text(), u"Buy by Market"_s);
        QVERIFY(!desk.edit(u"orderPrice"_s)->isVisible());
        QVERIFY(!desk.error()->isVisible());
        QCOMPARE(desk.prices()->text(), u"— / —"_s);
        QCOMPARE(desk.edit(u"orderStopLoss"_s)->text(), u"0.00"_s);
        QCOMPARE(desk.edit(u"orderTakeProfit"_s)->text(), u"0.00"_s);
        const auto* volume = desk.part<DecimalSpinBox>(u"orderVolume"_s);
        QCOMPARE(volume->value(), 0.01);
        QCOMPARE(volume->minimum(), 0.01);
        QCOMPARE(volume->maximum(), 1000.0);
        QCOMPARE(volume->singleStep(), 0.01);
        QCOMPARE(volume->decimals(), 2);
        QVERIFY(desk.combo(u"orderComment"_s)->isEditable());
        QCOMPARE(desk.ticks()->width(), 300);
        QCOMPARE(desk.combo(u"orderSymbol"_s)->itemText(0), u"EURUSD, Euro vs US Dollar"_s);
    }

    void selectsTheInitialSymbol()
    {
        const Desk desk(u"GOLD"_s);
        QCOMPARE(desk.combo(u"orderSymbol"_s)->currentData().toString(), u"GOLD"_s);
        QCOMPARE(desk.dialog->windowTitle(), u"Order: GOLD - Gold"_s);
        QCOMPARE(desk.ticks()->digits(), 2);
        const Desk unknown(u"NOPE"_s);
        QCOMPARE(unknown.combo(u"orderSymbol"_s)->currentData().toString(), u"EURUSD"_s);
    }

    void aMarketBuySendsItsBodyAndCloses()
    {
        Desk desk;
        desk.server.on("POST", placePath, StubAnswer::json("{}", 201));
        QSignalSpy placed(desk.dialog, &OrderDialog::orderPlaced);
        QSignalSpy unknown(desk.dialog, &OrderDialog::outcomeUnknown);
        QSignalSpy finished(desk.dialog, &QDialog::finished);
        QTest::mouseClick(desk.buy(), Qt::LeftButton);
        QTRY_COMPARE(placed.size(), 1);
        QTRY_VERIFY(!desk.dialog);
        QCOMPARE(finished.at(0).at(0).toInt(), int(QDialog::Accepted));
        QCOMPARE(desk.sounds, QList{SoundKind::Open});
        QCOMPARE(unknown.size(), 0);
        QCOMPARE(desk.server.count("POST", placePath), 1);
        QCOMPARE(desk.sent(),
            parse(
                R"({"symbol":"EURUSD","lotSize":0.01,"accountId":"acc-1","orderKind":"MARKET","type":"BUY"})"));
    }

    void aMarketSellCarriesLevelsAndComment()
    {
        Desk desk;
        desk.server.on("POST", placePath, StubAnswer::json("{}"));
        desk.type(u"orderStopLoss"_s, u"1.0750"_s);
        desk.type(u"orderTakeProfit"_s, u"1.05"_s);
        QTest::keyClicks(desk.combo(u"orderComment"_s)->lineEdit(), u"  my note "_s);
        desk.part<DecimalSpinBox>(u"orderVolume"_s)->setValue(1.5);
        QTest::mouseClick(desk.sell(), Qt::LeftButton);
        QTRY_VERIFY(!desk.dialog);
        QCOMPARE(
            desk.sent(), parse(R"({"symbol":"EURUSD","lotSize":1.5,"accountId":"acc-1","orderKind":"MARKET",
        "type":"SELL","stopLoss":1.075,"takeProfit":1.05,"comment":"my note"})"));
    }

    void aLimitOrderSendsItsTriggerPrice()
    {
        Desk desk;
        desk.server.on("POST", placePath, StubAnswer::json("{}"));
        desk.click(u"Limit Order"_s);
        QCOMPARE(desk.sell()->text(), u"Sell Limit"_s);
        QCOMPARE(desk.buy()->text(), u"Buy Limit"_s);
        QVERIFY(desk.edit(u"orderPrice"_s)->isVisible());
        desk.type(u"orderPrice"_s, u"1.0700"_s);
        QTest::mouseClick(desk.buy(), Qt::LeftButton);
        QTRY_VERIFY(!desk.dialog);
        QCOMPARE(desk.sent(), parse(R"({"symbol":"EURUSD","lotSize":0.01,"accountId":"acc-1",
        "orderKind":"BUY_LIMIT","pendingPrice":1.07})"));
    }

    void aStopOrderSendsItsTriggerPrice()
    {
        Desk desk(u"GOLD"_s);
        desk.server.on("POST", placePath, StubAnswer::json("{}"));
        desk.click(u"Stop Order"_s);
        QCOMPARE(desk.sell()->text(), u"Sell Stop"_s);
        desk.type(u"orderPrice"_s, u"1890"_s);
        QTest::mouseClick(desk.sell(), Qt::LeftButton);
        QTRY_VERIFY(!desk.dialog);
        QCOMPARE(desk.sent(), parse(R"({"symbol":"GOLD","lotSize":0.01,"accountId":"acc-1",
        "orderKind":"SELL_STOP","pendingPrice":1890})"));
    }

    void backToMarketSendsMarketAgain()
    {
        Desk desk;
        desk.server.on("POST", placePath, StubAnswer::json("{}"));
        desk.click(u"Limit Order"_s);
        desk.type(u"orderPrice"_s, u"1.07"_s);
        desk.click(u"Market Execution"_s);
        QVERIFY(!desk.edit(u"orderPrice"_s)->isVisible());
        QTest::mouseClick(desk.buy(), Qt::LeftButton);
        QTRY_VERIFY(!desk.dialog);
        QCOMPARE(desk.sent(),
            parse(
                R"({"symbol":"EURUSD","lotSize":0.01,"accountId":"acc-1","orderKind":"MARKET","type":"BUY"})"));
    }

    void aPendingOrderNeedsATriggerPrice_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("empty") << QString();
        QTest::newRow("zero") << u"0"_s;
        QTest::newRow("zeros") << u"0.000"_s;
        QTest::newRow("a lone point") << u"."_s;
        QTest::newRow("no number") << u"abc"_s;
    }
    void aPendingOrderNeedsATriggerPrice()
    {
        QFETCH(QString, text);
        Desk desk;
        desk.click(u"Limit Order"_s);
        desk.edit(u"orderPrice"_s)->setText(text);
        QTest::mouseClick(desk.sell(), Qt::LeftButton);
        QVERIFY(desk.error()->isVisible());
        QCOMPARE(desk.error()->text(), u"Please enter a valid trigger price."_s);
        QVERIFY(desk.sell()->isEnabled());
        QCoreApplication::processEvents();
        QVERIFY(desk.server.requests().isEmpty());
    }

    void aZeroLevelIsNotSent_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("0") << u"0"_s;
        QTest::newRow("0.00") << u"0.00"_s;
        QTest::newRow("empty") << QString();
        QTest::newRow("negative") << u"-1"_s;
        QTest::newRow("no number") << u"1.2.3"_s;
    }
    void aZeroLevelIsNotSent()
    {
        QFETCH(QString, text);
        Desk desk;
        desk.server.on("POST", placePath, StubAnswer::json("{}"));
        desk.edit(u"orderStopLoss"_s)->setText(text);
        desk.edit(u"orderTakeProfit"_s)->setText(text);
        QTest::mouseClick(desk.buy(), Qt::LeftButton);
        QTRY_VERIFY(!desk.dialog);
        QVERIFY(!desk.sent().contains("stopLoss"_L1));
        QVERIFY(!desk.sent().contains("takeProfit"_L1));
    }

    void aTypedCommaIsADecimalPoint()
    {
        Desk desk;
        desk.server.on("POST", placePath, StubAnswer::json("{}"));
        desk.type(u"orderStopLoss"_s, u"1,0750"_s);
        QCOMPARE(desk.edit(u"orderStopLoss"_s)->text(), u"1.0750"_s);
        auto* volume = desk.part<DecimalSpinBox>(u"orderVolume"_s);
        volume->selectAll();
        QTest::keyClicks(volume, u"1,5"_s);
        QTest::mouseClick(desk.buy(), Qt::LeftButton);
        QTRY_VERIFY(!desk.dialog);
        QCOMPARE(desk.sent().value("stopLoss"_L1).toDouble(), 1.075);
        QCOMPARE(desk.sent().value("lotSize"_L1).toDouble(), 1.5);
    }

    void enterInAFieldPlacesNothing()
    {
        Desk desk;
        desk.click(u"Limit Order"_s);
        const QList<QWidget*> fields{desk.edit(u"orderPrice"_s), desk.edit(u"orderStopLoss"_s),
            desk.edit(u"orderTakeProfit"_s), desk.part<DecimalSpinBox>(u"orderVolume"_s),
            desk.combo(u"orderComment"_s)->lineEdit(), desk.combo(u"orderSymbol"_s)};
        desk.type(u"orderPrice"_s, u"1.07"_s);
        QTest::keyClicks(desk.combo(u"orderComment"_s)->lineEdit(), u"note"_s);
        for (QWidget* field : fields) {
            field->setFocus();
            QTest::keyClick(field, Qt::Key_Return);
            QTest::keyClick(field, Qt::Key_Enter);
        }
        QCoreApplication::processEvents();
        QVERIFY(desk.dialog->isVisible());
        QVERIFY(desk.buy()->isEnabled());
        QVERIFY(!desk.error()->isVisible());
        QVERIFY(desk.server.requests().isEmpty());
        QCOMPARE(desk.combo(u"orderComment"_s)->count(), 0);
        for (const QPushButton* button : desk.dialog->findChildren<QPushButton*>())
            QVERIFY2(!button->autoDefault() && !button->isDefault(), qPrintable(button->text()));
    }

    void escapeAndMinimizePlaceNothing()
    {
        for (const bool byKey : {true, false}) {
            Desk desk;
            QSignalSpy finished(desk.dialog, &QDialog::finished);
            QSignalSpy unknown(desk.dialog, &OrderDialog::outcomeUnknown);
            if (byKey)
                QTest::keyClick(desk.edit(u"orderStopLoss"_s), Qt::Key_Escape);
            else
                desk.click(u"Minimize"_s);
            QTRY_VERIFY(!desk.dialog);
            QCOMPARE(finished.at(0).at(0).toInt(), int(QDialog::Rejected));
            QCOMPARE(unknown.size(), 0);
            QVERIFY(desk.server.requests().isEmpty());
        }
    }
};

TAVORAN_TEST(TestOrderDialog)
#include "tst_OrderDialog.moc"
