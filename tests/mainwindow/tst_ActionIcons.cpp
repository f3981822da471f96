#include "app/ui/Theme.h"
#include "chart/data/IndicatorTable.h"
#include "mainwindow/ActionIcons.h"
#include "mainwindow/Pictograms.h"
#include "support/TestMain.h"

#include <QPainter>
#include <QPalette>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace {

/// Every drawing there is: those of commands, and those in the table of indicators.
const QList<QLatin1StringView>& drawings()
{
    static const QList<QLatin1StringView> all = [] {
        QList<QLatin1StringView> found;
        for (int i = 0; i < static_cast<int>(Pictogram::Count); ++i)
            found.append(pictogramDrawing(static_cast<Pictogram>(i)));
        for (const IndicatorRow& row : indicatorTable())
            found.append(row.icon);
        return found;
    }();
    return all;
}

int indexOf(Pictogram pictogram)
{
    return static_cast<int>(pictogram);
}

QImage picture(int index, int side = 16, double ratio = 1.0, QIcon::Mode mode = QIcon::Normal)
{
    QImage image = actionIcon(drawings().at(index)).pixmap(QSize(side, side), ratio, mode).toImage();
    image.setDevicePixelRatio(1.0);
    return image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

int inkedPixels(const QImage& image)
{
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            count += qAlpha(image.pixel(x, y)) > 64 ? 1 : 0;
    }
    return count;
}

bool isAllCrisp(const QImage& image)
{
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (const int alpha = qAlpha(image.pixel(x, y)); alpha != 0 && alpha != 255)
                return false;
        }
    }
    return true;
}

void useTheme(bool dark)
{
    setTheme(dark);
    applyTheme(*qApp);
}

} // namespace

class tst_ActionIcons final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { useTheme(false); }

    void everyDrawingCanBeRead()
    {
        QImage image(16, 16, QImage::Format_ARGB32_Premultiplied);
        for (int i = 0; i < std::ssize(drawings()); ++i) {
            image.fill(Qt::transparent);
            QPainter painter(&image);
            const QLatin1StringView drawing = drawings().at(i);
            QVERIFY2(!drawing.isEmpty(), QByteArray::number(i).constData());
            QVERIFY2(paintDrawing(painter, drawing), drawing.data());
        }
        QVERIFY(pictogramDrawing(Pictogram::Count).isEmpty());
    }

    void aBrokenDrawingIsRefused_data()
    {
        QTest::addColumn<QString>("drawing");
        QTest::newRow("unknown ink") << u"q P 1 1 2 2"_s;
        QTest::newRow("unknown shape") << u"m Z 1 1 2 2"_s;
        QTest::newRow("a word") << u"m line 1 1"_s;
        QTest::newRow("half a point") << u"P 1 1 2"_s;
        QTest::newRow("a point is no line") << u"P 1 1"_s;
        QTest::newRow("a rectangle of three") << u"R 1 1 2"_s;
        QTest::newRow("an arc without its angles") << u"A 1 1 2 2"_s;
    }
    void aBrokenDrawingIsRefused()
    {
        QFETCH(const QString, drawing);
        QImage image(16, 16, QImage::Format_ARGB32_Premultiplied);
        QPainter painter(&image);
        const QByteArray latin = drawing.toLatin1();
        QVERIFY(!paintDrawing(painter, QLatin1StringView(latin)));
    }

    void everyIconShowsSomethingOfItsOwn()
    {
        for (const bool dark : {false, true}) {
            useTheme(dark);
            QList<QImage> seen;
            for (int i = 0; i < std::ssize(drawings()); ++i) {
                QVERIFY(!actionIcon(drawings().at(i)).isNull());
                const QImage image = picture(i);
                QCOMPARE(image.size(), QSize(16, 16));
                QVERIFY2(inkedPixels(image) >= 12, QByteArray::number(i).constData());
                QVERIFY2(!seen.contains(image), QByteArray::number(i).constData());
                seen.append(image);
            }
        }
    }

    void iconsChangeWithTheThemeWithoutBeingMadeAnew()
    {
        for (int i = 0; i < std::ssize(drawings()); ++i) {
            useTheme(false);
            const QIcon icon = actionIcon(drawings().at(i));
            const QImage light = icon.pixmap(16, 16).toImage();
            useTheme(true);
            const QImage dark = icon.pixmap(16, 16).toImage();
            QVERIFY2(dark != light, QByteArray::number(i).constData());
            useTheme(false);
            QCOMPARE(icon.pixmap(16, 16).toImage(), light);
        }
    }

    void aHighRatioShowsRealDetail()
    {
        int detailedOnes = 0;
        for (int i = 0; i < std::ssize(drawings()); ++i) {
            const QPixmap sharp = actionIcon(drawings().at(i)).pixmap(QSize(16, 16), 2.0);
            QCOMPARE(sharp.size(), QSize(32, 32));
            QCOMPARE(sharp.devicePixelRatio(), 2.0);
            const QImage detailed = picture(i, 16, 2.0);
            QCOMPARE(detailed, picture(i, 32));
            // What is made of whole pixels at the small size is sharp already; all else must gain.
            if (isAllCrisp(picture(i)))
                continue;
            ++detailedOnes;
            for (const Qt::TransformationMode mode : {Qt::FastTransformation, Qt::SmoothTransformation}) {
                const QImage enlarged = picture(i).scaled(32, 32, Qt::IgnoreAspectRatio, mode);
                QVERIFY2(detailed != enlarged.convertToFormat(detailed.format()),
                    QByteArray::number(i).constData());
            }
        }
        QVERIFY(detailedOnes > drawings().size() / 2);
    }

    void straightLinesAreCrispAtBothRatios()
    {
        for (const int side : {16, 32}) {
            const QImage image = picture(indexOf(Pictogram::VerticalLine), side);
            const int row = side / 8;
            QList<int> alphas;
            for (int x = 0; x < side; ++x) {
                if (const int alpha = qAlpha(image.pixel(x, row)); alpha > 0)
                    alphas.append(alpha);
            }
            QCOMPARE(alphas, QList<int>(side / 16, 255));
        }
    }

    void everyUprightAndLevelLineCoversWholePixels()
    {
        // Between two pixels a line of one pixel smears over both. At twice the size it is as crisp as here.
        const auto isHalf = [](double place) { return place - std::floor(place) == 0.5; };
        const auto check = [&isHalf](QChar shape, QList<double> numbers) {
            if (shape == u'R')
                return isHalf(numbers[0]) && isHalf(numbers[1]) && isHalf(numbers[0] + numbers[2])
                    && isHalf(numbers[1] + numbers[3]);
            if (shape == u'B')
                return std::all_of(
                    numbers.cbegin(), numbers.cend(), [](double n) { return n == std::floor(n); });
            if (shape != u'P' && shape != u'G')
                return true;
            if (shape == u'G')
                numbers.append({numbers[0], numbers[1]});
            for (qsizetype i = 3; i < numbers.size(); i += 2) {
                if (numbers[i - 3] == numbers[i - 1] && !isHalf(numbers[i - 1]))
                    return false;
                if (numbers[i - 2] == numbers[i] && !isHalf(numbers[i]))
                    return false;
            }
            return true;
        };
        int lines = 0;
        for (int i = 0; i < std::ssize(drawings()); ++i) {
            const QString drawing = drawings().at(i);
            QChar shape;
            QList<double> numbers;
            const QStringList words = drawing.split(u' ');
            for (const QString& word : words + QStringList(u"m"_s)) {
                bool isNumber = false;
                const double number = word.toDouble(&isNumber);
                if (isNumber) {
                    numbers.append(number);
                    continue;
                }
                if (!shape.isNull()) {
                    QVERIFY2(check(shape, numbers), qPrintable(drawing));
                    ++lines;
                }
                shape = word[0].isUpper() ? word[0] : QChar();
                numbers.clear();
            }
        }
        QVERIFY(lines > 2 * drawings().size());
    }

    void disabledIconsAreFainter()
    {
        for (int i = 0; i < std::ssize(drawings()); ++i) {
            const QImage normal = picture(i);
            const QImage disabled = picture(i, 16, 1.0, QIcon::Disabled);
            for (int y = 0; y < normal.height(); ++y) {
                for (int x = 0; x < normal.width(); ++x) {
                    QVERIFY(qAlpha(disabled.pixel(x, y)) <= qAlpha(normal.pixel(x, y)));
                    QVERIFY(qAlpha(disabled.pixel(x, y)) < 200);
                }
            }
            QVERIFY(inkedPixels(disabled) > 0);
        }
    }

    void anOddRectangleGetsASquarePictureInItsMiddle()
    {
        QImage wide(48, 16, QImage::Format_ARGB32_Premultiplied);
        wide.fill(Qt::transparent);
        {
            QPainter painter(&wide);
            actionIcon(Pictogram::About).paint(&painter, wide.rect());
        }
        QCOMPARE(inkedPixels(wide.copy(0, 0, 16, 16)), 0);
        QCOMPARE(inkedPixels(wide.copy(32, 0, 16, 16)), 0);
        QCOMPARE(wide.copy(16, 0, 16, 16), picture(indexOf(Pictogram::About)));
        QVERIFY(picture(0, 1).size() == QSize(1, 1)); // any size is survived
    }

    /// All icons on one picture for a look at them: in the file named in ICON_SHEET, else in the private
    /// folder.
    void contactSheet()
    {
        const QString file = qEnvironmentVariable("ICON_SHEET", QDir::tempPath() + u"/icons.png"_s);
        constexpr int cell = 72;
        constexpr int columns = 16;
        const int rows = (static_cast<int>(drawings().size()) + columns - 1) / columns;
        QImage sheet(columns * cell, 2 * rows * cell, QImage::Format_RGB32);
        QPainter painter(&sheet);
        for (const bool dark : {false, true}) {
            useTheme(dark);
            painter.fillRect(0, dark ? rows * cell : 0, sheet.width(), rows * cell,
                QApplication::palette().color(QPalette::Window));
            for (int i = 0; i < std::ssize(drawings()); ++i) {
                const QPoint at((i % columns) * cell, (i / columns + (dark ? rows : 0)) * cell);
                painter.drawImage(at + QPoint(4, 20), picture(i));
                painter.drawImage(at + QPoint(24, 12), picture(i, 16, 2.0));
            }
        }
        painter.end();
        QVERIFY(sheet.save(file));
    }
};

TAVORAN_TEST(tst_ActionIcons)
#include "tst_ActionIcons.moc"
