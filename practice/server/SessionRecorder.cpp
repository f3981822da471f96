#include "practice/server/SessionRecorder.h"

#include "practice/core/broker/PriceGrid.h"
#include "practice/core/broker/RecordText.h"
#include "practice/server/Platform.h"
#include "practice/server/RecordFile.h"

#include <array>
#include <charconv>
#include <concepts>
#include <utility>

namespace practice {

namespace {

constexpr int formatNumber = 1;

/// One line, column by column.
class Line {
public:
    explicit Line(std::string_view kind) { m_text = kind; }

    Line& add(std::string_view text)
    {
        m_text += '\t';
        for (const char c : text) {
            if (c == '\\')
                m_text += "\\\\";
            else if (c == '\t')
                m_text += "\\t";
            else if (c == '\n')
                m_text += "\\n";
            else
                m_text += c;
        }
        return *this;
    }
    template <typename Number>
    requires std::integral<Number> || std::floating_point<Number> Line& add(Number number)
    {
        m_text += '\t';
        return append(number);
    }
    template <typename Number> Line& append(Number number)
    {
        std::array<char, 40> digits{};
        const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number);
        m_text.append(digits.data(), end.ptr);
        return *this;
    }
    Line& append(char sign)
    {
        m_text += sign;
        return *this;
    }
    /// The same as 0, which stands for a level that is not there.
    Line& add(const std::optional<double>& level) { return add(level.value_or(0)); }

    [[nodiscard]] std::string_view text()
    {
        m_text += '\n';
        return m_text;
    }

private:
    std::string m_text;
};

Line commandLine(const TradeCommand& command, TimeMs now)
{
    if (const auto* order = std::get_if<PlaceRequest>(&command)) {
        Line line("place");
        line.add(now).add(order->accountId).add(order->symbol).add(order->orderKind).add(order->type);
        line.add(order->lots).add(order->pendingPrice).add(order->stopLoss).add(order->takeProfit);
        return std::move(line.add(order->comment));
    }
    if (const auto* close = std::get_if<CloseCommand>(&command))
        return std::move(Line("close").add(now).add(close->tradeId));
    if (const auto* cancel = std::get_if<CancelCommand>(&command))
        return std::move(Line("cancel").add(now).add(cancel->tradeId));
    const auto& modify = std::get<ModifyCommand>(command);
    Line line("modify");
    line.add(now).add(modify.tradeId);
    // A level that is not named stays.
    for (const std::optional<double>& level :
        {modify.change.stopLoss, modify.change.takeProfit, modify.change.pendingPrice}) {
        if (level)
            line.add(*level);
        else
            line.add(std::string_view());
    }
    return line;
}

} // namespace

SessionRecorder::SessionRecorder(const Platform& platform, RecordFile& file, std::string_view version)
    : m_platform(platform)
    , m_file(file)
    , m_written(platform.symbols().size())
    , m_last(platform.now())
{
    m_file.add(Line("tavoran-session").add(formatNumber).add(version).add(m_last).text());
    writeSymbols();
    const BrokerState state = platform.broker().state();
    for (const Account& account : state.accounts)
        writeAccount(account, m_last);
    for (const Trade& trade : state.liveTrades)
        writeTrade(trade, m_last);
    writePrices("seen", platform.quotes(), m_last);
    m_file.add(Line("start").add(m_last).text());
}

SessionRecorder::~SessionRecorder()
{
    writeMoved();
    m_file.add(Line("end").add(m_last).text());
}

void SessionRecorder::pricesMoved(std::span<const SymbolQuote> changed, TimeMs now)
{
    writeMoved();
    m_moved.assign(changed.begin(), changed.end());
    m_movedAt = now;
}

void SessionRecorder::commandEnded(const TradeCommand& command, const std::string& tradeId,
    const std::optional<Refusal>& refusal, TimeMs now)
{
    writeMoved();
    writeSeen(now);
    Line line = commandLine(command, now);
    if (refusal)
        line.add(refusal->httpStatus).add(refusal->message);
    else
        line.add(200).add(tradeId);
    m_file.add(line.text());
}

void SessionRecorder::changed(const ChangeSet& changes, TimeMs now)
{
    if (now >= m_movedAt)
        writeMoved();
    writeSeen(now);
    for (const Trade& trade : changes.trades)
        writeTrade(trade, now);
    for (const Account& account : changes.accounts)
        writeAccount(account, now);
}

void SessionRecorder::accountsSent(std::span<const Account> accounts, TimeMs now)
{
    writeMoved();
    Line line("accounts");
    line.add(now);
    for (const Account& account : accounts)
        line.add(account.id).add(account.balance);
    m_file.add(line.text());
}

void SessionRecorder::positionsSent(std::string_view accountId, std::span<const Trade> trades, TimeMs now)
{
    writeMoved();
    Line line("positions");
    line.add(now).add(accountId);
    for (const Trade& trade : trades)
        line.add(trade.id).add(trade.symbol).add(trade.pnl);
    m_file.add(line.text());
}

void SessionRecorder::ordersSent(std::string_view accountId, TimeMs now)
{
    writeMoved();
    m_file.add(Line("orders").add(now).add(accountId).text());
}

void SessionRecorder::resultsSent(std::string_view accountId, std::span<const Trade> trades, TimeMs now)
{
    writeMoved();
    Line line("results");
    line.add(now).add(accountId);
    for (const Trade& trade : trades)
        line.add(trade.id).add(trade.pnl);
    m_file.add(line.text());
}

void SessionRecorder::barsSent(std::size_t symbol, Timeframe timeframe, std::span<const Bar> bars, TimeMs now)
{
    writeMoved();
    const SymbolSpec& spec = m_platform.symbols()[symbol];
    Line line("bars");
    line.add(now).add(spec.name).add(timeframeKey(timeframe));
    for (const Bar& bar : bars) {
        line.add(bar.time);
        for (const double price : {bar.open, bar.high, bar.low, bar.close})
            line.append(' ').append(toPoints(price, spec.digits));
        line.append(' ').append(bar.volume);
    }
    m_file.add(line.text());
}

void SessionRecorder::writeSymbols()
{
    for (const SymbolSpec& spec : m_platform.symbols()) {
        Line line("symbol");
        line.add(spec.name).add(spec.digits).add(spec.contractSize).add(spec.commissionPerLot);
        line.add(spec.swapLong).add(spec.swapShort).add(spec.baseCurrency).add(spec.profitCurrency);
        line.add(spec.maxLeverage).add(spec.minLots).add(spec.maxLots).add(spec.lotStep);
        m_file.add(line.text());
    }
}

void SessionRecorder::writeAccount(const Account& account, TimeMs now)
{
    Line line("account");
    line.add(now).add(account.id).add(toText(account.kind)).add(account.plan.name).add(account.plan.steps);
    line.add(account.phase).add(account.isFunded ? 1 : 0).add(toText(account.status)).add(account.balance);
    line.add(account.initialBalance).add(account.leverage).add(account.dayStartEquity).add(account.dayIndex);
    m_file.add(line.text());
}

void SessionRecorder::writeTrade(const Trade& trade, TimeMs now)
{
    Line line("trade");
    line.add(now).add(trade.id).add(trade.accountId).add(trade.symbol).add(toText(trade.side));
    line.add(toText(trade.orderKind)).add(toText(trade.status)).add(trade.lots).add(trade.entryPrice);
    line.add(trade.exitPrice).add(trade.pendingPrice).add(trade.stopLoss).add(trade.takeProfit);
    line.add(trade.pnl).add(trade.margin).add(trade.swap).add(trade.commission).add(trade.createdAt);
    line.add(trade.updatedAt).add(trade.closedAt).add(toText(trade.closeReason)).add(trade.comment);
    m_file.add(line.text());
}

void SessionRecorder::writePrices(std::string_view kind, std::span<const SymbolQuote> quotes, TimeMs now)
{
    Line line(kind);
    line.add(now);
    for (const SymbolQuote& entry : quotes) {
        const int digits = m_platform.symbols()[entry.symbol].digits;
        line.add(entry.symbol).append(' ').append(toPoints(entry.quote.bid, digits));
        line.append(' ').append(toPoints(entry.quote.ask, digits));
        m_written[entry.symbol] = entry.quote;
    }
    m_file.add(line.text());
    m_last = std::max(m_last, now);
}

void SessionRecorder::writeSeen(TimeMs now)
{
    std::vector<SymbolQuote> other;
    for (std::size_t symbol = 0; symbol < m_written.size(); ++symbol) {
        const Quote quote = m_platform.quoteAt(symbol, now);
        if (quote != m_written[symbol])
            other.push_back({symbol, quote});
    }
    if (!other.empty())
        writePrices("seen", other, now);
}

void SessionRecorder::writeMoved()
{
    if (m_moved.empty())
        return;
    writePrices("quotes", m_moved, m_movedAt);
    m_moved.clear();
}

} // namespace practice
