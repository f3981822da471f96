#include "mainwindow/TradeDesk.h"

#include "app/base/PriceRule.h"
#include "mainwindow/account/AccountBook.h"
#include "net/records/TradeRecord.h"
#include "orders/ModifyDialog.h"
#include "orders/OrderDialog.h"

using namespace Qt::StringLiterals;

TradeDesk::TradeDesk(ApiClient& api, WsClient& feed, const AccountBook& book, QWidget& window)
    : QObject(&window)
    , m_api(api)
    , m_feed(feed)
    , m_book(book)
    , m_window(window)
{
}

TradeDesk::~TradeDesk()
{
    // Dialogs use the client, also those that are hidden and wait for an answer.
    qDeleteAll(m_window.findChildren<SendingDialog*>(Qt::FindDirectChildrenOnly));
}

void TradeDesk::openOrderDialog(const QString& symbol)
{
    if (m_orderDialog && m_orderDialog->mayReturn()) {
        m_orderDialog->show(); // it hides when it is closed while an order is on its way
        m_orderDialog->raise();
        m_orderDialog->activateWindow();
        return;
    }
    if (m_orderDialog)
        m_orderDialog->leaveForGood();
    m_orderDialog = new OrderDialog(
        m_api, m_feed, m_book.sortedSymbols(), m_book.currentAccountId(), symbol, &m_window);
    connect(m_orderDialog, &OrderDialog::orderPlaced, this, &TradeDesk::onOrderPlaced);
    open(*m_orderDialog, tr("Order failed: %1"));
}

void TradeDesk::open(SendingDialog& dialog, const QString& failure)
{
    dialog.setAttribute(Qt::WA_DeleteOnClose);
    // A dialog that comes back while another account is on show would trade on the wrong one.
    dialog.setReturnRule(
        [this, account = m_book.currentAccountId()] { return m_book.currentAccountId() == account; });
    connect(&dialog, &SendingDialog::outcomeUnknown, this, &TradeDesk::everythingRefreshWanted);
    connect(&dialog, &SendingDialog::failedUnseen, this, [this, failure](const QString& reason) {
        Q_EMIT journalLine(tr("Trade"), failure.arg(reason));
        Q_EMIT failureChanged(failure.arg(reason));
    });
    dialog.show();
}

void TradeDesk::openModifyDialog(const QJsonObject& trade)
{
    if (trade.isEmpty())
        return;
    const int digits = m_book.digits().value(trade::symbol(trade), usualPriceDigits);
    auto* dialog = new ModifyDialog(m_api, trade, digits, &m_window);
    dialog->setModal(true);
    connect(dialog, &ModifyDialog::modified, this, &TradeDesk::onModified);
    open(*dialog, tr("Modify failed: %1"));
}

void TradeDesk::onOrderPlaced()
{
    Q_EMIT journalLine(tr("Trade"), tr("Order placed"));
    Q_EMIT failureChanged({});
    Q_EMIT expertLine(tr("Execution"), tr("Order placed"), LineKind::Ordinary);
    Q_EMIT accountsRefreshWanted();
    Q_EMIT tradesRefreshWanted();
}

void TradeDesk::onModified()
{
    Q_EMIT journalLine(tr("Trade"), tr("Order modified"));
    Q_EMIT failureChanged({});
    Q_EMIT tradesRefreshWanted();
}
