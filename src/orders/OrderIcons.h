#pragma once

#include <QIcon>

/// The pictures of the order window's left-hand list, drawn in code at 16 by 16 pixels.
enum class OrderIcon { Market, Limit, Stop, StopLimit, OneClick, TickChart, Depth, Minimize };

[[nodiscard]] QIcon orderIcon(OrderIcon icon);
