#include "mainwindow/AccountFlow.h"

#include "chart/window/ChartWindow.h"
#include "mainwindow/ChartArea.h"
#include "mainwindow/account/AccountBook.h"
#include "net/UrlParts.h"
#include "net/records/AccountRecord.h"
#include "net/records/TradeRecord.h"
#include "panes/NavigatorWidget.h"
#include "panes/TerminalPane.h"

#include <QComboBox>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSignalBlocker>

using namespace Qt::StringLiterals;

namespace {

QString tradesPath(QLatin1StringView list, const QString& accountId)
{
    return "/api/trades/"_L1 + list + "?accountId="_L1 + encodeQueryValue(accountId);
}

bool listsAccounts(const QComboBox& selector, const QJsonArray& accounts)
{
    if (selector.count() != accounts.size())
        return false;
    for (int i = 0; i < selector.count(); ++i) {
        if (selector.itemData(i).toString() != account::id(accounts.at(i).toObject()))
            return false;
    }
    return true;
}

} // namespace

AccountFlow::AccountFlow(ApiClient& api, AccountBook& book, const AccountViews& views, QObject* parent)
    : QObject(parent)
    , m_book(book)
    , m_views(views)
    , m_reads(api)
{
    connect(&m_views.selector, &QComboBox::currentIndexChanged, this, &AccountFlow::onAccountSelected);
    connect(&api, &ApiClient::replyTooLarge, this, &AccountFlow::onReplyTooLarge);
}

void AccountFlow::refreshAccounts()
{
    m_reads.refresh(u"/api/accounts"_s,
        [this](const QJsonDocument& document, const QString& error) { onAccounts(document, error); });
}

void AccountFlow::refreshOpenTrades()
{
    const QString id = m_book.currentAccountId();
    if (id.isEmpty())
        return;
    m_reads.refresh(
        tradesPath("open"_L1, id), [this, id](const QJsonDocument& document, const QString& error) {
            onOpenTrades(id, document, error);
        });
}

void AccountFlow::refreshHistory()
{
    const QString id = m_book.currentAccountId();
    if (id.isEmpty())
        return;
    m_reads.refresh(tradesPath("history"_L1, id),
        [this, id](const QJsonDocument& document, const QString& error) { onHistory(id, document, error); });
}

void AccountFlow::refreshAll()
{
    refreshAccounts();
    refreshOpenTrades();
    refreshHistory();
}

void AccountFlow::onAccounts(const QJsonDocument& document, const QString& error)
{
    if (!error.isEmpty()) {
        reportFailure(tr("Failed to load accounts: %1").arg(error));
        return;
    }
    m_book.setAccounts(document.array());
    m_views.navigator.setAccounts(m_book.accounts());
    fillSelector();
    if (m_book.accounts().isEmpty()) {
        m_book.selectAccount({});
        m_views.toolbox.clearAccountSummary();
    }

    const int index = m_book.preferredIndex();
    {
        const QSignalBlocker quiet(m_views.selector);
        m_views.selector.setCurrentIndex(index);
    }
    // Said explicitly, so that the trades load even when the index is the same as before.
    onAccountSelected(index);
}

void AccountFlow::fillSelector()
{
    const QJsonArray& accounts = m_book.accounts();
    QComboBox& selector = m_views.selector;
    m_fillingAccounts = true;
    // Lines that stand for the same accounts as before stay: the drop-down may be open.
    if (!listsAccounts(selector, accounts)) {
        selector.clear();
        for (const QJsonValue account : accounts)
            selector.addItem(QString(), account::id(account.toObject()));
    }
    for (int i = 0; i < selector.count(); ++i) {
        const QString text = AccountBook::selectorText(accounts.at(i).toObject());
        if (selector.itemText(i) != text)
            selector.setItemText(i, text);
    }
    m_fillingAccounts = false;
}

void AccountFlow::onAccountSelected(int index)
{
    if (m_fillingAccounts || index < 0)
        return;
    const QString id = m_views.selector.itemData(index).toString();
    if (id != m_book.currentAccountId())
        m_largeHistoryTold = false;
    m_book.selectAccount(id);
    m_views.navigator.setActiveAccount(m_book.currentAccountId());
    m_views.charts.applyAccount();
    refreshOpenTrades();
    refreshHistory();
    updateAccountSummary();
}

void AccountFlow::activateAccount(const QString& accountId)
{
    const int index = m_views.selector.findData(accountId);
    if (index >= 0)
        m_views.selector.setCurrentIndex(index);
}

void AccountFlow::onOpenTrades(const QString& accountId, const QJsonDocument& document, const QString& error)
{
    if (accountId != m_book.currentAccountId())
        return;
    if (!error.isEmpty()) {
        reportFailure(tr("Failed to load trades: %1").arg(error));
        return;
    }
    const QJsonArray open = document.array();
    m_book.readFigures(open);
    updateAccountSummary();
    m_reads.refresh(tradesPath("pending"_L1, accountId),
        [this, accountId, open](const QJsonDocument& pending, const QString& pendingError) {
            onPendingOrders(accountId, open, pending, pendingError);
        });
}

void AccountFlow::onPendingOrders(
    const QString& accountId, const QJsonArray& open, const QJsonDocument& document, const QString& error)
{
    if (accountId != m_book.currentAccountId())
        return;
    m_book.setTrades(open, error.isEmpty() ? document.array() : QJsonArray());
    showTrades();
}

void AccountFlow::showTrades()
{
    TerminalPane& toolbox = m_views.toolbox;
    toolbox.setOpenRows(m_book.openTrades(), m_book.pendingOrders(), m_book.digits());
    for (const QString& symbol : toolbox.tradedSymbols()) {
        if (const auto quote = m_book.tickedQuote(symbol))
            toolbox.showQuote(symbol, *quote);
    }
    // The feed may have brought newer profits while the pending orders were on their way.
    for (const QJsonValue value : m_book.openTrades()) {
        const QJsonObject trade = value.toObject();
        const QString id = trade::id(trade);
        const auto newer = m_book.tradePnl().constFind(id);
        if (newer != m_book.tradePnl().cend() && *newer != trade::profit(trade))
            toolbox.updateTradePnl(id, *newer);
    }
    m_views.charts.applyTrades();
}

void AccountFlow::onHistory(const QString& accountId, const QJsonDocument& document, const QString& error)
{
    if (accountId != m_book.currentAccountId() || !error.isEmpty())
        return;
    m_largeHistoryTold = false;
    m_views.toolbox.setHistoryRows(document.array(), m_book.digits());
}

void AccountFlow::onReplyTooLarge(const QString& path)
{
    // Other failures of this read pass, and are not told. This one would stay, and the list with it.
    if (m_largeHistoryTold || path != tradesPath("history"_L1, m_book.currentAccountId()))
        return;
    m_largeHistoryTold = true;
    reportFailure(tr("Failed to load history: %1").arg(tr("the reply is larger than 16 MiB")));
}

void AccountFlow::onTradesUpdated(const QJsonArray& rows)
{
    const QString current = m_book.currentAccountId();
    bool matched = false;
    for (const QJsonValue value : rows) {
        const QJsonObject row = value.toObject();
        if (current.isEmpty() || trade::accountId(row) != current)
            continue;
        matched = true;
        const QString id = trade::id(row);
        const double profit = trade::profit(row);
        m_book.setTradePnl(id, profit);
        m_views.toolbox.updateTradePnl(id, profit);
    }
    if (matched)
        updateAccountSummary();
}

void AccountFlow::updateAccountSummary()
{
    const auto summary = m_book.summary();
    if (!summary) {
        m_views.toolbox.clearAccountSummary();
        return;
    }
    m_views.toolbox.setAccountSummary(
        summary->balance, summary->equity, summary->margin, summary->freeMargin, summary->profit);
    m_views.charts.applySummary();
}

void AccountFlow::reportFailure(const QString& message)
{
    Q_EMIT journalLine(tr("Network"), message);
}
