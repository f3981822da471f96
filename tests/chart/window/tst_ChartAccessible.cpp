#include "chart/ChartWidgetFixture.h"
#include "chart/layers/ChartFrame.h"
#include "support/ReaderEars.h"
#include "support/TestMain.h"
#include "support/Timers.h"

#include <QPushButton>

using namespace Qt::StringLiterals;

namespace {

const QColor red(0xff, 0, 0);

QAccessibleInterface& accessible(ChartWidget& chart)
{
    return *QAccessible::queryAccessibleInterface(&chart);
}

QString reading(ChartWidget& chart)
{
    return accessible(chart).text(QAccessible::Description);
}

TradeLevel stopLoss(const QString& id, double price)
{
    return {id, u"SL"_s, price, u"sl"_s, red, Qt::DashLine, true, u"buy 0.10 #"_s + id};
}

Drawing trend(const QString& id, int from, double low, int to, double high)
{
    return {id, u"trendline"_s, {{fixtures::barTime(from), low}, {fixtures::barTime(to), high}}};
}

QList<QAccessibleInterface*> childrenOf(ChartWidget& chart)
{
    QList<QAccessibleInterface*> all;
    for (int i = 0; i < accessible(chart).childCount(); ++i)
        all.append(accessible(chart).child(i));
    return all;
}

QStringList names(ChartWidget& chart)
{
    QStringList names;
    for (const QAccessibleInterface* child : childrenOf(chart))
        names.append(child->text(QAccessible::Name));
    return names;
}

/// Lets the second after the last news pass.
void breathe(ChartWidget& chart)
{
    for (int i = 0; i < 3; ++i)
        timeOut(chart.reader().news().pause());
}

} // namespace

class TestChartAccessible final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void a_chart_is_a_chart_with_symbol_and_timeframe_for_its_name()
    {
        ChartWidget chart;
        chart.setAccessibleName(u"Chart EURUSD,M15"_s);
        QCOMPARE(accessible(chart).role(), QAccessible::Chart);
        QCOMPARE(accessible(chart).text(QAccessible::Name), u"Chart EURUSD,M15"_s);
        QCOMPARE(accessible(chart).object(), &chart);
    }

    void value_and_description_read_the_last_bar_the_quote_and_the_indicators()
    {
        ChartWidget chart;
        chart.setDigits(4);
        chart.setMovingAverages({{IndicatorKind::Sma, 2, red}});
        chart.setPane(IndicatorKind::Rsi, true, 14);
        fixtures::showChart(chart, 60);
        const QString bar
            = u"Last bar 2026.06.02 14:45: open 1.1031, high 1.1051, low 1.1012, close 1.1027, volume 193, "
              "SMA(2) 1.1029, RSI(14) 50.93."_s;
        QCOMPARE(reading(chart), bar);
        QCOMPARE(accessible(chart).text(QAccessible::Value), bar);
        chart.onTick(1.1, 1.2, fixtures::barTime(60));
        QVERIFY2(reading(chart).endsWith(u". Bid 1.1000. Ask 1.2000."_s), qPrintable(reading(chart)));
        QVERIFY2(reading(chart).startsWith(u"Last bar 2026.06.02 15:00: "_s), qPrintable(reading(chart)));
    }

    void the_crosshair_moves_what_is_read()
    {
        ChartWidget chart;
        fixtures::showChart(chart, 60);
        const QString price = QString::number(chart.view().priceAt(100), 'f', 5);
        fixtures::hover(chart, {331, 100});
        QVERIFY2(reading(chart).startsWith(u"Crosshair at %1, 2026.06.02 14:45: open "_s.arg(price)),
            qPrintable(reading(chart)));
        fixtures::hover(chart, {324, 100});
        QVERIFY2(reading(chart).startsWith(u"Crosshair at %1, 2026.06.02 14:30: open "_s.arg(price)),
            qPrintable(reading(chart)));
        fixtures::leave(chart);
        QVERIFY2(reading(chart).startsWith(u"Last bar "_s), qPrintable(reading(chart)));
    }

    void the_keys_move_what_is_read_as_well()
    {
        ReaderEars ears;
        ChartWidget chart;
        fixtures::showChart(chart, 60);
        breathe(chart);
        ears.forget();
        QTest::keyClick(&chart, Qt::Key_Left);
        QVERIFY(chart.crosshair());
        const QString before = reading(chart);
        QVERIFY2(before.startsWith(u"Crosshair at "_s), qPrintable(before));
        QTest::keyClick(&chart, Qt::Key_Left);
        QVERIFY(reading(chart) != before);
        breathe(chart);
        QCOMPARE(ears.count(QAccessible::DescriptionChanged), 1);
    }

    void levels_and_drawings_are_children_beside_the_widgets()
    {
        ChartWidget chart;
        const QPushButton button(u"SELL"_s, &chart);
        fixtures::showChart(chart, 60);
        chart.setDigits(2);
        chart.setTradeLevels({stopLoss(u"a"_s, 1.1)});
        chart.setDrawings({trend(u"1"_s, 40, 1.1, 50, 1.105), {u"2"_s, u"circle"_s, {}}});
        QCOMPARE(names(chart),
            QStringList({u"SELL"_s, u"Stop loss of buy 0.10 #a at 1.10"_s,
                u"Trend line from 1.10 at 2026.06.02 10:00 to 1.10 at 2026.06.02 12:30"_s}));
        for (int i = 0; i < 3; ++i) {
            QAccessibleInterface* child = accessible(chart).child(i);
            QVERIFY(child->isValid());
            QCOMPARE(accessible(chart).indexOfChild(child), i);
            QCOMPARE(child->parent(), &accessible(chart));
            QCOMPARE(accessible(chart).child(i), child);
        }
        QVERIFY(!accessible(chart).child(3));
        QCOMPARE(childrenOf(chart).at(1)->role(), QAccessible::Graphic);
    }

    void a_mark_lies_where_it_is_painted()
    {
        ChartWidget chart;
        fixtures::showChart(chart, 60);
        chart.setTradeLevels({stopLoss(u"a"_s, 1.1), stopLoss(u"b"_s, 7.0)});
        chart.setDrawings({trend(u"1"_s, 40, 1.1, 50, 1.105), trend(u"2"_s, 0, 1.1, 1, 1.105)});
        const ChartView& view = chart.view();
        const QList<QAccessibleInterface*> marks = childrenOf(chart);
        QCOMPARE(marks.size(), 4);
        const QRect level = marks[0]->rect();
        QCOMPARE(level.center().y(), chart.mapToGlobal(QPoint(0, view.pricePixel(1.1))).y());
        QCOMPARE(level.width(), view.plot().width());
        QVERIFY(!marks[0]->state().offscreen);
        QVERIFY(marks[1]->rect().isEmpty());
        QVERIFY(marks[1]->state().offscreen);
        const QPoint from(view.barPixel(40), view.pricePixel(1.1));
        const QPoint to(view.barPixel(50), view.pricePixel(1.105));
        QCOMPARE(marks[2]->rect(),
            QRect(chart.mapToGlobal(QPoint(from.x() - 1, to.y() - 1)),
                chart.mapToGlobal(QPoint(to.x() + 1, from.y() + 1))));
        QVERIFY(marks[3]->rect().isEmpty());
        QCOMPARE(accessible(chart).childAt(level.center().x(), level.center().y()), marks[0]);
        chart.hide();
        QVERIFY(marks[0]->state().invisible);
    }

    void a_mark_stays_the_same_while_lists_are_read_again()
    {
        ChartWidget chart;
        fixtures::showChart(chart, 60);
        chart.setTradeLevels({stopLoss(u"a"_s, 1.1), stopLoss(u"b"_s, 1.101)});
        chart.setDrawings({trend(u"1"_s, 40, 1.1, 50, 1.105)});
        const QList<QAccessibleInterface*> before = childrenOf(chart);
        chart.setTradeLevels({stopLoss(u"c"_s, 1.2), stopLoss(u"b"_s, 1.102), stopLoss(u"a"_s, 1.1)});
        chart.setDrawings({trend(u"0"_s, 30, 1.1, 50, 1.105), trend(u"1"_s, 41, 1.1, 50, 1.105)});
        const QList<QAccessibleInterface*> after = childrenOf(chart);
        QCOMPARE(after.size(), 5);
        QCOMPARE(after[2], before[0]);
        QCOMPARE(after[1], before[1]);
        QCOMPARE(after[4], before[2]);
        QCOMPARE(after[1]->text(QAccessible::Name), u"Stop loss of buy 0.10 #b at 1.10200"_s);
    }

    void a_mark_ends_with_what_it_stands_for()
    {
        QAccessible::Id level = 0;
        QAccessible::Id drawing = 0;
        QAccessible::Id last = 0;
        {
            ChartWidget chart;
            fixtures::showChart(chart, 60);
            chart.setTradeLevels({stopLoss(u"a"_s, 1.1)});
            chart.setDrawings({trend(u"1"_s, 40, 1.1, 50, 1.105), trend(u"2"_s, 40, 1.1, 50, 1.105)});
            const QList<QAccessibleInterface*> marks = childrenOf(chart);
            level = QAccessible::uniqueId(marks[0]);
            drawing = QAccessible::uniqueId(marks[1]);
            last = QAccessible::uniqueId(marks[2]);
            chart.setTradeLevels({});
            QVERIFY(!QAccessible::accessibleInterface(level));
            chart.setDrawings({trend(u"2"_s, 40, 1.1, 50, 1.105)});
            QVERIFY(!QAccessible::accessibleInterface(drawing));
            QVERIFY(QAccessible::accessibleInterface(last));
        }
        QVERIFY(!QAccessible::accessibleInterface(last));
    }

    void the_marks_of_a_full_account_are_found_one_after_the_other()
    {
        ChartWidget chart;
        fixtures::showChart(chart, 60);
        QList<TradeLevel> levels;
        for (int i = 0; i < 1500; ++i)
            levels.append(stopLoss(QString::number(i % 1400), 1.0 + i * 0.001));
        chart.setTradeLevels(levels);
        const QList<QAccessibleInterface*> marks = childrenOf(chart);
        QCOMPARE(marks.size(), 1500);
        QCOMPARE(QSet<QAccessibleInterface*>(marks.begin(), marks.end()).size(), 1500);
        QCOMPARE(marks.at(7)->text(QAccessible::Name), u"Stop loss of buy 0.10 #7 at 1.00700"_s);
        QCOMPARE(marks.at(1407)->text(QAccessible::Name), u"Stop loss of buy 0.10 #7 at 2.40700"_s);
        QCOMPARE(accessible(chart).indexOfChild(marks.at(1407)), 1407);
    }

    void equal_drawings_that_are_not_stored_yet_are_told_apart()
    {
        ChartWidget chart;
        fixtures::showChart(chart, 60);
        chart.setDrawings({trend({}, 40, 1.1, 50, 1.105), trend({}, 40, 1.1, 50, 1.105)});
        const QList<QAccessibleInterface*> marks = childrenOf(chart);
        QCOMPARE(marks.size(), 2);
        QVERIFY(marks[0] != marks[1]);
        QCOMPARE(accessible(chart).indexOfChild(marks[1]), 1);
    }

    void the_button_to_the_newest_bar_is_there_and_can_be_pressed_while_it_is_shown()
    {
        ChartWidget chart;
        fixtures::showChart(chart, 200);
        QCOMPARE(names(chart), QStringList());
        chart.setAutoScroll(false);
        QCOMPARE(names(chart), QStringList(u"Scroll to the newest bar"_s));
        QAccessibleInterface* button = childrenOf(chart).constFirst();
        QCOMPARE(button->role(), QAccessible::PushButton);
        QCOMPARE(button->rect().size(), chart.view().scrollToEndButton().size());
        QVERIFY(button->actionInterface());
        button->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
        QVERIFY(chart.autoScroll());
        QCOMPARE(names(chart), QStringList());
    }

    void a_tick_costs_nothing_while_no_reader_is_there()
    {
        ChartWidget chart;
        chart.setMovingAverages({{IndicatorKind::Sma, 2, red}});
        chart.resize(400, 300);
        chart.setCandles(fixtures::wave(60));
        chart.onTick(1.1, 1.2, fixtures::barTime(60));
        fixtures::hover(chart, {331, 100});
        chart.setTradeLevels({stopLoss(u"a"_s, 1.1)});
        QVERIFY(!chart.reader().news().pause().isActive());
        QCoreApplication::processEvents();
        QCOMPARE(chart.indicatorValues(), quint64(0));
    }

    void news_are_told_at_most_once_a_second()
    {
        const ReaderEars reader;
        ChartWidget chart;
        chart.setAccessibleName(u"Chart A"_s);
        fixtures::showChart(chart, 60);
        breathe(chart);
        ReaderEars ears;
        for (int i = 0; i < 5; ++i)
            chart.onTick(1.1 + i * 0.001, 1.2, fixtures::barTime(60));
        QTRY_COMPARE(ears.count(QAccessible::DescriptionChanged), 1);
        QCOMPARE(ears.names(QAccessible::DescriptionChanged), QStringList(u"Chart A"_s));
        fixtures::hover(chart, {331, 100});
        fixtures::hover(chart, {324, 100});
        QCoreApplication::processEvents();
        QCOMPARE(ears.count(QAccessible::DescriptionChanged), 1);
        timeOut(chart.reader().news().pause());
        QCOMPARE(ears.count(QAccessible::DescriptionChanged), 2);
        breathe(chart);
        QCOMPARE(ears.count(QAccessible::DescriptionChanged), 2);
    }

    void a_chart_out_of_sight_tells_its_news_once_it_is_seen()
    {
        const ReaderEars reader;
        QWidget area;
        area.resize(400, 300);
        ChartWidget chart(&area);
        QWidget other(&area);
        other.resize(400, 300);
        other.setAutoFillBackground(true);
        area.show();
        fixtures::showChart(chart, 60);
        QVERIFY(chart.isVisible() && chart.visibleRegion().isEmpty());
        breathe(chart);
        ReaderEars ears;
        for (int second = 0; second < 3; ++second) {
            chart.onTick(1.1 + second * 0.001, 1.2, fixtures::barTime(60));
            breathe(chart);
        }
        QCOMPARE(ears.count(QAccessible::DescriptionChanged), 0);
        other.hide();
        QTRY_COMPARE(ears.count(QAccessible::DescriptionChanged), 1);
        breathe(chart);
        chart.hide();
        chart.onTick(1.11, 1.2, fixtures::barTime(60));
        breathe(chart);
        QCOMPARE(ears.count(QAccessible::DescriptionChanged), 1);
        chart.show();
        QTRY_COMPARE(ears.count(QAccessible::DescriptionChanged), 2);
        breathe(chart);
        QCOMPARE(ears.count(QAccessible::DescriptionChanged), 2);
    }

    void a_tick_without_a_price_brings_no_live_prices_back()
    {
        ChartWidget chart;
        fixtures::showChart(chart, 60);
        chart.onTick(1.1, 1.2, fixtures::barTime(60));
        chart.markQuoteStale();
        chart.onTick(qQNaN(), 1.2, fixtures::barTime(60));
        QVERIFY(chart.frame().quoteStale);
        chart.onTick(0.0, 0.0, fixtures::barTime(60));
        QVERIFY(chart.frame().quoteStale);
        chart.onTick(1.1, 0.0, fixtures::barTime(60));
        QVERIFY(!chart.frame().quoteStale);
    }

    void the_loss_and_the_return_of_live_prices_are_told()
    {
        const ReaderEars reader;
        ChartWidget chart;
        fixtures::showChart(chart, 60);
        chart.onTick(1.1, 1.2, fixtures::barTime(60));
        breathe(chart);
        const QString live = reading(chart);
        ReaderEars ears;
        chart.markQuoteStale();
        QTRY_COMPARE(ears.count(QAccessible::DescriptionChanged), 1);
        QVERIFY(reading(chart).contains(u"Disconnected, last known prices. Bid 1.1"_s));
        timeOut(chart.reader().news().pause());
        chart.onTick(1.1, 1.2, fixtures::barTime(60));
        QTRY_COMPARE(ears.count(QAccessible::DescriptionChanged), 2);
        QVERIFY(!reading(chart).contains(u"Disconnected"_s));
        QVERIFY(reading(chart).endsWith(live.last(u"Bid 1.10000. Ask 1.20000."_s.size())));
    }

    void marks_are_told_when_they_come_move_and_go()
    {
        ReaderEars ears;
        ChartWidget chart;
        fixtures::showChart(chart, 60);
        breathe(chart);
        ears.forget();
        chart.setDigits(2);
        chart.setTradeLevels({stopLoss(u"a"_s, 1.1)});
        const QStringList created = ears.names(QAccessible::ObjectCreated);
        QCOMPARE(created, QStringList(u"Stop loss of buy 0.10 #a at 1.10"_s));
        breathe(chart);
        chart.setTradeLevels({stopLoss(u"a"_s, 1.3)});
        breathe(chart);
        QCOMPARE(ears.names(QAccessible::NameChanged), QStringList(u"Stop loss of buy 0.10 #a at 1.30"_s));
        const QAccessible::Id id = QAccessible::uniqueId(childrenOf(chart).constFirst());
        chart.setTradeLevels({});
        QCOMPARE(ears.count(QAccessible::ObjectDestroyed), 1);
        QCOMPARE(ears.heard().constLast().id, id);
    }

    void a_dragged_level_says_where_it_is_held()
    {
        ChartWidget chart;
        fixtures::showChart(chart, 60);
        const double price = chart.view().priceAt(100.5);
        chart.setTradeLevels({stopLoss(u"a"_s, price)});
        QAccessibleInterface* level = childrenOf(chart).constFirst();
        const int row = chart.view().pricePixel(price);
        QTest::mousePress(&chart, Qt::LeftButton, {}, {150, row});
        fixtures::hover(chart, {150, row + 40}, Qt::LeftButton);
        const ChartFrame frame = chart.frame();
        QCOMPARE(frame.draggedLevel, 0);
        QVERIFY(level->text(QAccessible::Name).endsWith(QString::number(frame.draggedPrice, 'f', 5)));
        QCOMPARE(level->rect().center().y(), chart.mapToGlobal(QPoint(0, row + 40)).y());
        QVERIFY(
            reading(chart).startsWith(u"Moving: "_s + level->text(QAccessible::Name) + u". Crosshair at "_s));
    }
};

TAVORAN_TEST(TestChartAccessible)
#include "tst_ChartAccessible.moc"
