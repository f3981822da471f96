#include "app/base/Log.h"
#include "app/base/Secrets.h"
#include "support/TestMain.h"

#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace {

QStringList logLines()
{
    QFile file(logFilePath());
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QStringList lines = QString::fromUtf8(file.readAll()).split(u'\n');
    lines.removeLast();
    return lines;
}

/// The last entry without its time and the two blanks.
QString lastMessage()
{
    return logLines().constLast().mid(14);
}

} // namespace

class TestLog : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { QFile::remove(logFilePath()); }

    void theLogLiesInTheTemporaryFolder()
    {
        QCOMPARE(logFilePath(), QDir::tempPath() + "/tavoran-terminal.log"_L1);
    }

    void anEntryIsTheTimeTwoBlanksAndTheMessage()
    {
        appLog(u"feed connected"_s);
        QCOMPARE(logLines().size(), 1);
        const QRegularExpression shape(u"^[0-2]\\d:[0-5]\\d:[0-5]\\d\\.\\d{3}  feed connected$"_s);
        QVERIFY2(shape.match(logLines().constFirst()).hasMatch(), qPrintable(logLines().constFirst()));
    }

    void entriesAreAppendedInUtf8()
    {
        appLog(u"first"_s);
        appLog(u"zwölf → ● 元"_s);
        QCOMPARE(logLines().size(), 2);
        QCOMPARE(lastMessage(), u"zwölf → ● 元"_s);
    }

    void placeholdersInAMessageStayAsTheyAre()
    {
        appLog(u"%1 and %2 and %n"_s);
        QCOMPARE(lastMessage(), u"%1 and %2 and %n"_s);
    }

    void aMessageNeverBreaksItsLine()
    {
        appLog(u"one\ntwo\r\nthree\u2028four\x1b[31m"_s);
        QCOMPARE(logLines().size(), 1);
        QCOMPARE(lastMessage(), u"one two  three four [31m"_s);
    }

    void theLogIsReadableByItsOwnerAlone()
    {
        appLog(u"x"_s);
        const QFile::Permissions others
            = QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther;
        QVERIFY(!(QFile::permissions(logFilePath()) & others));
    }

    void theLogIsNotWrittenThroughALink()
    {
        const QString target = QDir::tempPath() + "/target"_L1;
        QFile::remove(target);
        QVERIFY(QFile::link(target, logFilePath()));
        appLog(u"x"_s);
        QVERIFY(!QFile::exists(target));
        QFile::remove(logFilePath());
    }

    void anUnwritableLogIsSilent()
    {
        QVERIFY(QDir().mkdir(logFilePath()));
        appLog(u"x"_s);
        QVERIFY(QDir().rmdir(logFilePath()));
        appLog(u"y"_s);
        QCOMPARE(lastMessage(), u"y"_s);
    }

    void qtMessagesAreLoggedWithTheirType()
    {
        installMessageHandler();
        qWarning("careful\nnow %s", "%1");
        QCOMPARE(lastMessage(), u"[qt:1] careful now %1"_s);
        qDebug("d");
        QCOMPARE(lastMessage(), u"[qt:0] d"_s);
        qCritical("c");
        QCOMPARE(lastMessage(), u"[qt:2] c"_s);
        qInfo("i");
        QCOMPARE(lastMessage(), u"[qt:4] i"_s);
        qInstallMessageHandler(nullptr);
    }

    void aSecretNeverReachesTheLog()
    {
        keepSecret(u"se+cret/token"_s);
        appLog(u"GET https://x/ws?token=se%2Bcret%2Ftoken failed for se+cret/token."_s);
        QCOMPARE(lastMessage(), u"GET https://x/ws?token=[hidden] failed for [hidden]."_s);
    }

    void aSecretWithALineBreakIsHiddenToo()
    {
        keepSecret(u"broken\nsecret"_s);
        appLog(u"value broken\nsecret here"_s);
        QCOMPARE(lastMessage(), u"value [hidden] here"_s);
    }

    void anEndlessMessageIsCut()
    {
        appLog(QString(1'000'000, u'x'));
        QCOMPARE(lastMessage(), QString(8192, u'x') + u'…');
    }

    void wordsThatAreTooShortForASecretAreNotMasked()
    {
        keepSecret(u"a"_s);
        keepSecret(QString());
        appLog(u"a plain message"_s);
        QCOMPARE(lastMessage(), u"a plain message"_s);
    }
};

TAVORAN_TEST(TestLog)
#include "tst_Log.moc"
