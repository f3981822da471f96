#pragma once

#include <QList>

class QWidget;

/// Makes Tab go through these widgets of one window in this order, whatever the order they were created in.
/// What is hidden or disabled when Tab is pressed is passed over.
void setFocusOrder(const QList<QWidget*>& widgets);
