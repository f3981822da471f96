#pragma once

#include <QList>
#include <QRect>

/// What the dock snapshot needs to know about the window, in pixels.
struct DockFacts final {
    bool windowMinimized = false;
    bool windowHidden = false;
    bool leftHidden = false;
    bool leftFloating = false;
    int leftWidth = 0;
    bool bottomHidden = false;
    bool bottomFloating = false;
    int bottomHeight = 0;
};

/// True when the docks are worth remembering: on show, docked, and not collapsed.
[[nodiscard]] bool docksLookSane(const DockFacts& facts);

/// The rectangle, made no larger than the screen it lies on (else the first one) and moved inside
/// that screen, unless a usable part of it is on show already. Survives absurd sizes and positions;
/// without screens the rectangle comes back as it is.
[[nodiscard]] QRect placedOnScreen(const QRect& wanted, const QList<QRect>& screens);
