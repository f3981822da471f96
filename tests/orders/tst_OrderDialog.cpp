#include "app/DecimalEdit.h"
#include "app/DecimalSpinBox.h"
#include "app/TerminalSettings.h"
#include "app/Theme.h"
#include "net/ApiClient.h"
#include "net/WsClient.h"
#include "orders/OrderDialog.h"
#include "orders/TickChartWidget.h"
#include "support/StubHttpServer.h"
#include "support/TestMain.h"

#include <QComboBox>
#include <QFormLayout>
#include <QJsonDocument>
#include <QLabel>
#include <QPushButton>
#include <QScrollBar>
#include <QToolTip>

using namespace Qt::StringLiterals;

namespace {

const QByteArray placePath = "/api/trades/place";

QJsonArray someSymbols()
{
    return QJsonDocument::fromJson(R"([
        {"name":"EURUSD","description":"Euro vs US Dollar","digits":5,"contractSize":"100000"},
        {"name":"GOLD","description":"Gold","digits":2,"contractSize":100},
        {"name":"OIL"}])")
        .array();
}

QJsonObject parse(const QByteArray& json)
{
    return QJsonDocument::fromJson(json).object();
}

/// How far the lightest and the darkest spot of a picture are apart, 0 to 255.
int contrast(const QImage& picture)
{
    int lightest = 0;
    int darkest = 255;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const int lightness = picture.pixelColor(x, y).lightness();
            lightest = std::max(lightest, lightness);
            darkest = std::min(darkest, lightness);
        }
    }
    return lightest - darkest;
}

struct Desk {
    StubHttpServer server;
    ApiClient api;
    WsClient feed;
    QPointer<OrderDialog> dialog;

    explicit Desk(const QString& initialSymbol = {}, const QJsonArray& symbols = someSymbols())
    {
        TerminalSettings::instance().setServerUrl(server.url());
        dialog = new OrderDialog(api, feed, symbols, u"acc-1"_s, initialSymbol);
        dialog->setAttribute(Qt::WA_DeleteOnClose);
        dialog->show();
    }
    ~Desk() { delete dialog; }
    Q_DISABLE_COPY_MOVE(Desk)

    template <typename T> [[nodiscard]] T* part(const QString& name) const
    {
        return dialog->findChild<T*>(name);
    }
    [[nodiscard]] QPushButton* sell() const { return part<QPushButton>(u"orderSell"_s); }
    [[nodiscard]] QPushButton* buy() const { return part<QPushButton>(u"orderBuy"_s); }
    [[nodiscard]] QLabel* error() const { return part<QLabel>(u"orderError"_s); }
    [[nodiscard]] QLabel* prices() const { return part<QLabel>(u"priceDisplay"_s); }
    [[nodiscard]] QLabel* units() const { return part<QLabel>(u"orderUnits"_s); }
    [[nodiscard]] DecimalEdit* edit(const QString& name) const { return part<DecimalEdit>(name); }
    [[nodiscard]] QComboBox* combo(const QString& name) const { return part<QComboBox>(name); }
    [[nodiscard]] TickChartWidget* ticks() const { return dialog->findChild<TickChartWidget*>(); }
    [[nodiscard]] QPushButton* button(const QString& text) const
    {
        for (QPushButton* candidate : dialog->findChildren<QPushButton*>()) {
            if (candidate->text() == text)
                return candidate;
        }
        return nullptr;
    }
    void click(const QString& text) const { QTest::mouseClick(button(text), Qt::LeftButton); }
    void type(const QString& name, const QString& text) const
    {
        DecimalEdit* field = edit(name);
        field->selectAll();
        QTest::keyClicks(field, text);
    }
    void quote(const QByteArray& prices_) { Q_EMIT feed.pricesUpdated(parse(prices_)); }
    [[nodiscard]] QJsonObject sent() const { return server.last("POST", placePath).json(); }
};

} // namespace

class TestOrderDialog final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void startsAsAMarketOrder();
    void selectsTheInitialSymbol();
    void toolsOfTheLeftListAreAsPlanned();
    void aMarketBuySendsItsBodyAndCloses();
    void aMarketSellCarriesLevelsAndComment();
    void aLimitOrderSendsItsTriggerPrice();
    void aStopOrderSendsItsTriggerPrice();
    void backToMarketSendsMarketAgain();
    void aPendingOrderNeedsATriggerPrice_data();
    void aPendingOrderNeedsATriggerPrice();
    void aZeroLevelIsNotSent_data();
    void aZeroLevelIsNotSent();
    void aTypedCommaIsADecimalPoint();
    void fieldsAreDisabledWhileSending();
    void aRefusalIsShownAndFieldsStay();
    void aRefusalCanBeCorrectedAndSentAgain();
    void aRefusalWithoutMessageShowsTheNetworksText();
    void serverTextsAreShownAsPlainText();
    void anUncertainOutcomeIsNeverReportedAsDone_data();
    void anUncertainOutcomeIsNeverReportedAsDone();
    void aRedirectIsNoSuccess();
    void anUnreachableServerIsReported();
    void aReadableAnswerIsNotAskedForOnPurpose_data();
    void aReadableAnswerIsNotAskedForOnPurpose();
    void closedWhileSendingItLeavesAndReportsTheOrder_data();
    void closedWhileSendingItLeavesAndReportsTheOrder();
    void closedWhileSendingItComesBackWithARefusal();
    void closedWhileSendingItComesBackWhenNobodyKnows();
    void closedTwiceWhileSendingItGivesUpTheWait();
    void aSecondPressOfTheSpaceBarPressesNothingElse();
    void aWindowDestroyedWhileSendingDoesNoHarm();
    void pricesAreShownAndDrawn();
    void otherSymbolsPricesAreLeftAlone();
    void unreadablePricesAreNoQuotes_data();
    void unreadablePricesAreNoQuotes();
    void changingTheSymbolStartsAgain();
    void unitsFollowPricesNotTheSpinBox();
    void anUnusableContractSizeCountsAsOne_data();
    void anUnusableContractSizeCountsAsOne();
    void oddSymbolListsDoNoHarm();
    void enterInAFieldPlacesNothing();
    void escapeAndMinimizePlaceNothing();
    void everyFieldHasANameAndALabel();
    void sizesHoldUnderBothThemes_data();
    void sizesHoldUnderBothThemes();
    void whatPopsUpIsLegibleUnderBothThemes_data();
    void whatPopsUpIsLegibleUnderBothThemes();
    void aLongSymbolListScrolls();
    void partsHaveTheirPlacesAndStyles();
};

void TestOrderDialog::init()
{
    setTheme(false);
    applyTheme(*qApp);
}

void TestOrderDialog::startsAsAMarketOrder()
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

void TestOrderDialog::selectsTheInitialSymbol()
{
    const Desk desk(u"GOLD"_s);
    QCOMPARE(desk.combo(u"orderSymbol"_s)->currentData().toString(), u"GOLD"_s);
    QCOMPARE(desk.dialog->windowTitle(), u"Order: GOLD - Gold"_s);
    QCOMPARE(desk.ticks()->digits(), 2);
    const Desk unknown(u"NOPE"_s);
    QCOMPARE(unknown.combo(u"orderSymbol"_s)->currentData().toString(), u"EURUSD"_s);
}

void TestOrderDialog::toolsOfTheLeftListAreAsPlanned()
{
    const Desk desk;
    QVERIFY(!desk.button(u"Stop Limit Order"_s)->isEnabled());
    QCOMPARE(desk.button(u"Stop Limit Order"_s)->toolTip(), u"Not available on this platform"_s);
    QSet<qint64> pictures;
    for (const QString& text :
        {u"Market Execution"_s, u"Limit Order"_s, u"Stop Order"_s, u"Stop Limit Order"_s,
            u"One Click Trading"_s, u"Tick Chart"_s, u"Depth of Market"_s, u"Minimize"_s}) {
        QVERIFY(!desk.button(text)->icon().isNull());
        pictures.insert(desk.button(text)->icon().cacheKey());
    }
    QCOMPARE(pictures.size(), 8);
    for (const QString& text : {u"One Click Trading"_s, u"Tick Chart"_s, u"Depth of Market"_s})
        QVERIFY(!desk.button(text)->isEnabled());
    QVERIFY(desk.button(u"Minimize"_s)->isEnabled());
}

void TestOrderDialog::aMarketBuySendsItsBodyAndCloses()
{
    Desk desk;
    desk.server.on("POST", placePath, StubAnswer::json("{}", 201));
    QSignalSpy placed(desk.dialog, &OrderDialog::orderPlaced);
    QSignalSpy sounds(desk.dialog, &OrderDialog::soundDue);
    QSignalSpy unknown(desk.dialog, &OrderDialog::outcomeUnknown);
    QSignalSpy finished(desk.dialog, &QDialog::finished);
    QTest::mouseClick(desk.buy(), Qt::LeftButton);
    QTRY_COMPARE(placed.size(), 1);
    QTRY_VERIFY(!desk.dialog);
    QCOMPARE(finished.at(0).at(0).toInt(), int(QDialog::Accepted));
    QCOMPARE(sounds.size(), 1);
    QCOMPARE(sounds.at(0).at(0).value<SoundKind>(), SoundKind::Open);
    QCOMPARE(unknown.size(), 0);
    QCOMPARE(desk.server.count("POST", placePath), 1);
    QCOMPARE(desk.sent(),
        parse(R"({"symbol":"EURUSD","lotSize":0.01,"accountId":"acc-1","orderKind":"MARKET","type":"BUY"})"));
}

void TestOrderDialog::aMarketSellCarriesLevelsAndComment()
{
    Desk desk;
    desk.server.on("POST", placePath, StubAnswer::json("{}"));
    desk.type(u"orderStopLoss"_s, u"1.0750"_s);
    desk.type(u"orderTakeProfit"_s, u"1.05"_s);
    QTest::keyClicks(desk.combo(u"orderComment"_s)->lineEdit(), u"  my note "_s);
    desk.part<DecimalSpinBox>(u"orderVolume"_s)->setValue(1.5);
    QTest::mouseClick(desk.sell(), Qt::LeftButton);
    QTRY_VERIFY(!desk.dialog);
    QCOMPARE(desk.sent(), parse(R"({"symbol":"EURUSD","lotSize":1.5,"accountId":"acc-1","orderKind":"MARKET",
        "type":"SELL","stopLoss":1.075,"takeProfit":1.05,"comment":"my note"})"));
}

void TestOrderDialog::aLimitOrderSendsItsTriggerPrice()
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

void TestOrderDialog::aStopOrderSendsItsTriggerPrice()
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

void TestOrderDialog::backToMarketSendsMarketAgain()
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
        parse(R"({"symbol":"EURUSD","lotSize":0.01,"accountId":"acc-1","orderKind":"MARKET","type":"BUY"})"));
}

void TestOrderDialog::aPendingOrderNeedsATriggerPrice_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("empty") << QString();
    QTest::newRow("zero") << u"0"_s;
    QTest::newRow("zeros") << u"0.000"_s;
    QTest::newRow("a lone point") << u"."_s;
    QTest::newRow("no number") << u"abc"_s;
}

void TestOrderDialog::aPendingOrderNeedsATriggerPrice()
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

void TestOrderDialog::aZeroLevelIsNotSent_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("0") << u"0"_s;
    QTest::newRow("0.00") << u"0.00"_s;
    QTest::newRow("empty") << QString();
    QTest::newRow("negative") << u"-1"_s;
    QTest::newRow("no number") << u"1.2.3"_s;
}

void TestOrderDialog::aZeroLevelIsNotSent()
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

void TestOrderDialog::aTypedCommaIsADecimalPoint()
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

void TestOrderDialog::fieldsAreDisabledWhileSending()
{
    Desk desk;
    desk.server.on("POST", placePath, StubAnswer::held());
    desk.click(u"Limit Order"_s);
    desk.type(u"orderPrice"_s, u"1.07"_s);
    QTest::mouseClick(desk.buy(), Qt::LeftButton);
    QTRY_COMPARE(desk.server.heldCount(), 1);
    const QList<QWidget*> fields{desk.sell(), desk.buy(), desk.combo(u"orderSymbol"_s),
        desk.part<DecimalSpinBox>(u"orderVolume"_s), desk.edit(u"orderStopLoss"_s),
        desk.edit(u"orderTakeProfit"_s), desk.edit(u"orderPrice"_s), desk.combo(u"orderComment"_s)};
    for (const QWidget* field : fields)
        QVERIFY2(!field->isEnabled(), qPrintable(field->objectName()));
    QCOMPARE(desk.buy()->parentWidget()->cursor().shape(), Qt::BusyCursor);
    QTest::mouseClick(desk.buy(), Qt::LeftButton);
    QTest::mouseClick(desk.sell(), Qt::LeftButton);
    desk.server.release(StubAnswer::message(u"No"_s, 400));
    QTRY_VERIFY(desk.error()->isVisible());
    for (const QWidget* field : fields)
        QVERIFY2(field->isEnabled(), qPrintable(field->objectName()));
    QCOMPARE(desk.buy()->parentWidget()->cursor().shape(), Qt::ArrowCursor);
    QCOMPARE(desk.server.count("POST", placePath), 1);
}

void TestOrderDialog::aRefusalIsShownAndFieldsStay()
{
    Desk desk;
    desk.server.on("POST", placePath, StubAnswer::message(u"Not enough money"_s, 400));
    QSignalSpy placed(desk.dialog, &OrderDialog::orderPlaced);
    QSignalSpy sounds(desk.dialog, &OrderDialog::soundDue);
    QSignalSpy unknown(desk.dialog, &OrderDialog::outcomeUnknown);
    desk.type(u"orderStopLoss"_s, u"1.05"_s);
    QTest::mouseClick(desk.buy(), Qt::LeftButton);
    QTRY_VERIFY(desk.error()->isVisible());
    QCOMPARE(desk.error()->text(), u"Not enough money"_s);
    QVERIFY(desk.dialog->isVisible());
    QCOMPARE(desk.edit(u"orderStopLoss"_s)->text(), u"1.05"_s);
    QCOMPARE(sounds.size(), 1);
    QCOMPARE(sounds.at(0).at(0).value<SoundKind>(), SoundKind::Error);
    QCOMPARE(placed.size(), 0);
    QCOMPARE(unknown.size(), 0);
}

void TestOrderDialog::aRefusalCanBeCorrectedAndSentAgain()
{
    Desk desk;
    desk.server.once("POST", placePath, StubAnswer::message(u"Too big"_s, 400));
    desk.server.once("POST", placePath, StubAnswer::held());
    QSignalSpy placed(desk.dialog, &OrderDialog::orderPlaced);
    QTest::mouseClick(desk.buy(), Qt::LeftButton);
    QTRY_VERIFY(desk.error()->isVisible());
    QTest::mouseClick(desk.buy(), Qt::LeftButton);
    QVERIFY(!desk.error()->isVisible());
    QTRY_COMPARE(desk.server.heldCount(), 1);
    desk.server.release(StubAnswer::json("{}"));
    QTRY_COMPARE(placed.size(), 1);
    QTRY_VERIFY(!desk.dialog);
}

void TestOrderDialog::aRefusalWithoutMessageShowsTheNetworksText()
{
    Desk desk;
    desk.server.on("POST", placePath, StubAnswer::html("<h1>Bad</h1>", 400));
    QTest::mouseClick(desk.buy(), Qt::LeftButton);
    QTRY_VERIFY(desk.error()->isVisible());
    QVERIFY(!desk.error()->text().isEmpty());
    QVERIFY(!desk.error()->text().contains(u"<h1>"_s));
}

void TestOrderDialog::serverTextsAreShownAsPlainText()
{
    Desk desk({}, QJsonDocument::fromJson(R"([{"name":"A%1B","description":"<b>%2</b>\nx"}])").array());
    QCOMPARE(desk.combo(u"orderSymbol"_s)->itemText(0), u"A%1B, <b>%2</b> x"_s);
    QCOMPARE(desk.dialog->windowTitle(), u"Order: A%1B - <b>%2</b> x"_s);
    desk.server.on("POST", placePath, StubAnswer::message(u"<img src='file:///x'>%1"_s, 400));
    QTest::mouseClick(desk.buy(), Qt::LeftButton);
    QTRY_VERIFY(desk.error()->isVisible());
    QCOMPARE(desk.error()->text(), u"<img src='file:///x'>%1"_s);
    QCOMPARE(desk.error()->textFormat(), Qt::PlainText);
    QCOMPARE(desk.units()->textFormat(), Qt::PlainText);
    QCOMPARE(desk.prices()->textFormat(), Qt::PlainText);
}

void TestOrderDialog::anUncertainOutcomeIsNeverReportedAsDone_data()
{
    QTest::addColumn<int>("kind");
    QTest::newRow("connection closed after the order was written") << 0;
    QTest::newRow("bytes that are not HTTP") << 1;
    QTest::newRow("a gateway that gave up") << 2;
}

void TestOrderDialog::anUncertainOutcomeIsNeverReportedAsDone()
{
    QFETCH(int, kind);
    const QList<StubAnswer> answers{
        StubAnswer::closed(), StubAnswer::raw("garbage\r\n\r\n"), StubAnswer::html("<h1>Gateway</h1>", 504)};
    Desk desk;
    desk.server.on("POST", placePath, answers.at(kind));
    QSignalSpy placed(desk.dialog, &OrderDialog::orderPlaced);
    QSignalSpy unknown(desk.dialog, &OrderDialog::outcomeUnknown);
    QTest::mouseClick(desk.buy(), Qt::LeftButton);
    QTRY_COMPARE(unknown.size(), 1);
    QVERIFY(desk.error()->isVisible());
    QVERIFY(!desk.error()->text().isEmpty());
    QVERIFY(desk.dialog->isVisible());
    QVERIFY(desk.buy()->isEnabled());
    QCOMPARE(placed.size(), 0);
    QCOMPARE(desk.server.count("POST", placePath), 1);
}

void TestOrderDialog::aRedirectIsNoSuccess()
{
    Desk desk;
    desk.server.on("POST", placePath, StubAnswer::redirect(u"/elsewhere"_s));
    QSignalSpy placed(desk.dialog, &OrderDialog::orderPlaced);
    QTest::mouseClick(desk.buy(), Qt::LeftButton);
    QTRY_VERIFY(desk.error()->isVisible());
    QCOMPARE(placed.size(), 0);
}

void TestOrderDialog::anUnreachableServerIsReported()
{
    Desk desk;
    desk.server.shutDown();
    QSignalSpy placed(desk.dialog, &OrderDialog::orderPlaced);
    QTest::mouseClick(desk.buy(), Qt::LeftButton);
    QTRY_VERIFY(desk.error()->isVisible());
    QVERIFY(desk.buy()->isEnabled());
    QCOMPARE(placed.size(), 0);
}

void TestOrderDialog::aReadableAnswerIsNotAskedForOnPurpose_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<int>("status");
    QTest::newRow("a page") << "<h1>Done</h1>"_ba << 200;
    QTest::newRow("a cut object") << R"({"id":"t-)"_ba << 201;
    QTest::newRow("a list") << "[1]"_ba << 200;
    QTest::newRow("a message") << R"({"message":"Fine"})"_ba << 200;
    QTest::newRow("nothing") << ""_ba << 200;
}

// The status says that the order was placed; a body that was lost on the way takes nothing back.
void TestOrderDialog::aReadableAnswerIsNotAskedForOnPurpose()
{
    QFETCH(QByteArray, body);
    QFETCH(int, status);
    Desk desk;
    desk.server.on("POST", placePath, StubAnswer::json(body, status));
    QSignalSpy placed(desk.dialog, &OrderDialog::orderPlaced);
    QTest::mouseClick(desk.buy(), Qt::LeftButton);
    QTRY_VERIFY(!desk.dialog);
    QCOMPARE(placed.size(), 1);
}

void TestOrderDialog::closedWhileSendingItLeavesAndReportsTheOrder_data()
{
    QTest::addColumn<int>("way");
    QTest::newRow("by the Escape key") << 0;
    QTest::newRow("by the button of the left list") << 1;
    QTest::newRow("by the title bar") << 2;
}

void TestOrderDialog::closedWhileSendingItLeavesAndReportsTheOrder()
{
    QFETCH(int, way);
    Desk desk;
    desk.server.on("POST", placePath, StubAnswer::held());
    QSignalSpy placed(desk.dialog, &OrderDialog::orderPlaced);
    QSignalSpy sounds(desk.dialog, &OrderDialog::soundDue);
    QSignalSpy unknown(desk.dialog, &OrderDialog::outcomeUnknown);
    QSignalSpy finished(desk.dialog, &QDialog::finished);
    QTest::mouseClick(desk.buy(), Qt::LeftButton);
    QTRY_COMPARE(desk.server.heldCount(), 1);
    if (way == 0)
        QTest::keyClick(desk.dialog, Qt::Key_Escape);
    else if (way == 1)
        desk.click(u"Minimize"_s);
    else
        desk.dialog->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(desk.dialog);
    QVERIFY(!desk.dialog->isVisible());
    QCOMPARE(finished.size(), 0);
    QCOMPARE(placed.size(), 0);
    desk.server.release(StubAnswer::json("{}"));
    QTRY_VERIFY(!desk.dialog);
    QCOMPARE(placed.size(), 1);
    QCOMPARE(sounds.size(), 1);
    QCOMPARE(sounds.at(0).at(0).value<SoundKind>(), SoundKind::Open);
    QCOMPARE(unknown.size(), 0);
}

void TestOrderDialog::closedWhileSendingItComesBackWithARefusal()
{
    Desk desk;
    desk.server.on("POST", placePath, StubAnswer::held());
    QSignalSpy sounds(desk.dialog, &OrderDialog::soundDue);
    desk.type(u"orderStopLoss"_s, u"1.05"_s);
    desk.buy()->setFocus();
    QTest::mouseClick(desk.buy(), Qt::LeftButton);
    QTRY_COMPARE(desk.server.heldCount(), 1);
    desk.dialog->close();
    QVERIFY(!desk.dialog->isVisible());
    desk.server.release(StubAnswer::message(u"Not enough money"_s, 400));
    QTRY_VERIFY(desk.dialog->isVisible());
    QVERIFY(desk.error()->isVisible());
    QCOMPARE(desk.error()->text(), u"Not enough money"_s);
    QCOMPARE(desk.edit(u"orderStopLoss"_s)->text(), u"1.05"_s);
    QVERIFY(desk.buy()->isEnabled());
    QCOMPARE(sounds.size(), 1);
    QCOMPARE(sounds.at(0).at(0).value<SoundKind>(), SoundKind::Error);
    // A key meant for another window must not place the order again.
    QCOMPARE(desk.dialog->focusWidget(), desk.part<DecimalSpinBox>(u"orderVolume"_s));
    // The next order can be left in the same way.
    QTest::mouseClick(desk.buy(), Qt::LeftButton);
    QTRY_COMPARE(desk.server.heldCount(), 1);
    desk.dialog->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(desk.dialog && !desk.dialog->isVisible());
    desk.server.release(StubAnswer::message(u"Still not"_s, 400));
    QTRY_COMPARE(desk.error()->text(), u"Still not"_s);
    desk.dialog->close();
    QTRY_VERIFY(!desk.dialog);
}

void TestOrderDialog::closedWhileSendingItComesBackWhenNobodyKnows()
{
    Desk desk;
    desk.server.on("POST", placePath, StubAnswer::held());
    QSignalSpy placed(desk.dialog, &OrderDialog::orderPlaced);
    QSignalSpy unknown(desk.dialog, &OrderDialog::outcomeUnknown);
    QTest::mouseClick(desk.buy(), Qt::LeftButton);
    QTRY_COMPARE(desk.server.heldCount(), 1);
    desk.dialog->close();
    desk.server.release(StubAnswer::html("<h1>Gateway</h1>", 504));
    QTRY_COMPARE(unknown.size(), 1);
    QVERIFY(desk.dialog->isVisible());
    QVERIFY(desk.error()->isVisible());
    QCOMPARE(placed.size(), 0);
}

void TestOrderDialog::closedTwiceWhileSendingItGivesUpTheWait()
{
    Desk desk;
    desk.server.on("POST", placePath, StubAnswer::held());
    QSignalSpy placed(desk.dialog, &OrderDialog::orderPlaced);
    QSignalSpy unknown(desk.dialog, &OrderDialog::outcomeUnknown);
    QSignalSpy finished(desk.dialog, &QDialog::finished);
    QTest::mouseClick(desk.buy(), Qt::LeftButton);
    QTRY_COMPARE(desk.server.heldCount(), 1);
    desk.dialog->close();
    QCOMPARE(unknown.size(), 0);
    desk.dialog->show();
    QVERIFY(!desk.buy()->isEnabled());
    QTest::keyClick(desk.dialog, Qt::Key_Escape);
    QTRY_VERIFY(!desk.dialog);
    QCOMPARE(unknown.size(), 1);
    QCOMPARE(finished.size(), 1);
    desk.server.release(StubAnswer::json("{}"));
    QCoreApplication::processEvents();
    QCOMPARE(placed.size(), 0);
}

void TestOrderDialog::aSecondPressOfTheSpaceBarPressesNothingElse()
{
    Desk desk;
    desk.server.on("POST", placePath, StubAnswer::held());
    desk.click(u"Limit Order"_s);
    desk.type(u"orderPrice"_s, u"1.07"_s);
    for (QPushButton* button : {desk.sell(), desk.buy()}) {
        button->setFocus();
        QTest::keyClick(button, Qt::Key_Space);
        QTRY_COMPARE(desk.server.heldCount(), 1);
        QVERIFY(!qobject_cast<QPushButton*>(desk.dialog->focusWidget()));
        QTest::keyClick(desk.dialog->focusWidget(), Qt::Key_Space);
        QVERIFY(desk.dialog->isVisible());
        QVERIFY(desk.button(u"Limit Order"_s)->isChecked());
        desk.server.release(StubAnswer::message(u"No"_s, 400));
        QTRY_VERIFY(desk.error()->isVisible());
        QCOMPARE(desk.dialog->focusWidget(), button);
    }
}

void TestOrderDialog::aWindowDestroyedWhileSendingDoesNoHarm()
{
    Desk desk;
    desk.server.on("POST", placePath, StubAnswer::held());
    QTest::mouseClick(desk.buy(), Qt::LeftButton);
    QTRY_COMPARE(desk.server.heldCount(), 1);
    const QPointer<QNetworkReply> reply = desk.api.findChild<QNetworkReply*>();
    QVERIFY(reply);
    delete desk.dialog;
    desk.server.release(StubAnswer::json("{}"));
    QTRY_VERIFY(!reply);
}

void TestOrderDialog::pricesAreShownAndDrawn()
{
    Desk desk;
    desk.quote(R"({"EURUSD":{"bid":"1.0712","ask":1.07135}})");
    QCOMPARE(desk.prices()->text(), u"1.07120 / 1.07135"_s);
    QCOMPARE(desk.ticks()->bids(), QList<double>{1.0712});
    QCOMPARE(desk.ticks()->asks(), QList<double>{1.07135});
    QCOMPARE(desk.units()->text(), u"1000 EURUSD"_s);
    desk.quote(R"({"EURUSD":{"bid":"1.0712","ask":1.07135}})");
    QCOMPARE(desk.ticks()->bids().size(), 2);
}

void TestOrderDialog::otherSymbolsPricesAreLeftAlone()
{
    Desk desk;
    desk.quote(R"({"GOLD":{"bid":1,"ask":2}})");
    QCOMPARE(desk.prices()->text(), u"— / —"_s);
    QVERIFY(desk.ticks()->bids().isEmpty());
    QCOMPARE(desk.units()->text(), QString());
}

void TestOrderDialog::unreadablePricesAreNoQuotes_data()
{
    QTest::addColumn<QByteArray>("quote");
    for (const char* quote : {"{}", "5", "null", R"({"bid":1})", R"({"ask":1})", R"({"bid":"x","ask":1})",
             R"({"bid":1e308,"ask":1})", R"({"bid":0,"ask":0})", R"({"bid":-1,"ask":1})",
             R"({"bid":"nan","ask":1})"})
        QTest::newRow(quote) << QByteArray(quote);
}

void TestOrderDialog::unreadablePricesAreNoQuotes()
{
    QFETCH(QByteArray, quote);
    Desk desk;
    desk.quote(R"({"EURUSD":{"bid":1.1,"ask":1.2}})");
    desk.quote("{\"EURUSD\":" + quote + "}");
    QCOMPARE(desk.prices()->text(), u"1.10000 / 1.20000"_s);
    QCOMPARE(desk.ticks()->bids().size(), 1);
}

void TestOrderDialog::changingTheSymbolStartsAgain()
{
    Desk desk;
    desk.quote(R"({"EURUSD":{"bid":1.1,"ask":1.2}})");
    desk.click(u"Stop Order"_s);
    desk.combo(u"orderSymbol"_s)->setFocus();
    QTest::keyClick(desk.combo(u"orderSymbol"_s), Qt::Key_Down);
    QCOMPARE(desk.combo(u"orderSymbol"_s)->currentData().toString(), u"GOLD"_s);
    QCOMPARE(desk.prices()->text(), u"— / —"_s);
    QVERIFY(desk.ticks()->bids().isEmpty());
    QCOMPARE(desk.ticks()->digits(), 2);
    QCOMPARE(desk.dialog->windowTitle(), u"Order: GOLD - Gold"_s);
    QCOMPARE(desk.sell()->text(), u"Sell Stop"_s);
    desk.quote(R"({"GOLD":{"bid":1900,"ask":1901}})");
    QCOMPARE(desk.prices()->text(), u"1900.00 / 1901.00"_s);
    QTest::keyClick(desk.combo(u"orderSymbol"_s), Qt::Key_Up);
    desk.quote(R"({"EURUSD":{"bid":1.1,"ask":1.2}})");
    QCOMPARE(desk.prices()->text(), u"1.10000 / 1.20000"_s);
}

void TestOrderDialog::unitsFollowPricesNotTheSpinBox()
{
    Desk desk;
    desk.quote(R"({"EURUSD":{"bid":1.1,"ask":1.2}})");
    desk.part<DecimalSpinBox>(u"orderVolume"_s)->setValue(2.0);
    QCOMPARE(desk.units()->text(), u"1000 EURUSD"_s);
    desk.quote(R"({"EURUSD":{"bid":1.1,"ask":1.2}})");
    QCOMPARE(desk.units()->text(), u"200000 EURUSD"_s);
    desk.combo(u"orderSymbol"_s)->setCurrentIndex(1);
    QCOMPARE(desk.units()->text(), u"200000 EURUSD"_s);
    desk.quote(R"({"GOLD":{"bid":1900,"ask":1901}})");
    QCOMPARE(desk.units()->text(), u"200 GOLD"_s);
}

void TestOrderDialog::anUnusableContractSizeCountsAsOne_data()
{
    QTest::addColumn<QByteArray>("size");
    for (const char* size : {"0", "-5", "\"x\"", "null", "{}", "1e308"})
        QTest::newRow(size) << QByteArray(size);
}

void TestOrderDialog::anUnusableContractSizeCountsAsOne()
{
    QFETCH(QByteArray, size);
    Desk desk({}, QJsonDocument::fromJson("[{\"name\":\"A\",\"contractSize\":" + size + "}]").array());
    desk.part<DecimalSpinBox>(u"orderVolume"_s)->setValue(3.0);
    desk.quote(R"({"A":{"bid":1.1,"ask":1.2}})");
    QCOMPARE(desk.units()->text(), u"3 A"_s);
}

void TestOrderDialog::oddSymbolListsDoNoHarm()
{
    Desk odd({},
        QJsonDocument::fromJson(R"([1,null,{},{"name":7},{"name":"A","digits":-4},{"name":"A"}])").array());
    QCOMPARE(odd.combo(u"orderSymbol"_s)->count(), 2);
    odd.quote(R"({"A":{"bid":1.1,"ask":1.2}})");
    QVERIFY(odd.prices()->text().contains(u" / "_s));
    Desk empty({}, {});
    empty.quote(R"({"":{"bid":1.1,"ask":1.2}})");
    empty.server.on("POST", placePath, StubAnswer::message(u"Unknown symbol"_s, 400));
    QTest::mouseClick(empty.buy(), Qt::LeftButton);
    QTRY_COMPARE(empty.error()->text(), u"Unknown symbol"_s);
}

void TestOrderDialog::enterInAFieldPlacesNothing()
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

void TestOrderDialog::escapeAndMinimizePlaceNothing()
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

void TestOrderDialog::everyFieldHasANameAndALabel()
{
    const Desk desk;
    QStringList captions;
    for (const QLabel* label : desk.dialog->findChildren<QLabel*>()) {
        if (!label->buddy())
            continue;
        captions.append(label->text());
        QCOMPARE(label->buddy()->accessibleName() + u':', label->text());
    }
    captions.sort();
    QCOMPARE(captions,
        (QStringList{
            u"Comment:"_s, u"Price:"_s, u"Stop Loss:"_s, u"Symbol:"_s, u"Take Profit:"_s, u"Volume:"_s}));
}

void TestOrderDialog::sizesHoldUnderBothThemes_data()
{
    QTest::addColumn<bool>("dark");
    QTest::newRow("light") << false;
    QTest::newRow("dark") << true;
}

void TestOrderDialog::sizesHoldUnderBothThemes()
{
    QFETCH(bool, dark);
    setTheme(dark);
    applyTheme(*qApp);
    Desk desk;
    desk.quote(R"({"EURUSD":{"bid":1.0712,"ask":1.07135}})");
    QCOMPARE(desk.dialog->size(), QSize(920, 440));
    QCOMPARE(desk.ticks()->width(), 300);
    QCOMPARE(desk.button(u"Limit Order"_s)->parentWidget()->width(), 200);
    QCOMPARE_GE(desk.sell()->height(), 34);
    QCOMPARE_GE(desk.buy()->height(), 34);
    QCOMPARE_GE(desk.part<DecimalSpinBox>(u"orderVolume"_s)->width(), 60);
    for (const QPushButton* button : desk.dialog->findChildren<QPushButton*>())
        QVERIFY2(button->width() >= button->fontMetrics().horizontalAdvance(button->text()) + 20,
            qPrintable(button->text()));
    desk.quote(R"({"EURUSD":{"bid":1.0713,"ask":1.07145}})");
    desk.quote(R"({"EURUSD":{"bid":1.07125,"ask":1.0714}})");
    QTRY_COMPARE_GE(
        desk.units()->width(), desk.units()->fontMetrics().horizontalAdvance(desk.units()->text()));
    QCOMPARE_GE(desk.combo(u"orderComment"_s)->width(), 200);
    const QImage picture = desk.dialog->grab().toImage();
    // The window is light in both themes: the empty corner under the left list and of the form.
    QCOMPARE(picture.pixelColor(190, 220), QColor(u"#f3f3f3"_s));
    QCOMPARE(picture.pixelColor(210, 10), QColor(u"#ffffff"_s));
    if (const QString folder = qEnvironmentVariable("TAVORAN_PICTURES"); !folder.isEmpty())
        desk.dialog->grab().save(folder + (dark ? "/order-dark.png"_L1 : "/order-light.png"_L1));
}

void TestOrderDialog::whatPopsUpIsLegibleUnderBothThemes_data()
{
    sizesHoldUnderBothThemes_data();
}

void TestOrderDialog::whatPopsUpIsLegibleUnderBothThemes()
{
    QFETCH(bool, dark);
    setTheme(dark);
    applyTheme(*qApp);
    const Desk desk;
    QPushButton* stopLimit = desk.button(u"Stop Limit Order"_s);
    QHelpEvent hover(QEvent::ToolTip, QPoint(5, 5), stopLimit->mapToGlobal(QPoint(5, 5)));
    QApplication::sendEvent(stopLimit, &hover);
    QWidget* tip = nullptr;
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        if (widget->inherits("QTipLabel") && widget->isVisible())
            tip = widget;
    }
    QVERIFY(tip);
    const QRect text = tip->rect().adjusted(3, 3, -3, -3);
    QCOMPARE_GE(contrast(tip->grab(text).toImage()), 130);
    QToolTip::hideText();

    QComboBox* symbols = desk.combo(u"orderSymbol"_s);
    symbols->showPopup();
    QAbstractItemView* list = symbols->view();
    QTRY_VERIFY(list->isVisible());
    for (int row = 0; row < 3; ++row) {
        const QRect place = list->visualRect(list->model()->index(row, 0));
        QTRY_VERIFY(list->viewport()->rect().contains(list->visualRect(list->model()->index(row, 0))));
        QCOMPARE_GE(contrast(list->viewport()->grab(place).toImage()), 130);
    }
    symbols->hidePopup();
}

void TestOrderDialog::aLongSymbolListScrolls()
{
    QJsonArray many;
    for (int i = 0; i < 500; ++i)
        many.append(QJsonObject{{"name"_L1, u"S%1"_s.arg(i)}});
    const Desk desk({}, many);
    QComboBox* symbols = desk.combo(u"orderSymbol"_s);
    symbols->showPopup();
    QTRY_VERIFY(symbols->view()->isVisible());
    QCOMPARE_LE(symbols->view()->height(), 320);
    QVERIFY(symbols->view()->verticalScrollBar()->isVisible());
    symbols->hidePopup();
}

void TestOrderDialog::partsHaveTheirPlacesAndStyles()
{
    const Desk desk;
    QVERIFY(desk.dialog->styleSheet().endsWith(
        u"OrderDialog{background:#ffffff;}QLabel{color:#222;} QLineEdit,QComboBox,QDoubleSpinBox"
        "{background:#ffffff;color:#222;border:1px solid #b7b7b7;padding:3px;}"_s));
    const auto* columns = desk.dialog->layout();
    QCOMPARE(columns->contentsMargins(), QMargins());
    QCOMPARE(columns->spacing(), 0);
    QCOMPARE(columns->count(), 3);

    const QWidget* left = columns->itemAt(0)->widget();
    QCOMPARE(left->styleSheet(), u"background:#f3f3f3;"_s);
    QCOMPARE(left->layout()->contentsMargins(), QMargins(8, 12, 8, 12));
    QCOMPARE(left->layout()->spacing(), 2);
    for (const QString& text :
        {u"Market Execution"_s, u"Limit Order"_s, u"Stop Order"_s, u"Stop Limit Order"_s}) {
        QVERIFY(desk.button(text)->isCheckable());
        QCOMPARE(desk.button(text)->cursor().shape(), Qt::PointingHandCursor);
        QCOMPARE(desk.button(text)->styleSheet(),
            u"QPushButton{ text-align:left; padding:8px 10px; border:none;background:transparent; "
            u"color:#222; }"
            "QPushButton:checked{ background:#ffffff; border-left:3px solid #0e639c;font-weight:bold; }"
            "QPushButton:hover{ background:#e8e8e8; }"_s);
    }
    for (const QString& text : {u"One Click Trading"_s, u"Tick Chart"_s, u"Depth of Market"_s, u"Minimize"_s})
        QCOMPARE(desk.button(text)->styleSheet(),
            u"QPushButton{ text-align:left; padding:6px 10px; border:none;background:transparent; "
            u"color:#444; }"
            " QPushButton:hover{ background:#e8e8e8; }"_s);

    const QWidget* form = columns->itemAt(1)->widget();
    QCOMPARE(form->layout()->contentsMargins(), QMargins(24, 20, 24, 16));
    const auto* fields = form->findChild<QFormLayout*>();
    QCOMPARE(fields->horizontalSpacing(), 9);
    QCOMPARE(fields->verticalSpacing(), 9);
    QCOMPARE(fields->labelAlignment(), Qt::AlignRight | Qt::AlignVCenter);
    QStringList captions;
    for (int row = 0; row < fields->rowCount(); ++row) {
        const QLayoutItem* label = fields->itemAt(row, QFormLayout::LabelRole);
        captions.append(qobject_cast<QLabel*>(label->widget())->text());
    }
    QCOMPARE(captions,
        (QStringList{
            u"Symbol:"_s, u"Volume:"_s, u"Stop Loss:"_s, u"Take Profit:"_s, u"Price:"_s, u"Comment:"_s}));
    QCOMPARE(desk.units()->styleSheet(), u"color:#888;"_s);
    QCOMPARE(desk.prices()->styleSheet(), u"font-size:26pt; font-weight:bold; color:#222;"_s);
    QCOMPARE(desk.prices()->alignment(), Qt::AlignCenter);
    QCOMPARE(desk.error()->styleSheet(), u"color:#c0392b;"_s);
    QVERIFY(desk.error()->wordWrap());
    const QString button
        = u"QPushButton{background:#e8edf3;border:1px solid #b7c6d6;color:%1;font-weight:bold;}"
          "QPushButton:hover{background:#dde6f0;}"_s;
    QCOMPARE(desk.sell()->styleSheet(), button.arg(u"#c0392b"_s));
    QCOMPARE(desk.buy()->styleSheet(), button.arg(u"#1f6fb2"_s));
    QCOMPARE(desk.sell()->minimumHeight(), 34);
    QCOMPARE_LT(desk.sell()->x(), desk.buy()->x());
    QCOMPARE(columns->itemAt(2)->widget(), desk.ticks());
    QVERIFY(!desk.dialog->windowIcon().isNull());
}

TAVORAN_TEST_MAIN(TestOrderDialog)
#include "tst_OrderDialog.moc"
