#pragma once

#include <QString>

/// Appends one line, "HH:mm:ss.zzz", two blanks and the message as shownEntry() has it, to the log file. The
/// entry is dropped silently when the file cannot be opened.
void appLog(const QString& message);

/// Appends "[SOURCE] MESSAGE". For what a person is shown as well: every failure that is shown goes through
/// here.
void logReport(const QString& source, const QString& message);

/// The log file: "/tavoran-terminal.log" in the user's temporary folder.
[[nodiscard]] QString logFilePath();

/// Sends every message of Qt to the log as "[qt:TYPE] TEXT" and nothing to the console.
void installMessageHandler();
