#include "ToolboxFixture.h"
#include "net/records/Quote.h"
#include "panes/TradeCells.h"
#include "support/ParseJson.h"
#include "support/TestMain.h"

#include <QAccessible>
#include <QHeaderView>
#include <QScrollBar>

using namespace Qt::StringLiterals;
using namespace toolboxFixture;
using namespace tradeCells;
using fixtures::parse;
using fixtures::parseArray;

namespace {

QStringList headers(const QTreeWidget* list)
{
    QStringList all;
    for (int i = 0; i < list->columnCount(); ++i)
        all.append(list->headerItem()->text(i));
    return all;
}

QList<int> rightAligned(const QTreeWidgetItem* item)
{
    QList<int> columns;
    for (int i = 0; i < item->columnCount(); ++i) {
        if (item->textAlignment(i) == int(Qt::AlignRight | Qt::AlignVCenter))
            columns.append(i);
    }
    return columns;
}

} // namespace

class TestTerminalPane final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void hasItsTabsAndColumns()
    {
        const Toolbox toolbox;
        QCOMPARE(toolbox.pane.tabPosition(), QTabWidget::South);
        QVERIFY(toolbox.pane.documentMode());
        QCOMPARE(toolbox.pane.count(), 4);
        QCOMPARE(toolbox.pane.tabText(0), u"Trade"_s);
        QCOMPARE(toolbox.pane.tabText(1), u"History"_s);
        QCOMPARE(toolbox.pane.tabText(2), u"Experts"_s);
        QCOMPARE(toolbox.pane.tabText(3), u"Journal"_s);
        QCOMPARE(headers(toolbox.trades),
            (QStringList{u"Symbol"_s, u"Ticket"_s, u"Time"_s, u"Type"_s, u"Volume"_s, u"Price"_s, u"S / L"_s,
                u"T / P"_s, u"Price"_s, u"Commission"_s, u"Swap"_s, u"Profit"_s}));
        QCOMPARE(headers(toolbox.history),
            (QStringList{u"Symbol"_s, u"Ticket"_s, u"Open Time"_s, u"Type"_s, u"Volume"_s, u"Price"_s,
                u"S / L"_s, u"T / P"_s, u"Close Time"_s, u"Price"_s, u"Commission"_s, u"Swap"_s,
                u"Profit"_s}));
        QCOMPARE(headers(toolbox.journal), (QStringList{u"Time"_s, u"Source"_s, u"Message"_s}));
        QCOMPARE(headers(toolbox.experts), headers(toolbox.journal));
        for (const QTreeWidget* list : {toolbox.trades, toolbox.history, toolbox.journal, toolbox.experts}) {
            QVERIFY(!list->rootIsDecorated());
            QVERIFY(list->uniformRowHeights());
            QVERIFY(list->allColumnsShowFocus());
            QVERIFY(list->header()->stretchLastSection());
        }
        QCOMPARE(toolbox.summary->text(), u"Balance: —"_s);
    }

    void eachListIsCalledAsItsTab()
    {
        const Toolbox toolbox;
        const QList<const QTreeWidget*> lists{
            toolbox.trades, toolbox.history, toolbox.experts, toolbox.journal};
        for (int tab = 0; tab < toolbox.pane.count(); ++tab)
            QCOMPARE(lists.at(tab)->accessibleName(), toolbox.pane.tabText(tab));
    }

    void headersStandOverTheirNumbers()
    {
        const Toolbox toolbox;
        QCOMPARE(rightAligned(toolbox.trades->headerItem()), (QList<int>{4, 5, 6, 7, 8, 9, 10, 11}));
        QCOMPARE(rightAligned(toolbox.history->headerItem()), (QList<int>{4, 5, 6, 7, 9, 10, 11, 12}));
    }

    void tradesComeInTheOrderGiven()
    {
        Toolbox toolbox;
        toolbox.fill();
        QCOMPARE(toolbox.trades->topLevelItemCount(), 3);
        QCOMPARE(toolbox.cell(0, TradeTicket), u"p1-long-"_s);
        QCOMPARE(toolbox.cell(1, TradeTicket), u"p2"_s);
        QCOMPARE(toolbox.cell(2, TradeTicket), u"o1"_s);
        QCOMPARE(toolbox.cell(0, TradePrice), u"1.07000"_s);
        QCOMPARE(toolbox.cell(1, TradePrice), u"1900.00"_s);
        QCOMPARE(toolbox.cell(2, TradePrice), u"1.05000"_s);
        QCOMPARE(rightAligned(toolbox.trades->topLevelItem(0)), (QList<int>{4, 5, 6, 7, 8, 9, 10, 11}));
    }

    void aPositionIsColouredByItsProfit()
    {
        Toolbox toolbox;
        toolbox.fill();
        QCOMPARE(toolbox.cell(0, TradeProfit), u"12.50"_s);
        QCOMPARE(toolbox.color(0, TradeProfit), QColor(u"#3ba7ff"_s));
        QCOMPARE(toolbox.color(0, TradeType), QColor(u"#3ba7ff"_s));
        QCOMPARE(toolbox.cell(1, TradeProfit), u"-3.00"_s);
        QCOMPARE(toolbox.color(1, TradeProfit), QColor(u"#ff4a4a"_s));
        QCOMPARE(toolbox.color(1, TradeType), QColor(u"#ff4a4a"_s));
        toolbox.pane.setOpenRows({records::position("x")}, {}, {});
        QCOMPARE(toolbox.cell(0, TradeProfit), u"0.00"_s);
        QCOMPARE(toolbox.color(0, TradeProfit), QColor(u"#dcdcdc"_s));
    }

    void aPendingOrderIsGreyExceptItsType()
    {
        Toolbox toolbox;
        toolbox.fill();
        for (int column = 0; column < TradeColumnCount; ++column) {
            const QColor expected(column == TradeType ? u"#3ba7ff"_s : u"#8a8a8a"_s);
            QCOMPARE(toolbox.color(2, column), expected);
        }
        QCOMPARE(toolbox.cell(2, TradeProfit), QString());
        QCOMPARE(toolbox.cell(2, TradeType), u"buy limit"_s);
    }

    void rowsKeepTheWholeRecord()
    {
        Toolbox toolbox;
        toolbox.fill();
        QCOMPARE(toolbox.trades->topLevelItem(1)->data(0, Qt::UserRole).toJsonObject(),
            twoPositions.at(1).toObject());
    }

    void profitUpdatesChangeOneRow()
    {
        Toolbox toolbox;
        toolbox.fill();
        toolbox.pane.updateTradePnl(u"p1-long-id"_s, -1234.5);
        QCOMPARE(toolbox.cell(0, TradeProfit), u"-1,234.50"_s);
        QCOMPARE(toolbox.color(0, TradeProfit), QColor(u"#ff4a4a"_s));
        QCOMPARE(toolbox.cell(1, TradeProfit), u"-3.00"_s);
        toolbox.pane.updateTradePnl(u"nobody"_s, 5);
        toolbox.pane.updateTradePnl(u"p1-long-id"_s, std::nan(""));
        toolbox.pane.updateTradePnl(u"p1-long-id"_s, HUGE_VAL);
        QCOMPARE(toolbox.cell(0, TradeProfit), u"-1,234.50"_s);
    }

    void profitColoursAreFixed()
    {
        Toolbox toolbox;
        toolbox.fill();
        toolbox.pane.updateTradePnl(u"p2"_s, 0.004);
        QCOMPARE(toolbox.cell(1, TradeProfit), u"0.00"_s);
        QCOMPARE(toolbox.color(1, TradeProfit), QColor(u"#3ba7ff"_s));
        toolbox.pane.updateTradePnl(u"p2"_s, 0.0);
        QCOMPARE(toolbox.color(1, TradeProfit), QColor(u"#dcdcdc"_s));
        toolbox.pane.updateTradePnl(u"p2"_s, 1234567.891);
        QCOMPARE(toolbox.cell(1, TradeProfit), u"1,234,567.89"_s);
    }

    void currentPricesAreThoseAtWhichATradeCloses()
    {
        Toolbox toolbox;
        toolbox.fill();
        QCOMPARE(toolbox.cell(0, TradeCurrentPrice), QString());
        toolbox.pane.updateCurrentPrices(
            records::prices({{"EURUSD", "1.071", 1.072}, {"GOLD", 1901, "1901.5"}}));
        QCOMPARE(toolbox.cell(0, TradeCurrentPrice), u"1.07100"_s);
        QCOMPARE(toolbox.cell(1, TradeCurrentPrice), u"1901.50"_s);
        QCOMPARE(toolbox.cell(2, TradeCurrentPrice), u"1.07100"_s);
        QCOMPARE(toolbox.color(2, TradeCurrentPrice), QColor(u"#8a8a8a"_s));
    }

    void a_quote_is_shown_in_the_rows_of_its_symbol()
    {
        Toolbox toolbox;
        QVERIFY(toolbox.pane.tradedSymbols().isEmpty());
        toolbox.fill();
        QStringList symbols = toolbox.pane.tradedSymbols();
        symbols.sort();
        QCOMPARE(symbols, QStringList({u"EURUSD"_s, u"GOLD"_s}));
        toolbox.pane.showQuote(u"EURUSD"_s, {1.071, 1.072});
        toolbox.pane.showQuote(u"OIL"_s, {1.0, 2.0});
        QCOMPARE(toolbox.cell(0, TradeCurrentPrice), u"1.07100"_s);
        QCOMPARE(toolbox.cell(1, TradeCurrentPrice), QString());
        QCOMPARE(toolbox.cell(2, TradeCurrentPrice), u"1.07100"_s);
        toolbox.pane.showQuote(u"EURUSD"_s, {});
        QCOMPARE(toolbox.cell(0, TradeCurrentPrice), u"1.07100"_s);
    }

    void missingOrUnreadablePricesLeaveTheCell()
    {
        Toolbox toolbox;
        toolbox.fill();
        toolbox.pane.updateCurrentPrices(records::prices({{"EURUSD", 1.071, 1.072}}));
        toolbox.pane.updateCurrentPrices({});
        toolbox.pane.updateCurrentPrices(records::prices({{"GOLD", 1, 2}}));
        for (const QByteArray bad : {"{}", "5", "null", R"({"bid":"x"})", R"({"bid":1e308})",
                 R"({"bid":"nan"})", R"({"bid":1e-300})", R"({"bid":0.0000049})", R"({"bid":1e12})"})
            toolbox.pane.updateCurrentPrices(parse("{\"EURUSD\":" + bad + "}"));
        QCOMPARE(toolbox.cell(0, TradeCurrentPrice), u"1.07100"_s);
        toolbox.pane.updateCurrentPrices(records::prices({{"GOLD", 1, -37.5}}));
        QCOMPARE(toolbox.cell(1, TradeCurrentPrice), u"-37.50"_s);
    }

    void theSymbolsDecimalsSayHowSmallItsPricesAre()
    {
        Toolbox toolbox;
        toolbox.pane.setOpenRows(
            {records::position("a").symbol("SHIB"), records::position("b").symbol("OIL")}, {},
            {{u"SHIB"_s, 9}});
        toolbox.pane.updateCurrentPrices(records::prices({{"SHIB", 4e-9}, {"OIL", 4e-9}}));
        QCOMPARE(toolbox.cell(0, TradeCurrentPrice), u"0.000000004"_s);
        QCOMPARE(toolbox.cell(1, TradeCurrentPrice), QString());
    }

    void unchangedPricesAndProfitsTellNoView()
    {
        Toolbox toolbox;
        toolbox.fill();
        const QJsonObject prices = records::prices({{"EURUSD", 1.071, 1.072}});
        toolbox.pane.updateCurrentPrices(prices);
        QSignalSpy told(toolbox.trades->model(), &QAbstractItemModel::dataChanged);
        toolbox.pane.updateCurrentPrices(prices);
        toolbox.pane.updateTradePnl(u"p2"_s, -3.0);
        QCOMPARE(told.size(), 0);
        toolbox.pane.updateTradePnl(u"p2"_s, -3.5);
        QVERIFY(!told.isEmpty());
    }

    void aPriceIsPaintedAnewWhenItGrowsOldAndWhenItHoldsAgain()
    {
        Toolbox toolbox;
        toolbox.fill();
        const QJsonObject prices = records::prices({{"EURUSD", 1.1, 1.2}});
        toolbox.pane.updateCurrentPrices(prices);
        QSignalSpy told(toolbox.trades->model(), &QAbstractItemModel::dataChanged);
        toolbox.pane.markStale(u"EURUSD"_s);
        QVERIFY(!told.isEmpty());
        told.clear();
        toolbox.pane.markStale(u"EURUSD"_s);
        QCOMPARE(told.size(), 0);
        toolbox.pane.updateCurrentPrices(prices); // the same price, but of now
        QVERIFY(!told.isEmpty());
        told.clear();
        toolbox.pane.updateCurrentPrices(prices);
        QCOMPARE(told.size(), 0);
    }

    void aSecondFillLeavesNothingStale()
    {
        Toolbox toolbox;
        toolbox.fill();
        toolbox.fill();
        QCOMPARE(toolbox.trades->topLevelItemCount(), 3);
        toolbox.pane.setOpenRows({records::position("n").symbol("OIL")}, {}, {});
        QCOMPARE(toolbox.trades->topLevelItemCount(), 1);
        // These would write into rows that no longer exist.
        toolbox.pane.updateTradePnl(u"p1-long-id"_s, 99);
        toolbox.pane.updateCurrentPrices(records::prices({{"EURUSD", 1, 2}, {"GOLD", 1, 2}}));
        QCOMPARE(toolbox.cell(0, TradeProfit), u"0.00"_s);
        QCOMPARE(toolbox.cell(0, TradeCurrentPrice), QString());
        toolbox.pane.setOpenRows({}, {}, {});
        QCOMPARE(toolbox.trades->topLevelItemCount(), 0);
        toolbox.pane.updateCurrentPrices(records::prices({{"OIL", 1, 2}}));
    }

    void aRefillKeepsTheTradersPlace()
    {
        Toolbox toolbox;
        toolbox.fill();
        toolbox.trades->setCurrentItem(toolbox.trades->topLevelItem(1));
        toolbox.fill();
        QCOMPARE(toolbox.trades->currentItem(), toolbox.trades->topLevelItem(1));
        toolbox.pane.setOpenRows(manyPositions(3), {}, {}); // of another account
        QCOMPARE(toolbox.trades->currentItem(), nullptr);
    }

    void aRefillStaysScrolledWhereItWas()
    {
        Toolbox toolbox;
        QJsonArray many;
        for (int i = 0; i < 200; ++i)
            many.append(records::position(QString::number(i)));
        toolbox.pane.setHistoryRows(many, {});
        toolbox.pane.setOpenRows(many, {}, {});
        const auto scrollTo = [](QTreeWidget* list, int row) {
            list->scrollToItem(list->topLevelItem(row), QAbstractItemView::PositionAtTop);
            return list->verticalScrollBar()->value();
        };
        for (const int current : {-1, 3}) {
            toolbox.pane.setCurrentIndex(0);
            toolbox.trades->setCurrentItem(toolbox.trades->topLevelItem(current));
            const int scrolled = scrollTo(toolbox.trades, 120);
            QVERIFY(scrolled > 0);
            toolbox.pane.setOpenRows(many, {}, {});
            QCoreApplication::processEvents();
            QCOMPARE(toolbox.trades->verticalScrollBar()->value(), scrolled);
        }
        toolbox.pane.setCurrentIndex(1);
        const int scrolled = scrollTo(toolbox.history, 90);
        QVERIFY(scrolled > 0);
        toolbox.pane.setHistoryRows(many, {});
        QCoreApplication::processEvents();
        QCOMPARE(toolbox.history->verticalScrollBar()->value(), scrolled);
        // Filled anew behind another tab.
        toolbox.pane.setCurrentIndex(0);
        toolbox.pane.setHistoryRows(many, {});
        toolbox.pane.setCurrentIndex(1);
        QCoreApplication::processEvents();
        QCOMPARE(toolbox.history->verticalScrollBar()->value(), scrolled);
    }

    void timesAndProfitAreInSight()
    {
        Toolbox toolbox;
        toolbox.pane.resize(1024, 240);
        QTRY_COMPARE(toolbox.trades->header()->length(), toolbox.trades->header()->viewport()->width());
        const int time = toolbox.trades->fontMetrics().horizontalAdvance(u"2024.05.06 07:08:09"_s);
        QCOMPARE_GE(toolbox.trades->columnWidth(TradeTime), time + 8);
        QCOMPARE_GE(toolbox.history->columnWidth(HistoryOpenTime), time + 8);
        QCOMPARE_GE(toolbox.history->columnWidth(HistoryCloseTime), time + 8);
        for (const QTreeWidget* list : {toolbox.trades, toolbox.history}) {
            for (int column = 0; column < list->columnCount(); ++column)
                QVERIFY2(list->columnWidth(column)
                        >= list->header()->fontMetrics().horizontalAdvance(list->headerItem()->text(column))
                            + 12,
                    qPrintable(list->headerItem()->text(column)));
        }
    }

    void ofEqualIdsTheLastRowGetsUpdates()
    {
        Toolbox toolbox;
        toolbox.pane.setOpenRows(
            {records::position("x").symbol("A").profit(1), records::position("x").symbol("A").profit(2)}, {},
            {});
        QCOMPARE(toolbox.trades->topLevelItemCount(), 2);
        toolbox.pane.updateTradePnl(u"x"_s, 7);
        toolbox.pane.updateCurrentPrices(records::prices({{"A", 3, 4}}));
        QCOMPARE(toolbox.cell(0, TradeProfit), u"1.00"_s);
        QCOMPARE(toolbox.cell(0, TradeCurrentPrice), QString());
        QCOMPARE(toolbox.cell(1, TradeProfit), u"7.00"_s);
        QCOMPARE(toolbox.cell(1, TradeCurrentPrice), u"3.00000"_s);
    }

    void oddRowsDoNoHarm()
    {
        Toolbox toolbox;
        const QJsonArray odd = parseArray(R"([1,null,"x",{},{"id":5,"symbol":[],"pnl":{}}])");
        toolbox.pane.setOpenRows(odd, odd, {{QString(), -9}});
        toolbox.pane.setHistoryRows(odd, {{QString(), 1000}});
        QCOMPARE(toolbox.trades->topLevelItemCount(), 10);
        QCOMPARE(toolbox.history->topLevelItemCount(), 5);
        QCOMPARE(toolbox.cell(0, TradeVolume), u"0.00"_s);
        toolbox.pane.updateCurrentPrices(records::prices({{"", 1, 2}}));
        toolbox.pane.setHistoryRows({}, {});
        QCOMPARE(toolbox.history->topLevelItemCount(), 0);
    }

    void historyRowsAreFilledAndColoured()
    {
        Toolbox toolbox;
        toolbox.pane.setHistoryRows(
            {records::closedTrade("h1").symbol("GOLD").closedAt("1900.5").profit("-1234.5"),
                records::closedTrade("h2").symbol("OIL").sell(0.1).closedAt(70).profit(0)},
            goldDigits);
        QCOMPARE(toolbox.history->topLevelItemCount(), 2);
        const QTreeWidgetItem* first = toolbox.history->topLevelItem(0);
        QCOMPARE(first->text(HistoryClosePrice), u"1900.50"_s);
        QCOMPARE(first->text(HistoryProfit), u"-1,234.50"_s);
        QCOMPARE(first->foreground(HistoryProfit).color(), QColor(u"#ff4a4a"_s));
        QCOMPARE(first->foreground(HistoryType).color(), QColor(u"#3ba7ff"_s));
        QCOMPARE(rightAligned(first), (QList<int>{4, 5, 6, 7, 9, 10, 11, 12}));
        QVERIFY(!first->data(0, Qt::UserRole).isValid());
        const QTreeWidgetItem* second = toolbox.history->topLevelItem(1);
        QCOMPARE(second->text(HistoryClosePrice), u"70.00000"_s);
        QCOMPARE(second->foreground(HistoryProfit).color(), QColor(u"#dcdcdc"_s));
        QCOMPARE(second->foreground(HistoryType).color(), QColor(u"#ff4a4a"_s));
    }

    void digitsOfUpdatesAreThoseOfTheLastFill()
    {
        Toolbox toolbox;
        toolbox.fill();
        toolbox.pane.setHistoryRows({}, {{u"GOLD"_s, 7}});
        toolbox.pane.updateCurrentPrices(records::prices({{"GOLD", 1, 2}}));
        QCOMPARE(toolbox.cell(1, TradeCurrentPrice), u"2.00"_s);
    }

    void summaryShowsMoneyInEnglish()
    {
        Toolbox toolbox;
        toolbox.pane.setAccountSummary(100000, 101234.5, 50.12, 101184.38, 1234.5);
        QCOMPARE(toolbox.summary->text(),
            u"Balance: 100,000.00 USD&nbsp;&nbsp;&nbsp;Equity: 101,234.50&nbsp;&nbsp;&nbsp;Margin: 50.12"
            "&nbsp;&nbsp;&nbsp;Free Margin: 101,184.38&nbsp;&nbsp;&nbsp;"
            "Profit: <span style='color:#3ba7ff'>1,234.50</span>"_s);
        toolbox.pane.clearAccountSummary();
        QCOMPARE(toolbox.summary->text(), u"Balance: —"_s);
        QCOMPARE(toolbox.summary->styleSheet(),
            u"background:#1c1c1c; border:1px solid #1f1f1f; border-top:none;padding:4px 8px; font-weight:bold;"_s);
    }

    void summaryProfitIsColoured_data()
    {
        QTest::addColumn<double>("profit");
        QTest::addColumn<QString>("span");
        QTest::newRow("gain") << 0.01 << u"color:#3ba7ff'>0.01<"_s;
        QTest::newRow("loss") << -0.01 << u"color:#ff4a4a'>-0.01<"_s;
        QTest::newRow("nothing") << 0.0 << u"color:#dcdcdc'>0.00<"_s;
    }
    void summaryProfitIsColoured()
    {
        QFETCH(double, profit);
        QFETCH(QString, span);
        Toolbox toolbox;
        toolbox.pane.setAccountSummary(1, 1, 0, 1, profit);
        QVERIFY(toolbox.summary->text().contains(span));
    }

    void summaryIsLegibleWhateverTheTheme()
    {
        qApp->setStyleSheet(u"QWidget{color:#1e1e1e;}"_s);
        Toolbox toolbox;
        toolbox.pane.setAccountSummary(1, 1, 0, 1, 0);
        const QImage picture = toolbox.summary->grab().toImage();
        int bright = 0;
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width() / 4; ++x)
                bright += picture.pixelColor(x, y).lightness() > 150 ? 1 : 0;
        }
        qApp->setStyleSheet({});
        QVERIFY2(bright > 20, QByteArray::number(bright).constData());
    }

    void screenReadersHearTheFigures()
    {
        Toolbox toolbox;
        toolbox.pane.setAccountSummary(100000, 101234.5, 50.12, 101184.38, 1234.5);
        QAccessibleInterface* line = QAccessible::queryAccessibleInterface(toolbox.summary);
        QVERIFY(line);
        QVERIFY2(line->text(QAccessible::Name).contains(u"Equity: 101,234.50"_s),
            qPrintable(line->text(QAccessible::Name)));
    }

    void logsHaveTheirOwnClocks()
    {
        Toolbox toolbox;
        toolbox.pane.journal(u"Trade"_s, u"Order placed"_s);
        toolbox.pane.expert(u"Execution"_s, u"Order placed"_s);
        QCOMPARE(toolbox.journal->topLevelItemCount(), 1);
        QCOMPARE(toolbox.experts->topLevelItemCount(), 1);
        QCOMPARE(toolbox.journal->topLevelItem(0)->text(0).size(), 23);
        QCOMPARE(toolbox.experts->topLevelItem(0)->text(0).size(), 19);
        QCOMPARE(toolbox.experts->topLevelItem(0)->text(1), u"Execution"_s);
        QCOMPARE(toolbox.journal->topLevelItem(0)->text(2), u"Order placed"_s);
    }

    void logRowsAreOneLineAndPlain()
    {
        Toolbox toolbox;
        toolbox.pane.journal(u"Network"_s, u"<b>500</b>\nInternal"_s);
        QCOMPARE(toolbox.journal->topLevelItem(0)->text(2), u"<b>500</b> Internal"_s);
    }

    void journalShowsItsNewestRow()
    {
        Toolbox toolbox;
        for (int i = 0; i < 100; ++i)
            toolbox.pane.journal(u"s"_s, QString::number(i));
        toolbox.pane.setCurrentIndex(3);
        const QTreeWidgetItem* newest = toolbox.journal->topLevelItem(99);
        QTRY_VERIFY(
            toolbox.journal->viewport()->rect().contains(toolbox.journal->visualItemRect(newest).center()));
        QVERIFY(toolbox.journal->visualItemRect(newest).isValid());
    }
};

TAVORAN_TEST(TestTerminalPane)
#include "tst_TerminalPane.moc"
