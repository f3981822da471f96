#pragma once

#include <QString>

class QJsonObject;

/// What an account is called wherever accounts are listed: "Real" for the wallet, "Demo", or the
/// plan's name with " — Funded" or its challenge phase. One line of plain text; missing fields fall
/// back to "Account", one step and phase 1.
[[nodiscard]] QString accountLabel(const QJsonObject& account);
