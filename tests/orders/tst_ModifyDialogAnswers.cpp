#include "ModifyDeskFixture.h"
#include "support/Hands.h"
#include "support/LogMessages.h"
#include "support/TestMain.h"

#include <QLineEdit>

using namespace Qt::StringLiterals;
using fixtures::ModifyDesk;
using fixtures::modifyPath;

Q_DECLARE_METATYPE(StubAnswer)

class TestModifyDialogAnswers final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany)); }

    void successIsReportedAndCloses()
    {
        ModifyDesk desk;
        desk.server.on("PUT", modifyPath, StubAnswer::json("{}"));
        QSignalSpy modified(desk.dialog, &ModifyDialog::modified);
        QSignalSpy accepted(desk.dialog, &QDialog::accepted);
        desk.press();
        QTRY_VERIFY(!desk.dialog);
        QCOMPARE(modified.size(), 1);
        QCOMPARE(accepted.size(), 1);
        QCOMPARE(desk.sounds, QList{SoundKind::Open});
    }

    void successIsReportedBeforeTheWindowCloses()
    {
        ModifyDesk desk;
        desk.server.on("PUT", modifyPath, StubAnswer::json("{}"));
        QStringList course;
        connect(desk.dialog, &ModifyDialog::soundDue, this, [&] { course.append(u"sound"_s); });
        connect(desk.dialog, &ModifyDialog::modified, this,
            [&] { course.append(desk.dialog->isVisible() ? u"modified, still open"_s : u"modified"_s); });
        connect(desk.dialog, &QDialog::finished, this,
            [&](int result) { course.append(u"closed with %1"_s.arg(result)); });
        desk.press();
        QTRY_VERIFY(!desk.dialog);
        QCOMPARE(course, QStringList({u"sound"_s, u"modified, still open"_s, u"closed with 1"_s}));
    }

    void aRefusalIsShownAndCanBeCorrected()
    {
        ModifyDesk desk;
        desk.server.once("PUT", modifyPath, StubAnswer::message(u"Too close"_s, 400));
        desk.server.once("PUT", modifyPath, StubAnswer::held());
        QSignalSpy modified(desk.dialog, &ModifyDialog::modified);
        QSignalSpy unknown(desk.dialog, &ModifyDialog::outcomeUnknown);
        desk.press();
        QTRY_VERIFY(desk.error()->isVisible());
        QCOMPARE(desk.error()->text(), u"Too close"_s);
        QCOMPARE(desk.sounds, QList{SoundKind::Error});
        QCOMPARE(modified.size(), 0);
        QVERIFY(desk.dialog->isVisible());
        QVERIFY(desk.modify()->isEnabled());
        QCOMPARE(unknown.size(), 0);
        desk.press();
        QVERIFY(!desk.error()->isVisible());
        QTRY_COMPARE(desk.server.heldCount(), 1);
        desk.server.release(StubAnswer::json("{}"));
        QTRY_COMPARE(modified.size(), 1);
    }

    void everyRefusalStandsInTheLog()
    {
        QFile::remove(logFilePath());
        ModifyDesk desk;
        desk.server.on("PUT", modifyPath, StubAnswer::message(u"Too close"_s, 400));
        desk.press();
        QTRY_VERIFY(desk.error()->isVisible());
        ModifyDesk nameless(records::position(".."));
        nameless.press();
        QVERIFY(nameless.error()->isVisible());
        ModifyDesk unfinished;
        unfinished.type("modifyTakeProfit", u"."_s);
        unfinished.press();
        QVERIFY(unfinished.error()->isVisible());
        QCOMPARE(fixtures::logMessages().filter(u"[Trade]"_s),
            QStringList({u"[Trade] Too close"_s, u"[Trade] This trade has no usable id."_s,
                u"[Trade] Please enter a valid price."_s}));
    }

    void aRefusalWithMarkupIsShownAsText()
    {
        ModifyDesk desk;
        desk.server.on("PUT", modifyPath, StubAnswer::message(u"<img src=x>"_s, 400));
        desk.press();
        QTRY_VERIFY(desk.error()->isVisible());
        QCOMPARE(desk.error()->textFormat(), Qt::PlainText);
    }

    void noRefusalPushesTheButtonsOffTheScreen_data()
    {
        QTest::addColumn<QString>("reason");
        QTest::newRow("many lines") << u"no\n"_s.repeated(5000);
        QTest::newRow("many words") << u"no way "_s.repeated(50'000);
        QTest::newRow("one long word") << QString(100'000, u'x');
        QTest::newRow("blank lines") << QString(100'000, u'\n') + u"no"_s;
    }
    void noRefusalPushesTheButtonsOffTheScreen()
    {
        QFETCH(QString, reason);
        ModifyDesk desk;
        const QSize before = desk.dialog->size();
        desk.server.on("PUT", modifyPath, StubAnswer::message(reason, 400));
        desk.press();
        QTRY_VERIFY(desk.error()->isVisible());
        QVERIFY(desk.error()->text().size() <= 400);
        // The layout asks for its room in a later turn.
        QTRY_VERIFY(desk.dialog->height() >= desk.dialog->minimumSizeHint().height());
        QVERIFY2(desk.dialog->height() <= before.height() + 200,
            qPrintable(QString::number(desk.dialog->height())));
        QVERIFY2(
            desk.dialog->width() <= before.width() + 100, qPrintable(QString::number(desk.dialog->width())));
        QVERIFY(desk.dialog->rect().contains(desk.modify()->geometry()));
    }

    void aRefusalWithoutAMessageIsShownInTheNetworksWords_data()
    {
        QTest::addColumn<StubAnswer>("answer");
        QTest::newRow("an empty message") << StubAnswer::message({}, 400);
        QTest::newRow("a page") << StubAnswer::html("<h1>message</h1>", 400);
        QTest::newRow("a message that is no text") << StubAnswer::json(R"({"message":{}})", 400);
        QTest::newRow("a page in place of the server") << StubAnswer::html("<h1>message</h1>", 502);
    }
    void aRefusalWithoutAMessageIsShownInTheNetworksWords()
    {
        QFETCH(StubAnswer, answer);
        ModifyDesk desk;
        desk.server.on("PUT", modifyPath, answer);
        desk.press();
        QTRY_VERIFY(desk.error()->isVisible());
        QVERIFY2(desk.error()->text().startsWith(u"Error transferring "_s), qPrintable(desk.error()->text()));
        QVERIFY(!desk.error()->text().contains(u"<h1>"_s));
        QCOMPARE(desk.sounds, QList{SoundKind::Error});
    }

    void anUncertainOutcomeIsAskedFor_data()
    {
        QTest::addColumn<StubAnswer>("answer");
        QTest::newRow("connection closed") << StubAnswer::closed();
        QTest::newRow("server error") << StubAnswer::html("<h1>Bad</h1>", 502);
        QTest::newRow("no answer in time") << StubAnswer::held();
        QTest::newRow("cut within the answer")
            << StubAnswer::raw("HTTP/1.1 200 OK\r\nContent-Length: 90\r\n\r\n{");
    }
    void anUncertainOutcomeIsAskedFor()
    {
        QFETCH(StubAnswer, answer);
        ModifyDesk desk;
        desk.server.on("PUT", modifyPath, answer);
        QSignalSpy modified(desk.dialog, &ModifyDialog::modified);
        QSignalSpy unknown(desk.dialog, &ModifyDialog::outcomeUnknown);
        desk.press();
        if (answer.how == StubAnswer::How::Hold)
            desk.giveUp();
        QTRY_COMPARE(unknown.size(), 1);
        QVERIFY(desk.error()->isVisible());
        QVERIFY(!desk.error()->text().isEmpty());
        QVERIFY(desk.modify()->isEnabled());
        QCOMPARE(desk.sounds, QList{SoundKind::Error});
        QCOMPARE(modified.size(), 0);
        QCOMPARE(desk.server.count("PUT", modifyPath), 1);
    }

    void closedWhileSendingItComesBackWithARefusal()
    {
        ModifyDesk desk;
        desk.pressAndWait();
        desk.dialog->close();
        QVERIFY(!desk.dialog->isVisible());
        QLineEdit elsewhere;
        elsewhere.show();
        QVERIFY(hands::arriveAt(&elsewhere));
        desk.server.release(StubAnswer::message(u"No"_s, 400));
        QTRY_VERIFY(desk.dialog->isVisible());
        QVERIFY(desk.error()->isVisible());
        // What is typed for another window must change no level.
        QVERIFY(hands::arriveAt(desk.dialog));
        hands::type(u"0.5"_s);
        for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Space})
            hands::press(key);
        QVERIFY(desk.modify()->isEnabled());
        QCOMPARE(desk.server.count("PUT", modifyPath), 1);
        QCOMPARE(desk.edit("modifyStopLoss")->text(), QString());
        QCOMPARE(desk.edit("modifyTakeProfit")->text(), u"1.20000"_s);
        hands::press(Qt::Key_Tab);
        QCOMPARE(hands::focused(), u"modifyStopLoss"_s);
        hands::type(u"1.1"_s);
        QCOMPARE(desk.edit("modifyStopLoss")->text(), u"1.1"_s);
    }

    void closedWhileSendingItReportsTheSuccess()
    {
        ModifyDesk desk;
        QSignalSpy modified(desk.dialog, &ModifyDialog::modified);
        desk.pressAndWait();
        QTest::keyClick(desk.dialog, Qt::Key_Escape);
        QVERIFY(desk.dialog && !desk.dialog->isVisible());
        desk.server.release(StubAnswer::json("{}"));
        QTRY_COMPARE(modified.size(), 1);
        QTRY_VERIFY(!desk.dialog);
    }

    void closedTwiceWhileSendingItStillTellsTheSuccess()
    {
        ModifyDesk desk;
        QSignalSpy modified(desk.dialog, &ModifyDialog::modified);
        QSignalSpy unknown(desk.dialog, &ModifyDialog::outcomeUnknown);
        desk.pressAndWait();
        QTest::keyClick(desk.dialog, Qt::Key_Escape);
        desk.dialog->show(); // whoever asks for it again sees it waiting
        QVERIFY(!desk.modify()->isEnabled());
        QTest::keyClick(desk.dialog, Qt::Key_Escape);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(desk.dialog && !desk.dialog->isVisible());
        desk.server.release(StubAnswer::json("{}"));
        QTRY_VERIFY(!desk.dialog);
        QCOMPARE(modified.size(), 1);
        QCOMPARE(desk.sounds, QList{SoundKind::Open});
        QCOMPARE(unknown.size(), 0);
    }

    void closedTwiceWhileSendingItStillTellsTheFailure()
    {
        ModifyDesk desk;
        QSignalSpy unseen(desk.dialog, &ModifyDialog::failedUnseen);
        QSignalSpy unknown(desk.dialog, &ModifyDialog::outcomeUnknown);
        desk.pressAndWait();
        desk.dialog->close();
        desk.dialog->show();
        desk.dialog->close();
        desk.server.release(StubAnswer::message(u"Too close"_s, 400));
        QTRY_VERIFY(!desk.dialog);
        QCOMPARE(unseen, QList<QVariantList>{{u"Too close"_s}});
        QCOMPARE(desk.sounds, QList{SoundKind::Error});
        QCOMPARE(unknown.size(), 0);
    }

    void destroyedWhileSendingItDoesNoHarm()
    {
        ModifyDesk desk;
        desk.pressAndWait();
        delete desk.dialog;
        desk.server.release(StubAnswer::json("{}"));
        QTRY_VERIFY(!desk.isWaiting());
    }
};

TAVORAN_TEST(TestModifyDialogAnswers)
#include "tst_ModifyDialogAnswers.moc"
