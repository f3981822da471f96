#include "mainwindow/ToolboxFiller.h"

#include "mainwindow/account/AccountBook.h"
#include "net/records/PriceSnapshot.h"
#include "net/records/TradeRecord.h"
#include "panes/TerminalPane.h"

ToolboxFiller::ToolboxFiller(TerminalPane& toolbox, const AccountBook& book, QObject* parent)
    : QObject(parent)
    , m_toolbox(toolbox)
    , m_book(book)
{
    connect(&m_book, &AccountBook::tradesChanged, this, &ToolboxFiller::showTrades);
    connect(&m_book, &AccountBook::summaryChanged, this, &ToolboxFiller::showSummary);
    connect(&m_book, &AccountBook::profitChanged, &m_toolbox, &TerminalPane::updateTradePnl);
    connect(&m_book, &AccountBook::ticked, &m_toolbox, &TerminalPane::showQuotes);
    connect(&m_book, &AccountBook::quotesGrewOld, this, &ToolboxFiller::showAge);
}

void ToolboxFiller::showTrades()
{
    m_toolbox.setOpenRows(m_book.openTrades(), m_book.pendingOrders(), m_book.digits());
    const QStringList symbols = m_toolbox.tradedSymbols();
    for (const QString& symbol : symbols) {
        if (const auto quote = m_book.tickedQuote(symbol))
            m_toolbox.showQuote(symbol, *quote);
    }
    showAge();
    // The feed may have brought newer profits while the pending orders were on their way.
    for (const QJsonValue value : m_book.openTrades()) {
        const QJsonObject trade = value.toObject();
        const double profit = m_book.profitOf(trade);
        if (profit != trade::profit(trade))
            m_toolbox.updateTradePnl(trade::id(trade), profit);
    }
}

void ToolboxFiller::showAge()
{
    const QStringList symbols = m_toolbox.tradedSymbols();
    for (const QString& symbol : symbols) {
        if (m_book.isTickOld(symbol))
            m_toolbox.markStale(symbol);
    }
}

void ToolboxFiller::showSummary()
{
    if (const auto& summary = m_book.summary()) {
        m_toolbox.setAccountSummary(
            summary->balance, summary->equity, summary->margin, summary->freeMargin, summary->profit);
    } else {
        m_toolbox.clearAccountSummary();
    }
}

void ToolboxFiller::showHistory(const QJsonArray& rows)
{
    m_toolbox.setHistoryRows(rows, m_book.digits());
}
