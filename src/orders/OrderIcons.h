#pragma once

#include <QIcon>

/// The pictures of the order window's left-hand list, drawn in code at 16 by 16 pixels.
enum class OrderIcon { Market, Limit, Stop, StopLimit, OneClick, TickChart, Depth, Minimize };

/// Each is drawn once and then shared: Qt caches pictures by icon, and would keep those of every window that
/// was ever opened.
[[nodiscard]] QIcon orderIcon(OrderIcon icon);
