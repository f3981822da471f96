#pragma once

#include "chart/data/Drawing.h"

#include <QList>

#include <optional>

/// The objects on a chart, later ones on top, at most one of them selected.
class DrawingList final {
public:
    [[nodiscard]] const QList<Drawing>& drawings() const { return m_drawings; }

    /// Replaces the objects. Of several selected ones the first stays so; when none is, the object that was
    /// selected before stays selected, found by its server id. Tells whether anything changed.
    bool replace(QList<Drawing> drawings);

    void append(const Drawing& drawing) { m_drawings.append(drawing); }

    /// Selects one object, or none for -1. Tells whether anything changed.
    bool select(qsizetype index);

    /// Takes the selected object out; nothing when none is selected.
    [[nodiscard]] std::optional<Drawing> takeSelected();

private:
    [[nodiscard]] qsizetype selectedIndex() const;

    QList<Drawing> m_drawings;
};
