#pragma once

#include <QImage>
#include <QString>

/// Looks of a widget, compared with pictures that are kept in the source tree.
namespace pictures {

/// Makes texts look the same on every computer: unhinted, 96 dots an inch, and whatever font is asked for is
/// the bundled one. Call before any QApplication; useBundledFont() completes it afterwards.
void useFixedTextRendering();

/// Lets the bundled font stand for `family`; false when an installed font of that name is in the way.
[[nodiscard]] bool useBundledFont(const QString& family);

/// Where two pictures are not the same.
struct Difference {
    int pixels = 0; ///< that differ by more than rounding does; those beyond the smaller picture count
    QImage picture; ///< the expected one, dimmed, with those pixels in bright magenta
};
[[nodiscard]] Difference differenceOf(const QImage& expected, const QImage& actual);

/// A folder of stored pictures and the one that shows what went wrong.
class PictureFolder final {
public:
    /// `stored` holds "<name>.png"; expected, actual and difference of a failed one are written to `failed`.
    PictureFolder(const QString& stored, const QString& failed);

    /// Compares with the stored picture of that name. Empty when they look the same, else what is wrong and
    /// where to look. A few pixels may differ, one thin line or one small mark may not. With
    /// TAVORAN_UPDATE_PICTURES=1 in the environment a picture that differs or is missing is stored instead.
    [[nodiscard]] QString check(const QString& name, const QImage& actual) const;

    /// The stored picture; null when there is none.
    [[nodiscard]] QImage stored(const QString& name) const;

private:
    [[nodiscard]] QString storedPath(const QString& name) const;
    [[nodiscard]] QString explain(const QString& name, const QImage& expected, const QImage& actual) const;

    QString m_stored;
    QString m_failed;
};

} // namespace pictures
