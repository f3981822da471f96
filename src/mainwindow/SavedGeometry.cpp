#include "mainwindow/SavedGeometry.h"

#include "mainwindow/WindowPlacement.h"

#include <QDataStream>
#include <QIODevice>

namespace {

constexpr quint32 theMagic = 0x1D9D0CB;
constexpr quint16 geometryVersion = 3;

} // namespace

std::optional<SavedGeometry> SavedGeometry::read(const QByteArray& bytes)
{
    QDataStream stream(bytes);
    stream.setVersion(QDataStream::Qt_4_0);
    quint32 magic = 0;
    quint16 version = 0;
    quint16 minorVersion = 0;
    quint8 isMaximized = 0;
    quint8 isFullScreen = 0;
    SavedGeometry saved;
    stream >> magic >> version >> minorVersion >> saved.frame >> saved.normal >> saved.screen >> isMaximized
        >> isFullScreen >> saved.screenWidth >> saved.rectangle;
    if (stream.status() != QDataStream::Ok || magic != theMagic || version != geometryVersion)
        return std::nullopt;
    saved.maximized = isMaximized != 0;
    saved.fullScreen = isFullScreen != 0;
    return saved;
}

QByteArray SavedGeometry::bytes() const
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setVersion(QDataStream::Qt_4_0);
    stream << theMagic << geometryVersion << quint16(0) << frame << normal << screen << quint8(maximized)
           << quint8(fullScreen) << screenWidth << rectangle;
    return bytes;
}

QByteArray geometryOnScreen(const QByteArray& bytes, const QList<QRect>& screens, const QRect& otherwise)
{
    const std::optional<SavedGeometry> saved = SavedGeometry::read(bytes);
    if (!saved)
        return bytes;
    SavedGeometry placed = *saved;
    for (QRect* rect : {&placed.frame, &placed.normal, &placed.rectangle})
        *rect = placedOnScreen(rect->isValid() ? *rect : otherwise, screens);
    return placed.bytes();
}
