#include "chart/layers/TextPainter.h"

#include "chart/ChartFixtures.h"
#include "support/TestMain.h"

#include <QPainter>

using namespace Qt::StringLiterals;

namespace {

/// The smallest rectangle that holds all that is not black.
QRect inkArea(const QImage& image)
{
    QRect area;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixelColor(x, y) != QColor(Qt::black))
                area |= QRect(x, y, 1, 1);
        }
    }
    return area;
}

} // namespace

/// What stored pictures cannot tell: they are painted with another font, and hold no odd texts.
class TestTextPainter final : public QObject {
    Q_OBJECT

    TextPainter m_texts;

private Q_SLOTS:
    void texts_are_eight_points_of_the_chart_font_data()
    {
        QTest::addColumn<int>("weight");
        QTest::addColumn<TextPainter::Weight>("face");
        QTest::newRow("normal") << 400 << TextPainter::Weight::Normal;
        QTest::newRow("bold") << 700 << TextPainter::Weight::Bold;
    }
    void texts_are_eight_points_of_the_chart_font()
    {
        QFETCH(int, weight);
        QFETCH(TextPainter::Weight, face);
        QFont font(u"Segoe UI"_s, 8);
        font.setWeight(static_cast<QFont::Weight>(weight));
        const QRect box(20, 20, 120, 18);
        QImage expected(160, 60, QImage::Format_RGB32);
        QImage image = expected;
        expected.fill(Qt::black);
        image.fill(Qt::black);
        QPainter plain(&expected);
        plain.setFont(font);
        plain.setPen(Qt::white);
        plain.drawText(box, Qt::AlignLeft | Qt::AlignVCenter, u"1.09876 Mg"_s);
        plain.end();
        QPainter painter(&image);
        m_texts.draw(painter, box, Qt::AlignLeft, u"1.09876 Mg"_s, QColor(Qt::white), face);
        painter.end();
        // Qt may round the middle of the box the other way.
        QCOMPARE(image.copy(inkArea(image)), expected.copy(inkArea(expected)));
        QCOMPARE(inkArea(image).left(), inkArea(expected).left());
        QVERIFY(std::abs(inkArea(image).top() - inkArea(expected).top()) <= 1);
    }

    void markup_in_server_texts_is_plain_text()
    {
        const auto inkOf = [this](const QString& text) {
            QImage image(400, 300, QImage::Format_RGB32);
            image.fill(Qt::black);
            QPainter painter(&image);
            m_texts.draw(painter, QRect(0, 100, 400, 20), Qt::AlignLeft, text, QColor(Qt::white));
            return fixtures::pixelsOtherThan(image, image.rect(), QColor(Qt::black));
        };
        QVERIFY(inkOf(u"<b>A</b>"_s) > inkOf(u"A"_s) + 20);
        QVERIFY(inkOf(u"<img src='file:///dev/zero'>"_s) > 100);
        QCOMPARE(inkOf(QString()), 0);
        QVERIFY(inkOf(QString(2'000'000, u'A')) > 0);
    }
};

TAVORAN_TEST(TestTextPainter)
#include "tst_TextPainter.moc"
