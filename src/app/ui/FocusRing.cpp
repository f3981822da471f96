#include "app/ui/FocusRing.h"

#include <QPainter>

namespace {

QRect within(const QRect& outer, int distance)
{
    return outer.adjusted(distance, distance, -distance, -distance);
}

} // namespace

FocusRing::FocusRing(QWidget& parent)
    : QFocusFrame(&parent)
{
    setObjectName(QStringLiteral("focusRing"));
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setFocusPolicy(Qt::NoFocus);
    hide();
}

void FocusRing::showAlong(const Place& place)
{
    if (!isHidden() && geometry() == place.edge && m_width == place.width)
        return;
    m_width = place.width;
    setGeometry(place.edge);
    // What lies inside is painted as if there was no ring.
    setMask(QRegion(rect()) - within(rect(), place.width));
    raise();
    show();
    update();
}

void FocusRing::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    painter.fillRect(rect(), dark);
    painter.fillRect(within(rect(), 1), light);
    painter.fillRect(within(rect(), 3), dark); // within a thin ring the mask leaves none of it
}
