#pragma once

#include "practice/server/Limits.h"
#include "practice/server/Platform.h"
#include "practice/server/SharedMessage.h"

#include <memory>
#include <span>
#include <string>
#include <vector>

namespace practice {

class FeedSession;

/// Everybody on the feed. Each message is written out once and shared by all who get it.
class FeedHub final : public PlatformListener {
public:
    FeedHub(Platform& platform, const Limits& limits);

    /// A place on the feed, taken while the result or a copy of it lives; nothing when all are taken. If need
    /// be, a feed that has never said anything is dropped for the newcomer, the oldest of these.
    [[nodiscard]] std::shared_ptr<void> admit();
    void join(std::shared_ptr<FeedSession> session);
    void leave(const FeedSession& session);

    [[nodiscard]] const Limits& limits() const { return m_limits; }
    [[nodiscard]] std::size_t symbolCount() const;
    /// The first message to a client: the symbols and their current prices.
    [[nodiscard]] SharedMessage hello() const;
    /// The current prices of the marked symbols.
    [[nodiscard]] SharedMessage prices(const std::vector<bool>& symbols) const;

    void pricesMoved(std::span<const SymbolQuote> changed, TimeMs now) override;
    void accountEvent(const std::string& userId, const std::string& message) override;

    /// Tells every trader the state of their open positions.
    void sendTrades();
    void dropStalled();
    void closeAll();

private:
    [[nodiscard]] SharedMessage tradesOf(const std::string& userId) const;

    Platform& m_platform;
    const Limits& m_limits;
    std::shared_ptr<void> m_place = std::make_shared<int>(); ///< every feed holds a copy
    std::vector<std::shared_ptr<FeedSession>> m_sessions;    ///< in the order in which they joined
};

} // namespace practice
