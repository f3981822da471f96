#include "chart/window/CompactButton.h"

#include <QPointer>

CompactButton::CompactButton(const QSize& size, QWidget* parent)
    : QPushButton(parent)
{
    setProperty("compact", true);
    setFixedSize(size);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    // Before whoever hears of the click, who may open a dialog: the button is not to look pressed meanwhile.
    connect(this, &QAbstractButton::released, this, [this] { setUpdatesEnabled(true); });
}

CompactButton::~CompactButton() = default;

void CompactButton::mouseReleaseEvent(QMouseEvent* event)
{
    const QPointer<CompactButton> alive(this); // a click may close the window
    setUpdatesEnabled(false);
    QPushButton::mouseReleaseEvent(event);
    if (alive)
        setUpdatesEnabled(true);
}

void CompactButton::keyReleaseEvent(QKeyEvent* event)
{
    const QPointer<CompactButton> alive(this);
    setUpdatesEnabled(false);
    QPushButton::keyReleaseEvent(event);
    if (alive)
        setUpdatesEnabled(true);
}
