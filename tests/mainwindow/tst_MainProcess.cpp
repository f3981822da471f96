#include "app/base/TerminalSettings.h"
#include "support/LogMessages.h"
#include "support/Records.h"
#include "support/StubFeedServer.h"
#include "support/StubHttpServer.h"
#include "support/TestMain.h"

#include <QProcess>
#include <QRegularExpression>

using namespace Qt::StringLiterals;
using fixtures::logMessages;

namespace {

QFile::Permissions othersPermissions()
{
    return QFile::ReadGroup | QFile::WriteGroup | QFile::ExeGroup | QFile::ReadOther | QFile::WriteOther
        | QFile::ExeOther;
}

} // namespace

/// The executable as a person starts it, from main() to its exit code, against a scripted server.
class tst_MainProcess final : public QObject {
    Q_OBJECT

    static int run(const QString& what, const QString& platform = u"offscreen"_s)
    {
        QProcess program;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"QT_QPA_PLATFORM"_s, platform);
        environment.insert(u"QT_PLUGIN_PATH"_s, QStringLiteral(DRIVER_PLUGINS));
        environment.insert(u"QT_QPA_GENERIC_PLUGINS"_s, u"tavoran-driver:"_s + what);
        program.setProcessEnvironment(environment);
        program.setProcessChannelMode(QProcess::ForwardedChannels);
        program.start(QStringLiteral(TERMINAL_PROGRAM), {});
        // The server that it talks to lives in this thread.
        const bool ended = QTest::qWaitFor([&] { return program.state() == QProcess::NotRunning; }, 60'000);
        if (!ended) {
            program.kill();
            program.waitForFinished();
        }
        return ended && program.exitStatus() == QProcess::NormalExit ? program.exitCode() : -1;
    }

    std::unique_ptr<StubHttpServer> m_http;
    std::unique_ptr<StubFeedServer> m_feed;

private Q_SLOTS:
    void init()
    {
        m_feed.reset();
        m_http = std::make_unique<StubHttpServer>();
        m_feed = std::make_unique<StubFeedServer>(*m_http);
        m_feed->setGreeting(records::hello({records::symbol("EURUSD")}));
        m_http->on("GET", "/api/settings/public", StubAnswer::json(R"({"settings":{}})"));
        m_http->on("POST", "/api/auth/login",
            StubAnswer::json(R"({"token":"secret-token-123","email":"trader@example.test"})"));
        m_http->on("GET", "/api/accounts", StubAnswer::json("[]"));
        QFile::remove(SettingsStore::userFilePath());
        QFile::remove(SettingsStore::userFilePath() + u".copy"_s);
        TerminalSettings settings(SettingsStore::userFilePath());
        settings.setServerUrl(m_http->url());
        QVERIFY(settings.sync());
        QFile::remove(logFilePath());
    }

    void leavingTheSignInWindowEndsTheProgram()
    {
        QCOMPARE(run(u"cancel"_s), 0);
        const QStringList steps = logMessages().filter(QRegularExpression(u"^[^\\[]"_s));
        QCOMPARE(steps,
            QStringList({u"=== start ==="_s, u"theme applied: light"_s, u"login.exec() returned 0"_s}));
        QCOMPARE(m_http->count("GET", "/api/settings/public"), 1);
        QCOMPARE(m_http->requests().size(), 1);
        QCOMPARE(m_feed->attempts(), 0);
    }

    void signingInOpensTheWindowAndClosingItEndsTheProgram()
    {
        QCOMPARE(run(u"signin"_s), 0);
        const QStringList messages = logMessages();
        const QStringList steps = messages.filter(QRegularExpression(u"^[^\\[]"_s));
        QCOMPARE(steps,
            QStringList({u"=== start ==="_s, u"theme applied: light"_s, u"login.exec() returned 1"_s,
                u"MainWindow constructed"_s, u"setUser done"_s, u"entering app.exec()"_s,
                u"app.exec() returned 0"_s}));
        QCOMPARE(messages.count(u"[Terminal] Tavoran Terminal 1.0.1 started"_s), 1);
        QCOMPARE(messages.count(u"[Auth] Logged in as trader@example.test on "_s + m_http->url()), 1);
        QVERIFY(messages.filter(u"secret-token-123"_s).isEmpty());

        QCOMPARE(m_http->requests().constFirst().path(), "/api/settings/public"_ba);
        QCOMPARE(m_http->count("POST", "/api/auth/login"), 1);
        QVERIFY(m_http->count("GET", "/api/accounts") >= 1);
        QCOMPARE(m_http->last("GET", "/api/accounts").header("Authorization"), "Bearer secret-token-123"_ba);
        QCOMPARE(m_feed->attempts(), 1);

        const TerminalSettings kept(SettingsStore::userFilePath());
        QCOMPARE(kept.email(), u"trader@example.test"_s);
        QCOMPARE(kept.token(), u"secret-token-123"_s);
        QVERIFY(!kept.windowState().isEmpty());
        QVERIFY(!kept.windowGeometry().isEmpty());
        QVERIFY(!kept.restoringLayout());
        QVERIFY(!(QFile::permissions(SettingsStore::userFilePath()) & othersPermissions()));
        QVERIFY(!(QFile::permissions(logFilePath()) & othersPermissions()));
        const QDir scripts(qEnvironmentVariable("XDG_DATA_HOME") + u"/Tavoran/Tavoran Terminal/Experts"_s);
        QCOMPARE(scripts.entryList({u"*.js"_s}), QStringList({u"MA_Cross.js"_s, u"RSI_Reversal.js"_s}));
    }

    void aServerThatAnswersNothingStillLeadsToTheSignInWindow()
    {
        m_http->on("GET", "/api/settings/public", StubAnswer::held());
        QCOMPARE(run(u"cancel"_s), 0);
        const QStringList messages = logMessages();
        QCOMPARE(messages.filter(u"public config fetch failed: "_s).size(), 1);
        QCOMPARE(messages.constLast(), u"login.exec() returned 0"_s);
    }

    void aRepairOfTheSettingsIsWrittenToTheJournal()
    {
        QFile damaged(SettingsStore::userFilePath());
        QVERIFY(damaged.open(QIODevice::WriteOnly)); // and empty with it
        damaged.close();
        QCOMPARE(run(u"signin"_s), 0);
        QCOMPARE(logMessages().count(
                     u"[Terminal] The settings file was damaged; its last good copy has been put back."_s),
            1);
    }

    void theFirstWindowIsMadeForItsScreen_data()
    {
        QTest::addColumn<QSize>("screen");
        QTest::newRow("1024 x 600") << QSize(1024, 600);
        QTest::newRow("1280 x 800") << QSize(1280, 800);
        QTest::newRow("1366 x 768") << QSize(1366, 768);
        QTest::newRow("1920 x 1080") << QSize(1920, 1080);
    }
    void theFirstWindowIsMadeForItsScreen()
    {
        QFETCH(const QSize, screen);
        QFile screens(QDir::tempPath() + u"/screens.json"_s);
        QVERIFY(screens.open(QIODevice::WriteOnly));
        screens.write(
            QByteArray(R"({"screens":[{"name":"only","x":0,"y":0,"width":%1,"height":%2,"logicalDpi":96,)"
                       R"("logicalBaseDpi":96,"dpr":1}]})")
                .replace("%1", QByteArray::number(screen.width()))
                .replace("%2", QByteArray::number(screen.height())));
        screens.close();
        QCOMPARE(run(u"signin"_s, u"offscreen:configfile="_s + screens.fileName()), 0);

        // What Qt writes: two numbers of its own, and the window with its frame and without.
        const TerminalSettings kept(SettingsStore::userFilePath());
        QDataStream geometry(kept.windowGeometry());
        quint32 magic = 0;
        quint32 version = 0;
        QRect outer;
        QRect inner;
        geometry >> magic >> version >> outer >> inner;
        QVERIFY(inner.isValid());
        const QRect whole(QPoint(0, 0), screen);
        QVERIFY(whole.contains(outer));
        const QSize largest = QSize(1280, 800).boundedTo(screen - (outer.size() - inner.size()));
        QCOMPARE(inner.size().boundedTo(largest), inner.size());
        if (screen == QSize(1920, 1080))
            QCOMPARE(inner.size(), largest);
        constexpr QSize roomForAnyFrame(20, 60);
        QCOMPARE(inner.size().expandedTo(largest - roomForAnyFrame), inner.size());
    }
};

TAVORAN_TEST(tst_MainProcess)
#include "tst_MainProcess.moc"
