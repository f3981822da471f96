#include "chart/window/SpinArrows.h"

#include "app/base/PrivateFile.h"

#include <QBuffer>
#include <QPainter>
#include <QPolygonF>
#include <QStandardPaths>

using namespace Qt::StringLiterals;

namespace {

QByteArray pngOf(SpinArrow arrow)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    return buffer.open(QIODevice::WriteOnly) && spinArrowImage(arrow).save(&buffer, "PNG") ? bytes
                                                                                           : QByteArray();
}

/// Whether the file is the user's own and holds these bytes.
bool isContent(const QString& path, const QByteArray& bytes)
{
    QFile own;
    QFile file(path);
    return openPrivateFile(own, path, QIODevice::WriteOnly | QIODevice::Append) && own.size() == bytes.size()
        && file.open(QIODevice::ReadOnly) && file.readAll() == bytes;
}

bool writeContent(const QString& path, const QByteArray& bytes)
{
    QFile file;
    return openPrivateFile(file, path, QIODevice::WriteOnly | QIODevice::Truncate)
        && file.write(bytes) == bytes.size() && file.flush();
}

} // namespace

QImage spinArrowImage(SpinArrow arrow)
{
    constexpr QSize size(9, 6);
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0x1a, 0x1a, 0x1a));
    const double base = arrow == SpinArrow::Up ? 5.5 : 0.5;
    const double tip = arrow == SpinArrow::Up ? 0.5 : 5.5;
    painter.drawPolygon(QPolygonF({{0.5, base}, {8.5, base}, {4.5, tip}}));
    return image;
}

QString writeSpinArrow(SpinArrow arrow)
{
    const QString name = arrow == SpinArrow::Up ? u"tavoran_spin_up.png"_s : u"tavoran_spin_down.png"_s;
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::TempLocation);
    if (folder.isEmpty())
        return {};
    const QString path = folder + u'/' + name;
    static const QByteArray up = pngOf(SpinArrow::Up);
    static const QByteArray down = pngOf(SpinArrow::Down);
    const QByteArray& bytes = arrow == SpinArrow::Up ? up : down;
    if (bytes.isEmpty())
        return {};
    // Every chart asks, so a file that is right stays: to cut and rewrite it would make each of them wait for
    // the disk.
    return isContent(path, bytes) || writeContent(path, bytes) ? path : QString();
}
