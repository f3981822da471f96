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

/// The rectangle of a window without its frame, made small enough to lie with it inside the part of its
/// screen that is `available`, but no smaller than `least`, and moved there. What fits as it is stays as it
/// is; what cannot fit shows its title bar and its upper left corner. Without a screen the rectangle comes
/// back as it is.
[[nodiscard]] QRect fittedToScreen(
    const QRect& wanted, const QMargins& frame, const QSize& least, const QRect& available);
