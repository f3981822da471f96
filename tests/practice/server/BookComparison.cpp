#include "practice/server/BookComparison.h"

#include "practice/Check.h"
#include "practice/core/broker/RecordText.h"

#include <algorithm>
#include <iostream>
#include <map>
#include <sstream>
#include <utility>
#include <vector>

using namespace practice;

namespace {

template <typename T> void same(const T& platform, const T& books, const std::string& what)
{
    std::ostringstream text;
    if (platform != books)
        text << what << ": the platform says " << platform << ", the books " << books;
    BookComparison::must(platform == books, text.str());
}

} // namespace

void BookComparison::must(bool agreed, const std::string& what)
{
    if (!CHECK(agreed)) {
        std::cout << "  " << what << '\n';
        throw check::CaseAborted{};
    }
}

void BookComparison::ofNow(const Platform& platform, const SecondBooks& books)
{
    const Broker& broker = platform.broker();
    std::size_t live = 0;
    for (std::size_t i = 0; i < books.books().size(); ++i) {
        const SecondBooks::Book& book = books.books()[i];
        const std::string& id = book.terms.id;
        const Account& account = *broker.account(id);
        const AccountFigures figures = broker.figures(id);
        same(account.balance, book.balance, id + " balance");
        same(figures.equity, books.equity(i), id + " equity");
        same(figures.margin, books.margin(i), id + " margin");
        same(account.phase, book.phase, id + " phase");
        same(toText(account.status), toText(book.status), id + " status");
        same(account.dayIndex, book.day, id + " day");
        same(account.dayStartEquity, book.dayStart, id + " equity at the day's start");
        live += broker.openTrades(id).size() + broker.pendingOrders(id).size();
    }
    same(live, books.live().size(), "live trades");
    for (const SecondBooks::Line& line : books.live()) {
        const Trade* trade = broker.trade(line.id);
        must(trade != nullptr, "live trade " + line.id);
        ofTrade(*trade, line, books);
        same(trade->pnl, line.status == TradeStatus::Open ? books.profitNow(line) : 0, line.id + " profit");
    }
}

void BookComparison::ofTrade(const Trade& trade, const SecondBooks::Line& line, const SecondBooks& books)
{
    const std::string name = line.id + ' ' + trade.symbol;
    same(trade.accountId, books.books()[line.account].terms.id, name + " account");
    same(toText(trade.status), toText(line.status), name + " status");
    same(trade.lots, line.lots, name + " volume");
    same(trade.entryPrice, books.priceOf(line.entry, line.symbol), name + " entry");
    same(trade.pendingPrice, books.priceOf(line.trigger, line.symbol), name + " price");
    same(trade.stopLoss, books.priceOf(line.stop, line.symbol), name + " stop loss");
    same(trade.takeProfit, books.priceOf(line.target, line.symbol), name + " take profit");
    same(trade.swap, line.swap, name + " swap");
    same(trade.commission, line.commission, name + " commission");
    same(trade.margin, line.margin, name + " margin");
    same(trade.createdAt, line.begun, name + " begin");
}

int BookComparison::ofHistory(Platform& platform, const SecondBooks& books)
{
    int compared = 0;
    for (const SecondBooks::Book& book : books.books())
        compared += ofHistory(platform, book, books);
    return compared;
}

int BookComparison::ofHistory(Platform& platform, const SecondBooks::Book& book, const SecondBooks& books)
{
    std::map<std::string, Trade> trades;
    std::vector<std::pair<TimeMs, Cents>> paidIn;
    for (const Trade& trade : platform.trades().history(book.terms.id, 1'000'000)) {
        if (trade.orderKind == OrderKind::Balance)
            paidIn.emplace_back(trade.closedAt, trade.pnl);
        else
            must(trades.emplace(trade.id, trade).second, trade.id + " stands twice in the history");
    }
    int compared = 0;
    std::vector<std::pair<TimeMs, Cents>> expected;
    for (const SecondBooks::Line& line : book.finished) {
        if (line.kind == OrderKind::Balance) {
            expected.emplace_back(line.ended, line.result);
            continue;
        }
        const auto found = trades.find(line.id);
        must(found != trades.end(), line.id + " is not in the history");
        ofTrade(found->second, line, books);
        same(found->second.pnl, line.result, line.id + " result");
        same(found->second.exitPrice, books.priceOf(line.exit, line.symbol), line.id + " exit");
        same(found->second.closedAt, line.ended, line.id + " end");
        same(toText(found->second.closeReason), toText(line.reason), line.id + " reason");
        trades.erase(found);
        ++compared;
    }
    same(trades.size(), std::size_t{0}, book.terms.id + " lines that the books do not know");
    std::ranges::sort(paidIn);
    std::ranges::sort(expected);
    must(paidIn == expected, book.terms.id + " changes of the balance");
    return compared;
}
