#include "app/ui/FocusOrder.h"

#include <QWidget>

void setFocusOrder(const QList<QWidget*>& widgets)
{
    for (qsizetype i = 1; i < widgets.size(); ++i)
        QWidget::setTabOrder(widgets.at(i - 1), widgets.at(i));
}
