#pragma once

#include "practice/server/PlatformListener.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace practice {

class Platform;
class RecordFile;

/// Writes down what the platform tells, so that its session can be followed later on: prices, commands and
/// what became of them, and what clients were told of bars and accounts. The manual page describes the lines.
/// Nobody's name, address, password or token is among them.
class SessionRecorder final : public PlatformListener {
public:
    /// Begins with the state of this moment. Both outlive this object.
    SessionRecorder(const Platform& platform, RecordFile& file, std::string_view version);
    /// Says that the session ended in order.
    ~SessionRecorder() override;

    void pricesMoved(std::span<const SymbolQuote> changed, TimeMs now) override;
    void commandEnded(const TradeCommand& command, const std::string& tradeId,
        const std::optional<Refusal>& refusal, TimeMs now) override;
    void changed(const ChangeSet& changes, TimeMs now) override;
    void accountsSent(std::span<const Account> accounts, TimeMs now) override;
    void positionsSent(std::string_view accountId, std::span<const Trade> trades, TimeMs now) override;
    void ordersSent(std::string_view accountId, TimeMs now) override;
    void resultsSent(std::string_view accountId, std::span<const Trade> trades, TimeMs now) override;
    void barsSent(std::size_t symbol, Timeframe timeframe, std::span<const Bar> bars, TimeMs now) override;

private:
    void writeSymbols();
    void writeAccount(const Account& account, TimeMs now);
    void writeTrade(const Trade& trade, TimeMs now);
    void writePrices(std::string_view kind, std::span<const SymbolQuote> quotes, TimeMs now);
    /// The prices of a moment that have not been written yet.
    void writeSeen(TimeMs now);
    /// Announced prices wait for what happened before them.
    void writeMoved();

    const Platform& m_platform;
    RecordFile& m_file;
    std::vector<Quote> m_written; ///< by symbol
    std::vector<SymbolQuote> m_moved;
    TimeMs m_movedAt = 0;
    TimeMs m_last = 0;
};

} // namespace practice
