#include "mainwindow/Pictograms.h"

#include "app/ui/Theme.h"

#include <QPainter>

#include <array>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

// In the order of the enumeration.
constexpr std::array<const char*, static_cast<std::size_t>(Pictogram::Count)> drawings{
    /* NewChart */ "m P 2.5 1.5 2.5 13.5 8.5 13.5 b P 6.5 2.5 6.5 11.5 B 5 4 3 5 g B 9 11 6 2 B 11 9 2 6",
    /* NewOrder */
    "m P 7.5 14.5 2.5 14.5 2.5 1.5 9.5 1.5 12.5 4.5 12.5 7.5 P 5 5.5 10 5.5 P 5 8.5 8 8.5 "
    "g B 9 11 6 2 B 11 9 2 6",
    /* Exit */ "m P 8.5 1.5 2.5 1.5 2.5 14.5 8.5 14.5 r P 6 7.5 14.5 7.5 P 11 4 14.5 7.5 11 11",
    /* MarketWatch */
    "m R 1.5 1.5 13 13 P 1.5 4.5 14.5 4.5 P 9 7.5 13 7.5 P 9 11.5 13 11.5 b F 3 9 7 9 5 6 r F 3 10.5 7 10.5 "
    "5 13.5",
    /* Navigator */ "m R 1.5 1.5 4 4 P 3.5 5.5 3.5 12.5 8 12.5 P 3.5 7.5 8 7.5 b B 8 6 6 3 B 8 11 6 3",
    /* Toolbox */ "b B 2 9 12 5 m R 1.5 1.5 13 13 P 1.5 8.5 14.5 8.5 P 5.5 8.5 5.5 11.5 1.5 11.5",
    /* PopupPrices */
    "m P 4.5 3.5 4.5 1.5 14.5 1.5 14.5 10.5 12.5 10.5 R 1.5 5.5 9 9 b P 3.5 8.5 8.5 8.5 r P 3.5 11.5 8.5 "
    "11.5",
    /* RestoreLayout */
    "m R 1.5 1.5 13 13 P 5.5 1.5 5.5 10.5 P 1.5 10.5 14.5 10.5 g P 10.5 3 8 5.5 10.5 8 P 8 5.5 13 5.5",
    /* LightTheme */
    "y D 4.5 4.5 6 6 P 7.5 0.5 7.5 2.5 P 7.5 12.5 7.5 14.5 P 0.5 7.5 2.5 7.5 P 12.5 7.5 14.5 7.5 "
    "P 2.5 2.5 4 4 P 11 11 12.5 12.5 P 12.5 2.5 11 4 P 4 11 2.5 12.5",
    /* DarkTheme */
    "b F 9.5 1.5 6 2.5 3.5 5 2.5 8 3.5 11 6 13.5 9.5 14.5 12 14 13.5 13 10.5 12 8.5 10 7.7 8 8 5 9.5 1.5",
    /* AlgoTrading */
    "m R 2.5 5.5 10 8 P 7.5 5.5 7.5 3.5 D 6.3 1 2.4 2.4 P 0.5 8.5 0.5 10.5 P 14.5 8.5 14.5 10.5 "
    "g F 6 7 6 12 10.5 9.5",
    /* Cursor */ "m F 4 1.5 4 12.5 6.8 9.8 9 14.2 10.8 13.3 8.6 9 12.3 9",
    /* Crosshair */
    "m P 7.5 1 7.5 5.5 P 7.5 9.5 7.5 14 P 1 7.5 5.5 7.5 P 9.5 7.5 14 7.5 b E 3.5 3.5 8 8 D 6.5 6.5 2 2",
    /* HorizontalLine */ "m P 1 7.5 15 7.5 b B 6 6 3 3",
    /* VerticalLine */ "m P 7.5 1 7.5 15 b B 6 6 3 3",
    /* TrendLine */ "m P 2.5 13.5 13.5 2.5 b B 1 12 3 3 B 12 1 3 3",
    /* Rectangle */ "m R 2.5 4.5 11 7 b B 1 3 3 3 B 12 10 3 3",
    /* Fibonacci */
    "m P 1 2.5 15 2.5 P 1 6.5 15 6.5 P 1 9.5 15 9.5 P 1 13.5 15 13.5 y P 2.5 13.5 13.5 2.5",
    /* Candlesticks */ "b P 4.5 1.5 4.5 13.5 B 3 4 3 7 r P 11.5 2.5 11.5 14.5 B 10 5 3 6",
    /* Bars */
    "b P 4.5 1.5 4.5 13.5 P 2 10.5 4.5 10.5 P 4.5 4.5 7 4.5 r P 11.5 2.5 11.5 14.5 P 9 5.5 11.5 5.5 "
    "P 11.5 11.5 14 11.5",
    /* Line */ "m P 1.5 1.5 1.5 14.5 14.5 14.5 b P 3 11.5 6 6.5 9 9 14.5 2.5",
    /* AutoScroll */
    "m P 14.5 1.5 14.5 14.5 b P 1.5 8.5 4.5 4.5 7.5 6.5 12.5 1.5 g P 2 12.5 12 12.5 P 9.5 10 12 12.5 9.5 15",
    /* ChartShift */
    "m P 14.5 1.5 14.5 14.5 P 9.5 1.5 9.5 4 P 9.5 6 9.5 8.5 b P 1.5 8.5 3.5 4.5 5.5 6.5 8.5 2.5 "
    "r P 13 12.5 4 12.5 P 6.5 10 4 12.5 6.5 15",
    /* ZoomIn */ "m E 1.5 1.5 10 10 P 10 10 14.5 14.5 g P 6.5 4 6.5 9 P 4 6.5 9 6.5",
    /* ZoomOut */ "m E 1.5 1.5 10 10 P 10 10 14.5 14.5 r P 4 6.5 9 6.5",
    /* Refresh */ "g A 2.5 2.5 11 11 50 285 F 13.8 1 13.8 6.4 8.6 5.6",
    /* DataWindow */
    "m R 1.5 1.5 13 13 P 1.5 4.5 14.5 4.5 P 3.5 7.5 6.5 7.5 P 3.5 9.5 6.5 9.5 P 3.5 11.5 6.5 11.5 "
    "b P 8.5 7.5 12.5 7.5 P 8.5 9.5 12.5 9.5 P 8.5 11.5 12.5 11.5",
    /* Properties */
    "m P 1.5 3.5 14.5 3.5 P 1.5 7.5 14.5 7.5 P 1.5 12.5 14.5 12.5 b B 9 2 3 3 B 3 6 3 3 B 10 11 3 3",
    /* Specification */
    "m G 3.5 1.5 9.5 1.5 12.5 4.5 12.5 14.5 3.5 14.5 P 9.5 1.5 9.5 4.5 12.5 4.5 b B 7 6 2 2 B 7 9 2 4",
    /* DepthOfMarket */
    "r B 2 1 12 2 B 5 4 9 2 m P 1 7.5 15 7.5 b B 5 9 9 2 B 2 12 12 2",
    /* ExpertsFolder */
    "y G 1.5 13.5 1.5 3.5 6 3.5 7.5 5.5 14.5 5.5 14.5 13.5 m R 5.5 8.5 4 3 P 7.5 7.5 7.5 8.5",
    /* Tile */
    "m R 1.5 1.5 13 13 P 7.5 1.5 7.5 14.5 P 1.5 7.5 14.5 7.5 b B 2 2 5 2 B 8 2 6 2 B 2 8 5 2 B 8 8 6 2",
    /* Cascade */
    "m R 1.5 1.5 8 7 P 9.5 4.5 11.5 4.5 11.5 11.5 4.5 11.5 4.5 8.5 P 11.5 7.5 14.5 7.5 14.5 14.5 7.5 14.5 "
    "7.5 11.5 b B 2 2 7 2",
    /* Close */ "m R 1.5 1.5 13 13 r P 5 5 11 11 P 11 5 5 11",
    /* Guide */
    "m G 1.5 2.5 6.5 2.5 7.5 3.5 8.5 2.5 13.5 2.5 13.5 12.5 8.5 12.5 7.5 13.5 6.5 12.5 1.5 12.5 "
    "P 7.5 3.5 7.5 13.5 b P 3.5 5.5 5.5 5.5 P 3.5 8.5 5.5 8.5 P 9.5 5.5 11.5 5.5 P 9.5 8.5 11.5 8.5",
    /* Updates */ "g P 7.5 1.5 7.5 10 P 4 6.5 7.5 10 11 6.5 m P 1.5 10.5 1.5 14.5 13.5 14.5 13.5 10.5",
    /* About */ "b E 1.5 1.5 13 13 B 7 4 2 2 B 7 7 2 5",
    /* M1 */ "m P 3.5 11.5 3.5 4.5 6 8 8.5 4.5 8.5 11.5 P 10.5 6 12.5 4.5 12.5 11.5",
    /* M5 */
    "m P 2.5 11.5 2.5 4.5 5 8 7.5 4.5 7.5 11.5 P 13.5 4.5 10.5 4.5 10.5 7.5 13.5 7.5 13.5 11.5 10.5 11.5",
    /* M15 */
    "m P 0.5 11.5 0.5 4.5 2.5 8 4.5 4.5 4.5 11.5 P 6.5 6 8.5 4.5 8.5 11.5 "
    "P 14.5 4.5 11.5 4.5 11.5 7.5 14.5 7.5 14.5 11.5 11.5 11.5",
    /* H1 */ "m P 3.5 4.5 3.5 11.5 P 3.5 7.5 8.5 7.5 P 8.5 4.5 8.5 11.5 P 10.5 6 12.5 4.5 12.5 11.5",
    /* H4 */
    "m P 1.5 4.5 1.5 11.5 P 1.5 7.5 6.5 7.5 P 6.5 4.5 6.5 11.5 P 9.5 4.5 9.5 8.5 14 8.5 P 12.5 4.5 12.5 11.5",
    /* D1 */ "m G 3.5 4.5 3.5 11.5 6.5 11.5 8.5 9.5 8.5 6.5 6.5 4.5 P 10.5 6 12.5 4.5 12.5 11.5",
    /* W1 */ "m P 1.5 4.5 3 11.5 5 7 7 11.5 8.5 4.5 P 10.5 6 12.5 4.5 12.5 11.5",
    /* MN */ "m P 1.5 11.5 1.5 4.5 4 8 6.5 4.5 6.5 11.5 P 9.5 11.5 9.5 4.5 13.5 11.5 13.5 4.5",
};

QColor inkColor(QChar ink)
{
    switch (ink.unicode()) {
    case 'm':
        return themeMutedColor();
    case 'b':
        return themeUpColor();
    case 'r':
        return themeDownColor();
    case 'g':
        return themeGreenColor();
    case 'y':
        return isDarkTheme() ? QColor(0xf0, 0xb4, 0x29) : QColor(0xa8, 0x6b, 0x00);
    default:
        return {};
    }
}

QPolygonF points(const QList<double>& numbers)
{
    QPolygonF polygon;
    for (qsizetype i = 0; i + 1 < numbers.size(); i += 2)
        polygon.append({numbers[i], numbers[i + 1]});
    return polygon;
}

bool drawShape(QPainter& painter, QChar shape, const QColor& ink, const QList<double>& numbers)
{
    const bool outline = shape == u'P' || shape == u'G' || shape == u'F';
    const qsizetype wanted = shape == u'A' ? 6 : 4;
    if (outline ? numbers.size() < 4 || numbers.size() % 2 != 0 : numbers.size() != wanted)
        return false;

    const bool filled = shape == u'F' || shape == u'B' || shape == u'D';
    painter.setPen(filled ? QPen(Qt::NoPen) : QPen(ink, 1.0, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
    painter.setBrush(filled ? QBrush(ink) : QBrush(Qt::NoBrush));
    const auto rectangle = [&numbers] { return QRectF(numbers[0], numbers[1], numbers[2], numbers[3]); };
    constexpr double stepsPerDegree = 16.0;
    switch (shape.unicode()) {
    case 'P':
        painter.drawPolyline(points(numbers));
        return true;
    case 'G':
    case 'F':
        painter.drawPolygon(points(numbers));
        return true;
    case 'R':
    case 'B':
        painter.drawRect(rectangle());
        return true;
    case 'E':
    case 'D':
        painter.drawEllipse(rectangle());
        return true;
    case 'A':
        painter.drawArc(
            rectangle(), qRound(numbers[4] * stepsPerDegree), qRound(numbers[5] * stepsPerDegree));
        return true;
    default:
        return false;
    }
}

} // namespace

QLatin1StringView pictogramDrawing(Pictogram pictogram)
{
    const auto index = static_cast<std::size_t>(pictogram);
    return QLatin1StringView(index < drawings.size() ? drawings[index] : "");
}

bool paintDrawing(QPainter& painter, QLatin1StringView drawing)
{
    QColor ink = themeMutedColor();
    QChar shape;
    QList<double> numbers;
    const auto finish = [&] {
        return shape.isNull()
            || drawShape(painter, std::exchange(shape, QChar()), ink, std::exchange(numbers, {}));
    };
    const QString words = drawing;
    for (const QStringView word : QStringView(words).split(u' ', Qt::SkipEmptyParts)) {
        bool isNumber = false;
        const double number = word.toDouble(&isNumber);
        if (isNumber) {
            numbers.append(number);
            continue;
        }
        if (word.size() != 1 || !finish())
            return false;
        if (word[0].isUpper())
            shape = word[0];
        else if (ink = inkColor(word[0]); !ink.isValid())
            return false;
    }
    return finish();
}
