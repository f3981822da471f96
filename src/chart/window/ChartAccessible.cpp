#include "chart/window/ChartAccessible.h"

#include "chart/window/ChartMark.h"
#include "chart/window/ChartReader.h"
#include "chart/window/ChartWidget.h"

namespace {

QAccessibleInterface* accessibleOf(const QString& /*className*/, QObject* object)
{
    auto* chart = qobject_cast<ChartWidget*>(object);
    return chart ? new ChartAccessible(*chart) : nullptr;
}

} // namespace

ChartAccessible::ChartAccessible(ChartWidget& chart)
    : LiveAccessible(&chart, QAccessible::Chart)
{
}

void ChartAccessible::install()
{
    QAccessible::installFactory(&accessibleOf);
}

ChartReader& ChartAccessible::reader() const
{
    return static_cast<ChartWidget*>(widget())->reader();
}

int ChartAccessible::childCount() const
{
    return LiveAccessible::childCount() + static_cast<int>(reader().marks().size());
}

QAccessibleInterface* ChartAccessible::child(int index) const
{
    const int widgets = LiveAccessible::childCount();
    if (index < widgets)
        return LiveAccessible::child(index);
    const QList<ChartMarkKey> marks = reader().marks();
    return index - widgets < marks.size() ? reader().mark(marks.at(index - widgets)) : nullptr;
}

int ChartAccessible::indexOfChild(const QAccessibleInterface* child) const
{
    const auto* mark = dynamic_cast<const ChartMark*>(child);
    if (!mark)
        return LiveAccessible::indexOfChild(child);
    const qsizetype place = reader().marks().indexOf(mark->key());
    return place < 0 ? -1 : LiveAccessible::childCount() + static_cast<int>(place);
}

QString ChartAccessible::reading() const
{
    return reader().reading();
}
