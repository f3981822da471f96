#include "app/StartUp.h"
#include "app/base/TerminalSettings.h"
#include "app/ui/FocusRing.h"
#include "app/ui/Theme.h"
#include "support/LogMessages.h"
#include "support/TestMain.h"

#include <QDialog>
#include <QPushButton>
#include <QSplashScreen>
#include <QTcpServer>
#include <QThread>
#include <QThreadPool>
#include <QTimer>

#include <optional>

using namespace Qt::StringLiterals;
using fixtures::logMessages;

namespace {

/// Whether the process has loaded a library of such a name.
bool hasLoaded(const QByteArray& library)
{
    QFile maps(u"/proc/self/maps"_s);
    return maps.open(QIODevice::ReadOnly) && maps.readAll().contains(library);
}

bool splashIsVisible()
{
    const QWidgetList windows = QApplication::topLevelWidgets();
    return std::any_of(windows.cbegin(), windows.cend(), [](const QWidget* window) {
        return qobject_cast<const QSplashScreen*>(window) && window->isVisible();
    });
}

/// Notes whether the splash screen was painted.
class PaintWatch final : public QObject {
public:
    PaintWatch() { qApp->installEventFilter(this); }

    bool eventFilter(QObject* target, QEvent* event) override
    {
        painted = painted || (event->type() == QEvent::Paint && qobject_cast<QSplashScreen*>(target));
        return false;
    }

    bool painted = false;
};

} // namespace

class TestStartUp : public QObject {
    Q_OBJECT

    /// A sign-in dialog that ends itself with `result`, and a main window that closes itself.
    [[nodiscard]] StartUpWindows windows(int result)
    {
        return {
            .makeSignIn =
                [this, result] {
                    m_splashBeforeSignIn = splashIsVisible();
                    m_steps.append(u"sign-in made"_s);
                    auto dialog = std::make_unique<QDialog>();
                    connect(dialog.get(), &QObject::destroyed, this,
                        [this] { m_steps.append(u"sign-in gone"_s); });
                    QTimer::singleShot(50, dialog.get(), [this, result, shown = dialog.get()] {
                        m_splashDuringSignIn = splashIsVisible();
                        m_quitDuringSignIn = QGuiApplication::quitOnLastWindowClosed();
                        shown->done(result);
                    });
                    return dialog;
                },
            .userOf =
                [](const QDialog&) {
                    return QJsonObject{{u"email"_s, u"a@b.example"_s}};
                },
            .makeMainWindow =
                [this] {
                    m_steps.append(u"main window made"_s);
                    auto window = std::make_unique<QWidget>();
                    connect(window.get(), &QObject::destroyed, this,
                        [this] { m_steps.append(u"main window gone"_s); });
                    QTimer::singleShot(100, window.get(), [this, shown = window.get()] {
                        m_mainWindowShown = shown->isVisible();
                        shown->close();
                    });
                    return window;
                },
            .setUser =
                [this](QWidget& window, const QJsonObject& user) {
                    m_steps.append(u"user "_s + user.value("email"_L1).toString());
                    QVERIFY(!window.isVisible());
                },
        };
    }

    /// An update framework that notes when it is set up and cleaned up.
    [[nodiscard]] UpdateCalls updates()
    {
        return {
            .setAppcastUrl = [](const char*) {},
            .setShutdownRequestCallback = [](void (*)()) {},
            .setAppDetails =
                [this](const wchar_t*, const wchar_t*, const wchar_t* version) {
                    m_steps.append(u"updates of "_s + QString::fromWCharArray(version));
                },
            .setAutomaticCheck = [](int) {},
            .setCheckInterval = [](int) {},
            .init =
                [this] {
                    const QWidgetList all = QApplication::topLevelWidgets();
                    m_windowAtSetUp = std::any_of(
                        all.cbegin(), all.cend(), [](const QWidget* window) { return window->isVisible(); });
                    m_quitAtSetUp = QGuiApplication::quitOnLastWindowClosed();
                },
            .cleanUp = [this] { m_steps.append(u"updates cleaned up"_s); },
            .checkWithUi = [] {},
        };
    }

private Q_SLOTS:
    void init()
    {
        QFile::remove(logFilePath());
        m_steps.clear();
        m_mainWindowShown = false;
        m_windowAtSetUp = false;
        m_quitAtSetUp = false;
        // A port that nobody listens on: the fetch fails at once.
        QTcpServer server;
        QVERIFY(server.listen(QHostAddress::LocalHost));
        TerminalSettings::instance().setServerUrl(u"http://127.0.0.1:%1"_s.arg(server.serverPort()));
    }

    void theApplicationIsNamed()
    {
        QApplication::setLayoutDirection(Qt::RightToLeft);
        nameApplication();
        QCOMPARE(QCoreApplication::organizationName(), u"Tavoran"_s);
        QCOMPARE(QCoreApplication::applicationName(), u"Tavoran Terminal"_s);
        QCOMPARE(QCoreApplication::applicationVersion(), u"1.0.1"_s);
        QVERIFY(!QApplication::windowIcon().isNull());
        QCOMPARE(QApplication::layoutDirection(), Qt::LeftToRight);
    }

    void anAcceptedSignInLeadsToTheMainWindow()
    {
        QCOMPARE(runTerminal(*qApp, windows(QDialog::Accepted)), 0);
        QCOMPARE(m_steps,
            (QStringList{u"sign-in made"_s, u"main window made"_s, u"user a@b.example"_s, u"sign-in gone"_s,
                u"main window gone"_s}));
        QVERIFY(m_splashBeforeSignIn);
        QVERIFY(!m_splashDuringSignIn);
        QVERIFY(!m_quitDuringSignIn);
        QVERIFY(m_mainWindowShown);
        QVERIFY(QGuiApplication::quitOnLastWindowClosed());
        QCOMPARE(logMessages(),
            (QStringList{u"theme applied: light"_s, u"public config fetch failed: Connection refused"_s,
                u"login.exec() returned 1"_s, u"MainWindow constructed"_s, u"setUser done"_s,
                u"entering app.exec()"_s, u"app.exec() returned 0"_s}));
    }

    void the_place_of_the_keyboard_is_marked_from_the_sign_in_on()
    {
        StartUpWindows all = windows(QDialog::Rejected);
        bool marked = false;
        all.makeSignIn = [&marked] {
            auto dialog = std::make_unique<QDialog>();
            for (int i = 0; i < 2; ++i)
                new QPushButton(dialog.get());
            QTimer::singleShot(50, dialog.get(), [&marked, shown = dialog.get()] {
                QTest::keyClick(shown, Qt::Key_Tab);
                QCoreApplication::processEvents();
                const auto* ring = shown->findChild<FocusRing*>();
                marked = ring && ring->isVisible();
                shown->reject();
            });
            return dialog;
        };
        QCOMPARE(runTerminal(*qApp, all), 0);
        QVERIFY(marked);
    }

    void enter_presses_the_buttons_of_the_main_window()
    {
        StartUpWindows all = windows(QDialog::Accepted);
        int clicks = 0;
        const auto make = all.makeMainWindow;
        all.makeMainWindow = [make, &clicks] {
            std::unique_ptr<QWidget> window = make();
            auto* button = new QPushButton(window.get());
            connect(button, &QPushButton::clicked, button, [&clicks] { ++clicks; });
            QTimer::singleShot(50, button, [button] {
                button->activateWindow();
                button->setFocus();
                QTest::keyClick(button, Qt::Key_Return);
            });
            return window;
        };
        QCOMPARE(runTerminal(*qApp, all), 0);
        QCOMPARE(clicks, 1);
    }

    void theEncryptionLibraryIsLoadedWhileThePersonSignsIn()
    {
        if (!QFile::exists(u"/proc/self/maps"_s))
            QSKIP("this system does not list a program's libraries");
        StartUpWindows all = windows(QDialog::Accepted);
        bool loaded = false;
        const auto make = all.makeMainWindow;
        all.makeMainWindow = [make, &loaded] {
            QThreadPool::globalInstance()->waitForDone();
            loaded = hasLoaded("qopensslbackend");
            return make();
        };
        QCOMPARE(runTerminal(*qApp, all), 0);
        QVERIFY(loaded);
    }

    void updatesAreSetUpBehindTheMainWindowAndCleanedUpAtQuit()
    {
        UpdateFramework framework(updates());
        QCOMPARE(runTerminal(*qApp, windows(QDialog::Accepted), framework), 0);
        QCOMPARE(m_steps.sliced(3),
            (QStringList{
                u"sign-in gone"_s, u"updates of 1.0.1"_s, u"updates cleaned up"_s, u"main window gone"_s}));
        QVERIFY(m_windowAtSetUp);
        QVERIFY(m_quitAtSetUp);
    }

    void aCancelledSignInSetsUpNoUpdates()
    {
        UpdateFramework framework(updates());
        QCOMPARE(runTerminal(*qApp, windows(QDialog::Rejected), framework), 0);
        QCOMPARE(m_steps, (QStringList{u"sign-in made"_s, u"sign-in gone"_s}));
    }

    void pendingEventsAreHandledBehindTheSplashBeforeTheServerIsAsked()
    {
        std::optional<int> level;
        bool visible = false;
        int outerLevel = 0;
        // Inside a running event loop, since outside of one Qt handles events itself when it
        // shows a splash screen. Waiting for the server then runs a loop of its own, one level deeper.
        QTimer::singleShot(0, this, [&] {
            outerLevel = QThread::currentThread()->loopLevel();
            QTimer::singleShot(0, this, [&] {
                level = QThread::currentThread()->loopLevel();
                visible = splashIsVisible();
            });
            QCoreApplication::exit(runTerminal(*qApp, windows(QDialog::Rejected)));
        });
        QCOMPARE(QCoreApplication::exec(), 0);
        QCOMPARE(level, std::optional(outerLevel));
        QVERIFY(visible);
    }

    void theSplashIsPaintedWhileTheServerIsAsked()
    {
        const PaintWatch splash;
        StartUpWindows all = windows(QDialog::Rejected);
        bool paintedBeforeSignIn = false;
        const auto makeSignIn = all.makeSignIn;
        all.makeSignIn = [&, makeSignIn] {
            paintedBeforeSignIn = splash.painted;
            return makeSignIn();
        };
        QCOMPARE(runTerminal(*qApp, all), 0);
        QVERIFY(paintedBeforeSignIn);
    }

    void aCancelledSignInEndsWithExitCodeZeroAndNoMainWindow()
    {
        QCOMPARE(runTerminal(*qApp, windows(QDialog::Rejected)), 0);
        QCOMPARE(m_steps, (QStringList{u"sign-in made"_s, u"sign-in gone"_s}));
        QCOMPARE(logMessages().constLast(), u"login.exec() returned 0"_s);
        QVERIFY(!splashIsVisible());
    }

    void aResultThatIsNotAcceptedEndsToo()
    {
        QCOMPARE(runTerminal(*qApp, windows(2)), 0);
        QCOMPARE(logMessages().constLast(), u"login.exec() returned 2"_s);
        QCOMPARE(m_steps.size(), 2);
    }

    void theExitCodeIsTheEventLoops()
    {
        StartUpWindows all = windows(QDialog::Accepted);
        const auto make = all.makeMainWindow;
        all.makeMainWindow = [make] {
            auto window = make();
            QTimer::singleShot(10, window.get(), [] { QCoreApplication::exit(3); });
            return window;
        };
        QCOMPARE(runTerminal(*qApp, all), 3);
        QCOMPARE(logMessages().constLast(), u"app.exec() returned 3"_s);
    }

    void theDarkThemeIsLoggedWhenInForce()
    {
        setTheme(true);
        QCOMPARE(runTerminal(*qApp, windows(QDialog::Rejected)), 0);
        QCOMPARE(logMessages().constFirst(), u"theme applied: dark"_s);
        setTheme(false);
    }

    void aSignInIsOnDiskBeforeTheMainWindowExists()
    {
        StartUpWindows all = windows(QDialog::Accepted);
        all.userOf = [](const QDialog&) { return QJsonObject(); };
        const auto makeSignIn = all.makeSignIn;
        all.makeSignIn = [makeSignIn] {
            TerminalSettings::instance().setEmail(u"kept@b.example"_s);
            return makeSignIn();
        };
        const auto make = all.makeMainWindow;
        QByteArray stored;
        all.makeMainWindow = [&stored, make] {
            QFile file(SettingsStore::userFilePath() + u".copy"_s);
            if (file.open(QIODevice::ReadOnly))
                stored = file.readAll();
            return make();
        };
        QCOMPARE(runTerminal(*qApp, all), 0);
        QVERIFY(stored.contains("kept@b.example"));
    }

    void windowsThatAreNotHandedInAreSkipped()
    {
        QTimer quit;
        connect(&quit, &QTimer::timeout, qApp, [] { QCoreApplication::exit(5); });
        quit.start(20);
        QCOMPARE(runTerminal(*qApp, StartUpWindows()), 5);
        QVERIFY(!logMessages().contains(u"MainWindow constructed"_s));
    }

private:
    QStringList m_steps;
    bool m_splashBeforeSignIn = false;
    bool m_splashDuringSignIn = true;
    bool m_quitDuringSignIn = true;
    bool m_mainWindowShown = false;
    bool m_windowAtSetUp = false;
    bool m_quitAtSetUp = false;
};

TAVORAN_TEST(TestStartUp)
#include "tst_StartUp.moc"
