#include "ModifyDeskFixture.h"
#include "support/Hands.h"
#include "support/TestMain.h"

#include <QClipboard>

using namespace Qt::StringLiterals;
using fixtures::modifiedOrder;
using fixtures::ModifyDesk;
using fixtures::modifyPath;
using fixtures::parse;

class TestModifyDialogTyping final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany)); }

    void whatIsTypedAtOnceIsTheStopLoss()
    {
        ModifyDesk desk;
        desk.server.on("PUT", modifyPath, StubAnswer::held());
        QVERIFY(hands::arriveAt(desk.dialog));
        hands::type(u"1.05000"_s);
        QCOMPARE(desk.edit("modifyStopLoss")->text(), u"1.05000"_s);
        hands::press(Qt::Key_Return);
        QTRY_COMPARE(desk.server.heldCount(), 1);
        QCOMPARE(desk.sent(), parse(R"({"stopLoss":1.05,"takeProfit":1.2})"));
    }

    void whatIsTypedAtOnceReplacesALevelThatIsThere()
    {
        ModifyDesk desk(records::position("t-1").stopLoss(1.1));
        desk.server.on("PUT", modifyPath, StubAnswer::held());
        QVERIFY(hands::arriveAt(desk.dialog));
        hands::type(u"1,2"_s);
        QCOMPARE(desk.edit("modifyStopLoss")->text(), u"1.2"_s);
        hands::press(Qt::Key_Return);
        QTRY_COMPARE(desk.server.heldCount(), 1);
        QCOMPARE(desk.sent(), parse(R"({"stopLoss":1.2})"));
    }

    void whatIsTypedAtOnceIsThePriceOfAPendingOrder()
    {
        ModifyDesk desk(modifiedOrder());
        desk.server.on("PUT", modifyPath, StubAnswer::held());
        QVERIFY(hands::arriveAt(desk.dialog));
        hands::type(u"1.125"_s);
        hands::press(Qt::Key_Return);
        QTRY_COMPARE(desk.server.heldCount(), 1);
        QCOMPARE(desk.sent(), parse(R"({"pendingPrice":1.125,"stopLoss":1.15})"));
    }

    void tabGoesDownTheFieldsToTheButtons()
    {
        {
            const ModifyDesk desk;
            QVERIFY(hands::arriveAt(desk.dialog));
            QCOMPARE(hands::tabOrder(),
                QStringList({u"modifyStopLoss"_s, u"modifyTakeProfit"_s, u"Cancel"_s, u"modifyButton"_s}));
        }
        const ModifyDesk desk(modifiedOrder());
        QVERIFY(hands::arriveAt(desk.dialog));
        QCOMPARE(hands::tabOrder(),
            QStringList({u"modifyPrice"_s, u"modifyStopLoss"_s, u"modifyTakeProfit"_s, u"Cancel"_s,
                u"modifyButton"_s}));
    }

    void enterSendsWhatIsShown()
    {
        ModifyDesk desk(modifiedOrder());
        desk.server.on("PUT", modifyPath, StubAnswer::held());
        QTest::keyClick(desk.edit("modifyTakeProfit"), Qt::Key_Return);
        QTRY_COMPARE(desk.server.heldCount(), 1);
        QCOMPARE(desk.sent(), parse(R"({"pendingPrice":1.1,"stopLoss":1.15})"));
    }

    void whiteSpaceAroundANumberIsNoPartOfIt_data()
    {
        QTest::addColumn<QString>("way");
        QTest::addColumn<QString>("field");
        QTest::addColumn<QString>("key");
        for (const char* way : {"paste", "drop", "set", "type"}) {
            for (const auto& [field, key] : {std::pair("modifyPrice", "pendingPrice"),
                     std::pair("modifyStopLoss", "stopLoss"), std::pair("modifyTakeProfit", "takeProfit")})
                QTest::addRow("%s into %s", way, field)
                    << QString::fromLatin1(way) << QString::fromLatin1(field) << QString::fromLatin1(key);
        }
    }
    void whiteSpaceAroundANumberIsNoPartOfIt()
    {
        QFETCH(QString, way);
        QFETCH(QString, field);
        QFETCH(QString, key);
        const QString text = way == u"type"_s ? u"  1.5 "_s : u" \t1.5\u00a0\n"_s;
        ModifyDesk desk(modifiedOrder());
        auto* edit = desk.edit(field);
        edit->selectAll();
        QGuiApplication::clipboard()->setText(text);
        if (way == u"paste"_s)
            edit->paste();
        else if (way == u"drop"_s)
            hands::drop(*edit, text);
        else if (way == u"set"_s)
            edit->setText(text);
        else
            QTest::keyClicks(edit, text);
        QCOMPARE(edit->text(), u"1.5"_s);
        desk.pressAndWait();
        QCOMPARE(desk.sent().value(key).toDouble(), 1.5);
    }

    void aTypedZeroIsSentOnPurpose()
    {
        ModifyDesk desk;
        desk.type("modifyTakeProfit", u"0"_s);
        desk.pressAndWait();
        QCOMPARE(desk.sent(), parse(R"({"takeProfit":0})"));
    }

    void halfANumberIsNotSent()
    {
        ModifyDesk desk;
        desk.type("modifyTakeProfit", u"."_s);
        QCOMPARE(desk.edit("modifyTakeProfit")->text(), u"."_s);
        desk.press();
        QVERIFY(desk.error()->isVisible());
        QVERIFY(desk.modify()->isEnabled());
        QCOMPARE(desk.server.requests().size(), 0);
    }

    void moreDecimalsThanCanBeTypedAreSentAsShown()
    {
        ModifyDesk desk(records::position("t-1").symbol("SHIB").stopLoss("0.000000012345"), 12);
        QCOMPARE(desk.edit("modifyStopLoss")->text(), u"0.000000012345"_s);
        desk.server.on("PUT", modifyPath, StubAnswer::json("{}"));
        desk.type("modifyTakeProfit", u"0.5"_s);
        desk.press();
        QTRY_COMPARE(desk.server.count("PUT", modifyPath), 1);
        QCOMPARE(desk.sent(), QJsonObject({{u"stopLoss"_s, 0.000000012345}, {u"takeProfit"_s, 0.5}}));
    }

    void anIdThatNamesAnotherPathIsNotSent_data()
    {
        QTest::addColumn<QJsonObject>("trade");
        QTest::newRow("none") << QJsonObject(records::position("t-1").without("id"));
        QTest::newRow("a number") << QJsonObject(records::position(7));
        QTest::newRow("the folder above") << QJsonObject(records::position(".."));
    }
    void anIdThatNamesAnotherPathIsNotSent()
    {
        QFETCH(QJsonObject, trade);
        ModifyDesk desk(trade);
        desk.press();
        QVERIFY(desk.error()->isVisible());
        QCOMPARE(desk.sounds, QList{SoundKind::Error});
        QCOMPARE(desk.server.requests().size(), 0);
    }

    void idsArePercentEncoded()
    {
        ModifyDesk desk(records::position("a/b?c"));
        desk.press();
        QTRY_COMPARE(desk.server.count("PUT", "/api/trades/modify/a%2Fb%3Fc"), 1);
    }

    void blanksAreAnEmptyField()
    {
        ModifyDesk desk;
        desk.edit("modifyTakeProfit")->setText(u"  "_s);
        desk.pressAndWait();
        QCOMPARE(desk.server.last("PUT", modifyPath).body, "{}"_ba);
    }

    void twoPressesSendOnce()
    {
        ModifyDesk desk;
        desk.server.on("PUT", modifyPath, StubAnswer::held());
        desk.press();
        QVERIFY(!desk.modify()->isEnabled());
        desk.press();
        QTest::keyClick(desk.edit("modifyTakeProfit"), Qt::Key_Return);
        QTRY_COMPARE(desk.server.heldCount(), 1);
        desk.server.release(StubAnswer::message(u"No"_s, 400));
        QTRY_VERIFY(desk.error()->isVisible());
        QCOMPARE(desk.server.count("PUT", modifyPath), 1);
    }

    void enterThatIsHeldSendsOnce()
    {
        ModifyDesk desk;
        desk.server.on("PUT", modifyPath, StubAnswer::message(u"Too close"_s, 400));
        QVERIFY(hands::arriveAt(desk.dialog));
        hands::press(Qt::Key_Return);
        QTRY_VERIFY(desk.error()->isVisible());
        for (QWidget* place :
            {static_cast<QWidget*>(desk.edit("modifyStopLoss")), static_cast<QWidget*>(desk.modify())}) {
            place->setFocus();
            hands::hold(Qt::Key_Return);
            hands::hold(Qt::Key_Enter);
        }
        QVERIFY(desk.modify()->isEnabled());
        QCOMPARE(desk.server.count("PUT", modifyPath), 1);
        hands::press(Qt::Key_Return);
        QTRY_COMPARE(desk.server.count("PUT", modifyPath), 2);
    }

    void enterOnCancelSendsNothing()
    {
        ModifyDesk desk;
        QVERIFY(hands::arriveAt(desk.dialog));
        for (int i = 0; i < 2; ++i)
            hands::press(Qt::Key_Tab);
        QCOMPARE(hands::focused(), u"Cancel"_s);
        hands::press(Qt::Key_Return);
        QTRY_VERIFY(!desk.dialog);
        QCOMPARE(desk.server.requests().size(), 0);
    }

    void cancelSendsNothing()
    {
        ModifyDesk desk;
        QSignalSpy rejected(desk.dialog, &QDialog::rejected);
        QVERIFY(!desk.button(u"Cancel"_s)->autoDefault());
        desk.click(u"Cancel"_s);
        QTRY_VERIFY(!desk.dialog);
        QCOMPARE(rejected.size(), 1);
        QCOMPARE(desk.server.requests().size(), 0);
    }
};

TAVORAN_TEST(TestModifyDialogTyping)
#include "tst_ModifyDialogTyping.moc"
