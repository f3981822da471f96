#include "net/FeedFixture.h"
#include "support/TestMain.h"

#include <atomic>
#include <cstring>

#include <dlfcn.h>
#include <netdb.h>

using namespace Qt::StringLiterals;

namespace {

constexpr const char* unknownHost = "feed.no-such-host.test";
std::atomic<int> lookups = 0;
std::atomic<bool> hostIsKnown = false;

} // namespace

/// Stands in front of the C library's function of this name, for Qt too: whether a name is
/// known must not depend on the machine's resolver, and no question may leave the machine.
extern "C" int getaddrinfo(
    const char* name, const char* service, const struct addrinfo* hints, struct addrinfo** result)
{
    static const auto real = reinterpret_cast<decltype(&getaddrinfo)>(::dlsym(RTLD_NEXT, "getaddrinfo"));
    if (!name || std::strcmp(name, unknownHost) != 0)
        return real(name, service, hints, result);
    ++lookups;
    return hostIsKnown ? real("127.0.0.1", service, hints, result) : EAI_NONAME;
}

/// The feed client and a server whose name nobody knows.
class TestWsClientLookup final : public fixtures::FeedTest {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        lookups = 0;
        hostIsKnown = false;
        serve();
        TerminalSettings::instance().setServerUrl(
            m_feed->url().replace(u"127.0.0.1"_s, QString::fromLatin1(unknownHost)));
    }

    void cleanup() { end(); }

    void each_failed_look_up_is_one_error_and_one_retry()
    {
        const QString address = TerminalSettings::instance().serverUrl().replace(u"http:"_s, u"ws:"_s);
        QStringList expected;
        for (const int seconds : {1, 2, 4, 8, 16, 30}) {
            expected.append({u"Connecting to %1/ws/terminal..."_s.arg(address),
                u"Feed error: Host not found"_s, u"Feed disconnected — retrying in %1s"_s.arg(seconds)});
        }
        connect(&*m_client, &WsClient::disconnected, this, [this] {
            if (m_retries.size() == 6)
                m_client->findChild<QTimer*>(u"retryTimer"_s)->stop();
        });
        m_client->start();
        QTRY_COMPARE(m_retries.size(), 6);
        QCoreApplication::processEvents();
        QCOMPARE(m_log, expected);
        QCOMPARE(m_retries, QList<int>({1, 2, 4, 8, 16, 30}));
        QCOMPARE(lookups, 6);
        QCOMPARE(m_feed->attempts(), 0);
    }

    void a_name_that_becomes_known_ends_the_retries()
    {
        m_client->start();
        QTRY_VERIFY(m_retries.size() >= 2);
        hostIsKnown = true;
        QTRY_COMPARE(m_log.last(), u"Feed connected"_s);
        QCOMPARE(m_feed->attempts(), 1);
        QCOMPARE(lookups, m_retries.size() + 1);
    }
};

TAVORAN_TEST(TestWsClientLookup)
#include "tst_WsClientLookup.moc"
