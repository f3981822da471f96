#include "app/base/TerminalSettings.h"
#include "app/ui/DecimalEdit.h"
#include "net/ApiClient.h"
#include "orders/ModifyDialog.h"
#include "support/Hands.h"
#include "support/LogMessages.h"
#include "support/ParseJson.h"
#include "support/StubHttpServer.h"
#include "support/TestMain.h"

#include <QBoxLayout>
#include <QClipboard>
#include <QFormLayout>
#include <QLabel>
#include <QNetworkReply>
#include <QPushButton>
#include <QSignalSpy>
#include <QtTest>

using namespace Qt::StringLiterals;
using fixtures::parse;

namespace {

const QByteArray path = "/api/trades/modify/t-1";

const QByteArray position = R"({"id":"t-1","symbol":"EURUSD","type":"BUY","lotSize":"0.1","status":"OPEN",
    "stopLoss":0,"takeProfit":"1.2"})";
const QByteArray pending = R"({"id":"t-1","symbol":"EURUSD","type":"SELL","lotSize":2,"status":"PENDING",
    "pendingPrice":1.1,"stopLoss":1.15,"takeProfit":-3})";

/// The dialog on show over a scripted server.
struct Desk {
    StubHttpServer server;
    ApiClient api{TerminalSettings::instance()};
    QPointer<ModifyDialog> dialog;

    explicit Desk(const QByteArray& trade = position, int digits = 5)
    {
        TerminalSettings::instance().setServerUrl(server.url());
        dialog = new ModifyDialog(api, parse(trade), digits);
        dialog->setAttribute(Qt::WA_DeleteOnClose);
        dialog->show();
    }
    ~Desk() { delete dialog; }
    Q_DISABLE_COPY_MOVE(Desk)

    [[nodiscard]] DecimalEdit* edit(const char* name) const
    {
        return dialog->findChild<DecimalEdit*>(QLatin1StringView(name));
    }
    [[nodiscard]] QPushButton* modify() const { return dialog->findChild<QPushButton*>(u"modifyButton"_s); }
    [[nodiscard]] QLabel* error() const { return dialog->findChild<QLabel*>(u"modifyError"_s); }
    void type(const char* name, const QString& text) const
    {
        edit(name)->selectAll();
        QTest::keyClicks(edit(name), text);
    }
    /// "Label=name of the field" of each row of the form, from the top.
    [[nodiscard]] QStringList formRows() const
    {
        QStringList rows;
        const auto* form = dialog->findChild<QFormLayout*>();
        for (int row = 0; form && row < form->rowCount(); ++row) {
            QWidget* field = form->itemAt(row, QFormLayout::FieldRole)->widget();
            rows.append(
                qobject_cast<QLabel*>(form->labelForField(field))->text() + u'=' + field->objectName());
        }
        return rows;
    }
    void press() const { QTest::mouseClick(modify(), Qt::LeftButton); }
    [[nodiscard]] QJsonObject sent() const { return server.last("PUT", path).json(); }
};

} // namespace

Q_DECLARE_METATYPE(StubAnswer)

class TestModifyDialog final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany)); }
    void aPositionShowsItsLevelsAndNoPrice();
    void aPendingOrderShowsItsPriceToo();
    void cancelStandsBeforeModifyAtTheRight();
    void unsetLevelsOpenEmpty_data();
    void unsetLevelsOpenEmpty();
    void anUnreadableVolumeIsLeftOut_data();
    void anUnreadableVolumeIsLeftOut();
    void headerTextIsPlainAndOneLine();
    void whatIsTypedAtOnceIsTheStopLoss();
    void whatIsTypedAtOnceReplacesALevelThatIsThere();
    void whatIsTypedAtOnceIsThePriceOfAPendingOrder();
    void tabGoesDownTheFieldsToTheButtons();
    void enterSendsWhatIsShown();
    void whiteSpaceAroundANumberIsNoPartOfIt_data();
    void whiteSpaceAroundANumberIsNoPartOfIt();
    void emptyFieldsAreLeftOut();
    void aTypedZeroIsSentOnPurpose();
    void aTypedCommaIsAPoint();
    void halfANumberIsNotSent();
    void moreDecimalsThanCanBeTypedAreSentAsShown();
    void anIdThatNamesAnotherPathIsNotSent_data();
    void anIdThatNamesAnotherPathIsNotSent();
    void idsArePercentEncoded();
    void blanksAreAnEmptyField();
    void successIsReportedAndCloses();
    void successIsReportedBeforeTheWindowCloses();
    void aRefusalIsShownAndCanBeCorrected();
    void everyRefusalStandsInTheLog();
    void aRefusalWithMarkupIsShownAsText();
    void noRefusalPushesTheButtonsOffTheScreen_data();
    void noRefusalPushesTheButtonsOffTheScreen();
    void aRefusalWithoutAMessageIsShownInTheNetworksWords_data();
    void aRefusalWithoutAMessageIsShownInTheNetworksWords();
    void twoPressesSendOnce();
    void enterThatIsHeldSendsOnce();
    void enterOnCancelSendsNothing();
    void cancelSendsNothing();
    void anUncertainOutcomeIsAskedFor_data();
    void anUncertainOutcomeIsAskedFor();
    void closedWhileSendingItComesBackWithARefusal();
    void closedWhileSendingItReportsTheSuccess();
    void closedTwiceWhileSendingItStillTellsTheSuccess();
    void closedTwiceWhileSendingItStillTellsTheFailure();
    void destroyedWhileSendingItDoesNoHarm();
};

void TestModifyDialog::aPositionShowsItsLevelsAndNoPrice()
{
    const Desk desk;
    QCOMPARE(desk.dialog->windowTitle(), u"Modify Order"_s);
    QVERIFY(!desk.dialog->windowIcon().isNull());
    QCOMPARE(desk.dialog->minimumWidth(), 340);
    const auto* header = desk.dialog->findChild<QLabel*>(u"modifyHeader"_s);
    QCOMPARE(header->text(), u"EURUSD buy 0.10"_s);
    QCOMPARE(header->styleSheet(), u"font-weight:bold;"_s);
    QCOMPARE(desk.edit("modifyStopLoss")->text(), QString());
    QCOMPARE(desk.edit("modifyStopLoss")->placeholderText(), u"none"_s);
    QCOMPARE(desk.edit("modifyTakeProfit")->text(), u"1.20000"_s);
    QVERIFY(!desk.edit("modifyPrice"));
    QCOMPARE(
        desk.formRows(), QStringList({u"Stop Loss:=modifyStopLoss"_s, u"Take Profit:=modifyTakeProfit"_s}));
    QVERIFY(desk.modify()->isDefault());
    QVERIFY(!desk.error()->isVisible());
    QCOMPARE(desk.error()->styleSheet(), u"color:#ff6b6b;"_s);
    QVERIFY(desk.error()->wordWrap());
}

void TestModifyDialog::aPendingOrderShowsItsPriceToo()
{
    const Desk desk(pending, 3);
    QCOMPARE(desk.edit("modifyPrice")->text(), u"1.100"_s);
    QCOMPARE(desk.edit("modifyStopLoss")->text(), u"1.150"_s);
    QCOMPARE(desk.edit("modifyTakeProfit")->text(), QString());
    QCOMPARE(desk.formRows(),
        QStringList(
            {u"Price:=modifyPrice"_s, u"Stop Loss:=modifyStopLoss"_s, u"Take Profit:=modifyTakeProfit"_s}));
    QCOMPARE(desk.edit("modifyPrice")->placeholderText(), u"none"_s);
    QCOMPARE(desk.edit("modifyTakeProfit")->placeholderText(), u"none"_s);
}

void TestModifyDialog::cancelStandsBeforeModifyAtTheRight()
{
    const Desk desk;
    const auto* column = qobject_cast<QBoxLayout*>(desk.dialog->layout());
    QVERIFY(column);
    const QLayout* row = column->itemAt(column->count() - 1)->layout();
    QVERIFY(row);
    QCOMPARE(row->count(), 3);
    QVERIFY(row->itemAt(0)->expandingDirections().testFlag(Qt::Horizontal));
    QCOMPARE(qobject_cast<QPushButton*>(row->itemAt(1)->widget())->text(), u"Cancel"_s);
    QCOMPARE(row->itemAt(2)->widget(), desk.modify());
    QCOMPARE(desk.modify()->text(), u"Modify"_s);
}

void TestModifyDialog::unsetLevelsOpenEmpty_data()
{
    QTest::addColumn<QByteArray>("level");
    for (const char* level : {"0", "-1.5", "\"-1.5\"", "\"0\"", "null", "true", "[1.5]", "\"\"", "\"NaN\"",
             "\"inf\"", "\"1e400\"", "\"1,5\"", "\"none\""})
        QTest::newRow(level) << QByteArray(level);
}

void TestModifyDialog::unsetLevelsOpenEmpty()
{
    QFETCH(QByteArray, level);
    Desk desk(R"({"id":"t-1","symbol":"EURUSD","status":"PENDING","stopLoss":)" + level + R"(,"takeProfit":)"
        + level + R"(,"pendingPrice":)" + level + "}");
    QCOMPARE(desk.edit("modifyStopLoss")->text(), QString());
    QCOMPARE(desk.edit("modifyTakeProfit")->text(), QString());
    QCOMPARE(desk.edit("modifyPrice")->text(), QString());
    desk.server.on("PUT", path, StubAnswer::held());
    desk.press();
    QTRY_COMPARE(desk.server.heldCount(), 1);
    QCOMPARE(desk.server.last("PUT", path).body, "{}"_ba);
}

void TestModifyDialog::anUnreadableVolumeIsLeftOut_data()
{
    QTest::addColumn<QByteArray>("trade");
    QTest::newRow("missing") << QByteArray(R"({"symbol":"EURUSD","type":"BUY"})");
    QTest::newRow("zero") << QByteArray(R"({"symbol":"EURUSD","type":"BUY","lotSize":0})");
    QTest::newRow("negative") << QByteArray(R"({"symbol":"EURUSD","type":"BUY","lotSize":"-1"})");
    QTest::newRow("no number") << QByteArray(R"({"symbol":"EURUSD","type":"BUY","lotSize":"NaN"})");
}

void TestModifyDialog::anUnreadableVolumeIsLeftOut()
{
    QFETCH(QByteArray, trade);
    const Desk desk(trade);
    QCOMPARE(desk.dialog->findChild<QLabel*>(u"modifyHeader"_s)->text(), u"EURUSD buy "_s);
}

void TestModifyDialog::headerTextIsPlainAndOneLine()
{
    const Desk desk(R"({"id":"t-1","symbol":"<b>A</b>\nB %1","type":"BUY"})");
    const auto* header = desk.dialog->findChild<QLabel*>(u"modifyHeader"_s);
    QCOMPARE(header->textFormat(), Qt::PlainText);
    QCOMPARE(header->text(), u"<b>A</b> B %1 buy "_s);
}

void TestModifyDialog::whatIsTypedAtOnceIsTheStopLoss()
{
    Desk desk;
    desk.server.on("PUT", path, StubAnswer::held());
    QVERIFY(hands::arriveAt(desk.dialog));
    hands::type(u"1.05000"_s);
    QCOMPARE(desk.edit("modifyStopLoss")->text(), u"1.05000"_s);
    hands::press(Qt::Key_Return);
    QTRY_COMPARE(desk.server.heldCount(), 1);
    QCOMPARE(desk.sent(), parse(R"({"stopLoss":1.05,"takeProfit":1.2})"));
}

void TestModifyDialog::whatIsTypedAtOnceReplacesALevelThatIsThere()
{
    Desk desk(R"({"id":"t-1","symbol":"EURUSD","type":"BUY","lotSize":1,"stopLoss":1.1})");
    desk.server.on("PUT", path, StubAnswer::held());
    QVERIFY(hands::arriveAt(desk.dialog));
    hands::type(u"1,2"_s);
    hands::press(Qt::Key_Return);
    QTRY_COMPARE(desk.server.heldCount(), 1);
    QCOMPARE(desk.sent(), parse(R"({"stopLoss":1.2})"));
}

void TestModifyDialog::whatIsTypedAtOnceIsThePriceOfAPendingOrder()
{
    Desk desk(pending);
    desk.server.on("PUT", path, StubAnswer::held());
    QVERIFY(hands::arriveAt(desk.dialog));
    hands::type(u"1.125"_s);
    hands::press(Qt::Key_Return);
    QTRY_COMPARE(desk.server.heldCount(), 1);
    QCOMPARE(desk.sent(), parse(R"({"pendingPrice":1.125,"stopLoss":1.15})"));
}

void TestModifyDialog::tabGoesDownTheFieldsToTheButtons()
{
    {
        const Desk desk;
        QVERIFY(hands::arriveAt(desk.dialog));
        QCOMPARE(hands::tabOrder(),
            QStringList({u"modifyStopLoss"_s, u"modifyTakeProfit"_s, u"Cancel"_s, u"modifyButton"_s}));
    }
    const Desk desk(pending);
    QVERIFY(hands::arriveAt(desk.dialog));
    QCOMPARE(hands::tabOrder(),
        QStringList(
            {u"modifyPrice"_s, u"modifyStopLoss"_s, u"modifyTakeProfit"_s, u"Cancel"_s, u"modifyButton"_s}));
}

void TestModifyDialog::whiteSpaceAroundANumberIsNoPartOfIt_data()
{
    QTest::addColumn<QString>("way");
    QTest::addColumn<QString>("field");
    QTest::addColumn<QString>("key");
    for (const char* way : {"paste", "drop", "set", "type"}) {
        for (const auto& [field, key] : {std::pair("modifyPrice", "pendingPrice"),
                 std::pair("modifyStopLoss", "stopLoss"), std::pair("modifyTakeProfit", "takeProfit")})
            QTest::addRow("%s into %s", way, field)
                << QString::fromLatin1(way) << QString::fromLatin1(field) << QString::fromLatin1(key);
    }
}

void TestModifyDialog::whiteSpaceAroundANumberIsNoPartOfIt()
{
    QFETCH(QString, way);
    QFETCH(QString, field);
    QFETCH(QString, key);
    const QString text = way == u"type"_s ? u"  1.5 "_s : u" \t1.5\u00a0\n"_s;
    Desk desk(pending);
    desk.server.on("PUT", path, StubAnswer::held());
    auto* edit = desk.dialog->findChild<DecimalEdit*>(field);
    edit->selectAll();
    QGuiApplication::clipboard()->setText(text);
    if (way == u"paste"_s)
        edit->paste();
    else if (way == u"drop"_s)
        hands::drop(*edit, text);
    else if (way == u"set"_s)
        edit->setText(text);
    else
        QTest::keyClicks(edit, text);
    QCOMPARE(edit->text(), u"1.5"_s);
    desk.press();
    QTRY_COMPARE(desk.server.heldCount(), 1);
    QCOMPARE(desk.sent().value(key).toDouble(), 1.5);
}

void TestModifyDialog::enterSendsWhatIsShown()
{
    Desk desk(pending);
    desk.server.on("PUT", path, StubAnswer::held());
    QTest::keyClick(desk.edit("modifyTakeProfit"), Qt::Key_Return);
    QTRY_COMPARE(desk.server.heldCount(), 1);
    QCOMPARE(desk.sent(), parse(R"({"pendingPrice":1.1,"stopLoss":1.15})"));
}

void TestModifyDialog::emptyFieldsAreLeftOut()
{
    Desk desk;
    desk.server.on("PUT", path, StubAnswer::held());
    desk.press();
    QTRY_COMPARE(desk.server.heldCount(), 1);
    QCOMPARE(desk.sent(), parse(R"({"takeProfit":1.2})"));
}

void TestModifyDialog::aTypedZeroIsSentOnPurpose()
{
    Desk desk;
    desk.server.on("PUT", path, StubAnswer::held());
    desk.type("modifyTakeProfit", u"0"_s);
    desk.press();
    QTRY_COMPARE(desk.server.heldCount(), 1);
    QCOMPARE(desk.sent(), parse(R"({"takeProfit":0})"));
}

void TestModifyDialog::aTypedCommaIsAPoint()
{
    Desk desk;
    desk.server.on("PUT", path, StubAnswer::held());
    desk.type("modifyStopLoss", u"1,25"_s);
    QCOMPARE(desk.edit("modifyStopLoss")->text(), u"1.25"_s);
    desk.press();
    QTRY_COMPARE(desk.server.heldCount(), 1);
    QCOMPARE(desk.sent(), parse(R"({"stopLoss":1.25,"takeProfit":1.2})"));
}

void TestModifyDialog::halfANumberIsNotSent()
{
    Desk desk;
    desk.type("modifyTakeProfit", u"."_s);
    QCOMPARE(desk.edit("modifyTakeProfit")->text(), u"."_s);
    desk.press();
    QVERIFY(desk.error()->isVisible());
    QVERIFY(desk.modify()->isEnabled());
    QCOMPARE(desk.server.requests().size(), 0);
}

void TestModifyDialog::moreDecimalsThanCanBeTypedAreSentAsShown()
{
    Desk desk(R"({"id":"t-1","symbol":"SHIB","status":"OPEN","stopLoss":"0.000000012345"})", 12);
    QCOMPARE(desk.edit("modifyStopLoss")->text(), u"0.000000012345"_s);
    desk.server.on("PUT", path, StubAnswer::json("{}"));
    desk.type("modifyTakeProfit", u"0.5"_s);
    desk.press();
    QTRY_COMPARE(desk.server.count("PUT", path), 1);
    QCOMPARE(desk.sent(), QJsonObject({{u"stopLoss"_s, 0.000000012345}, {u"takeProfit"_s, 0.5}}));
}

void TestModifyDialog::anIdThatNamesAnotherPathIsNotSent_data()
{
    QTest::addColumn<QByteArray>("trade");
    QTest::newRow("none") << QByteArray(R"({"symbol":"EURUSD"})");
    QTest::newRow("a number") << QByteArray(R"({"id":7})");
    QTest::newRow("the folder above") << QByteArray(R"({"id":".."})");
}

void TestModifyDialog::anIdThatNamesAnotherPathIsNotSent()
{
    QFETCH(QByteArray, trade);
    Desk desk(trade);
    QSignalSpy sounds(desk.dialog, &ModifyDialog::soundDue);
    desk.press();
    QVERIFY(desk.error()->isVisible());
    QCOMPARE(sounds.size(), 1);
    QCOMPARE(desk.server.requests().size(), 0);
}

void TestModifyDialog::idsArePercentEncoded()
{
    Desk desk(R"({"id":"a/b?c"})");
    desk.press();
    QTRY_COMPARE(desk.server.count("PUT", "/api/trades/modify/a%2Fb%3Fc"), 1);
}

void TestModifyDialog::blanksAreAnEmptyField()
{
    Desk desk;
    desk.server.on("PUT", path, StubAnswer::held());
    desk.edit("modifyTakeProfit")->setText(u"  "_s);
    desk.press();
    QTRY_COMPARE(desk.server.heldCount(), 1);
    QCOMPARE(desk.server.last("PUT", path).body, "{}"_ba);
}

void TestModifyDialog::successIsReportedAndCloses()
{
    Desk desk;
    desk.server.on("PUT", path, StubAnswer::json("{}"));
    QSignalSpy modified(desk.dialog, &ModifyDialog::modified);
    QSignalSpy accepted(desk.dialog, &QDialog::accepted);
    QSignalSpy sounds(desk.dialog, &ModifyDialog::soundDue);
    desk.press();
    QTRY_VERIFY(!desk.dialog);
    QCOMPARE(modified.size(), 1);
    QCOMPARE(accepted.size(), 1);
    QCOMPARE(sounds.size(), 1);
    QCOMPARE(sounds.at(0).at(0).value<SoundKind>(), SoundKind::Open);
}

void TestModifyDialog::successIsReportedBeforeTheWindowCloses()
{
    Desk desk;
    desk.server.on("PUT", path, StubAnswer::json("{}"));
    QStringList course;
    connect(desk.dialog, &ModifyDialog::soundDue, this, [&] { course.append(u"sound"_s); });
    connect(desk.dialog, &ModifyDialog::modified, this,
        [&] { course.append(desk.dialog->isVisible() ? u"modified, still open"_s : u"modified"_s); });
    connect(desk.dialog, &QDialog::finished, this,
        [&](int result) { course.append(u"closed with %1"_s.arg(result)); });
    desk.press();
    QTRY_VERIFY(!desk.dialog);
    QCOMPARE(course, QStringList({u"sound"_s, u"modified, still open"_s, u"closed with 1"_s}));
}

void TestModifyDialog::aRefusalIsShownAndCanBeCorrected()
{
    Desk desk;
    desk.server.once("PUT", path, StubAnswer::message(u"Too close"_s, 400));
    desk.server.once("PUT", path, StubAnswer::held());
    QSignalSpy modified(desk.dialog, &ModifyDialog::modified);
    QSignalSpy unknown(desk.dialog, &ModifyDialog::outcomeUnknown);
    QSignalSpy sounds(desk.dialog, &ModifyDialog::soundDue);
    desk.press();
    QTRY_VERIFY(desk.error()->isVisible());
    QCOMPARE(desk.error()->text(), u"Too close"_s);
    QCOMPARE(sounds.size(), 1);
    QCOMPARE(sounds.at(0).at(0).value<SoundKind>(), SoundKind::Error);
    QCOMPARE(modified.size(), 0);
    QVERIFY(desk.dialog->isVisible());
    QVERIFY(desk.modify()->isEnabled());
    QCOMPARE(unknown.size(), 0);
    desk.press();
    QVERIFY(!desk.error()->isVisible());
    QTRY_COMPARE(desk.server.heldCount(), 1);
    desk.server.release(StubAnswer::json("{}"));
    QTRY_COMPARE(modified.size(), 1);
}

void TestModifyDialog::everyRefusalStandsInTheLog()
{
    QFile::remove(logFilePath());
    Desk desk;
    desk.server.on("PUT", path, StubAnswer::message(u"Too close"_s, 400));
    desk.press();
    QTRY_VERIFY(desk.error()->isVisible());
    Desk nameless(R"({"id":".."})");
    nameless.press();
    QVERIFY(nameless.error()->isVisible());
    Desk unfinished;
    unfinished.type("modifyTakeProfit", u"."_s);
    unfinished.press();
    QVERIFY(unfinished.error()->isVisible());
    QCOMPARE(fixtures::logMessages().filter(u"[Trade]"_s),
        QStringList({u"[Trade] Too close"_s, u"[Trade] This trade has no usable id."_s,
            u"[Trade] Please enter a valid price."_s}));
}

void TestModifyDialog::aRefusalWithMarkupIsShownAsText()
{
    Desk desk;
    desk.server.on("PUT", path, StubAnswer::message(u"<img src=x>"_s, 400));
    desk.press();
    QTRY_VERIFY(desk.error()->isVisible());
    QCOMPARE(desk.error()->textFormat(), Qt::PlainText);
}

void TestModifyDialog::noRefusalPushesTheButtonsOffTheScreen_data()
{
    QTest::addColumn<QString>("reason");
    QTest::newRow("many lines") << u"no\n"_s.repeated(5000);
    QTest::newRow("many words") << u"no way "_s.repeated(50'000);
    QTest::newRow("one long word") << QString(100'000, u'x');
    QTest::newRow("blank lines") << QString(100'000, u'\n') + u"no"_s;
}

void TestModifyDialog::noRefusalPushesTheButtonsOffTheScreen()
{
    QFETCH(QString, reason);
    Desk desk;
    const QSize before = desk.dialog->size();
    desk.server.on("PUT", path, StubAnswer::message(reason, 400));
    desk.press();
    QTRY_VERIFY(desk.error()->isVisible());
    QVERIFY(desk.error()->text().size() <= 400);
    // The layout asks for its room in a later turn.
    QTRY_VERIFY(desk.dialog->height() >= desk.dialog->minimumSizeHint().height());
    QVERIFY2(
        desk.dialog->height() <= before.height() + 200, qPrintable(QString::number(desk.dialog->height())));
    QVERIFY2(desk.dialog->width() <= before.width() + 100, qPrintable(QString::number(desk.dialog->width())));
    QVERIFY(desk.dialog->rect().contains(desk.modify()->geometry()));
}

void TestModifyDialog::aRefusalWithoutAMessageIsShownInTheNetworksWords_data()
{
    QTest::addColumn<StubAnswer>("answer");
    QTest::newRow("an empty message") << StubAnswer::message({}, 400);
    QTest::newRow("a page") << StubAnswer::html("<h1>message</h1>", 400);
    QTest::newRow("a message that is no text") << StubAnswer::json(R"({"message":{}})", 400);
    QTest::newRow("a page in place of the server") << StubAnswer::html("<h1>message</h1>", 502);
}

void TestModifyDialog::aRefusalWithoutAMessageIsShownInTheNetworksWords()
{
    QFETCH(StubAnswer, answer);
    Desk desk;
    desk.server.on("PUT", path, answer);
    QSignalSpy sounds(desk.dialog, &ModifyDialog::soundDue);
    desk.press();
    QTRY_VERIFY(desk.error()->isVisible());
    QVERIFY2(desk.error()->text().startsWith(u"Error transferring "_s), qPrintable(desk.error()->text()));
    QVERIFY(!desk.error()->text().contains(u"<h1>"_s));
    QCOMPARE(sounds.size(), 1);
    QCOMPARE(sounds.at(0).at(0).value<SoundKind>(), SoundKind::Error);
}

void TestModifyDialog::twoPressesSendOnce()
{
    Desk desk;
    desk.server.on("PUT", path, StubAnswer::held());
    desk.press();
    QVERIFY(!desk.modify()->isEnabled());
    desk.press();
    QTest::keyClick(desk.edit("modifyTakeProfit"), Qt::Key_Return);
    QTRY_COMPARE(desk.server.heldCount(), 1);
    desk.server.release(StubAnswer::message(u"No"_s, 400));
    QTRY_VERIFY(desk.error()->isVisible());
    QCOMPARE(desk.server.count("PUT", path), 1);
}

void TestModifyDialog::enterThatIsHeldSendsOnce()
{
    Desk desk;
    desk.server.on("PUT", path, StubAnswer::message(u"Too close"_s, 400));
    QVERIFY(hands::arriveAt(desk.dialog));
    hands::press(Qt::Key_Return);
    QTRY_VERIFY(desk.error()->isVisible());
    for (QWidget* place :
        {static_cast<QWidget*>(desk.edit("modifyStopLoss")), static_cast<QWidget*>(desk.modify())}) {
        place->setFocus();
        hands::hold(Qt::Key_Return);
        hands::hold(Qt::Key_Enter);
    }
    QVERIFY(desk.modify()->isEnabled());
    QCOMPARE(desk.server.count("PUT", path), 1);
    hands::press(Qt::Key_Return);
    QTRY_COMPARE(desk.server.count("PUT", path), 2);
}

void TestModifyDialog::enterOnCancelSendsNothing()
{
    Desk desk;
    QVERIFY(hands::arriveAt(desk.dialog));
    for (int i = 0; i < 2; ++i)
        hands::press(Qt::Key_Tab);
    QCOMPARE(hands::focused(), u"Cancel"_s);
    hands::press(Qt::Key_Return);
    QTRY_VERIFY(!desk.dialog);
    QCOMPARE(desk.server.requests().size(), 0);
}

void TestModifyDialog::cancelSendsNothing()
{
    Desk desk;
    QSignalSpy rejected(desk.dialog, &QDialog::rejected);
    for (QPushButton* button : desk.dialog->findChildren<QPushButton*>()) {
        if (button->text() == u"Cancel"_s) {
            QVERIFY(!button->autoDefault());
            QTest::mouseClick(button, Qt::LeftButton);
        }
    }
    QTRY_VERIFY(!desk.dialog);
    QCOMPARE(rejected.size(), 1);
    QCOMPARE(desk.server.requests().size(), 0);
}

void TestModifyDialog::anUncertainOutcomeIsAskedFor_data()
{
    QTest::addColumn<StubAnswer>("answer");
    QTest::newRow("connection closed") << StubAnswer::closed();
    QTest::newRow("server error") << StubAnswer::html("<h1>Bad</h1>", 502);
    QTest::newRow("no answer in time") << StubAnswer::held();
    QTest::newRow("cut within the answer")
        << StubAnswer::raw("HTTP/1.1 200 OK\r\nContent-Length: 90\r\n\r\n{");
}

void TestModifyDialog::anUncertainOutcomeIsAskedFor()
{
    QFETCH(StubAnswer, answer);
    Desk desk;
    desk.server.on("PUT", path, answer);
    QSignalSpy modified(desk.dialog, &ModifyDialog::modified);
    QSignalSpy unknown(desk.dialog, &ModifyDialog::outcomeUnknown);
    QSignalSpy sounds(desk.dialog, &ModifyDialog::soundDue);
    desk.press();
    if (answer.how == StubAnswer::How::Hold) {
        QTRY_COMPARE(desk.server.heldCount(), 1);
        desk.api.findChild<QNetworkReply*>()->abort(); // as the time-out does
    }
    QTRY_COMPARE(unknown.size(), 1);
    QVERIFY(desk.error()->isVisible());
    QVERIFY(!desk.error()->text().isEmpty());
    QVERIFY(desk.modify()->isEnabled());
    QCOMPARE(sounds.size(), 1);
    QCOMPARE(sounds.at(0).at(0).value<SoundKind>(), SoundKind::Error);
    QCOMPARE(modified.size(), 0);
    QCOMPARE(desk.server.count("PUT", path), 1);
}

void TestModifyDialog::closedWhileSendingItComesBackWithARefusal()
{
    Desk desk;
    desk.server.on("PUT", path, StubAnswer::held());
    desk.press();
    QTRY_COMPARE(desk.server.heldCount(), 1);
    desk.dialog->close();
    QVERIFY(!desk.dialog->isVisible());
    QLineEdit elsewhere;
    elsewhere.show();
    QVERIFY(hands::arriveAt(&elsewhere));
    desk.server.release(StubAnswer::message(u"No"_s, 400));
    QTRY_VERIFY(desk.dialog->isVisible());
    QVERIFY(desk.error()->isVisible());
    // What is typed for another window must change no level.
    QVERIFY(hands::arriveAt(desk.dialog));
    hands::type(u"0.5"_s);
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Space})
        hands::press(key);
    QVERIFY(desk.modify()->isEnabled());
    QCOMPARE(desk.server.count("PUT", path), 1);
    QCOMPARE(desk.edit("modifyStopLoss")->text(), QString());
    QCOMPARE(desk.edit("modifyTakeProfit")->text(), u"1.20000"_s);
    hands::press(Qt::Key_Tab);
    QCOMPARE(hands::focused(), u"modifyStopLoss"_s);
    hands::type(u"1.1"_s);
    QCOMPARE(desk.edit("modifyStopLoss")->text(), u"1.1"_s);
}

void TestModifyDialog::closedWhileSendingItReportsTheSuccess()
{
    Desk desk;
    desk.server.on("PUT", path, StubAnswer::held());
    QSignalSpy modified(desk.dialog, &ModifyDialog::modified);
    desk.press();
    QTRY_COMPARE(desk.server.heldCount(), 1);
    QTest::keyClick(desk.dialog, Qt::Key_Escape);
    QVERIFY(desk.dialog && !desk.dialog->isVisible());
    desk.server.release(StubAnswer::json("{}"));
    QTRY_COMPARE(modified.size(), 1);
    QTRY_VERIFY(!desk.dialog);
}

void TestModifyDialog::closedTwiceWhileSendingItStillTellsTheSuccess()
{
    Desk desk;
    desk.server.on("PUT", path, StubAnswer::held());
    QSignalSpy modified(desk.dialog, &ModifyDialog::modified);
    QSignalSpy sounds(desk.dialog, &ModifyDialog::soundDue);
    QSignalSpy unknown(desk.dialog, &ModifyDialog::outcomeUnknown);
    desk.press();
    QTRY_COMPARE(desk.server.heldCount(), 1);
    QTest::keyClick(desk.dialog, Qt::Key_Escape);
    desk.dialog->show(); // whoever asks for it again sees it waiting
    QVERIFY(!desk.modify()->isEnabled());
    QTest::keyClick(desk.dialog, Qt::Key_Escape);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(desk.dialog && !desk.dialog->isVisible());
    desk.server.release(StubAnswer::json("{}"));
    QTRY_VERIFY(!desk.dialog);
    QCOMPARE(modified.size(), 1);
    QCOMPARE(sounds.size(), 1);
    QCOMPARE(sounds.at(0).at(0).value<SoundKind>(), SoundKind::Open);
    QCOMPARE(unknown.size(), 0);
}

void TestModifyDialog::closedTwiceWhileSendingItStillTellsTheFailure()
{
    Desk desk;
    desk.server.on("PUT", path, StubAnswer::held());
    QSignalSpy sounds(desk.dialog, &ModifyDialog::soundDue);
    QSignalSpy unseen(desk.dialog, &ModifyDialog::failedUnseen);
    QSignalSpy unknown(desk.dialog, &ModifyDialog::outcomeUnknown);
    desk.press();
    QTRY_COMPARE(desk.server.heldCount(), 1);
    desk.dialog->close();
    desk.dialog->show();
    desk.dialog->close();
    desk.server.release(StubAnswer::message(u"Too close"_s, 400));
    QTRY_VERIFY(!desk.dialog);
    QCOMPARE(unseen, QList<QVariantList>{{u"Too close"_s}});
    QCOMPARE(sounds.size(), 1);
    QCOMPARE(sounds.at(0).at(0).value<SoundKind>(), SoundKind::Error);
    QCOMPARE(unknown.size(), 0);
}

void TestModifyDialog::destroyedWhileSendingItDoesNoHarm()
{
    Desk desk;
    desk.server.on("PUT", path, StubAnswer::held());
    desk.press();
    QTRY_COMPARE(desk.server.heldCount(), 1);
    delete desk.dialog;
    desk.server.release(StubAnswer::json("{}"));
    QTRY_COMPARE(desk.api.findChildren<QNetworkReply*>().size(), 0);
}

TAVORAN_TEST(TestModifyDialog)
#include "tst_ModifyDialog.moc"
