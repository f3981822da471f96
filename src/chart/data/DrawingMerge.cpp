#include "chart/data/DrawingMerge.h"

#include <algorithm>
#include <cmath>

namespace {

/// Prices may have passed through another number format on their way.
bool samePrice(double a, double b)
{
    constexpr double tolerance = 1e-9;
    return std::abs(a - b) <= tolerance * std::max(std::abs(a), std::abs(b));
}

bool sameShape(const Drawing& a, const Drawing& b)
{
    return a.type == b.type && a.color == b.color
        && std::equal(a.points.cbegin(), a.points.cend(), b.points.cbegin(), b.points.cend(),
            [](const DrawingPoint& p, const DrawingPoint& q) {
                return p.time == q.time && samePrice(p.price, q.price);
            });
}

} // namespace

QList<Drawing> mergeDrawings(QList<Drawing> stored, const QList<Drawing>& shown, QList<Drawing> confirmed)
{
    QList<Drawing*> arrived;
    for (Drawing& drawing : stored) {
        const auto before = std::find_if(shown.cbegin(), shown.cend(),
            [&drawing](const Drawing& other) { return !other.id.isEmpty() && other.id == drawing.id; });
        drawing.selected = before != shown.cend() && before->selected;
        if (before == shown.cend())
            arrived.append(&drawing);
    }
    QList<Drawing> unsaved;
    for (const Drawing& drawing : shown) {
        if (!drawing.id.isEmpty())
            continue;
        const auto alike = [&drawing](const Drawing& other) { return sameShape(drawing, other); };
        const auto accepted = std::find_if(confirmed.begin(), confirmed.end(), alike);
        const auto twin = std::find_if(
            arrived.begin(), arrived.end(), [&alike](const Drawing* other) { return alike(*other); });
        if (twin != arrived.end()) {
            (*twin)->selected = drawing.selected;
            arrived.erase(twin);
        } else if (accepted == confirmed.end()) {
            unsaved.append(drawing);
        }
        if (accepted != confirmed.end())
            confirmed.erase(accepted);
    }
    return stored + unsaved;
}
