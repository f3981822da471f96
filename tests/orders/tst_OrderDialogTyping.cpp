#include "OrderDeskFixture.h"
#include "app/ui/DecimalSpinBox.h"
#include "app/ui/Theme.h"
#include "support/Hands.h"
#include "support/TestMain.h"

#include <QClipboard>
#include <QLineEdit>

using namespace Qt::StringLiterals;
using fixtures::Desk;
using fixtures::parse;
using fixtures::placePath;

class TestOrderDialogTyping final : public QObject {
    Q_OBJECT

    static void bring(const QString& way, QLineEdit& edit, const QString& text)
    {
        QGuiApplication::clipboard()->setText(text);
        if (way == u"drop"_s)
            return hands::drop(edit, text);
        edit.selectAll();
        if (way == u"paste"_s)
            edit.paste();
        else if (way == u"set"_s)
            edit.setText(text);
        else
            QTest::keyClicks(&edit, text);
    }

    static void addWays()
    {
        QTest::addColumn<QString>("way");
        for (const char* way : {"paste", "drop", "set", "type"})
            QTest::newRow(way) << QString::fromLatin1(way);
    }

private Q_SLOTS:
    void init()
    {
        setTheme(false);
        applyTheme(*qApp);
    }

    void whatIsTypedAtOnceIsTheVolume()
    {
        const Desk desk;
        QVERIFY(hands::arriveAt(desk.dialog));
        hands::type(u"2,5"_s);
        QCOMPARE(desk.part<DecimalSpinBox>(u"orderVolume"_s)->value(), 2.5);
    }

    void keysPressedAtOncePlaceNothing()
    {
        Desk desk;
        QVERIFY(hands::arriveAt(desk.dialog));
        for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Space})
            hands::press(key);
        QCoreApplication::processEvents();
        QVERIFY(desk.dialog->isVisible());
        QVERIFY(desk.buy()->isEnabled());
        QVERIFY(desk.server.requests().isEmpty());
        QCOMPARE(desk.part<DecimalSpinBox>(u"orderVolume"_s)->value(), 0.01);
    }

    void aMarketOrderIsPlacedByTheKeyboardAlone()
    {
        Desk desk;
        desk.server.on("POST", placePath, StubAnswer::json("{}"));
        QVERIFY(hands::arriveAt(desk.dialog));
        hands::type(u"0.2"_s);
        hands::press(Qt::Key_Tab);
        hands::type(u"1.05"_s);
        hands::press(Qt::Key_Tab);
        hands::type(u"1.15"_s);
        hands::press(Qt::Key_Tab);
        hands::type(u"note"_s);
        hands::press(Qt::Key_Tab);
        hands::press(Qt::Key_Tab);
        hands::press(Qt::Key_Space);
        QTRY_VERIFY(!desk.dialog);
        QCOMPARE(
            desk.sent(), parse(R"({"symbol":"EURUSD","lotSize":0.2,"accountId":"acc-1","orderKind":"MARKET",
        "type":"BUY","stopLoss":1.05,"takeProfit":1.15,"comment":"note"})"));
    }

    void tabGoesThroughTheFieldsToTheButtonsAndTheList()
    {
        const Desk desk;
        QVERIFY(hands::arriveAt(desk.dialog));
        QCOMPARE(hands::tabOrder(),
            QStringList({u"orderVolume"_s, u"orderStopLoss"_s, u"orderTakeProfit"_s, u"orderComment"_s,
                u"orderSell"_s, u"orderBuy"_s, u"Market Execution"_s, u"Minimize"_s, u"orderSymbol"_s}));
    }

    void aPendingOrderHasItsPriceBeforeTheComment()
    {
        const Desk desk;
        QVERIFY(hands::arriveAt(desk.dialog));
        desk.click(u"Stop Order"_s);
        desk.part<DecimalSpinBox>(u"orderVolume"_s)->setFocus();
        QCOMPARE(hands::tabOrder(),
            QStringList({u"orderVolume"_s, u"orderStopLoss"_s, u"orderTakeProfit"_s, u"orderPrice"_s,
                u"orderComment"_s, u"orderSell"_s, u"orderBuy"_s, u"Stop Order"_s, u"Minimize"_s,
                u"orderSymbol"_s}));
    }

    void whiteSpaceAroundALevelIsNoPartOfIt_data()
    {
        QTest::addColumn<QString>("way");
        QTest::addColumn<QString>("field");
        QTest::addColumn<QString>("key");
        for (const char* way : {"paste", "drop", "set", "type"}) {
            for (const auto& [field, key] : {std::pair("orderPrice", "pendingPrice"),
                     std::pair("orderStopLoss", "stopLoss"), std::pair("orderTakeProfit", "takeProfit")})
                QTest::addRow("%s into %s", way, field)
                    << QString::fromLatin1(way) << QString::fromLatin1(field) << QString::fromLatin1(key);
        }
    }
    void whiteSpaceAroundALevelIsNoPartOfIt()
    {
        QFETCH(QString, way);
        QFETCH(QString, field);
        QFETCH(QString, key);
        Desk desk;
        desk.server.on("POST", placePath, StubAnswer::json("{}"));
        desk.click(u"Limit Order"_s);
        desk.type(u"orderPrice"_s, u"1.07"_s);
        bring(way, *desk.edit(field), way == u"type"_s ? u"  1.5 "_s : u" \t1.5\u00a0\r\n"_s);
        QCOMPARE(desk.edit(field)->text(), u"1.5"_s);
        QTest::mouseClick(desk.buy(), Qt::LeftButton);
        QTRY_VERIFY(!desk.dialog);
        QCOMPARE(desk.sent().value(key).toDouble(), 1.5);
    }

    void whiteSpaceAroundTheVolumeIsNoPartOfIt_data() { addWays(); }
    void whiteSpaceAroundTheVolumeIsNoPartOfIt()
    {
        QFETCH(QString, way);
        Desk desk;
        desk.server.on("POST", placePath, StubAnswer::json("{}"));
        auto* volume = desk.part<DecimalSpinBox>(u"orderVolume"_s);
        bring(way, *volume->findChild<QLineEdit*>(), way == u"type"_s ? u"  2.5 "_s : u" \t2.5\u00a0\r\n"_s);
        QCOMPARE(volume->value(), 2.5);
        QTest::mouseClick(desk.buy(), Qt::LeftButton);
        QTRY_VERIFY(!desk.dialog);
        QCOMPARE(desk.sent().value("lotSize"_L1).toDouble(), 2.5);
    }

    void theWheelChangesNothingThatHasNotTheFocus()
    {
        Desk desk;
        QVERIFY(hands::arriveAt(desk.dialog));
        auto* volume = desk.part<DecimalSpinBox>(u"orderVolume"_s);
        QComboBox* comment = desk.combo(u"orderComment"_s);
        comment->addItems({u"one"_s, u"two"_s});
        comment->setCurrentIndex(0);
        desk.edit(u"orderStopLoss"_s)->setFocus();
        for (const int angle : {120, -120}) {
            for (QWidget* field : std::initializer_list<QWidget*>{volume, volume->findChild<QLineEdit*>(),
                     desk.combo(u"orderSymbol"_s), comment, comment->lineEdit()})
                hands::turnWheel(*field, angle);
            QCOMPARE(volume->value(), 0.01);
            QCOMPARE(desk.combo(u"orderSymbol"_s)->currentIndex(), 0);
            QCOMPARE(comment->currentIndex(), 0);
            QVERIFY(desk.edit(u"orderStopLoss"_s)->hasFocus());
        }
    }

    void theWheelTurnsWhatHasTheFocus()
    {
        Desk desk;
        QVERIFY(hands::arriveAt(desk.dialog));
        auto* volume = desk.part<DecimalSpinBox>(u"orderVolume"_s);
        volume->setFocus();
        hands::turnWheel(*volume, 120);
        QCOMPARE(volume->value(), 0.02);
        desk.combo(u"orderSymbol"_s)->setFocus();
        hands::turnWheel(*desk.combo(u"orderSymbol"_s), -120);
        QCOMPARE(desk.combo(u"orderSymbol"_s)->currentIndex(), 1);
    }
};

TAVORAN_TEST(TestOrderDialogTyping)
#include "tst_OrderDialogTyping.moc"
