#include "mainwindow/SavedGeometry.h"
#include "support/TestMain.h"

#include <QWidget>

#include <limits>

using namespace Qt::StringLiterals;

namespace {

const QList<QRect> screens{QRect(0, 0, 1920, 1080), QRect(1920, 0, 1280, 1024)};
const QRect before(10, 10, 800, 600);

SavedGeometry someGeometry()
{
    SavedGeometry saved;
    saved.frame = QRect(99, 70, 902, 631);
    saved.normal = QRect(100, 100, 900, 600);
    saved.screenWidth = 1920;
    saved.rectangle = saved.normal;
    return saved;
}

} // namespace

class tst_SavedGeometry final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void whatQtWroteIsUnderstood()
    {
        QWidget window;
        window.setGeometry(100, 110, 300, 200);
        const QByteArray bytes = window.saveGeometry();
        const std::optional<SavedGeometry> saved = SavedGeometry::read(bytes);
        QVERIFY(saved);
        QCOMPARE(saved->rectangle, window.geometry());
        QVERIFY(!saved->maximized);
        QVERIFY(!saved->fullScreen);
        QCOMPARE(saved->bytes(), bytes);

        window.setWindowState(Qt::WindowMaximized);
        QVERIFY(SavedGeometry::read(window.saveGeometry())->maximized);

        QWidget other;
        QVERIFY(other.restoreGeometry(bytes));
        QCOMPARE(other.geometry(), QRect(100, 110, 300, 200));
    }

    void otherBytesAreNotUnderstood_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        const QByteArray good = someGeometry().bytes();
        QTest::newRow("none") << QByteArray();
        QTest::newRow("cut") << good.chopped(1);
        QTest::newRow("another beginning") << 'x' + good.mid(1);
        QByteArray old = good;
        old[5] = '\2';
        QTest::newRow("without a rectangle") << old;
        QByteArray later = good;
        later[5] = '\4';
        QTest::newRow("of a later version") << later;
    }
    void otherBytesAreNotUnderstood()
    {
        QFETCH(QByteArray, bytes);
        QVERIFY(!SavedGeometry::read(bytes));
        QCOMPARE(geometryOnScreen(bytes, screens, before), bytes);
    }

    void aGeometryOnAScreenStaysAsItIs()
    {
        const QByteArray bytes = someGeometry().bytes();
        QCOMPARE(geometryOnScreen(bytes, screens, before), bytes);
        QCOMPARE(geometryOnScreen(bytes, {}, before), bytes);
    }

    void aGeometryOnAScreenToTheLeftStaysAsItIs_data()
    {
        QTest::addColumn<QRect>("rectangle");
        QTest::newRow("within it") << QRect(-1800, -900, 900, 600);
        QTest::newRow("across the border") << QRect(-500, 100, 900, 600);
        QTest::newRow("all over it") << QRect(-1920, -1080, 1920, 1080);
        QTest::newRow("above and below") << QRect(-700, -500, 600, 1400);
    }
    void aGeometryOnAScreenToTheLeftStaysAsItIs()
    {
        QFETCH(QRect, rectangle);
        const QList<QRect> leftAndMain{QRect(0, 0, 1920, 1080), QRect(-1920, -1080, 1920, 1080)};
        SavedGeometry saved = someGeometry();
        saved.frame = rectangle.adjusted(-1, -30, 1, 1);
        saved.normal = rectangle;
        saved.rectangle = rectangle;
        QCOMPARE(geometryOnScreen(saved.bytes(), leftAndMain, before), saved.bytes());
    }

    void eachRectangleIsBroughtOntoAScreen_data()
    {
        QTest::addColumn<QRect>("rectangle");
        QTest::addColumn<QRect>("placed");
        constexpr int most = std::numeric_limits<int>::max();
        constexpr int least = std::numeric_limits<int>::min();
        const auto corners = [](int left, int top, int right, int bottom) {
            return QRect(QPoint(left, top), QPoint(right, bottom));
        };
        QTest::newRow("left of it far to the right") << corners(1358954496, 100, 999, 699) << before;
        QTest::newRow("all of it far to the right")
            << corners(1358954496, 100, 1358955395, 699) << QRect(1020, 100, 900, 600);
        QTest::newRow("no size") << corners(100, 100, 99, 99) << before;
        QTest::newRow("from end to end") << corners(least, least, most, most) << QRect(0, 0, 1920, 1080);
        QTest::newRow("at the one end")
            << corners(least, least, least + 899, least + 599) << QRect(0, 0, 900, 600);
        QTest::newRow("at the other end")
            << corners(most - 899, most - 599, most, most) << QRect(1020, 480, 900, 600);
        QTest::newRow("endlessly wide") << corners(100, 100, most, 699) << QRect(0, 100, 1920, 600);
    }
    void eachRectangleIsBroughtOntoAScreen()
    {
        QFETCH(QRect, rectangle);
        QFETCH(QRect, placed);
        for (QRect SavedGeometry::*const which :
            {&SavedGeometry::frame, &SavedGeometry::normal, &SavedGeometry::rectangle}) {
            SavedGeometry saved = someGeometry();
            saved.*which = rectangle;
            saved.maximized = true;
            SavedGeometry expected = saved;
            expected.*which = placed;
            QCOMPARE(geometryOnScreen(saved.bytes(), screens, before), expected.bytes());
        }
    }
};

TAVORAN_TEST(tst_SavedGeometry)
#include "tst_SavedGeometry.moc"
