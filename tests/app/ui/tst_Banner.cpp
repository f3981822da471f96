#include "app/ui/Banner.h"
#include "app/ui/Theme.h"
#include "support/TestMain.h"

using namespace Qt::StringLiterals;

namespace {

/// Whether any pixel of `area` differs from the background.
bool isPaintedOn(const QImage& image, const QRect& area)
{
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x) {
            if (image.pixelColor(x, y) != fixedColors::splashBackground)
                return true;
        }
    }
    return false;
}

} // namespace

class TestBanner : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QCoreApplication::setApplicationVersion(u"1.0.1"_s); }

    void theBannerHasTheSizeAskedFor()
    {
        QCOMPARE(renderBanner(480, 150).size(), QSize(480, 150));
        QCOMPARE(renderBanner(400, 96).size(), QSize(400, 96));
    }

    void theLogoStandsInItsSquare()
    {
        const QImage banner = renderBanner(480, 150).toImage();
        // side 117, left 21, top 16.5
        QVERIFY(!isPaintedOn(banner, QRect(0, 0, 20, 150)));
        QVERIFY(!isPaintedOn(banner, QRect(0, 0, 139, 16)));
        QVERIFY(!isPaintedOn(banner, QRect(0, 135, 139, 15)));
        QVERIFY(isPaintedOn(banner, QRect(24, 60, 4, 30)));
        QVERIFY(isPaintedOn(banner, QRect(130, 60, 5, 30)));
    }

    void nameAndSubtitleStandRightOfTheLogo()
    {
        const QImage banner = renderBanner(480, 150).toImage();
        // The logo ends at 138; the texts begin 24 pixels further right, apart at 62 % of the height.
        QVERIFY(!isPaintedOn(banner, QRect(140, 0, 20, 150)));
        QVERIFY(isPaintedOn(banner, QRect(162, 30, 300, 60)));
        QVERIFY(isPaintedOn(banner, QRect(164, 93, 300, 40)));
    }

    void theNameRunsFromTealToBlue()
    {
        const QImage banner = renderBanner(480, 150).toImage();
        const auto strongest = [&](int from, int to) {
            QColor best = Qt::black;
            for (int x = from; x < to; ++x) {
                for (int y = 30; y < 90; ++y) {
                    const QColor color = banner.pixelColor(x, y);
                    if (color.green() + color.blue() > best.green() + best.blue())
                        best = color;
                }
            }
            return best;
        };
        const QColor first = strongest(162, 200);
        const QColor last = strongest(330, 400);
        QVERIFY2(first.green() > last.green(), qPrintable(first.name() + last.name()));
        QVERIFY2(first.blue() < last.blue(), qPrintable(first.name() + last.name()));
    }

    void theSplashHoldsTheBannerAndABorder()
    {
        const QImage splash = renderSplash().toImage();
        QCOMPARE(splash.size(), QSize(480, 280));
        const QColor border(u"#454545"_s);
        for (const QPoint corner :
            {QPoint(0, 0), QPoint(479, 0), QPoint(0, 279), QPoint(479, 279), QPoint(240, 0), QPoint(0, 140)})
            QCOMPARE(splash.pixelColor(corner), border);
        QCOMPARE(splash.pixelColor(1, 1), fixedColors::splashBackground);
        QCOMPARE(splash.copy(1, 45, 478, 150), renderBanner(480, 150).toImage().copy(1, 0, 478, 150));
    }

    void theSplashTellsTheVersionInTheMiddle()
    {
        const QImage splash = renderSplash().toImage();
        QVERIFY(isPaintedOn(splash, QRect(180, 234, 120, 20)));
        QVERIFY(!isPaintedOn(splash, QRect(10, 234, 80, 20)));
        QVERIFY(!isPaintedOn(splash, QRect(390, 234, 80, 20)));
        QCoreApplication::setApplicationVersion(u"9.9.9"_s);
        QVERIFY(renderSplash().toImage() != splash);
        QCoreApplication::setApplicationVersion(u"1.0.1"_s);
    }

    void aTinyBannerIsSurvived() { QCOMPARE(renderBanner(1, 1).size(), QSize(1, 1)); }
};

TAVORAN_TEST(TestBanner)
#include "tst_Banner.moc"
