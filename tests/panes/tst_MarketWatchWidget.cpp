#include "app/Theme.h"
#include "panes/MarketWatchWidget.h"
#include "panes/PaneIcons.h"
#include "support/TestMain.h"

#include <QAccessible>
#include <QHeaderView>
#include <QJsonArray>
#include <QJsonDocument>
#include <QLayout>
#include <QProxyStyle>
#include <QScrollBar>
#include <QStackedWidget>
#include <QTabBar>
#include <QTreeWidget>

using namespace Qt::StringLiterals;

namespace {

QJsonArray parseArray(const QByteArray& json)
{
    return QJsonDocument::fromJson(json).array();
}

QJsonObject parse(const QByteArray& json)
{
    return QJsonDocument::fromJson(json).object();
}

const QByteArray threeSymbols = R"([
    {"name":"EURUSD","description":"Euro","digits":5,"sortOrder":2,"dailyOpen":"1.00000"},
    {"name":"GOLD","description":"<b>Gold</b> \u0026 silver","digits":2,"sortOrder":1,
     "contractSize":"100","commission":3.5,"swapLong":"-12.345678","swapShort":"x"},
    {"name":"OIL","sortOrder":3,"dailyOpen":null}])";

/// Activates on a single click, as some desktops do.
class SingleClickStyle final : public QProxyStyle {
public:
    SingleClickStyle()
        : QProxyStyle(u"Fusion"_s)
    {
    }
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
        QStyleHintReturn* data) const override
    {
        if (hint == SH_ItemView_ActivateItemOnSingleClick)
            return 1;
        return QProxyStyle::styleHint(hint, option, widget, data);
    }
};

class PaintCounter final : public QObject {
public:
    explicit PaintCounter(QWidget* widget) { widget->installEventFilter(this); }
    bool eventFilter(QObject*, QEvent* event) override
    {
        count += event->type() == QEvent::Paint ? 1 : 0;
        return false;
    }
    int count = 0;
};

struct Watch {
    MarketWatchWidget widget;
    QStackedWidget* pages = widget.findChild<QStackedWidget*>();
    QTreeWidget* list = qobject_cast<QTreeWidget*>(pages->widget(0));
    QTreeWidget* details = qobject_cast<QTreeWidget*>(pages->widget(1));
    QTabBar* tabs = widget.findChild<QTabBar*>();

    explicit Watch(const QByteArray& symbols = threeSymbols)
    {
        widget.resize(400, 300);
        widget.show();
        widget.setSymbols(parseArray(symbols));
    }
    [[nodiscard]] QTreeWidgetItem* row(const QString& name) const
    {
        return list->findItems(name, Qt::MatchExactly | Qt::MatchCaseSensitive).value(0);
    }
    [[nodiscard]] QStringList names() const
    {
        QStringList all;
        for (int i = 0; i < list->topLevelItemCount(); ++i)
            all.append(list->topLevelItem(i)->text(0));
        return all;
    }
    void quote(const QByteArray& bid, const QByteArray& ask)
    {
        widget.updatePrices(parse("{\"EURUSD\":{\"bid\":" + bid + ",\"ask\":" + ask + "}}"));
    }
    void doubleClick(QTreeWidgetItem* item) const
    {
        const QPoint spot = list->visualItemRect(item).center();
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, spot);
        QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, spot);
    }
};

QColor colorOf(const QTreeWidgetItem* item, int column)
{
    return item->foreground(column).color();
}

QImage imageOf(const QIcon& icon)
{
    return icon.pixmap(16, 16).toImage();
}

QStringList values(const QTreeWidget* details)
{
    QStringList all;
    for (int i = 0; i < details->topLevelItemCount(); ++i)
        all.append(details->topLevelItem(i)->text(0) + u'=' + details->topLevelItem(i)->text(1));
    return all;
}

} // namespace

class TestMarketWatchWidget final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void looksAsPlanned();
    void theDailyChangeFitsANarrowDock();
    void everyReaderOfARowSeesItsPrices();
    void listsSymbolsInOrderWithoutPrices();
    void descriptionsNeverActAsRichText();
    void theFirstPriceHasNoDirection();
    void directionsStayUntilThePriceDiffers();
    void bidAndAskHaveTheirOwnDirections();
    void aDifferenceWithinRoundingIsNoTick();
    void numericStringsArePrices();
    void malformedPricesLeaveTheCells_data();
    void malformedPricesLeaveTheCells();
    void unknownSymbolsAndOtherRowsAreLeftAlone();
    void dailyChangeHasItsSignAndColour();
    void aSymbolWithoutOpeningPriceShowsNoChange();
    void digitsAreClampedAndDefaultToFive();
    void aNewListStartsFromNothing();
    void aNewListKeepsTheTradersPlace();
    void aNewListStaysScrolledWhereItWas();
    void ofEqualNamesTheLastRowGetsThePrices();
    void oddListsDoNoHarm();
    void anUnchangedSnapshotPaintsNothing();
    void aChangedSnapshotPaintsOnce();
    void rowsFollowTheTheme();
    void aDoubleClickIsReportedOnce_data();
    void aDoubleClickIsReportedOnce();
    void eachDoubleClickIsReported();
    void enterIsReportedOnce();
    void aHeldEnterKeyIsReportedOnce();
    void currentSymbolFallsBackToTheFirstRow();
    void detailsShowTheSpecification();
    void detailsFollowTheCurrentRow();
    void detailsOfAnEmptyListAreEmpty();
    void ticksCannotBeSelected();
};

void TestMarketWatchWidget::init()
{
    setTheme(false);
    applyTheme(*qApp);
}

void TestMarketWatchWidget::looksAsPlanned()
{
    const Watch watch;
    QCOMPARE(watch.list->columnCount(), 4);
    QCOMPARE(watch.list->headerItem()->text(0), u"Symbol"_s);
    QCOMPARE(watch.list->headerItem()->text(1), u"Bid"_s);
    QCOMPARE(watch.list->headerItem()->text(2), u"Ask"_s);
    QCOMPARE(watch.list->headerItem()->text(3), u"Daily"_s);
    QCOMPARE(watch.list->columnWidth(0), 96);
    QCOMPARE(watch.list->columnWidth(1), 70);
    QCOMPARE(watch.list->columnWidth(2), 70);
    QVERIFY(watch.list->uniformRowHeights());
    QVERIFY(watch.list->allColumnsShowFocus());
    QVERIFY(!watch.list->rootIsDecorated());
    QCOMPARE(watch.details->columnWidth(0), 130);
    QCOMPARE(watch.tabs->count(), 3);
    QCOMPARE(watch.tabs->shape(), QTabBar::RoundedSouth);
    QVERIFY(!watch.tabs->expanding());
    QCOMPARE(watch.tabs->tabText(0), u"Symbols"_s);
    QCOMPARE(watch.tabs->tabText(1), u"Details"_s);
    QCOMPARE(watch.tabs->tabText(2), u"Ticks"_s);
    QCOMPARE(watch.details->headerItem()->text(0), u"Property"_s);
    QCOMPARE(watch.details->headerItem()->text(1), u"Value"_s);
    QVERIFY(!watch.details->rootIsDecorated());
    QCOMPARE(watch.widget.layout()->contentsMargins(), QMargins());
    QCOMPARE(watch.widget.layout()->spacing(), 0);
}

void TestMarketWatchWidget::theDailyChangeFitsANarrowDock()
{
    Watch watch;
    QVERIFY(QTest::qWaitForWindowExposed(&watch.widget));
    for (const int width : {600, 400, 310}) {
        watch.widget.resize(width, 300);
        QTRY_COMPARE(watch.list->header()->length(), watch.list->header()->viewport()->width());
        QCOMPARE(watch.list->columnWidth(1), 70);
    }
    watch.tabs->setCurrentIndex(1);
    watch.widget.resize(200, 300);
    QTRY_COMPARE(watch.details->header()->length(), watch.details->header()->viewport()->width());
    QCOMPARE(watch.details->columnWidth(0), 130);
}

// The rows hold numbers and make texts when asked: by the view, by a screen reader, by a copy of the cell.
void TestMarketWatchWidget::everyReaderOfARowSeesItsPrices()
{
    Watch watch;
    watch.quote("1.1", "1.2");
    watch.quote("1.05", "1.3");
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
        QCOMPARE(cell->text(QAccessible::Name), wanted.at(column));
    }
}

void TestMarketWatchWidget::listsSymbolsInOrderWithoutPrices()
{
    const Watch watch;
    QCOMPARE(watch.names(), (QStringList{u"GOLD"_s, u"EURUSD"_s, u"OIL"_s}));
    for (int column = 1; column < 4; ++column) {
        QCOMPARE(watch.row(u"GOLD"_s)->text(column), QString());
        QCOMPARE(watch.row(u"GOLD"_s)->textAlignment(column), int(Qt::AlignRight | Qt::AlignVCenter));
    }
    QCOMPARE(colorOf(watch.row(u"GOLD"_s), 1), QColor(u"#1e1e1e"_s));
    QCOMPARE(colorOf(watch.row(u"GOLD"_s), 2), QColor(u"#1e1e1e"_s));
}

void TestMarketWatchWidget::descriptionsNeverActAsRichText()
{
    const Watch watch;
    QCOMPARE(watch.row(u"EURUSD"_s)->toolTip(0), u"Euro"_s);
    const QString tip = watch.row(u"GOLD"_s)->toolTip(0);
    QVERIFY(!tip.contains(u"<b>"_s));
    QTextDocument shown;
    shown.setHtml(tip);
    QCOMPARE(shown.toPlainText(), u"<b>Gold</b> & silver"_s);
}

void TestMarketWatchWidget::theFirstPriceHasNoDirection()
{
    Watch watch;
    watch.quote("1.1", "1.2");
    const QTreeWidgetItem* row = watch.row(u"EURUSD"_s);
    QCOMPARE(row->text(1), u"1.10000"_s);
    QCOMPARE(row->text(2), u"1.20000"_s);
    QCOMPARE(colorOf(row, 1), QColor(u"#1e1e1e"_s));
    QCOMPARE(colorOf(row, 2), QColor(u"#1e1e1e"_s));
    QVERIFY(row->icon(0).isNull());
}

void TestMarketWatchWidget::directionsStayUntilThePriceDiffers()
{
    Watch watch;
    const QTreeWidgetItem* row = watch.row(u"EURUSD"_s);
    watch.quote("1.1", "1.2");
    watch.quote("1.10001", "1.2");
    QCOMPARE(row->text(1), u"1.10001"_s);
    QCOMPARE(colorOf(row, 1), QColor(u"#0a63c2"_s));
    QCOMPARE(imageOf(row->icon(0)), imageOf(upArrowIcon(QColor(u"#0a63c2"_s))));
    watch.quote("1.10001", "1.2");
    QCOMPARE(colorOf(row, 1), QColor(u"#0a63c2"_s));
    watch.quote("1.1", "1.2");
    QCOMPARE(colorOf(row, 1), QColor(u"#cc2b2b"_s));
    QCOMPARE(imageOf(row->icon(0)), imageOf(downArrowIcon(QColor(u"#cc2b2b"_s))));
    watch.quote("1.1", "1.2");
    QCOMPARE(colorOf(row, 1), QColor(u"#cc2b2b"_s));
    QCOMPARE(imageOf(row->icon(0)), imageOf(downArrowIcon(QColor(u"#cc2b2b"_s))));
}

void TestMarketWatchWidget::bidAndAskHaveTheirOwnDirections()
{
    Watch watch;
    const QTreeWidgetItem* row = watch.row(u"EURUSD"_s);
    watch.quote("1.1", "1.2");
    watch.quote("1.1", "1.3");
    QCOMPARE(colorOf(row, 1), QColor(u"#1e1e1e"_s));
    QCOMPARE(colorOf(row, 2), QColor(u"#0a63c2"_s));
    QVERIFY(row->icon(0).isNull());
    watch.quote("1.2", "1.25");
    QCOMPARE(colorOf(row, 1), QColor(u"#0a63c2"_s));
    QCOMPARE(colorOf(row, 2), QColor(u"#cc2b2b"_s));
}

void TestMarketWatchWidget::aDifferenceWithinRoundingIsNoTick()
{
    Watch watch;
    const QTreeWidgetItem* row = watch.row(u"EURUSD"_s);
    watch.quote("1.1", "1.2");
    watch.quote("1.1000000000005", "1.2000000000005");
    QCOMPARE(colorOf(row, 1), QColor(u"#1e1e1e"_s));
    QCOMPARE(colorOf(row, 2), QColor(u"#1e1e1e"_s));
    watch.quote("1.100000000003", "1.200000000003");
    QCOMPARE(colorOf(row, 1), QColor(u"#0a63c2"_s));
    QCOMPARE(colorOf(row, 2), QColor(u"#0a63c2"_s));
}

void TestMarketWatchWidget::numericStringsArePrices()
{
    Watch watch;
    const QTreeWidgetItem* row = watch.row(u"EURUSD"_s);
    watch.quote("\"1.1\"", "1.2");
    watch.quote("1.2", "\"1.3\"");
    QCOMPARE(row->text(1), u"1.20000"_s);
    QCOMPARE(row->text(2), u"1.30000"_s);
    QCOMPARE(colorOf(row, 1), QColor(u"#0a63c2"_s));
    QCOMPARE(colorOf(row, 2), QColor(u"#0a63c2"_s));
    QCOMPARE(row->text(3), u"+20.00%"_s);
}

void TestMarketWatchWidget::malformedPricesLeaveTheCells_data()
{
    QTest::addColumn<QByteArray>("price");
    for (const char* price : {"0", "-1.5", "\"\"", "\"abc\"", "\"1,5\"", "null", "[]", "{}", "true", "1e308",
             "\"nan\"", "\"inf\"", "\"1e400\""})
        QTest::newRow(price) << QByteArray(price);
}

void TestMarketWatchWidget::malformedPricesLeaveTheCells()
{
    QFETCH(QByteArray, price);
    Watch watch;
    const QTreeWidgetItem* row = watch.row(u"EURUSD"_s);
    watch.quote("1.1", "1.2");
    watch.quote("1.2", "1.1");
    watch.quote(price, price);
    QCOMPARE(row->text(1), u"1.20000"_s);
    QCOMPARE(row->text(2), u"1.10000"_s);
    QCOMPARE(colorOf(row, 1), QColor(u"#0a63c2"_s));
    QCOMPARE(colorOf(row, 2), QColor(u"#cc2b2b"_s));
    watch.quote(price, "1.5");
    QCOMPARE(row->text(1), u"1.20000"_s);
    QCOMPARE(row->text(2), u"1.50000"_s);
}

void TestMarketWatchWidget::unknownSymbolsAndOtherRowsAreLeftAlone()
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

void TestMarketWatchWidget::dailyChangeHasItsSignAndColour()
{
    Watch watch;
    const QTreeWidgetItem* row = watch.row(u"EURUSD"_s);
    watch.quote("1.0053", "1.2");
    QCOMPARE(row->text(3), u"+0.53%"_s);
    QCOMPARE(colorOf(row, 3), QColor(u"#158f43"_s));
    watch.quote("0.988", "1.2");
    QCOMPARE(row->text(3), u"-1.20%"_s);
    QCOMPARE(colorOf(row, 3), QColor(u"#cc2b2b"_s));
    watch.quote("1.0", "1.2");
    QCOMPARE(row->text(3), u"+0.00%"_s);
    QCOMPARE(colorOf(row, 3), QColor(u"#158f43"_s));
}

void TestMarketWatchWidget::aSymbolWithoutOpeningPriceShowsNoChange()
{
    Watch watch(R"([{"name":"A","dailyOpen":null},{"name":"B","dailyOpen":0},{"name":"C"},
        {"name":"D","dailyOpen":-1},{"name":"E","dailyOpen":"x"},{"name":"F","dailyOpen":1e-300}])");
    watch.widget.updatePrices(parse(R"({"A":{"bid":1},"B":{"bid":1},"C":{"bid":1},"D":{"bid":1},
        "E":{"bid":1},"F":{"bid":1}})"));
    for (const QString& name : {u"A"_s, u"B"_s, u"C"_s, u"D"_s, u"E"_s}) {
        QCOMPARE(watch.row(name)->text(1), u"1.00000"_s);
        QCOMPARE(watch.row(name)->text(3), QString());
    }
    QVERIFY(watch.row(u"F"_s)->text(3).size() < 24);
}

void TestMarketWatchWidget::digitsAreClampedAndDefaultToFive()
{
    Watch watch(R"([{"name":"A","digits":-3},{"name":"B","digits":1000},{"name":"C","digits":"2"},
        {"name":"D","digits":0},{"name":"E","digits":2.5},{"name":"F"}])");
    watch.widget.updatePrices(parse(R"({"A":{"bid":7},"B":{"bid":7},"C":{"bid":7},"D":{"bid":7},
        "E":{"bid":7},"F":{"bid":7}})"));
    QCOMPARE(watch.row(u"A"_s)->text(1), u"7"_s);
    QCOMPARE(watch.row(u"B"_s)->text(1), u"7.00000000"_s);
    QCOMPARE(watch.row(u"C"_s)->text(1), u"7.00000"_s);
    QCOMPARE(watch.row(u"D"_s)->text(1), u"7"_s);
    QCOMPARE(watch.row(u"E"_s)->text(1), u"7.00000"_s);
    QCOMPARE(watch.row(u"F"_s)->text(1), u"7.00000"_s);
}

void TestMarketWatchWidget::aNewListStartsFromNothing()
{
    Watch watch;
    watch.quote("1.1", "1.2");
    watch.quote("1.2", "1.3");
    watch.widget.setSymbols(parseArray(threeSymbols));
    const QTreeWidgetItem* row = watch.row(u"EURUSD"_s);
    QCOMPARE(watch.list->topLevelItemCount(), 3);
    QCOMPARE(row->text(1) + row->text(2) + row->text(3), QString());
    QVERIFY(row->icon(0).isNull());
    watch.quote("1.1", "1.2");
    QCOMPARE(colorOf(row, 1), QColor(u"#1e1e1e"_s));
}

void TestMarketWatchWidget::aNewListKeepsTheTradersPlace()
{
    Watch watch;
    watch.list->setCurrentItem(watch.row(u"OIL"_s));
    watch.widget.setSymbols(parseArray(threeSymbols));
    QCOMPARE(watch.widget.currentSymbol(), u"OIL"_s);
    watch.widget.setSymbols(parseArray(R"([{"name":"A"},{"name":"B"}])"));
    QCOMPARE(watch.widget.currentSymbol(), u"A"_s);
}

void TestMarketWatchWidget::aNewListStaysScrolledWhereItWas()
{
    QJsonArray many;
    for (int i = 0; i < 200; ++i)
        many.append(QJsonObject{{"name"_L1, u"S%1"_s.arg(i)}, {"sortOrder"_L1, i}});
    for (const bool withCurrentRow : {false, true}) {
        Watch watch;
        watch.widget.setSymbols(many);
        if (withCurrentRow)
            watch.list->setCurrentItem(watch.list->topLevelItem(7));
        watch.list->scrollToItem(watch.list->topLevelItem(120), QAbstractItemView::PositionAtTop);
        const int scrolled = watch.list->verticalScrollBar()->value();
        QVERIFY(scrolled > 0);
        watch.widget.setSymbols(many);
        QCoreApplication::processEvents();
        QCOMPARE(watch.list->verticalScrollBar()->value(), scrolled);
    }
}

void TestMarketWatchWidget::ofEqualNamesTheLastRowGetsThePrices()
{
    Watch watch(R"([{"name":"A","digits":1},{"name":"A","digits":3}])");
    QCOMPARE(watch.list->topLevelItemCount(), 2);
    watch.widget.updatePrices(parse(R"({"A":{"bid":7}})"));
    QCOMPARE(watch.list->topLevelItem(0)->text(1), QString());
    QCOMPARE(watch.list->topLevelItem(1)->text(1), u"7.000"_s);
}

void TestMarketWatchWidget::oddListsDoNoHarm()
{
    Watch watch(R"([1,null,"x",[],{},{"name":7},{"name":"A","description":5,"sortOrder":"z"}])");
    QCOMPARE(watch.names(), QStringList{u"A"_s});
    watch.widget.setSymbols({});
    QCOMPARE(watch.list->topLevelItemCount(), 0);
    watch.widget.updatePrices(parse(R"({"A":{"bid":7}})"));
    QCOMPARE(watch.widget.currentSymbol(), QString());
}

void TestMarketWatchWidget::anUnchangedSnapshotPaintsNothing()
{
    Watch watch;
    QVERIFY(QTest::qWaitForWindowExposed(&watch.widget));
    watch.quote("1.1", "1.2");
    QCoreApplication::processEvents();
    PaintCounter paints(watch.list->viewport());
    watch.quote("1.1", "1.2");
    watch.quote("0", "\"x\"");
    watch.widget.updatePrices(parse(R"({"NOPE":{"bid":1,"ask":2}})"));
    QCoreApplication::processEvents();
    QCOMPARE(paints.count, 0);
}

void TestMarketWatchWidget::aChangedSnapshotPaintsOnce()
{
    Watch watch;
    QVERIFY(QTest::qWaitForWindowExposed(&watch.widget));
    QCoreApplication::processEvents();
    PaintCounter paints(watch.list->viewport());
    watch.widget.updatePrices(
        parse(R"({"EURUSD":{"bid":1,"ask":2},"OIL":{"bid":1,"ask":2},"GOLD":{"bid":1,"ask":2}})"));
    watch.quote("1.5", "2.5");
    QTRY_COMPARE(paints.count, 1);
}

void TestMarketWatchWidget::rowsFollowTheTheme()
{
    Watch watch;
    watch.quote("1.1", "1.2");
    watch.quote("1.2", "1.1");
    watch.widget.updatePrices(parse(R"({"GOLD":{"bid":2}})"));
    watch.widget.updatePrices(parse(R"({"GOLD":{"bid":1}})"));
    const QTreeWidgetItem* rising = watch.row(u"EURUSD"_s);
    const QTreeWidgetItem* falling = watch.row(u"GOLD"_s);
    const QTreeWidgetItem* idle = watch.row(u"OIL"_s);
    const QImage lightPicture = watch.list->grab().toImage();

    setTheme(true);
    applyTheme(*qApp);
    QTRY_COMPARE(colorOf(rising, 1), QColor(u"#3ba7ff"_s));
    QCOMPARE(colorOf(rising, 2), QColor(u"#ff4a4a"_s));
    QCOMPARE(colorOf(rising, 3), QColor(u"#26d367"_s));
    QCOMPARE(imageOf(rising->icon(0)), imageOf(upArrowIcon(QColor(u"#3ba7ff"_s))));
    QCOMPARE(imageOf(falling->icon(0)), imageOf(downArrowIcon(QColor(u"#ff4a4a"_s))));
    QCOMPARE(colorOf(idle, 1), QColor(u"#dcdcdc"_s));

    setTheme(false);
    applyTheme(*qApp);
    QTRY_COMPARE(colorOf(rising, 1), QColor(u"#0a63c2"_s));
    QTRY_COMPARE(watch.list->grab().toImage(), lightPicture);
}

void TestMarketWatchWidget::aDoubleClickIsReportedOnce_data()
{
    QTest::addColumn<bool>("singleClickStyle");
    QTest::newRow("style that activates on a double-click") << false;
    QTest::newRow("style that activates on a single click") << true;
}

void TestMarketWatchWidget::aDoubleClickIsReportedOnce()
{
    QFETCH(bool, singleClickStyle);
    Watch watch;
    if (singleClickStyle) {
        auto* style = new SingleClickStyle;
        style->setParent(watch.list);
        qApp->setStyleSheet({});
        watch.list->setStyle(style);
    }
    QSignalSpy reported(&watch.widget, &MarketWatchWidget::symbolActivated);
    // The toolkit does report it twice or more.
    QSignalSpy doubleClicks(watch.list, &QTreeWidget::itemDoubleClicked);
    QSignalSpy activations(watch.list, &QTreeWidget::itemActivated);
    watch.doubleClick(watch.row(u"EURUSD"_s));
    QCOMPARE(doubleClicks.size(), 1);
    QCOMPARE_GE(activations.size(), 1);
    QCOMPARE(reported.size(), 1);
    QCOMPARE(reported.at(0).at(0).toString(), u"EURUSD"_s);
}

void TestMarketWatchWidget::eachDoubleClickIsReported()
{
    Watch watch;
    QSignalSpy reported(&watch.widget, &MarketWatchWidget::symbolActivated);
    watch.doubleClick(watch.row(u"EURUSD"_s));
    watch.doubleClick(watch.row(u"EURUSD"_s));
    watch.doubleClick(watch.row(u"OIL"_s));
    QCOMPARE(reported.size(), 3);
    QCOMPARE(reported.at(2).at(0).toString(), u"OIL"_s);
}

void TestMarketWatchWidget::enterIsReportedOnce()
{
    Watch watch;
    watch.list->setCurrentItem(watch.row(u"OIL"_s));
    QSignalSpy reported(&watch.widget, &MarketWatchWidget::symbolActivated);
    QTest::keyClick(watch.list, Qt::Key_Return);
    QCOMPARE(reported.size(), 1);
    QCOMPARE(reported.at(0).at(0).toString(), u"OIL"_s);
    QTest::keyClick(watch.list, Qt::Key_Enter);
    QCOMPARE(reported.size(), 2);
    watch.doubleClick(watch.row(u"OIL"_s));
    QCOMPARE(reported.size(), 3);
}

void TestMarketWatchWidget::aHeldEnterKeyIsReportedOnce()
{
    Watch watch;
    watch.list->setCurrentItem(watch.row(u"OIL"_s));
    QSignalSpy reported(&watch.widget, &MarketWatchWidget::symbolActivated);
    QTest::keyPress(watch.list, Qt::Key_Return);
    for (int i = 0; i < 5; ++i) {
        QKeyEvent repeat(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, u"\r"_s, true);
        QApplication::sendEvent(watch.list, &repeat);
    }
    QTest::keyRelease(watch.list, Qt::Key_Return);
    QCOMPARE(reported.size(), 1);
}

void TestMarketWatchWidget::currentSymbolFallsBackToTheFirstRow()
{
    Watch watch;
    watch.list->setCurrentItem(nullptr);
    QCOMPARE(watch.widget.currentSymbol(), u"GOLD"_s);
    watch.list->setCurrentItem(watch.row(u"OIL"_s));
    QCOMPARE(watch.widget.currentSymbol(), u"OIL"_s);
    watch.widget.setSymbols({});
    QCOMPARE(watch.widget.currentSymbol(), QString());
}

void TestMarketWatchWidget::detailsShowTheSpecification()
{
    Watch watch;
    watch.list->setCurrentItem(nullptr);
    watch.tabs->setCurrentIndex(1);
    QCOMPARE(watch.pages->currentIndex(), 1);
    QCOMPARE(values(watch.details),
        (QStringList{u"Symbol=GOLD"_s, u"Description=<b>Gold</b> & silver"_s, u"Digits=2"_s,
            u"Contract size=100"_s, u"Commission (per lot)=3.5"_s, u"Swap long=-12.3457"_s, u"Swap short=0"_s,
            u"Minimum volume=0.01"_s}));
    watch.tabs->setCurrentIndex(0);
    QCOMPARE(watch.pages->currentIndex(), 0);
}

void TestMarketWatchWidget::detailsFollowTheCurrentRow()
{
    Watch watch;
    watch.tabs->setCurrentIndex(1);
    watch.list->setCurrentItem(watch.row(u"OIL"_s));
    QCOMPARE(values(watch.details).value(0), u"Symbol=OIL"_s);
    QCOMPARE(values(watch.details).value(2), u"Digits=5"_s);
    watch.widget.setSymbols(parseArray(R"([{"name":"OIL","digits":3}])"));
    QCOMPARE(values(watch.details).value(2), u"Digits=3"_s);
}

void TestMarketWatchWidget::detailsOfAnEmptyListAreEmpty()
{
    Watch watch;
    watch.widget.setSymbols({});
    watch.tabs->setCurrentIndex(1);
    QCOMPARE(watch.details->topLevelItemCount(), 0);
}

void TestMarketWatchWidget::ticksCannotBeSelected()
{
    const Watch watch;
    QVERIFY(!watch.tabs->isTabEnabled(2));
    QTest::mouseClick(watch.tabs, Qt::LeftButton, {}, watch.tabs->tabRect(2).center());
    QCOMPARE(watch.tabs->currentIndex(), 0);
    QCOMPARE(watch.pages->currentIndex(), 0);
}

TAVORAN_TEST_MAIN(TestMarketWatchWidget)
#include "tst_MarketWatchWidget.moc"
