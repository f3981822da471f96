#pragma once

#include "practice/server/HandClock.h"
#include "practice/server/RandomTrader.h"
#include "practice/server/SecondBooks.h"
#include "practice/server/WrittenMarket.h"
#include "practice/storage/TemporaryFolder.h"

#include "practice/server/Platform.h"
#include "practice/server/PlatformTime.h"

#include <map>
#include <memory>
#include <optional>
#include <random>
#include <vector>

namespace practice {

/// A random life of the platform with all that belongs to it: market, broker and a database that is closed
/// and opened again. After every step a second set of books must agree with it; the first difference ends the
/// case.
class BookSession final {
public:
    /// What sessions must have seen to prove anything.
    struct Seen {
        std::map<CloseReason, int> ends;
        int accepted = 0;
        int refused = 0;
        int restarts = 0;
        int clocksSet = 0;
        int stalls = 0;
        int phases = 0;
        int debts = 0;
        int nights = 0;
        int lines = 0;

        Seen& operator+=(const Seen& other);
    };

    /// The same seed plays the same session.
    explicit BookSession(unsigned seed);

    /// Says seed and step where a step ends with an exception.
    void run(int steps);
    [[nodiscard]] Seen seen() const;

private:
    using Line = SecondBooks::Line;

    void step();
    void tick();
    void command();
    void restart();
    void setClock();
    void takeGains();

    void open();
    void start();
    void advance();
    void pass(TimeMs time);
    void catchUp();
    void movePrices(TimeMs from);
    void writePath(TimeMs before);
    void resetSome();
    [[nodiscard]] TimeMs someStep();
    [[nodiscard]] TimeMs lastEvent() const;

    void place(Line order);
    void modify(const RandomTrader::Change& change);
    void end(const Line& line);
    std::optional<Trade> execute(const TradeCommand& command);

    [[nodiscard]] int pick(int count) { return m_trader.pick(count); }
    [[nodiscard]] double between(double low, double high) { return m_trader.between(low, high); }

    std::mt19937 m_random;
    unsigned m_seed;
    int m_step = 0;
    Seen m_counted;
    TemporaryFolder m_folder;
    HandClock m_machine;
    TimeMs m_now = HandClock::firstMoment;    ///< the platform's
    TimeMs m_booked = HandClock::firstMoment; ///< the last moment in the books
    WrittenMarket m_market;
    std::vector<SecondBooks::Prices> m_prices;
    std::unique_ptr<Database> m_database;
    std::unique_ptr<PlatformTime> m_clock;
    std::unique_ptr<Platform> m_platform;
    SecondBooks m_books;
    RandomTrader m_trader;
};

} // namespace practice
