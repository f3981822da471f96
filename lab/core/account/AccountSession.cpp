#include "lab/core/account/AccountSession.h"

#include "practice/core/PointScale.h"

#include <utility>

namespace lab {

AccountSession::AccountSession(const RunSettings& settings, std::vector<const MinuteHistory*> histories)
    : m_settings(settings)
    , m_histories(std::move(histories))
{
    m_view.balance = m_view.equity = settings.balance;
}

void AccountSession::onRefusal(RefusalSink sink)
{
    m_refusalSink = std::move(sink);
}

void AccountSession::advance(const Moment& moment)
{
    m_view.bid = static_cast<double>(moment.mid - moment.halfSpread);
    m_view.ask = static_cast<double>(moment.mid + moment.halfSpread);
}

void AccountSession::order(practice::Side, double, double, double)
{
    ++m_refusals;
    if (m_refusalSink)
        m_refusalSink("There is no market yet.");
}

void AccountSession::closeAll() { }

void AccountSession::noteRefusal(practice::Side, double, double, double)
{
    ++m_refusals;
}

const AccountView& AccountSession::view() const
{
    return m_view;
}

bool AccountSession::isOver() const
{
    return false;
}

void AccountSession::finish(RunResult& result)
{
    result.startBalance = m_settings.balance;
    result.refusals = m_refusals;
}

} // namespace lab
