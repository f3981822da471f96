#pragma once

#include "practice/core/broker/Broker.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace practice {

/// The platform's rules of money worked out a second time, in whole numbers and fractions from end to end, to
/// be compared with what the platform itself says. Takes records of the platform to compare them with its
/// own, and nothing else from it: no price arithmetic, no rounding, no order of events.
class SecondBooks final {
public:
    using Points = std::int64_t;
    struct Prices {
        Points bid = 0;
        Points ask = 0;
        friend bool operator==(const Prices&, const Prices&) = default;
    };
    /// A trade in whole numbers; levels are points, 0 for none.
    struct Line {
        std::string id;
        std::size_t account = 0;
        std::size_t symbol = 0;
        bool buys = true;
        OrderKind kind = OrderKind::Market;
        TradeStatus status = TradeStatus::Open;
        std::int64_t lots = 0;
        Points entry = 0;
        Points exit = 0;
        Points trigger = 0;
        Points stop = 0;
        Points target = 0;
        Cents swap = 0;
        Cents commission = 0;
        Cents margin = 0;
        Cents result = 0;
        TimeMs begun = 0;
        TimeMs ended = 0;
        CloseReason reason = CloseReason::None;
    };
    struct Book {
        Account terms; ///< as it was when the books were opened
        Cents balance = 0;
        int phase = 1;
        AccountStatus status = AccountStatus::Active;
        Cents dayStart = 0;
        std::int64_t day = 0;
        std::vector<Line> finished; ///< without what its trader cancelled
    };

    SecondBooks(const std::vector<SymbolSpec>& symbols, const std::vector<Account>& accounts);

    /// New prices of every symbol.
    void tick(const std::vector<Prices>& prices, TimeMs now);
    /// What the order would hold if it were filled now.
    [[nodiscard]] Cents marginNeeded(const Line& order) const { return marginOf(order, opening(order)); }
    /// Whether such an order is to be taken.
    [[nodiscard]] bool mayPlace(const Line& order) const;
    /// Takes it; the id is the platform's.
    void place(Line order, const std::string& id, TimeMs now);
    void close(const std::string& id, TimeMs now);
    void cancel(const std::string& id);
    /// Whether these levels may be given to a live trade; `trigger` counts for orders only.
    [[nodiscard]] bool mayModify(const Line& changed) const;
    void modify(const Line& changed);
    void reset(std::size_t account, TimeMs now);

    [[nodiscard]] Cents profitNow(const Line& position) const;
    [[nodiscard]] Cents equity(std::size_t account) const;
    [[nodiscard]] Cents margin(std::size_t account) const;
    [[nodiscard]] const std::vector<Line>& live() const { return m_live; }
    [[nodiscard]] const std::vector<Book>& books() const { return m_books; }
    [[nodiscard]] Points pointsOf(double price, std::size_t symbol) const;
    [[nodiscard]] double priceOf(Points points, std::size_t symbol) const;

    std::map<CloseReason, int> ends; ///< how many trades ended for which reason
    int phases = 0;
    int debts = 0;
    int nights = 0;

private:
    struct Fraction {
        std::int64_t over = 1;
        std::int64_t under = 1;
    };
    [[nodiscard]] Fraction dollarsFor(const std::string& currency) const;
    [[nodiscard]] Cents nightly(const Line& position) const;
    [[nodiscard]] Cents marginOf(const Line& order, Points price) const;
    [[nodiscard]] CloseReason levelReached(const Line& position) const;
    [[nodiscard]] bool triggerReached(const Line& order) const;
    [[nodiscard]] bool stopsFit(const Line& line, Points reference) const;
    [[nodiscard]] bool triggerFits(const Line& order) const;
    [[nodiscard]] bool hasOpen(std::size_t account) const;
    [[nodiscard]] Points closing(const Line& position) const;
    [[nodiscard]] Points opening(const Line& order) const;
    [[nodiscard]] Line* find(const std::string& id);
    /// Ids of the account's (or, without one, the symbol's) live trades, the oldest first.
    [[nodiscard]] std::vector<std::string> idsOf(std::optional<std::size_t> account,
        std::optional<std::size_t> symbol, std::optional<TradeStatus> status) const;
    void turnDay(std::size_t account, TimeMs now);
    void finish(const std::string& id, TradeStatus status, CloseReason reason, TimeMs now);
    void closeLevels(std::size_t symbol, TimeMs now);
    void fill(const std::string& id, TimeMs now);
    void endAll(std::size_t account, CloseReason reason, TimeMs now);
    void checkLosses(std::size_t account, TimeMs now);
    void stopOut(std::size_t account, TimeMs now);
    void forgive(std::size_t account, TimeMs now);
    void advance(std::size_t account, TimeMs now);
    void payIn(std::size_t account, Cents amount, TimeMs now);

    const std::vector<SymbolSpec>& m_symbols;
    std::vector<Prices> m_prices;
    std::vector<Fraction> m_rates; ///< dollars for one unit of each symbol's profit
    std::vector<Book> m_books;
    std::vector<Line> m_live; ///< in the order in which they were taken
};

} // namespace practice
