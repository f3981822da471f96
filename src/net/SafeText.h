#pragma once

#include <QString>

/// Text that a server or the toolkit chose, made fit for a log, the Journal or a label: session tokens
/// are masked as in the log, and the text is cut after 4096 characters. It may still hold markup and
/// line breaks.
[[nodiscard]] QString safeText(const QString& text);

/// The text, cut with an ellipsis when it is longer than `longest` (at least 1); a character of two
/// code units is never cut in half.
[[nodiscard]] QString shortened(const QString& text, qsizetype longest);
