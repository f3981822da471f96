#include "experts/ExpertTimer.h"

#include <utility>

ExpertTimer::~ExpertTimer() = default;

SystemExpertTimer::SystemExpertTimer(std::unique_ptr<QTimer> timer)
    : m_timer(std::move(timer))
{
}

SystemExpertTimer::~SystemExpertTimer() = default;

void SystemExpertTimer::onTimeout(std::function<void()> call)
{
    // Qt keeps the call until it has returned, even if it deletes the timer.
    QObject::connect(m_timer.get(), &QTimer::timeout, m_timer.get(), std::move(call));
}
