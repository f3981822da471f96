#pragma once

#include "chart/data/Drawing.h"

#include <QList>

#include <optional>

/// The drawings on a chart, later ones on top, at most one of them selected.
class DrawingList final {
public:
    [[nodiscard]] const QList<Drawing>& drawings() const { return m_drawings; }

    /// Replaces the drawings. If several come selected, the first one stays selected; if none does, the one
    /// that was selected before, found by its server id. Tells whether anything changed.
    bool replace(QList<Drawing> drawings);

    void append(const Drawing& drawing) { m_drawings.append(drawing); }

    /// Selects one drawing, or none for -1. Tells whether anything changed.
    bool select(qsizetype index);

    /// Takes the selected drawing out; nothing when none is selected.
    [[nodiscard]] std::optional<Drawing> takeSelected();

private:
    [[nodiscard]] qsizetype selectedIndex() const;

    QList<Drawing> m_drawings;
};
