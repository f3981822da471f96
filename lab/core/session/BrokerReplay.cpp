#include "lab/core/session/BrokerReplay.h"

#include "lab/core/session/SessionText.h"

#include <utility>

namespace lab {

namespace {

constexpr int accepted = 200;
constexpr int notStored = 503;

std::string textOf(const std::variant<practice::Trade, practice::Account>& record)
{
    return std::visit([](const auto& each) { return lab::textOf(each); }, record);
}

bool isSame(const practice::Account& left, const practice::Account& right)
{
    return left == right;
}

// A line of the history gets an id that nobody could have foreseen.
bool isSame(practice::Trade left, const practice::Trade& right)
{
    if (left.orderKind == practice::OrderKind::Balance)
        left.id = right.id;
    return left == right;
}

} // namespace

BrokerReplay::BrokerReplay(const SessionStart& start)
    : m_broker(
        start.symbols, [this] { return nextId(); }, start.state)
{
    expect(start.time, m_broker.onPrices(start.prices, start.time));
}

std::optional<Difference> BrokerReplay::take(const SessionEvent& event)
{
    if (const auto* prices = std::get_if<PricesEvent>(&event.what))
        return takePrices(event.time, *prices);
    if (const auto* command = std::get_if<CommandEvent>(&event.what))
        return takeCommand(event.time, *command);
    if (const auto* trade = std::get_if<TradeEvent>(&event.what))
        return takeRecord(event.time, trade->trade);
    if (const auto* account = std::get_if<AccountEvent>(&event.what))
        return takeRecord(event.time, account->account);
    return std::nullopt;
}

std::optional<Difference> BrokerReplay::finish()
{
    if (m_expected.empty())
        return std::nullopt;
    return Difference{m_expectedAt, textOf(m_expected.front()), "nothing"};
}

std::optional<Difference> BrokerReplay::takePrices(practice::TimeMs time, const PricesEvent& prices)
{
    if (auto missing = finish())
        return missing;
    expect(time, m_broker.onPrices(prices.quotes, time));
    return std::nullopt;
}

std::optional<Difference> BrokerReplay::takeCommand(practice::TimeMs time, const CommandEvent& event)
{
    if (auto missing = finish())
        return missing;
    if (event.status == notStored)
        return std::nullopt;
    m_nextId = event.outcome;
    const practice::CommandResult result = carryOut(event.command, time);
    const std::string name = lab::textOf(event.command);
    if (result.refusal) {
        const bool isSame
            = result.refusal->httpStatus == event.status && result.refusal->message == event.outcome;
        if (isSame)
            return std::nullopt;
        return Difference{time, name + " refused: " + result.refusal->message,
            name + (event.status == accepted ? " carried out" : " refused: " + event.outcome)};
    }
    if (event.status != accepted)
        return Difference{time, name + " carried out", name + " refused: " + event.outcome};
    if (event.outcome != result.tradeId)
        return Difference{time, name + " carried out", name + " as " + event.outcome};
    expect(time, result.changes);
    return std::nullopt;
}

std::optional<Difference> BrokerReplay::takeRecord(practice::TimeMs time, const Record& record)
{
    if (m_expected.empty())
        return Difference{time, "nothing", textOf(record)};
    const Record expected = std::move(m_expected.front());
    m_expected.pop_front();
    const bool same = expected.index() == record.index()
        && std::visit(
            [&](const auto& each) {
                return isSame(each, std::get<std::remove_cvref_t<decltype(each)>>(record));
            },
            expected);
    if (same)
        return std::nullopt;
    return Difference{time, textOf(expected), textOf(record)};
}

practice::CommandResult BrokerReplay::carryOut(const practice::TradeCommand& command, practice::TimeMs time)
{
    if (const auto* order = std::get_if<practice::PlaceRequest>(&command))
        return m_broker.place(*order, time);
    if (const auto* close = std::get_if<practice::CloseCommand>(&command))
        return m_broker.close(close->tradeId, time);
    if (const auto* cancel = std::get_if<practice::CancelCommand>(&command))
        return m_broker.cancel(cancel->tradeId, time);
    const auto& modify = std::get<practice::ModifyCommand>(command);
    return m_broker.modify(modify.tradeId, modify.change, time);
}

/// The broker asks again as long as it knows a trade by that id, which a damaged recording may name twice.
std::string BrokerReplay::nextId()
{
    if (m_nextId.empty())
        return "unforeseen " + std::to_string(++m_madeIds);
    return std::exchange(m_nextId, {});
}

void BrokerReplay::expect(practice::TimeMs time, const practice::ChangeSet& changes)
{
    m_expectedAt = time;
    m_expected.insert(m_expected.end(), changes.trades.begin(), changes.trades.end());
    m_expected.insert(m_expected.end(), changes.accounts.begin(), changes.accounts.end());
}

} // namespace lab
