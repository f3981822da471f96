#include "chart/window/CompactButton.h"

CompactButton::CompactButton(const QSize& size, QWidget* parent)
    : QPushButton(parent)
{
    setProperty("compact", true);
    setFixedSize(size);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

CompactButton::~CompactButton() = default;
