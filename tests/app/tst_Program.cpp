#include "support/LogMessages.h"
#include "support/TestMain.h"

#include <QProcess>

#include <sys/resource.h>

using namespace Qt::StringLiterals;
using fixtures::logMessages;

/// The executable itself, in the one situation in which it ends without a person: no such display.
class TestProgram : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        // Qt gives up with an abort; nobody wants its core file.
        const struct rlimit none = {};
        QCOMPARE(::setrlimit(RLIMIT_CORE, &none), 0);
    }

    void theLogHearsQtBeforeTheApplicationExistsAndTheConsoleHearsNothing()
    {
        QCOMPARE(outputOfOneRun(), QByteArray());
        QCOMPARE(logMessages().constFirst(), u"=== start ==="_s);
        const QString last = logMessages().constLast();
        QVERIFY2(last.startsWith("[qt:3] "_L1), qPrintable(last));
    }

    void eachRunMarksItsStartBehindTheLast()
    {
        const qsizetype before = logMessages().size();
        QVERIFY(before > 1);
        QCOMPARE(outputOfOneRun(), QByteArray());
        QCOMPARE(logMessages().size(), 2 * before);
        QCOMPARE(logMessages()[before], u"=== start ==="_s);
    }

private:
    static QByteArray outputOfOneRun()
    {
        QProcess process;
        process.setProcessChannelMode(QProcess::MergedChannels);
        process.setWorkingDirectory(QDir::tempPath());
        process.start(QStringLiteral(TERMINAL_PROGRAM), {u"-platform"_s, u"nosuchplatform"_s});
        if (!process.waitForFinished())
            return "did not end";
        return process.readAll();
    }
};

TAVORAN_TEST(TestProgram)
#include "tst_Program.moc"
