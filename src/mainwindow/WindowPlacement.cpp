#include "mainwindow/WindowPlacement.h"

#include <QtGlobal>

namespace {

constexpr int collapsedWidth = 60;
constexpr int leastHeight = 41;

// Enough of the title bar to grab the window with the pointer.
constexpr int visibleWidth = 120;
constexpr int visibleHeight = 40;

// Sums of int coordinates overflow for absurd rectangles, so overlaps are measured in 64 bits.
qint64 overlap(qint64 fromA, qint64 lengthA, qint64 fromB, qint64 lengthB)
{
    return qMin(fromA + lengthA, fromB + lengthB) - qMax(fromA, fromB);
}

qint64 left(const QRect& r)
{
    return r.x();
}
qint64 top(const QRect& r)
{
    return r.y();
}
qint64 widthOf(const QRect& r)
{
    return qint64(r.right()) - r.left() + 1;
}
qint64 heightOf(const QRect& r)
{
    return qint64(r.bottom()) - r.top() + 1;
}

bool isUsableOn(const QRect& rect, const QRect& screen)
{
    return overlap(left(rect), widthOf(rect), left(screen), widthOf(screen)) >= visibleWidth
        && overlap(top(rect), heightOf(rect), top(screen), heightOf(screen)) >= visibleHeight
        && rect.top() >= screen.top() - visibleHeight;
}

} // namespace

bool docksLookSane(const DockFacts& facts)
{
    return !facts.windowMinimized && !facts.windowHidden                                //
        && !facts.leftHidden && !facts.leftFloating && facts.leftWidth > collapsedWidth //
        && !facts.bottomHidden && !facts.bottomFloating && facts.bottomHeight >= leastHeight;
}

QRect placedOnScreen(const QRect& wanted, const QList<QRect>& screens)
{
    if (screens.isEmpty())
        return wanted;
    QRect desktop;
    const QRect* home = nullptr;
    for (const QRect& screen : screens) {
        desktop = desktop.united(screen);
        if (!home && isUsableOn(wanted, screen))
            home = &screen;
    }
    if (home && widthOf(wanted) <= widthOf(desktop) && heightOf(wanted) <= heightOf(desktop))
        return wanted; // may span several screens
    if (!home)
        home = &screens.first();
    const qint64 width = qBound(qint64(1), widthOf(wanted), widthOf(*home));
    const qint64 height = qBound(qint64(1), heightOf(wanted), heightOf(*home));
    const qint64 x = qBound(left(*home), left(wanted), left(*home) + widthOf(*home) - width);
    const qint64 y = qBound(top(*home), top(wanted), top(*home) + heightOf(*home) - height);
    return {int(x), int(y), int(width), int(height)};
}

QRect fittedToScreen(const QRect& wanted, const QMargins& frame, const QSize& least, const QRect& available)
{
    if (!available.isValid())
        return wanted;
    const QRect room
        = QRect(available.topLeft(), available.size().shrunkBy(frame)).translated(frame.left(), frame.top());
    const QSize size = wanted.size().boundedTo(room.size().expandedTo(least));
    const auto inside = [](int from, int length, int roomFrom, int roomLength) {
        return qMax(roomFrom, qMin(from, roomFrom + roomLength - length));
    };
    return {QPoint(inside(wanted.x(), size.width(), room.x(), room.width()),
                inside(wanted.y(), size.height(), room.y(), room.height())),
        size};
}
