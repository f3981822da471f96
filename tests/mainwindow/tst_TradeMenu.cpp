#include "mainwindow/TradeMenu.h"
#include "support/Hands.h"
#include "support/Records.h"
#include "support/TestMain.h"

#include <QAbstractButton>
#include <QMenu>
#include <QMessageBox>
#include <QPointer>
#include <QSignalSpy>
#include <QtTest>

using namespace Qt::StringLiterals;

namespace {

const QJsonObject position = records::position("0123456789").buy("0.1");
const QJsonObject pending = records::pendingOrder("p").sell(1);

struct MenuDesk {
    QWidget window;
    TradeMenu menu{window};

    MenuDesk() { window.show(); }
    Q_DISABLE_COPY_MOVE(MenuDesk)

    [[nodiscard]] QMenu* popUp(const QJsonObject& trade)
    {
        menu.popUp(window.mapToGlobal(QPoint(5, 5)), trade);
        return window.findChild<QMenu*>(u"tradeMenu"_s);
    }
    [[nodiscard]] QMessageBox* question() const { return window.findChild<QMessageBox*>(); }
};

QStringList entries(const QMenu& menu)
{
    QStringList texts;
    for (const QAction* action : menu.actions())
        texts.append(action->isSeparator() ? u"-"_s : action->text());
    return texts;
}

} // namespace

class TestTradeMenu final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aPositionCanBeClosed()
    {
        MenuDesk desk;
        QCOMPARE(entries(*desk.popUp(position)),
            QStringList({u"Close Position"_s, u"Modify..."_s, u"-"_s, u"New Order..."_s}));
    }

    void aPendingOrderCanBeCancelled()
    {
        MenuDesk desk;
        QCOMPARE(entries(*desk.popUp(pending)),
            QStringList({u"Cancel Order"_s, u"Modify..."_s, u"-"_s, u"New Order..."_s}));
    }

    void anEmptyTradeHasNoMenu()
    {
        MenuDesk desk;
        QVERIFY(!desk.popUp({}));
    }

    void itOpensAtThePlaceItIsGiven()
    {
        for (const QPoint place : {QPoint(120, 90), QPoint(33, 210)}) {
            MenuDesk desk;
            desk.menu.popUp(place, position);
            const auto* menu = desk.window.findChild<QMenu*>(u"tradeMenu"_s);
            QVERIFY(menu->isVisible());
            QCOMPARE(menu->pos(), place);
        }
    }

    void everyEntryAsksForItsOwn()
    {
        MenuDesk desk;
        QSignalSpy modify(&desk.menu, &TradeMenu::modifyRequested);
        QSignalSpy order(&desk.menu, &TradeMenu::newOrderRequested);
        QPointer<QMenu> menu = desk.popUp(position);
        hands::choose(*menu, u"Modify..."_s);
        QCOMPARE(modify.size(), 1);
        QCOMPARE(modify.at(0).at(0).toJsonObject(), position);
        QTRY_VERIFY(!menu);
        hands::choose(*desk.popUp(position), u"New Order..."_s);
        QCOMPARE(order.size(), 1);
    }

    void cancellingAsksNoQuestion()
    {
        MenuDesk desk;
        QSignalSpy cancel(&desk.menu, &TradeMenu::cancelRequested);
        hands::choose(*desk.popUp(pending), u"Cancel Order"_s);
        QCOMPARE(cancel.size(), 1);
        QCOMPARE(cancel.at(0).at(0).toJsonObject(), pending);
        QVERIFY(!desk.question());
    }

    void closingAsksFirst()
    {
        MenuDesk desk;
        QSignalSpy closes(&desk.menu, &TradeMenu::closeConfirmed);
        hands::choose(*desk.popUp(position), u"Close Position"_s);
        QCOMPARE(closes.size(), 0);
        QVERIFY(desk.question());
        QCOMPARE(desk.question()->windowTitle(), u"Close Position"_s);
        QCOMPARE(desk.question()->text(), u"Close position buy 0.10 EURUSD (#01234567)?"_s);
        QCOMPARE(desk.question()->icon(), QMessageBox::Question);
        QCOMPARE(desk.question()->standardButtons(), QMessageBox::Yes | QMessageBox::No);
    }

    void returnMeansYes()
    {
        MenuDesk desk;
        QSignalSpy closes(&desk.menu, &TradeMenu::closeConfirmed);
        hands::choose(*desk.popUp(position), u"Close Position"_s);
        QTest::keyClick(desk.question(), Qt::Key_Return);
        QCOMPARE(closes.size(), 1);
        QCOMPARE(closes.at(0).at(0).toJsonObject(), position);
    }

    // The press that chose the entry may last on.
    void returnThatIsHeldIsNoAnswer()
    {
        MenuDesk desk;
        QSignalSpy closed(&desk.menu, &TradeMenu::closeConfirmed);
        hands::choose(*desk.popUp(position), u"Close Position"_s);
        const QPointer<QMessageBox> question = desk.question();
        QVERIFY(question && hands::arriveAt(question));
        for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter}) {
            hands::hold(key);
            QVERIFY(question && question->isVisible());
            QCOMPARE(closed.size(), 0);
        }
        hands::press(Qt::Key_Return);
        QTRY_VERIFY(!question);
        QCOMPARE(closed.size(), 1);
    }

    void onlyYesCloses_data()
    {
        QTest::addColumn<int>("button");
        QTest::addColumn<int>("closed");
        QTest::newRow("yes") << int(QMessageBox::Yes) << 1;
        QTest::newRow("no") << int(QMessageBox::No) << 0;
        QTest::newRow("escape") << int(QMessageBox::NoButton) << 0;
    }
    void onlyYesCloses()
    {
        QFETCH(int, button);
        QFETCH(int, closed);
        MenuDesk desk;
        QSignalSpy closes(&desk.menu, &TradeMenu::closeConfirmed);
        hands::choose(*desk.popUp(position), u"Close Position"_s);
        const QPointer<QMessageBox> question = desk.question();
        if (QAbstractButton* pressed = question->button(QMessageBox::StandardButton(button)))
            QTest::mouseClick(pressed, Qt::LeftButton);
        else
            QTest::keyClick(question, Qt::Key_Escape);
        QTRY_VERIFY(!question);
        QCOMPARE(closes.size(), closed);
    }

    void serverTextInTheQuestionIsText()
    {
        MenuDesk desk;
        hands::choose(
            *desk.popUp(
                records::position("<b>\n1").symbol("<table>%2\nX").without("lotSize").with("type", "B\nUY")),
            u"Close Position"_s);
        QCOMPARE(desk.question()->textFormat(), Qt::PlainText);
        QCOMPARE(desk.question()->text(), u"Close position b uy 0.00 <table>%2 X (#<b> 1)?"_s);
    }
};

TAVORAN_TEST(TestTradeMenu)
#include "tst_TradeMenu.moc"
