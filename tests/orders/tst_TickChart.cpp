#include "orders/TickChartGeometry.h"
#include "orders/TickChartWidget.h"
#include "support/TestMain.h"

using namespace Qt::StringLiterals;

namespace {

constexpr QSize chartSize(300, 440);

int countColor(const QImage& image, const QColor& color)
{
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            count += image.pixelColor(x, y) == color ? 1 : 0;
    }
    return count;
}

bool isPlainWhite(const QImage& image)
{
    return countColor(image, Qt::white) == image.width() * image.height();
}

QImage pictureOf(TickChartWidget& chart)
{
    return chart.grab().toImage().convertToFormat(QImage::Format_RGB32);
}

} // namespace

class TestTickChart final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void fewerThanTwoQuotesDrawNothing()
    {
        QVERIFY(!TickChartGeometry::of(chartSize, {}, {}));
        QVERIFY(!TickChartGeometry::of(chartSize, {1.0}, {1.1}));
        TickChartWidget chart;
        chart.resize(chartSize);
        QVERIFY(isPlainWhite(pictureOf(chart)));
        chart.append(1.0, 1.1);
        QVERIFY(isPlainWhite(pictureOf(chart)));
        chart.append(1.0, 1.1);
        QVERIFY(!isPlainWhite(pictureOf(chart)));
    }

    void clearingNeedsTwoNewQuotes()
    {
        TickChartWidget chart;
        chart.resize(chartSize);
        chart.append(1.0, 1.1);
        chart.append(1.2, 1.3);
        chart.clear();
        chart.append(1.0, 1.1);
        QVERIFY(isPlainWhite(pictureOf(chart)));
        chart.append(1.0, 1.1);
        QVERIFY(!isPlainWhite(pictureOf(chart)));
    }

    void keepsFourHundredQuotes()
    {
        TickChartWidget chart;
        for (int i = 0; i < 400; ++i)
            chart.append(i, i + 0.5);
        QCOMPARE(chart.bids().size(), 400);
        QCOMPARE(chart.bids().first(), 0.0);
        chart.append(400, 400.5);
        QCOMPARE(chart.bids().size(), 400);
        QCOMPARE(chart.asks().size(), 400);
        QCOMPARE(chart.bids().first(), 1.0);
        QCOMPARE(chart.asks().first(), 1.5);
        QCOMPARE(chart.bids().last(), 400.0);
    }

    void quotesThatAreNoNumbersAreIgnored()
    {
        TickChartWidget chart;
        chart.append(std::nan(""), 1.0);
        chart.append(1.0, HUGE_VAL);
        QVERIFY(chart.bids().isEmpty());
        QVERIFY(chart.asks().isEmpty());
    }

    void thePlotLeavesRoomForScaleAndTags()
    {
        const auto geometry = TickChartGeometry::of(chartSize, {1.0, 2.0}, {1.0, 2.0});
        QVERIFY(geometry);
        QCOMPARE(geometry->plot(), QRect(0, 6, 248, 414));
        QCOMPARE(geometry->plotRight(), 248);
    }

    void theRangeIsPaddedByATenth()
    {
        const auto geometry = TickChartGeometry::of(chartSize, {10.0, 12.0}, {11.0, 20.0});
        QVERIFY(geometry);
        QVERIFY(std::abs(geometry->low() - (10.0 - 1.0 - 1e-9)) < 1e-12);
        QVERIFY(std::abs(geometry->high() - (20.0 + 1.0 + 1e-9)) < 1e-12);
    }

    void pointsAreTruncatedToPixels()
    {
        // Three quotes over 248 pixels: 0, 124, 248. The range is 9 to 21 over 414 pixels from y 6.
        const auto geometry = TickChartGeometry::of(chartSize, {10.0, 12.0, 15.0}, {11.0, 20.0, 16.0});
        QVERIFY(geometry);
        QCOMPARE(geometry->xOf(0), 0);
        QCOMPARE(geometry->xOf(1), 124);
        QCOMPARE(geometry->xOf(2), 248);
        QCOMPARE(geometry->yOf(20.0), 40);  // 6 + 34.5
        QCOMPARE(geometry->yOf(16.0), 178); // 6 + 172.5
        QCOMPARE(geometry->segments({10.0, 20.0, 16.0}),
            (QList<QLine>{{0, geometry->yOf(10.0), 124, 40}, {124, 40, 248, 178}}));
    }

    void theScaleHasFiveSteps()
    {
        const auto geometry = TickChartGeometry::of(chartSize, {10.0, 12.0}, {11.0, 20.0});
        QVERIFY(geometry);
        QCOMPARE(geometry->scaleStep(0).value, geometry->low());
        QCOMPARE(geometry->scaleStep(0).y, 420);
        QCOMPARE(geometry->scaleStep(4).value, geometry->high());
        QCOMPARE(geometry->scaleStep(4).y, 6);
        QCOMPARE(geometry->scaleStep(2).value, 15.0);
        QCOMPARE(geometry->scaleLabelBox(100), QRect(250, 93, 48, 14));
    }

    void tagsSitAtTheirValue()
    {
        const auto geometry = TickChartGeometry::of(chartSize, {10.0, 12.0}, {11.0, 20.0});
        QVERIFY(geometry);
        QCOMPARE(geometry->tagBox(20.0), QRect(249, 32, 50, 16));
    }

    void aConstantPriceLiesInTheMiddle_data()
    {
        QTest::addColumn<double>("price");
        QTest::newRow("1") << 1.0;
        QTest::newRow("0") << 0.0;
        QTest::newRow("65 thousand") << 65000.0;
        QTest::newRow("one beyond which the pad vanishes") << 1e9;
        QTest::newRow("the largest a price can be") << 1e15;
    }
    void aConstantPriceLiesInTheMiddle()
    {
        QFETCH(double, price);
        const auto geometry = TickChartGeometry::of(chartSize, {price, price}, {price, price});
        QVERIFY(geometry);
        QVERIFY(std::abs(geometry->yOf(price) - 213) <= 2);
        TickChartWidget chart;
        chart.resize(chartSize);
        chart.append(price, price);
        chart.append(price, price);
        QVERIFY(!isPlainWhite(pictureOf(chart)));
    }

    void noRoomDrawsNothing()
    {
        QVERIFY(!TickChartGeometry::of({52, 440}, {1.0, 2.0}, {1.0, 2.0}));
        QVERIFY(!TickChartGeometry::of({300, 26}, {1.0, 2.0}, {1.0, 2.0}));
        QVERIFY(!TickChartGeometry::of({0, 0}, {1.0, 2.0}, {1.0, 2.0}));
    }

    void bothLinesAndTagsArePainted()
    {
        TickChartWidget chart;
        chart.resize(chartSize);
        for (int i = 0; i < 50; ++i)
            chart.append(1.0 + i * 0.001, 1.02 + i * 0.001);
        const QImage picture = pictureOf(chart);
        // A tag alone is 800 pixels less its text; the rest is line.
        QVERIFY(countColor(picture, QColor(u"#dd3333"_s)) > 700);
        QVERIFY(countColor(picture, QColor(u"#3366cc"_s)) > 700);
        QVERIFY(countColor(picture, QColor(u"#e6e6e6"_s)) > 4 * 200);
        const auto geometry = TickChartGeometry::of(chart.size(), chart.bids(), chart.asks());
        QVERIFY(geometry);
        QCOMPARE(picture.pixelColor(geometry->tagBox(chart.asks().last()).topLeft()), QColor(u"#dd3333"_s));
        QCOMPARE(picture.pixelColor(geometry->tagBox(chart.bids().last()).topLeft()), QColor(u"#3366cc"_s));
    }

    void scaleAndTagsCarryTheirNumbers()
    {
        TickChartWidget chart;
        chart.resize(chartSize);
        chart.append(1.0, 1.5);
        chart.append(1.0, 1.5);
        const auto geometry = TickChartGeometry::of(chart.size(), chart.bids(), chart.asks());
        QVERIFY(geometry);
        // Columns from the left edge of a box to the last one that holds something.
        const auto written = [](const QImage& picture, const QRect& box) {
            const QColor paper = picture.pixelColor(box.topLeft());
            int last = 0;
            for (int x = box.left(); x <= box.right(); ++x) {
                for (int y = box.top(); y <= box.bottom(); ++y)
                    last = picture.pixelColor(x, y) == paper ? last : x - box.left() + 1;
            }
            return last;
        };
        const QImage coarse = pictureOf(chart);
        chart.setDigits(5);
        const QImage fine = pictureOf(chart);
        // The lowest and the highest step lie clear of the tags.
        for (const int step : {0, 4}) {
            const QRect box = geometry->scaleLabelBox(geometry->scaleStep(step).y) & coarse.rect();
            QVERIFY(written(coarse, box) > 10);
            QVERIFY(written(fine, box) > written(coarse, box) + 5);
        }
        for (const double value : {1.0, 1.5}) {
            const QRect box = geometry->tagBox(value).adjusted(1, 1, -1, -1);
            QVERIFY(written(coarse, box) > 10);
            QVERIFY(written(fine, box) > written(coarse, box));
        }
    }

    void theBidLiesOnTop()
    {
        TickChartWidget chart;
        chart.resize(chartSize);
        chart.append(1.0, 1.0);
        chart.append(1.0, 1.0);
        const QImage picture = pictureOf(chart);
        QCOMPARE(countColor(picture, QColor(u"#dd3333"_s)), 0);
        QVERIFY(countColor(picture, QColor(u"#3366cc"_s)) > 700);
    }

    void isWhiteUnderAnyTheme()
    {
        qApp->setStyleSheet(u"QWidget{background:#000000;color:#dcdcdc;}"_s);
        TickChartWidget chart;
        chart.resize(chartSize);
        const QImage picture = pictureOf(chart);
        qApp->setStyleSheet({});
        QVERIFY(isPlainWhite(picture));
    }

    void hasItsSizeAndDigits()
    {
        TickChartWidget chart;
        QCOMPARE(chart.minimumWidth(), 200);
        QCOMPARE(chart.digits(), 2);
        chart.setDigits(5);
        QCOMPARE(chart.digits(), 5);
        QCOMPARE(chart.styleSheet(), u"background:#ffffff;"_s);
        QVERIFY(chart.testAttribute(Qt::WA_StyledBackground));
    }
};

TAVORAN_TEST(TestTickChart)
#include "tst_TickChart.moc"
