#pragma once

class QWidget;

/// Whether the keyboard can be in this widget: it takes keys, and can be seen, not behind another chart or
/// another dock's tab.
[[nodiscard]] bool isTabStop(const QWidget& widget);

/// Where Tab leads from the widget of `window` that has the focus; nothing when there is no other. Qt's own
/// way would go through charts that another one covers, and never out of a chart.
[[nodiscard]] QWidget* nextTabStop(QWidget& window, bool forward);
