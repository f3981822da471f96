#include "chart/gestures/DrawingTool.h"

void DrawingTool::choose(const QString& key)
{
    m_kind = drawingKind(key);
    m_key = m_kind ? key : QString();
    m_placed.reset();
}

std::optional<Drawing> DrawingTool::click(const DrawingPoint& point)
{
    if (!m_kind)
        return std::nullopt;
    if (pointsNeeded(*m_kind) > 1 && !m_placed) {
        m_placed = point;
        return std::nullopt;
    }
    Drawing drawing;
    drawing.type = m_key;
    if (m_placed)
        drawing.points.append(*m_placed);
    drawing.points.append(point);
    m_placed.reset();
    return drawing;
}
