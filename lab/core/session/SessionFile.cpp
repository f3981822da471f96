#include "lab/core/session/SessionFile.h"

#include "lab/core/session/LineReader.h"
#include "practice/core/FileContent.h"
#include "practice/core/PointScale.h"
#include "practice/core/broker/RecordText.h"

#include <algorithm>
#include <set>
#include <utility>

namespace lab {

using practice::SymbolSpec;
using practice::TimeMs;

std::string LineReader::quoted(std::string_view text)
{
    constexpr std::size_t mostShown = 40;
    std::string beginning(text.substr(0, mostShown));
    std::ranges::replace_if(
        beginning, [](char c) { return c < ' ' || c > '~'; }, '?');
    return '"' + beginning + (text.size() > mostShown ? "...\"" : "\"");
}

std::string LineReader::text()
{
    const std::string_view raw = word();
    std::string text;
    for (std::size_t i = 0; i < raw.size(); ++i) {
        if (raw[i] != '\\') {
            text += raw[i];
            continue;
        }
        const char next = ++i < raw.size() ? raw[i] : ' ';
        if (next != '\\' && next != 't' && next != 'n')
            throw BadColumn("a backslash stands alone");
        text += next == 't' ? '\t' : next == 'n' ? '\n' : '\\';
    }
    return text;
}

namespace {

constexpr int formatNumber = 1;

double priceOf(std::int64_t points, const SymbolSpec& spec)
{
    return static_cast<double>(points) / practice::pointsPerUnit(spec.digits);
}

SymbolSpec symbolIn(LineReader& line)
{
    SymbolSpec spec;
    spec.name = line.text();
    spec.digits = line.number<int>();
    spec.contractSize = line.number<double>();
    spec.commissionPerLot = line.number<double>();
    spec.swapLong = line.number<double>();
    spec.swapShort = line.number<double>();
    spec.baseCurrency = line.text();
    spec.profitCurrency = line.text();
    spec.maxLeverage = line.number<double>();
    spec.minLots = line.number<double>();
    spec.maxLots = line.number<double>();
    spec.lotStep = line.number<double>();
    if (spec.digits < 0 || spec.digits > practice::maxPriceDigits)
        throw BadColumn("a symbol has 0 to 8 digits");
    return spec;
}

practice::Account accountIn(LineReader& line)
{
    practice::Account account;
    account.id = line.text();
    account.kind = line.oneOf<practice::AccountKind>(practice::accountKindFromText);
    account.plan.name = line.text();
    account.plan.steps = line.number<int>();
    account.phase = line.number<int>();
    account.isFunded = line.number<int>() != 0;
    account.status = line.oneOf<practice::AccountStatus>(practice::accountStatusFromText);
    account.balance = line.number<practice::Cents>();
    account.initialBalance = line.number<practice::Cents>();
    account.leverage = line.number<int>();
    account.dayStartEquity = line.number<practice::Cents>();
    account.dayIndex = line.number<std::int64_t>();
    if (account.leverage < 1)
        throw BadColumn("the leverage is below 1");
    return account;
}

practice::Trade tradeIn(LineReader& line)
{
    practice::Trade trade;
    trade.id = line.text();
    trade.accountId = line.text();
    trade.symbol = line.text();
    trade.side = line.oneOf<practice::Side>(practice::sideFromText);
    trade.orderKind = line.oneOf<practice::OrderKind>(practice::orderKindFromText);
    trade.status = line.oneOf<practice::TradeStatus>(practice::tradeStatusFromText);
    trade.lots = line.number<practice::LotHundredths>();
    trade.entryPrice = line.number<double>();
    trade.exitPrice = line.number<double>();
    trade.pendingPrice = line.number<double>();
    trade.stopLoss = line.number<double>();
    trade.takeProfit = line.number<double>();
    trade.pnl = line.number<practice::Cents>();
    trade.margin = line.number<practice::Cents>();
    trade.swap = line.number<practice::Cents>();
    trade.commission = line.number<practice::Cents>();
    trade.createdAt = line.number<TimeMs>();
    trade.updatedAt = line.number<TimeMs>();
    trade.closedAt = line.number<TimeMs>();
    trade.closeReason = line.oneOf<practice::CloseReason>(practice::closeReasonFromText);
    trade.comment = line.text();
    return trade;
}

std::vector<practice::SymbolQuote> quotesIn(LineReader& line, const std::vector<SymbolSpec>& symbols)
{
    std::vector<practice::SymbolQuote> quotes;
    while (!line.atEnd()) {
        LineReader words(line.word(), ' ');
        const auto symbol = words.number<std::size_t>();
        if (symbol >= symbols.size())
            throw BadColumn("there is no symbol " + std::to_string(symbol));
        const double bid = priceOf(words.number<std::int64_t>(), symbols[symbol]);
        const double ask = priceOf(words.number<std::int64_t>(), symbols[symbol]);
        words.expectEnd();
        quotes.push_back({symbol, {bid, ask}});
    }
    return quotes;
}

std::optional<double> level(double price)
{
    return price == 0 ? std::nullopt : std::optional(price);
}

practice::PlaceRequest orderIn(LineReader& line)
{
    practice::PlaceRequest order;
    order.accountId = line.text();
    order.symbol = line.text();
    order.orderKind = line.text();
    order.type = line.text();
    order.lots = line.number<double>();
    order.pendingPrice = level(line.number<double>());
    order.stopLoss = level(line.number<double>());
    order.takeProfit = level(line.number<double>());
    order.comment = line.text();
    return order;
}

practice::ModifyCommand modifyIn(LineReader& line)
{
    practice::ModifyCommand modify;
    modify.tradeId = line.text();
    for (std::optional<double>* value :
        {&modify.change.stopLoss, &modify.change.takeProfit, &modify.change.pendingPrice}) {
        LineReader column(line.word());
        if (std::string_view(LineReader(column).word()).empty())
            continue;
        *value = column.number<double>();
    }
    return modify;
}

CommandEvent commandIn(std::string_view kind, LineReader& line)
{
    CommandEvent event;
    if (kind == "place")
        event.command = orderIn(line);
    else if (kind == "close")
        event.command = practice::CloseCommand{line.text()};
    else if (kind == "cancel")
        event.command = practice::CancelCommand{line.text()};
    else
        event.command = modifyIn(line);
    event.status = line.number<int>();
    event.outcome = line.text();
    return event;
}

PositionsEvent positionsIn(LineReader& line)
{
    PositionsEvent event;
    event.accountId = line.text();
    while (!line.atEnd()) {
        ToldPosition position;
        position.id = line.text();
        position.symbol = line.text();
        position.pnl = line.number<practice::Cents>();
        event.positions.push_back(std::move(position));
    }
    return event;
}

std::vector<std::pair<std::string, practice::Cents>> amountsIn(LineReader& line)
{
    std::vector<std::pair<std::string, practice::Cents>> amounts;
    while (!line.atEnd()) {
        std::string id = line.text();
        amounts.emplace_back(std::move(id), line.number<practice::Cents>());
    }
    return amounts;
}

BarsEvent barsIn(LineReader& line, const std::vector<SymbolSpec>& symbols)
{
    BarsEvent event;
    event.symbol = line.text();
    event.timeframe = line.oneOf<practice::Timeframe>(practice::timeframeFromKey);
    const auto symbol = practice::findSymbol(symbols, event.symbol);
    if (!symbol)
        throw BadColumn("there is no symbol " + LineReader::quoted(event.symbol));
    while (!line.atEnd()) {
        LineReader words(line.word(), ' ');
        practice::Bar bar;
        bar.time = words.number<TimeMs>();
        for (double* price : {&bar.open, &bar.high, &bar.low, &bar.close})
            *price = priceOf(words.number<std::int64_t>(), symbols[*symbol]);
        bar.volume = words.number<std::int64_t>();
        words.expectEnd();
        event.bars.push_back(bar);
    }
    return event;
}

/// The ids of what stands before the start, where each stands once.
class Beginning final {
public:
    void add(const practice::Account& account)
    {
        if (!m_accounts.insert(account.id).second)
            throw BadColumn("the account " + LineReader::quoted(account.id) + " is there twice");
    }
    void add(const practice::Trade& trade)
    {
        if (!m_accounts.contains(trade.accountId))
            throw BadColumn("there is no account " + LineReader::quoted(trade.accountId));
        if (!isLive(trade))
            throw BadColumn("the trade " + LineReader::quoted(trade.id) + " is finished");
        if (!m_trades.insert(trade.id).second)
            throw BadColumn("the trade " + LineReader::quoted(trade.id) + " is there twice");
    }

private:
    std::set<std::string> m_accounts;
    std::set<std::string> m_trades;
};

/// Nothing for a line of a kind that is not known.
std::optional<decltype(SessionEvent::what)> eventIn(
    std::string_view kind, LineReader& line, const std::vector<SymbolSpec>& symbols)
{
    if (kind == "quotes" || kind == "seen")
        return PricesEvent{kind == "quotes", quotesIn(line, symbols)};
    if (kind == "place" || kind == "close" || kind == "cancel" || kind == "modify")
        return commandIn(kind, line);
    if (kind == "trade")
        return TradeEvent{tradeIn(line)};
    if (kind == "account")
        return AccountEvent{accountIn(line)};
    if (kind == "accounts")
        return BalancesEvent{amountsIn(line)};
    if (kind == "positions")
        return positionsIn(line);
    if (kind == "orders")
        return OrdersEvent{line.text()};
    if (kind == "results") {
        std::string account = line.text();
        return ResultsEvent{std::move(account), amountsIn(line)};
    }
    if (kind == "bars")
        return barsIn(line, symbols);
    return std::nullopt;
}

} // namespace

SessionFile::SessionFile(const std::filesystem::path& path)
    : m_path(path)
{
    std::string reason;
    m_file = practice::openToRead(path, reason);
    if (!reason.empty())
        throw SessionError(path.string() + ": cannot be read: " + reason);
    try {
        readStart();
    } catch (const BadColumn& error) {
        fail(error.what());
    }
}

void SessionFile::readStart()
{
    std::string text;
    if (!readLine(text))
        fail("is no recording of tavoran-practice");
    LineReader header(text);
    if (header.word() != "tavoran-session")
        fail("is no recording of tavoran-practice");
    if (const int number = header.number<int>(); number != formatNumber)
        fail("is a recording of format " + std::to_string(number) + ", and only 1 is known");
    m_start.version = header.text();
    m_lastTime = m_start.time = header.number<TimeMs>();
    Beginning beginning;
    while (readLine(text)) {
        LineReader line(text);
        const std::string_view kind = line.word();
        if (kind == "symbol") {
            m_start.symbols.push_back(symbolIn(line));
        } else {
            static_cast<void>(line.number<TimeMs>());
            if (kind == "start")
                return;
            if (kind == "account") {
                m_start.state.accounts.push_back(accountIn(line));
                beginning.add(m_start.state.accounts.back());
            } else if (kind == "trade") {
                m_start.state.liveTrades.push_back(tradeIn(line));
                beginning.add(m_start.state.liveTrades.back());
            } else if (kind == "seen") {
                m_start.prices = quotesIn(line, m_start.symbols);
            } else {
                fail(LineReader::quoted(kind) + " is no line of the beginning");
            }
        }
        line.expectEnd();
    }
    fail("the recording ends before it has begun");
}

std::optional<SessionEvent> SessionFile::next()
{
    std::string text;
    if (m_isWhole || !readLine(text))
        return std::nullopt;
    try {
        LineReader line(text);
        const std::string_view kind = line.word();
        const auto time = line.number<TimeMs>();
        m_lastTime = std::max(m_lastTime, time);
        if (kind == "end") {
            m_isWhole = true;
            return std::nullopt;
        }
        auto what = eventIn(kind, line, m_start.symbols);
        if (!what)
            fail(LineReader::quoted(kind) + " is no line of a recording");
        line.expectEnd();
        return SessionEvent{time, *std::move(what)};
    } catch (const BadColumn& error) {
        fail(error.what());
    }
}

bool SessionFile::readLine(std::string& line)
{
    ++m_line;
    // Without an end it was cut, and may have lost digits.
    return std::getline(m_file, line) && !m_file.eof();
}

void SessionFile::fail(const std::string& reason) const
{
    throw SessionError(m_path.string() + ':' + std::to_string(m_line) + ": " + reason);
}

} // namespace lab
