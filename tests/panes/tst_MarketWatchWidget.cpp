#include "MarketWatchFixture.h"
#include "app/ui/Theme.h"
#include "support/Records.h"
#include "support/TestMain.h"

#include <QProxyStyle>
#include <QScrollBar>

using namespace Qt::StringLiterals;
using fixtures::colorOf;
using fixtures::parseArray;
using fixtures::threeSymbols;
using fixtures::Watch;

namespace {

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

} // namespace

class TestMarketWatchWidget final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void the_list_sent_again_keeps_all_that_is_selected()
    {
        Watch watch;
        watch.list->selectAll();
        watch.row(u"GOLD"_s)->setSelected(false);
        watch.list->selectionModel()->setCurrentIndex(
            watch.list->model()->index(0, 0), QItemSelectionModel::NoUpdate);
        watch.widget.setSymbols(parseArray(threeSymbols));
        QVERIFY(!watch.row(u"GOLD"_s)->isSelected());
        QVERIFY(watch.row(u"EURUSD"_s)->isSelected());
        QVERIFY(watch.row(u"OIL"_s)->isSelected());
        QCOMPARE(watch.list->currentIndex().row(), 0);
        QCOMPARE(watch.widget.currentSymbol(), u"GOLD"_s);
    }

    void init()
    {
        setTheme(false);
        applyTheme(*qApp);
    }

    void listsSymbolsInOrderWithoutPrices()
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

    void aNewListStartsFromNothing()
    {
        Watch watch;
        watch.quote(1.1, 1.2);
        watch.quote(1.2, 1.3);
        watch.widget.setSymbols(parseArray(threeSymbols));
        const QTreeWidgetItem* row = watch.row(u"EURUSD"_s);
        QCOMPARE(watch.list->topLevelItemCount(), 3);
        QCOMPARE(row->text(1) + row->text(2) + row->text(3), QString());
        QVERIFY(row->icon(0).isNull());
        watch.quote(1.1, 1.2);
        QCOMPARE(colorOf(row, 1), QColor(u"#1e1e1e"_s));
    }

    void aNewListKeepsTheTradersPlace()
    {
        Watch watch;
        watch.list->setCurrentItem(watch.row(u"OIL"_s));
        watch.widget.setSymbols(parseArray(threeSymbols));
        QCOMPARE(watch.widget.currentSymbol(), u"OIL"_s);
        watch.widget.setSymbols({records::symbol("A"), records::symbol("B")});
        QCOMPARE(watch.widget.currentSymbol(), u"A"_s);
    }

    void aNewListStaysScrolledWhereItWas()
    {
        QJsonArray many;
        for (int i = 0; i < 200; ++i)
            many.append(records::symbol(u"S%1"_s.arg(i)).rank(i));
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

    void aNewListKeepsALongSymbolSelected()
    {
        const QString start(80, u'x');
        const QJsonArray symbols{records::symbol(start + u'A'), records::symbol(start + u'B')};
        Watch watch(symbols);
        watch.list->setCurrentItem(watch.list->topLevelItem(1));
        QCOMPARE(watch.widget.currentSymbol(), start + u'B');
        watch.widget.setSymbols(symbols);
        QCOMPARE(watch.widget.currentSymbol(), start + u'B');
    }

    void ofEqualNamesTheLastRowGetsThePrices()
    {
        Watch watch(parseArray(R"([{"name":"A","digits":1},{"name":"A","digits":3}])"));
        QCOMPARE(watch.list->topLevelItemCount(), 2);
        watch.widget.updatePrices(records::prices({{"A", 7}}));
        QCOMPARE(watch.list->topLevelItem(0)->text(1), QString());
        QCOMPARE(watch.list->topLevelItem(1)->text(1), u"7.000"_s);
    }

    void oddListsDoNoHarm()
    {
        Watch watch(
            parseArray(R"([1,null,"x",[],{},{"name":7},{"name":"A","description":5,"sortOrder":"z"}])"));
        QCOMPARE(watch.names(), QStringList{u"A"_s});
        watch.widget.setSymbols({});
        QCOMPARE(watch.list->topLevelItemCount(), 0);
        watch.widget.updatePrices(records::prices({{"A", 7}}));
        QCOMPARE(watch.widget.currentSymbol(), QString());
    }

    void aDoubleClickIsReportedOnce_data()
    {
        QTest::addColumn<bool>("singleClickStyle");
        QTest::newRow("style that activates on a double-click") << false;
        QTest::newRow("style that activates on a single click") << true;
    }
    void aDoubleClickIsReportedOnce()
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
        // Qt does report it twice or more.
        QSignalSpy doubleClicks(watch.list, &QTreeWidget::itemDoubleClicked);
        QSignalSpy activations(watch.list, &QTreeWidget::itemActivated);
        watch.doubleClick(watch.row(u"EURUSD"_s));
        QCOMPARE(doubleClicks.size(), 1);
        QCOMPARE_GE(activations.size(), 1);
        QCOMPARE(reported.size(), 1);
        QCOMPARE(reported.at(0).at(0).toString(), u"EURUSD"_s);
    }

    void eachDoubleClickIsReported()
    {
        Watch watch;
        QSignalSpy reported(&watch.widget, &MarketWatchWidget::symbolActivated);
        watch.doubleClick(watch.row(u"EURUSD"_s));
        watch.doubleClick(watch.row(u"EURUSD"_s));
        watch.doubleClick(watch.row(u"OIL"_s));
        QCOMPARE(reported.size(), 3);
        QCOMPARE(reported.at(2).at(0).toString(), u"OIL"_s);
    }

    void enterIsReportedOnce()
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

    void aHeldEnterKeyIsReportedOnce()
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

    void an_enter_that_is_held_opens_nothing_of_the_row_that_takes_the_place_of_another()
    {
        Watch watch;
        watch.list->setCurrentItem(watch.row(u"GOLD"_s));
        QSignalSpy reported(&watch.widget, &MarketWatchWidget::symbolActivated);
        QTest::keyPress(watch.list, Qt::Key_Return);
        QCOMPARE(reported.size(), 1);
        watch.widget.setSymbols({records::symbol("EURUSD").rank(1), records::symbol("OIL").rank(2)});
        QCOMPARE(watch.list->currentItem(), watch.row(u"EURUSD"_s));
        QKeyEvent repeat(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, u"\r"_s, true);
        QApplication::sendEvent(watch.list, &repeat);
        QCOMPARE(reported.size(), 1);
        QTest::keyClick(watch.list, Qt::Key_Return);
        QCOMPARE(reported.size(), 2);
        QCOMPARE(reported.at(1).at(0).toString(), u"EURUSD"_s);
    }

    void enter_with_another_key_held_opens_nothing()
    {
        Watch watch;
        watch.list->setCurrentItem(watch.row(u"OIL"_s));
        QSignalSpy reported(&watch.widget, &MarketWatchWidget::symbolActivated);
        for (const Qt::KeyboardModifier modifier : {Qt::ControlModifier, Qt::AltModifier, Qt::ShiftModifier})
            QTest::keyClick(watch.list, Qt::Key_Return, modifier);
        QCOMPARE(reported.size(), 0);
        QTest::keyClick(watch.list, Qt::Key_Enter, Qt::KeypadModifier);
        QCOMPARE(reported.size(), 1);
    }

    void currentSymbolFallsBackToTheFirstRow()
    {
        Watch watch;
        watch.list->setCurrentItem(nullptr);
        QCOMPARE(watch.widget.currentSymbol(), u"GOLD"_s);
        watch.list->setCurrentItem(watch.row(u"OIL"_s));
        QCOMPARE(watch.widget.currentSymbol(), u"OIL"_s);
        watch.widget.setSymbols({});
        QCOMPARE(watch.widget.currentSymbol(), QString());
    }
};

TAVORAN_TEST(TestMarketWatchWidget)
#include "tst_MarketWatchWidget.moc"
