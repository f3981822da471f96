#include "app/ui/LiveAccessible.h"

QString LiveAccessible::text(QAccessible::Text kind) const
{
    // Clients on some desktops ask for the value of what changes, on others for its description.
    const bool live = kind == QAccessible::Description || kind == QAccessible::Value;
    return live ? reading() : QAccessibleWidget::text(kind);
}
