#include "MarketWatchFixture.h"
#include "app/ui/Theme.h"
#include "panes/PaneIcons.h"
#include "support/PaintCounter.h"
#include "support/Records.h"
#include "support/TestMain.h"

#include <QAccessible>
#include <QScrollBar>

using namespace Qt::StringLiterals;
using fixtures::colorOf;
using fixtures::imageOf;
using fixtures::parse;
using fixtures::parseArray;
using fixtures::Watch;

class TestMarketWatchPrices final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        setTheme(false);
        applyTheme(*qApp);
    }

    // The rows hold numbers and make texts when asked: by the view, by a screen reader, by a copy of the
    // cell.
    void everyReaderOfARowSeesItsPrices()
    {
        Watch watch;
        watch.quote(1.1, 1.2);
        watch.quote(1.05, 1.3);
        QTreeWidgetItem* item = watch.row(u"EURUSD"_s);
        QCOMPARE(item->columnCount(), 4);
        const QStringList wanted{u"EURUSD"_s, u"1.05000"_s, u"1.30000"_s, u"+5.00%"_s};
        const int row = watch.list->indexOfTopLevelItem(item);
        for (int column = 0; column < 4; ++column) {
            const QModelIndex index = watch.list->model()->index(row, column);
            QCOMPARE(item->text(column), wanted.at(column));
            QCOMPARE(index.data(Qt::DisplayRole).toString(), wanted.at(column));
            QCOMPARE(index.data(Qt::EditRole).toString(), wanted.at(column));
        }
        QAccessibleInterface* list = QAccessible::queryAccessibleInterface(watch.list);
        QVERIFY(list && list->tableInterface());
        watch.list->doItemsLayout(); // the reader comes later than this turn
        for (int column = 0; column < 4; ++column) {
            QAccessibleInterface* cell = list->tableInterface()->cellAt(row, column);
            QVERIFY(cell);
            // The triangle beside the symbol is told as well.
            QCOMPARE(cell->text(QAccessible::Name), column == 0 ? u"EURUSD, falling"_s : wanted.at(column));
        }
    }

    void theFirstPriceHasNoDirection()
    {
        Watch watch;
        watch.quote(1.1, 1.2);
        const QTreeWidgetItem* row = watch.row(u"EURUSD"_s);
        QCOMPARE(row->text(1), u"1.10000"_s);
        QCOMPARE(row->text(2), u"1.20000"_s);
        QCOMPARE(colorOf(row, 1), QColor(u"#1e1e1e"_s));
        QCOMPARE(colorOf(row, 2), QColor(u"#1e1e1e"_s));
        QVERIFY(row->icon(0).isNull());
    }

    void directionsStayUntilThePriceDiffers()
    {
        Watch watch;
        const QTreeWidgetItem* row = watch.row(u"EURUSD"_s);
        watch.quote(1.1, 1.2);
        watch.quote(1.10001, 1.2);
        QCOMPARE(row->text(1), u"1.10001"_s);
        QCOMPARE(colorOf(row, 1), QColor(u"#0a63c2"_s));
        QCOMPARE(imageOf(row->icon(0)), imageOf(upArrowIcon(QColor(u"#0a63c2"_s))));
        watch.quote(1.10001, 1.2);
        QCOMPARE(colorOf(row, 1), QColor(u"#0a63c2"_s));
        watch.quote(1.1, 1.2);
        QCOMPARE(colorOf(row, 1), QColor(u"#cc2b2b"_s));
        QCOMPARE(imageOf(row->icon(0)), imageOf(downArrowIcon(QColor(u"#cc2b2b"_s))));
        watch.quote(1.1, 1.2);
        QCOMPARE(colorOf(row, 1), QColor(u"#cc2b2b"_s));
        QCOMPARE(imageOf(row->icon(0)), imageOf(downArrowIcon(QColor(u"#cc2b2b"_s))));
    }

    void bidAndAskHaveTheirOwnDirections()
    {
        Watch watch;
        const QTreeWidgetItem* row = watch.row(u"EURUSD"_s);
        watch.quote(1.1, 1.2);
        watch.quote(1.1, 1.3);
        QCOMPARE(colorOf(row, 1), QColor(u"#1e1e1e"_s));
        QCOMPARE(colorOf(row, 2), QColor(u"#0a63c2"_s));
        QVERIFY(row->icon(0).isNull());
        watch.quote(1.2, 1.25);
        QCOMPARE(colorOf(row, 1), QColor(u"#0a63c2"_s));
        QCOMPARE(colorOf(row, 2), QColor(u"#cc2b2b"_s));
    }

    void aDifferenceWithinRoundingIsNoTick()
    {
        Watch watch;
        const QTreeWidgetItem* row = watch.row(u"EURUSD"_s);
        watch.quote(1.1, 1.2);
        watch.quote(1.1000000000005, 1.2000000000005);
        QCOMPARE(colorOf(row, 1), QColor(u"#1e1e1e"_s));
        QCOMPARE(colorOf(row, 2), QColor(u"#1e1e1e"_s));
        watch.quote(1.100000000003, 1.200000000003);
        QCOMPARE(colorOf(row, 1), QColor(u"#0a63c2"_s));
        QCOMPARE(colorOf(row, 2), QColor(u"#0a63c2"_s));
    }

    void numericStringsArePrices()
    {
        Watch watch;
        const QTreeWidgetItem* row = watch.row(u"EURUSD"_s);
        watch.quote("1.1", 1.2);
        watch.quote(1.2, "1.3");
        QCOMPARE(row->text(1), u"1.20000"_s);
        QCOMPARE(row->text(2), u"1.30000"_s);
        QCOMPARE(colorOf(row, 1), QColor(u"#0a63c2"_s));
        QCOMPARE(colorOf(row, 2), QColor(u"#0a63c2"_s));
        QCOMPARE(row->text(3), u"+20.00%"_s);
    }

    void malformedPricesLeaveTheCells_data()
    {
        QTest::addColumn<QJsonValue>("price");
        for (const char* price : {"0", "-1.5", "\"\"", "\"abc\"", "\"1,5\"", "null", "[]", "{}", "true",
                 "1e308", "\"nan\"", "\"inf\"", "\"1e400\"", "1e-300", "0.0000049", "1e12", "\"1e-9\""})
            QTest::newRow(price) << fixtures::parseValue(price);
    }
    void malformedPricesLeaveTheCells()
    {
        QFETCH(QJsonValue, price);
        Watch watch;
        const QTreeWidgetItem* row = watch.row(u"EURUSD"_s);
        watch.quote(1.1, 1.2);
        watch.quote(1.2, 1.1);
        watch.quote(price, price);
        QCOMPARE(row->text(1), u"1.20000"_s);
        QCOMPARE(row->text(2), u"1.10000"_s);
        QCOMPARE(colorOf(row, 1), QColor(u"#0a63c2"_s));
        QCOMPARE(colorOf(row, 2), QColor(u"#cc2b2b"_s));
        watch.quote(price, 1.5);
        QCOMPARE(row->text(1), u"1.20000"_s);
        QCOMPARE(row->text(2), u"1.50000"_s);
    }

    void unknownSymbolsAndOtherRowsAreLeftAlone()
    {
        Watch watch;
        watch.widget.updatePrices(parse(R"({"NOPE":{"bid":1,"ask":2},"OIL":7,"GOLD":{"bid":1900.5}})"));
        QCOMPARE(watch.list->topLevelItemCount(), 3);
        QCOMPARE(watch.row(u"OIL"_s)->text(1), QString());
        QCOMPARE(watch.row(u"EURUSD"_s)->text(1), QString());
        QCOMPARE(watch.row(u"GOLD"_s)->text(1), u"1900.50"_s);
        QCOMPARE(watch.row(u"GOLD"_s)->text(2), QString());
        watch.widget.updatePrices({});
    }

    void dailyChangeHasItsSignAndColour()
    {
        Watch watch;
        const QTreeWidgetItem* row = watch.row(u"EURUSD"_s);
        watch.quote(1.0053, 1.2);
        QCOMPARE(row->text(3), u"+0.53%"_s);
        QCOMPARE(colorOf(row, 3), QColor(u"#158f43"_s));
        watch.quote(0.988, 1.2);
        QCOMPARE(row->text(3), u"-1.20%"_s);
        QCOMPARE(colorOf(row, 3), QColor(u"#cc2b2b"_s));
        watch.quote(1.0, 1.2);
        QCOMPARE(row->text(3), u"+0.00%"_s);
        QCOMPARE(colorOf(row, 3), QColor(u"#158f43"_s));
    }

    void aSymbolWithoutOpeningPriceShowsNoChange()
    {
        Watch watch(parseArray(R"([{"name":"A","dailyOpen":null},{"name":"B","dailyOpen":0},{"name":"C"},
        {"name":"D","dailyOpen":-1},{"name":"E","dailyOpen":"x"},{"name":"F","dailyOpen":1e-300},
        {"name":"G","dailyOpen":1e-15,"digits":15}])"));
        watch.widget.updatePrices(
            records::prices({{"A", 1}, {"B", 1}, {"C", 1}, {"D", 1}, {"E", 1}, {"F", 1}, {"G", 1}}));
        for (const QString& name : {u"A"_s, u"B"_s, u"C"_s, u"D"_s, u"E"_s, u"F"_s}) {
            QCOMPARE(watch.row(name)->text(1), u"1.00000"_s);
            QCOMPARE(watch.row(name)->text(3), QString());
        }
        QVERIFY(watch.row(u"G"_s)->text(3).size() < 24);
    }

    void digitsAreClampedAndDefaultToFive()
    {
        Watch watch(
            parseArray(R"([{"name":"A","digits":-3},{"name":"B","digits":1000},{"name":"C","digits":"2"},
        {"name":"D","digits":0},{"name":"E","digits":2.5},{"name":"F"},{"name":"G","digits":10}])"));
        watch.widget.updatePrices(records::prices(
            {{"G", "0.0000000123"}, {"A", 7}, {"B", 7}, {"C", 7}, {"D", 7}, {"E", 7}, {"F", 7}}));
        QCOMPARE(watch.row(u"A"_s)->text(1), u"7"_s);
        QCOMPARE(watch.row(u"B"_s)->text(1), u"7.000000000000000"_s);
        QCOMPARE(watch.row(u"C"_s)->text(1), u"7.00000"_s);
        QCOMPARE(watch.row(u"D"_s)->text(1), u"7"_s);
        QCOMPARE(watch.row(u"E"_s)->text(1), u"7.00000"_s);
        QCOMPARE(watch.row(u"F"_s)->text(1), u"7.00000"_s);
        QCOMPARE(watch.row(u"G"_s)->text(1), u"0.0000000123"_s);
    }

    void anUnchangedSnapshotPaintsNothing()
    {
        Watch watch;
        QVERIFY(QTest::qWaitForWindowExposed(&watch.widget));
        watch.quote(1.1, 1.2);
        QCoreApplication::processEvents();
        const PaintCounter paints(*watch.list->viewport());
        watch.quote(1.1, 1.2);
        watch.quote(0, "x");
        watch.widget.updatePrices(records::prices({{"NOPE", 1, 2}}));
        QCoreApplication::processEvents();
        QCOMPARE(paints.count(), 0);
    }

    void aChangedSnapshotPaintsOnce()
    {
        Watch watch;
        QVERIFY(QTest::qWaitForWindowExposed(&watch.widget));
        QCoreApplication::processEvents();
        const PaintCounter paints(*watch.list->viewport());
        watch.widget.updatePrices(records::prices({{"EURUSD", 1, 2}, {"OIL", 1, 2}, {"GOLD", 1, 2}}));
        watch.quote(1.5, 2.5);
        QTRY_COMPARE(paints.count(), 1);
    }

    void prices_are_painted_in_their_rows_alone()
    {
        QJsonArray symbols;
        for (int i = 0; i < 100; ++i)
            symbols.append(records::symbol(u"S%1"_s.arg(i, 2, 10, QLatin1Char('0'))));
        Watch watch(symbols);
        QVERIFY(QTest::qWaitForWindowExposed(&watch.widget));
        const auto rowOf = [&watch](const QString& name) {
            const QRect row = watch.list->visualItemRect(watch.row(name));
            return QRegion(0, row.top(), watch.list->viewport()->width(), row.height());
        };
        PaintCounter paints(*watch.list->viewport());
        QTRY_VERIFY(watch.list->verticalScrollBar()->isVisible());
        QTRY_COMPARE(paints.taken(), 0);
        watch.widget.updatePrices(records::prices({{"S01", 1, 2}, {"S03", 1, 2}, {"S99", 1, 2}}));
        QCOMPARE(paints.taken(), 1);
        QCOMPARE(paints.region(), rowOf(u"S01"_s) + rowOf(u"S03"_s));

        watch.list->scrollToItem(watch.row(u"S50"_s), QAbstractItemView::PositionAtTop);
        QTRY_COMPARE(paints.taken(), 0);
        watch.widget.updatePrices(records::prices({{"S01", 3, 4}, {"S50", 3, 4}}));
        QCOMPARE(paints.taken(), 1);
        QCOMPARE(paints.region(), rowOf(u"S50"_s));

        watch.widget.updatePrices(records::prices({{"S01", 5, 6}, {"S99", 5, 6}}));
        QCOMPARE(paints.taken(), 0);
    }

    void a_price_right_after_the_list_is_painted_in_its_new_place()
    {
        Watch watch;
        QVERIFY(QTest::qWaitForWindowExposed(&watch.widget));
        QCoreApplication::processEvents();
        watch.widget.setSymbols({records::symbol("GOLD"), records::symbol("OIL"), records::symbol("EURUSD")});
        const PaintCounter paints(*watch.list->viewport());
        watch.quote(1, 2);
        QTRY_VERIFY(paints.count() > 0);
        QVERIFY(paints.region().contains(watch.list->visualItemRect(watch.row(u"EURUSD"_s)).center()));
    }
};

TAVORAN_TEST(TestMarketWatchPrices)
#include "tst_MarketWatchPrices.moc"
