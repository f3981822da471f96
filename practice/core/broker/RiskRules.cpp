#include "practice/core/broker/RiskRules.h"

namespace practice {

bool dailyLossReached(const Account& account, Cents equity)
{
    return account.kind == AccountKind::Plan
        && equity * 100 <= account.dayStartEquity * (100 - RiskLimits::dailyLossPercent);
}

bool totalLossReached(const Account& account, Cents equity)
{
    return account.kind == AccountKind::Plan
        && equity * 100 <= account.initialBalance * (100 - RiskLimits::totalLossPercent);
}

bool targetReached(const Account& account)
{
    return account.kind == AccountKind::Plan && account.status == AccountStatus::Active && !account.isFunded
        && account.balance * 100 >= account.initialBalance * (100 + RiskLimits::targetPercent);
}

bool stopOutReached(Cents equity, Cents margin)
{
    return margin > 0 && equity * 100 <= margin * RiskLimits::stopOutPercent;
}

} // namespace practice
