#include "chart/PicturedChart.h"
#include "chart/data/ChartColorRoles.h"
#include "chart/layers/LayerOrder.h"
#include "chart/layers/LayerStack.h"
#include "support/PictureCheck.h"
#include "support/TestMain.h"

#include <QApplication>

#include <QDir>

#include <algorithm>
#include <array>
#include <optional>
#include <vector>

using namespace Qt::StringLiterals;
using pictures::differenceOf;

namespace {

/// One stored picture: a layer alone over the background, or a whole chart.
struct Scene {
    const char* name;
    std::optional<Layer> layer; ///< absent for a whole chart
    int bars;
    ChartFrame (PicturedChart::*frame)();
    void (*change)(ChartFrame&);
};

void keep(ChartFrame&) { }

void asBars(ChartFrame& frame)
{
    frame.type = ChartType::Bars;
}

void asLine(ChartFrame& frame)
{
    frame.type = ChartType::Line;
}

ChartView viewOf(const ChartFrame& frame, double barWidth)
{
    ViewState state;
    state.barWidth = barWidth;
    state.rightBarIndex = frame.view.rightBarIndex();
    state.chartShift = frame.chartShift;
    return ChartView(frame.view.size(), state, frame.view.count(), false).withPrices(frame.view.prices());
}

/// The lower pane lies over the time axis.
void withoutPane(ChartFrame& frame)
{
    frame.view = viewOf(frame, frame.view.barWidth());
    frame.bars = frame.view.visible();
    frame.pointAt(frame.pointer);
}

/// Bars of one pixel, where candles are no more than wicks.
void thin(ChartFrame& frame)
{
    frame.view = viewOf(frame, ViewState::minBarWidth);
    frame.bars = frame.view.visible();
}

/// Four steps out in one colour, where rising candles differ by their inside alone.
void narrowInOneColor(ChartFrame& frame)
{
    frame.view = viewOf(frame, 3.376);
    frame.bars = frame.view.visible();
    frame.colors = blackOnWhiteColors();
}

void previewBox(ChartFrame& frame)
{
    frame.preview->kind = DrawingKind::Rectangle;
}

void rulerAtTheCorner(ChartFrame& frame)
{
    frame.ruler = Ruler::Span{{200, 90}, {280, 12}};
}

/// Each role in a colour that no other role has.
void ownColors(ChartFrame& frame)
{
    frame.colors = {QColor(0xf7, 0xf3, 0xe8), QColor(0xc9, 0xb8, 0x9a), QColor(0x40, 0x30, 0x20),
        QColor(0x00, 0x70, 0x60), QColor(0xb0, 0x10, 0x30), QColor(0x20, 0x20, 0xc0),
        QColor(0xd0, 0x90, 0x20)};
}

/// Of ordinary, scaled and dense screens.
constexpr std::array ratios{1.0, 1.25, 1.5, 2.0};

constexpr int many = PicturedChart::bars;
constexpr auto atRest = &PicturedChart::atRest;
constexpr auto inUse = &PicturedChart::inUse;

const std::vector<Scene> scenes{
    {"background", Layer::Background, many, atRest, &ownColors},
    {"empty-series", Layer::EmptySeries, 0, atRest, &keep},
    {"price-grid", Layer::PriceGrid, many, atRest, &keep},
    {"time-grid", Layer::TimeGrid, many, atRest, &withoutPane},
    {"volume", Layer::Volume, many, atRest, &keep},
    {"prices-candles", Layer::Prices, many, atRest, &keep},
    {"prices-bars", Layer::Prices, many, atRest, &asBars},
    {"prices-line", Layer::Prices, many, atRest, &asLine},
    {"prices-thin", Layer::Prices, many, atRest, &thin},
    {"prices-narrow", Layer::Prices, many, atRest, &narrowInOneColor},
    {"moving-averages", Layer::MovingAverages, many, atRest, &keep},
    {"drawings", Layer::Drawings, many, atRest, &keep},
    {"drawings-selected", Layer::Drawings, many, inUse, &keep},
    {"header", Layer::Header, many, atRest, &keep},
    {"average-legend", Layer::AverageLegend, many, atRest, &keep},
    {"trade-levels", Layer::TradeLevels, many, atRest, &keep},
    {"trade-level-dragged", Layer::TradeLevels, many, inUse, &keep},
    {"quotes", Layer::Quotes, many, atRest, &keep},
    {"crosshair", Layer::Crosshair, many, inUse, &withoutPane},
    {"ruler", Layer::Ruler, many, inUse, &keep},
    {"ruler-at-the-corner", Layer::Ruler, many, inUse, &rulerAtTheCorner},
    {"preview-line", Layer::DrawingPreview, many, inUse, &keep},
    {"preview-box", Layer::DrawingPreview, many, inUse, &previewBox},
    {"rsi-pane", Layer::IndicatorPanes, many, atRest, &keep},
    {"scroll-button", Layer::ScrollButton, many, inUse, &keep},
    {"shift-marker", Layer::ShiftMarker, many, atRest, &keep},
    {"border", Layer::Border, many, atRest, &keep},
    {"chart-candles", {}, many, atRest, &keep},
    {"chart-bars", {}, many, atRest, &asBars},
    {"chart-line", {}, many, atRest, &asLine},
    {"chart-in-use", {}, many, inUse, &withoutPane},
    {"chart-own-colors", {}, many, inUse, &ownColors},
    {"chart-empty", {}, 0, inUse, &keep},
};

void paintLayer(Layer layer, QPainter& painter, const ChartFrame& frame)
{
    for (const LayerEntry& entry : layerOrder) {
        if (entry.layer == layer)
            entry.paint(painter, frame);
    }
}

QImage pictureOf(const Scene& scene, qreal ratio)
{
    PicturedChart chart(scene.bars);
    ChartFrame frame = (chart.*scene.frame)();
    scene.change(frame);
    if (!scene.layer)
        return PicturedChart::painted(frame, ratio, &layerstack::paintAll);
    return PicturedChart::painted(frame, ratio, [&](QPainter& painter, const ChartFrame& content) {
        layers::paintBackground(painter, content);
        paintLayer(*scene.layer, painter, content);
    });
}

QString fileName(const Scene& scene, qreal ratio)
{
    return QString::fromLatin1(scene.name) + (ratio == 1.0 ? QString() : u"@%1x"_s.arg(ratio));
}

pictures::PictureFolder folder()
{
    return {QStringLiteral(PICTURE_FOLDER), QStringLiteral(FAILED_PICTURE_FOLDER)};
}

/// Storing on request, switched for one test.
class Updating final {
    Q_DISABLE_COPY_MOVE(Updating)

public:
    explicit Updating(bool on) { qputenv(variable, on ? "1" : "0"); }
    ~Updating() { qputenv(variable, m_before); }

private:
    static constexpr const char* variable = "TAVORAN_UPDATE_PICTURES";
    QByteArray m_before = qgetenv(variable);
};

} // namespace

class TestChartPictures final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY2(
            pictures::useBundledFont(u"Segoe UI"_s), "the bundled font does not stand for the chart's font");
    }

    void layers_and_charts_look_as_stored_data()
    {
        QTest::addColumn<qsizetype>("scene");
        QTest::addColumn<qreal>("ratio");
        for (std::size_t i = 0; i < scenes.size(); ++i) {
            for (const qreal ratio : ratios) {
                QTest::newRow(qUtf8Printable(fileName(scenes[i], ratio)))
                    << static_cast<qsizetype>(i) << ratio;
            }
        }
    }
    void layers_and_charts_look_as_stored()
    {
        QFETCH(const qsizetype, scene);
        QFETCH(const qreal, ratio);
        const Scene& shown = scenes[static_cast<std::size_t>(scene)];
        const QString wrong = folder().check(fileName(shown, ratio), pictureOf(shown, ratio));
        QVERIFY2(wrong.isEmpty(), qUtf8Printable(wrong));
    }

    void every_layer_and_chart_type_has_a_picture()
    {
        for (const LayerEntry& entry : layerOrder) {
            QVERIFY2(std::any_of(scenes.begin(), scenes.end(),
                         [&](const Scene& scene) { return scene.layer == entry.layer; }),
                qUtf8Printable(QString::number(static_cast<int>(entry.layer))));
        }
        for (const ChartType type : {ChartType::Candles, ChartType::Bars, ChartType::Line}) {
            QVERIFY(std::any_of(scenes.begin(), scenes.end(), [&](const Scene& scene) {
                ChartFrame frame;
                frame.preview = ChartFrame::Preview();
                scene.change(frame);
                return !scene.layer && frame.type == type;
            }));
        }
    }

    void every_stored_picture_belongs_to_a_scene()
    {
        QStringList expected;
        for (const Scene& scene : scenes) {
            for (const qreal ratio : ratios)
                expected << fileName(scene, ratio) + u".png"_s;
        }
        expected.sort();
        QStringList stored = QDir(QStringLiteral(PICTURE_FOLDER)).entryList({u"*.png"_s}, QDir::Files);
        stored.sort();
        QCOMPARE(stored, expected);
    }

    void a_picture_of_a_layer_shows_the_layer_data() { layers_and_charts_look_as_stored_data(); }
    void a_picture_of_a_layer_shows_the_layer()
    {
        QFETCH(const qsizetype, scene);
        QFETCH(const qreal, ratio);
        const Scene& shown = scenes[static_cast<std::size_t>(scene)];
        const QImage stored = folder().stored(fileName(shown, ratio));
        QCOMPARE(stored.size(), QSize(360, 240) * ratio);
        QImage without(stored.size(), QImage::Format_RGB32);
        without.fill(shown.layer == Layer::Background ? QColor(Qt::magenta) : QColor(Qt::black));
        // Far more than what may differ unnoticed.
        QVERIFY(differenceOf(stored, without).pixels >= 18 * ratio * ratio);
    }

    void a_small_change_is_noticed_and_shown_data()
    {
        QTest::addColumn<QRect>("mark");
        QTest::addColumn<QColor>("color");
        QTest::newRow("handle of an object") << QRect(20, 20, 6, 6) << QColor(0xe0, 0xe0, 0xe0);
        QTest::newRow("part of a line") << QRect(40, 100, 12, 1) << QColor(0x23, 0x23, 0x23);
        QTest::newRow("other shade of a ground") << QRect(0, 0, 360, 200) << QColor(3, 3, 3);
    }
    void a_small_change_is_noticed_and_shown()
    {
        QFETCH(const QRect, mark);
        QFETCH(const QColor, color);
        const Updating updating(false);
        QTemporaryDir place;
        const QString stored = place.path();
        const QString failed = place.filePath(u"failed"_s);
        QImage picture(360, 240, QImage::Format_RGB32);
        picture.fill(Qt::black);
        QVERIFY(picture.save(place.filePath(u"a.png"_s)));
        const pictures::PictureFolder folder(stored, failed);
        QCOMPARE(folder.check(u"a"_s, picture), QString());
        QVERIFY(!QDir(failed).exists());

        QPainter(&picture).fillRect(mark, color);
        const QString wrong = folder.check(u"a"_s, picture);
        QVERIFY(wrong.contains(QString::number(mark.width() * mark.height())));
        QVERIFY(wrong.contains(failed + u"/a-difference.png"_s));
        QCOMPARE(QImage(failed + u"/a-actual.png"_s).convertToFormat(QImage::Format_RGB32), picture);
        QVERIFY(!QImage(failed + u"/a-expected.png"_s).isNull());
        const QImage difference(failed + u"/a-difference.png"_s);
        QCOMPARE(difference.size(), picture.size());
        QCOMPARE(fixtures::pixelsOf(difference, mark, QColor(Qt::magenta)), mark.width() * mark.height());
        QCOMPARE(fixtures::pixelsOf(difference, difference.rect(), QColor(Qt::magenta)),
            mark.width() * mark.height());
    }

    void a_missing_picture_is_told()
    {
        const Updating updating(false);
        QTemporaryDir place;
        QImage picture(20, 20, QImage::Format_RGB32);
        picture.fill(Qt::red);
        const QString wrong
            = pictures::PictureFolder(place.path(), place.filePath(u"failed"_s)).check(u"new"_s, picture);
        QVERIFY(wrong.contains(u"no picture is stored"_s));
        QVERIFY(!QImage(place.filePath(u"failed/new-actual.png"_s)).isNull());
        QVERIFY(!QFile::exists(place.filePath(u"new.png"_s)));
    }

    void a_picture_of_another_size_is_told()
    {
        const Updating updating(false);
        QTemporaryDir place;
        QImage picture(20, 20, QImage::Format_RGB32);
        picture.fill(Qt::red);
        QVERIFY(picture.save(place.filePath(u"a.png"_s)));
        const pictures::PictureFolder folder(place.path(), place.filePath(u"failed"_s));
        const QString wrong = folder.check(u"a"_s, picture.copy(0, 0, 20, 19));
        QVERIFY(wrong.startsWith(u"20 pixels"_s));
    }

    void pictures_are_stored_on_request()
    {
        QTemporaryDir place;
        QImage picture(20, 20, QImage::Format_RGB32);
        picture.fill(Qt::red);
        const pictures::PictureFolder folder(place.path(), place.filePath(u"failed"_s));
        const Updating updating(true);
        QCOMPARE(folder.check(u"a"_s, picture), QString());
        QCOMPARE(folder.stored(u"a"_s).convertToFormat(QImage::Format_RGB32), picture);
        QVERIFY(!QFile::exists(place.filePath(u"failed"_s)));
    }
};

int main(int argc, char** argv)
{
    usePrivateFolders();
    pictures::useFixedTextRendering();
    QApplication application(argc, argv);
    TestChartPictures test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_ChartPictures.moc"
