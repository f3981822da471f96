#include "lab/run/SessionCheck.h"

#include "lab/core/session/SessionText.h"
#include "practice/core/broker/PriceGrid.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <stdexcept>
#include <utility>

using namespace Qt::StringLiterals;

namespace lab {

namespace {

constexpr int carriedOut = 200;
constexpr std::size_t atOnce = 2; // so many requests of a script a terminal has on their way together
constexpr std::size_t mostPossible = 4;

std::size_t placeOf(const SessionStart& start, const std::string& symbol)
{
    const auto place = practice::findSymbol(start.symbols, symbol);
    if (!place)
        throw std::invalid_argument("the session has no symbol " + symbol);
    return *place;
}

std::optional<double> wantedLevel(double level)
{
    return level > 0 && std::isfinite(level) ? std::optional(level) : std::nullopt;
}

bool isSame(const practice::TradeCommand& left, const practice::TradeCommand& right)
{
    if (left.index() != right.index())
        return false;
    if (const auto* close = std::get_if<practice::CloseCommand>(&left))
        return close->tradeId == std::get<practice::CloseCommand>(right).tradeId;
    const auto* order = std::get_if<practice::PlaceRequest>(&left);
    if (!order)
        return false;
    const auto& other = std::get<practice::PlaceRequest>(right);
    return order->type == other.type && order->lots == other.lots && order->stopLoss == other.stopLoss
        && order->takeProfit == other.takeProfit;
}

} // namespace

SessionCheck::SessionCheck(
    const SessionStart& start, SessionSeat seat, ExpertScript script, std::set<Delay> late)
    : m_seat(std::move(seat))
    , m_script(std::move(script))
    , m_spec(start.symbols[placeOf(start, m_seat.symbol)])
    , m_symbol(placeOf(start, m_seat.symbol))
    , m_broker(start)
    , m_account(m_seat.accountId)
    , m_before(m_account)
    , m_now(start.time)
{
    m_verdict.taken = std::move(late);
    if (!m_broker.broker().account(m_seat.accountId))
        throw std::invalid_argument("the session has no account " + m_seat.accountId);
}

bool SessionCheck::take(const SessionEvent& event)
{
    if (m_verdict.difference)
        return false;
    m_now = std::max(m_now, event.time);
    m_verdict.endedAt = m_now;
    if (!m_wishes.empty() && m_wishes.front().time + longestWait < m_now)
        differ(m_wishes.front().time, wishText(m_wishes.front()), "nothing");
    // A closing names a position that is gone after it.
    const auto* command = std::get_if<CommandEvent>(&event.what);
    if (command && !m_verdict.difference)
        takeCommand(event.time, *command);
    if (m_verdict.difference)
        return false;
    if (const std::optional<Difference> difference = m_broker.take(event)) {
        differ(difference->time, "the broker: " + difference->expected, difference->recorded);
        return false;
    }
    if (const auto* prices = std::get_if<PricesEvent>(&event.what)) {
        takePrices(event.time, *prices);
        return !m_verdict.difference;
    }
    takeNews(event);
    if (const auto* bars = std::get_if<BarsEvent>(&event.what))
        takeBars(*bars);
    else if (const auto* trade = std::get_if<TradeEvent>(&event.what))
        takeTrade(trade->trade);
    return !m_verdict.difference;
}

bool SessionCheck::isScriptTime(practice::TimeMs time) const
{
    return (!m_seat.from || time >= *m_seat.from) && (!m_seat.to || time < *m_seat.to);
}

void SessionCheck::takePrices(practice::TimeMs time, const PricesEvent& prices)
{
    const auto own
        = std::ranges::find(prices.quotes, m_symbol, [](const auto& entry) { return entry.symbol; });
    if (!prices.announced || own == prices.quotes.end())
        return;
    m_quote = own->quote;
    ++m_verdict.prices;
    if (!m_hasBars)
        return;
    if (!m_stage) {
        m_stage = std::make_unique<ScriptStage>(
            ScriptStage::Settings{QString::fromStdString(m_spec.name), m_spec.digits,
                practice::timeframeLength(m_seat.timeframe), 1, std::move(m_bars)},
            callbacks(), [](const QString&, double, double, double) {});
        m_interruptible = m_stage.get();
    }
    m_stage->setTime(seenTime(time));
    m_stage->fold(m_quote.bid, m_quote.ask);
    if (isScriptTime(time))
        callScript(time);
    else if (m_isLoaded && m_stage->isRunning())
        m_stage->stop();
    m_isNews = false;
}

void SessionCheck::takeNews(const SessionEvent& event)
{
    if (!m_isNews)
        m_before = m_account;
    m_isNews |= m_account.take(event);
}

bool SessionCheck::isLate(Delay delay)
{
    if (m_verdict.taken.contains(delay))
        return true;
    m_verdict.possible.push_back(delay);
    if (m_verdict.possible.size() > mostPossible)
        m_verdict.possible.pop_front();
    return false;
}

practice::TimeMs SessionCheck::seenTime(practice::TimeMs time)
{
    const practice::TimeMs length = practice::timeframeLength(m_seat.timeframe);
    const practice::TimeMs nextBar = (practice::floorDivide(time, length) + 1) * length;
    return nextBar - time <= mostLateness && isLate({time, Late::Price}) ? nextBar : time;
}

const ToldAccount& SessionCheck::seenAccount(practice::TimeMs time)
{
    const bool isClose = m_isNews && time - m_account.toldAt() <= mostLateness;
    const bool isSame = m_account.balance() == m_before.balance() && m_account.equity() == m_before.equity()
        && m_account.positionsOn(m_seat.symbol) == m_before.positionsOn(m_seat.symbol);
    return isClose && !isSame && isLate({time, Late::News}) ? m_before : m_account;
}

void SessionCheck::interrupt()
{
    if (ScriptStage* stage = m_interruptible)
        stage->interrupt();
}

void SessionCheck::callScript(practice::TimeMs time)
{
    m_seen = &seenAccount(time);
    if (!std::exchange(m_isLoaded, true))
        m_stage->load(m_script);
    if (m_stage->isRunning()) {
        m_stage->tick();
        ++m_verdict.calls;
    }
    if (const std::optional<QString>& error = m_stage->error(); error && !m_verdict.scriptError)
        m_verdict.scriptError = error->toStdString();
}

ExpertHost::Callbacks SessionCheck::callbacks()
{
    ExpertHost::Callbacks calls;
    calls.bid = [this] { return m_quote.bid; };
    calls.ask = [this] { return m_quote.ask; };
    calls.balance = [this] { return practice::toUsd(m_seen->balance()); };
    calls.equity = [this] { return practice::toUsd(m_seen->equity()); };
    calls.positionsCount = [this] { return static_cast<int>(m_seen->positionsOn(m_seat.symbol).size()); };
    calls.order = [this](const QString& side, double lots, double stopLoss, double takeProfit) {
        practice::PlaceRequest order;
        order.accountId = m_seat.accountId;
        order.symbol = m_seat.symbol;
        order.orderKind = "MARKET";
        order.type = side.toStdString();
        order.lots = lots;
        order.stopLoss = wantedLevel(stopLoss);
        order.takeProfit = wantedLevel(takeProfit);
        m_wishes.push_back({m_now, order, m_quote});
    };
    calls.closeAll = [this] {
        for (const std::string& id : m_seen->positionsOn(m_seat.symbol))
            m_wishes.push_back({m_now, practice::CloseCommand{id}, m_quote});
    };
    return calls;
}

void SessionCheck::takeBars(const BarsEvent& bars)
{
    if (bars.symbol != m_seat.symbol || bars.timeframe != m_seat.timeframe)
        return;
    std::vector<Candle> candles;
    for (const practice::Bar& bar : bars.bars) {
        const auto volume = std::min<std::int64_t>(bar.volume, std::numeric_limits<qint32>::max());
        candles.push_back({bar.time, bar.open, bar.high, bar.low, bar.close, static_cast<qint32>(volume)});
    }
    m_hasBars = true;
    if (m_stage)
        m_stage->renewBars(std::move(candles));
    else
        m_bars = std::move(candles);
}

bool SessionCheck::isOurs(const practice::TradeCommand& command) const
{
    if (const auto* order = std::get_if<practice::PlaceRequest>(&command))
        return order->accountId == m_seat.accountId && order->symbol == m_seat.symbol
            && order->orderKind == "MARKET";
    const auto* close = std::get_if<practice::CloseCommand>(&command);
    if (!close)
        return false;
    if (const practice::Trade* trade = m_broker.broker().trade(close->tradeId))
        return trade->accountId == m_seat.accountId && trade->symbol == m_seat.symbol;
    // A position that is gone: a script may have asked for its end before it knew.
    return std::ranges::any_of(m_wishes, [&](const Wish& wish) { return isSame(wish.command, command); });
}

void SessionCheck::takeCommand(practice::TimeMs time, const CommandEvent& event)
{
    if (isOurs(event.command))
        match(time, event);
}

void SessionCheck::match(practice::TimeMs time, const CommandEvent& event)
{
    const auto end = m_wishes.begin() + static_cast<std::ptrdiff_t>(std::min(atOnce, m_wishes.size()));
    const auto wish = std::find_if(
        m_wishes.begin(), end, [&](const Wish& each) { return isSame(each.command, event.command); });
    if (wish == end) {
        if (!isScriptTime(time) && m_wishes.empty())
            return; // somebody else's
        differ(time, m_wishes.empty() ? "nothing" : wishText(m_wishes.front()), textOf(event.command));
        return;
    }
    m_verdict.longestDelay = std::max(m_verdict.longestDelay, time - wish->time);
    const bool isOrder = std::holds_alternative<practice::PlaceRequest>(event.command);
    ++(isOrder ? m_verdict.orders : m_verdict.closings);
    if (event.status == carriedOut)
        m_asked[event.outcome] = {wish->time, time, event.command, wish->quote};
    else
        ++m_verdict.refused;
    m_wishes.erase(wish);
}

void SessionCheck::takeTrade(const practice::Trade& trade)
{
    ++m_verdict.trades;
    const auto asked = m_asked.find(trade.id);
    if (asked == m_asked.end())
        return;
    if (std::holds_alternative<practice::PlaceRequest>(asked->second.command)) {
        noteFill(asked->second, trade.side, trade.entryPrice);
    } else if (trade.status == practice::TradeStatus::Closed) {
        const bool wasBuy = trade.side == practice::Side::Buy;
        noteFill(asked->second, wasBuy ? practice::Side::Sell : practice::Side::Buy, trade.exitPrice);
    }
    m_asked.erase(asked);
}

void SessionCheck::noteFill(const Asked& asked, practice::Side side, double price)
{
    const bool isBuy = side == practice::Side::Buy;
    const double decided = isBuy ? asked.quote.ask : asked.quote.bid;
    const std::int64_t up
        = practice::toPoints(price, m_spec.digits) - practice::toPoints(decided, m_spec.digits);
    if (up == 0)
        return;
    m_verdict.moved.push_back({asked.decidedAt, textOf(asked.command), decided, price, isBuy ? up : -up,
        asked.commandAt - asked.decidedAt});
}

void SessionCheck::differ(practice::TimeMs time, std::string expected, std::string recorded)
{
    if (m_verdict.difference)
        return;
    m_verdict.difference = {time, std::move(expected), std::move(recorded)};
    m_verdict.hint = hintAt(time);
}

std::string SessionCheck::hintAt(practice::TimeMs time) const
{
    const practice::TimeMs told = m_account.toldAt();
    const practice::TimeMs length = practice::timeframeLength(m_seat.timeframe);
    const practice::TimeMs sinceBar = time - practice::floorDivide(time, length) * length;
    if (m_verdict.scriptError)
        return "the script has ended with an error: " + *m_verdict.scriptError;
    if (!m_isLoaded)
        return "the script had not been called by then";
    if (told != 0 && std::abs(time - told) < mostLateness)
        return "the account was told within 100 ms of this; the terminal may have known it later";
    if (sinceBar < mostLateness || length - sinceBar < mostLateness)
        return "a bar begins within 100 ms of this; the terminal may have seen it in the other one";
    if (m_verdict.orders + m_verdict.closings == 0 && m_verdict.difference->recorded == "nothing")
        return "was the script on the chart by then, and allowed to trade? --from says since when";
    if (m_verdict.difference->expected == "nothing")
        return "was it the script? --from and --to say when it was on the chart and allowed to trade";
    return {};
}

std::string SessionCheck::wishText(const Wish& wish) const
{
    const int digits = m_spec.digits;
    return textOf(wish.command) + " at " + practice::priceText(wish.quote.bid, digits) + '/'
        + practice::priceText(wish.quote.ask, digits);
}

SessionVerdict SessionCheck::finish(bool isWhole)
{
    if (const std::optional<Difference> missing = m_broker.finish(); missing && isWhole)
        differ(missing->time, "the broker: " + missing->expected, missing->recorded);
    if (!m_verdict.difference && !m_wishes.empty()) {
        const Wish& oldest = m_wishes.front();
        if (oldest.time + endMargin < m_now)
            differ(oldest.time, wishText(oldest), "nothing");
        else
            m_verdict.unanswered = m_wishes.size();
    }
    // Last words, which the terminal would have sent nowhere.
    if (m_stage && m_stage->isRunning()) {
        const std::size_t before = m_wishes.size();
        m_stage->stop();
        m_wishes.resize(std::min(before, m_wishes.size()));
    }
    return m_verdict;
}

} // namespace lab
