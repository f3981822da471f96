#pragma once

#include <QString>

/// Appends one line, "HH:mm:ss.zzz", two blanks and the message, to the log file. Line breaks and
/// other control characters of the message become blanks and known secrets are masked. A file that
/// cannot be opened drops the entry silently.
void appLog(const QString& message);

/// The same for what is shown to a person as well: "[SOURCE] MESSAGE". Every failure that is shown goes
/// through here.
void logReport(const QString& source, const QString& message);

/// The log file: "/tavoran-terminal.log" in the user's temporary folder.
[[nodiscard]] QString logFilePath();

/// Sends every toolkit message to the log as "[qt:TYPE] TEXT" and nothing to the console.
void installMessageHandler();

/// Makes `secret`, plain and percent-encoded, known to maskSecrets() and so to every later log line.
/// Texts shorter than six characters are ignored: masking them would garble ordinary words.
void hideFromLog(const QString& secret);

/// The text with "[hidden]" in place of every known secret.
[[nodiscard]] QString maskSecrets(const QString& text);
