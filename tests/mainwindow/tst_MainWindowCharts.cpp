#include "MainWindowFixture.h"
#include "chart/layers/ChartFrame.h"
#include "chart/window/ChartWidget.h"
#include "chart/window/ChartWindow.h"
#include "support/TestMain.h"

#include <QDoubleSpinBox>
#include <QLineEdit>
#include <QMdiSubWindow>
#include <QStatusBar>
#include <QTabBar>

#include <cmath>

using namespace Qt::StringLiterals;

namespace {

/// Whether bars that the server sent are there, and not only the one that live prices begin.
bool showsHistory(const ChartWindow& chart)
{
    const auto& candles = chart.chart().candles();
    return !candles.empty() && candles.front().time == 1'780'358'400'000;
}

/// `count` quarter-hour bars from so many after 2 June 2026, 00:00 UTC.
QJsonArray historyOf(int first, int count)
{
    QJsonArray rows;
    for (int i = first; i < first + count; ++i) {
        const QDateTime time = QDateTime::fromMSecsSinceEpoch(1'780'358'400'000 + i * 900'000LL).toUTC();
        const double price = 1.3 + 0.01 * std::sin(i * 0.3);
        rows.append(
            records::candle(time.toString(Qt::ISODateWithMs), price, price + 0.001, price - 0.001, price, 1));
    }
    return rows;
}

} // namespace

class tst_MainWindowCharts final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void doubleClickInMarketWatchOpensOneChart()
    {
        MainWindowFixture f;
        f.signInAndSettle();
        auto* watch = &f.list("marketWatchSymbols");
        const QPoint row = watch->visualItemRect(watch->topLevelItem(1)).center();
        QTest::mouseClick(watch->viewport(), Qt::LeftButton, {}, row);
        QTest::mouseDClick(watch->viewport(), Qt::LeftButton, {}, row);
        QCOMPARE(f.charts().size(), 1);
        QCOMPARE(f.charts().constFirst()->symbol(), u"USDJPY"_s);
        QCOMPARE(f.charts().constFirst()->timeframe(), u"15m"_s);
        QTRY_COMPARE(f.server.count("GET", "/api/candles?symbol=USDJPY&timeframe=15m"), 1);
    }

    void newChartStartsWithWhatIsKnown()
    {
        MainWindowFixture f;
        f.signInAndSettle();
        f.action("New Chart")->trigger();
        QCOMPARE(f.charts().size(), 1);
        QCOMPARE(f.charts().constFirst()->symbol(), u"EURUSD"_s);
        QCOMPARE(f.charts().constFirst()->accountId(), u"a1"_s);
        QCOMPARE(f.charts().constFirst()->digits(), 5);
        f.selector().setCurrentIndex(2);
        QCOMPARE(f.charts().constFirst()->accountId(), u"a2"_s);
    }

    void chartsFollowTradesFiguresAndPrices()
    {
        MainWindowFixture f;
        f.open();
        f.window->openChart(u"EURUSD"_s); // before anything is known
        f.window->setUser({});
        QTRY_VERIFY(f.charts().constFirst()->equity() > 1000.0);
        f.settle();
        f.window->openChart(u"EURUSD"_s);
        QCOMPARE(f.charts().size(), 2);
        for (const ChartWindow* chart : f.charts()) {
            QCOMPARE(chart->accountId(), u"a1"_s);
            QCOMPARE(chart->balance(), 1000.0);
            QCOMPARE(chart->equity(), 1012.5);
            QCOMPARE(chart->chart().tradeLevels().size(), 1);
        }
        QCOMPARE(f.charts().first()->chart().bid(), 0.0); // the hello brought no tick
        QCOMPARE(f.charts().last()->chart().bid(), 1.1);
        f.feed.send(records::tradesUpdate({records::position("t1").profit(-20)}));
        f.feed.send(records::priceUpdate({{"EURUSD", 1.25, 1.26}}));
        for (const ChartWindow* chart : f.charts()) {
            QTRY_COMPARE(chart->equity(), 980.0);
            QTRY_COMPARE(chart->chart().bid(), 1.25);
        }
        f.selector().setCurrentIndex(2);
        for (const ChartWindow* chart : f.charts()) {
            QCOMPARE(chart->accountId(), u"a2"_s);
            QCOMPARE(chart->balance(), 2000.0);
            QTRY_VERIFY(chart->chart().tradeLevels().isEmpty());
        }
    }

    void chartsReadTheirHistoryAgainOnlyAfterTheFeedWasGone()
    {
        MainWindowFixture f;
        f.signInAndSettle();
        f.window->openChart(u"EURUSD"_s);
        f.settle();
        const QJsonObject hello = records::hello({records::symbol("EURUSD")});
        f.feed.send(hello);
        QTRY_COMPARE(f.server.count("GET", "/api/accounts"), 3);
        f.settle();
        QCOMPARE(f.server.count("GET", "/api/candles"), 1);
        f.feed.cut();
        QTRY_COMPARE(f.server.count("GET", "/api/candles"), 2);
        f.feed.send(hello);
        QTRY_COMPARE(f.server.count("GET", "/api/accounts"), 5);
        f.settle();
        QCOMPARE(f.server.count("GET", "/api/candles"), 2);
    }

    void aReconnectionLeavesViewAndHandAlone()
    {
        const QByteArray path
            = "/api/candles?symbol=GBPUSD&timeframe=15m"; // no price of now builds bars of it
        MainWindowFixture f;
        f.server.on("GET", path, StubAnswer::list(historyOf(0, 300)));
        f.server.on("GET", "/api/trades/open?accountId=a1",
            StubAnswer::list({records::position("t1").symbol("GBPUSD").at(1.2).stopLoss(1.3)}));
        f.signInAndSettle();
        f.window->openChart(u"GBPUSD"_s);
        ChartWindow* window = f.charts().constFirst();
        ChartWidget& chart = window->chart();
        QTRY_COMPARE(chart.candles().size(), std::size_t(300));
        f.settle();

        const QPoint free(chart.view().plot().center().x(), chart.view().pricePixel(1.3) + 30);
        QTest::mousePress(&chart, Qt::LeftButton, {}, free);
        QTest::mouseMove(&chart, free + QPoint(93, 0));
        QTest::mouseRelease(&chart, Qt::LeftButton, {}, free + QPoint(93, 0));
        QVERIFY(!chart.autoScroll());
        const auto seen = [&chart] {
            const ChartView& view = chart.view();
            return QVector<double>{
                static_cast<double>(chart.candles()[static_cast<std::size_t>(view.visible().first)].time),
                view.barX(static_cast<double>(view.visible().first)), view.prices().min, view.prices().max};
        };
        const QVector<double> before = seen();
        QVERIFY(before.first() > 1'780'358'400'000.0); // there is more to the left
        const QPoint onLevel(free.x(), chart.view().pricePixel(1.3));
        QTest::mousePress(&chart, Qt::LeftButton, {}, onLevel);
        QTest::mouseMove(&chart, onLevel + QPoint(0, 40));
        QCOMPARE(chart.frame().draggedLevel, 1);
        const double price = chart.frame().draggedPrice;

        f.server.on("GET", path, StubAnswer::list(historyOf(-20, 340)));
        f.feed.cut();
        QTRY_COMPARE(chart.candles().size(), std::size_t(340));
        f.settle();
        QCOMPARE(seen(), before);
        QVERIFY(!chart.autoScroll());
        QCOMPARE(chart.frame().draggedLevel, 1);
        QCOMPARE(chart.frame().draggedPrice, price);

        window->reload(); // the trader's own wish to see the newest
        QTRY_VERIFY(chart.autoScroll());
        QCOMPARE(chart.rightBarIndex(), 339.0);
        QCOMPARE(chart.frame().draggedLevel, -1);
    }

    void zoomKeysActOnceAndLeaveTextFieldsAlone()
    {
        MainWindowFixture f;
        f.signInAndSettle();
        QVERIFY(!f.action("Zoom In")->isEnabled());
        f.window->openChart(u"EURUSD"_s);
        QVERIFY(f.action("Zoom In")->isEnabled());
        f.chartArea()->closeAllSubWindows();
        QTRY_VERIFY(!f.action("Zoom In")->isEnabled());
        QVERIFY(!f.action("Zoom Out")->isEnabled());
        f.window->openChart(u"EURUSD"_s);
        f.window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(f.window.get()));
        QSignalSpy in(f.action("Zoom In"), &QAction::triggered);
        QSignalSpy out(f.action("Zoom Out"), &QAction::triggered);
        f.charts().constFirst()->setFocus();
        QTest::keyClick(f.window.get(), Qt::Key_Plus);
        QTest::keyClick(f.window.get(), Qt::Key_Equal);
        QTest::keyClick(f.window.get(), Qt::Key_Minus);
        QCOMPARE(in.count(), 2);
        QCOMPARE(out.count(), 1);

        for (QWidget* field :
            {static_cast<QWidget*>(new QLineEdit), static_cast<QWidget*>(new QDoubleSpinBox)}) {
            f.window->statusBar()->addWidget(field);
            field->show();
            field->setFocus();
            QTRY_VERIFY(field->hasFocus());
            QTest::keyClick(field, '-');
            QTest::keyClick(field, '+');
        }
        QCOMPARE(f.window->statusBar()->findChild<QLineEdit*>()->text(), u"-+"_s);
        QCOMPARE(in.count(), 2);
        QCOMPARE(out.count(), 1);
    }

    void ampersandStaysVisibleInTheTab()
    {
        MainWindowFixture f;
        f.open();
        f.window->openChart(u"S&P"_s);
        const auto* bar = f.chartArea()->findChild<QTabBar*>();
        QCOMPARE(bar->tabText(0), u"S&&P,M15"_s);
        f.charts().constFirst()->setTimeframe(u"1h"_s);
        QCOMPARE(bar->tabText(0), u"S&&P,H1"_s);
    }

    void interruptedRestoringIsToldAndAShownWindowEndsIt()
    {
        const QString line = u"Terminal: The last start ended while the window layout was being restored; "
                             u"the default layout is used."_s;
        MainWindowFixture f;
        f.open();
        f.window->close();
        TerminalSettings& settings = TerminalSettings::instance();
        settings.setRestoringLayout(true);
        f.open();
        QCOMPARE(f.journalCount(line), 1);
        QVERIFY(!settings.restoringLayout());

        f.window.reset();
        f.window = std::make_unique<MainWindow>();
        QCOMPARE(f.journalCount(line), 0);
        QVERIFY(settings.restoringLayout());
        f.window->show();
        QTRY_VERIFY(!settings.restoringLayout());
    }

    void chartsComeBackInOrderWithTheMaximizedOne()
    {
        for (int maximized = 0; maximized < 3; ++maximized) {
            MainWindowFixture f;
            f.signInAndSettle();
            auto* area = f.chartArea();
            for (const auto& symbol : {u"EURUSD"_s, u"USDJPY"_s, u"S&P"_s})
                f.window->openChart(symbol);
            f.charts().at(1)->setTimeframe(u"1d"_s);
            for (QMdiSubWindow* subWindow : area->subWindowList())
                subWindow->showNormal();
            QMdiSubWindow* chosen = area->subWindowList().at(maximized);
            area->setActiveSubWindow(chosen);
            chosen->showMaximized();
            QVERIFY(f.window->close());

            f.open();
            area = f.chartArea();
            QStringList titles;
            for (const ChartWindow* chart : f.charts())
                titles.append(chart->title());
            QCOMPARE(titles, QStringList({u"EURUSD,M15"_s, u"USDJPY,D1"_s, u"S&P,M15"_s}));
            for (int i = 0; i < 3; ++i)
                QCOMPARE(area->subWindowList().at(i)->isMaximized(), i == maximized);
            QCOMPARE(area->activeChart(), f.charts().at(maximized));
        }
    }

    void chartGeometrySurvivesARestart()
    {
        MainWindowFixture f;
        f.open();
        for (const auto& symbol : {u"EURUSD"_s, u"USDJPY"_s})
            f.window->openChart(symbol);
        const QRect places[] = {{5, 26, 300, 200}, {40, 30, 250, 210}}; // Qt keeps 20 pixels free above
        for (int i = 0; i < 2; ++i) {
            QMdiSubWindow* subWindow = f.chartArea()->subWindowList().at(i);
            subWindow->showNormal();
            subWindow->setGeometry(places[i]);
        }
        f.window->close();
        f.open();
        for (int i = 0; i < 2; ++i) {
            const QMdiSubWindow* subWindow = f.chartArea()->subWindowList().at(i);
            QVERIFY(!subWindow->isMaximized());
            QCOMPARE(subWindow->geometry(), places[i]);
        }
    }

    void corruptChartLayoutOpensWhatIsReadable()
    {
        MainWindowFixture f;
        const QByteArray far = [] {
            QByteArray geometry;
            QDataStream stream(&geometry, QIODevice::WriteOnly);
            const QRect absurd(QPoint(2'000'000'000, 5), QPoint(2'100'000'000, 2'000'000'000));
            stream << quint32(0x1D9D0CB) << quint16(3) << quint16(0) << absurd << absurd << qint32(0)
                   << quint8(0) << quint8(0) << qint32(800) << absurd;
            return geometry;
        }();
        TerminalSettings::instance().setChartsLayout(uR"([1, {"symbol":"A"},
        {"symbol":"EURUSD","tf":"1h","geometry":"%1","indicators":{"chartType":"x","colors":5,"mas":{}}},
        {"symbol":"USDJPY","tf":"1m","geometry":"AAAA","maximized":3}])"_s.arg(
            QLatin1StringView(far.toBase64())));
        f.open();
        QCOMPARE(f.charts().size(), 2);
        const QMdiSubWindow* placed = f.chartArea()->subWindowList().constFirst();
        QVERIFY(QRect(QPoint(), f.window->size()).contains(placed->geometry().topLeft()));
        QVERIFY(placed->width() <= f.window->width());
        TerminalSettings::instance().setChartsLayout(u"{not json"_s);
        f.open();
        QCOMPARE(f.charts().size(), 0);
    }

    void aChartOfAnUnknownTimeframeComesBack()
    {
        MainWindowFixture f;
        TerminalSettings::instance().setChartsLayout(uR"([{"symbol":"EURUSD","tf":"2h"}])"_s);
        for (int start = 0; start < 2; ++start) {
            f.signIn();
            QCOMPARE(f.charts().size(), 1);
            const ChartWindow* chart = f.charts().constFirst();
            QCOMPARE(chart->timeframe(), u"2h"_s);
            QCOMPARE(chart->title(), u"EURUSD,2H"_s);
            QCOMPARE(chart->chart().timeframeMs(), 900'000);
            QTRY_COMPARE(f.server.count("GET", "/api/candles?symbol=EURUSD&timeframe=2h"), start + 1);
            f.settle();
            for (const char* name : {"M1", "M15", "H1"})
                QVERIFY(!f.action(name)->isChecked());
            QVERIFY(f.window->close());
        }
        QVERIFY(TerminalSettings::instance().chartsLayout().contains(u"\"tf\": \"2h\""_s));
    }

    void unlistedSymbolOpensAndIsReportedOnce()
    {
        MainWindowFixture f;
        TerminalSettings::instance().setChartsLayout(
            uR"([{"symbol":"GONE<b>","tf":"1h"},{"symbol":"GONE<b>","tf":"1d"}])"_s);
        f.signIn();
        const QString line = u"Chart: GONE<b>: the server does not list this symbol"_s;
        QTRY_COMPARE(f.journalCount(line), 1);
        f.settle();
        const int reads = f.server.count("GET", "/api/accounts");
        f.feed.send(records::hello({records::symbol("EURUSD")}));
        QTRY_COMPARE(f.server.count("GET", "/api/accounts"), reads + 1);
        QCOMPARE(f.journalCount(line), 1);
        QCOMPARE(f.charts().size(), 2);
    }

    void chartsWorkAgainWhenTheirSymbolReturns()
    {
        MainWindowFixture f;
        TerminalSettings::instance().setChartsLayout(
            uR"([{"symbol":"GONE","tf":"1h"},{"symbol":"GONE","tf":"1d"},{"symbol":"EURUSD","tf":"1h"}])"_s);
        const StubAnswer refusal = StubAnswer::json(R"({"error":"unknown symbol"})", 404);
        for (const char* frame : {"1h", "1d"})
            f.server.on("GET", QByteArray("/api/candles?symbol=GONE&timeframe=") + frame, refusal);
        f.signInAndSettle();
        QCOMPARE(f.journalCount(u"Chart: GONE: the server does not list this symbol"_s), 1);
        const int readsOfOthers = f.server.count("GET", "/api/candles?symbol=EURUSD&timeframe=1h");
        for (int i = 0; i < 2; ++i)
            QVERIFY(!showsHistory(*f.charts().at(i)));

        const QJsonObject bar = records::candle("2026-06-02T00:00:00.000Z", 1, 2, 1, 2, 5);
        for (const char* frame : {"1h", "1d"})
            f.server.on(
                "GET", QByteArray("/api/candles?symbol=GONE&timeframe=") + frame, StubAnswer::list({bar}));
        f.feed.send(records::hello({records::symbol("GONE").digits(2), records::symbol("EURUSD")}));
        for (int i = 0; i < 2; ++i) {
            QTRY_VERIFY(showsHistory(*f.charts().at(i)));
            QCOMPARE(f.charts().at(i)->digits(), 2);
        }
        f.settle();
        QCOMPARE(f.server.count("GET", "/api/candles?symbol=EURUSD&timeframe=1h"), readsOfOthers);
        // Gone once more, it is told once more.
        f.feed.send(records::hello({records::symbol("EURUSD")}));
        QTRY_COMPARE(f.journalCount(u"Chart: GONE: the server does not list this symbol"_s), 2);
    }

    void reopenedChartGetsItsDigitsFromTheHello()
    {
        MainWindowFixture f;
        TerminalSettings::instance().setChartsLayout(uR"([{"symbol":"USDJPY","tf":"1h"}])"_s);
        f.signIn();
        QCOMPARE(f.charts().constFirst()->digits(), 5);
        QTRY_COMPARE(f.charts().constFirst()->digits(), 3);
        QTRY_COMPARE(f.charts().constFirst()->accountId(), u"a1"_s);
    }

    void everythingOfAChartComesBackAfterARestart()
    {
        MainWindowFixture f;
        f.server.on("GET", "/api/candles",
            StubAnswer::list({records::candle("2026-06-02T00:00:00.000Z", 1, 2, 1, 2),
                records::candle("2026-06-03T00:00:00.000Z", 2, 3, 2, 3)}));
        f.server.on("GET", "/api/drawings",
            StubAnswer::json(
                R"([{"id":"d1","toolType":"hline","points":[{"time":"1780358400000","price":2}]}])"));
        f.signInAndSettle();
        f.window->openChart(u"EURUSD"_s);
        ChartWindow* chart = f.charts().constFirst();
        chart->setTimeframe(u"1d"_s);
        ChartWidget& canvas = chart->chart();
        QTRY_VERIFY(showsHistory(*chart));
        canvas.setMovingAverages(
            {{IndicatorKind::Ema, 7, QColor(u"#112233"_s)}, {IndicatorKind::Sma, 400, QColor(u"#fedcba"_s)}});
        canvas.setPane(IndicatorKind::Rsi, true, 21);
        chart->setChartType(1);
        chart->setChartShift(!canvas.chartShift());
        chart->setAutoScroll(false);
        ChartColors colors;
        for (const auto& [role, name] : {std::pair(&ChartColors::background, "#010203"),
                 std::pair(&ChartColors::grid, "#040506"), std::pair(&ChartColors::axis, "#070809"),
                 std::pair(&ChartColors::up, "#0a0b0c"), std::pair(&ChartColors::down, "#0d0e0f"),
                 std::pair(&ChartColors::line, "#101112"), std::pair(&ChartColors::volume, "#131415")})
            colors.*role = QColor(QLatin1StringView(name));
        canvas.setColors(colors);
        const QJsonObject before = chart->saveState();
        QVERIFY(f.window->close());

        f.signIn();
        chart = f.charts().constFirst();
        QTRY_VERIFY(showsHistory(*chart));
        QTRY_COMPARE(chart->chart().drawings().size(), 1);
        QCOMPARE(chart->title(), u"EURUSD,D1"_s);
        QCOMPARE(chart->saveState(), before);
        QCOMPARE(chart->chart().colors(), colors);
        QCOMPARE(chart->chart().movingAverages().size(), 2);
        QCOMPARE(chart->chart().pane(IndicatorKind::Rsi).period, 21);
        QVERIFY(!chart->chart().autoScroll());
    }

    void commandsActOnTheRestoredChart_data()
    {
        QTest::addColumn<int>("charts");
        QTest::addColumn<int>("maximized"); // -1: none
        QTest::newRow("one, maximized") << 1 << 0;
        QTest::newRow("one, as it was") << 1 << -1;
        QTest::newRow("three, the first maximized") << 3 << 0;
        QTest::newRow("three, none maximized") << 3 << -1;
    }
    void commandsActOnTheRestoredChart()
    {
        QFETCH(int, charts);
        QFETCH(int, maximized);
        MainWindowFixture f;
        QJsonArray layout;
        for (int i = 0; i < charts; ++i)
            layout.append(QJsonObject{{u"symbol"_s, u"EURUSD"_s}, {u"tf"_s, u"4h"_s},
                {u"maximized"_s, i == maximized}, {u"indicators"_s, QJsonObject{{u"chartType"_s, 2}}}});
        TerminalSettings::instance().setChartsLayout(QString::fromUtf8(QJsonDocument(layout).toJson()));
        f.signInAndSettle();
        QVERIFY(QTest::qWaitForWindowActive(f.window.get()));
        f.settle();
        QVERIFY(f.chartArea()->activeChart());
        QVERIFY(f.action("Zoom In")->isEnabled());
        QVERIFY(f.action("H4")->isEnabled() && f.action("H4")->isChecked());
        QVERIFY(f.action("Line")->isChecked());
    }

    void closingWritesTheLayoutToTheDiskAtOnce()
    {
        MainWindowFixture f;
        f.open();
        f.window->openChart(u"ONDISK"_s);
        QFile file(SettingsStore::userFilePath()); // Qt writes when it is asked for the name
        QVERIFY(f.window->close());
        QVERIFY(file.open(QIODevice::ReadOnly));
        QVERIFY(file.readAll().contains("ONDISK"));
    }

    void theKeyForExitQuitsAndSavesTheCharts()
    {
        MainWindowFixture f;
        f.open();
        f.window->openChart(u"EURUSD"_s);
        f.window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(f.window.get()));
        QVERIFY(TerminalSettings::instance().chartsLayout().isEmpty());
        constexpr int stillOpen = 7;
        QTimer::singleShot(10'000, f.window.get(), [] { QCoreApplication::exit(stillOpen); });
        QTimer::singleShot(
            0, f.window.get(), [&f] { QTest::keyClick(f.window.get(), Qt::Key_Q, Qt::ControlModifier); });
        QCOMPARE(QCoreApplication::exec(), 0);
        QVERIFY(TerminalSettings::instance().chartsLayout().contains(u"EURUSD"_s));
        QVERIFY(!TerminalSettings::instance().windowState().isEmpty());
    }
};

TAVORAN_TEST(tst_MainWindowCharts)
#include "tst_MainWindowCharts.moc"
