#include "chart/layers/LineStrokes.h"

#include "chart/ChartFixtures.h"
#include "support/TestMain.h"

#include <QPainter>
#include <QRandomGenerator>

using fixtures::pixelsOf;
using fixtures::pixelsOtherThan;

namespace {

constexpr QColor black(0, 0, 0);
constexpr QColor red(0xff, 0, 0);

} // namespace

/// Lines of objects, previews and rulers, pixel by pixel.
class TestLineStrokes final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void lines_hold_both_ends_and_have_no_gaps()
    {
        QRandomGenerator random(3);
        for (int i = 0; i < 300; ++i) {
            const QPoint a(random.bounded(100), random.bounded(100));
            const QPoint b = i == 0 ? a : QPoint(random.bounded(100), random.bounded(100));
            QImage image(100, 100, QImage::Format_RGB32);
            image.fill(Qt::black);
            QPainter painter(&image);
            strokes::between(painter, a, b, image.rect(), red);
            painter.end();
            QCOMPARE(image.pixelColor(a), red);
            QCOMPARE(image.pixelColor(b), red);
            const QPoint run = b - a;
            const int steps = std::max(std::abs(run.x()), std::abs(run.y()));
            QCOMPARE(pixelsOtherThan(image, image.rect(), black), steps + 1);
            for (int step = 0; step <= steps; ++step) {
                const double part = steps == 0 ? 0.0 : static_cast<double>(step) / steps;
                const double x = a.x() + run.x() * part;
                const double y = a.y() + run.y() * part;
                bool found = false; // within half a pixel of the ideal line
                for (const double away : {-0.5, 0.5}) {
                    const double shift = away * 0.999;
                    const bool steep = std::abs(run.y()) > std::abs(run.x());
                    const QPoint near(static_cast<int>(std::lround(x + (steep ? shift : 0.0))),
                        static_cast<int>(std::lround(y + (steep ? 0.0 : shift))));
                    found = found || (image.rect().contains(near) && image.pixelColor(near) == red);
                }
                QVERIFY(found);
            }
        }
    }

    void broken_lines_are_drawn_four_pixels_out_of_six()
    {
        QImage image(120, 120, QImage::Format_RGB32);
        image.fill(Qt::black);
        QPainter painter(&image);
        strokes::between(painter, QPoint(0, 5), QPoint(119, 5), image.rect(), red, {1, Qt::DashLine});
        strokes::between(painter, QPoint(7, 119), QPoint(7, 10), image.rect(), red, {1, Qt::DashLine});
        painter.end();
        for (int x = 0; x < 120; ++x)
            QCOMPARE(image.pixelColor(x, 5) == red, x % 6 < 4);
        for (int y = 119; y >= 10; --y)
            QCOMPARE(image.pixelColor(7, y) == red, (119 - y) % 6 < 4);
    }

    void lines_are_the_same_in_parts_data()
    {
        QTest::addColumn<qreal>("ratio");
        QTest::addColumn<int>("width");
        QTest::addColumn<Qt::PenStyle>("pen");
        for (const qreal ratio : {1.0, 2.0, 3.0}) {
            for (const int width : {1, 2}) {
                QTest::addRow("ratio %.0f, solid, width %d", ratio, width) << ratio << width << Qt::SolidLine;
                QTest::addRow("ratio %.0f, broken, width %d", ratio, width) << ratio << width << Qt::DashLine;
            }
        }
    }
    void lines_are_the_same_in_parts()
    {
        QFETCH(qreal, ratio);
        QFETCH(int, width);
        QFETCH(Qt::PenStyle, pen);
        QRandomGenerator random(17);
        const auto canvas = [ratio] {
            QImage image(static_cast<int>(100 * ratio), static_cast<int>(100 * ratio), QImage::Format_RGB32);
            image.setDevicePixelRatio(ratio);
            image.fill(Qt::black);
            return image;
        };
        const QRect bounds(0, 0, 100, 100);
        for (int i = 0; i < 24; ++i) {
            const int reach = i % 3 == 0 ? 100'000'000 : 150;
            const auto anywhere = [&] { return random.bounded(-reach, reach); };
            const QPoint a(anywhere(), anywhere());
            const QPoint b = i % 3 == 1 ? QPoint(anywhere(), anywhere()) : QPoint(50, 50);
            QImage whole = canvas();
            QPainter painter(&whole);
            strokes::between(painter, a, b, bounds, red, {width, pen});
            painter.end();
            QImage parts = canvas();
            painter.begin(&parts);
            for (int y = 0; y < 100; y += 21) {
                for (int x = 0; x < 100; x += 21) {
                    painter.setClipRect(QRect(x, y, 21, 21));
                    strokes::between(painter, a, b, bounds, red, {width, pen});
                }
            }
            painter.end();
            QCOMPARE(parts, whole);
            QImage bounded = canvas();
            painter.begin(&bounded);
            for (int y = 0; y < 100; y += 21) {
                for (int x = 0; x < 100; x += 21)
                    strokes::between(painter, a, b, QRect(x, y, 21, 21) & bounds, red, {width, pen});
            }
            painter.end();
            QCOMPARE(bounded, whole);
        }
    }

    void at_two_device_pixels_slopes_are_finer()
    {
        QImage image(200, 200, QImage::Format_RGB32);
        image.setDevicePixelRatio(2.0);
        image.fill(Qt::black);
        QPainter painter(&image);
        strokes::between(painter, QPoint(0, 0), QPoint(99, 33), QRect(0, 0, 100, 100), red);
        painter.end();
        int odd = 0;
        for (int x = 0; x < 200; ++x) {
            int rows = 0;
            int top = -1;
            for (int y = 0; y < 200; ++y) {
                if (image.pixelColor(x, y) != red)
                    continue;
                top = rows == 0 ? y : top;
                ++rows;
            }
            QCOMPARE(rows, 2); // one pixel is two device pixels wide
            odd += top % 2;
        }
        QVERIFY(odd > 50);
    }

    void lines_stay_within_the_box_of_their_ends_data()
    {
        QTest::addColumn<int>("ratio");
        for (const int ratio : {1, 2, 3})
            QTest::addRow("ratio %d", ratio) << ratio;
    }
    void lines_stay_within_the_box_of_their_ends()
    {
        // Only this box is painted anew when a line in the hand moves on.
        QFETCH(int, ratio);
        QRandomGenerator random(29);
        for (int i = 0; i < 200; ++i) {
            const auto anywhere = [&] { return random.bounded(30); };
            const QPoint a(anywhere(), anywhere());
            const QPoint b(anywhere(), anywhere());
            QImage image(30 * ratio, 30 * ratio, QImage::Format_RGB32);
            image.setDevicePixelRatio(ratio);
            image.fill(Qt::black);
            QPainter painter(&image);
            strokes::between(painter, a, b, QRect(0, 0, 30, 30), red);
            painter.end();
            const QRect box = QRect(a * ratio, QSize(ratio, ratio)) | QRect(b * ratio, QSize(ratio, ratio));
            QCOMPARE(pixelsOf(image, image.rect(), red), pixelsOf(image, box, red));
            for (const QRect& side : {QRect(box.left(), box.top(), 1, box.height()),
                     QRect(box.right(), box.top(), 1, box.height()),
                     QRect(box.left(), box.top(), box.width(), 1),
                     QRect(box.left(), box.bottom(), box.width(), 1)})
                QVERIFY(pixelsOf(image, side, red) > 0);
        }
    }
};

TAVORAN_TEST(TestLineStrokes)
#include "tst_LineStrokes.moc"
