#include "CommandDriver.h"
#include "chart/layers/ChartFrame.h"
#include "support/TestMain.h"

#include <QStatusBar>

using namespace Qt::StringLiterals;

namespace {

const QString idle = u"For Help, press F1"_s;

using Deed = void (*)(ChartWidget&);

/// A terminal with a chart of two candles in front.
struct Terminal final {
    CommandDriver d;
    ChartWindow* window = nullptr;

    Terminal()
    {
        d.f.server.on("GET", "/api/candles",
            StubAnswer::list({records::candle(u"2026-01-01T00:00:00.000Z"_s, 1.3, 1.5, 1.2, 1.35),
                records::candle(u"2026-01-01T00:15:00.000Z"_s, 1.35, 1.5, 1.2, 1.3)}));
        window = open(u"EURUSD"_s);
    }
    [[nodiscard]] ChartWindow* open(const QString& symbol) const
    {
        ChartWindow* opened = d.openChart(symbol);
        [opened] { QTRY_COMPARE(opened->chart().candles().size(), std::size_t(2)); }();
        return opened;
    }
    [[nodiscard]] QString hint() const { return d.f.window->statusBar()->currentMessage(); }
    /// Enter takes a level that lies at the keyboard's crosshair.
    void takeLevel() const
    {
        ChartWidget& chart = window->chart();
        d.f.window->activateWindow();
        chart.setFocus();
        [&chart] { QTRY_VERIFY(chart.hasFocus()); }();
        QTest::keyClick(&chart, Qt::Key_Left);
        const double price = chart.crosshair() ? chart.crosshair()->price : 0.0;
        chart.setTradeLevels({{u"1"_s, u"SL"_s, price, u"sl"_s, Qt::red, Qt::DashLine, true}});
        QTest::keyClick(&chart, Qt::Key_Return);
        QCOMPARE(chart.frame().draggedLevel, qsizetype(0));
    }
    void click(int x) const
    {
        ChartWidget& chart = window->chart();
        QTest::mouseClick(&chart, Qt::LeftButton, {}, {x, chart.height() / 3});
    }
};

} // namespace

class tst_ToolHints final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void each_tool_says_what_the_next_click_does_data()
    {
        QTest::addColumn<QString>("tool");
        QTest::addColumn<QString>("first");
        QTest::addColumn<QString>("second");
        QTest::newRow("horizontal line")
            << u"Horizontal Line"_s << u"Horizontal Line: click or press Enter at its price"_s << QString();
        QTest::newRow("vertical line")
            << u"Vertical Line"_s << u"Vertical Line: click or press Enter at its time"_s << QString();
        QTest::newRow("trend line") << u"Trend Line"_s
                                    << u"Trend Line: click or press Enter at its first point"_s
                                    << u"Trend Line: click or press Enter at its second point"_s;
        QTest::newRow("rectangle") << u"Rectangle"_s
                                   << u"Rectangle: click or press Enter at its first corner"_s
                                   << u"Rectangle: click or press Enter at the opposite corner"_s;
        QTest::newRow("fibonacci") << u"Fibonacci"_s
                                   << u"Fibonacci: click or press Enter at the point of level 0.0"_s
                                   << u"Fibonacci: click or press Enter at the point of level 100.0"_s;
    }
    void each_tool_says_what_the_next_click_does()
    {
        QFETCH(const QString, tool);
        QFETCH(const QString, first);
        QFETCH(const QString, second);
        const Terminal t;
        QCOMPARE(t.hint(), idle);
        QAction* action = nullptr;
        for (QAction* offered : t.d.actions().drawingTools()) {
            if (offered->text().startsWith(tool))
                action = offered;
        }
        QVERIFY(action);
        action->trigger();
        QCOMPARE(t.hint(), first);
        t.click(200);
        if (!second.isEmpty()) {
            QCOMPARE(t.hint(), second);
            t.click(300);
        }
        QCOMPARE(t.hint(), idle);

        // Chosen anew, a tool begins anew; Escape ends it.
        action->trigger();
        t.click(200);
        action->trigger();
        QCOMPARE(t.hint(), first);
        QTest::keyClick(&t.window->chart(), Qt::Key_Escape);
        QCOMPARE(t.hint(), idle);
    }

    void the_ruler_says_how_it_measures()
    {
        const Terminal t;
        t.d.actions().crosshair->trigger();
        QVERIFY(t.hint().startsWith(u"Crosshair: "_s));
        const QString hint = t.hint();
        ChartWidget& chart = t.window->chart();
        QTest::mousePress(&chart, Qt::LeftButton, {}, {100, 100});
        QTest::mouseMove(&chart, {200, 120});
        QTest::mouseRelease(&chart, Qt::LeftButton, {}, {200, 120});
        QCOMPARE(t.hint(), hint);
        t.d.actions().cursor->trigger();
        QCOMPARE(t.hint(), idle);
    }

    void a_level_held_by_keys_says_what_they_do_until_it_is_let_go_data()
    {
        QTest::addColumn<Deed>("deed");
        QTest::newRow("dropped") << Deed([](ChartWidget& chart) { QTest::keyClick(&chart, Qt::Key_Return); });
        QTest::newRow("put back") << Deed(
            [](ChartWidget& chart) { QTest::keyClick(&chart, Qt::Key_Escape); });
        QTest::newRow("left by Tab") << Deed(
            [](ChartWidget& chart) { QTest::keyClick(&chart, Qt::Key_Tab); });
        QTest::newRow("taken by the mouse") << Deed([](ChartWidget& chart) {
            QTest::mouseClick(&chart, Qt::LeftButton, {}, {100, 100});
        });
        QTest::newRow("gone") << Deed([](ChartWidget& chart) { chart.setTradeLevels({}); });
        QTest::newRow("other candles") << Deed([](ChartWidget& chart) { chart.setCandles({}); });
    }
    void a_level_held_by_keys_says_what_they_do_until_it_is_let_go()
    {
        QFETCH(const Deed, deed);
        const Terminal t;
        ChartWidget& chart = t.window->chart();
        QCOMPARE(t.hint(), idle);
        t.takeLevel();
        const QString hint = u"Level: arrow keys move it, Enter sends it, Escape puts it back"_s;
        QCOMPARE(t.hint(), hint);
        QTest::keyClick(&chart, Qt::Key_Up);
        QCOMPARE(t.hint(), hint);
        deed(chart);
        QVERIFY(t.hint() != hint);
        QVERIFY(!chart.hasFocus() || t.hint() == idle); // where Tab has led to has words of its own
    }

    void the_mouse_needs_no_words_for_a_level_that_it_drags()
    {
        const Terminal t;
        ChartWidget& chart = t.window->chart();
        chart.setTradeLevels({{u"1"_s, u"SL"_s, 1.3, u"sl"_s, Qt::red, Qt::DashLine, true}});
        QTest::mousePress(&chart, Qt::LeftButton, {}, {300, chart.view().pricePixel(1.3)});
        QCOMPARE(chart.frame().draggedLevel, qsizetype(0));
        QCOMPARE(t.hint(), idle);
    }

    void the_buttons_that_trade_say_so_when_tab_comes_to_them()
    {
        const Terminal t;
        t.window->setOneClickTrading(true);
        t.d.f.window->activateWindow();
        t.window->chart().setFocus();
        QTRY_VERIFY(t.window->chart().hasFocus());
        const auto tab = [] { QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab); };
        tab();
        QCOMPARE(t.hint(), u"Space sells at once, at the market price"_s);
        tab();
        QCOMPARE(t.hint(), idle);
        tab();
        QCOMPARE(t.hint(), u"Space buys at once, at the market price"_s);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
        QVERIFY(t.window->chart().hasFocus());
        QCOMPARE(t.hint(), idle);
    }

    void the_hint_belongs_to_the_chart_in_front()
    {
        Terminal t;
        t.d.actions().trendLine->trigger();
        const QString hint = t.hint();
        QVERIFY(hint != idle);
        const ChartWindow* other = t.open(u"USDJPY"_s);
        QCOMPARE(t.hint(), idle);
        other->window()->activateWindow();
        t.d.f.chartArea()->activatePreviousSubWindow();
        QTRY_COMPARE(t.d.f.chartArea()->activeChart(), t.window);
        QCOMPARE(t.hint(), hint);
        t.d.f.chartArea()->closeAllSubWindows();
        QTRY_VERIFY(t.d.f.charts().isEmpty());
        QTRY_COMPARE(t.hint(), idle);
    }

    void the_tip_of_a_menu_entry_gives_the_hint_back()
    {
        const Terminal t;
        t.d.actions().trendLine->trigger();
        const QString hint = t.hint();
        t.d.f.window->statusBar()->showMessage(u"something else"_s);
        t.d.f.window->statusBar()->clearMessage();
        QCOMPARE(t.hint(), hint);
    }

    void a_hint_fits_beside_the_rest_of_the_status_bar()
    {
        const Terminal t;
        t.d.f.window->resize(1280, 800);
        const QStatusBar& bar = *t.d.f.window->statusBar();
        const int room = t.d.f.selector().x();
        const auto verifyRoom = [&] {
            QVERIFY(t.hint() != idle);
            const int width = bar.fontMetrics().horizontalAdvance(t.hint());
            QVERIFY2(width < room, qPrintable(u"%1: %2 of %3"_s.arg(t.hint()).arg(width).arg(room)));
        };
        for (QAction* tool : t.d.actions().drawingTools()) {
            tool->trigger();
            verifyRoom();
        }
        t.d.actions().crosshair->trigger();
        verifyRoom();
        t.d.actions().cursor->trigger();
        t.takeLevel();
        verifyRoom();
    }
};

TAVORAN_TEST(tst_ToolHints)
#include "tst_ToolHints.moc"
