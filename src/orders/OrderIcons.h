#pragma once

#include <QIcon>

/// The pictures of the order window's left-hand list, drawn in code at 16 by 16 pixels.
enum class OrderIcon { Market, Limit, Stop, StopLimit, OneClick, TickChart, Depth, Minimize };

/// Drawn once each and then shared: Qt caches what it paints by icon, and would keep the
/// pictures of every window ever opened.
[[nodiscard]] QIcon orderIcon(OrderIcon icon);
