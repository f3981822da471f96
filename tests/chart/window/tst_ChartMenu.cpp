#include "chart/ChartFixtures.h"
#include "chart/ChartWindowFixture.h"
#include "chart/data/IndicatorTable.h"
#include "chart/window/AverageDialog.h"
#include "chart/window/ChartMenu.h"
#include "chart/window/ChartPropertiesDialog.h"
#include "chart/window/DataWindow.h"
#include "chart/window/OneClickPanel.h"
#include "support/TestMain.h"

#include <QSpinBox>

using namespace Qt::StringLiterals;
using fixtures::ServedChart;

class tst_ChartMenu final : public QObject {
    Q_OBJECT

    /// Opens the menu as a person does, with the right button beside the panel.
    static ChartMenu* openMenu(const ServedChart& served)
    {
        fixtures::pressAt(served.chart(), QPoint(300, 150), Qt::RightButton);
        fixtures::releaseAt(served.chart(), QPoint(300, 150), Qt::RightButton);
        return qobject_cast<ChartMenu*>(QApplication::activePopupWidget());
    }

    /// Walks to an entry by keyboard and takes it.
    static void choose(QMenu* menu, const QStringList& path)
    {
        QVERIFY(menu);
        for (const QString& text : path) {
            QAction* wanted = nullptr;
            for (QAction* action : menu->actions()) {
                if (action->text() == text)
                    wanted = action;
            }
            QVERIFY2(wanted, qPrintable(text));
            menu->setActiveAction(wanted);
            QTest::keyClick(menu, Qt::Key_Return);
            if (wanted->menu())
                menu = wanted->menu();
        }
    }

    static QStringList entries(const QMenu& menu)
    {
        QStringList texts;
        for (const QAction* action : menu.actions())
            texts << (action->isSeparator() ? u"-"_s : action->text());
        return texts;
    }

    static QStringList checked(const QMenu& menu)
    {
        QStringList texts;
        for (const QAction* action : menu.actions()) {
            if (action->isChecked())
                texts << action->text();
        }
        return texts;
    }

    static QMenu* subMenu(const QMenu& menu, const QString& title)
    {
        for (QAction* action : menu.actions()) {
            if (action->menu() && action->text() == title)
                return action->menu();
        }
        return nullptr;
    }

private Q_SLOTS:
    void listsItsEntriesInOrder()
    {
        const ServedChart served;
        served.chart().setMovingAverages({{IndicatorKind::Sma, 5, Qt::red}});
        const ChartMenu menu(*served.window);
        QCOMPARE(entries(menu),
            QStringList({u"One Click Trading"_s, u"Timeframes"_s, u"Indicators"_s, u"Objects"_s,
                u"Chart Type"_s, u"-"_s, u"Auto Scroll"_s, u"Chart Shift"_s, u"-"_s, u"Zoom In\t+"_s,
                u"Zoom Out\t-"_s, u"Refresh"_s, u"Data Window\tCtrl+D"_s, u"-"_s, u"Properties...\tF8"_s,
                u"Specification..."_s}));
        QCOMPARE(entries(*subMenu(menu, u"Timeframes"_s)),
            QStringList({u"M1"_s, u"M5"_s, u"M15"_s, u"H1"_s, u"H4"_s, u"D1"_s, u"W1"_s, u"MN"_s}));
        QStringList indicators;
        for (const IndicatorRow& row : indicatorTable())
            indicators.append(row.pane ? u"%1 (%2)"_s.arg(row.label, QString::number(row.usualPeriod))
                                       : indicatorText(row.command) + u"..."_s);
        indicators.append({u"-"_s, u"Remove All Moving Averages"_s});
        QCOMPARE(entries(*subMenu(menu, u"Indicators"_s)), indicators);
        QCOMPARE(entries(*subMenu(menu, u"Objects"_s)),
            QStringList({u"Horizontal Line"_s, u"Vertical Line"_s, u"Trend Line"_s, u"Rectangle"_s,
                u"Fibonacci Retracement"_s, u"-"_s, u"Delete Selected"_s}));
        QCOMPARE(
            entries(*subMenu(menu, u"Chart Type"_s)), QStringList({u"Candlesticks"_s, u"Bars"_s, u"Line"_s}));
    }

    void offersToRemoveAveragesOnlyWhenThereAreSome()
    {
        const ServedChart served;
        const ChartMenu menu(*served.window);
        QVERIFY(!entries(*subMenu(menu, u"Indicators"_s)).contains(u"Remove All Moving Averages"_s));
    }

    void checkMarksShowTheChartAsItIs()
    {
        const ServedChart served;
        {
            const ChartMenu menu(*served.window);
            QCOMPARE(checked(menu), QStringList({u"One Click Trading"_s, u"Auto Scroll"_s}));
            QCOMPARE(checked(*subMenu(menu, u"Timeframes"_s)), QStringList{u"M15"_s});
            QCOMPARE(checked(*subMenu(menu, u"Indicators"_s)), QStringList());
            QCOMPARE(checked(*subMenu(menu, u"Chart Type"_s)), QStringList{u"Candlesticks"_s});
        }
        served.window->setOneClickTrading(false);
        served.window->setChartShift(true);
        served.window->setTimeframe(u"1mn"_s);
        served.window->setAutoScroll(false);
        served.window->setChartType(2);
        served.window->showPane(IndicatorKind::Rsi, true);
        const ChartMenu menu(*served.window);
        QCOMPARE(checked(menu), QStringList{u"Chart Shift"_s});
        QCOMPARE(checked(*subMenu(menu, u"Timeframes"_s)), QStringList{u"MN"_s});
        QCOMPARE(checked(*subMenu(menu, u"Indicators"_s)), QStringList{u"RSI (14)"_s});
        QCOMPARE(checked(*subMenu(menu, u"Chart Type"_s)), QStringList{u"Line"_s});
    }

    void noKeyBecomesASecondShortcut()
    {
        const ServedChart served;
        const ChartMenu menu(*served.window);
        for (const QAction* action : menu.actions())
            QVERIFY(action->shortcuts().isEmpty());
    }

    void aRightClickOpensIt_data()
    {
        QTest::addColumn<QPoint>("place");
        QTest::newRow("plot") << QPoint(300, 150);
        QTest::newRow("price axis") << QPoint(490, 150);
        QTest::newRow("time axis") << QPoint(100, 355);
        QTest::newRow("one-click panel") << QPoint(7, 21);
        QTest::newRow("sell button") << QPoint(20, 35);
    }
    void aRightClickOpensIt()
    {
        QFETCH(QPoint, place);
        const ServedChart served;
        served.show();
        fixtures::pressAt(served.chart(), place, Qt::RightButton);
        QVERIFY(qobject_cast<ChartMenu*>(QApplication::activePopupWidget()));
        QApplication::activePopupWidget()->close();
        fixtures::releaseAt(served.chart(), place, Qt::RightButton);
        QVERIFY(served.chart().autoScroll());
    }

    void aClosedMenuIsGone()
    {
        const ServedChart served;
        served.show();
        const QPointer<ChartMenu> menu = openMenu(served);
        QVERIFY(menu);
        QTest::keyClick(menu, Qt::Key_Escape);
        QTRY_VERIFY(!menu);
    }

    void anOpenMenuGoesWithItsChart()
    {
        ServedChart served;
        served.show();
        const QPointer<ChartMenu> menu = openMenu(served);
        QVERIFY(menu);
        served.window.reset();
        QVERIFY(!menu);
        QVERIFY(!QApplication::activePopupWidget());
    }

    void oneClickTradingShowsAndHidesThePanel()
    {
        const ServedChart served;
        served.show();
        const auto* panel = served.chart().findChild<OneClickPanel*>();
        choose(openMenu(served), {u"One Click Trading"_s});
        QVERIFY(!panel->isVisible());
        choose(openMenu(served), {u"One Click Trading"_s});
        QVERIFY(panel->isVisible());
    }

    void aTimeframeIsChosen()
    {
        const ServedChart served;
        served.show();
        QSignalSpy timeframe(served.window.get(), &ChartWindow::timeframeChanged);
        choose(openMenu(served), {u"Timeframes"_s, u"H4"_s});
        QCOMPARE(timeframe, QList<QVariantList>{{u"4h"_s}});
        choose(openMenu(served), {u"Timeframes"_s, u"H4"_s});
        QCOMPARE(timeframe.size(), 1);
        QCOMPARE(served.window->timeframe(), u"4h"_s);
    }

    void anAverageIsAddedInTheNextColour_data()
    {
        QTest::addColumn<QString>("entry");
        QTest::addColumn<IndicatorKind>("kind");
        QTest::newRow("simple") << u"Moving Average (SMA)..."_s << IndicatorKind::Sma;
        QTest::newRow("exponential") << u"Moving Average (EMA)..."_s << IndicatorKind::Ema;
    }
    void anAverageIsAddedInTheNextColour()
    {
        QFETCH(QString, entry);
        QFETCH(IndicatorKind, kind);
        const ServedChart served;
        served.show();
        QList<MovingAverageSpec> averages{{IndicatorKind::Sma, 9, Qt::red}};
        served.chart().setMovingAverages(averages);
        choose(openMenu(served), {u"Indicators"_s, entry});
        auto* dialog = served.window->findChild<AverageDialog*>();
        QVERIFY(dialog && dialog->isVisible());
        QTest::keyClicks(dialog->findChild<QSpinBox*>(), u"21"_s);
        QTest::keyClick(dialog, Qt::Key_Return);
        averages.append({kind, 21, QColor(0x4f, 0xc3, 0xf7)});
        QCOMPARE(served.chart().movingAverages(), averages);
        QTRY_VERIFY(!served.window->findChild<AverageDialog*>());
    }

    void theSixthAverageHasTheFirstColour()
    {
        const ServedChart served;
        served.show();
        served.chart().setMovingAverages(QList<MovingAverageSpec>(5, {IndicatorKind::Sma, 9, Qt::red}));
        choose(openMenu(served), {u"Indicators"_s, u"Moving Average (SMA)..."_s});
        QTest::keyClick(served.window->findChild<AverageDialog*>(), Qt::Key_Return);
        QCOMPARE(served.chart().movingAverages().size(), 6);
        QCOMPARE(served.chart().movingAverages().last(),
            (MovingAverageSpec{IndicatorKind::Sma, 20, QColor(0xff, 0xd5, 0x4f)}));
    }

    void aCancelledAverageChangesNothing()
    {
        const ServedChart served;
        served.show();
        choose(openMenu(served), {u"Indicators"_s, u"Moving Average (SMA)..."_s});
        auto* dialog = served.window->findChild<AverageDialog*>();
        QVERIFY(dialog);
        QTest::keyClick(dialog, Qt::Key_Escape);
        QVERIFY(served.chart().movingAverages().isEmpty());
        QTRY_VERIFY(!served.window->findChild<AverageDialog*>());
    }

    void allAveragesAreRemoved()
    {
        const ServedChart served;
        served.show();
        served.chart().setMovingAverages(
            {{IndicatorKind::Sma, 9, Qt::red}, {IndicatorKind::Sma, 5, Qt::red}});
        choose(openMenu(served), {u"Indicators"_s, u"Remove All Moving Averages"_s});
        QVERIFY(served.chart().movingAverages().isEmpty());
    }

    void rsiIsSwitchedOverFourteenBars()
    {
        const ServedChart served;
        served.show();
        served.chart().setPane(IndicatorKind::Rsi, false, 21);
        choose(openMenu(served), {u"Indicators"_s, u"RSI (14)"_s});
        QVERIFY(served.chart().pane(IndicatorKind::Rsi).shown);
        QCOMPARE(served.chart().pane(IndicatorKind::Rsi).period, 14);
        choose(openMenu(served), {u"Indicators"_s, u"RSI (14)"_s});
        QVERIFY(!served.chart().pane(IndicatorKind::Rsi).shown);
    }

    void aToolIsChosen_data()
    {
        QTest::addColumn<QString>("entry");
        QTest::addColumn<QString>("key");
        QTest::newRow("hline") << u"Horizontal Line"_s << u"hline"_s;
        QTest::newRow("vline") << u"Vertical Line"_s << u"vline"_s;
        QTest::newRow("trendline") << u"Trend Line"_s << u"trendline"_s;
        QTest::newRow("rectangle") << u"Rectangle"_s << u"rectangle"_s;
        QTest::newRow("fibonacci") << u"Fibonacci Retracement"_s << u"fibonacci"_s;
    }
    void aToolIsChosen()
    {
        QFETCH(QString, entry);
        QFETCH(QString, key);
        const ServedChart served;
        served.show();
        choose(openMenu(served), {u"Objects"_s, entry});
        QCOMPARE(served.chart().tool(), key);
    }

    void theSelectedObjectIsDeleted()
    {
        const ServedChart served;
        served.show();
        const Drawing kept{u"a"_s, u"vline"_s, {{fixtures::midnight, 1.1}}, Qt::red, false};
        const Drawing selected{u"b"_s, u"hline"_s, {{fixtures::midnight, 1.1}}, Qt::red, true};
        served.chart().setDrawings({kept, selected});
        QSignalSpy deleted(&served.chart(), &ChartWidget::drawingDeleted);
        choose(openMenu(served), {u"Objects"_s, u"Delete Selected"_s});
        QCOMPARE(served.chart().drawings(), QList{kept});
        QCOMPARE(deleted, QList<QVariantList>{{u"b"_s}});
        choose(openMenu(served), {u"Objects"_s, u"Delete Selected"_s});
        QCOMPARE(served.chart().drawings(), QList{kept});
    }

    void aChartTypeIsChosen()
    {
        const ServedChart served;
        served.show();
        choose(openMenu(served), {u"Chart Type"_s, u"Line"_s});
        QCOMPARE(served.chart().chartType(), 2);
        choose(openMenu(served), {u"Chart Type"_s, u"Bars"_s});
        QCOMPARE(served.chart().chartType(), 1);
        choose(openMenu(served), {u"Chart Type"_s, u"Candlesticks"_s});
        QCOMPARE(served.chart().chartType(), 0);
    }

    void scrollingAndShiftAreSwitched()
    {
        const ServedChart served;
        served.show();
        choose(openMenu(served), {u"Auto Scroll"_s});
        QVERIFY(!served.chart().autoScroll());
        choose(openMenu(served), {u"Auto Scroll"_s});
        QVERIFY(served.chart().autoScroll());
        choose(openMenu(served), {u"Chart Shift"_s});
        QVERIFY(served.chart().chartShift());
        choose(openMenu(served), {u"Chart Shift"_s});
        QVERIFY(!served.chart().chartShift());
    }

    void zooming()
    {
        const ServedChart served;
        served.show();
        choose(openMenu(served), {u"Zoom In\t+"_s});
        QCOMPARE(served.chart().barWidth(), 7.0 * 1.2);
        choose(openMenu(served), {u"Zoom Out\t-"_s});
        QCOMPARE(served.chart().barWidth(), 7.0);
    }

    void refreshReadsTheHistoryAgain()
    {
        ServedChart served;
        served.show();
        choose(openMenu(served), {u"Refresh"_s});
        QTRY_COMPARE(served.server.count("GET", "/api/candles"), 1);
        served.exchange();
        QCOMPARE(served.server.count("GET", "/api/drawings"), 0);
    }

    void theDataWindowIsShown()
    {
        const ServedChart served;
        served.show();
        choose(openMenu(served), {u"Data Window\tCtrl+D"_s});
        QVERIFY(served.window->findChild<DataWindow*>()->isVisible());
    }

    void thePropertiesAreShown()
    {
        const ServedChart served;
        served.show();
        choose(openMenu(served), {u"Properties...\tF8"_s});
        QVERIFY(served.window->findChild<ChartPropertiesDialog*>()->isVisible());
    }

    void theSpecificationIsAskedFor()
    {
        const ServedChart served;
        served.show();
        QSignalSpy specification(served.window.get(), &ChartWindow::specificationRequested);
        choose(openMenu(served), {u"Specification..."_s});
        QCOMPARE(specification, QList<QVariantList>{{u"EURUSD"_s}});
    }
};

TAVORAN_TEST(tst_ChartMenu)
#include "tst_ChartMenu.moc"
