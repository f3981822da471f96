#pragma once

#include <QString>

class QLabel;
class QWidget;

/// Every text that came from the server, a script or a file is data: these helpers keep it from
/// acting as markup, as a mnemonic or as a second line wherever it is shown.

/// The text with each control character and line separator replaced by one blank.
[[nodiscard]] QString oneLine(const QString& text);

/// The text as a tool tip that shows exactly these characters, markup included. Empty stays empty.
[[nodiscard]] QString plainToolTip(const QString& text);

/// The text as a desktop notification, as given but for what looks like a tag, a "<" before a letter or
/// "/": a space without width stands between them. Some desktops read markup there, and others show
/// escapes as they are.
[[nodiscard]] QString balloonText(const QString& text);

/// The text for menus, tabs and buttons: one line, each "&" doubled.
[[nodiscard]] QString menuText(const QString& text);

/// Makes the label show its text as plain text, whatever it holds.
void makePlain(QLabel* label);

/// A new plain-text label, owned by `parent`.
[[nodiscard]] QLabel* plainLabel(const QString& text, QWidget* parent = nullptr);
