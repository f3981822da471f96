#include "ModifyDeskFixture.h"
#include "support/TestMain.h"

#include <QBoxLayout>
#include <QFormLayout>

using namespace Qt::StringLiterals;
using fixtures::modifiedOrder;
using fixtures::ModifyDesk;
using fixtures::modifyPath;

namespace {

/// "Label=name of the field" of each row of the form, from the top.
QStringList formRows(const ModifyDesk& desk)
{
    QStringList rows;
    const auto* form = desk.dialog->findChild<QFormLayout*>();
    for (int row = 0; form && row < form->rowCount(); ++row) {
        QWidget* field = form->itemAt(row, QFormLayout::FieldRole)->widget();
        rows.append(qobject_cast<QLabel*>(form->labelForField(field))->text() + u'=' + field->objectName());
    }
    return rows;
}

} // namespace

class TestModifyDialog final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany)); }

    void aPositionShowsItsLevelsAndNoPrice()
    {
        const ModifyDesk desk;
        QCOMPARE(desk.dialog->windowTitle(), u"Modify Order"_s);
        QVERIFY(!desk.dialog->windowIcon().isNull());
        QCOMPARE(desk.dialog->minimumWidth(), 340);
        const auto* header = desk.header();
        QCOMPARE(header->text(), u"EURUSD buy 0.10"_s);
        QCOMPARE(header->styleSheet(), u"font-weight:bold;"_s);
        QCOMPARE(desk.edit("modifyStopLoss")->text(), QString());
        QCOMPARE(desk.edit("modifyStopLoss")->placeholderText(), u"none"_s);
        QCOMPARE(desk.edit("modifyTakeProfit")->text(), u"1.20000"_s);
        QVERIFY(!desk.edit("modifyPrice"));
        QCOMPARE(formRows(desk),
            QStringList({u"Stop Loss:=modifyStopLoss"_s, u"Take Profit:=modifyTakeProfit"_s}));
        QVERIFY(desk.modify()->isDefault());
        QVERIFY(!desk.error()->isVisible());
        QCOMPARE(desk.error()->styleSheet(), u"color:#ff6b6b;"_s);
        QVERIFY(desk.error()->wordWrap());
    }

    void aPendingOrderShowsItsPriceToo()
    {
        const ModifyDesk desk(modifiedOrder(), 3);
        QCOMPARE(desk.edit("modifyPrice")->text(), u"1.100"_s);
        QCOMPARE(desk.edit("modifyStopLoss")->text(), u"1.150"_s);
        QCOMPARE(desk.edit("modifyTakeProfit")->text(), QString());
        QCOMPARE(formRows(desk),
            QStringList({u"Price:=modifyPrice"_s, u"Stop Loss:=modifyStopLoss"_s,
                u"Take Profit:=modifyTakeProfit"_s}));
        QCOMPARE(desk.edit("modifyPrice")->placeholderText(), u"none"_s);
        QCOMPARE(desk.edit("modifyTakeProfit")->placeholderText(), u"none"_s);
    }

    void cancelStandsBeforeModifyAtTheRight()
    {
        const ModifyDesk desk;
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

    void unsetLevelsOpenEmpty_data()
    {
        QTest::addColumn<QJsonValue>("level");
        for (const char* level : {"0", "-1.5", "\"-1.5\"", "\"0\"", "null", "true", "[1.5]", "\"\"",
                 "\"NaN\"", "\"inf\"", "\"1e400\"", "\"1,5\"", "\"none\""})
            QTest::newRow(level) << fixtures::parseValue(level);
    }
    void unsetLevelsOpenEmpty()
    {
        QFETCH(QJsonValue, level);
        ModifyDesk desk(records::pendingOrder("t-1").stopLoss(level).takeProfit(level).awaits(level));
        QCOMPARE(desk.edit("modifyStopLoss")->text(), QString());
        QCOMPARE(desk.edit("modifyTakeProfit")->text(), QString());
        QCOMPARE(desk.edit("modifyPrice")->text(), QString());
        desk.pressAndWait();
        QCOMPARE(desk.server.last("PUT", modifyPath).body, "{}"_ba);
    }

    void anUnreadableVolumeIsLeftOut_data()
    {
        QTest::addColumn<QJsonObject>("trade");
        QTest::newRow("missing") << QJsonObject(records::position("t-1").without("lotSize"));
        QTest::newRow("zero") << QJsonObject(records::position("t-1").buy(0));
        QTest::newRow("negative") << QJsonObject(records::position("t-1").buy("-1"));
        QTest::newRow("no number") << QJsonObject(records::position("t-1").buy("NaN"));
    }
    void anUnreadableVolumeIsLeftOut()
    {
        QFETCH(QJsonObject, trade);
        const ModifyDesk desk(trade);
        QCOMPARE(desk.header()->text(), u"EURUSD buy "_s);
    }

    void headerTextIsPlainAndOneLine()
    {
        const ModifyDesk desk(records::position("t-1").symbol("<b>A</b>\nB %1").without("lotSize"));
        const auto* header = desk.header();
        QCOMPARE(header->textFormat(), Qt::PlainText);
        QCOMPARE(header->text(), u"<b>A</b> B %1 buy "_s);
    }
};

TAVORAN_TEST(TestModifyDialog)
#include "tst_ModifyDialog.moc"
