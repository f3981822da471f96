#pragma once

#include <QString>

class QLabel;
class QWidget;

/// The text, as shownSentence() has it, as a tool tip that shows exactly these characters, markup included.
/// Empty stays empty.
[[nodiscard]] QString plainToolTip(const QString& text);

/// Makes the label show its text as plain text, whatever it holds.
void makePlain(QLabel* label);

/// Shows why something failed, as shownReason() has it, on a label that wraps. A word without an end gets
/// places to wrap at, so that it does not make the label, and with it the window, as wide as itself.
void showReason(QLabel& label, const QString& text);

/// A new plain-text label, owned by `parent`.
[[nodiscard]] QLabel* plainLabel(const QString& text, QWidget* parent = nullptr);
