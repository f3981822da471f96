#include "CommandDriver.h"
#include "app/ui/Theme.h"
#include "chart/data/IndicatorTable.h"
#include "chart/window/ChartWidget.h"
#include "chart/window/ChartWindow.h"
#include "mainwindow/ChartCommands.h"
#include "mainwindow/SymbolSpecification.h"
#include "support/TestMain.h"

#include <QActionGroup>
#include <QDialog>
#include <QSpinBox>
#include <QTreeWidget>
#include <QWindow>

using namespace Qt::StringLiterals;

namespace {

QStringList checkedTexts(const QList<QAction*>& actions)
{
    QStringList texts;
    for (const QAction* action : actions) {
        if (action->isChecked())
            texts.append(action->text());
    }
    return texts;
}

constexpr qint64 minuteMs = 60'000;

/// Everything that the check marks tell of the active chart.
QStringList marks(const TerminalActions& a)
{
    QList<QAction*> actions = a.timeframes->actions();
    actions.append(a.chartTypes->actions());
    actions.append({a.autoScroll, a.chartShift, a.cursor, a.crosshair});
    actions.append(a.drawingTools());
    return checkedTexts(actions);
}

} // namespace

class tst_ChartCommands final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void timeframesAreChosenInMenuAndToolbar()
    {
        CommandDriver d;
        const ChartWindow* chart = d.openChart(u"EURUSD"_s);
        QCOMPARE(checkedTexts(d.actions().timeframes->actions()), QStringList{u"M15"_s});
        d.choose({u"&Charts"_s, u"Timeframe"_s, u"H1"_s});
        QCOMPARE(chart->timeframe(), u"1h"_s);
        for (QAction* timeframe : d.actions().timeframes->actions()) {
            d.press("toolbarTimeframes", timeframe);
            QCOMPARE(chart->timeframe(), timeframe->data().toString());
            QCOMPARE(checkedTexts(d.actions().timeframes->actions()), QStringList{timeframe->text()});
        }
        // The chosen one again: nothing is read anew.
        d.f.settle();
        const int reads = d.f.server.count("GET", "/api/candles");
        d.press("toolbarTimeframes", d.actions().timeframes->actions().constLast());
        QCOMPARE(checkedTexts(d.actions().timeframes->actions()), QStringList{u"MN"_s});
        QCOMPARE(d.f.server.count("GET", "/api/candles"), reads);
    }

    void chartTypesAreChosenInMenuAndToolbar()
    {
        const CommandDriver d;
        const ChartWindow* chart = d.openChart(u"EURUSD"_s);
        const TerminalActions& a = d.actions();
        QCOMPARE(checkedTexts(a.chartTypes->actions()), QStringList{u"Candlesticks"_s});
        d.choose({u"&Charts"_s, u"Chart Type"_s, u"Line"_s});
        QCOMPARE(chart->chart().chartType(), 2);
        d.press("toolbarTimeframes", a.bars);
        QCOMPARE(chart->chart().chartType(), 1);
        QCOMPARE(checkedTexts(a.chartTypes->actions()), QStringList{u"Bars"_s});
        d.press("toolbarTimeframes", a.candlesticks);
        QCOMPARE(chart->chart().chartType(), 0);
    }

    void scrollingAndShiftAreSwitched()
    {
        const CommandDriver d;
        ChartWindow* chart = d.openChart(u"EURUSD"_s);
        const TerminalActions& a = d.actions();
        for (int i = 0; i < 2; ++i) {
            const bool shifted = chart->chart().chartShift();
            d.press("toolbarTimeframes", a.chartShift);
            QCOMPARE(chart->chart().chartShift(), !shifted);
            QCOMPARE(a.chartShift->isChecked(), !shifted);
            const bool scrolling = chart->chart().autoScroll();
            d.press("toolbarTimeframes", a.autoScroll);
            QCOMPARE(chart->chart().autoScroll(), !scrolling);
            QCOMPARE(a.autoScroll->isChecked(), !scrolling);
        }
        // Changed elsewhere, as by panning or the chart's own menu.
        chart->setAutoScroll(false);
        QVERIFY(!a.autoScroll->isChecked());
        chart->setAutoScroll(true);
        QVERIFY(a.autoScroll->isChecked());
        chart->setChartShift(!chart->chart().chartShift());
        QCOMPARE(a.chartShift->isChecked(), chart->chart().chartShift());
    }

    void toolsRulerAndCursorExcludeEachOther()
    {
        const CommandDriver d;
        const ChartWindow* chart = d.openChart(u"EURUSD"_s);
        const TerminalActions& a = d.actions();
        QList<QAction*> pointers{a.cursor, a.crosshair};
        pointers.append(a.drawingTools());
        const auto pressed = [&] { return checkedTexts(pointers); };
        QCOMPARE(pressed(), QStringList{u"Cursor"_s});
        for (QAction* tool : a.drawingTools()) {
            d.press("toolbarStudies", tool);
            QCOMPARE(chart->chart().tool(), tool->data().toString());
            QVERIFY(!chart->chart().measureMode());
            QCOMPARE(pressed(), QStringList{tool->text()});
            d.press("toolbarStudies", a.crosshair);
            QCOMPARE(chart->chart().tool(), QString());
            QVERIFY(chart->chart().measureMode());
            QCOMPARE(pressed(), QStringList{u"Crosshair"_s});
        }
        d.choose({u"&Insert"_s, u"Objects"_s, u"Fibonacci Retracement"_s});
        QCOMPARE(chart->chart().tool(), u"fibonacci"_s);
        QVERIFY(!chart->chart().measureMode());
        d.press("toolbarStudies", a.cursor);
        QCOMPARE(chart->chart().tool(), QString());
        QVERIFY(!chart->chart().measureMode());
        QCOMPARE(pressed(), QStringList{u"Cursor"_s});
        d.press("toolbarStudies", a.crosshair);
        d.press("toolbarStudies", a.cursor);
        QVERIFY(!chart->chart().measureMode());
        QCOMPARE(pressed(), QStringList{u"Cursor"_s});
    }

    void escapeGivesTheCursorBack()
    {
        const CommandDriver d;
        const ChartWindow* chart = d.openChart(u"EURUSD"_s);
        d.activate();
        // Whatever had the keys before: choosing a tool gives them to the chart.
        d.f.list("navigatorTree").setFocus();
        d.press("toolbarStudies", d.actions().trendLine);
        QVERIFY(d.actions().trendLine->isChecked());
        QTest::keyClick(d.f.window->windowHandle(), Qt::Key_Escape);
        QCOMPARE(chart->chart().tool(), QString());
        QVERIFY(d.actions().cursor->isChecked());
        QVERIFY(!d.actions().trendLine->isChecked());
    }

    void checkMarksFollowTheActiveChart()
    {
        const CommandDriver d;
        ChartWindow* first = d.openChart(u"EURUSD"_s);
        first->setTimeframe(u"1d"_s);
        first->setChartType(2);
        first->setTool(u"hline"_s);
        first->setChartShift(false);
        const QStringList ofFirst = marks(d.actions());
        QVERIFY(ofFirst.contains(u"D1"_s) && ofFirst.contains(u"Line"_s)
            && ofFirst.contains(u"Horizontal Line"_s));

        ChartWindow* second = d.openChart(u"USDJPY"_s);
        second->setMeasureMode(true);
        second->setChartShift(true);
        const QStringList ofSecond = marks(d.actions());
        QCOMPARE(ofSecond,
            QStringList({u"M15"_s, u"Candlesticks"_s, u"Auto Scroll"_s, u"Chart Shift"_s, u"Crosshair"_s}));

        // A chart that is not the active one changes nothing.
        first->setChartType(1);
        first->setTimeframe(u"1w"_s);
        QCOMPARE(marks(d.actions()), ofSecond);

        ChartArea* area = d.f.chartArea();
        area->setActiveSubWindow(area->subWindowList().at(0));
        QTRY_VERIFY(marks(d.actions()).contains(u"W1"_s));
        QVERIFY(marks(d.actions()).contains(u"Bars"_s));
        area->setActiveSubWindow(area->subWindowList().at(1));
        QTRY_COMPARE(marks(d.actions()), ofSecond);
        second->setTimeframe(u"4h"_s);
        QVERIFY(marks(d.actions()).contains(u"H4"_s));
    }

    void withoutAChartNothingIsClaimed()
    {
        const CommandDriver d;
        QCOMPARE(marks(d.actions()), QStringList{u"Cursor"_s});
        ChartWindow* chart = d.openChart(u"EURUSD"_s);
        chart->setTool(u"vline"_s);
        d.f.chartArea()->closeAllSubWindows();
        QTRY_VERIFY(d.f.charts().isEmpty());
        QTRY_COMPARE(marks(d.actions()), QStringList{u"Cursor"_s});
    }

    void themeIsChosenInTheMenu()
    {
        setTheme(false);
        applyTheme(*qApp);
        const CommandDriver d;
        const TerminalActions& a = d.actions();
        const auto isInked = [&d, &a](const QColor& ink) {
            const QImage button = d.bar("toolbarStandard").widgetForAction(a.newChart)->grab().toImage();
            for (int y = 0; y < button.height(); ++y) {
                for (int x = 0; x < button.width(); ++x) {
                    if (button.pixelColor(x, y) == ink)
                        return true;
                }
            }
            return false;
        };
        const QColor lightInk = themeMutedColor();
        QVERIFY(isInked(lightInk));
        QCOMPARE(checkedTexts({a.lightTheme, a.darkTheme}), QStringList{u"Light"_s});
        d.choose({u"&View"_s, u"Theme"_s, u"Dark"_s});
        QVERIFY(isDarkTheme());
        QCOMPARE(checkedTexts({a.lightTheme, a.darkTheme}), QStringList{u"Dark"_s});
        const QColor darkInk = themeMutedColor();
        QTRY_VERIFY(isInked(darkInk) && !isInked(lightInk));
        d.choose({u"&View"_s, u"Theme"_s, u"Light"_s});
        QVERIFY(!isDarkTheme());
        QCOMPARE(checkedTexts({a.lightTheme, a.darkTheme}), QStringList{u"Light"_s});
        QTRY_VERIFY(isInked(lightInk) && !isInked(darkInk));
    }

    void averagesAskForTheirPeriod()
    {
        const CommandDriver d;
        ChartWindow* chart = d.openChart(u"EURUSD"_s);
        int known = 0;
        for (const auto& [entry, kind] : {std::pair(u"Moving Average (SMA)"_s, IndicatorKind::Sma),
                 std::pair(u"Moving Average (EMA)"_s, IndicatorKind::Ema)}) {
            d.choose({u"&Insert"_s, u"Indicators"_s, entry});
            QDialog* dialog = nullptr;
            QTRY_VERIFY((dialog = chart->findChild<QDialog*>()));
            auto* period = dialog->findChild<QSpinBox*>();
            period->selectAll();
            QTest::keyClicks(period, u"5"_s + QString::number(known));
            QTest::keyClick(dialog, Qt::Key_Return);
            QTRY_COMPARE(chart->chart().movingAverages().size(), known + 1);
            QCOMPARE(chart->chart().movingAverages().at(known).kind, kind);
            QCOMPARE(chart->chart().movingAverages().at(known).period, 50 + known);
            QTRY_VERIFY(!chart->findChild<QDialog*>());
            ++known;
        }
        QVERIFY(!chart->chart().pane(IndicatorKind::Rsi).shown);
        d.choose({u"&Insert"_s, u"Indicators"_s, u"Relative Strength Index"_s});
        QVERIFY(chart->chart().pane(IndicatorKind::Rsi).shown);
        d.choose({u"&Insert"_s, u"Indicators"_s, u"Relative Strength Index"_s});
        QVERIFY(chart->chart().pane(IndicatorKind::Rsi).shown); // adds, and never takes away
    }

    void aCancelledPeriodAddsNothing()
    {
        const CommandDriver d;
        ChartWindow* chart = d.openChart(u"EURUSD"_s);
        d.actions().indicators.first()->trigger();
        QDialog* dialog = nullptr;
        QTRY_VERIFY((dialog = chart->findChild<QDialog*>()));
        QTest::keyClick(dialog, Qt::Key_Escape);
        QTRY_VERIFY(!chart->findChild<QDialog*>());
        QVERIFY(chart->chart().movingAverages().isEmpty());
    }

    void theNavigatorAddsIndicators()
    {
        const CommandDriver d;
        ChartWindow* chart = d.openChart(u"EURUSD"_s);
        QTreeWidget& tree = d.f.list("navigatorTree");
        const auto doubleClick = [&tree](const QString& text) {
            QTreeWidgetItem* item = tree.findItems(text, Qt::MatchExactly | Qt::MatchRecursive).constFirst();
            tree.scrollToItem(item);
            const QPoint spot = tree.visualItemRect(item).center();
            QTest::mouseClick(tree.viewport(), Qt::LeftButton, {}, spot);
            QTest::mouseDClick(tree.viewport(), Qt::LeftButton, {}, spot);
        };
        doubleClick(u"Relative Strength Index"_s);
        QVERIFY(chart->chart().pane(IndicatorKind::Rsi).shown);
        doubleClick(u"Exponential MA"_s);
        QDialog* dialog = nullptr;
        QTRY_VERIFY((dialog = chart->findChild<QDialog*>()));
        QTest::keyClick(dialog, Qt::Key_Return);
        QTRY_COMPARE(chart->chart().movingAverages().size(), 1);
        QCOMPARE(chart->chart().movingAverages().constFirst().kind, IndicatorKind::Ema);
    }

    void everyIndicatorOfTheTableIsOfferedShownAndSaved()
    {
        const CommandDriver d;
        ChartWindow* chart = d.openChart(u"EURUSD"_s);
        QTRY_VERIFY(d.f.journalCount(u"Chart: EURUSD,M15: 0 candles loaded"_s) > 0);
        std::vector<Candle> candles;
        for (int i = 0; i < 100; ++i)
            candles.push_back({i * minuteMs, 1.1, 1.3, 1.0, i % 3 == 0 ? 1.1 : 1.2, 1});
        chart->chart().setCandles(candles);
        chart->setOneClickTrading(false);
        const QTreeWidgetItem* folder = d.f.list("navigatorTree").topLevelItem(0)->child(1);
        int known = 0;
        for (const IndicatorRow& row : indicatorTable()) {
            QCOMPARE(folder->child(known)->text(0), indicatorText(row.name));
            QCOMPARE(folder->child(known++)->data(0, Qt::UserRole), QVariant(u"indicator:"_s + row.key));

            const QImage before = chart->chart().grab().toImage();
            const qsizetype averages = chart->chart().movingAverages().size();
            d.choose({u"&Insert"_s, u"Indicators"_s, indicatorText(row.command)});
            if (row.pane) {
                QVERIFY(chart->chart().pane(row.kind).shown);
                QCOMPARE(chart->chart().pane(row.kind).period, row.usualPeriod);
            } else {
                QDialog* dialog = nullptr;
                QTRY_VERIFY((dialog = chart->findChild<QDialog*>()));
                QTest::keyClick(dialog, Qt::Key_Return);
                QTRY_COMPARE(chart->chart().movingAverages().size(), averages + 1);
                QCOMPARE(chart->chart().movingAverages().last().kind, row.kind);
                QCOMPARE(chart->chart().movingAverages().last().period, row.usualPeriod);
                QTRY_VERIFY(!chart->findChild<QDialog*>());
            }
            QVERIFY2(chart->chart().grab().toImage() != before, row.key.data());
        }
        QCOMPARE(folder->childCount(), known);

        ChartWindow* other = d.openChart(u"GBPUSD"_s);
        QVERIFY(other && other != chart);
        other->restoreState(chart->saveState());
        QCOMPARE(other->chart().movingAverages(), chart->chart().movingAverages());
        QCOMPARE(other->chart().panes(), chart->chart().panes());
    }

    void theNavigatorSaysThatAChartIsNeeded()
    {
        const CommandDriver d;
        d.f.window->findChild<ChartCommands*>()->addIndicator(u"sma"_s);
        QCOMPARE(d.f.journalCount(u"Chart: Open a chart first, then add the indicator."_s), 1);
        const ChartWindow* chart = d.openChart(u"EURUSD"_s);
        d.f.window->findChild<ChartCommands*>()->addIndicator(u"no such thing"_s);
        QVERIFY(!chart->findChild<QDialog*>());
        QVERIFY(!chart->chart().pane(IndicatorKind::Rsi).shown);
    }

    void refreshReadsTheHistoryAgain()
    {
        CommandDriver d;
        QVERIFY(d.openChart(u"EURUSD"_s));
        d.f.settle();
        const int reads = d.f.server.count("GET", "/api/candles");
        d.choose({u"&Charts"_s, u"Refresh"_s});
        QTRY_COMPARE(d.f.server.count("GET", "/api/candles"), reads + 1);
    }

    void dataWindowAndPropertiesOpenByKeyAndMenu()
    {
        const CommandDriver d;
        ChartWindow* chart = d.openChart(u"EURUSD"_s);
        const auto titled = [chart](const QString& title) {
            for (QWidget* window : chart->findChildren<QWidget*>()) {
                if (window->isWindow() && window->isVisible() && window->windowTitle() == title)
                    return window;
            }
            return static_cast<QWidget*>(nullptr);
        };
        d.activate();
        QTest::keyClick(d.f.window.get(), Qt::Key_D, Qt::ControlModifier);
        QVERIFY(titled(u"Data Window"_s));
        titled(u"Data Window"_s)->close();
        d.choose({u"&Charts"_s, u"Data Window"_s});
        QVERIFY(titled(u"Data Window"_s));
        titled(u"Data Window"_s)->close();

        d.activate();
        QTest::keyClick(d.f.window.get(), Qt::Key_F8);
        QDialog* properties = nullptr;
        QTRY_VERIFY((properties = chart->findChild<QDialog*>()));
        properties->reject();
        QTRY_VERIFY(!chart->findChild<QDialog*>());
        d.choose({u"&Charts"_s, u"Properties..."_s});
        QTRY_VERIFY(chart->findChild<QDialog*>());
    }

    void specificationIsShownForTheChartThatAsks()
    {
        const CommandDriver d;
        ChartWindow* first = d.openChart(u"EURUSD"_s);
        QVERIFY(d.openChart(u"USDJPY"_s));
        d.choose({u"&Charts"_s, u"Symbol Specification..."_s});
        const auto* shown = d.f.window->findChild<SymbolSpecification*>();
        QVERIFY(shown);
        QCOMPARE(shown->symbol(), u"USDJPY"_s);
        first->requestSpecification(); // from its own menu
        QCOMPARE(shown->symbol(), u"EURUSD"_s);
    }

    void aRestoredChartThatIsClosedTakesItsCommandsAlong()
    {
        CommandDriver d;
        QVERIFY(d.openChart(u"EURUSD"_s));
        QVERIFY(d.f.window->close());
        d.f.open();
        d.activate();
        QTRY_COMPARE(d.f.charts().size(), 1);
        QTRY_VERIFY(d.actions().zoomIn->isEnabled());
        QTest::keyClick(d.f.window->windowHandle(), Qt::Key_W, Qt::AltModifier);
        QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Up);
        QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Return);
        QTRY_VERIFY(d.f.charts().isEmpty());
        QTRY_VERIFY(!d.actions().zoomIn->isEnabled());
        QCOMPARE(marks(d.actions()), QStringList{u"Cursor"_s});
    }

    void aReplyAfterTheLastChartHasGoneChangesNothing()
    {
        const CommandDriver d;
        QVERIFY(d.openChart(u"EURUSD"_s));
        d.f.chartArea()->closeAllSubWindows();
        QTRY_VERIFY(d.f.charts().isEmpty());
        // Triggered from somewhere that did not hear of it yet.
        const TerminalActions& a = d.actions();
        for (QAction* action :
            {a.zoomIn, a.refresh, a.properties, a.specification, a.crosshair, a.closeChart}) {
            action->setEnabled(true);
            action->trigger();
        }
        d.f.window->onTimeframeAction(a.timeframes->actions().constFirst());
        QVERIFY(d.f.charts().isEmpty());
        QCOMPARE(marks(a), QStringList{u"Cursor"_s});
    }
};

TAVORAN_TEST(tst_ChartCommands)
#include "tst_ChartCommands.moc"
