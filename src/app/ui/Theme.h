#pragma once

#include <QColor>
#include <QFont>
#include <QIcon>

class QApplication;

/// Gives the application the look of the current setting: style, palette and style sheet, at once in
/// every window that is open.
void applyTheme(QApplication& application);

/// Stores the choice; the caller then calls applyTheme().
void setTheme(bool dark);

/// The stored choice.
[[nodiscard]] bool isDarkTheme();

/// Colours of the theme in force, read from the settings at each call: keep brushes and icons made of
/// them until the theme changes.
[[nodiscard]] QColor themeTextColor();
[[nodiscard]] QColor themeUpColor();
[[nodiscard]] QColor themeDownColor();
[[nodiscard]] QColor themeGreenColor();
[[nodiscard]] QColor themeMutedColor();
/// Of prices that may not hold any more; legible on the ground of a list.
[[nodiscard]] QColor themeStaleColor();
/// What goes with it in a list, since the colour of a selected row covers any other: a slant and nothing
/// else.
[[nodiscard]] QFont staleFont();
[[nodiscard]] QColor themeBackdropColor();

/// The application icon, loaded once.
[[nodiscard]] QIcon appIcon();

/// Colours that are the same in both themes.
namespace fixedColors {
inline constexpr QColor profitBlue(0x3b, 0xa7, 0xff);
inline constexpr QColor lossRed(0xff, 0x4a, 0x4a);
inline constexpr QColor grey(0x8a, 0x8a, 0x8a);
inline constexpr QColor neutral(0xdc, 0xdc, 0xdc);
inline constexpr QColor splashBackground(0x0b, 0x12, 0x20);
inline constexpr QColor splashBorder(0x45, 0x45, 0x45);
inline constexpr QColor subtitle(0x8a, 0x94, 0xa6);
inline constexpr QColor wordmarkStart(0x2d, 0xd4, 0xbf);
inline constexpr QColor wordmarkEnd(0x25, 0x63, 0xeb);
} // namespace fixedColors
