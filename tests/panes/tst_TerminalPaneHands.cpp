#include "ToolboxFixture.h"
#include "panes/TradeCells.h"
#include "support/Hands.h"
#include "support/TestMain.h"

#include <QScrollBar>

using namespace Qt::StringLiterals;
using namespace toolboxFixture;
using namespace tradeCells;

namespace {

void requestMenu(QTreeWidget* list, const QPoint& viewportPos)
{
    QContextMenuEvent event(
        QContextMenuEvent::Mouse, viewportPos, list->viewport()->mapToGlobal(viewportPos));
    QApplication::sendEvent(list->viewport(), &event);
}

/// As Qt does it for the menu key, whatever the list shows.
void requestMenuByKey(QTreeWidget* list)
{
    const QPoint place = list->inputMethodQuery(Qt::ImCursorRectangle).toRect().center();
    QContextMenuEvent event(QContextMenuEvent::Keyboard, place, list->mapToGlobal(place));
    QApplication::sendEvent(list, &event);
}

} // namespace

/// What mouse and keys do to the lists of trades.
class TestTerminalPaneHands final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void enter_on_a_trade_does_what_a_double_click_does_once()
    {
        Toolbox toolbox;
        toolbox.fill();
        toolbox.pane.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&toolbox.pane));
        QSignalSpy told(&toolbox.pane, &TerminalPane::tradeDoubleClicked);
        toolbox.trades->setFocus();
        toolbox.trades->selectAll();
        toolbox.trades->selectionModel()->setCurrentIndex(
            toolbox.trades->model()->index(1, 0), QItemSelectionModel::NoUpdate);
        hands::press(Qt::Key_Return);
        hands::hold(Qt::Key_Return);
        QCOMPARE(told, QList<QVariantList>({{twoPositions.at(1).toObject()}}));
    }

    void the_trade_after_a_closed_one_takes_its_place_under_the_keys()
    {
        Toolbox toolbox;
        toolbox.fill();
        toolbox.pane.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&toolbox.pane));
        QSignalSpy told(&toolbox.pane, &TerminalPane::tradeDoubleClicked);
        QSignalSpy menus(&toolbox.pane, &TerminalPane::tradeContextMenu);
        toolbox.trades->setFocus();
        hands::press(Qt::Key_Home);
        toolbox.pane.setOpenRows({twoPositions.at(1)}, oneOrder, goldDigits);
        QCOMPARE(toolbox.trades->currentIndex().row(), 0);
        QCOMPARE(toolbox.trades->selectedItems(), {toolbox.trades->topLevelItem(0)});
        // The key that closed the trade may still be down: what comes next wants a press of its own.
        hands::hold(Qt::Key_Return);
        hands::hold(Qt::Key_Enter);
        QCOMPARE(told.size(), 0);
        requestMenuByKey(toolbox.trades);
        QCOMPARE(menus.size(), 1);
        QCOMPARE(menus.at(0).at(1).toJsonObject(), twoPositions.at(1).toObject());
        hands::press(Qt::Key_Return);
        QCOMPARE(told, QList<QVariantList>({{twoPositions.at(1).toObject()}}));
        toolbox.pane.setOpenRows({}, oneOrder, goldDigits);
        QCOMPARE(toolbox.trades->currentIndex().row(), 0);
        toolbox.pane.setOpenRows({}, {}, goldDigits);
        QVERIFY(!toolbox.trades->currentItem());
        requestMenuByKey(toolbox.trades);
        QCOMPARE(menus.size(), 1);
    }

    void a_double_click_that_began_on_a_closed_trade_opens_none()
    {
        Toolbox toolbox;
        toolbox.fill();
        QSignalSpy told(&toolbox.pane, &TerminalPane::tradeDoubleClicked);
        const QPoint spot = toolbox.trades->visualItemRect(toolbox.trades->topLevelItem(0)).center();
        QTest::mouseClick(toolbox.trades->viewport(), Qt::LeftButton, {}, spot);
        toolbox.pane.setOpenRows({twoPositions.at(1)}, oneOrder, goldDigits);
        QCOMPARE(toolbox.trades->itemAt(spot), toolbox.trades->topLevelItem(0));
        QTest::mouseDClick(toolbox.trades->viewport(), Qt::LeftButton, {}, spot);
        QCOMPARE(told.size(), 0);
    }

    void the_menu_key_belongs_to_the_current_trade_even_out_of_sight()
    {
        Toolbox toolbox;
        const QJsonArray many = manyPositions(60);
        toolbox.pane.setOpenRows(many, {}, {});
        QSignalSpy menus(&toolbox.pane, &TerminalPane::tradeContextMenu);
        requestMenuByKey(toolbox.trades);
        QCOMPARE(menus.size(), 0); // no row is current, though there are rows in the middle
        toolbox.trades->setCurrentItem(toolbox.trades->topLevelItem(0));
        toolbox.trades->verticalScrollBar()->setValue(30);
        requestMenuByKey(toolbox.trades);
        QCOMPARE(menus.size(), 1);
        QCOMPARE(menus.at(0).at(1).toJsonObject(), many.at(0).toObject());
        const QWidget* viewport = toolbox.trades->viewport();
        QVERIFY(viewport->rect().contains(viewport->mapFromGlobal(menus.at(0).at(0).toPoint())));
    }

    void a_menu_over_many_selected_trades_is_that_of_one()
    {
        Toolbox toolbox;
        toolbox.fill();
        QSignalSpy menus(&toolbox.pane, &TerminalPane::tradeContextMenu);
        toolbox.trades->selectAll();
        toolbox.trades->selectionModel()->setCurrentIndex(
            toolbox.trades->model()->index(1, 0), QItemSelectionModel::NoUpdate);
        requestMenuByKey(toolbox.trades);
        QCOMPARE(menus.size(), 1);
        QCOMPARE(menus.at(0).at(1).toJsonObject(), twoPositions.at(1).toObject());
        requestMenu(toolbox.trades, toolbox.trades->visualItemRect(toolbox.trades->topLevelItem(0)).center());
        QCOMPARE(menus.size(), 2);
        QCOMPARE(menus.at(1).at(1).toJsonObject(), twoPositions.at(0).toObject());
    }

    void a_refresh_keeps_all_that_is_selected()
    {
        Toolbox toolbox;
        toolbox.fill();
        toolbox.trades->selectAll();
        toolbox.trades->topLevelItem(1)->setSelected(false);
        toolbox.trades->selectionModel()->setCurrentIndex(
            toolbox.trades->model()->index(1, 0), QItemSelectionModel::NoUpdate);
        toolbox.fill();
        QVERIFY(toolbox.trades->topLevelItem(0)->isSelected());
        QVERIFY(!toolbox.trades->topLevelItem(1)->isSelected());
        QVERIFY(toolbox.trades->topLevelItem(2)->isSelected());
        QCOMPARE(toolbox.trades->currentIndex().row(), 1);
    }

    void the_history_keeps_its_selection_when_more_trades_close()
    {
        Toolbox toolbox;
        toolbox.pane.setHistoryRows(twoPositions, goldDigits);
        toolbox.history->setCurrentItem(toolbox.history->topLevelItem(1));
        QJsonArray more = twoPositions;
        more.prepend(oneOrder.first());
        toolbox.pane.setHistoryRows(more, goldDigits);
        QCOMPARE(toolbox.history->currentIndex().row(), 2);
        QCOMPARE(toolbox.history->selectedItems(), {toolbox.history->topLevelItem(2)});
        toolbox.pane.setHistoryRows(oneOrder, goldDigits);
        QCOMPARE(toolbox.history->selectedItems(), {toolbox.history->topLevelItem(0)});
        QCOMPARE(toolbox.history->currentIndex().row(), 0);
        toolbox.pane.setHistoryRows(twoPositions, goldDigits); // of another account
        QVERIFY(toolbox.history->selectedItems().isEmpty());
        QVERIFY(!toolbox.history->currentItem());
    }

    void aRightClickHandsOutTheRecord()
    {
        Toolbox toolbox;
        toolbox.pane.setOpenRows(twoPositions, {QJsonObject()}, {});
        QSignalSpy menus(&toolbox.pane, &TerminalPane::tradeContextMenu);
        const QPoint spot = toolbox.trades->visualItemRect(toolbox.trades->topLevelItem(1)).center();
        requestMenu(toolbox.trades, spot);
        QCOMPARE(menus.size(), 1);
        QCOMPARE(menus.at(0).at(0).toPoint(), toolbox.trades->viewport()->mapToGlobal(spot));
        QCOMPARE(menus.at(0).at(1).toJsonObject().value("id"_L1).toString(), u"p2"_s);
        requestMenu(toolbox.trades, toolbox.trades->visualItemRect(toolbox.trades->topLevelItem(2)).center());
        requestMenu(toolbox.trades, QPoint(5, toolbox.trades->viewport()->height() - 2));
        QCOMPARE(menus.size(), 1);
    }

    void aDoubleClickHandsOutTheRecord()
    {
        Toolbox toolbox;
        toolbox.fill();
        QSignalSpy clicks(&toolbox.pane, &TerminalPane::tradeDoubleClicked);
        const QPoint spot = toolbox.trades->visualItemRect(toolbox.trades->topLevelItem(2)).center();
        QTest::mouseClick(toolbox.trades->viewport(), Qt::LeftButton, {}, spot);
        QTest::mouseDClick(toolbox.trades->viewport(), Qt::LeftButton, {}, spot);
        QCOMPARE(clicks.size(), 1);
        QCOMPARE(clicks.at(0).at(0).toJsonObject(), oneOrder.at(0).toObject());
    }

    void historyHasNeitherMenuNorDoubleClick()
    {
        Toolbox toolbox;
        toolbox.pane.setHistoryRows(twoPositions, {});
        toolbox.pane.setCurrentIndex(1);
        QSignalSpy clicks(&toolbox.pane, &TerminalPane::tradeDoubleClicked);
        QSignalSpy menus(&toolbox.pane, &TerminalPane::tradeContextMenu);
        const QPoint spot = toolbox.history->visualItemRect(toolbox.history->topLevelItem(0)).center();
        requestMenu(toolbox.history, spot);
        QTest::mouseClick(toolbox.history->viewport(), Qt::LeftButton, {}, spot);
        QTest::mouseDClick(toolbox.history->viewport(), Qt::LeftButton, {}, spot);
        QCOMPARE(clicks.size() + menus.size(), 0);
    }
};

TAVORAN_TEST(TestTerminalPaneHands)
#include "tst_TerminalPaneHands.moc"
