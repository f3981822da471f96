#pragma once

#include "lab/core/Moment.h"
#include "lab/core/RunResult.h"
#include "lab/core/RunSettings.h"
#include "lab/core/account/EquityRecord.h"
#include "lab/core/account/LevelCrossing.h"
#include "lab/core/account/PositionBook.h"
#include "lab/core/account/UsdRates.h"
#include "lab/core/market/MinuteHistory.h"
#include "practice/core/broker/Broker.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <initializer_list>
#include <optional>
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
/// way crosses a level of an open position; after a gap there are none. The spread changes evenly along the
/// way.
///
/// The broker is shown only those prices at which it would do something, or which it needs for an order; the
/// account fares as if it had seen them all.
class AccountSession final {
public:
    /// Why an order was refused, one line.
    using RefusalSink = std::function<void(const std::string& reason)>;

    /// Orders that may wait for their delay to pass; further ones are refused.
    static constexpr std::size_t mostWaiting = 10'000;

    /// `histories`: the traded symbol's, then those of pairs that may be needed to turn results into USD.
    /// They outlive this. Without the pair that is needed every order is refused.
    AccountSession(const RunSettings& settings, const std::vector<const MinuteHistory*>& histories);
    AccountSession(const AccountSession&) = delete;
    AccountSession& operator=(const AccountSession&) = delete;

    /// Unset: nobody is told. Called from order() and advance().
    void onRefusal(RefusalSink sink) { m_refusalSink = std::move(sink); }

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
    [[nodiscard]] const AccountView& view() const { return m_view; }

    /// The plan's account has passed or failed, or there is neither a position nor money left.
    [[nodiscard]] bool isOver() const
    {
        return m_outcome != PlanOutcome::None || (m_positions.empty() && m_account.balance <= 0);
    }

    /// Closes what is open at the last price, which is no success of the script's and passes no plan, unless
    /// the account goes on; what has not been carried out yet never will be. Fills in startBalance, course,
    /// trades, equity, days, the drawdowns, exposedMs, refusals, outcome with its time and decisionPrint,
    /// adds to the warnings, and leaves the rest of the result alone. To be called once, last.
    void finish(RunResult& result);

private:
    struct Order {
        practice::Side side = practice::Side::Buy;
        double lots = 0;
        double stopLoss = 0;
        double takeProfit = 0;
    };
    /// What the script has asked for and its delay holds back: an order, or to close up to a ticket.
    struct Waiting {
        practice::TimeMs due = 0;
        Order order;
        int closeUpTo = 0; ///< 0: it is an order
    };

    void goTo(const Moment& moment);
    void stopAtLevels(const PriceWay& way, practice::TimeMs end);
    void see(const PointQuote& quote, practice::TimeMs time);
    void valuePositions();
    [[nodiscard]] bool limitReached(practice::Cents equity) const;
    [[nodiscard]] practice::ChangeSet showBroker();
    void beUpToDate();

    void carryOutDue();
    void place(const Order& order);
    void refuse(const Order& order, const std::string& reason);
    void open(const practice::Trade& trade);
    void closeUpTo(int ticket);

    void take(const practice::ChangeSet& changes);
    void book(const practice::Trade& closed);
    [[nodiscard]] bool isAmbiguous(const Position& position, ExitReason reason) const;
    /// What the distance from the mid to either side costs now.
    [[nodiscard]] practice::Cents halfSpreadCost(practice::LotHundredths lots) const;
    [[nodiscard]] practice::Cents equity() const { return m_account.balance + m_positions.result(); }
    void noteOutcome();
    void print(std::initializer_list<std::uint64_t> decision);
    void takeView();

    RunSettings m_settings;
    const MinuteHistory& m_history;
    practice::Broker m_broker;
    practice::Account m_account;  ///< as the broker has it
    practice::Cents m_margin = 0; ///< held by the positions
    UsdRates m_rates;
    PositionBook m_positions;
    EquityRecord m_record;
    RefusalSink m_refusalSink;

    Moment m_moment;               ///< the last one
    PointQuote m_quote;            ///< the last price, which may be one that only the broker sees
    practice::TimeMs m_time = 0;   ///< and its time
    bool m_brokerIsBehind = false; ///< it has not been shown the last price
    bool m_withinMinute = false;   ///< the last moment is not the first of its minute
    bool m_isEnding = false;
    AccountView m_view;

    std::deque<Waiting> m_waiting;
    int m_ticket = 0;      ///< the last one given
    int m_ticketSeen = 0;  ///< the last one whose position the view knows
    int m_closingUpTo = 0; ///< the last one that a waiting request closes

    practice::TimeMs m_exposedSince = 0; ///< with an open position, if there is one
    practice::TimeMs m_exposedMs = 0;    ///< before that
    std::vector<TradeRow> m_trades;
    practice::Cents m_writtenOff = 0; ///< losses beyond the balance
    PlanOutcome m_outcome = PlanOutcome::None;
    practice::TimeMs m_outcomeTime = 0;
    std::uint64_t m_refusals = 0;
    std::uint64_t m_decisionPrint = 0;
};

} // namespace lab
