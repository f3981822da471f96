#pragma once

#include <QString>

/// Makes `secret`, plain and percent-encoded, known to maskSecrets() and so to every later line of the log
/// and the Journal. Texts shorter than six characters are ignored: masking them would garble ordinary words.
void keepSecret(const QString& secret);

/// The text with "[hidden]" in place of every known secret.
[[nodiscard]] QString maskSecrets(const QString& text);

/// The most characters that one known secret takes; 0 when there is none. A text that is cut before it is
/// masked must keep so many characters more than wanted, or a part of a secret could stay.
[[nodiscard]] qsizetype longestSecret();
