#pragma once

#include <QString>

/// Every text that came from the server, a script or a file is data: these helpers keep it from
/// acting as markup, as a mnemonic or as a second line wherever it is shown.
///
/// The gate for whatever the server sends is the shown... functions: they hide known secrets and cut what is
/// endless, with an ellipsis. Only what is shown goes through them; what a request, a look-up or a comparison
/// names stays whole.

/// A symbol, kind, state or id: one line of at most 64 characters.
[[nodiscard]] QString shownName(const QString& text);

/// A description, reason or title, and a name that a person chose (an e-mail address, a host, a plan, a
/// script): one line of at most 300 characters.
[[nodiscard]] QString shownSentence(const QString& text);

/// Why something failed: at most 300 characters on at most four lines, blank ones left out. Empty for an
/// empty text only.
[[nodiscard]] QString shownReason(const QString& text);

/// A line of the log, the Journal or the Experts tab: one line of at most 8192 characters, which leaves room
/// for what a script may print.
[[nodiscard]] QString shownEntry(const QString& text);

/// The text, cut with an ellipsis when it is longer than `longest` (at least 1); a character of two
/// code units is never cut in half.
[[nodiscard]] QString shortened(const QString& text, qsizetype longest);

/// The text with each control character and line separator replaced by one blank.
[[nodiscard]] QString oneLine(const QString& text);

/// The text for a desktop notification: as shownReason() has it, with a space of no width between a "<" and a
/// letter or "/" after it. Some desktops would read these as a tag, and others show an escaped "<" as it is
/// written.
[[nodiscard]] QString balloonText(const QString& text);

/// The text for menus, tabs and buttons: one line, each "&" doubled.
[[nodiscard]] QString menuText(const QString& text);
