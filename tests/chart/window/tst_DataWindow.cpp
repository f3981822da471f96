#include "chart/ChartFixtures.h"
#include "chart/ChartWindowFixture.h"
#include "chart/window/DataWindow.h"
#include "support/TestMain.h"
#include "support/TimeZone.h"

#include <QLabel>
#include <QLayout>
#include <QTextDocument>

using namespace Qt::StringLiterals;
using fixtures::ServedChart;

namespace {

/// Counts how often a window comes to the front.
class RaiseCounter final : public QObject {
public:
    explicit RaiseCounter(QWidget& window) { window.installEventFilter(this); }

    [[nodiscard]] int count() const { return m_count; }

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        m_count += event->type() == QEvent::ZOrderChange ? 1 : 0;
        return QObject::eventFilter(watched, event);
    }

private:
    int m_count = 0;
};

} // namespace

class tst_DataWindow final : public QObject {
    Q_OBJECT

    static DataWindow& open(const ServedChart& served)
    {
        served.window->showDataWindow();
        return *served.window->findChild<DataWindow*>();
    }

    static QLabel& label(const DataWindow& window) { return *window.findChild<QLabel*>(); }
    static QTimer& timer(const DataWindow& window) { return *window.findChild<QTimer*>(); }

private Q_SLOTS:
    void initTestCase() { useForeignTimeZone(); }

    void isASmallWindowOnTop()
    {
        const ServedChart served;
        served.show();
        const DataWindow& window = open(served);
        QCOMPARE(window.windowTitle(), u"Data Window"_s);
        QCOMPARE(window.windowFlags() & Qt::WindowType_Mask, Qt::Tool);
        QVERIFY(window.windowFlags().testFlag(Qt::WindowStaysOnTopHint));
        QCOMPARE(window.size(), QSize(220, 160));
        QCOMPARE(window.layout()->contentsMargins(), QMargins(8, 8, 8, 8));
        QVERIFY(label(window).minimumWidth() >= 200);
        QCOMPARE(label(window).textFormat(), Qt::RichText);
        QCOMPARE(timer(window).interval(), 150);
    }

    void isMadeOnceAndShownAgain()
    {
        const ServedChart served;
        served.show();
        QVERIFY(!served.window->findChild<DataWindow*>());
        DataWindow& window = open(served);
        QVERIFY(window.isVisible());
        window.close();
        QVERIFY(!window.isVisible());
        QCOMPARE(&open(served), &window);
        QVERIFY(window.isVisible());
        QCOMPARE(served.window->findChildren<DataWindow*>().size(), 1);
    }

    void comesToTheFrontEachTimeItIsAskedFor()
    {
        const ServedChart served;
        served.show();
        const RaiseCounter raises(open(served));
        for (int asked = 1; asked <= 2; ++asked) {
            served.window->showDataWindow(); // it is open already
            QCOMPARE(raises.count(), asked);
        }
    }

    void showsTheBarUnderThePointer()
    {
        const ServedChart served;
        Candle bar;
        bar.time = fixtures::barTime(2);
        bar.open = 1.1;
        bar.high = 1.25;
        bar.low = 1.05;
        bar.close = 1.2;
        bar.volume = 1234567;
        served.chart().setCandles({bar});
        served.show();
        const DataWindow& window = open(served);
        const int x = served.chart().view().plot().right();
        fixtures::hover(served.chart(), QPoint(x, 150));
        QTRY_COMPARE(label(window).text(),
            u"<b>EURUSD</b><br>Date: 2026.06.02 00:30<br>Open: 1.10000<br>High: 1.25000<br>Low: 1.05000<br>"
            "Close: 1.20000<br>Volume: 1234567"_s);
    }

    void asksForAPointerOverTheChart()
    {
        const ServedChart served;
        served.chart().setCandles(fixtures::wave(400));
        served.show();
        const DataWindow& window = open(served);
        QCOMPARE(label(window).text(), u"Hover over the chart..."_s);
        fixtures::hover(served.chart(), QPoint(300, 150));
        QTRY_VERIFY(label(window).text().startsWith(u"<b>EURUSD</b>"_s));
        fixtures::leave(served.chart());
        QTRY_COMPARE(label(window).text(), u"Hover over the chart..."_s);
    }

    void staysLiveWhileTicksArrive()
    {
        const ServedChart served;
        served.window->onPrices(fixtures::quote(u"EURUSD"_s, 1.5, 1.5));
        served.show();
        const DataWindow& window = open(served);
        fixtures::hover(served.chart(), QPoint(served.chart().view().plot().right(), 150));
        QTRY_VERIFY(label(window).text().contains(u"Close: 1.50000"_s));
        served.window->onPrices(fixtures::quote(u"EURUSD"_s, 1.75, 1.75));
        QTRY_VERIFY(label(window).text().contains(u"Close: 1.75000"_s));
    }

    void staysLiveAfterAnotherTimeframe()
    {
        const ServedChart served;
        served.chart().setCandles(fixtures::wave(400));
        served.show();
        const DataWindow& window = open(served);
        const QPoint place(served.chart().view().plot().right(), 150);
        fixtures::hover(served.chart(), place);
        QTRY_VERIFY(label(window).text().startsWith(u"<b>EURUSD</b>"_s));
        served.window->setTimeframe(u"1d"_s);
        QTRY_COMPARE(label(window).text(), u"Hover over the chart..."_s);
        Candle day;
        day.time = fixtures::midnight;
        day.open = day.high = day.low = day.close = 9.5;
        served.chart().setCandles({day});
        QTRY_VERIFY(label(window).text().contains(u"Open: 9.50000"_s));
    }

    void followsTheDigits()
    {
        const ServedChart served;
        served.chart().setCandles(fixtures::wave(1));
        served.show();
        const DataWindow& window = open(served);
        fixtures::hover(served.chart(), QPoint(served.chart().view().plot().right(), 150));
        QTRY_VERIFY(label(window).text().contains(u"Open: 1.10000"_s));
        served.window->setSymbolInfo(2, {});
        QTRY_VERIFY(label(window).text().contains(u"Open: 1.10<"_s));
    }

    void serverTextIsNoMarkup()
    {
        const ServedChart served(u"<img src='/etc/passwd'> %2 &amp;"_s);
        served.chart().setCandles(fixtures::wave(1));
        served.show();
        const DataWindow& window = open(served);
        fixtures::hover(served.chart(), QPoint(served.chart().view().plot().right(), 150));
        QTRY_VERIFY(label(window).text().startsWith(u"<b>"_s));
        QTextDocument document;
        document.setHtml(label(window).text());
        QVERIFY(
            document.toPlainText().startsWith(u"<img src='/etc/passwd'> %2 &amp;\nDate: 2026.06.02 00:00"_s));
    }

    void anEndlessSymbolIsShortened()
    {
        const ServedChart served(QString(100'000, u'x'));
        served.chart().setCandles(fixtures::wave(1));
        served.show();
        const DataWindow& window = open(served);
        fixtures::hover(served.chart(), QPoint(served.chart().view().plot().right(), 150));
        QTRY_VERIFY(label(window).text().startsWith(u"<b>"_s));
        QVERIFY(label(window).text().startsWith(u"<b>"_s + QString(64, u'x') + u"…</b>"_s));
    }

    void asksTheChartOnlyWhileItCanBeSeen()
    {
        const ServedChart served;
        served.show();
        DataWindow& window = open(served);
        QVERIFY(timer(window).isActive());
        window.close();
        QVERIFY(!timer(window).isActive());
        open(served);
        QVERIFY(timer(window).isActive());
    }

    void closesWithItsChart()
    {
        ServedChart served;
        served.show();
        const QPointer<DataWindow> window(&open(served));
        served.window.reset();
        QVERIFY(!window);
    }
};

TAVORAN_TEST(tst_DataWindow)
#include "tst_DataWindow.moc"
