#include "mainwindow/WindowPlacement.h"
#include "support/TestMain.h"

class tst_WindowPlacement final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void docksAreRememberedOnlyWhileTheyLookRight_data();
    void docksAreRememberedOnlyWhileTheyLookRight();
    void windowsArePlacedOnAScreen_data();
    void windowsArePlacedOnAScreen();
    void withoutScreensNothingChanges();
};

void tst_WindowPlacement::docksAreRememberedOnlyWhileTheyLookRight_data()
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

void tst_WindowPlacement::docksAreRememberedOnlyWhileTheyLookRight()
{
    QFETCH(DockFacts, facts);
    QTEST(docksLookSane(facts), "sane");
}

void tst_WindowPlacement::windowsArePlacedOnAScreen_data()
{
    QTest::addColumn<QRect>("wanted");
    QTest::addColumn<QRect>("placed");
    constexpr int far = 2'000'000'000;
    QTest::newRow("inside") << QRect(10, 10, 800, 600) << QRect(10, 10, 800, 600);
    QTest::newRow("partly outside but usable") << QRect(1800, 900, 800, 600) << QRect(1800, 900, 800, 600);
    QTest::newRow("on the second screen") << QRect(2000, 10, 800, 600) << QRect(2000, 10, 800, 600);
    QTest::newRow("across both screens") << QRect(100, 10, 2500, 600) << QRect(100, 10, 2500, 600);
    QTest::newRow("right of everything") << QRect(5000, 10, 800, 600) << QRect(1120, 10, 800, 600);
    QTest::newRow("above everything") << QRect(10, -5000, 800, 600) << QRect(10, 0, 800, 600);
    QTest::newRow("title bar out of reach") << QRect(10, -500, 800, 600) << QRect(10, 0, 800, 600);
    QTest::newRow("absurdly large") << QRect(0, 0, far, far) << QRect(0, 0, 1920, 1080);
    QTest::newRow("absurdly far") << QRect(QPoint(far, far), QPoint(far + 800, far + 600))
                                  << QRect(1119, 479, 801, 601);
    QTest::newRow("absurd both ways")
        << QRect(QPoint(-far, -far), QPoint(far, far)) << QRect(0, 0, 1920, 1080);
}

void tst_WindowPlacement::windowsArePlacedOnAScreen()
{
    QFETCH(QRect, wanted);
    QTEST(placedOnScreen(wanted, {QRect(0, 0, 1920, 1080), QRect(1920, 0, 1280, 1024)}), "placed");
}

void tst_WindowPlacement::withoutScreensNothingChanges()
{
    QCOMPARE(placedOnScreen(QRect(1, 2, 3, 4), {}), QRect(1, 2, 3, 4));
}

TAVORAN_TEST_MAIN(tst_WindowPlacement)
#include "tst_WindowPlacement.moc"
