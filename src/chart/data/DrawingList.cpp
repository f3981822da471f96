#include "chart/data/DrawingList.h"

#include <algorithm>
#include <utility>

namespace {

template <typename Predicate> qsizetype firstOf(const QList<Drawing>& drawings, Predicate matches)
{
    const auto found = std::find_if(drawings.begin(), drawings.end(), matches);
    return found == drawings.end() ? -1 : static_cast<qsizetype>(found - drawings.begin());
}

bool setSelected(QList<Drawing>& drawings, qsizetype index)
{
    bool changed = false;
    for (qsizetype i = 0; i < drawings.size(); ++i) {
        if (std::as_const(drawings)[i].selected == (i == index))
            continue;
        drawings[i].selected = i == index;
        changed = true;
    }
    return changed;
}

} // namespace

bool DrawingList::replace(QList<Drawing> drawings)
{
    qsizetype selected = firstOf(drawings, [](const Drawing& drawing) { return drawing.selected; });
    if (const qsizetype before = selectedIndex(); selected < 0 && before >= 0) {
        const QString& id = std::as_const(m_drawings)[before].id;
        if (!id.isEmpty())
            selected = firstOf(drawings, [&id](const Drawing& drawing) { return drawing.id == id; });
    }
    setSelected(drawings, selected);
    if (drawings == m_drawings)
        return false;
    m_drawings = std::move(drawings);
    return true;
}

bool DrawingList::select(qsizetype index)
{
    return setSelected(m_drawings, index);
}

std::optional<Drawing> DrawingList::takeSelected()
{
    const qsizetype index = selectedIndex();
    return index < 0 ? std::nullopt : std::optional(m_drawings.takeAt(index));
}

qsizetype DrawingList::selectedIndex() const
{
    return firstOf(m_drawings, [](const Drawing& drawing) { return drawing.selected; });
}
