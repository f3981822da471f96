#pragma once

#include "experts/ExpertScript.h"
#include "lab/core/session/BrokerReplay.h"
#include "lab/core/session/ToldAccount.h"
#include "lab/run/ScriptStage.h"

#include <atomic>
#include <compare>
#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace lab {

/// Which script of a session is followed: the one on this chart, trading on this account.
struct SessionSeat {
    std::string symbol;
    practice::Timeframe timeframe = practice::Timeframe::M15;
    std::string accountId;
    std::optional<practice::TimeMs> from; ///< the script's first price; absent: as soon as the chart has bars
    std::optional<practice::TimeMs> to;   ///< the first price that is no longer the script's
};

/// What may have come to a terminal so much later than it was sent that the script saw it otherwise.
enum class Late {
    Price, ///< just before the end of a bar, and seen in the next one
    News,  ///< of the account just before a price, and seen after it
};

/// The price that it is about.
struct Delay {
    practice::TimeMs time = 0;
    Late what = Late::Price;

    friend auto operator<=>(const Delay&, const Delay&) = default;
};

/// A fill at another price than that of the decision: time had passed.
struct MovedFill {
    practice::TimeMs time = 0; ///< of the decision
    std::string order;
    double decided = 0;
    double filled = 0;
    std::int64_t worseBy = 0;   ///< points that it cost; below 0: gained
    practice::TimeMs after = 0; ///< ms from the price to the fill
};

/// What following a session has found.
struct SessionVerdict {
    std::optional<Difference> difference; ///< the first one; nothing was followed after it
    std::string hint;                     ///< what may explain it; one line or empty
    std::uint64_t prices = 0;             ///< on the feed, of the symbol
    std::uint64_t calls = 0;              ///< of the script
    std::uint64_t orders = 0;             ///< asked for, and recorded the same
    std::uint64_t closings = 0;           ///< the same, of positions
    std::uint64_t refused = 0;            ///< of both, those that the platform refused
    std::uint64_t trades = 0;          ///< changes of trades, on any account, that the broker came to as well
    std::uint64_t unanswered = 0;      ///< asked for when the session ended, too late to be recorded
    practice::TimeMs longestDelay = 0; ///< ms from a price to the command that it led to
    std::vector<MovedFill> moved;
    practice::TimeMs endedAt = 0; ///< the last event
    std::set<Delay> taken;        ///< as late as the check was told to take them
    std::deque<Delay> possible;   ///< not taken, and the last ones before the difference
    std::optional<std::string> scriptError;
};

/// Runs a script over a recorded session, on the bars and prices that the terminal was sent and with the
/// account that it was told of, and compares what it asks for with the commands that the platform recorded.
/// The broker goes along and must come to the same fills.
class SessionCheck final {
public:
    /// So long a terminal may keep a script's order back; one that is not recorded by then never was.
    static constexpr practice::TimeMs longestWait = 20'000;
    /// A session that ends so soon after an order may lack it.
    static constexpr practice::TimeMs endMargin = 1'000;
    /// So late a terminal may get what it was sent.
    static constexpr practice::TimeMs mostLateness = 100;

    /// `late`: what is taken to have come late. Throws std::invalid_argument for a beginning that contradicts
    /// itself, or that lacks symbol or account.
    SessionCheck(const SessionStart& start, SessionSeat seat, ExpertScript script, std::set<Delay> late = {});

    /// False when a difference was found, and nothing more is to come.
    bool take(const SessionEvent& event);
    /// `isWhole`: the session did not break off, which may cost it its last lines.
    [[nodiscard]] SessionVerdict finish(bool isWhole);

    /// From any thread: ends what the script is doing.
    void interrupt();

private:
    /// What the script has asked for: an order, or a position's end.
    struct Wish {
        practice::TimeMs time = 0;
        practice::TradeCommand command;
        practice::Quote quote; ///< that the script saw
    };
    struct Asked {
        practice::TimeMs decidedAt = 0;
        practice::TimeMs commandAt = 0;
        practice::TradeCommand command;
        practice::Quote quote;
    };

    [[nodiscard]] bool isScriptTime(practice::TimeMs time) const;
    void takePrices(practice::TimeMs time, const PricesEvent& prices);
    void takeNews(const SessionEvent& event);
    /// Whether it is taken so; if not, it may be so all the same.
    bool isLate(Delay delay);
    /// As a script saw a price's time.
    [[nodiscard]] practice::TimeMs seenTime(practice::TimeMs time);
    /// Which of both accounts a script saw at a price.
    [[nodiscard]] const ToldAccount& seenAccount(practice::TimeMs time);
    void takeCommand(practice::TimeMs time, const CommandEvent& event);
    void takeTrade(const practice::Trade& trade);
    void takeBars(const BarsEvent& bars);
    void callScript(practice::TimeMs time);
    [[nodiscard]] bool isOurs(const practice::TradeCommand& command) const;
    void match(practice::TimeMs time, const CommandEvent& event);
    void noteFill(const Asked& asked, practice::Side side, double price);
    void differ(practice::TimeMs time, std::string expected, std::string recorded);
    [[nodiscard]] std::string wishText(const Wish& wish) const;
    [[nodiscard]] std::string hintAt(practice::TimeMs time) const;
    [[nodiscard]] ExpertHost::Callbacks callbacks();

    SessionSeat m_seat;
    ExpertScript m_script;
    const practice::SymbolSpec m_spec;
    std::size_t m_symbol;
    BrokerReplay m_broker;
    ToldAccount m_account;
    ToldAccount m_before; ///< the account as of the price before
    const ToldAccount* m_seen = &m_account;
    bool m_isNews = false; ///< since the price before
    practice::Quote m_quote;
    practice::TimeMs m_now = 0;
    std::vector<Candle> m_bars; ///< before there is a stage
    bool m_hasBars = false;
    bool m_isLoaded = false;
    std::unique_ptr<ScriptStage> m_stage;
    std::atomic<ScriptStage*> m_interruptible = nullptr;
    std::deque<Wish> m_wishes;
    std::map<std::string, Asked> m_asked; ///< carried out, by the trade's id
    SessionVerdict m_verdict;
};

} // namespace lab
