#include "app/PublicSettings.h"
#include "app/base/Log.h"
#include "app/base/TerminalSettings.h"
#include "support/TestMain.h"

#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace {

/// A server that answers each connection with the bytes given, after its request has come, and keeps
/// the connection open unless told to close it.
class RawServer : public QTcpServer {
public:
    explicit RawServer(QByteArray answer, bool closes = true)
        : m_answer(std::move(answer))
        , m_closes(closes)
    {
        listen(QHostAddress::LocalHost);
        connect(this, &QTcpServer::newConnection, this, &RawServer::accept);
    }

    [[nodiscard]] QUrl url() const
    {
        return QUrl(u"http://127.0.0.1:%1/api/settings/public"_s.arg(serverPort()));
    }

    [[nodiscard]] QString base() const { return u"http://127.0.0.1:%1"_s.arg(serverPort()); }
    [[nodiscard]] QByteArray request() const { return m_request; }

    void setAnswer(const QByteArray& answer) { m_answer = answer; }

    /// Sends one more byte every `milliseconds` until the client leaves.
    void drip(int milliseconds) { m_dripEvery = milliseconds; }

private:
    void accept()
    {
        QTcpSocket* socket = nextPendingConnection();
        connect(socket, &QTcpSocket::readyRead, this, [this, socket] {
            m_request += socket->readAll();
            if (!m_request.endsWith("\r\n\r\n"))
                return;
            socket->write(m_answer);
            if (m_dripEvery > 0) {
                auto* timer = new QTimer(socket);
                connect(timer, &QTimer::timeout, socket, [socket] { socket->write(" "); });
                timer->start(m_dripEvery);
            } else if (m_closes) {
                socket->disconnectFromHost();
            }
        });
    }

    QByteArray m_answer;
    QByteArray m_request;
    bool m_closes;
    int m_dripEvery = 0;
};

QByteArray ok(const QByteArray& body)
{
    return "HTTP/1.1 200 OK\r\nContent-Type: application/json\r\nContent-Length: "
        + QByteArray::number(body.size()) + "\r\n\r\n" + body;
}

QString logContent()
{
    QFile file(logFilePath());
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

} // namespace

class TestPublicSettings : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { QFile::remove(logFilePath()); }

    void theAddressIsReadFromTheSettingsObject_data()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QString>("address");
        const auto row = [](const char* name, const char* body, const char* address) {
            QTest::newRow(name) << QByteArray(body) << QString::fromLatin1(address);
        };
        row("plain", "{\"settings\":{\"terminalServerUrl\":\"https://new.example:5001\"}}",
            "https://new.example:5001");
        row("trimmed", "{\"settings\":{\"terminalServerUrl\":\"  https://new.example \\n\"}}",
            "https://new.example");
        row("blank", "{\"settings\":{\"terminalServerUrl\":\"   \"}}", "");
        row("missing", "{\"settings\":{}}", "");
        row("not nested", "{\"terminalServerUrl\":\"https://x\"}", "");
        row("a number", "{\"settings\":{\"terminalServerUrl\":5001}}", "");
        row("settings is text", "{\"settings\":\"x\"}", "");
        row("an array", "[1]", "");
        row("not JSON", "<html>Service unavailable</html>", "");
        row("cut off", "{\"settings\":{\"terminalServerUrl\":\"https://n", "");
        row("empty", "", "");
    }
    void theAddressIsReadFromTheSettingsObject()
    {
        QFETCH(QByteArray, body);
        QFETCH(QString, address);
        QCOMPARE(terminalServerUrlIn(body), address);
    }

    void theRequestIsABareGet()
    {
        const RawServer server(ok("{\"settings\":{\"terminalServerUrl\":\"https://new.example\"}}"));
        TerminalSettings::instance().setToken(u"secret-token"_s);
        const PublicSettings fetched = fetchPublicSettings(server.url(), 3000);
        QCOMPARE(fetched.error, QString());
        QCOMPARE(fetched.terminalServerUrl, u"https://new.example"_s);
        QVERIFY(server.request().startsWith("GET /api/settings/public HTTP/1.1\r\n"));
        QVERIFY(!server.request().toLower().contains("authorization"));
        QVERIFY(!server.request().contains("secret-token"));
    }

    void aNewAddressIsAdopted()
    {
        const RawServer server(ok("{\"settings\":{\"terminalServerUrl\":\" https://new.example:5001/ \"}}"));
        TerminalSettings::instance().setServerUrl(server.base() + u'/');
        adoptPublicSettings(TerminalSettings::instance());
        QCOMPARE(TerminalSettings::instance().rawServerUrl(), u"https://new.example:5001/"_s);
        QVERIFY(logContent().endsWith("  adopted admin server url: https://new.example:5001/\n"_L1));
    }

    void aBlankOrEqualAddressChangesNothing()
    {
        const RawServer blank(ok("{\"settings\":{\"terminalServerUrl\":\"  \"}}"));
        TerminalSettings::instance().setServerUrl(blank.base());
        adoptPublicSettings(TerminalSettings::instance());
        QCOMPARE(TerminalSettings::instance().rawServerUrl(), blank.base());

        RawServer equal({});
        equal.setAnswer(ok("{\"settings\":{\"terminalServerUrl\":\" " + equal.base().toLatin1() + "\"}}"));
        TerminalSettings::instance().setServerUrl(equal.base());
        adoptPublicSettings(TerminalSettings::instance());
        QCOMPARE(TerminalSettings::instance().rawServerUrl(), equal.base());
        QVERIFY(!equal.request().isEmpty());
        QCOMPARE(logContent(), QString());
    }

    void aReplyThatIsNotJsonIsSilentlyIgnored()
    {
        const RawServer server(ok("<html>hello</html>"));
        TerminalSettings::instance().setServerUrl(server.base());
        adoptPublicSettings(TerminalSettings::instance());
        QCOMPARE(TerminalSettings::instance().rawServerUrl(), server.base());
        QCOMPARE(logContent(), QString());
    }

    void anUnreachableServerIsLogged()
    {
        RawServer server({});
        server.close();
        TerminalSettings::instance().setServerUrl(server.base());
        adoptPublicSettings(TerminalSettings::instance());
        QVERIFY2(logContent().contains("  public config fetch failed: Connection refused"_L1),
            qPrintable(logContent()));
        QCOMPARE(TerminalSettings::instance().rawServerUrl(), server.base());
    }

    void anErrorStatusIsLoggedAndItsBodyIsNotRead()
    {
        const RawServer server("HTTP/1.1 503 Busy\r\nContent-Length: 56\r\n\r\n"
                               "{\"settings\":{\"terminalServerUrl\":\"https://evil.example\"}}");
        TerminalSettings::instance().setServerUrl(server.base());
        adoptPublicSettings(TerminalSettings::instance());
        QVERIFY(logContent().contains("public config fetch failed: "_L1));
        QCOMPARE(TerminalSettings::instance().rawServerUrl(), server.base());
    }

    void aRedirectIsNotFollowed()
    {
        const RawServer target(ok("{\"settings\":{\"terminalServerUrl\":\"https://evil.example\"}}"));
        const RawServer server(
            "HTTP/1.1 302 Found\r\nContent-Length: 0\r\nLocation: " + target.url().toEncoded() + "\r\n\r\n");
        const PublicSettings fetched = fetchPublicSettings(server.url(), 3000);
        QVERIFY(!fetched.error.isEmpty());
        QVERIFY(fetched.terminalServerUrl.isEmpty());
        QVERIFY(target.request().isEmpty());
    }

    void aSilentServerEndsTheWait()
    {
        const RawServer server({}, false);
        const PublicSettings fetched = fetchPublicSettings(server.url(), 150);
        QCOMPARE(fetched.error, u"Operation canceled"_s);
        QVERIFY(!server.request().isEmpty());
    }

    void aReplyThatDripsForEverEndsTheWait()
    {
        RawServer server("HTTP/1.1 200 OK\r\nContent-Length: 1000000\r\n\r\n{", false);
        server.drip(20);
        const PublicSettings fetched = fetchPublicSettings(server.url(), 300);
        QCOMPARE(fetched.error, u"Operation canceled"_s);
        QVERIFY(fetched.terminalServerUrl.isEmpty());
    }

    void aHugeReplyIsCutOff()
    {
        const QByteArray body = "{\"settings\":{\"terminalServerUrl\":\"https://new.example\",\"x\":\""
            + QByteArray(qsizetype{4} * 1024 * 1024, 'x') + "\"}}";
        const RawServer server(ok(body));
        const PublicSettings fetched = fetchPublicSettings(server.url(), 20000);
        QCOMPARE(fetched.error, u"Operation canceled"_s);
        QVERIFY(fetched.terminalServerUrl.isEmpty());
    }

    void anAddressThatIsNoneIsAnErrorAtOnce()
    {
        const PublicSettings fetched = fetchPublicSettings(QUrl(u"https:///api/settings/public"_s), 3000);
        QVERIFY(!fetched.error.isEmpty());
    }
};

TAVORAN_TEST(TestPublicSettings)
#include "tst_PublicSettings.moc"
