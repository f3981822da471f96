#pragma once

#include <QString>

#include <optional>

/// Why an order that a script gives cannot be carried out whatever the server says: lots or levels that are
/// no usable numbers. Absent for one that can be sent. Prices of 0 mean no level.
[[nodiscard]] std::optional<QString> reasonToIgnore(double lots, double stopLoss, double takeProfit);
