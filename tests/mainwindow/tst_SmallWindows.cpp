#include "CommandDriver.h"
#include "app/ui/Theme.h"
#include "mainwindow/AboutBox.h"
#include "mainwindow/DepthOfMarket.h"
#include "mainwindow/SymbolSpecification.h"
#include "support/TestMain.h"

#include <QLabel>
#include <QTreeWidget>

using namespace Qt::StringLiterals;

namespace {

QStringList column(const QTreeWidget& rows, int column)
{
    QStringList texts;
    for (int row = 0; row < rows.topLevelItemCount(); ++row)
        texts.append(rows.topLevelItem(row)->text(column));
    return texts;
}

template <typename Window> Window* shown(const CommandDriver& d)
{
    Window* found = nullptr;
    for (Window* window : d.f.window->findChildren<Window*>()) {
        if (window->isVisible())
            found = window;
    }
    return found;
}

QTreeWidget& rowsOf(const QWidget* window)
{
    return *window->findChild<QTreeWidget*>();
}

QString textOf(const QWidget* window, const QString& name)
{
    return window->findChild<QLabel*>(name)->text();
}

} // namespace

class tst_SmallWindows final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void depthShowsSixteenPricesAroundBidAndAsk()
    {
        DepthOfMarket depth(u"EURUSD"_s, 5);
        QCOMPARE(depth.windowTitle(), u"Depth of Market — EURUSD"_s);
        const QTreeWidget& rows = rowsOf(&depth);
        for (const int number : {1, 2})
            QCOMPARE(rows.headerItem()->textAlignment(number), int(Qt::AlignRight | Qt::AlignVCenter));
        QCOMPARE(rows.topLevelItemCount(), 16);
        QCOMPARE(column(rows, 1), QStringList(16, QString()));
        QCOMPARE(textOf(&depth, u"depthSpread"_s), u"Waiting for prices..."_s);
        depth.setQuote({1.10000, 1.10012});
        QCOMPARE(column(rows, 1),
            QStringList({u"1.10019"_s, u"1.10018"_s, u"1.10017"_s, u"1.10016"_s, u"1.10015"_s, u"1.10014"_s,
                u"1.10013"_s, u"1.10012"_s, u"1.10000"_s, u"1.09999"_s, u"1.09998"_s, u"1.09997"_s,
                u"1.09996"_s, u"1.09995"_s, u"1.09994"_s, u"1.09993"_s}));
        QCOMPARE(column(rows, 2).mid(6, 4), QStringList({u"1"_s, u"0"_s, u"0"_s, u"1"_s}));
        QCOMPARE(textOf(&depth, u"depthSpread"_s), u"Spread: 12 points"_s);
        for (int row = 0; row < 16; ++row) {
            const QTreeWidgetItem* item = rows.topLevelItem(row);
            QCOMPARE(item->text(0), row < 8 ? u"Ask"_s : u"Bid"_s);
            for (int cell = 0; cell < 3; ++cell)
                QCOMPARE(item->foreground(cell).color().name(), row < 8 ? u"#ff4a4a"_s : u"#3ba7ff"_s);
        }
    }

    void depthFollowsLivePricesAndDigits()
    {
        CommandDriver d;
        QVERIFY(d.openChart(u"USDJPY"_s));
        d.choose({u"&Tools"_s, u"Depth of Market"_s});
        const auto* depth = shown<DepthOfMarket>(d);
        QVERIFY(depth);
        QCOMPARE(rowsOf(depth).topLevelItem(7)->text(1), u"150.600"_s);
        QCOMPARE(rowsOf(depth).topLevelItem(8)->text(1), u"150.500"_s);
        d.f.feed.send(records::priceUpdate({{"USDJPY", "151.001", 151.004}, {"EURUSD", 3, 4}}));
        QTRY_COMPARE(rowsOf(depth).topLevelItem(7)->text(1), u"151.004"_s);
        QCOMPARE(rowsOf(depth).topLevelItem(15)->text(1), u"150.994"_s);
        d.f.feed.send(records::hello({records::symbol("USDJPY").digits(2)}));
        QTRY_COMPARE(rowsOf(depth).topLevelItem(7)->text(1), u"151.00"_s);
        QCOMPARE(rowsOf(depth).topLevelItem(15)->text(1), u"150.93"_s);
    }

    void depthSurvivesAbsurdPrices_data()
    {
        QTest::addColumn<double>("bid");
        QTest::addColumn<double>("ask");
        QTest::addColumn<int>("digits");
        QTest::addColumn<int>("filled");
        QTest::newRow("none") << 0.0 << 0.0 << 5 << 0;
        QTest::newRow("negative") << -1.0 << -1.0 << 5 << 0;
        QTest::newRow("bid only") << 1.0 << 0.0 << 5 << 8;
        QTest::newRow("ask only") << 0.0 << 1.0 << 5 << 8;
        QTest::newRow("bids end above nothing") << 0.00003 << 1.0 << 5 << 8 + 3;
        QTest::newRow("huge") << 1e15 << 1e15 << 8 << 16;
        QTest::newRow("absurd digits") << 100.0 << 101.0 << 1000000 << 16;
        QTest::newRow("negative digits") << 100.0 << 101.0 << -7 << 16;
    }
    void depthSurvivesAbsurdPrices()
    {
        QFETCH(const double, bid);
        QFETCH(const double, ask);
        QFETCH(const int, digits);
        QFETCH(const int, filled);
        DepthOfMarket depth(u"X"_s, digits);
        depth.setQuote({bid, ask});
        QCOMPARE(16 - int(column(rowsOf(&depth), 1).count(QString())), filled);
    }

    void depthSaysThatThereAreNoSizes()
    {
        const DepthOfMarket depth(u"EURUSD"_s, 5);
        QVERIFY(textOf(&depth, u"depthNote"_s).contains(u"no sizes"_s));
    }

    void depthTakesTheActiveChartsSymbolWhenItOpens()
    {
        const CommandDriver d;
        QVERIFY(d.openChart(u"EURUSD"_s));
        QVERIFY(d.openChart(u"USDJPY"_s));
        d.activate();
        QTest::keyClick(d.f.window.get(), Qt::Key_B, Qt::AltModifier);
        QVERIFY(shown<DepthOfMarket>(d));
        QCOMPARE(shown<DepthOfMarket>(d)->windowTitle(), u"Depth of Market — USDJPY"_s);
        ChartArea* area = d.f.chartArea();
        area->setActiveSubWindow(area->subWindowList().at(0));
        QCOMPARE(shown<DepthOfMarket>(d)->symbol(), u"USDJPY"_s); // it stays with its symbol
        d.activate();
        QTest::keyClick(d.f.window.get(), Qt::Key_B, Qt::AltModifier);
        QTRY_VERIFY(!shown<DepthOfMarket>(d));
        d.activate();
        QTest::keyClick(d.f.window.get(), Qt::Key_B, Qt::AltModifier);
        QTRY_VERIFY(shown<DepthOfMarket>(d));
        QCOMPARE(shown<DepthOfMarket>(d)->symbol(), u"EURUSD"_s);
    }

    void depthWithoutAChartTakesTheMarketWatchsSymbol()
    {
        const CommandDriver d;
        d.f.window->toggleDepthOfMarket();
        QCOMPARE(shown<DepthOfMarket>(d)->symbol(), u"EURUSD"_s);
        MainWindowFixture empty;
        empty.open();
        empty.window->toggleDepthOfMarket();
        QVERIFY(!empty.window->findChild<DepthOfMarket*>());
    }

    void specificationShowsWhatMarketWatchShows()
    {
        CommandDriver d;
        d.f.feed.send(
            R"({"type":"hello","symbols":[{"name":"GOLD","digits":2,"description":"Spot <b>gold</b>",
        "contractSize":"100","commission":3.5,"swapLong":-2.25,"swapShort":"1"}],"prices":{}})");
        QTRY_COMPARE(d.f.list("marketWatchSymbols").topLevelItemCount(), 1);
        d.f.list("marketWatchSymbols").setCurrentItem(d.f.list("marketWatchSymbols").topLevelItem(0));
        d.f.window->showSpecification(u"GOLD"_s);
        const auto* window = shown<SymbolSpecification>(d);
        QVERIFY(window);
        QCOMPARE(window->windowTitle(), u"Specification: GOLD"_s);
        const QTreeWidget& details = d.f.list("marketWatchDetails");
        QCOMPARE(details.topLevelItemCount(), 8);
        QCOMPARE(column(rowsOf(window), 0).mid(0, 8), column(details, 0));
        QCOMPARE(column(rowsOf(window), 1).mid(0, 8), column(details, 1));
        QCOMPARE(column(rowsOf(window), 1).mid(0, 5),
            QStringList({u"GOLD"_s, u"Spot <b>gold</b>"_s, u"2"_s, u"100"_s, u"3.5"_s}));
        QCOMPARE(column(rowsOf(window), 0).mid(8), QStringList({u"Bid"_s, u"Ask"_s, u"Spread (points)"_s}));
        QVERIFY(!window->findChild<QLabel*>(u"specificationUnlisted"_s)->isVisible());
    }

    void specificationFollowsPricesAndTheSymbolList()
    {
        CommandDriver d;
        d.f.window->showSpecification(u"EURUSD"_s);
        const auto* window = shown<SymbolSpecification>(d);
        QCOMPARE(column(rowsOf(window), 1).mid(8), QStringList({u"1.10000"_s, u"1.20000"_s, u"10000"_s}));
        d.f.feed.send(records::priceUpdate({{"EURUSD", 1.3, 1.30007}}));
        QTRY_COMPARE(column(rowsOf(window), 1).mid(8), QStringList({u"1.30000"_s, u"1.30007"_s, u"7"_s}));
        d.f.feed.send(records::hello({records::symbol("EURUSD").digits(4).described("New")}));
        QTRY_COMPARE(rowsOf(window).topLevelItem(1)->text(1), u"New"_s);
        QTRY_COMPARE(column(rowsOf(window), 1).mid(8), QStringList({u"1.3000"_s, u"1.3001"_s, u"1"_s}));
    }

    void specificationTurnsToAnotherSymbol()
    {
        const CommandDriver d;
        d.f.window->showSpecification(u"EURUSD"_s);
        d.activate();
        d.f.window->showSpecification(u"USDJPY"_s);
        QCOMPARE(d.f.window->findChildren<SymbolSpecification*>().size(), 1);
        const auto* window = shown<SymbolSpecification>(d);
        QTRY_VERIFY(window->isActiveWindow());
        QCOMPARE(window->windowTitle(), u"Specification: USDJPY"_s);
        QCOMPARE(rowsOf(window).topLevelItem(1)->text(1), u"Yen"_s);
        QCOMPARE(rowsOf(window).topLevelItem(8)->text(1), u"150.500"_s);
    }

    void specificationOfAnUnlistedSymbolSaysSo()
    {
        CommandDriver d;
        d.f.window->showSpecification(u"GONE"_s);
        const auto* window = shown<SymbolSpecification>(d);
        QVERIFY(window->findChild<QLabel*>(u"specificationUnlisted"_s)->isVisible());
        QCOMPARE(column(rowsOf(window), 1), QStringList(3, QString()));
        d.f.feed.send(records::hello({records::symbol("GONE").digits(1)}, records::prices({{"GONE", 1, 2}})));
        QTRY_VERIFY(!window->findChild<QLabel*>(u"specificationUnlisted"_s)->isVisible());
        QTRY_COMPARE(column(rowsOf(window), 1).mid(8), QStringList({u"1.0"_s, u"2.0"_s, u"10"_s}));
        d.f.window->showSpecification({});
        QCOMPARE(window->symbol(), u"GONE"_s);
    }

    void theSpecificationOfTheChartsSymbolOpensFromItsMenu()
    {
        const CommandDriver d;
        QVERIFY(d.openChart(u"USDJPY"_s));
        d.choose({u"&Charts"_s, u"Symbol Specification..."_s});
        QVERIFY(shown<SymbolSpecification>(d));
        QCOMPARE(shown<SymbolSpecification>(d)->symbol(), u"USDJPY"_s);
    }

    void aboutTellsNameAndVersion()
    {
        QCoreApplication::setApplicationVersion(u"9.8.7"_s);
        const CommandDriver d;
        d.choose({u"&Help"_s, u"About Tavoran Terminal"_s});
        auto* about = shown<AboutBox>(d);
        QVERIFY(about);
        QCOMPARE(about->windowTitle(), u"About Tavoran Terminal"_s);
        QVERIFY(textOf(about, u"aboutVersion"_s).startsWith(u"Tavoran Terminal, version 9.8.7"_s));
        d.choose({u"&Help"_s, u"About Tavoran Terminal"_s});
        QCOMPARE(d.f.window->findChildren<AboutBox*>().size(), 1);
    }

    void serverTextStaysText()
    {
        const QString hostile = u"<b>%1&X</b>\nY"_s;
        DepthOfMarket depth(hostile, 5);
        QCOMPARE(depth.windowTitle(), u"Depth of Market — <b>%1&X</b> Y"_s);
        SymbolSpecification specification;
        specification.setSymbol(
            hostile, {{u"name"_s, hostile}, {u"description"_s, u"<img src='file:///x'>\n%2"_s}});
        QCOMPARE(specification.windowTitle(), u"Specification: <b>%1&X</b> Y"_s);
        QCOMPARE(rowsOf(&specification).topLevelItem(1)->text(1), u"<img src='file:///x'> %2"_s);
        for (const QLabel* label : depth.findChildren<QLabel*>())
            QCOMPARE(label->textFormat(), Qt::PlainText);
        for (const QLabel* label : specification.findChildren<QLabel*>())
            QCOMPARE(label->textFormat(), Qt::PlainText);
    }

    void escapeClosesAndNothingIsLeftBehind()
    {
        CommandDriver d;
        QVERIFY(d.openChart(u"EURUSD"_s));
        const auto openAll = [&d] {
            d.f.window->toggleDepthOfMarket();
            d.f.window->showSpecification(u"EURUSD"_s);
            d.actions().about->trigger();
        };
        openAll();
        const auto closeAll = [&d] {
            for (QWidget* window : {static_cast<QWidget*>(shown<DepthOfMarket>(d)),
                     static_cast<QWidget*>(shown<SymbolSpecification>(d)),
                     static_cast<QWidget*>(shown<AboutBox>(d))}) {
                QVERIFY(window);
                QTest::keyClick(window, Qt::Key_Escape);
            }
            QTRY_VERIFY(!d.f.window->findChild<DepthOfMarket*>()
                && !d.f.window->findChild<SymbolSpecification*>() && !d.f.window->findChild<AboutBox*>());
        };
        closeAll();
        const qsizetype objects = d.f.window->findChildren<QObject*>().size();
        for (int round = 0; round < 5; ++round) {
            openAll();
            closeAll();
        }
        QCOMPARE(d.f.window->findChildren<QObject*>().size(), objects);
        // Prices go on after all have gone.
        d.f.feed.send(records::priceUpdate({{"EURUSD", 1.7, 1.8}}));
        QTRY_COMPARE(d.f.list("marketWatchSymbols").topLevelItem(0)->text(1), u"1.70000"_s);
    }

    void aThemeSwitchRestylesOpenWindows()
    {
        setTheme(false);
        applyTheme(*qApp);
        const CommandDriver d;
        d.f.window->toggleDepthOfMarket();
        d.f.window->showSpecification(u"EURUSD"_s);
        const auto background = [](const QWidget* window) {
            return QColor(const_cast<QWidget*>(window)->grab().toImage().pixel(2, 2)).name();
        };
        const auto base = [](const QWidget* window) {
            const QTreeWidget& rows = rowsOf(window);
            return QColor(rows.viewport()->grab().toImage().pixel(1, rows.viewport()->height() - 2)).name();
        };
        for (const QWidget* window : {static_cast<QWidget*>(shown<DepthOfMarket>(d)),
                 static_cast<QWidget*>(shown<SymbolSpecification>(d))}) {
            QCOMPARE(background(window), u"#f0f0f0"_s);
            QCOMPARE(base(window), u"#ffffff"_s);
        }
        d.choose({u"&View"_s, u"Theme"_s, u"Dark"_s});
        for (const QWidget* window : {static_cast<QWidget*>(shown<DepthOfMarket>(d)),
                 static_cast<QWidget*>(shown<SymbolSpecification>(d))}) {
            QTRY_COMPARE(background(window), u"#2b2b2b"_s);
            QTRY_COMPARE(base(window), u"#1c1c1c"_s);
        }
        setTheme(false);
        applyTheme(*qApp);
    }

    void keysOfTheMainWindowWorkInSmallWindows()
    {
        const CommandDriver d;
        ChartWindow* chart = d.openChart(u"EURUSD"_s);
        d.f.window->toggleDepthOfMarket();
        auto* depth = shown<DepthOfMarket>(d);
        depth->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(depth));
        const double width = chart->chart().barWidth();
        QTest::keyClick(depth, Qt::Key_Plus);
        QVERIFY(chart->chart().barWidth() > width);
        QTest::keyClick(depth, Qt::Key_B, Qt::AltModifier);
        QTRY_VERIFY(!shown<DepthOfMarket>(d));
    }
};

TAVORAN_TEST(tst_SmallWindows)
#include "tst_SmallWindows.moc"
