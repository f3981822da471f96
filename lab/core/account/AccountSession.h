#pragma once

#include "lab/core/Moment.h"
#include "lab/core/RunResult.h"
#include "lab/core/RunSettings.h"
#include "lab/core/market/MinuteHistory.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace lab {

/// What a script sees of its account.
struct AccountView {
    practice::Cents balance = 0;
    practice::Cents equity = 0;
    int positions = 0; ///< open ones
    double bid = 0;    ///< 0 before the first price
    double ask = 0;
};

/// One account of the practice platform's broker over the prices of a run.
///
/// The broker fills at the price that it is shown. So that a stop loss or take profit on a continuous way is
/// filled at its level and not at the end of the way, prices that only the broker sees are put in where the
/// way crosses a level of an open position; after a gap there are none.
class AccountSession final {
public:
    /// Why an order was refused, one line.
    using RefusalSink = std::function<void(const std::string& reason)>;

    /// `histories`: the traded symbol's, then those of pairs that may be needed to turn results into USD.
    /// They outlive this. Without the pair that is needed every order is refused.
    AccountSession(const RunSettings& settings, std::vector<const MinuteHistory*> histories);
    AccountSession(const AccountSession&) = delete;
    AccountSession& operator=(const AccountSession&) = delete;

    /// Unset: nobody is told. Called from order() and advance().
    void onRefusal(RefusalSink sink);

    /// Brings the account to this moment, not before the last one, and carries out the orders due by then.
    void advance(const Moment& moment);

    /// A market order of the script, at the moment of the last advance() or, with a delay, at the first one
    /// at or after its end. Numbers as the script gave them; levels that are no numbers above 0 are none.
    void order(practice::Side side, double lots, double stopLoss, double takeProfit);

    /// Closes, likewise, every position that the view shows, oldest first.
    void closeAll();

    /// An order of the script that the lab's own checks have refused, for the count and the fingerprint.
    void noteRefusal(practice::Side side, double lots, double stopLoss, double takeProfit);

    /// As it was at the end of the last advance(): what an order changes shows with the next moment.
    [[nodiscard]] const AccountView& view() const;

    /// The plan's account has passed or failed, or there is neither a position nor money left.
    [[nodiscard]] bool isOver() const;

    /// Closes what is open at the last price; what has not been carried out yet never will be. Fills in
    /// startBalance, trades, equity, days, the drawdowns, exposedMs, refusals, outcome with its time and
    /// decisionPrint, adds to the warnings, and leaves the rest of the result alone. To be called once, last.
    void finish(RunResult& result);

private:
    RunSettings m_settings;
    std::vector<const MinuteHistory*> m_histories;
    RefusalSink m_refusalSink;
    AccountView m_view;
    std::uint64_t m_refusals = 0;
};

} // namespace lab
