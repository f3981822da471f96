#include "OrderDeskFixture.h"
#include "app/ui/DecimalSpinBox.h"
#include "app/ui/Theme.h"
#include "support/Hands.h"
#include "support/LogMessages.h"
#include "support/TestMain.h"

#include <QLineEdit>

using namespace Qt::StringLiterals;
using fixtures::Desk;
using fixtures::placePath;

class TestOrderDialogAnswers final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        setTheme(false);
        applyTheme(*qApp);
        QFile::remove(logFilePath());
    }

    void fieldsAreDisabledWhileSending()
    {
        Desk desk;
        desk.click(u"Limit Order"_s);
        desk.type(u"orderPrice"_s, u"1.07"_s);
        desk.buyAndWait();
        const QList<QWidget*> fields{desk.sell(), desk.buy(), desk.combo(u"orderSymbol"_s),
            desk.part<DecimalSpinBox>(u"orderVolume"_s), desk.edit(u"orderStopLoss"_s),
            desk.edit(u"orderTakeProfit"_s), desk.edit(u"orderPrice"_s), desk.combo(u"orderComment"_s)};
        for (const QWidget* field : fields)
            QVERIFY2(!field->isEnabled(), qPrintable(field->objectName()));
        QCOMPARE(desk.buy()->parentWidget()->cursor().shape(), Qt::BusyCursor);
        QTest::mouseClick(desk.buy(), Qt::LeftButton);
        QTest::mouseClick(desk.sell(), Qt::LeftButton);
        desk.server.release(StubAnswer::message(u"No"_s, 400));
        QTRY_VERIFY(desk.error()->isVisible());
        for (const QWidget* field : fields)
            QVERIFY2(field->isEnabled(), qPrintable(field->objectName()));
        QCOMPARE(desk.buy()->parentWidget()->cursor().shape(), Qt::ArrowCursor);
        QCOMPARE(desk.server.count("POST", placePath), 1);
    }

    void aRefusalIsShownAndFieldsStay()
    {
        Desk desk;
        desk.server.on("POST", placePath, StubAnswer::message(u"Not enough money"_s, 400));
        QSignalSpy placed(desk.dialog, &OrderDialog::orderPlaced);
        QSignalSpy unknown(desk.dialog, &OrderDialog::outcomeUnknown);
        desk.type(u"orderStopLoss"_s, u"1.05"_s);
        QTest::mouseClick(desk.buy(), Qt::LeftButton);
        QTRY_VERIFY(desk.error()->isVisible());
        QCOMPARE(desk.error()->text(), u"Not enough money"_s);
        QVERIFY(desk.dialog->isVisible());
        QCOMPARE(desk.edit(u"orderStopLoss"_s)->text(), u"1.05"_s);
        QCOMPARE(desk.sounds, QList{SoundKind::Error});
        QCOMPARE(placed.size(), 0);
        QCOMPARE(unknown.size(), 0);
    }

    void everyRefusalStandsInTheLog()
    {
        Desk desk;
        desk.server.on("POST", placePath, StubAnswer::message(u"Not enough\nmoney %1"_s, 400));
        QTest::mouseClick(desk.buy(), Qt::LeftButton);
        QTRY_VERIFY(desk.error()->isVisible());
        desk.click(u"Limit Order"_s);
        QTest::mouseClick(desk.buy(), Qt::LeftButton);
        QCOMPARE(desk.error()->text(), u"Please enter a valid trigger price."_s);
        QCOMPARE(fixtures::logMessages().filter(u"[Trade]"_s),
            QStringList(
                {u"[Trade] Not enough money %1"_s, u"[Trade] Please enter a valid trigger price."_s}));
    }

    void aRefusalCanBeCorrectedAndSentAgain()
    {
        Desk desk;
        desk.server.once("POST", placePath, StubAnswer::message(u"Too big"_s, 400));
        desk.server.once("POST", placePath, StubAnswer::held());
        QSignalSpy placed(desk.dialog, &OrderDialog::orderPlaced);
        QTest::mouseClick(desk.buy(), Qt::LeftButton);
        QTRY_VERIFY(desk.error()->isVisible());
        QTest::mouseClick(desk.buy(), Qt::LeftButton);
        QVERIFY(!desk.error()->isVisible());
        QTRY_COMPARE(desk.server.heldCount(), 1);
        desk.server.release(StubAnswer::json("{}"));
        QTRY_COMPARE(placed.size(), 1);
        QTRY_VERIFY(!desk.dialog);
    }

    void aRefusalWithoutMessageShowsTheNetworksText()
    {
        Desk desk;
        desk.server.on("POST", placePath, StubAnswer::html("<h1>Bad</h1>", 400));
        QTest::mouseClick(desk.buy(), Qt::LeftButton);
        QTRY_VERIFY(desk.error()->isVisible());
        QVERIFY(!desk.error()->text().isEmpty());
        QVERIFY(!desk.error()->text().contains(u"<h1>"_s));
    }

    void noRefusalPushesTheButtonsOffTheScreen_data()
    {
        QTest::addColumn<QString>("reason");
        QTest::newRow("many lines") << u"no\n"_s.repeated(5000);
        QTest::newRow("many words") << u"no way "_s.repeated(50'000);
        QTest::newRow("one long word") << QString(100'000, u'x');
    }
    void noRefusalPushesTheButtonsOffTheScreen()
    {
        QFETCH(QString, reason);
        Desk desk;
        const QSize before = desk.dialog->size();
        desk.server.on("POST", placePath, StubAnswer::message(reason, 400));
        QTest::mouseClick(desk.buy(), Qt::LeftButton);
        QTRY_VERIFY(desk.error()->isVisible());
        QVERIFY(desk.error()->text().size() <= 400);
        // The layout asks for its room in a later turn.
        QTRY_VERIFY(desk.dialog->height() >= desk.dialog->minimumSizeHint().height());
        QVERIFY2(desk.dialog->height() <= before.height() + 200,
            qPrintable(QString::number(desk.dialog->height())));
        QVERIFY2(
            desk.dialog->width() <= before.width() + 100, qPrintable(QString::number(desk.dialog->width())));
    }

    void aDrippingAnswerEndsAndTheOutcomeIsUnknown()
    {
        Desk desk;
        desk.api.setLimits({.change = 500});
        desk.server.on("POST", placePath, StubAnswer::dripping(QByteArray(1'000'000, ' ')));
        QSignalSpy placed(desk.dialog, &OrderDialog::orderPlaced);
        QSignalSpy unknown(desk.dialog, &OrderDialog::outcomeUnknown);
        QTest::mouseClick(desk.buy(), Qt::LeftButton);
        QTRY_VERIFY((desk.server.drip(), unknown.size() == 1));
        QCOMPARE(desk.error()->text(), u"no answer; the order may have been carried out"_s);
        QVERIFY(desk.buy()->isEnabled());
        QCOMPARE(placed.size(), 0);
        QCOMPARE(desk.server.count("POST", placePath), 1);
    }

    void anUncertainOutcomeIsNeverReportedAsDone_data()
    {
        QTest::addColumn<int>("kind");
        QTest::newRow("connection closed after the order was written") << 0;
        QTest::newRow("bytes that are not HTTP") << 1;
        QTest::newRow("a gateway that gave up") << 2;
    }
    void anUncertainOutcomeIsNeverReportedAsDone()
    {
        QFETCH(int, kind);
        const QList<StubAnswer> answers{StubAnswer::closed(), StubAnswer::raw("garbage\r\n\r\n"),
            StubAnswer::html("<h1>Gateway</h1>", 504)};
        Desk desk;
        desk.server.on("POST", placePath, answers.at(kind));
        QSignalSpy placed(desk.dialog, &OrderDialog::orderPlaced);
        QSignalSpy unknown(desk.dialog, &OrderDialog::outcomeUnknown);
        QTest::mouseClick(desk.buy(), Qt::LeftButton);
        QTRY_COMPARE(unknown.size(), 1);
        QVERIFY(desk.error()->isVisible());
        QVERIFY(!desk.error()->text().isEmpty());
        QVERIFY(desk.dialog->isVisible());
        QVERIFY(desk.buy()->isEnabled());
        QCOMPARE(placed.size(), 0);
        QCOMPARE(desk.server.count("POST", placePath), 1);
    }

    void aRedirectIsNoSuccess()
    {
        Desk desk;
        desk.server.on("POST", placePath, StubAnswer::redirect(u"/elsewhere"_s));
        QSignalSpy placed(desk.dialog, &OrderDialog::orderPlaced);
        QTest::mouseClick(desk.buy(), Qt::LeftButton);
        QTRY_VERIFY(desk.error()->isVisible());
        QCOMPARE(placed.size(), 0);
    }

    void anUnreachableServerIsReported()
    {
        Desk desk;
        desk.server.shutDown();
        QSignalSpy placed(desk.dialog, &OrderDialog::orderPlaced);
        QTest::mouseClick(desk.buy(), Qt::LeftButton);
        QTRY_VERIFY(desk.error()->isVisible());
        QVERIFY(desk.buy()->isEnabled());
        QCOMPARE(placed.size(), 0);
    }

    void aReadableAnswerIsNotAskedForOnPurpose_data()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<int>("status");
        QTest::newRow("a page") << "<h1>Done</h1>"_ba << 200;
        QTest::newRow("a cut object") << "{\"id\":\"t-"_ba << 201;
        QTest::newRow("a list") << "[1]"_ba << 200;
        QTest::newRow("a message") << R"({"message":"Fine"})"_ba << 200;
        QTest::newRow("nothing") << ""_ba << 200;
    }
    // The status says that the order was placed; a body that was lost on the way takes nothing back.
    void aReadableAnswerIsNotAskedForOnPurpose()
    {
        QFETCH(QByteArray, body);
        QFETCH(int, status);
        Desk desk;
        desk.server.on("POST", placePath, StubAnswer::json(body, status));
        QSignalSpy placed(desk.dialog, &OrderDialog::orderPlaced);
        QTest::mouseClick(desk.buy(), Qt::LeftButton);
        QTRY_VERIFY(!desk.dialog);
        QCOMPARE(placed.size(), 1);
    }

    void closedWhileSendingItLeavesAndReportsTheOrder_data()
    {
        QTest::addColumn<int>("way");
        QTest::newRow("by the Escape key") << 0;
        QTest::newRow("by the button of the left list") << 1;
        QTest::newRow("by the title bar") << 2;
    }
    void closedWhileSendingItLeavesAndReportsTheOrder()
    {
        QFETCH(int, way);
        Desk desk;
        QSignalSpy placed(desk.dialog, &OrderDialog::orderPlaced);
        QSignalSpy unknown(desk.dialog, &OrderDialog::outcomeUnknown);
        QSignalSpy finished(desk.dialog, &QDialog::finished);
        desk.buyAndWait();
        if (way == 0)
            QTest::keyClick(desk.dialog, Qt::Key_Escape);
        else if (way == 1)
            desk.click(u"Minimize"_s);
        else
            desk.dialog->close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(desk.dialog);
        QVERIFY(!desk.dialog->isVisible());
        QCOMPARE(finished.size(), 0);
        QCOMPARE(placed.size(), 0);
        desk.server.release(StubAnswer::json("{}"));
        QTRY_VERIFY(!desk.dialog);
        QCOMPARE(placed.size(), 1);
        QCOMPARE(desk.sounds, QList{SoundKind::Open});
        QCOMPARE(unknown.size(), 0);
    }

    void closedWhileSendingItComesBackWithARefusal()
    {
        Desk desk;
        desk.type(u"orderStopLoss"_s, u"1.05"_s);
        desk.buy()->setFocus();
        desk.buyAndWait();
        desk.dialog->close();
        QVERIFY(!desk.dialog->isVisible());
        QLineEdit elsewhere;
        elsewhere.show();
        QVERIFY(hands::arriveAt(&elsewhere));
        desk.server.release(StubAnswer::message(u"Not enough money"_s, 400));
        QTRY_VERIFY(desk.dialog->isVisible());
        QVERIFY(desk.error()->isVisible());
        QCOMPARE(desk.error()->text(), u"Not enough money"_s);
        QCOMPARE(desk.edit(u"orderStopLoss"_s)->text(), u"1.05"_s);
        QVERIFY(desk.buy()->isEnabled());
        QCOMPARE(desk.sounds, QList{SoundKind::Error});
        // Keys meant for another window must neither place the order again nor change it.
        QVERIFY(hands::arriveAt(desk.dialog));
        hands::type(u"5 "_s);
        hands::press(Qt::Key_Return);
        QCOMPARE(desk.part<DecimalSpinBox>(u"orderVolume"_s)->value(), 0.01);
        QCOMPARE(desk.edit(u"orderStopLoss"_s)->text(), u"1.05"_s);
        QCOMPARE(desk.server.count("POST", placePath), 1);
        hands::press(Qt::Key_Tab);
        QCOMPARE(hands::focused(), u"Market Execution"_s);
        // The next order can be left in the same way.
        QTest::mouseClick(desk.buy(), Qt::LeftButton);
        QTRY_COMPARE(desk.server.heldCount(), 1);
        desk.dialog->close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(desk.dialog && !desk.dialog->isVisible());
        desk.server.release(StubAnswer::message(u"Still not"_s, 400));
        QTRY_COMPARE(desk.error()->text(), u"Still not"_s);
        desk.dialog->close();
        QTRY_VERIFY(!desk.dialog);
    }

    void closedWhileSendingItComesBackWhenNobodyKnows()
    {
        Desk desk;
        QSignalSpy placed(desk.dialog, &OrderDialog::orderPlaced);
        QSignalSpy unknown(desk.dialog, &OrderDialog::outcomeUnknown);
        desk.buyAndWait();
        desk.dialog->close();
        desk.server.release(StubAnswer::html("<h1>Gateway</h1>", 504));
        QTRY_COMPARE(unknown.size(), 1);
        QVERIFY(desk.dialog->isVisible());
        QVERIFY(desk.error()->isVisible());
        QCOMPARE(placed.size(), 0);
    }

    void closedTwiceWhileSendingItStillTellsTheSuccess()
    {
        Desk desk;
        QSignalSpy placed(desk.dialog, &OrderDialog::orderPlaced);
        QSignalSpy unknown(desk.dialog, &OrderDialog::outcomeUnknown);
        QSignalSpy unseen(desk.dialog, &OrderDialog::failedUnseen);
        desk.buyAndWait();
        desk.dialog->close();
        QVERIFY(desk.dialog->mayReturn());
        desk.dialog->show();
        QVERIFY(!desk.buy()->isEnabled());
        QTest::keyClick(desk.dialog, Qt::Key_Escape);
        QVERIFY(!desk.dialog->mayReturn());
        desk.dialog->close(); // however often
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(desk.dialog && !desk.dialog->isVisible());
        desk.server.release(StubAnswer::json("{}"));
        QTRY_VERIFY(!desk.dialog);
        QCOMPARE(placed.size(), 1);
        QCOMPARE(desk.sounds, QList{SoundKind::Open});
        QCOMPARE(unknown.size(), 0);
        QCOMPARE(unseen.size(), 0);
        QCOMPARE(desk.server.count("POST", placePath), 1);
    }

    void closedTwiceWhileSendingItStillTellsTheFailure_data()
    {
        QTest::addColumn<int>("status");
        QTest::newRow("refused") << 400;
        QTest::newRow("nobody knows") << 504;
    }
    void closedTwiceWhileSendingItStillTellsTheFailure()
    {
        QFETCH(int, status);
        Desk desk;
        QSignalSpy placed(desk.dialog, &OrderDialog::orderPlaced);
        QSignalSpy unknown(desk.dialog, &OrderDialog::outcomeUnknown);
        QSignalSpy unseen(desk.dialog, &OrderDialog::failedUnseen);
        desk.buyAndWait();
        desk.dialog->close();
        desk.dialog->show();
        desk.dialog->close();
        QCOMPARE(unknown.size(), 0);
        bool wasSeen = false;
        connect(qApp, &QGuiApplication::focusWindowChanged, desk.dialog,
            [&] { wasSeen |= desk.dialog->isVisible(); });
        desk.server.release(StubAnswer::message(u"Not enough money"_s, status));
        QTRY_VERIFY(!desk.dialog);
        QVERIFY(!wasSeen);
        QCOMPARE(unseen, QList<QVariantList>{{u"Not enough money"_s}});
        QCOMPARE(desk.sounds, QList{SoundKind::Error});
        QCOMPARE(unknown.size(), status == 504 ? 1 : 0);
        QCOMPARE(placed.size(), 0);
        QCOMPARE(desk.server.count("POST", placePath), 1);
    }

    void aWindowThatMayNotReturnTellsTheFailureUnseen()
    {
        Desk desk;
        bool may = true;
        desk.dialog->setReturnRule([&may] { return may; });
        QSignalSpy unseen(desk.dialog, &OrderDialog::failedUnseen);
        desk.buyAndWait();
        desk.dialog->close();
        QVERIFY(desk.dialog->mayReturn());
        may = false;
        QVERIFY(!desk.dialog->mayReturn());
        desk.server.release(StubAnswer::message(u"No"_s, 400));
        QTRY_VERIFY(!desk.dialog);
        QCOMPARE(unseen, QList<QVariantList>{{u"No"_s}});
    }

    void aWindowOnTheScreenShowsItsFailureWhateverTheRule()
    {
        Desk desk;
        desk.dialog->setReturnRule([] { return false; });
        desk.server.on("POST", placePath, StubAnswer::message(u"No"_s, 400));
        QSignalSpy unseen(desk.dialog, &OrderDialog::failedUnseen);
        QTest::mouseClick(desk.buy(), Qt::LeftButton);
        QTRY_VERIFY(desk.error()->isVisible());
        QVERIFY(desk.dialog->isVisible());
        QVERIFY(desk.buy()->isEnabled());
        QCOMPARE(unseen.size(), 0);
        desk.dialog->close();
        QTRY_VERIFY(!desk.dialog);
    }

    void leftForGoodItIsGoneUnlessItWaits()
    {
        const Desk idle;
        idle.dialog->leaveForGood();
        QTRY_VERIFY(!idle.dialog);

        Desk waiting;
        waiting.server.on("POST", placePath, StubAnswer::held());
        QSignalSpy placed(waiting.dialog, &OrderDialog::orderPlaced);
        QTest::mouseClick(waiting.buy(), Qt::LeftButton);
        QTRY_COMPARE(waiting.server.heldCount(), 1);
        waiting.dialog->leaveForGood();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(waiting.dialog && !waiting.dialog->isVisible() && !waiting.dialog->mayReturn());
        waiting.server.release(StubAnswer::json("{}"));
        QTRY_VERIFY(!waiting.dialog);
        QCOMPARE(placed.size(), 1);
    }

    void aSecondPressOfTheSpaceBarPressesNothingElse()
    {
        Desk desk;
        desk.server.on("POST", placePath, StubAnswer::held());
        desk.click(u"Limit Order"_s);
        desk.type(u"orderPrice"_s, u"1.07"_s);
        for (QPushButton* button : {desk.sell(), desk.buy()}) {
            button->setFocus();
            QTest::keyClick(button, Qt::Key_Space);
            QTRY_COMPARE(desk.server.heldCount(), 1);
            QVERIFY(!qobject_cast<QPushButton*>(desk.dialog->focusWidget()));
            QTest::keyClick(desk.dialog->focusWidget(), Qt::Key_Space);
            QVERIFY(desk.dialog->isVisible());
            QVERIFY(desk.button(u"Limit Order"_s)->isChecked());
            desk.server.release(StubAnswer::message(u"No"_s, 400));
            QTRY_VERIFY(desk.error()->isVisible());
            QCOMPARE(desk.dialog->focusWidget(), button);
        }
    }

    void aWindowDestroyedWhileSendingDoesNoHarm()
    {
        Desk desk;
        desk.buyAndWait();
        const QPointer<QNetworkReply> reply = desk.api.findChild<QNetworkReply*>();
        QVERIFY(reply);
        delete desk.dialog;
        desk.server.release(StubAnswer::json("{}"));
        QTRY_VERIFY(!reply);
    }
};

TAVORAN_TEST(TestOrderDialogAnswers)
#include "tst_OrderDialogAnswers.moc"
