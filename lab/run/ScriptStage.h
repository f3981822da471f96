#pragma once

#include "chart/series/CandleSeries.h"
#include "experts/ExpertEngine.h"
#include "lab/run/ChartBars.h"
#include "lab/run/EventRounds.h"
#include "lab/run/Journal.h"
#include "lab/run/LabHost.h"
#include "lab/run/PastCandles.h"
#include "lab/run/VirtualTimer.h"

#include <functional>
#include <optional>
#include <vector>

namespace lab {

/// What a script in the lab runs on: a chart, a clock and a timer of its own, and lists for what it prints.
/// The terminal's own classes do the work; nothing happens by itself.
class ScriptStage final {
public:
    struct Settings {
        QString symbol;
        int digits = 5;
        practice::TimeMs barMs = practice::minuteMs;
        std::uint64_t seed = 1;
        std::vector<Candle> bars;                          ///< before the first price
        PastCandles::Maker barsAgain{};                    ///< unset: the chart keeps all of them
        std::size_t barsAtATime = PastCandles::usualBlock; ///< that are taken off the chart
    };

    /// An order of the script whose numbers cannot be used.
    using Refusal = std::function<void(const QString& side, double lots, double stopLoss, double takeProfit)>;

    /// `account` answers what the script asks of prices and account, and is given its orders. What it prints
    /// goes to the journal, comments go nowhere.
    ScriptStage(Settings settings, ExpertHost::Callbacks account, Refusal refused);

    /// The time from now on.
    void setTime(practice::TimeMs time) { m_clock.now = time; }
    /// The chart, which keeps all bars, gets others, as a terminal's does that has asked for them again.
    void renewBars(std::vector<Candle> bars);
    /// The chart takes in a price of this time.
    void fold(double bid, double ask);
    /// Runs the script and its OnInit; once.
    void load(const ExpertScript& script);
    /// OnTimer, if it is due, and OnTick; nothing unless running.
    void tick();
    /// OnDeinit, if it is running.
    void stop() { m_engine->stop(); }
    /// From any thread: the script ends with an error wherever it is, and says no more.
    void interrupt();

    [[nodiscard]] bool isRunning() const { return m_engine->isRunning(); }
    /// Why the script has ended by itself; absent as long as it has not.
    [[nodiscard]] const std::optional<QString>& error() const { return m_error; }
    [[nodiscard]] Journal& journal() { return m_journal; }
    /// Writes a line with the time of now.
    void note(const QString& text) { m_journal.add(m_clock.now, text); }
    /// The bars that have been on the chart since the first price, the one that it fell into included.
    /// To be called once, last.
    [[nodiscard]] ChartBars takeBarsOfRun();

private:
    ExpertHost::Callbacks connected(ExpertHost::Callbacks account, Refusal refused);
    /// A price has begun a candle.
    void turnBar();
    void findError();

    EventRounds m_events;
    VirtualClock m_clock;
    LabHost m_host;
    CandleSeries m_series;
    std::optional<PastCandles> m_past; ///< what `m_series` no longer has
    ChartBars m_barsBefore;            ///< the newest candle
    bool m_hasBegun = false;           ///< there was a price
    quint64 m_revision = 0;
    Journal m_journal;
    std::atomic<bool> m_isInterrupted = false;
    std::optional<QString> m_failure; ///< the first one of the hook at hand
    std::optional<QString> m_error;
    VirtualTimer* m_timer; ///< of the engine
    std::unique_ptr<ExpertEngine> m_engine;
};

} // namespace lab
