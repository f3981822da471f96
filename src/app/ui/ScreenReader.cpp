#include "app/ui/ScreenReader.h"

#include <utility>

namespace {

std::function<void(QAccessibleEvent&)>& listener()
{
    static std::function<void(QAccessibleEvent&)> standIn;
    return standIn;
}

} // namespace

bool isReaderThere()
{
    return QAccessible::isActive() || listener();
}

void tellReader(QAccessibleEvent& event)
{
    if (listener())
        listener()(event);
    else
        QAccessible::updateAccessibility(&event);
}

void tellReader(QObject& object, QAccessible::Event event)
{
    QAccessibleEvent told(&object, event);
    tellReader(told);
}

void setReaderStandIn(std::function<void(QAccessibleEvent&)> standIn)
{
    listener() = std::move(standIn);
}
