#pragma once

#include <QIcon>

class QColor;

/// The small icons of the panes, drawn in code at 16 by 16 pixels for pixel ratios 1 and 2.

/// A filled triangle: the price rose, or fell.
[[nodiscard]] QIcon upArrowIcon(const QColor& color);
[[nodiscard]] QIcon downArrowIcon(const QColor& color);

/// One for each kind of entry in the Navigator, stroked in the given colour.
[[nodiscard]] QIcon folderIcon(const QColor& stroke);
[[nodiscard]] QIcon accountIcon(const QColor& stroke);
[[nodiscard]] QIcon indicatorIcon(const QColor& stroke);
[[nodiscard]] QIcon expertIcon(const QColor& stroke);
