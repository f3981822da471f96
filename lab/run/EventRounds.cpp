#include "lab/run/EventRounds.h"

#include <QCoreApplication>

namespace lab {

EventRounds::EventRounds()
{
    QCoreApplication::instance()->installEventFilter(this);
}

EventRounds::~EventRounds() = default;

bool EventRounds::handOutOnce()
{
    const std::uint64_t before = m_count;
    QCoreApplication::sendPostedEvents();
    return m_count != before;
}

bool EventRounds::eventFilter(QObject* receiver, QEvent* event)
{
    ++m_count;
    return QObject::eventFilter(receiver, event);
}

} // namespace lab
