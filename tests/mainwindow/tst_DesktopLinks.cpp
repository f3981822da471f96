#include "CommandDriver.h"
#include "mainwindow/DesktopLinks.h"
#include "mainwindow/ExpertsFolder.h"
#include "support/TestMain.h"
#include "support/UrlCatcher.h"

#include <QMessageBox>

using namespace Qt::StringLiterals;

namespace {

QList<QMessageBox*> boxes(const CommandDriver& d)
{
    QList<QMessageBox*> shown;
    for (QMessageBox* box : d.f.window->findChildren<QMessageBox*>()) {
        if (box->isVisible())
            shown.append(box);
    }
    return shown;
}

} // namespace

class tst_DesktopLinks final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theExpertsFolderIsMadeAndOpened()
    {
        UrlCatcher desktop;
        QWidget window;
        DesktopLinks links(window);
        QDir(ExpertsFolder::defaultPath()).removeRecursively();
        links.openExpertsFolder();
        QCOMPARE(desktop.urls, QList<QUrl>{QUrl::fromLocalFile(ExpertsFolder::defaultPath())});
        QVERIFY(ExpertsFolder::defaultPath().endsWith("/Experts"_L1));
        QVERIFY(QDir(ExpertsFolder::defaultPath()).exists());
    }

    void theGuideIsCopiedAndOpened()
    {
        UrlCatcher desktop;
        QWidget window;
        DesktopLinks links(window);
        const QSignalSpy complaints(&links, &DesktopLinks::logMessage);
        links.openGuide();
        QCOMPARE(desktop.urls, QList<QUrl>{QUrl::fromLocalFile(DesktopLinks::guidePath())});
        QCOMPARE(QFileInfo(DesktopLinks::guidePath()).fileName(), u"Tavoran-EA-Guide.html"_s);
        QFile copy(DesktopLinks::guidePath());
        QFile original(u":/ea_guide.html"_s);
        QVERIFY(copy.open(QIODevice::ReadOnly) && original.open(QIODevice::ReadOnly));
        QCOMPARE(copy.readAll(), original.readAll());
        QCOMPARE(complaints.count(), 0);
    }

    void anOlderCopyIsReplaced()
    {
        UrlCatcher desktop;
        QWidget window;
        DesktopLinks links(window);
        links.openGuide();
        QFile copy(DesktopLinks::guidePath());
        QVERIFY(copy.open(QIODevice::WriteOnly));
        copy.write("of an earlier version");
        copy.close();
        copy.setPermissions(QFile::ReadOwner);
        links.openGuide();
        QCOMPARE(desktop.urls.size(), 2);
        QVERIFY(copy.open(QIODevice::ReadOnly));
        QVERIFY(copy.readAll().startsWith("<!DOCTYPE html>"));
    }

    void aGuideThatCannotBeWrittenIsTold()
    {
        UrlCatcher desktop;
        QWidget window;
        DesktopLinks links(window);
        QSignalSpy complaints(&links, &DesktopLinks::logMessage);
        QFile::remove(DesktopLinks::guidePath());
        QVERIFY(QDir().mkpath(DesktopLinks::guidePath())); // a folder is in the way
        links.openGuide();
        QVERIFY(QDir().rmdir(DesktopLinks::guidePath()));
        QVERIFY(desktop.urls.isEmpty());
        QCOMPARE(complaints.count(), 1);
        QCOMPARE(complaints.at(0).at(0).toString(), u"Terminal"_s);
        QCOMPARE(complaints.at(0).at(1).toString(),
            u"The guide could not be written to "_s + DesktopLinks::guidePath());
    }

    void aDesktopThatOpensNothingIsTold()
    {
        // A handler without the named slot fails, as a desktop without a program for the file does.
        QObject helpless;
        QDesktopServices::setUrlHandler(u"file"_s, &helpless, "noSuchSlot");
        QWidget window;
        DesktopLinks links(window);
        QSignalSpy complaints(&links, &DesktopLinks::logMessage);
        for (int i = 0; i < 2; ++i)
            QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"No such method QObject::noSuchSlot"_s));
        links.openExpertsFolder();
        links.openGuide();
        QDesktopServices::unsetUrlHandler(u"file"_s);
        QCOMPARE(complaints.count(), 2);
        QCOMPARE(complaints.at(0).at(0).toString(), u"Terminal"_s);
        QCOMPARE(complaints.at(0).at(1).toString(),
            u"The desktop could not open "_s + ExpertsFolder::defaultPath());
        QCOMPARE(
            complaints.at(1).at(1).toString(), u"The desktop could not open "_s + DesktopLinks::guidePath());
    }

    void what_could_not_be_opened_is_said_in_front_of_the_trader()
    {
        const UrlCatcher desktop;
        CommandDriver d;
        d.activate();
        QFile::remove(DesktopLinks::guidePath());
        QVERIFY(QDir().mkpath(DesktopLinks::guidePath())); // a folder is in the way
        for (int i = 0; i < 3; ++i) {
            QTest::keyClick(d.f.window.get(), Qt::Key_F1);
            QTRY_COMPARE(boxes(d).size(), 1); // and no pile of them
        }
        QVERIFY(QDir().rmdir(DesktopLinks::guidePath()));
        QMessageBox& box = *boxes(d).first();
        QCOMPARE(box.text(), u"The guide could not be written to "_s + DesktopLinks::guidePath());
        QCOMPARE(box.textFormat(), Qt::PlainText);
        QCOMPARE(d.f.journalCount(u"Terminal: "_s + box.text()), 3);

        // Trading goes on behind it.
        QVERIFY(!box.isModal());
        QVERIFY(!QApplication::activeModalWidget());
        QTRY_COMPARE(QApplication::activeWindow(), &box);
        QTest::keyClick(&box, Qt::Key_Escape);
        QTRY_VERIFY(boxes(d).isEmpty());
        d.activate();
        QTest::keyClick(d.f.window.get(), Qt::Key_F1);
        QTRY_COMPARE(desktop.urls.size(), 1);
        QVERIFY(boxes(d).isEmpty());
    }

    void theGuideNeedsNothingButItself()
    {
        QFile guide(u":/ea_guide.html"_s);
        QVERIFY(guide.open(QIODevice::ReadOnly));
        const QString page = QString::fromUtf8(guide.readAll());
        QVERIFY(page.contains(u"<title>Tavoran Terminal — Expert Advisors Guide</title>"_s));
        QVERIFY(page.contains(u"<h1>Expert Advisors — Developer Guide</h1>"_s));
        QVERIFY(page.contains(u"prefers-color-scheme: dark"_s));
        for (const auto& outside :
            {u"http:"_s, u"https:"_s, u"src="_s, u"<link"_s, u"<script"_s, u"@import"_s})
            QVERIFY2(!page.contains(outside), qPrintable(outside));
        // Every name that scripts may use, and every function they may define.
        for (const auto& name : {u"OnInit()"_s, u"OnTick()"_s, u"OnTimer()"_s, u"OnDeinit()"_s, u"Print("_s,
                 u"Comment("_s, u"Alert("_s, u"Symbol()"_s, u"Digits()"_s, u"Point()"_s, u"Bid"_s, u"Ask"_s,
                 u"Bars()"_s, u"Open(shift)"_s, u"High(shift)"_s, u"Low(shift)"_s, u"Close(shift)"_s,
                 u"MODE_SMA"_s, u"MODE_EMA"_s, u"iMA(period, method, shift)"_s, u"iRSI(period, shift)"_s,
                 u"Account.balance"_s, u"Account.equity"_s, u"Trade.buy(lots, options)"_s,
                 u"Trade.sell(lots, options)"_s, u"Trade.closeAll()"_s, u"Positions.count()"_s, u"slPoints"_s,
                 u"tpPoints"_s, u"EventSetTimer(seconds)"_s, u"EventKillTimer()"_s})
            QVERIFY2(page.contains(u"<code>"_s + name), qPrintable(name));
    }
};

TAVORAN_TEST(tst_DesktopLinks)
#include "tst_DesktopLinks.moc"

#include <QDesktopServices>
