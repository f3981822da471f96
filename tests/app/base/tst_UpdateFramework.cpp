#include "app/base/UpdateFramework.h"
#include "support/TestMain.h"

using namespace Qt::StringLiterals;

class TestUpdateFramework : public QObject {
    Q_OBJECT

    [[nodiscard]] UpdateCalls recorded()
    {
        const auto note = [this](const QString& text) { m_calls.append(text); };
        return {
            .setAppcastUrl = [=](const char* url) { note(QString::fromLatin1(url)); },
            .setShutdownRequestCallback =
                [=, this](void (*callback)()) {
                    m_shutdown = callback;
                    note(u"shutdown"_s);
                },
            .setAppDetails =
                [=](const wchar_t* company, const wchar_t* name, const wchar_t* version) {
                    note(QString::fromWCharArray(company) + u'|' + QString::fromWCharArray(name) + u'|'
                        + QString::fromWCharArray(version));
                },
            .setAutomaticCheck = [=](int on) { note(u"automatic %1"_s.arg(on)); },
            .setCheckInterval = [=](int seconds) { note(u"every %1"_s.arg(seconds)); },
            .init = [=] { note(u"init"_s); },
            .cleanUp = [=] { note(u"cleanup"_s); },
            .checkWithUi = [=] { note(u"check"_s); },
        };
    }

private Q_SLOTS:
    void init() { m_calls.clear(); }

    void setUpConfiguresBeforeItInitialises()
    {
        UpdateFramework framework(recorded());
        framework.setUp(u"1.0.1"_s);
        QCOMPARE(m_calls.size(), 6);
        QVERIFY(m_calls[0].startsWith("https://"_L1));
        QVERIFY(m_calls[0].endsWith("/desktop/appcast.xml"_L1));
        QCOMPARE(m_calls.sliced(1),
            (QStringList{u"shutdown"_s, u"Tavoran|Tavoran Terminal|1.0.1"_s, u"automatic 1"_s,
                u"every 86400"_s, u"init"_s}));
    }

    void cleanUpHappensOnceAndOnlyAfterSetUp()
    {
        UpdateFramework framework(recorded());
        framework.cleanUp();
        framework.checkWithUi();
        QCOMPARE(m_calls, QStringList());
        framework.setUp(u"1"_s);
        framework.checkWithUi();
        framework.cleanUp();
        framework.cleanUp();
        QCOMPARE(m_calls.sliced(6), (QStringList{u"check"_s, u"cleanup"_s}));
    }

    void aShutdownRequestFromAnyThreadOnlyPostsAQuit()
    {
        UpdateFramework framework(recorded());
        framework.setUp(u"1"_s);
        bool quitting = false;
        connect(qApp, &QCoreApplication::aboutToQuit, this, [&] {
            quitting = true;
            QCOMPARE(QThread::currentThread(), qApp->thread());
        });
        const std::unique_ptr<QThread> thread(QThread::create(m_shutdown));
        thread->start();
        thread->wait();
        QVERIFY(!quitting);
        QCOMPARE(QCoreApplication::exec(), 0);
        QVERIFY(quitting);
    }

    void withoutTheFrameworkEveryCallDoesNothing()
    {
        UpdateFramework framework({});
        QVERIFY(!framework.isAvailable());
        framework.setUp(u"1.0.1"_s);
        framework.checkWithUi();
        framework.cleanUp();
    }

#ifndef Q_OS_WIN
    void thisPlatformHasNone()
    {
        QVERIFY(!UpdateFramework::instance().isAvailable());
    }
#endif

private:
    QStringList m_calls;
    void (*m_shutdown)() = nullptr;
};

TAVORAN_TEST(TestUpdateFramework)
#include "tst_UpdateFramework.moc"
