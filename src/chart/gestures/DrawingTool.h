#pragma once

#include "chart/data/Drawing.h"
#include "chart/data/DrawingKind.h"

#include <QString>

#include <optional>

/// Placing one drawing by one or two clicks. The points are anchors (see DrawingGeometry::anchor()).
class DrawingTool final {
public:
    /// Chooses the kind of the drawing to place by its key; points placed so far are dropped. An empty or
    /// unknown key ends placing.
    void choose(const QString& key);
    void cancel() { choose(QString()); }

    [[nodiscard]] bool isActive() const { return m_kind.has_value(); }
    /// The chosen key; empty while no tool is active.
    [[nodiscard]] const QString& key() const { return m_key; }
    [[nodiscard]] std::optional<DrawingKind> kind() const { return m_kind; }
    /// The point that waits for its second one.
    [[nodiscard]] const std::optional<DrawingPoint>& placed() const { return m_placed; }

    /// A click at a point. Gives the drawing when it is complete; the tool then stays chosen, without points,
    /// until it is cancelled. Gives nothing while no tool is active.
    [[nodiscard]] std::optional<Drawing> click(const DrawingPoint& point);

private:
    QString m_key;
    std::optional<DrawingKind> m_kind;
    std::optional<DrawingPoint> m_placed;
};
