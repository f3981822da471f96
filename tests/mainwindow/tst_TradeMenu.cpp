#include "mainwindow/TradeMenu.h"
#include "support/Hands.h"
#include "support/ParseJson.h"
#include "support/TestMain.h"

#include <QAbstractButton>
#include <QMenu>
#include <QMessageBox>
#include <QPointer>
#include <QSignalSpy>
#include <QtTest>

using namespace Qt::StringLiterals;
using fixtures::parse;

namespace {

const QByteArray position
    = R"({"id":"0123456789","type":"BUY","lotSize":"0.1","symbol":"EURUSD","status":"OPEN"})";
const QByteArray pending = R"({"id":"p","type":"SELL","lotSize":1,"symbol":"EURUSD","status":"PENDING"})";

struct Desk {
    QWidget window;
    TradeMenu menu{window};

    Desk() { window.show(); }
    Q_DISABLE_COPY_MOVE(Desk)

    [[nodiscard]] QMenu* popUp(const QByteArray& trade)
    {
        menu.popUp(window.mapToGlobal(QPoint(5, 5)), parse(trade));
        return window.findChild<QMenu*>(u"tradeMenu"_s);
    }
    [[nodiscard]] QMessageBox* question() const { return window.findChild<QMessageBox*>(); }

    /// Chooses the entry as a person does, with the mouse.
    static void choose(QMenu& shown, const QString& text)
    {
        for (QAction* action : shown.actions()) {
            if (action->text() == text)
                return hands::choose(shown, action);
        }
        QFAIL(qPrintable(text));
    }
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
    void aPositionCanBeClosed();
    void aPendingOrderCanBeCancelled();
    void anEmptyTradeHasNoMenu();
    void itOpensAtThePlaceItIsGiven();
    void everyEntryAsksForItsOwn();
    void cancellingAsksNoQuestion();
    void closingAsksFirst();
    void returnMeansYes();
    void returnThatIsHeldIsNoAnswer();
    void onlyYesCloses_data();
    void onlyYesCloses();
    void serverTextInTheQuestionIsText();
};

void TestTradeMenu::aPositionCanBeClosed()
{
    Desk desk;
    QCOMPARE(entries(*desk.popUp(position)),
        QStringList({u"Close Position"_s, u"Modify..."_s, u"-"_s, u"New Order..."_s}));
}

void TestTradeMenu::aPendingOrderCanBeCancelled()
{
    Desk desk;
    QCOMPARE(entries(*desk.popUp(pending)),
        QStringList({u"Cancel Order"_s, u"Modify..."_s, u"-"_s, u"New Order..."_s}));
}

void TestTradeMenu::anEmptyTradeHasNoMenu()
{
    Desk desk;
    QVERIFY(!desk.popUp("{}"));
}

void TestTradeMenu::itOpensAtThePlaceItIsGiven()
{
    for (const QPoint place : {QPoint(120, 90), QPoint(33, 210)}) {
        Desk desk;
        desk.menu.popUp(place, parse(position));
        const auto* menu = desk.window.findChild<QMenu*>(u"tradeMenu"_s);
        QVERIFY(menu->isVisible());
        QCOMPARE(menu->pos(), place);
    }
}

void TestTradeMenu::everyEntryAsksForItsOwn()
{
    Desk desk;
    QSignalSpy modify(&desk.menu, &TradeMenu::modifyRequested);
    QSignalSpy order(&desk.menu, &TradeMenu::newOrderRequested);
    QPointer<QMenu> menu = desk.popUp(position);
    Desk::choose(*menu, u"Modify..."_s);
    QCOMPARE(modify.size(), 1);
    QCOMPARE(modify.at(0).at(0).toJsonObject(), parse(position));
    QTRY_VERIFY(!menu);
    Desk::choose(*desk.popUp(position), u"New Order..."_s);
    QCOMPARE(order.size(), 1);
}

void TestTradeMenu::cancellingAsksNoQuestion()
{
    Desk desk;
    QSignalSpy cancel(&desk.menu, &TradeMenu::cancelRequested);
    Desk::choose(*desk.popUp(pending), u"Cancel Order"_s);
    QCOMPARE(cancel.size(), 1);
    QCOMPARE(cancel.at(0).at(0).toJsonObject(), parse(pending));
    QVERIFY(!desk.question());
}

void TestTradeMenu::closingAsksFirst()
{
    Desk desk;
    QSignalSpy closes(&desk.menu, &TradeMenu::closeConfirmed);
    Desk::choose(*desk.popUp(position), u"Close Position"_s);
    QCOMPARE(closes.size(), 0);
    QVERIFY(desk.question());
    QCOMPARE(desk.question()->windowTitle(), u"Close Position"_s);
    QCOMPARE(desk.question()->text(), u"Close position buy 0.10 EURUSD (#01234567)?"_s);
    QCOMPARE(desk.question()->icon(), QMessageBox::Question);
    QCOMPARE(desk.question()->standardButtons(), QMessageBox::Yes | QMessageBox::No);
}

void TestTradeMenu::returnMeansYes()
{
    Desk desk;
    QSignalSpy closes(&desk.menu, &TradeMenu::closeConfirmed);
    Desk::choose(*desk.popUp(position), u"Close Position"_s);
    QTest::keyClick(desk.question(), Qt::Key_Return);
    QCOMPARE(closes.size(), 1);
    QCOMPARE(closes.at(0).at(0).toJsonObject(), parse(position));
}

// The press that chose the entry may last on.
void TestTradeMenu::returnThatIsHeldIsNoAnswer()
{
    Desk desk;
    QSignalSpy closed(&desk.menu, &TradeMenu::closeConfirmed);
    Desk::choose(*desk.popUp(position), u"Close Position"_s);
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

void TestTradeMenu::onlyYesCloses_data()
{
    QTest::addColumn<int>("button");
    QTest::addColumn<int>("closed");
    QTest::newRow("yes") << int(QMessageBox::Yes) << 1;
    QTest::newRow("no") << int(QMessageBox::No) << 0;
    QTest::newRow("escape") << int(QMessageBox::NoButton) << 0;
}

void TestTradeMenu::onlyYesCloses()
{
    QFETCH(int, button);
    QFETCH(int, closed);
    Desk desk;
    QSignalSpy closes(&desk.menu, &TradeMenu::closeConfirmed);
    Desk::choose(*desk.popUp(position), u"Close Position"_s);
    const QPointer<QMessageBox> question = desk.question();
    if (QAbstractButton* pressed = question->button(QMessageBox::StandardButton(button)))
        QTest::mouseClick(pressed, Qt::LeftButton);
    else
        QTest::keyClick(question, Qt::Key_Escape);
    QTRY_VERIFY(!question);
    QCOMPARE(closes.size(), closed);
}

void TestTradeMenu::serverTextInTheQuestionIsText()
{
    Desk desk;
    Desk::choose(
        *desk.popUp(R"({"id":"<b>\n1","type":"B\nUY","symbol":"<table>%2\nX"})"), u"Close Position"_s);
    QCOMPARE(desk.question()->textFormat(), Qt::PlainText);
    QCOMPARE(desk.question()->text(), u"Close position b uy 0.00 <table>%2 X (#<b> 1)?"_s);
}

TAVORAN_TEST(TestTradeMenu)
#include "tst_TradeMenu.moc"
