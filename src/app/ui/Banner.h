#pragma once

#include <QPixmap>

/// The wordmark banner, `width` by `height` pixels: logo, name and subtitle.
[[nodiscard]] QPixmap renderBanner(int width, int height);

/// The start-up splash image, 480 by 280 pixels.
[[nodiscard]] QPixmap renderSplash();
