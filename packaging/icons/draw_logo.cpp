// Draws the pictures we ship: draw_logo OUTPUT_FOLDER writes the logo as logo.png, com.tavoran.Terminal.svg
// and com.tavoran.Terminal-SIZE.png, and the arrows of spin and combo boxes, arrow-up.png and arrow-down.png.
// Run it by hand after a change and commit the pictures.

#include "packaging/icons/Logo.h"

#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QPainter>

using namespace Qt::StringLiterals;

namespace {

constexpr int resourceSize = 256;

/// A grey that stands out in both looks.
QImage drawArrow(bool up)
{
    QImage image(9, 6, QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0x8a, 0x8a, 0x8a));
    const double base = up ? 5.0 : 1.0;
    painter.drawPolygon(QPolygonF{{1.0, base}, {8.0, base}, {4.5, up ? 1.0 : 5.0}});
    return image;
}

bool saveText(const QString& path, const QByteArray& text)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(text) == text.size();
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    const QStringList arguments = QGuiApplication::arguments();
    if (arguments.size() != 2)
        qFatal("usage: draw_logo OUTPUT_FOLDER");
    const QDir folder(arguments.at(1));
    bool saved = drawLogo(resourceSize).save(folder.filePath(u"logo.png"_s));
    saved &= drawArrow(true).save(folder.filePath(u"arrow-up.png"_s));
    saved &= drawArrow(false).save(folder.filePath(u"arrow-down.png"_s));
    saved &= saveText(folder.filePath(u"com.tavoran.Terminal.svg"_s), logoAsSvg());
    for (const int size : {16, 24, 32, 48, 64, 128, 256, 512})
        saved &= drawLogo(size).save(folder.filePath(u"com.tavoran.Terminal-%1.png"_s.arg(size)));
    return saved ? 0 : 1;
}
