#include "CommandDriver.h"
#include "app/ui/Theme.h"
#include "support/TestMain.h"

#include <QMdiSubWindow>
#include <QTabBar>

using namespace Qt::StringLiterals;

namespace {

QList<QRect> places(const CommandDriver& d)
{
    QList<QRect> rects;
    for (const QMdiSubWindow* subWindow : d.f.chartArea()->subWindowList())
        rects.append(subWindow->geometry());
    return rects;
}

bool anyMaximized(const CommandDriver& d)
{
    for (const QMdiSubWindow* subWindow : d.f.chartArea()->subWindowList()) {
        if (subWindow->isMaximized())
            return true;
    }
    return false;
}

/// The darkest and the brightest of the greys in the middle of a sub-window's title bar.
std::pair<int, int> titleShades(QMdiSubWindow& subWindow)
{
    QCoreApplication::processEvents();
    const int titleBottom = subWindow.widget()->y();
    const QRect middle(subWindow.width() / 3, 4, subWindow.width() / 3, titleBottom - 8);
    const QImage picture = subWindow.grab(middle).toImage();
    int darkest = 255;
    int brightest = 0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const int grey = qGray(picture.pixel(x, y));
            darkest = std::min(darkest, grey);
            brightest = std::max(brightest, grey);
        }
    }
    return {darkest, brightest};
}

void openThree(const CommandDriver& d)
{
    for (const auto& symbol : {u"EURUSD"_s, u"USDJPY"_s, u"GBPUSD"_s})
        QVERIFY(d.openChart(symbol));
    QVERIFY(anyMaximized(d));
}

} // namespace

class tst_ChartTiling final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void tileShowsAllChartsSideBySide()
    {
        const CommandDriver d;
        openThree(d);
        d.choose({u"&Window"_s, u"Tile"_s});
        QVERIFY(!anyMaximized(d));
        const QList<QRect> rects = places(d);
        const QRect area = d.f.chartArea()->viewport()->rect();
        qint64 covered = 0;
        for (qsizetype i = 0; i < rects.size(); ++i) {
            QVERIFY(area.contains(rects.at(i)));
            for (qsizetype k = 0; k < i; ++k)
                QVERIFY(!rects.at(i).intersects(rects.at(k)));
            covered += qint64(rects.at(i).width()) * rects.at(i).height();
        }
        QVERIFY(covered * 10 > qint64(area.width()) * area.height() * 9);
        for (const ChartWindow* chart : d.f.charts())
            QVERIFY(chart->isVisible());
        QCOMPARE(d.f.chartArea()->activeChart()->symbol(), u"GBPUSD"_s);
    }

    void tiledChartsFillTheAreaWhenTheWindowGrows()
    {
        const CommandDriver d;
        openThree(d);
        d.choose({u"&Window"_s, u"Tile"_s});
        const QList<QRect> before = places(d);
        d.f.window->resize(1500, 950);
        QTRY_VERIFY(places(d) != before);
        QTRY_VERIFY(d.f.chartArea()->viewport()->rect().contains(places(d).constLast()));
        for (qsizetype i = 0; i < before.size(); ++i)
            QVERIFY(places(d).at(i).width() >= before.at(i).width());
    }

    void cascadeShowsATitleOfEveryChart()
    {
        const CommandDriver d;
        openThree(d);
        d.choose({u"&Window"_s, u"Cascade"_s});
        QVERIFY(!anyMaximized(d));
        const QList<QRect> rects = places(d);
        QSet<QPair<int, int>> corners;
        for (const QRect& rect : rects) {
            corners.insert({rect.x(), rect.y()});
            QVERIFY(d.f.chartArea()->viewport()->rect().contains(rect));
            QVERIFY(rect.width() >= 500 && rect.height() >= 300); // a chart that can be read
        }
        QCOMPARE(corners.size(), rects.size());
    }

    void aChartBesideOthersOpensWithinALowArea()
    {
        const CommandDriver d;
        openThree(d);
        d.choose({u"&Window"_s, u"Cascade"_s});
        d.f.window->resize(1024, 600);
        const QRect area = d.f.chartArea()->viewport()->rect();
        QVERIFY(area.height() < 400);
        QVERIFY(d.openChart(u"AUDUSD"_s));
        QVERIFY(area.contains(places(d).constLast()));
        d.choose({u"&Window"_s, u"Cascade"_s});
        for (const QRect& rect : places(d))
            QVERIFY(area.contains(rect));
    }

    void titlesOfTiledChartsCanBeReadInEveryTheme()
    {
        const auto putBack = qScopeGuard([] {
            setTheme(false);
            applyTheme(*qApp);
        });
        setTheme(false);
        applyTheme(*qApp);
        const CommandDriver d;
        openThree(d);
        d.activate();
        d.choose({u"&Window"_s, u"Tile"_s});
        for (const auto& theme : {u"Light"_s, u"Dark"_s, u"Light"_s, u"Dark"_s}) {
            d.choose({u"&View"_s, u"Theme"_s, theme});
            for (QMdiSubWindow* subWindow : d.f.chartArea()->subWindowList()) {
                const auto [darkest, brightest] = titleShades(*subWindow);
                QVERIFY2(brightest - darkest > 120, qPrintable(theme + u' ' + subWindow->windowTitle()));
                QVERIFY2(darkest < 130, qPrintable(theme + u' ' + subWindow->windowTitle()));
            }
        }
    }

    void theTabsStayAndAMaximizedChartHidesTheOthers()
    {
        const CommandDriver d;
        openThree(d);
        d.choose({u"&Window"_s, u"Tile"_s});
        ChartArea* area = d.f.chartArea();
        auto* tabs = area->findChild<QTabBar*>(QString(), Qt::FindDirectChildrenOnly);
        QVERIFY(tabs->isVisible());
        QCOMPARE(tabs->count(), 3);
        QTest::mouseClick(tabs, Qt::LeftButton, {}, tabs->tabRect(0).center());
        QTRY_COMPARE(area->activeChart()->symbol(), u"EURUSD"_s);
        QVERIFY(!anyMaximized(d));
        area->currentSubWindow()->showMaximized();
        QCOMPARE(area->currentSubWindow()->geometry(), area->viewport()->rect());
        QTest::mouseClick(tabs, Qt::LeftButton, {}, tabs->tabRect(1).center());
        QTRY_COMPARE(area->activeChart()->symbol(), u"USDJPY"_s);
        QTRY_VERIFY(area->currentSubWindow()->isMaximized());
    }

    void tilesComeBackAfterARestart()
    {
        CommandDriver d;
        openThree(d);
        d.choose({u"&Window"_s, u"Tile"_s});
        const QList<QRect> tiles = places(d);
        QVERIFY(d.f.window->close());
        d.f.open();
        QCOMPARE(d.f.charts().size(), 3);
        QVERIFY(!anyMaximized(d));
        QTRY_COMPARE(places(d), tiles);
    }

    void cascadedChartsComeBackAfterARestart()
    {
        CommandDriver d;
        openThree(d);
        d.choose({u"&Window"_s, u"Cascade"_s});
        const QList<QRect> cascade = places(d);
        QVERIFY(d.f.window->close());
        d.f.open();
        QVERIFY(!anyMaximized(d));
        QTRY_COMPARE(places(d), cascade);
    }

    void closeEndsTheActiveChartOnly()
    {
        const CommandDriver d;
        openThree(d);
        ChartArea* area = d.f.chartArea();
        area->setActiveSubWindow(area->subWindowList().at(1));
        d.choose({u"&Window"_s, u"Close"_s});
        QTRY_COMPARE(d.f.charts().size(), 2);
        QCOMPARE(d.f.charts().at(0)->symbol(), u"EURUSD"_s);
        QCOMPARE(d.f.charts().at(1)->symbol(), u"GBPUSD"_s);
    }
};

TAVORAN_TEST(tst_ChartTiling)
#include "tst_ChartTiling.moc"
