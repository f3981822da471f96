#pragma once

#include <QList>
#include <QMargins>
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

/// A window's rectangle (without its frame), made small enough, but no smaller than `least`, to lie with its
/// frame inside the `available` part of its screen, and moved there. A window that fits already stays as it
/// is; one that cannot fit shows its title bar and its upper left corner. Without a screen the rectangle
/// comes back as it is.
[[nodiscard]] QRect fittedToScreen(
    const QRect& wanted, const QMargins& frame, const QSize& least, const QRect& available);
