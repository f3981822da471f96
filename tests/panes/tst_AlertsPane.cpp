#include "app/base/TerminalSettings.h"
#include "app/ui/DecimalSpinBox.h"
#include "panes/AlertDialog.h"
#include "panes/AlertsPane.h"
#include "support/Hands.h"
#include "support/ParseJson.h"
#include "support/Records.h"
#include "support/TestMain.h"

#include <QBoxLayout>
#include <QClipboard>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFile>
#include <QFormLayout>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QSignalSpy>
#include <QTreeWidget>
#include <QtTest>

using namespace Qt::StringLiterals;
using fixtures::parse;

namespace {

/// The pane on show with the alerts that the settings hold.
struct AlertsDesk {
    AlertsPane pane{TerminalSettings::instance()};
    QSignalSpy sounds{&pane, &AlertsPane::soundWanted};
    QSignalSpy balloons{&pane, &AlertsPane::balloonWanted};

    AlertsDesk()
    {
        pane.setSymbols({u"EURUSD"_s, u"GOLD"_s});
        pane.resize(500, 200);
        pane.show();
    }
    Q_DISABLE_COPY_MOVE(AlertsDesk)

    [[nodiscard]] QTreeWidget* list() const { return pane.findChild<QTreeWidget*>(u"alertsList"_s); }
    [[nodiscard]] QStringList rows() const
    {
        QStringList texts;
        for (int i = 0; i < list()->topLevelItemCount(); ++i) {
            QStringList cells;
            for (int column = 0; column < 4; ++column)
                cells.append(list()->topLevelItem(i)->text(column));
            texts.append(cells.join(u'|'));
        }
        return texts;
    }
    void click(const QString& text) const
    {
        for (QPushButton* button : pane.findChildren<QPushButton*>()) {
            if (button->text() == text)
                return QTest::mouseClick(button, Qt::LeftButton);
        }
        QFAIL(qPrintable(text));
    }
    [[nodiscard]] QPointer<AlertDialog> ask() const
    {
        click(u"Add Alert"_s);
        return pane.findChild<AlertDialog*>();
    }
};

void typePrice(AlertDialog& dialog, const QString& text)
{
    auto* price = dialog.findChild<DecimalSpinBox*>();
    price->selectAll();
    QTest::keyClicks(price, text);
}

void press(AlertDialog& dialog, QDialogButtonBox::StandardButton button)
{
    QTest::mouseClick(dialog.findChild<QDialogButtonBox*>()->button(button), Qt::LeftButton);
}

QString stored()
{
    return TerminalSettings::instance().alerts();
}

} // namespace

class TestAlertsPane final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany)); }
    void init() { TerminalSettings::instance().setAlerts({}); }

    void looksAsATraderKnowsIt()
    {
        const AlertsDesk desk;
        QStringList headers;
        for (int column = 0; column < desk.list()->columnCount(); ++column)
            headers.append(desk.list()->headerItem()->text(column));
        QCOMPARE(headers, QStringList({u"Symbol"_s, u"Condition"_s, u"Price"_s, u"Status"_s}));
        for (int column = 0; column < 3; ++column)
            QCOMPARE(desk.list()->columnWidth(column), 90);
        QVERIFY(!desk.list()->rootIsDecorated());
        QCOMPARE(desk.pane.layout()->contentsMargins(), QMargins());
        QCOMPARE(desk.pane.layout()->spacing(), 0);
        const auto* column = qobject_cast<QBoxLayout*>(desk.pane.layout());
        QVERIFY(column && column->direction() == QBoxLayout::TopToBottom);
        QCOMPARE(column->itemAt(0)->widget(), desk.list());
        QCOMPARE(column->stretch(0), 1);
        const QLayout* row = column->itemAt(1)->layout();
        QCOMPARE(row->contentsMargins(), QMargins(4, 4, 4, 4));
        QCOMPARE(row->count(), 3);
        QCOMPARE(qobject_cast<QPushButton*>(row->itemAt(0)->widget())->text(), u"Add Alert"_s);
        QCOMPARE(qobject_cast<QPushButton*>(row->itemAt(1)->widget())->text(), u"Delete"_s);
        QVERIFY(row->itemAt(2)->expandingDirections().testFlag(Qt::Horizontal));
        QCOMPARE(desk.rows(), QStringList());
    }

    void savedAlertsAreShown()
    {
        TerminalSettings::instance().setAlerts(
            uR"([{"symbol":"EURUSD","above":true,"price":1.1},{"symbol":"GOLD","price":1900.5,"triggered":true}])"_s);
        const AlertsDesk desk;
        QCOMPARE(desk.rows(),
            QStringList({u"EURUSD|Bid ≥|1.10000|Active"_s, u"GOLD|Bid ≤|1900.50000|Triggered"_s}));
        QCOMPARE(desk.list()->topLevelItem(0)->foreground(3).color(), QColor(u"#26d367"_s));
        QCOMPARE(desk.list()->topLevelItem(1)->foreground(3).color(), QColor(u"#8a8a8a"_s));
    }

    void theDialogOffersSymbolsConditionsAndAPrice()
    {
        const AlertsDesk desk;
        const QPointer<AlertDialog> dialog = desk.ask();
        QVERIFY(dialog && dialog->isModal());
        QCOMPARE(dialog->windowTitle(), u"New Alert"_s);
        const auto* symbols = dialog->findChild<QComboBox*>(u"alertSymbol"_s);
        QCOMPARE(symbols->count(), 2);
        QCOMPARE(symbols->itemText(0), u"EURUSD"_s);
        QCOMPARE(symbols->itemText(1), u"GOLD"_s);
        const auto* condition = dialog->findChild<QComboBox*>(u"alertCondition"_s);
        QCOMPARE(condition->count(), 2);
        QCOMPARE(condition->itemText(0), u"Bid ≥"_s);
        QCOMPARE(condition->itemText(1), u"Bid ≤"_s);
        auto* price = dialog->findChild<DecimalSpinBox*>();
        QCOMPARE(price->minimum(), 0.0);
        QCOMPARE(price->maximum(), 1e9);
        QCOMPARE(price->decimals(), 5);
        const auto* form = qobject_cast<QFormLayout*>(dialog->layout());
        QVERIFY(form);
        const auto label = [form](int row) {
            return form->itemAt(row, QFormLayout::LabelRole)->widget()->property("text");
        };
        const auto field = [form](int row) { return form->itemAt(row, QFormLayout::FieldRole)->widget(); };
        QCOMPARE(label(0), u"Symbol:"_s);
        QCOMPARE(field(0), symbols);
        QCOMPARE(label(1), u"Condition:"_s);
        QCOMPARE(field(1), condition);
        QCOMPARE(label(2), u"Price:"_s);
        QCOMPARE(field(2), price);
    }

    void addingAppendsAndSaves()
    {
        const AlertsDesk desk;
        const QPointer<AlertDialog> dialog = desk.ask();
        QTest::keyClick(dialog->findChild<QComboBox*>(u"alertSymbol"_s), Qt::Key_Down);
        QTest::keyClick(dialog->findChild<QComboBox*>(u"alertCondition"_s), Qt::Key_Down);
        typePrice(*dialog, u"1900.12345"_s);
        press(*dialog, QDialogButtonBox::Ok);
        QCOMPARE(desk.rows(), QStringList({u"GOLD|Bid ≤|1900.12345|Active"_s}));
        QCOMPARE(stored(), uR"([{"above":false,"price":1900.12345,"symbol":"GOLD","triggered":false}])"_s);
        QTRY_VERIFY(!dialog);
    }

    void aNewAlertGoesToTheEnd()
    {
        TerminalSettings::instance().setAlerts(uR"([{"symbol":"GOLD","price":1}])"_s);
        const AlertsDesk desk;
        const QPointer<AlertDialog> dialog = desk.ask();
        typePrice(*dialog, u"2"_s);
        press(*dialog, QDialogButtonBox::Ok);
        QCOMPARE(
            desk.rows(), QStringList({u"GOLD|Bid ≤|1.00000|Active"_s, u"EURUSD|Bid ≥|2.00000|Active"_s}));
    }

    void aTypedCommaIsAPoint()
    {
        const AlertsDesk desk;
        const QPointer<AlertDialog> dialog = desk.ask();
        typePrice(*dialog, u"1,25"_s);
        press(*dialog, QDialogButtonBox::Ok);
        QCOMPARE(desk.rows(), QStringList({u"EURUSD|Bid ≥|1.25000|Active"_s}));
    }

    void theKeyboardAloneAddsAnAlert()
    {
        const AlertsDesk desk;
        const QPointer<AlertDialog> dialog = desk.ask();
        QVERIFY(hands::arriveAt(dialog));
        hands::type(u"GOLD"_s);
        hands::press(Qt::Key_Tab);
        hands::press(Qt::Key_Down);
        hands::press(Qt::Key_Tab);
        hands::type(u"1900,5"_s);
        hands::press(Qt::Key_Return);
        QCOMPARE(desk.rows(), QStringList({u"GOLD|Bid ≤|1900.50000|Active"_s}));
        QTRY_VERIFY(!dialog);
    }

    void tabGoesDownTheFieldsToTheButtons()
    {
        const AlertsDesk desk;
        const QPointer<AlertDialog> dialog = desk.ask();
        const auto* buttons = dialog->findChild<QDialogButtonBox*>();
        QVERIFY(hands::arriveAt(dialog));
        QCOMPARE(hands::tabOrder(),
            QStringList({u"alertSymbol"_s, u"alertCondition"_s, u"alertPrice"_s,
                buttons->button(QDialogButtonBox::Ok)->text(),
                buttons->button(QDialogButtonBox::Cancel)->text()}));
    }

    void whiteSpaceAroundAPriceIsNoPartOfIt_data()
    {
        QTest::addColumn<QString>("way");
        for (const char* way : {"paste", "drop", "set", "type"})
            QTest::newRow(way) << QString::fromLatin1(way);
    }
    void whiteSpaceAroundAPriceIsNoPartOfIt()
    {
        QFETCH(QString, way);
        const QString text = way == u"type"_s ? u" 1900.5  "_s : u"\n 1900.5\t\u00a0"_s;
        const AlertsDesk desk;
        const QPointer<AlertDialog> dialog = desk.ask();
        auto* price = dialog->findChild<DecimalSpinBox*>();
        auto* edit = price->findChild<QLineEdit*>();
        price->selectAll();
        QGuiApplication::clipboard()->setText(text);
        if (way == u"paste"_s)
            edit->paste();
        else if (way == u"drop"_s)
            hands::drop(*edit, text);
        else if (way == u"set"_s)
            edit->setText(text);
        else
            QTest::keyClicks(price, text);
        press(*dialog, QDialogButtonBox::Ok);
        QCOMPARE(desk.rows(), QStringList({u"EURUSD|Bid ≥|1900.50000|Active"_s}));
    }

    void theWheelChangesNothingThatHasNotTheFocus()
    {
        const AlertsDesk desk;
        const QPointer<AlertDialog> dialog = desk.ask();
        auto* symbol = dialog->findChild<QComboBox*>(u"alertSymbol"_s);
        auto* condition = dialog->findChild<QComboBox*>(u"alertCondition"_s);
        auto* price = dialog->findChild<DecimalSpinBox*>();
        QVERIFY(hands::arriveAt(dialog));
        const auto turnAllBut = [&](const QWidget* focused) {
            for (QWidget* field : std::initializer_list<QWidget*>{symbol, condition, price}) {
                if (field != focused) {
                    hands::turnWheel(*field, 120);
                    hands::turnWheel(*field, -120);
                    hands::turnWheel(*field, -120);
                }
            }
        };
        price->setValue(1.5);
        symbol->setFocus();
        turnAllBut(symbol);
        QCOMPARE(condition->currentIndex(), 0);
        QCOMPARE(price->value(), 1.5);
        price->setFocus();
        turnAllBut(price);
        QCOMPARE(symbol->currentIndex(), 0);
        QVERIFY(price->hasFocus());
        hands::turnWheel(*price, 120);
        QCOMPARE(price->value(), 2.5);
    }

    void cancellingAddsNothing()
    {
        const AlertsDesk desk;
        const QPointer<AlertDialog> dialog = desk.ask();
        typePrice(*dialog, u"1.25"_s);
        press(*dialog, QDialogButtonBox::Cancel);
        QTRY_VERIFY(!dialog);
        QCOMPARE(desk.rows(), QStringList());
        QCOMPARE(stored(), QString());
    }

    void aPriceOfZeroIsRefusedSilently()
    {
        const AlertsDesk desk;
        const QPointer<AlertDialog> dialog = desk.ask();
        press(*dialog, QDialogButtonBox::Ok);
        QTRY_VERIFY(!dialog);
        QVERIFY(!QApplication::activeModalWidget());
        QCOMPARE(desk.rows(), QStringList());
        QCOMPARE(stored(), QString());
    }

    void withoutSymbolsNothingIsAdded()
    {
        AlertsDesk desk;
        desk.pane.setSymbols({});
        const QPointer<AlertDialog> dialog = desk.ask();
        typePrice(*dialog, u"1.25"_s);
        press(*dialog, QDialogButtonBox::Ok);
        QTRY_VERIFY(!dialog);
        QCOMPARE(desk.rows(), QStringList());
    }

    void deletingRemovesTheCurrentRow()
    {
        TerminalSettings::instance().setAlerts(
            uR"([{"symbol":"A","price":1},{"symbol":"B","price":1},{"symbol":"C","price":1}])"_s);
        const AlertsDesk desk;
        const QPoint second = desk.list()->visualItemRect(desk.list()->topLevelItem(1)).center();
        QTest::mouseClick(desk.list()->viewport(), Qt::LeftButton, {}, second);
        desk.click(u"Delete"_s);
        QCOMPARE(desk.rows(), QStringList({u"A|Bid ≤|1.00000|Active"_s, u"C|Bid ≤|1.00000|Active"_s}));
        QVERIFY(!stored().contains(u"\"B\""_s));
        desk.click(u"Delete"_s);
        QCOMPARE(desk.rows(), QStringList({u"A|Bid ≤|1.00000|Active"_s}));
    }

    void deletingTheLastRowGoesOnWithTheOneBefore()
    {
        TerminalSettings::instance().setAlerts(
            uR"([{"symbol":"A","price":1},{"symbol":"B","price":1},{"symbol":"C","price":1}])"_s);
        const AlertsDesk desk;
        desk.list()->setCurrentItem(desk.list()->topLevelItem(2));
        desk.click(u"Delete"_s);
        desk.click(u"Delete"_s);
        QCOMPARE(desk.rows(), QStringList({u"A|Bid ≤|1.00000|Active"_s}));
        desk.click(u"Delete"_s);
        QCOMPARE(desk.rows(), QStringList());
        QCOMPARE(stored(), u"[]"_s);
    }

    void deletingWithoutARowChangesNothing()
    {
        TerminalSettings::instance().setAlerts(uR"([{"symbol":"A","price":1}])"_s);
        const AlertsDesk desk;
        desk.list()->setCurrentItem(nullptr);
        desk.click(u"Delete"_s);
        QCOMPARE(desk.rows(), QStringList({u"A|Bid ≤|1.00000|Active"_s}));
        QCOMPARE(stored(), uR"([{"above":false,"price":1,"symbol":"A","triggered":false}])"_s);
    }

    void firingSoundsShowsAndSaves_data()
    {
        QTest::addColumn<bool>("above");
        QTest::addColumn<QByteArray>("prices");
        QTest::addColumn<QString>("text");
        QTest::newRow("above") << true << QByteArray(R"({"EURUSD":{"bid":"1.23450"}})")
                               << u"EURUSD ≥ 1.20000 (now 1.23450)"_s;
        QTest::newRow("below") << false << QByteArray(R"({"EURUSD":{"bid":1.2}})")
                               << u"EURUSD ≤ 1.20000 (now 1.20000)"_s;
    }
    void firingSoundsShowsAndSaves()
    {
        QFETCH(bool, above);
        QFETCH(QByteArray, prices);
        QFETCH(QString, text);
        TerminalSettings::instance().setAlerts(
            u"[{\"symbol\":\"EURUSD\",\"price\":1.2,\"above\":%1}]"_s.arg(above ? u"true"_s : u"false"_s));
        AlertsDesk desk;
        desk.pane.onPrices(parse(prices));
        QCOMPARE(desk.sounds.size(), 1);
        QCOMPARE(desk.sounds.at(0).at(0).value<SoundKind>(), SoundKind::Fill);
        QCOMPARE(desk.balloons.size(), 1);
        QCOMPARE(desk.balloons.at(0).at(0).value<Balloon>(),
            (Balloon{u"Price Alert — EURUSD"_s, text, Balloon::Kind::Information, 12000}));
        QVERIFY(desk.rows().first().endsWith(u"|Triggered"_s));
        QVERIFY(stored().contains(u"\"triggered\":true"_s));
        desk.pane.onPrices(parse(prices));
        QCOMPARE(desk.sounds.size(), 1);
    }

    void twoAtOnceBothTell()
    {
        TerminalSettings::instance().setAlerts(
            uR"([{"symbol":"EURUSD","price":1,"above":true},{"symbol":"EURUSD","price":2}])"_s);
        AlertsDesk desk;
        desk.pane.onPrices(records::prices({{"EURUSD", 1.5}}));
        QCOMPARE(desk.sounds.size(), 2);
        QCOMPARE(desk.sounds.at(1).at(0).value<SoundKind>(), SoundKind::Fill);
        QCOMPARE(desk.balloons.size(), 2);
        QCOMPARE(desk.balloons.at(0).at(0).value<Balloon>().text, u"EURUSD ≥ 1.00000 (now 1.50000)"_s);
        QCOMPARE(desk.balloons.at(1).at(0).value<Balloon>().text, u"EURUSD ≤ 2.00000 (now 1.50000)"_s);
    }

    void howeverManyFireTheListIsSavedAndFilledOnce()
    {
        const QString before
            = uR"([{"symbol":"EURUSD","price":1,"above":true},{"symbol":"EURUSD","price":2}])"_s;
        TerminalSettings::instance().setAlerts(before);
        AlertsDesk desk;
        QStringList storedMeanwhile;
        connect(&desk.pane, &AlertsPane::balloonWanted, this, [&] { storedMeanwhile.append(stored()); });
        const QSignalSpy fills(desk.list()->model(), &QAbstractItemModel::modelReset);
        desk.pane.onPrices(records::prices({{"EURUSD", 1.5}}));
        QCOMPARE(storedMeanwhile, QStringList({before, before}));
        QCOMPARE(stored().count(u"\"triggered\":true"_s), 2);
        QCOMPARE(fills.size(), 1);
        QCOMPARE(desk.rows().filter(u"|Triggered"_s).size(), 2);
    }

    void firingIsSavedBeforeTheNextSnapshot()
    {
        // Asked for beforehand: Qt writes what is waiting when another settings object goes.
        QFile onDisk(SettingsStore::userFilePath());
        TerminalSettings::instance().setAlerts(uR"([{"symbol":"EURUSD","price":1,"above":true}])"_s);
        AlertsDesk desk;
        desk.pane.onPrices(records::prices({{"EURUSD", 1.5}}));
        // What a run finds that starts after this one was killed here. No second settings object is asked:
        // those of one process share what is not written yet.
        QVERIFY(onDisk.open(QIODevice::ReadOnly));
        QVERIFY(onDisk.readAll().contains(R"(\"triggered\":true)"));
    }

    void firingKeepsTheSelection()
    {
        TerminalSettings::instance().setAlerts(
            uR"([{"symbol":"EURUSD","price":1,"above":true},{"symbol":"GOLD","price":2}])"_s);
        AlertsDesk desk;
        desk.list()->setCurrentItem(desk.list()->topLevelItem(1));
        desk.pane.onPrices(records::prices({{"EURUSD", 1.5}}));
        QCOMPARE(desk.list()->indexOfTopLevelItem(desk.list()->currentItem()), 1);
    }

    void firing_keeps_all_that_is_selected()
    {
        TerminalSettings::instance().setAlerts(
            uR"([{"symbol":"EURUSD","price":1,"above":true},{"symbol":"GOLD","price":2},{"symbol":"OIL","price":3}])"_s);
        AlertsDesk desk;
        desk.list()->selectAll();
        desk.list()->topLevelItem(1)->setSelected(false);
        desk.pane.onPrices(records::prices({{"EURUSD", 1.5}}));
        QVERIFY(desk.list()->topLevelItem(0)->isSelected());
        QVERIFY(!desk.list()->topLevelItem(1)->isSelected());
        QVERIFY(desk.list()->topLevelItem(2)->isSelected());
    }

    void the_delete_key_deletes_the_row_that_the_keyboard_has_come_to_where_none_is_selected()
    {
        TerminalSettings::instance().setAlerts(uR"([{"symbol":"A","price":1},{"symbol":"B","price":2}])"_s);
        const AlertsDesk desk;
        desk.pane.window()->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(desk.pane.window()));
        desk.list()->setFocus();
        desk.list()->setCurrentItem(desk.list()->topLevelItem(1), 0, QItemSelectionModel::Clear);
        hands::press(Qt::Key_Delete);
        QCOMPARE(desk.rows().size(), 1);
        QVERIFY(desk.rows().constFirst().startsWith(u'A'));
    }

    void the_delete_key_deletes_what_is_selected()
    {
        TerminalSettings::instance().setAlerts(
            uR"([{"symbol":"A","price":1},{"symbol":"B","price":2},{"symbol":"C","price":3},{"symbol":"D","price":4}])"_s);
        const AlertsDesk desk;
        desk.pane.window()->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(desk.pane.window()));
        desk.list()->setFocus();
        const auto symbols = [&desk] {
            QStringList all;
            for (const QString& row : desk.rows())
                all.append(row.section(u'|', 0, 0));
            return all;
        };
        desk.list()->setCurrentItem(nullptr);
        hands::press(Qt::Key_Delete);
        QCOMPARE(symbols(), QStringList({u"A"_s, u"B"_s, u"C"_s, u"D"_s}));
        desk.list()->setCurrentItem(desk.list()->topLevelItem(0));
        QTest::keyClick(desk.list(), Qt::Key_Down, Qt::ShiftModifier);
        hands::press(Qt::Key_Delete);
        QCOMPARE(symbols(), QStringList({u"C"_s, u"D"_s}));
        QVERIFY(!stored().contains(u"\"A\""_s));
        // The next one is selected, but goes only with another press.
        QCOMPARE(desk.list()->selectedItems(), QList<QTreeWidgetItem*>{desk.list()->topLevelItem(0)});
        hands::hold(Qt::Key_Delete);
        QCOMPARE(symbols(), QStringList({u"C"_s, u"D"_s}));
        hands::press(Qt::Key_Delete);
        hands::press(Qt::Key_Delete);
        hands::press(Qt::Key_Delete);
        QCOMPARE(symbols(), QStringList());
    }

    void the_delete_button_deletes_the_current_alert_whatever_is_selected()
    {
        TerminalSettings::instance().setAlerts(
            uR"([{"symbol":"A","price":1},{"symbol":"B","price":2},{"symbol":"C","price":3}])"_s);
        const AlertsDesk desk;
        desk.list()->setCurrentItem(desk.list()->topLevelItem(1));
        desk.list()->selectAll();
        desk.click(u"Delete"_s);
        QCOMPARE(desk.rows().size(), 2);
        QVERIFY(!stored().contains(u"\"B\""_s));
    }

    void aTriggeredAlertStaysQuietAfterARestart()
    {
        TerminalSettings::instance().setAlerts(
            uR"([{"symbol":"EURUSD","price":1,"above":true,"triggered":true}])"_s);
        AlertsDesk desk;
        desk.pane.onPrices(records::prices({{"EURUSD", 1.5}}));
        QCOMPARE(desk.sounds.size(), 0);
        QCOMPARE(desk.balloons.size(), 0);
        QCOMPARE(desk.rows(), QStringList({u"EURUSD|Bid ≥|1.00000|Triggered"_s}));
    }

    void corruptSettingsGiveNoAlertsAndAreReplaced()
    {
        TerminalSettings::instance().setAlerts(u"{broken"_s);
        const AlertsDesk desk;
        QCOMPARE(desk.rows(), QStringList());
        const QPointer<AlertDialog> dialog = desk.ask();
        typePrice(*dialog, u"2"_s);
        press(*dialog, QDialogButtonBox::Ok);
        QCOMPARE(stored(), uR"([{"above":true,"price":2,"symbol":"EURUSD","triggered":false}])"_s);
    }

    void pricesOfOthersLeaveTheSettingsAlone()
    {
        TerminalSettings::instance().setAlerts(uR"([ {"symbol":"EURUSD","price":1,"above":true} ])"_s);
        AlertsDesk desk;
        desk.pane.onPrices(records::prices({{"GOLD", 1900}, {"EURUSD", 0}}));
        QCOMPARE(stored(), uR"([ {"symbol":"EURUSD","price":1,"above":true} ])"_s);
        QCOMPARE(desk.sounds.size(), 0);
    }

    void whatIsNoPriceFiresNothing()
    {
        TerminalSettings::instance().setAlerts(
            uR"([{"symbol":"EURUSD","price":1},{"symbol":"EURUSD","price":2,"above":true}])"_s);
        AlertsDesk desk;
        for (const QByteArray bid : {"1e-300", "\"1e-9\"", "0.0000049", "1e12", "1e300", "-1e-300", "-5"})
            desk.pane.onPrices(parse("{\"EURUSD\":{\"bid\":" + bid + "}}"));
        QCOMPARE(desk.sounds.size(), 0);
        desk.pane.onPrices(records::prices({{"EURUSD", 0.00001}}));
        QCOMPARE(desk.sounds.size(), 1);
        desk.pane.onPrices(records::prices({{"EURUSD", 999999999999.0}}));
        QCOMPARE(desk.sounds.size(), 2);
    }

    void symbolTextIsOneLine()
    {
        TerminalSettings::instance().setAlerts(uR"([{"symbol":"A\nB %1","price":1,"above":true}])"_s);
        AlertsDesk desk;
        QVERIFY(desk.rows().first().startsWith(u"A B %1|"_s));
        desk.pane.onPrices(QJsonObject{{u"A\nB %1"_s, QJsonObject{{u"bid"_s, 2.0}}}});
        QCOMPARE(desk.balloons.at(0).at(0).value<Balloon>().text, u"A B %1 ≥ 1.00000 (now 2.00000)"_s);
        QCOMPARE(desk.balloons.at(0).at(0).value<Balloon>().title, u"Price Alert — A B %1"_s);
    }

    void oneOfTenThousandFires()
    {
        constexpr int count = 10000;
        QStringList alerts;
        for (int i = 0; i < count; ++i)
            alerts.append(uR"({"symbol":"S%1","price":%2,"above":true})"_s.arg(i % 500).arg(i + 2));
        TerminalSettings::instance().setAlerts(u'[' + alerts.join(u',') + u']');
        AlertsDesk desk;
        QCOMPARE(desk.list()->topLevelItemCount(), count);
        desk.pane.onPrices(records::prices({{"S7", 9.5}, {"S8", 9.5}}));
        QCOMPARE(desk.sounds.size(), 1);
        QCOMPARE(desk.rows().count(u"S7|Bid ≥|9.00000|Triggered"_s), 1);
        QCOMPARE(desk.rows().filter(u"|Active"_s).size(), count - 1);
        QCOMPARE(AlertBook::fromJson(stored()).alerts().size(), count);
    }
};

TAVORAN_TEST(TestAlertsPane)
#include "tst_AlertsPane.moc"
