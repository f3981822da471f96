#include "mainwindow/WindowPlacement.h"
#include "support/TestMain.h"

class tst_WindowPlacement final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void docksAreRememberedOnlyWhileTheyLookRight_data()
    {
        QTest::addColumn<DockFacts>("facts");
        QTest::addColumn<bool>("sane");
        const DockFacts good{false, false, false, false, 61, false, false, 41};
        const auto row = [&good](const char* name, bool sane, const std::function<void(DockFacts&)>& change) {
            DockFacts facts = good;
            change(facts);
            QTest::newRow(name) << facts << sane;
        };
        row("just large enough", true, [](DockFacts&) {});
        row("minimized", false, [](DockFacts& f) { f.windowMinimized = true; });
        row("window hidden", false, [](DockFacts& f) { f.windowHidden = true; });
        row("left hidden", false, [](DockFacts& f) { f.leftHidden = true; });
        row("left floating", false, [](DockFacts& f) { f.leftFloating = true; });
        row("left 60 wide", false, [](DockFacts& f) { f.leftWidth = 60; });
        row("bottom hidden", false, [](DockFacts& f) { f.bottomHidden = true; });
        row("bottom floating", false, [](DockFacts& f) { f.bottomFloating = true; });
        row("bottom 40 high", false, [](DockFacts& f) { f.bottomHeight = 40; });
    }
    void docksAreRememberedOnlyWhileTheyLookRight()
    {
        QFETCH(DockFacts, facts);
        QTEST(docksLookSane(facts), "sane");
    }

    void windowsArePlacedOnAScreen_data()
    {
        QTest::addColumn<QRect>("wanted");
        QTest::addColumn<QRect>("placed");
        constexpr int far = 2'000'000'000;
        QTest::newRow("inside") << QRect(10, 10, 800, 600) << QRect(10, 10, 800, 600);
        QTest::newRow("partly outside but usable")
            << QRect(1800, 900, 800, 600) << QRect(1800, 900, 800, 600);
        QTest::newRow("on the second screen") << QRect(2000, 10, 800, 600) << QRect(2000, 10, 800, 600);
        QTest::newRow("across both screens") << QRect(100, 10, 2500, 600) << QRect(100, 10, 2500, 600);
        QTest::newRow("right of everything") << QRect(5000, 10, 800, 600) << QRect(1120, 10, 800, 600);
        QTest::newRow("above everything") << QRect(10, -5000, 800, 600) << QRect(10, 0, 800, 600);
        QTest::newRow("title bar out of reach") << QRect(10, -500, 800, 600) << QRect(10, 0, 800, 600);
        QTest::newRow("absurdly large") << QRect(0, 0, far, far) << QRect(0, 0, 1920, 1080);
        QTest::newRow("absurdly far")
            << QRect(QPoint(far, far), QPoint(far + 800, far + 600)) << QRect(1119, 479, 801, 601);
        QTest::newRow("absurd both ways")
            << QRect(QPoint(-far, -far), QPoint(far, far)) << QRect(0, 0, 1920, 1080);
    }
    void windowsArePlacedOnAScreen()
    {
        QFETCH(QRect, wanted);
        QTEST(placedOnScreen(wanted, {QRect(0, 0, 1920, 1080), QRect(1920, 0, 1280, 1024)}), "placed");
    }

    void withoutScreensNothingChanges()
    {
        QCOMPARE(placedOnScreen(QRect(1, 2, 3, 4), {}), QRect(1, 2, 3, 4));
    }

    void windowsAreFittedWithTheirFrames_data()
    {
        QTest::addColumn<QRect>("wanted");
        QTest::addColumn<QMargins>("frame");
        QTest::addColumn<QSize>("least");
        QTest::addColumn<QRect>("available");
        QTest::addColumn<QRect>("fitted");
        const QRect first(0, 0, 1280, 800);
        const QMargins none;
        const QMargins frame(1, 28, 1, 1);
        const QSize least(500, 300);
        const QRect desktop(0, 0, 1920, 1080);
        QTest::newRow("fits") << QRect(100, 100, 1280, 800) << frame << least << desktop
                              << QRect(100, 100, 1280, 800);
        QTest::newRow("fits to the pixel") << first << none << least << QRect(0, 0, 1280, 800) << first;
        QTest::newRow("fits to the pixel, frame and panel")
            << QRect(1, 52, 1280, 800) << frame << least << QRect(0, 24, 1282, 829)
            << QRect(1, 52, 1280, 800);
        QTest::newRow("fits, frame outside")
            << QRect(0, 0, 1280, 800) << frame << least << desktop << QRect(1, 28, 1280, 800);
        QTest::newRow("1024 x 600") << first << none << least << QRect(0, 0, 1024, 600)
                                    << QRect(0, 0, 1024, 600);
        QTest::newRow("1024 x 600, frame")
            << first << frame << least << QRect(0, 0, 1024, 600) << QRect(1, 28, 1022, 571);
        QTest::newRow("1920 x 1200 at scale 1.5, panel")
            << first << frame << least << QRect(0, 27, 1280, 773) << QRect(1, 55, 1278, 744);
        QTest::newRow("1920 x 1200 at scale 1.5, no panel")
            << first << frame << least << QRect(0, 0, 1280, 800) << QRect(1, 28, 1278, 771);
        QTest::newRow("only too high")
            << first << frame << least << QRect(0, 0, 1366, 768) << QRect(1, 28, 1280, 739);
        QTest::newRow("second screen, to the left of the first") << QRect(-1100, -10, 1280,
            800) << frame << least << QRect(-1024, 0, 1024, 768) << QRect(-1023, 28, 1022, 739);
        QTest::newRow("over the right and the lower edge")
            << QRect(1500, 900, 400, 300) << frame << least << desktop << QRect(1500, 779, 400, 300);
        // What cannot become small enough shows its title and its upper left.
        QTest::newRow("a tiny screen")
            << first << frame << least << QRect(0, 0, 320, 240) << QRect(1, 28, 500, 300);
        QTest::newRow("an order window on 800 x 480") << QRect(-60, 20, 920, 440) << frame << QSize(920, 440)
                                                      << QRect(0, 0, 800, 480) << QRect(1, 28, 920, 440);
        QTest::newRow("a frame larger than the screen")
            << QRect(0, 0, 50, 50) << QMargins(40, 40, 40, 40) << QSize(10, 10) << QRect(0, 0, 60, 60)
            << QRect(40, 40, 10, 10);
        // Its own least size has no room left to grow into.
        QTest::newRow("smaller than its least size")
            << QRect(0, 0, 200, 100) << none << least << desktop << QRect(0, 0, 200, 100);
    }
    void windowsAreFittedWithTheirFrames()
    {
        QFETCH(const QRect, wanted);
        QFETCH(const QMargins, frame);
        QFETCH(const QSize, least);
        QFETCH(const QRect, available);
        QTEST(fittedToScreen(wanted, frame, least, available), "fitted");
    }

    void withoutAScreenNothingIsFitted()
    {
        const QRect wanted(-5, -5, 1280, 800);
        QCOMPARE(fittedToScreen(wanted, {1, 28, 1, 1}, {500, 300}, {}), wanted);
    }
};

TAVORAN_TEST(tst_WindowPlacement)
#include "tst_WindowPlacement.moc"
