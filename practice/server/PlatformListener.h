#pragma once

#include "practice/core/Types.h"
#include "practice/core/broker/ChangeSet.h"
#include "practice/core/broker/Requests.h"
#include "practice/core/broker/TradeCommand.h"

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace practice {

/// What the platform tells those who listen, all of it on its thread and in the order in which it happens. A
/// listener overrides what it wants to hear of; none of these may throw.
class PlatformListener {
public:
    PlatformListener() = default;
    PlatformListener(const PlatformListener&) = delete;
    PlatformListener& operator=(const PlatformListener&) = delete;
    virtual ~PlatformListener() = default;

    /// Prices that are announced now. What they, and those between, cause is told after this, also where it
    /// belongs to an earlier moment.
    virtual void pricesMoved(std::span<const SymbolQuote> /*changed*/, TimeMs /*now*/) { }
    /// A command has been carried out, or not: then `refusal` says why. Its changes are told next.
    virtual void commandEnded(const TradeCommand& /*command*/, const std::string& /*tradeId*/,
        const std::optional<Refusal>& /*refusal*/, TimeMs /*now*/)
    {
    }
    /// This has changed at this moment, and is safely stored.
    virtual void changed(const ChangeSet& /*changes*/, TimeMs /*now*/) { }
    /// The same as a message of the feed to a user.
    virtual void accountEvent(const std::string& /*userId*/, const std::string& /*message*/) { }

    // What a client was told.
    virtual void accountsSent(std::span<const Account> /*accounts*/, TimeMs /*now*/) { }
    virtual void positionsSent(
        std::string_view /*accountId*/, std::span<const Trade> /*trades*/, TimeMs /*now*/)
    {
    }
    virtual void ordersSent(std::string_view /*accountId*/, TimeMs /*now*/) { }
    /// On the feed, without being asked.
    virtual void resultsSent(
        std::string_view /*accountId*/, std::span<const Trade> /*trades*/, TimeMs /*now*/)
    {
    }
    virtual void barsSent(
        std::size_t /*symbol*/, Timeframe /*timeframe*/, std::span<const Bar> /*bars*/, TimeMs /*now*/)
    {
    }
};

} // namespace practice
