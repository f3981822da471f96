#pragma once

#include <QByteArray>
#include <QRect>

#include <optional>

/// What QWidget::saveGeometry() wrote, taken apart so that it can be corrected: Qt restores any rectangle,
/// even one that no screen could ever show.
struct SavedGeometry final {
    QRect frame;
    QRect normal; ///< without the frame, as it was before the window was maximized
    qint32 screen = 0;
    bool maximized = false;
    bool fullScreen = false;
    qint32 screenWidth = 0;
    QRect rectangle; ///< without the frame

    /// Nothing for bytes that are not in Qt's present format.
    [[nodiscard]] static std::optional<SavedGeometry> read(const QByteArray& bytes);
    [[nodiscard]] QByteArray bytes() const;
};

/// The geometry with each rectangle moved onto one of the screens; `otherwise` takes the place of a rectangle
/// that makes no sense. Bytes in another format come back as they are.
[[nodiscard]] QByteArray geometryOnScreen(
    const QByteArray& bytes, const QList<QRect>& screens, const QRect& otherwise);
