#pragma once

#include "lab/core/session/SessionEvent.h"
#include "practice/core/broker/Broker.h"

#include <deque>
#include <optional>
#include <string>
#include <variant>

namespace lab {

/// What a session should have gone like, and how it went.
struct Difference {
    practice::TimeMs time = 0;
    std::string expected;
    std::string recorded;
};

/// The practice platform's broker once more, given the prices and commands of a recorded session: it must
/// come to the same trades and accounts.
class BrokerReplay final {
public:
    /// Throws std::invalid_argument for a beginning that contradicts itself.
    explicit BrokerReplay(const SessionStart& start);
    BrokerReplay(const BrokerReplay&) = delete;
    BrokerReplay& operator=(const BrokerReplay&) = delete;

    /// Follows the session by an event; the first difference, if there is one. Not to be called after that.
    [[nodiscard]] std::optional<Difference> take(const SessionEvent& event);
    /// What is missing when the session is over; one that broke off may lack its last lines.
    [[nodiscard]] std::optional<Difference> finish();

    [[nodiscard]] const practice::Broker& broker() const { return m_broker; }

private:
    using Record = std::variant<practice::Trade, practice::Account>;

    [[nodiscard]] std::optional<Difference> takePrices(practice::TimeMs time, const PricesEvent& prices);
    [[nodiscard]] std::optional<Difference> takeCommand(practice::TimeMs time, const CommandEvent& event);
    [[nodiscard]] std::optional<Difference> takeRecord(practice::TimeMs time, const Record& record);
    [[nodiscard]] practice::CommandResult carryOut(
        const practice::TradeCommand& command, practice::TimeMs time);
    [[nodiscard]] std::string nextId();
    void expect(practice::TimeMs time, const practice::ChangeSet& changes);

    std::string m_nextId; ///< of the trade that the next order becomes; empty once it has been given
    int m_madeIds = 0;
    practice::Broker m_broker;
    std::deque<Record> m_expected; ///< changes that are not yet told of
    practice::TimeMs m_expectedAt = 0;
};

} // namespace lab
