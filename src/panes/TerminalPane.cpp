#include "panes/TerminalPane.h"

#include "app/base/NumberFormat.h"
#include "app/ui/FocusOrder.h"
#include "app/ui/LetterSize.h"
#include "app/ui/Theme.h"
#include "net/records/PriceSnapshot.h"
#include "net/records/TradeRecord.h"
#include "panes/KeptRows.h"
#include "panes/LogList.h"
#include "panes/RowEntry.h"
#include "panes/RowKeys.h"
#include "panes/RowMenu.h"
#include "panes/TradeCells.h"
#include "panes/TradeItem.h"

#include <QHeaderView>
#include <QLabel>
#include <QScrollBar>
#include <QTreeWidget>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;
using namespace tradeCells;

namespace {

// Wide enough for a time to the second.
constexpr int timeWidth = 140;

/// Columns take what their content needs, so that the profit at the end is in sight in an ordinary window.
/// The last one takes the rest.
void setWidths(QTreeWidget* list, const QList<int>& widths)
{
    for (int column = 0; column < widths.size(); ++column)
        setColumnWidth(*list, column, widths.at(column));
}

/// Remembers where a list is scrolled to and goes back there when it has been filled anew.
class ScrollKeeper final {
    Q_DISABLE_COPY_MOVE(ScrollKeeper)

public:
    explicit ScrollKeeper(QTreeWidget* list)
        : m_list(list)
        , m_value(list->verticalScrollBar()->value())
    {
    }
    ~ScrollKeeper() { m_list->verticalScrollBar()->setValue(m_value); }

private:
    QTreeWidget* m_list;
    int m_value;
};

QTreeWidget* makeList(const QString& name, const QStringList& headers, QWidget* parent)
{
    auto* list = new QTreeWidget(parent);
    list->setObjectName(name);
    list->setColumnCount(int(headers.size()));
    list->setHeaderLabels(headers);
    list->setRootIsDecorated(false);
    list->setUniformRowHeights(true);
    list->setAllColumnsShowFocus(true);
    list->header()->setStretchLastSection(true);
    new RowKeys(*list); // the list's own child
    return list;
}

/// What of a page takes the keyboard from Tab, in the order of its making.
QList<QWidget*> tabStopsIn(QWidget& page)
{
    QList<QWidget*> stops;
    QWidget* widget = &page;
    do {
        if ((widget == &page || page.isAncestorOf(widget)) && (widget->focusPolicy() & Qt::TabFocus))
            stops.append(widget);
        widget = widget->nextInFocusChain();
    } while (widget != &page);
    return stops;
}

QJsonObject recordOf(const QTreeWidgetItem* item)
{
    return item->data(TradeSymbol, Qt::UserRole).toJsonObject();
}

} // namespace

TerminalPane::TerminalPane(QWidget* parent)
    : QTabWidget(parent)
{
    setTabPosition(QTabWidget::South);
    setDocumentMode(true);
    buildTradePage();
    buildHistoryPage();
    buildLogPages();
}

// Each widget is made with its final parent: under a style sheet, a change of parent styles everything in it
// anew.
void TerminalPane::buildTradePage()
{
    auto* page = new QWidget(this);
    page->setObjectName(u"tradePage"_s);
    // The line is dark in both themes, so the light theme's dark text would not be legible on it.
    page->setStyleSheet("QLabel{color:%1;}"_L1.arg(fixedColors::neutral.name()));
    addTab(page, tr("Trade"));

    m_trades = makeList(u"tradeList"_s,
        {tr("Symbol"), tr("Ticket"), tr("Time"), tr("Type"), tr("Volume"), tr("Price"), tr("S / L"),
            tr("T / P"), tr("Price"), tr("Commission"), tr("Swap"), tr("Profit")},
        page);
    m_trades->setAccessibleName(tr("Trade"));
    alignRight(m_trades->headerItem(), tradeNumbers);
    setWidths(m_trades, {80, 76, timeWidth, 76, 60, 80, 76, 76, 80, 92, 64});
    connect(new RowMenu(*m_trades), &RowMenu::wanted, this, &TerminalPane::requestContextMenu);
    const auto report = [this](const QTreeWidgetItem* item) { Q_EMIT tradeDoubleClicked(recordOf(item)); };
    connect(m_trades, &QTreeWidget::itemDoubleClicked, this, report);
    connect(new RowEntry(*m_trades), &RowEntry::entered, this, report);

    m_summary = new QLabel(page);
    m_summary->setObjectName("accountSummary"_L1);
    m_summary->setTextFormat(Qt::RichText);
    m_summary->setStyleSheet("background:#1c1c1c; border:1px solid #1f1f1f; border-top:none;"
                             "padding:4px 8px; font-weight:bold;"_L1);
    clearAccountSummary();

    auto* layout = new QVBoxLayout(page);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_trades, 1);
    layout->addWidget(m_summary, 0);
}

void TerminalPane::buildHistoryPage()
{
    m_history = makeList(u"historyList"_s,
        {tr("Symbol"), tr("Ticket"), tr("Open Time"), tr("Type"), tr("Volume"), tr("Price"), tr("S / L"),
            tr("T / P"), tr("Close Time"), tr("Price"), tr("Commission"), tr("Swap"), tr("Profit")},
        pageParent());
    m_history->setAccessibleName(tr("History"));
    alignRight(m_history->headerItem(), historyNumbers);
    setWidths(m_history, {80, 76, timeWidth, 76, 60, 80, 76, 76, timeWidth, 80, 92, 64});
    addTab(m_history, tr("History"));
}

void TerminalPane::buildLogPages()
{
    m_experts = new LogList(LogList::Clock::Seconds, pageParent());
    m_experts->setObjectName("expertsList"_L1);
    m_experts->setAccessibleName(tr("Experts"));
    addTab(m_experts, tr("Experts"));

    m_journal = new LogList(LogList::Clock::Milliseconds, pageParent());
    m_journal->setObjectName("journalList"_L1);
    m_journal->setAccessibleName(tr("Journal"));
    addTab(m_journal, tr("Journal"));
}

QWidget* TerminalPane::pageParent() const
{
    return widget(0)->parentWidget();
}

// Tab goes down the page on show and then to the tabs, which lie below it, whenever a page was made.
void TerminalPane::tabInserted(int index)
{
    QTabWidget::tabInserted(index);
    QList<QWidget*> order;
    for (int page = 0; page < count(); ++page)
        order.append(tabStopsIn(*widget(page)));
    setFocusOrder(order + QList<QWidget*>{tabBar()});
}

void TerminalPane::journal(const QString& source, const QString& message)
{
    m_journal->append(source, message);
}

void TerminalPane::expert(const QString& source, const QString& message)
{
    m_experts->append(source, message);
}

void TerminalPane::setOpenRows(
    const QJsonArray& open, const QJsonArray& pending, const QHash<QString, int>& digits)
{
    // Refreshes come often: the trader's place in the list stays.
    const auto idOf = [this](int row) { return trade::id(recordOf(m_trades->topLevelItem(row))); };
    const KeptRows kept = KeptRows::of(*m_trades, idOf);
    const ScrollKeeper scroll(m_trades);

    m_digits = digits;
    m_trades->clear();
    m_rowById.clear();
    QList<QTreeWidgetItem*> items;
    items.reserve(open.size() + pending.size());
    for (const QJsonArray& rows : {open, pending}) {
        for (const auto& value : rows) {
            const QJsonObject trade = value.toObject();
            auto* item = new TradeItem(trade, digits.value(trade::symbol(trade), usualPriceDigits));
            items.append(item);
            m_rowById.insert(trade::id(trade), item);
        }
    }
    m_trades->addTopLevelItems(items);
    indexRowsBySymbol();
    kept.restore(*m_trades, idOf);
}

void TerminalPane::indexRowsBySymbol()
{
    m_rowsBySymbol.clear();
    for (TradeItem* item : std::as_const(m_rowById)) {
        const QString symbol = trade::symbol(recordOf(item));
        SymbolTrades& trades = m_rowsBySymbol[symbol];
        trades.digits = m_digits.value(symbol, usualPriceDigits);
        trades.rows.append(item);
    }
}

void TerminalPane::setHistoryRows(const QJsonArray& rows, const QHash<QString, int>& digits)
{
    const auto idOf = [this](int row) {
        return m_history->topLevelItem(row)->data(HistoryTicket, Qt::UserRole).toString();
    };
    const KeptRows kept = KeptRows::of(*m_history, idOf);
    const ScrollKeeper scroll(m_history);
    m_history->clear();
    QList<QTreeWidgetItem*> items;
    items.reserve(rows.size());
    for (const auto& value : rows) {
        const QJsonObject trade = value.toObject();
        const int d = digits.value(trade::symbol(trade), usualPriceDigits);
        auto* item = new QTreeWidgetItem(historyTexts(trade, d));
        item->setData(HistoryTicket, Qt::UserRole, trade::id(trade));
        alignRight(item, historyNumbers);
        item->setForeground(HistoryProfit, profitColor(trade::profit(trade)));
        item->setForeground(HistoryType, typeColor(trade));
        items.append(item);
    }
    m_history->addTopLevelItems(items);
    kept.restore(*m_history, idOf);
}

void TerminalPane::updateTradePnl(const QString& tradeId, double profit)
{
    if (TradeItem* item = m_rowById.value(tradeId); item && std::isfinite(profit))
        item->setProfit(profit);
}

void TerminalPane::updateCurrentPrices(const QJsonObject& prices)
{
    showQuotes(PriceSnapshot(
        prices, [this](const QString& symbol) { return m_digits.value(symbol, usualPriceDigits); }));
}

void TerminalPane::showQuotes(const PriceSnapshot& prices)
{
    for (auto it = m_rowsBySymbol.cbegin(), end = m_rowsBySymbol.cend(); it != end; ++it) {
        if (const Quote* quote = prices.find(it.key()))
            showQuote(*it, *quote);
    }
}

void TerminalPane::showQuote(const QString& symbol, const Quote& quote)
{
    if (const auto trades = m_rowsBySymbol.constFind(symbol); trades != m_rowsBySymbol.cend())
        showQuote(*trades, quote);
}

void TerminalPane::showQuote(const SymbolTrades& trades, const Quote& quote)
{
    for (TradeItem* item : trades.rows) {
        const double price = item->closesAtBid() ? quote.bid : quote.ask;
        if (price != 0.0)
            item->setCurrentPrice(price, trades.digits);
    }
}

void TerminalPane::markStale(const QString& symbol)
{
    const QList<TradeItem*> rows = m_rowsBySymbol.value(symbol).rows;
    for (TradeItem* item : rows)
        item->setStale(true);
}

void TerminalPane::setAccountSummary(
    double balance, double equity, double margin, double freeMargin, double profit)
{
    m_summary->setText(tr("Balance: %1 USD&nbsp;&nbsp;&nbsp;Equity: %2&nbsp;&nbsp;&nbsp;Margin: %3"
                          "&nbsp;&nbsp;&nbsp;Free Margin: %4&nbsp;&nbsp;&nbsp;"
                          "Profit: <span style='color:%6'>%5</span>")
                           .arg(formatMoney(balance), formatMoney(equity), formatMoney(margin),
                               formatMoney(freeMargin), formatMoney(profit), profitColor(profit).name()));
}

void TerminalPane::clearAccountSummary()
{
    m_summary->setText(tr("Balance: —"));
}

void TerminalPane::requestContextMenu(const QPoint& globalPos, const QTreeWidgetItem* row)
{
    const QJsonObject trade = recordOf(row);
    if (!trade.isEmpty())
        Q_EMIT tradeContextMenu(globalPos, trade);
}
