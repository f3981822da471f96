#include "mainwindow/account/AccountLoader.h"

#include "mainwindow/account/AccountBook.h"
#include "net/ApiClient.h"
#include "net/UrlParts.h"

#include <QJsonDocument>

using namespace Qt::StringLiterals;

namespace {

QString tradesPath(QLatin1StringView list, const QString& accountId)
{
    return "/api/trades/"_L1 + list + "?accountId="_L1 + encodeQueryValue(accountId);
}

} // namespace

AccountLoader::AccountLoader(ApiClient& api, AccountBook& book, QObject* parent)
    : QObject(parent)
    , m_book(book)
    , m_reads(api)
{
    connect(&api, &ApiClient::replyTooLarge, this, &AccountLoader::onReplyTooLarge);
}

void AccountLoader::refreshAccounts()
{
    m_reads.refresh(u"/api/accounts"_s,
        [this](const QJsonDocument& document, const QString& error) { onAccounts(document, error); });
}

void AccountLoader::refreshOpenTrades()
{
    const QString id = m_book.currentAccountId();
    if (id.isEmpty())
        return;
    m_reads.refresh(
        tradesPath("open"_L1, id), [this, id](const QJsonDocument& document, const QString& error) {
            onOpenTrades(id, document, error);
        });
}

void AccountLoader::refreshHistory()
{
    const QString id = m_book.currentAccountId();
    if (id.isEmpty())
        return;
    m_reads.refresh(tradesPath("history"_L1, id),
        [this, id](const QJsonDocument& document, const QString& error) { onHistory(id, document, error); });
}

void AccountLoader::refreshAll()
{
    refreshAccounts();
    refreshOpenTrades();
    refreshHistory();
}

void AccountLoader::selectAccount(const QString& id)
{
    if (id != m_book.currentAccountId())
        m_largeHistoryTold = false;
    m_book.selectAccount(id);
    refreshOpenTrades();
    refreshHistory();
}

void AccountLoader::onAccounts(const QJsonDocument& document, const QString& error)
{
    if (!error.isEmpty()) {
        reportFailure(tr("Failed to load accounts: %1").arg(error));
        return;
    }
    m_book.setAccounts(document.array());
    // Also when it is the current one already, so that its trades are loaded.
    selectAccount(m_book.preferredAccountId());
}

void AccountLoader::onOpenTrades(
    const QString& accountId, const QJsonDocument& document, const QString& error)
{
    if (accountId != m_book.currentAccountId())
        return;
    if (!error.isEmpty()) {
        reportFailure(tr("Failed to load trades: %1").arg(error));
        return;
    }
    const QJsonArray open = document.array();
    m_book.readFigures(open);
    m_reads.refresh(tradesPath("pending"_L1, accountId),
        [this, accountId, open](const QJsonDocument& pending, const QString& pendingError) {
            onPendingOrders(accountId, open, pending, pendingError);
        });
}

void AccountLoader::onPendingOrders(
    const QString& accountId, const QJsonArray& open, const QJsonDocument& document, const QString& error)
{
    if (accountId == m_book.currentAccountId())
        m_book.setTrades(open, error.isEmpty() ? document.array() : QJsonArray());
}

void AccountLoader::onHistory(const QString& accountId, const QJsonDocument& document, const QString& error)
{
    if (accountId != m_book.currentAccountId() || !error.isEmpty())
        return;
    m_largeHistoryTold = false;
    Q_EMIT historyRead(document.array());
}

void AccountLoader::onReplyTooLarge(const QString& path)
{
    // Other failures of this read are not told, since a later read may go well. This one comes back every
    // time.
    if (m_largeHistoryTold || path != tradesPath("history"_L1, m_book.currentAccountId()))
        return;
    m_largeHistoryTold = true;
    reportFailure(tr("Failed to load history: %1").arg(tr("the reply is larger than 16 MiB")));
}

void AccountLoader::reportFailure(const QString& message)
{
    Q_EMIT journalLine(tr("Network"), message);
}
