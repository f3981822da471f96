#include "app/FileFixture.h"
#include "app/base/Log.h"
#include "app/base/TerminalSettings.h"
#include "support/TestMain.h"

using namespace Qt::StringLiterals;

class TestTerminalSettings : public QObject {
    Q_OBJECT

    void writeFile(const QByteArray& content) const { fixtures::writeFile(m_path, content); }

    [[nodiscard]] QByteArray fileContent(const QString& suffix = {}) const
    {
        QFile file(m_path + suffix);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    [[nodiscard]] std::unique_ptr<TerminalSettings> open() const
    {
        return std::make_unique<TerminalSettings>(m_path);
    }

private Q_SLOTS:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_path = m_folder->filePath(u"Terminal.conf"_s);
    }

    void theOneInstanceUsesTheStoreOfTavoranTerminal()
    {
        TerminalSettings& settings = TerminalSettings::instance();
        QCOMPARE(&settings, &TerminalSettings::instance());
        settings.setEmail(u"trader@example.com"_s);
        QVERIFY(settings.sync());
        QCOMPARE(
            QSettings(u"Tavoran"_s, u"Terminal"_s).value("auth/email").toString(), u"trader@example.com"_s);
    }

    void anEmptyStoreHasItsDefaults()
    {
        const auto settings = open();
        QVERIFY(settings->rawServerUrl().startsWith("https://"_L1));
        QVERIFY(settings->rawServerUrl().endsWith(":5001"_L1));
        QCOMPARE(settings->serverUrl(), settings->rawServerUrl());
        QCOMPARE(settings->token(), QString());
        QCOMPARE(settings->email(), QString());
        QVERIFY(settings->remember());
        QVERIFY(!settings->darkTheme());
        QVERIFY(settings->windowGeometry().isEmpty());
        QVERIFY(settings->windowState().isEmpty());
        QVERIFY(settings->chartsLayout().isEmpty());
        QVERIFY(settings->alerts().isEmpty());
        QVERIFY(!settings->restoringLayout());
        QVERIFY(settings->takeNotices().isEmpty());
    }

    void theServerAddressIsNormalised_data()
    {
        QTest::addColumn<QString>("stored");
        QTest::addColumn<QString>("used");
        QTest::newRow("blanks, no scheme, three slashes")
            << u"  trade.example:5001///  "_s << u"https://trade.example:5001"_s;
        QTest::newRow("plain http keeps its scheme")
            << u"http://127.0.0.1:5001/"_s << u"http://127.0.0.1:5001"_s;
        QTest::newRow("https as it is") << u"https://trade.example"_s << u"https://trade.example"_s;
        QTest::newRow("the scheme is case-sensitive") << u"HTTP://x"_s << u"https://HTTP://x"_s;
        QTest::newRow("only slashes") << u"///"_s << u"https://"_s;
    }
    void theServerAddressIsNormalised()
    {
        QFETCH(QString, stored);
        QFETCH(QString, used);
        const auto settings = open();
        settings->setServerUrl(stored);
        QCOMPARE(settings->serverUrl(), used);
        QCOMPARE(settings->rawServerUrl(), stored);
    }

    void aRememberedTokenIsOnDiskAtOnce()
    {
        auto settings = open();
        settings->setToken(u"token-one"_s);
        QVERIFY(fileContent().contains("token=token-one"));
        settings.reset();
        QCOMPARE(open()->token(), u"token-one"_s);
    }

    void aTokenThatIsNotRememberedServesTheSessionOnly()
    {
        auto settings = open();
        settings->setToken(u"token-one"_s);
        settings->setRemember(false);
        settings->setToken(u"token-two"_s);
        QCOMPARE(settings->token(), u"token-two"_s);
        QVERIFY(!fileContent().contains("token-"));
        QVERIFY(!fileContent(u".copy"_s).contains("token-"));
        settings.reset();
        QCOMPARE(open()->token(), QString());
    }

    void changingTheChoiceAloneKeepsTheStoredToken()
    {
        const auto settings = open();
        settings->setToken(u"token-one"_s);
        settings->setRemember(false);
        QVERIFY(settings->sync());
        QVERIFY(fileContent().contains("token-one"));
    }

    void theTokenNeverReachesTheLog()
    {
        writeFile("[auth]\ntoken=stored-token\n");
        const auto settings = open();
        settings->setToken(u"fresh-token"_s);
        appLog(u"stored-token, fresh-token"_s);
        QFile log(logFilePath());
        QVERIFY(log.open(QIODevice::ReadOnly));
        const QByteArray content = log.readAll();
        QVERIFY(content.contains("[hidden], [hidden]"));
        QVERIFY(!content.contains("-token"));
    }

    void allValuesComeBackAfterARestart()
    {
        auto settings = open();
        settings->setServerUrl(u"https://other.example"_s);
        settings->setEmail(u"a+b@example.com"_s);
        settings->setRemember(false);
        settings->setDarkTheme(true);
        settings->setWindowLayout(QByteArrayLiteral("geometry\0\xff"), QByteArrayLiteral("state\0\x01"));
        settings->setChartsLayout(u"[\n {\"symbol\": \"EURUSD\"}\n]"_s);
        settings->setPanesLayout(u"{\"tab\": 2}"_s);
        settings->setAlerts(u"[{\"price\":1.5}]"_s);
        QVERIFY(settings->sync());
        settings.reset();
        const QSettings store(m_path, QSettings::NativeFormat);
        for (const auto& name : {u"auth/serverUrl"_s, u"auth/email"_s, u"auth/remember"_s, u"ui/theme"_s,
                 u"window/geometry"_s, u"window/state"_s, u"charts/layout"_s, u"alerts"_s})
            QVERIFY2(store.contains(name), qPrintable(name));
        settings = open();
        QCOMPARE(settings->rawServerUrl(), u"https://other.example"_s);
        QCOMPARE(settings->email(), u"a+b@example.com"_s);
        QVERIFY(!settings->remember());
        QVERIFY(settings->darkTheme());
        QCOMPARE(settings->windowGeometry(), QByteArrayLiteral("geometry\0\xff"));
        QCOMPARE(settings->windowState(), QByteArrayLiteral("state\0\x01"));
        QCOMPARE(settings->chartsLayout(), u"[\n {\"symbol\": \"EURUSD\"}\n]"_s);
        QCOMPARE(settings->panesLayout(), u"{\"tab\": 2}"_s);
        QCOMPARE(settings->alerts(), u"[{\"price\":1.5}]"_s);
    }

    void handEditedValuesOfAWrongTypeReadAsDefaults()
    {
        writeFile("alerts=[{\"symbol\":\"EURUSD\",\"above\":true}]\n"
                  "[auth]\nserverUrl=a, b\nemail=@ByteArray(x)\ntoken=1, 2\nremember=perhaps\n"
                  "[charts]\nlayout=[{\"symbol\":1, \"tf\":2}]\n"
                  "[ui]\ntheme=dark, light\n"
                  "[window]\ngeometry=abc\nstate=abc\nstateDigest=@ByteArray(x)\nrestoring=5\n");
        const auto settings = open();
        QVERIFY(settings->rawServerUrl().endsWith(":5001"_L1));
        QCOMPARE(settings->email(), QString());
        QCOMPARE(settings->token(), QString());
        QVERIFY(settings->remember());
        QCOMPARE(settings->chartsLayout(), QString());
        QCOMPARE(settings->alerts(), QString());
        QVERIFY(!settings->darkTheme());
        QVERIFY(settings->windowGeometry().isEmpty());
        QVERIFY(settings->windowState().isEmpty());
        QVERIFY(!settings->restoringLayout());
    }

    void theRememberChoiceIsReadAsPeopleWriteIt_data()
    {
        QTest::addColumn<QByteArray>("written");
        QTest::addColumn<bool>("remember");
        QTest::newRow("false") << QByteArrayLiteral("false") << false;
        QTest::newRow("0") << QByteArrayLiteral("0") << false;
        QTest::newRow("False") << QByteArrayLiteral("False") << false;
        QTest::newRow("FALSE") << QByteArrayLiteral("FALSE") << false;
        QTest::newRow("true") << QByteArrayLiteral("true") << true;
        QTest::newRow("1") << QByteArrayLiteral("1") << true;
        QTest::newRow("nonsense is the default") << QByteArrayLiteral("nonsense") << true;
    }
    void theRememberChoiceIsReadAsPeopleWriteIt()
    {
        QFETCH(QByteArray, written);
        QFETCH(bool, remember);
        writeFile("[auth]\nremember=" + written + "\n");
        QCOMPARE(open()->remember(), remember);
    }

    void theThemeIsDarkOnlyForThatExactWord_data()
    {
        QTest::addColumn<QByteArray>("written");
        QTest::addColumn<bool>("dark");
        QTest::newRow("dark") << QByteArrayLiteral("dark") << true;
        QTest::newRow("Dark") << QByteArrayLiteral("Dark") << false;
        QTest::newRow("light") << QByteArrayLiteral("light") << false;
        QTest::newRow("blue") << QByteArrayLiteral("blue") << false;
    }
    void theThemeIsDarkOnlyForThatExactWord()
    {
        QFETCH(QByteArray, written);
        QFETCH(bool, dark);
        writeFile("[ui]\ntheme=" + written + "\n");
        QCOMPARE(open()->darkTheme(), dark);
    }

    void aChangedThemeIsSeenAtOnce()
    {
        const auto settings = open();
        QVERIFY(!settings->darkTheme());
        settings->setDarkTheme(true);
        QVERIFY(settings->darkTheme());
        settings->setDarkTheme(false);
        QVERIFY(!settings->darkTheme());
        QVERIFY(settings->sync());
        QVERIFY(fileContent().contains("theme=light"));
    }

    void theThemeIsReadAfreshAtEachQuery()
    {
        const auto settings = open();
        QVERIFY(!settings->darkTheme());
        // Qt shares one content among all that open the same file in this process.
        QSettings(m_path, QSettings::NativeFormat).setValue("ui/theme", u"dark"_s);
        QVERIFY(settings->darkTheme());
    }

    void aThemeChangedByAnotherTerminalIsSeenAfterASync()
    {
        const auto settings = open();
        QVERIFY(!settings->darkTheme());
        QVERIFY(settings->sync());
        writeFile("[ui]\ntheme=dark\n");
        QVERIFY(settings->sync());
        QVERIFY(settings->darkTheme());
    }

    void aWindowStateThatIsNotByteForByteTheSavedOneIsRefused()
    {
        QByteArray state(200, 's');
        {
            const auto settings = open();
            settings->setWindowLayout(QByteArrayLiteral("g"), state);
            QVERIFY(settings->sync());
        }
        QByteArray content = fileContent();
        const qsizetype at = content.indexOf("sssss");
        QVERIFY(at > 0);
        content[at + 2] = 't';
        writeFile(content);
        const auto settings = open();
        QVERIFY(settings->windowState().isEmpty());
        QCOMPARE(settings->windowGeometry(), QByteArrayLiteral("g"));
    }

    void aWindowStateWithoutItsDigestIsRefused()
    {
        writeFile("[window]\nstate=@ByteArray(abc)\n");
        QVERIFY(open()->windowState().isEmpty());
    }

    void theRestoringMarkIsOnDiskAtOnce()
    {
        auto settings = open();
        settings->setRestoringLayout(true);
        QVERIFY(fileContent().contains("restoring=true"));
        // As a crash would leave it: another reader while this one still lives.
        QVERIFY(open()->restoringLayout());
        settings->setRestoringLayout(false);
        QVERIFY(fileContent().contains("restoring=false"));
    }

    void alertsAreOnDiskAtOnce()
    {
        const auto settings = open();
        settings->setAlerts(u"[]"_s);
        QVERIFY(fileContent().contains("alerts=[]"));
    }

    void everyValueButTheLayoutIsOnDiskAtOnce()
    {
        const auto settings = open();
        settings->setServerUrl(u"https://terminal.example"_s);
        QVERIFY(fileContent().contains("serverUrl=https://terminal.example"));
        settings->setEmail(u"trader@example.test"_s);
        QVERIFY(fileContent().contains("email=trader@example.test"));
        settings->setRemember(false);
        QVERIFY(fileContent().contains("remember=false"));
        settings->setDarkTheme(true);
        QVERIFY(fileContent().contains("theme=dark"));
    }

    void aFailedSaveIsToldOnceUntilOneGoesWell()
    {
        QStringList told;
        const auto settings = open();
        settings->setAlerts(u"[]"_s);
        settings->setTeller([&told](const QString& notice) { told.append(notice); });
        {
            const fixtures::FullDisk full(0);
            settings->setAlerts(u"[1]"_s);
            settings->setAlerts(u"[1,2]"_s);
            QVERIFY(!settings->sync());
        }
        QCOMPARE(told,
            QStringList(
                u"The settings could not be saved to %1. What was saved before is kept."_s.arg(m_path)));
        QVERIFY(settings->sync());
        QVERIFY(fileContent().contains("[1,2]"));
        QCOMPARE(told.size(), 1);
        {
            const fixtures::FullDisk full(0);
            settings->setAlerts(u"[]"_s);
        }
        QCOMPARE(told.size(), 2);
        QVERIFY(settings->takeNotices().isEmpty());
    }

    void aFailedSaveThatNobodyHearsOfWaitsToBeTold()
    {
        const auto settings = open();
        {
            const fixtures::FullDisk full(0);
            settings->setAlerts(u"[1]"_s);
        }
        QCOMPARE(settings->takeNotices().size(), 1);
        QVERIFY(settings->takeNotices().isEmpty());
    }

    void aRepairWhileTheTerminalRunsIsToldAtOnce()
    {
        QStringList told;
        const auto settings = open();
        settings->setToken(u"token-one"_s);
        settings->setTeller([&told](const QString& notice) { told.append(notice); });
        writeFile({});
        settings->setDarkTheme(true);
        QCOMPARE(
            told, QStringList(u"The settings file was damaged; its last good copy has been put back."_s));
        QVERIFY(fileContent().contains("token-one"));
        QVERIFY(fileContent().contains("theme=dark"));
        QVERIFY(settings->takeNotices().isEmpty());
    }

    void aRepairIsToldOnce()
    {
        {
            const auto settings = open();
            settings->setToken(u"token-one"_s);
        }
        writeFile({});
        const auto settings = open();
        QCOMPARE(settings->token(), u"token-one"_s);
        QCOMPARE(settings->takeNotices().size(), 1);
        QVERIFY(settings->takeNotices().isEmpty());
    }

private:
    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_path;
};

TAVORAN_TEST(TestTerminalSettings)
#include "tst_TerminalSettings.moc"
