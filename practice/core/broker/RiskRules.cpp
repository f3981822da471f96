#include "practice/core/broker/RiskRules.h"

namespace practice {

bool dailyLossReached(const Account& account, Cents equity)
{
    return account.kind == AccountKind::Plan
        && equity * 100 <= account.dayStartEquity * (100 - riskLimits::dailyLossPercent);
}

bool totalLossReached(const Account& account, Cents equity)
{
    return account.kind == AccountKind::Plan
        && equity * 100 <= account.initialBalance * (100 - riskLimits::totalLossPercent);
}

bool targetReached(const Account& account)
{
    return account.kind == AccountKind::Plan && account.status == AccountStatus::Active && !account.isFunded
        && account.balance * 100 >= account.initialBalance * (100 + riskLimits::targetPercent);
}

bool stopOutReached(Cents equity, Cents margin)
{
    return margin > 0 && equity * 100 <= margin * riskLimits::stopOutPercent;
}

} // namespace practice
