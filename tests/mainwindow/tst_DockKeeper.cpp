#include "app/base/TerminalSettings.h"
#include "mainwindow/DockKeeper.h"
#include "support/ShortSteps.h"
#include "support/TestMain.h"

#include <QDockWidget>
#include <QMainWindow>
#include <QScreen>
#include <QTreeWidget>
#include <QWidget>

#include <array>
#include <functional>
#include <limits>

using namespace Qt::StringLiterals;

namespace {

/// A window with the three docks, as the terminal has them.
struct Window final {
    QMainWindow window;
    DockKeeper keeper;

    Window()
        : keeper(window, TerminalSettings::instance())
    {
        keeper.setPanes(*new QTreeWidget, *new QTreeWidget, *new QTreeWidget);
        window.setCentralWidget(new QWidget);
        window.resize(1000, 700);
    }
    void show()
    {
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
    }
    [[nodiscard]] QDockWidget& left() const { return keeper.marketWatchDock(); }
    [[nodiscard]] QDockWidget& bottom() const { return keeper.toolboxDock(); }
    void size(int leftWidth, int bottomHeight)
    {
        window.resizeDocks({&left()}, {leftWidth}, Qt::Horizontal);
        window.resizeDocks({&bottom()}, {bottomHeight}, Qt::Vertical);
        QTRY_COMPARE(left().width(), leftWidth);
        QTRY_COMPARE(bottom().height(), bottomHeight);
    }
    /// Takes all fixed sizes from the docks.
    void release() const
    {
        for (QDockWidget* dock : {&left(), &keeper.navigatorDock(), &bottom()}) {
            dock->setMinimumSize(0, 0);
            dock->setMaximumSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX);
        }
    }
};

/// Keeps a dock collapsed while it lives, whatever its layout says, as window systems do for a moment when a
/// window comes back.
class Collapse final : public QObject {
public:
    explicit Collapse(QDockWidget& dock)
        : m_dock(dock)
    {
        dock.setTitleBarWidget(new QWidget);
        dock.setMinimumSize(0, 0);
        dock.widget()->setMinimumSize(1, 1);
        dock.installEventFilter(this);
    }
    bool eventFilter(QObject*, QEvent* event) override
    {
        constexpr QSize collapsed(10, 10);
        if (event->type() == QEvent::Resize && m_dock.size() != collapsed)
            m_dock.resize(collapsed);
        return false;
    }

private:
    QDockWidget& m_dock;
};

} // namespace

class tst_DockKeeper final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        TerminalSettings& settings = TerminalSettings::instance();
        settings.setWindowLayout({}, {});
        settings.setRestoringLayout(false);
    }

    void docksHaveTheirTitlesNamesAndPlaces()
    {
        Window w;
        QCOMPARE(w.left().windowTitle(), u"Market Watch"_s);
        QCOMPARE(w.left().objectName(), u"dockMarketWatch"_s);
        QCOMPARE(w.keeper.navigatorDock().windowTitle(), u"Navigator"_s);
        QCOMPARE(w.keeper.navigatorDock().objectName(), u"dockNavigator"_s);
        QCOMPARE(w.bottom().windowTitle(), u"Toolbox"_s);
        QCOMPARE(w.bottom().objectName(), u"dockTerminal"_s);
        QCOMPARE(w.window.dockWidgetArea(&w.left()), Qt::LeftDockWidgetArea);
        QCOMPARE(w.window.dockWidgetArea(&w.keeper.navigatorDock()), Qt::LeftDockWidgetArea);
        QCOMPARE(w.window.dockWidgetArea(&w.bottom()), Qt::BottomDockWidgetArea);
        w.show();
        QVERIFY(w.left().y() < w.keeper.navigatorDock().y());
        QVERIFY(w.left().minimumWidth() == 150);
        QVERIFY(w.keeper.navigatorDock().minimumWidth() == 150);
        QVERIFY(w.bottom().widget()->minimumHeight() == 80);
    }

    void repairBringsBackTheRememberedSizes()
    {
        Window w;
        w.show();
        w.size(333, 222);
        w.keeper.takeSnapshot();
        w.size(170, 120);
        w.keeper.repair();
        QTRY_COMPARE(w.left().width(), 333);
        QTRY_COMPARE(w.bottom().height(), 222);
    }

    void collapsedDocksAreNotRemembered()
    {
        Window w;
        w.show();
        w.size(333, 222);
        w.keeper.takeSnapshot();
        w.left().setFixedWidth(10);
        w.keeper.navigatorDock().setFixedWidth(10);
        w.bottom().setFixedHeight(10);
        QTRY_COMPARE(w.left().width(), 10);
        QTRY_COMPARE(w.bottom().height(), 10);
        w.keeper.takeSnapshot(); // collapsed: not remembered
        w.release();
        w.keeper.repair();
        QTRY_COMPARE(w.left().width(), 333);
        QTRY_COMPARE(w.bottom().height(), 222);
    }

    void repairWidensDocksThatCollapseWhileTheyAreRestored()
    {
        // One at a time: a single resizing lays all docks out anew.
        for (const bool isLeft : {true, false}) {
            Window w;
            w.show();
            w.size(333, 222);
            w.keeper.takeSnapshot();
            w.size(170, 120);
            QDockWidget& dock = isLeft ? w.left() : w.bottom();
            {
                const Collapse collapse(dock);
                QCoreApplication::processEvents(); // nothing is left to be laid out
                w.keeper.repair();
                QCOMPARE(dock.size(), QSize(10, 10));
            }
            QTRY_COMPARE(w.left().width(), 333);
            QTRY_COMPARE(w.bottom().height(), 222);
        }
    }

    void repairShowsHiddenDocks()
    {
        Window w;
        w.show();
        w.keeper.takeSnapshot();
        w.left().hide();
        w.keeper.navigatorDock().hide();
        w.bottom().hide();
        w.keeper.repair();
        QVERIFY(w.left().isVisible());
        QVERIFY(w.keeper.navigatorDock().isVisible());
        QVERIFY(w.bottom().isVisible());
    }

    void repairWithoutSnapshotOnlyShowsTheDocks()
    {
        Window w;
        w.show();
        w.size(200, 150);
        const QList<QDockWidget*> docks{&w.left(), &w.keeper.navigatorDock(), &w.bottom()};
        for (QDockWidget* dock : docks)
            dock->hide();
        w.keeper.repair();
        for (const QDockWidget* dock : docks)
            QVERIFY2(dock->isVisible(), qPrintable(dock->windowTitle()));
        QTRY_COMPARE(w.left().width(), 200);
    }

    void floatingDockIsNeitherRememberedNorResized()
    {
        Window w;
        w.show();
        w.left().setFloating(true);
        w.left().resize(400, 300);
        w.keeper.takeSnapshot();
        w.left().setFixedWidth(15);
        w.keeper.repair();
        QVERIFY(w.left().isFloating());
        QCOMPARE(w.left().width(), 15);
    }

    void docksThatLookWrongAreNotRemembered_data()
    {
        QTest::addColumn<std::function<void(Window&)>>("disturb");
        const auto row = [](const char* name, const std::function<void(Window&)>& disturb) {
            QTest::newRow(name) << disturb;
        };
        row("minimized", [](Window& w) { w.window.showMinimized(); });
        row("Market Watch hidden", [](Window& w) { w.left().hide(); });
        row("Market Watch floating", [](Window& w) { w.left().setFloating(true); });
        row("Market Watch collapsed", [](Window& w) {
            w.left().setFixedWidth(60);
            w.keeper.navigatorDock().setFixedWidth(60);
            QTRY_COMPARE(w.left().width(), 60);
        });
        row("Toolbox hidden", [](Window& w) { w.bottom().hide(); });
        row("Toolbox floating", [](Window& w) { w.bottom().setFloating(true); });
        row("Toolbox collapsed", [](Window& w) {
            w.bottom().setFixedHeight(40);
            QTRY_COMPARE(w.bottom().height(), 40);
        });
    }
    void docksThatLookWrongAreNotRemembered()
    {
        QFETCH(const std::function<void(Window&)>, disturb);
        Window w;
        w.show();
        w.size(333, 222);
        w.keeper.takeSnapshot();
        w.size(260, 180);
        disturb(w);
        w.keeper.takeSnapshot();
        w.release();
        w.window.showNormal();
        w.keeper.repair();
        QVERIFY(!w.left().isFloating() && w.left().isVisible());
        QVERIFY(!w.bottom().isFloating() && w.bottom().isVisible());
        QTRY_COMPARE(w.left().width(), 333);
        QTRY_COMPARE(w.bottom().height(), 222);
    }

    void hiddenWindowIsNotRemembered()
    {
        Window w;
        w.show();
        w.size(333, 222);
        w.window.hide();
        w.keeper.takeSnapshot();
        w.window.show();
        w.size(180, 120);
        w.keeper.repair();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
        QCOMPARE(w.left().width(), 180);
    }

    void docksAreRememberedOnceASecond()
    {
        Window w;
        auto* timer = w.keeper.findChild<QTimer*>(u"dockSnapshotTimer"_s);
        QVERIFY(timer);
        QCOMPARE(timer->interval(), 1000);
        QVERIFY(!timer->isSingleShot());
        QVERIFY(!timer->isActive());
        w.keeper.startSnapshots();
        QVERIFY(timer->isActive());

        w.show();
        w.size(333, 222);
        timer->stop();
        QVERIFY(QMetaObject::invokeMethod(timer, "timeout"));
        w.size(170, 120);
        w.keeper.repair();
        QTRY_COMPARE(w.left().width(), 333);
        QTRY_COMPARE(w.bottom().height(), 222);
    }

    void repairRunsThreeTimes()
    {
        Window w;
        w.show();
        int shown = 0;
        QElapsedTimer sinceAsked;
        QList<qint64> times;
        connect(&w.bottom(), &QDockWidget::visibilityChanged, this, [&](bool visible) {
            if (!visible)
                return;
            times.append(sinceAsked.elapsed());
            if (++shown < 3)
                w.bottom().hide(); // collapsed again, as the window system does
        });
        w.bottom().hide();
        sinceAsked.start();
        w.keeper.scheduleRepair();
        QTRY_COMPARE(shown, 3);
        QVERIFY(w.bottom().isVisible());
        // However slow the machine is, no timer fires before its time.
        QVERIFY(times.at(1) >= 79 && times.at(2) >= 199);
    }

    void defaultLayoutComesBack()
    {
        Window w;
        w.show();
        QTRY_COMPARE(w.left().width(), 352);
        QTRY_COMPARE(w.bottom().height(), 210);
        w.size(200, 150);
        w.left().setFloating(true);
        w.window.addDockWidget(Qt::RightDockWidgetArea, &w.keeper.navigatorDock());
        w.bottom().hide();
        w.keeper.restoreDefault();
        QVERIFY(!w.left().isFloating());
        QVERIFY(w.bottom().isVisible());
        QCOMPARE(w.window.dockWidgetArea(&w.keeper.navigatorDock()), Qt::LeftDockWidgetArea);
        QTRY_COMPARE(w.left().width(), 352);
        QTRY_COMPARE(w.bottom().height(), 210);
        QVERIFY(w.left().y() < w.keeper.navigatorDock().y());
    }

    void arrangementSurvivesARestart()
    {
        {
            Window w;
            w.show();
            w.window.resize(700, 500); // the test screen is small
            w.window.addDockWidget(Qt::RightDockWidgetArea, &w.keeper.navigatorDock());
            w.size(260, 180);
            w.keeper.storeInSettings();
        }
        Window w;
        QCOMPARE(w.keeper.restoreFromSettings(), QString());
        w.show();
        QCOMPARE(w.window.size(), QSize(700, 500));
        QCOMPARE(w.window.dockWidgetArea(&w.keeper.navigatorDock()), Qt::RightDockWidgetArea);
        QTRY_COMPARE(w.left().width(), 260);
        QTRY_COMPARE(w.bottom().height(), 180);
    }

    void nothingSavedLeavesTheDefault()
    {
        Window w;
        QCOMPARE(w.keeper.restoreFromSettings(), QString());
        QVERIFY(!TerminalSettings::instance().restoringLayout());
        QCOMPARE(w.window.size(), QSize(1000, 700));
    }

    void corruptStatesLeaveTheDefault_data()
    {
        QTest::addColumn<QByteArray>("geometry");
        QTest::addColumn<QByteArray>("state");
        QTest::addColumn<bool>("told");
        QMainWindow foreign;
        auto* dock = new QDockWidget;
        dock->setObjectName(u"someone else's"_s);
        foreign.addDockWidget(Qt::TopDockWidgetArea, dock);
        const Window own;
        const QByteArray state = own.window.saveState();
        QTest::newRow("not a state") << QByteArray() << QByteArray("garbage") << true;
        QTest::newRow("truncated") << QByteArray() << state.left(state.size() / 2) << true;
        QTest::newRow("another window's") << QByteArray() << foreign.saveState() << false;
        QTest::newRow("geometry alone is broken")
            << QByteArray("\x01\xd9\xd0\xcb garbage") << QByteArray() << false;
        QTest::newRow("both") << QByteArray(1000, '\xff') << QByteArray(1000, '\xff') << true;
    }
    void corruptStatesLeaveTheDefault()
    {
        QFETCH(QByteArray, geometry);
        QFETCH(QByteArray, state);
        TerminalSettings::instance().setWindowLayout(geometry, state);
        Window w;
        const QString notice = w.keeper.restoreFromSettings();
        w.show();
        QCOMPARE(w.window.size(), QSize(1000, 700));
        QVERIFY(w.left().isVisible());
        QVERIFY(w.keeper.navigatorDock().isVisible());
        QVERIFY(w.bottom().isVisible());
        QCOMPARE(w.window.dockWidgetArea(&w.left()), Qt::LeftDockWidgetArea);
        QCOMPARE(w.window.dockWidgetArea(&w.bottom()), Qt::BottomDockWidgetArea);
        QTEST(notice.contains(u"default layout"_s), "told");
    }

    void interruptedRestoringLeavesTheDefaultOnce()
    {
        {
            Window w;
            w.show();
            w.window.addDockWidget(Qt::RightDockWidgetArea, &w.keeper.navigatorDock());
            w.keeper.storeInSettings();
        }
        TerminalSettings::instance().setRestoringLayout(true);
        {
            Window w;
            QVERIFY(w.keeper.restoreFromSettings().contains(u"default layout"_s));
            QCOMPARE(w.window.dockWidgetArea(&w.keeper.navigatorDock()), Qt::LeftDockWidgetArea);
        }
        Window w;
        QCOMPARE(w.keeper.restoreFromSettings(), QString());
        QCOMPARE(w.window.dockWidgetArea(&w.keeper.navigatorDock()), Qt::RightDockWidgetArea);
    }

    void restoringMarkStaysUntilTheWindowWasShown()
    {
        {
            Window w;
            w.keeper.storeInSettings();
        }
        Window w;
        QCOMPARE(w.keeper.restoreFromSettings(), QString());
        QVERIFY(TerminalSettings::instance().restoringLayout());
        w.keeper.confirmRestored();
        QVERIFY(!TerminalSettings::instance().restoringLayout());
    }

    void geometryOffEveryScreenIsMovedOntoOne_data()
    {
        QTest::addColumn<QRect>("geometry");
        constexpr int far = 2'000'000'000;
        QTest::newRow("far to the right") << QRect(50'000, 100, 900, 600);
        QTest::newRow("far above") << QRect(100, -50'000, 900, 600);
        QTest::newRow("absurdly large") << QRect(0, 0, far, far);
        QTest::newRow("absurdly far") << QRect(QPoint(far, far), QSize(900, 600));
    }
    void geometryOffEveryScreenIsMovedOntoOne()
    {
        QFETCH(QRect, geometry);
        // Qt's own format, with the rectangles that a damaged or foreign one may hold.
        QByteArray saved;
        {
            Window w;
            w.show();
            saved = w.window.saveGeometry();
        }
        QByteArray rects;
        QDataStream stream(&rects, QIODevice::WriteOnly);
        stream << geometry << geometry;
        constexpr int afterMagicAndVersions = 8;
        saved.replace(afterMagicAndVersions, rects.size(), rects);
        TerminalSettings::instance().setWindowLayout(saved, {});

        Window w;
        QCOMPARE(w.keeper.restoreFromSettings(), QString());
        w.show();
        const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
        QVERIFY(screen.adjusted(-1, -1, 1, 1).intersects(w.window.geometry()));
        QVERIFY(w.window.width() <= screen.width());
        QVERIFY(w.window.height() <= screen.height());
        QVERIFY(screen.contains(w.window.geometry().center()));
    }

    void oneDamagedNumberLeavesTheWindowOnAScreen_data()
    {
        QTest::addColumn<int>("field");
        QTest::addColumn<int>("value");
        QTest::addColumn<int>("state");
        constexpr std::array fields{"frame", "normal", "rectangle"};
        constexpr std::array sides{"left", "top", "right", "bottom"};
        constexpr std::array states{"plain", "maximized", "full screen"};
        for (int field = 0; field < 12; ++field) {
            for (const int value :
                {1358954496, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()}) {
                for (int state = 0; state < 3; ++state) {
                    QTest::addRow("%s %s %d, %s", fields.at(std::size_t(field / 4)),
                        sides.at(std::size_t(field % 4)), value, states.at(std::size_t(state)))
                        << field << value << state;
                }
            }
        }
    }
    void oneDamagedNumberLeavesTheWindowOnAScreen()
    {
        QFETCH(int, field);
        QFETCH(int, value);
        QFETCH(int, state);
        // Qt's own format, with one wrong number in it.
        QByteArray saved;
        QDataStream stream(&saved, QIODevice::WriteOnly);
        int written = 0;
        const auto writeRectangle = [&] {
            for (const int side : {50, 60, 649, 509})
                stream << qint32(written++ == field ? value : side);
        };
        stream << quint32(0x1D9D0CB) << quint16(3) << quint16(0);
        writeRectangle();
        writeRectangle();
        stream << qint32(0) << quint8(state == 1) << quint8(state == 2) << qint32(800);
        writeRectangle();
        TerminalSettings::instance().setWindowLayout(saved, {});

        Window w;
        w.window.resize(700, 500); // has room where it is, which is no reason to leave it where it was put
        QCOMPARE(w.keeper.restoreFromSettings(), QString());
        w.show();
        if (state != 0)
            w.window.showNormal();
        const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
        const auto isWithinReach = [&] {
            const QRect visible = screen & w.window.geometry();
            return visible.width() >= 120 && visible.height() >= 40 && w.window.y() >= screen.top() - 40;
        };
        QTRY_VERIFY(isWithinReach());
        QVERIFY(w.window.width() <= screen.width() && w.window.height() <= screen.height());
    }

    void maximizedStateSurvives()
    {
        {
            Window w;
            w.window.showMaximized();
            QVERIFY(QTest::qWaitForWindowExposed(&w.window));
            w.keeper.storeInSettings();
        }
        Window w;
        QCOMPARE(w.keeper.restoreFromSettings(), QString());
        w.window.show();
        QVERIFY(w.window.isMaximized());
    }
};

TAVORAN_TEST(tst_DockKeeper)
#include "tst_DockKeeper.moc"
