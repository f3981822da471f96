#pragma once

#include <QImage>
#include <QString>

/// The little arrows of a volume box. A style sheet can name nothing but files, so they are written to files.
enum class SpinArrow { Up, Down };

/// 9 by 6 pixels, transparent around a filled triangle.
[[nodiscard]] QImage spinArrowImage(SpinArrow arrow);

/// Writes the picture to the temporary folder, unless it is there already, and gives its path; empty when it
/// could not be written, or when something that is not the user's own plain file is in its place.
[[nodiscard]] QString writeSpinArrow(SpinArrow arrow);
