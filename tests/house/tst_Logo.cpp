#include "packaging/icons/Logo.h"
#include "support/TestMain.h"

using namespace Qt::StringLiterals;

namespace {

/// Versions of Qt may round otherwise at an edge.
constexpr int roundingOfAChannel = 2;

QString inProject(const QString& path)
{
    return QStringLiteral(PROJECT_ROOT) + u'/' + path;
}

/// How far the two pictures of one size are apart in any channel of any pixel, as they look on black.
int largestDifference(const QImage& one, const QImage& other)
{
    const QImage a = one.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    const QImage b = other.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    int largest = 0;
    for (int y = 0; y < a.height(); ++y) {
        const auto* first = reinterpret_cast<const QRgb*>(a.constScanLine(y));
        const auto* second = reinterpret_cast<const QRgb*>(b.constScanLine(y));
        for (int x = 0; x < a.width(); ++x) {
            for (const int shift : {0, 8, 16, 24}) {
                const int apart = int((first[x] >> shift) & 0xff) - int((second[x] >> shift) & 0xff);
                largest = qMax(largest, qAbs(apart));
            }
        }
    }
    return largest;
}

} // namespace

/// The pictures of the logo are committed; they are all of the one drawing.
class tst_Logo final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everyPictureShowsTheDrawing_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<int>("size");
        QTest::newRow("in the program") << u"resources/logo.png"_s << 256;
        for (const int size : {16, 24, 32, 48, 64, 128, 256, 512}) {
            QTest::addRow("icon of %d", size)
                << u"packaging/icons/com.tavoran.Terminal-%1.png"_s.arg(size) << size;
        }
    }
    void everyPictureShowsTheDrawing()
    {
        QFETCH(QString, path);
        QFETCH(int, size);
        const QImage picture(inProject(path));
        QCOMPARE(picture.size(), QSize(size, size));
        QCOMPARE_LE(largestDifference(picture, drawLogo(size)), roundingOfAChannel);
    }

    void theScalableIconHasTheShapesOfTheDrawing()
    {
        QFile file(inProject(u"packaging/icons/com.tavoran.Terminal.svg"_s));
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), logoAsSvg());
    }
};

TAVORAN_TEST(tst_Logo)
#include "tst_Logo.moc"
