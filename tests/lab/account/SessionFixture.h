#pragma once

#include "lab/core/account/AccountSession.h"
#include "practice/Check.h"

#include <optional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace lab {

using practice::Cents;
using practice::Side;
using practice::TimeMs;

inline std::ostream& operator<<(std::ostream& out, ExitReason reason)
{
    return out << "reason " << static_cast<int>(reason);
}

inline std::ostream& operator<<(std::ostream& out, PlanOutcome outcome)
{
    return out << "outcome " << static_cast<int>(outcome);
}

/// Numbers of our own, so that the expected results stay true when the catalogue changes.
inline practice::SymbolSpec makeSpec(
    std::string base, std::string quote, int digits, double swapLong, double swapShort)
{
    practice::SymbolSpec spec;
    spec.name = base + quote;
    spec.digits = digits;
    spec.commissionPerLot = 7;
    spec.swapLong = swapLong;
    spec.swapShort = swapShort;
    spec.baseCurrency = std::move(base);
    spec.profitCurrency = std::move(quote);
    return spec;
}

inline practice::SymbolSpec eurUsd()
{
    return makeSpec("EUR", "USD", 5, -7.2, 2.8);
}

inline practice::SymbolSpec usdJpy()
{
    return makeSpec("USD", "JPY", 3, 9.4, -17.8);
}

inline practice::SymbolSpec eurJpy()
{
    return makeSpec("EUR", "JPY", 3, 6.1, -14.9);
}

/// A Friday.
inline constexpr TimeMs friday = 20'000 * practice::dayMs;
inline constexpr TimeMs tenOClock = friday + 10 * practice::hourMs;

inline void addMinute(MinuteHistory& history, TimeMs time, const practice::GridBar& bar)
{
    history.starts.push_back(static_cast<std::int32_t>(time / practice::minuteMs));
    history.minutes.append({bar, 4});
}

/// A session whose prices are given by hand. Its history has the minutes that were added; prices beyond them
/// belong to the last.
class Session {
public:
    explicit Session(practice::SymbolSpec spec = eurUsd()) { history.spec = std::move(spec); }
    explicit Session(const RunSettings& wanted)
        : settings(wanted)
    {
        history.spec = eurUsd();
    }

    AccountSession& operator*()
    {
        if (!m_session) {
            settings.symbol = history.spec.name;
            std::vector<const MinuteHistory*> all{&history};
            for (const MinuteHistory& pair : pairs)
                all.push_back(&pair);
            m_session.emplace(settings, all);
            m_session->onRefusal([this](const std::string& reason) { refused.push_back(reason); });
        }
        return *m_session;
    }
    AccountSession* operator->() { return &**this; }

    /// This many milliseconds after ten o'clock, on a continuous way.
    void price(TimeMs offset, std::int64_t mid, std::int64_t half = 4) { show(offset, mid, half, false); }
    void gap(TimeMs offset, std::int64_t mid, std::int64_t half = 4) { show(offset, mid, half, true); }

    RunResult finish()
    {
        RunResult result;
        (**this).finish(result);
        return result;
    }

    MinuteHistory history;
    std::vector<MinuteHistory> pairs;
    RunSettings settings;
    std::vector<std::string> refused;

private:
    void show(TimeMs offset, std::int64_t mid, std::int64_t half, bool afterGap)
    {
        if (history.size() == 0)
            addMinute(history, tenOClock, {mid, mid, mid, mid, 1});
        const TimeMs time = tenOClock + offset;
        const std::size_t later = history.firstFrom(time + 1);
        const auto minute = static_cast<std::uint32_t>(later > 0 ? later - 1 : 0);
        (**this).advance({time, mid, half, minute, afterGap, true});
    }

    std::optional<AccountSession> m_session;
};

inline constexpr double none = 0;
inline constexpr TimeMs second = 1000;

} // namespace lab
