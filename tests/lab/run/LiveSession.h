#pragma once

#include "lab/run/ScriptStage.h"
#include "lab/run/SessionCheck.h"
#include "practice/core/market/SimulatedMarket.h"
#include "practice/server/Api.h"
#include "practice/server/FirstUse.h"
#include "practice/server/HandClock.h"
#include "practice/server/Platform.h"
#include "practice/server/RecordFile.h"
#include "practice/server/SessionRecorder.h"
#include "practice/storage/TemporaryFolder.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

/// A script that trades on the practice platform, as in a terminal: on the prices that are announced, and
/// with what it has been told of its account. The platform's session is recorded.
class LiveSession final : public practice::PlatformListener {
public:
    /// `delay`: ms from a decision to its arrival. `script` is as of now.
    explicit LiveSession(const QString& script, practice::TimeMs delay = 0)
        : m_script(script)
        , m_delay(delay)
    {
        practice::prepareFirstUse(m_database, m_clock.now());
        m_platform = std::make_unique<practice::Platform>(m_database, m_market, m_clock);
        m_platform->advance();
        m_file = std::make_unique<practice::RecordFile>(path, [](const std::string&) {});
        m_recorder = std::make_unique<practice::SessionRecorder>(*m_platform, *m_file, "1.2.3");
        m_platform->addListener(*m_recorder);
        m_platform->addListener(*this);
        for (const practice::Account& account : m_platform->broker().accounts()) {
            if (account.kind == practice::AccountKind::Demo && !account.isFunded)
                accountId = account.id;
        }
        readAccount();
        openChart();
    }

    void pricesMoved(std::span<const practice::SymbolQuote> changed, practice::TimeMs) override
    {
        for (const practice::SymbolQuote& entry : changed) {
            if (entry.symbol == traded) {
                m_quote = entry.quote;
                m_isNew = true;
            }
        }
    }
    void changed(const practice::ChangeSet&, practice::TimeMs) override { m_readIn = readAfter; }

    /// So many prices, one each second.
    void play(int count)
    {
        for (int i = 0; i < count; ++i)
            tick();
    }
    /// A trader's own order.
    void buyByHand()
    {
        m_platform->execute(
            practice::PlaceRequest{accountId, "EURUSD", "MARKET", "BUY", 0.3, {}, {}, {}, {}});
    }
    void wait(practice::TimeMs ms) { m_clock.pass(ms); }
    [[nodiscard]] practice::TimeMs now() const { return m_clock.now(); }
    /// No more is recorded.
    void end()
    {
        m_recorder.reset();
        m_file.reset();
    }

    TemporaryFolder folder;
    std::filesystem::path path = folder / "session";
    std::string accountId;
    int readAfter = 0;             ///< so many prices after a change the terminal hears of it
    bool mayTrade = true;          ///< orders are sent
    practice::TimeMs late = 0;     ///< ms from a price to the script
    practice::TimeMs newsLead = 0; ///< ms from an account's news to the price that the script sees before it
    std::vector<std::string> done; ///< ids of the trades of carried out orders

private:
    static constexpr std::size_t traded = 0;
    static constexpr practice::TimeMs step = 1000;

    /// The same prices for all sessions, so that decades of days are drawn once.
    static practice::SimulatedMarket& market()
    {
        static practice::SimulatedMarket market{7, 30};
        return market;
    }

    void tick()
    {
        const bool isNewsFirst = newsLead > 0 && m_readIn && *m_readIn <= 0;
        m_clock.pass(step - newsLead);
        const std::vector<std::string> known = m_positions;
        if (isNewsFirst)
            readAccount();
        const std::vector<std::string> told = isNewsFirst ? std::exchange(m_positions, known) : known;
        m_clock.pass(newsLead);
        m_isNew = false;
        m_platform->advance();
        if (m_isNew) {
            m_stage->setTime(m_clock.now() + late);
            m_stage->fold(m_quote.bid, m_quote.ask);
            if (!std::exchange(m_isLoaded, true))
                m_stage->load({QStringLiteral("Live"), QStringLiteral("Live.js"), m_script});
            m_stage->tick();
        }
        const std::vector<practice::TradeCommand> wanted = std::exchange(m_wanted, {});
        for (const practice::TradeCommand& command : wanted)
            send(command);
        if (m_readIn && newsLead == 0 && (*m_readIn)-- <= 0) {
            m_readIn.reset();
            readAccount();
        }
        if (isNewsFirst)
            m_positions = told;
    }
    void send(const practice::TradeCommand& command)
    {
        if (!mayTrade)
            return;
        m_clock.pass(m_delay);
        try {
            done.push_back(m_platform->execute(command).id);
        } catch (const practice::ApiError&) {
            m_readIn = readAfter;
        }
    }
    void readAccount()
    {
        const practice::TimeMs now = m_clock.now();
        const std::vector<practice::Account> accounts = m_platform->broker().accounts();
        const std::vector<practice::Trade> positions = m_platform->broker().openTrades(accountId);
        m_platform->inform([&](practice::PlatformListener& listener) {
            listener.accountsSent(accounts, now);
            listener.positionsSent(accountId, positions, now);
            listener.ordersSent(accountId, now);
        });
        m_positions.clear();
        for (const practice::Trade& trade : positions) {
            if (trade.symbol == "EURUSD")
                m_positions.push_back(trade.id);
        }
    }
    void openChart()
    {
        const auto bars = m_market.bars(traded, practice::Timeframe::M1, 100, m_clock.now());
        m_platform->inform([&](practice::PlatformListener& listener) {
            listener.barsSent(traded, practice::Timeframe::M1, bars, m_clock.now());
        });
        std::vector<Candle> candles;
        for (const practice::Bar& bar : bars)
            candles.push_back(
                {bar.time, bar.open, bar.high, bar.low, bar.close, static_cast<qint32>(bar.volume)});
        ExpertHost::Callbacks calls;
        calls.bid = [this] { return m_quote.bid; };
        calls.ask = [this] { return m_quote.ask; };
        calls.positionsCount = [this] { return static_cast<int>(m_positions.size()); };
        calls.order = [this](const QString& side, double lots, double stopLoss, double takeProfit) {
            practice::PlaceRequest order;
            order.accountId = accountId;
            order.symbol = "EURUSD";
            order.orderKind = "MARKET";
            order.type = side.toStdString();
            order.lots = lots;
            if (stopLoss > 0)
                order.stopLoss = stopLoss;
            if (takeProfit > 0)
                order.takeProfit = takeProfit;
            m_wanted.emplace_back(order);
        };
        calls.closeAll = [this] {
            for (const std::string& id : m_positions)
                m_wanted.emplace_back(practice::CloseCommand{id});
        };
        m_stage = std::make_unique<lab::ScriptStage>(
            lab::ScriptStage::Settings{QStringLiteral("EURUSD"), 5, practice::minuteMs, 1, candles}, calls,
            [](const QString&, double, double, double) {});
    }

    QString m_script;
    practice::TimeMs m_delay;
    practice::HandClock m_clock;
    practice::SimulatedMarket& m_market = market();
    practice::Database m_database{folder / "x.db"};
    std::unique_ptr<practice::Platform> m_platform;
    std::unique_ptr<practice::RecordFile> m_file;
    std::unique_ptr<practice::SessionRecorder> m_recorder;
    std::unique_ptr<lab::ScriptStage> m_stage;
    practice::Quote m_quote;
    bool m_isNew = false;
    bool m_isLoaded = false;
    std::optional<int> m_readIn;
    std::vector<std::string> m_positions;
    std::vector<practice::TradeCommand> m_wanted;
};
