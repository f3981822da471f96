#include "chart/gestures/ToolHint.h"

#include "chart/gestures/ChartGestures.h"

#include <QCoreApplication>

namespace {

const char* wordsOf(DrawingKind kind, bool isSecond)
{
    switch (kind) {
    case DrawingKind::HorizontalLine:
        return QT_TRANSLATE_NOOP("ToolHint", "Horizontal Line: click or press Enter at its price");
    case DrawingKind::VerticalLine:
        return QT_TRANSLATE_NOOP("ToolHint", "Vertical Line: click or press Enter at its time");
    case DrawingKind::TrendLine:
        return isSecond
            ? QT_TRANSLATE_NOOP("ToolHint", "Trend Line: click or press Enter at its second point")
            : QT_TRANSLATE_NOOP("ToolHint", "Trend Line: click or press Enter at its first point");
    case DrawingKind::Rectangle:
        return isSecond
            ? QT_TRANSLATE_NOOP("ToolHint", "Rectangle: click or press Enter at the opposite corner")
            : QT_TRANSLATE_NOOP("ToolHint", "Rectangle: click or press Enter at its first corner");
    case DrawingKind::Fibonacci:
        return isSecond
            ? QT_TRANSLATE_NOOP("ToolHint", "Fibonacci: click or press Enter at the point of level 100.0")
            : QT_TRANSLATE_NOOP("ToolHint", "Fibonacci: click or press Enter at the point of level 0.0");
    }
    return "";
}

} // namespace

QString toolHint(const ChartGestures& gestures)
{
    if (gestures.level().isActive() && gestures.isHeldByKeys())
        return QCoreApplication::translate(
            "ToolHint", "Level: arrow keys move it, Enter sends it, Escape puts it back");
    if (const std::optional<DrawingKind> kind = gestures.tool().kind()) {
        return QCoreApplication::translate("ToolHint", wordsOf(*kind, gestures.tool().placed().has_value()));
    }
    return gestures.ruler().isArmed()
        ? QCoreApplication::translate("ToolHint", "Crosshair: drag, or press Enter at both ends, to measure")
        : QString();
}
