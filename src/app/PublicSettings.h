#pragma once

#include <QString>
#include <QUrl>

class TerminalSettings;

/// Asks the platform for its public settings before sign-in and adopts the server address that they
/// name. Blocks for at most three seconds in all, also when the reply only drips; user input waits
/// meanwhile. Failures are logged and change nothing.
void adoptPublicSettings(TerminalSettings& settings);

/// The outcome of one fetch of public settings.
struct PublicSettings {
    QString terminalServerUrl; ///< trimmed; empty when the reply names none
    QString error;             ///< empty on success
};

/// Fetches and reads the public settings, waiting `milliseconds` in all. A redirect, a reply above
/// 1 MiB and a stalled transfer are errors; a reply that is not JSON yields no address.
[[nodiscard]] PublicSettings fetchPublicSettings(const QUrl& url, int milliseconds);

/// The address in the body of a public settings reply, trimmed; empty when there is none.
[[nodiscard]] QString terminalServerUrlIn(const QByteArray& body);
