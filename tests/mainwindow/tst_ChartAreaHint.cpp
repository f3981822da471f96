#include "MainWindowFixture.h"
#include "app/ui/Theme.h"
#include "chart/window/ChartWindow.h"
#include "support/Contrast.h"
#include "support/TestMain.h"

#include <QMdiSubWindow>

using namespace Qt::StringLiterals;

namespace {

/// Where something is painted on the backdrop; null where nothing is.
QRect painted(const QMdiArea& area)
{
    const QImage picture = area.viewport()->grab().toImage().convertToFormat(QImage::Format_RGB32);
    const QRgb backdrop = picture.pixel(0, 0);
    QRect ink;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            if (picture.pixel(x, y) != backdrop)
                ink = ink.isNull() ? QRect(x, y, 1, 1) : ink.united(QRect(x, y, 1, 1));
        }
    }
    return ink;
}

/// The most contrast that any pixel has with the backdrop.
double contrast(const QMdiArea& area)
{
    const QImage picture = area.viewport()->grab().toImage().convertToFormat(QImage::Format_RGB32);
    QSet<QRgb> colors;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x)
            colors.insert(picture.pixel(x, y));
    }
    double most = 1;
    for (const QRgb color : std::as_const(colors))
        most = std::max(most, contrastRatio(QColor(color), QColor(picture.pixel(0, 0))));
    return most;
}

} // namespace

class tst_ChartAreaHint final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanup()
    {
        setTheme(false);
        applyTheme(*qApp);
    }

    void an_empty_area_says_how_to_open_a_chart()
    {
        MainWindowFixture f;
        f.signInAndSettle();
        const QMdiArea& area = *f.chartArea();
        QCOMPARE(area.accessibleDescription(),
            u"To open a chart, double-click a symbol in Market Watch, or select one there and press Enter."_s);
        const QRect ink = painted(area);
        QVERIFY(!ink.isEmpty());
        const QPoint off = ink.center() - area.viewport()->rect().center();
        QVERIFY2(std::abs(off.x()) <= 6 && std::abs(off.y()) <= 6,
            qPrintable(u"%1 %2"_s.arg(off.x()).arg(off.y())));
    }

    void it_is_legible_in_both_themes()
    {
        MainWindowFixture f;
        f.open();
        for (const bool dark : {true, false}) {
            setTheme(dark);
            applyTheme(*qApp);
            f.settle();
            QVERIFY(contrast(*f.chartArea()) >= 4.5);
        }
    }

    void it_goes_with_the_first_chart_and_comes_back_after_the_last()
    {
        MainWindowFixture f;
        f.signInAndSettle();
        QMdiArea& area = *f.chartArea();
        const QRect ink = painted(area);
        QVERIFY(!ink.isEmpty());
        f.window->openChart(u"EURUSD"_s);
        QMdiSubWindow* chart = area.subWindowList().constFirst();
        chart->showNormal();
        chart->setGeometry(0, 0, 160, 120); // beside the words
        f.settle();
        QVERIFY(area.accessibleDescription().isEmpty());
        QVERIFY(!painted(area).intersects(ink));
        area.closeAllSubWindows();
        QTRY_VERIFY(area.subWindowList().isEmpty());
        QTRY_VERIFY(!area.accessibleDescription().isEmpty());
        f.settle();
        QCOMPARE(painted(area), ink);
    }

    void it_stays_inside_a_narrow_area()
    {
        MainWindowFixture f;
        f.open();
        QMdiArea& area = *f.chartArea();
        QSet<int> heights;
        for (const QSize size : {QSize(900, 500), QSize(300, 200), QSize(180, 60), QSize(90, 40)}) {
            area.resize(size);
            QCOMPARE(area.viewport()->size().width(), size.width());
            const QRect ink = painted(area);
            QVERIFY(!ink.isEmpty());
            QVERIFY(area.viewport()->rect().adjusted(3, 3, -3, -3).contains(ink));
            heights.insert(ink.height());
        }
        QVERIFY(heights.size() >= 2); // it was wrapped where that was of use
    }
};

TAVORAN_TEST(tst_ChartAreaHint)
#include "tst_ChartAreaHint.moc"
