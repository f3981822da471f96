#include "mainwindow/DesktopLinks.h"
#include "mainwindow/ExpertsFolder.h"
#include "support/TestMain.h"
#include "support/UrlCatcher.h"

using namespace Qt::StringLiterals;

class tst_DesktopLinks final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theExpertsFolderIsMadeAndOpened()
    {
        UrlCatcher desktop;
        DesktopLinks links;
        QDir(ExpertsFolder::defaultPath()).removeRecursively();
        links.openExpertsFolder();
        QCOMPARE(desktop.urls, QList<QUrl>{QUrl::fromLocalFile(ExpertsFolder::defaultPath())});
        QVERIFY(ExpertsFolder::defaultPath().endsWith("/Experts"_L1));
        QVERIFY(QDir(ExpertsFolder::defaultPath()).exists());
    }

    void theGuideIsCopiedAndOpened()
    {
        UrlCatcher desktop;
        DesktopLinks links;
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
        DesktopLinks links;
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
        DesktopLinks links;
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
        DesktopLinks links;
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
