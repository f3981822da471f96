#include "panes/MarketWatchWidget.h"

#include "app/base/NumberFormat.h"
#include "app/base/ServerText.h"
#include "app/ui/EnterKey.h"
#include "app/ui/LetterSize.h"
#include "app/ui/Theme.h"
#include "net/records/PriceSnapshot.h"
#include "net/records/SymbolRecord.h"
#include "panes/KeptRows.h"
#include "panes/RowKeys.h"
#include "panes/SymbolFacts.h"

#include <QEvent>
#include <QHeaderView>
#include <QJsonArray>
#include <QKeyEvent>
#include <QScrollBar>
#include <QStackedWidget>
#include <QTabBar>
#include <QTreeWidget>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

enum Page { SymbolsPage, DetailsPage, TicksPage };

// Keeps an absurdly small opening price from filling the column with hundreds of digits.
constexpr double largestPercent = 1e15;

bool differ(double a, double b)
{
    return std::abs(a - b) * 1e12 > std::min(a, b);
}

Tick tickOf(double price, double last)
{
    if (last <= 0.0 || !differ(price, last))
        return Tick::None;
    return price > last ? Tick::Up : Tick::Down;
}

// A stretched section never becomes narrower than its width before, and an ordinary width would put its end
// out of sight in a narrow dock: so it begins narrow.
void stretchLastColumn(QTreeWidget* list)
{
    constexpr int narrowestLast = 60;
    list->header()->setStretchLastSection(false);
    setColumnWidth(*list, list->columnCount() - 1, narrowestLast);
    list->header()->setStretchLastSection(true);
}

QString symbolOf(const QTreeWidgetItem* item)
{
    return item ? static_cast<const QuoteItem*>(item)->symbol() : QString();
}

} // namespace

MarketWatchWidget::MarketWatchWidget(QWidget* parent)
    : QWidget(parent)
    , m_look(std::make_shared<QuoteLook>(QuoteLook::forCurrentTheme()))
    // Each child is made with its final parent: under a style sheet, a change of parent styles everything
    // anew.
    , m_pages(new QStackedWidget(this))
    , m_list(new QTreeWidget(m_pages))
    , m_details(new QTreeWidget(m_pages))
    , m_tabs(new QTabBar(this))
{
    buildLists();
    m_pages->addWidget(m_list);
    m_pages->addWidget(m_details);

    m_tabs->setShape(QTabBar::RoundedSouth);
    m_tabs->setExpanding(false);
    m_tabs->addTab(tr("Symbols"));
    m_tabs->addTab(tr("Details"));
    //: prices as they come
    m_tabs->addTab(tr("Ticks"));
    m_tabs->setTabEnabled(TicksPage, false);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_pages, 1);
    layout->addWidget(m_tabs, 0);

    connect(m_list, &QTreeWidget::itemDoubleClicked, this, &MarketWatchWidget::activate);
    connect(m_list, &QTreeWidget::itemActivated, this, &MarketWatchWidget::activate);
    connect(m_list, &QTreeWidget::currentItemChanged, this,
        [this](const QTreeWidgetItem* current) { showDetails(symbolOf(current)); });
    connect(m_tabs, &QTabBar::currentChanged, this, &MarketWatchWidget::showPage);
}

void MarketWatchWidget::buildLists()
{
    m_list->setObjectName("marketWatchSymbols"_L1);
    m_list->setAccessibleName(tr("Market Watch"));
    m_list->setHeaderLabels({tr("Symbol"), tr("Bid"), tr("Ask"),
        //: the change of the day
        tr("Daily")});
    for (int column = QuoteItem::Bid; column < m_list->columnCount(); ++column)
        m_list->headerItem()->setTextAlignment(column, Qt::AlignRight | Qt::AlignVCenter);
    m_list->setRootIsDecorated(false);
    m_list->setUniformRowHeights(true);
    m_list->setAllColumnsShowFocus(true);
    stretchLastColumn(m_list);
    setColumnWidth(*m_list, QuoteItem::Symbol, 96);
    setColumnWidth(*m_list, QuoteItem::Bid, 70);
    setColumnWidth(*m_list, QuoteItem::Ask, 70);
    new RowKeys(*m_list); // the list's own child
    m_list->installEventFilter(this);
    m_list->viewport()->installEventFilter(this);

    m_details->setObjectName("marketWatchDetails"_L1);
    m_details->setAccessibleName(tr("Details"));
    m_details->setHeaderLabels({tr("Property"), tr("Value")});
    m_details->setRootIsDecorated(false);
    stretchLastColumn(m_details);
    setColumnWidth(*m_details, 0, 130);
}

QString MarketWatchWidget::currentSymbol() const
{
    const QTreeWidgetItem* item = m_list->currentItem();
    if (!item)
        item = m_list->topLevelItem(0);
    return symbolOf(item);
}

QAbstractItemModel& MarketWatchWidget::quotes() const
{
    return *m_list->model();
}

// Qt reports one double-click as a double-click and, depending on the style, as one or two
// activations. A gesture begins with a fresh press of a button or key and is reported once.
bool MarketWatchWidget::eventFilter(QObject* watched, QEvent* event)
{
    const auto* press = watched == m_list && event->type() == QEvent::KeyPress
        ? static_cast<const QKeyEvent*>(event)
        : nullptr;
    const bool freshPress = watched == m_list->viewport() && event->type() == QEvent::MouseButtonPress;
    if (freshPress || (press && !press->isAutoRepeat()))
        m_reportedItem = nullptr;
    // While Enter is held down another row may take the place of the one that it was meant for.
    if (press && isEnter(*press) && (press->isAutoRepeat() || !isPlainEnter(*press)))
        return true;
    return QWidget::eventFilter(watched, event);
}

void MarketWatchWidget::activate(const QTreeWidgetItem* item)
{
    if (item == m_reportedItem)
        return;
    m_reportedItem = item;
    Q_EMIT symbolActivated(symbolOf(item));
}

void MarketWatchWidget::setSymbols(const QJsonArray& symbols)
{
    // A reconnect sends the list again: the trader's place in it stays.
    const auto nameOf = [this](int row) { return symbolOf(m_list->topLevelItem(row)); };
    const KeptRows kept = KeptRows::of(*m_list, nameOf);
    const int scrolled = m_list->verticalScrollBar()->value();

    m_reportedItem = nullptr;
    m_list->clear();
    m_symbolRows.clear();
    m_symbolSpecs.clear();
    refreshLook();
    const QList<QJsonObject> records = symbol::inListOrder(symbols);
    m_symbolRows.reserve(records.size());
    m_symbolSpecs.reserve(records.size());
    for (const QJsonObject& record : records)
        appendSymbol(record);

    kept.restore(*m_list, nameOf);
    m_list->verticalScrollBar()->setValue(scrolled);
    if (m_pages->currentIndex() == DetailsPage)
        showDetails(currentSymbol());
}

void MarketWatchWidget::appendSymbol(const QJsonObject& record)
{
    const QString name = symbol::name(record);
    const int digits = symbol::digits(record);
    auto* item = new QuoteItem(m_look, name, symbol::description(record), digits);
    m_list->addTopLevelItem(item);
    const double dailyOpen = priceOrNone(symbol::dailyOpen(record), digits);
    m_symbolRows.insert(name, {item, m_list->topLevelItemCount() - 1, digits, 0.0, 0.0, dailyOpen});
    m_symbolSpecs.insert(name, record);
}

void MarketWatchWidget::updatePrices(const QJsonObject& prices)
{
    showQuotes(PriceSnapshot(prices, [this](const QString& symbol) {
        const auto row = m_symbolRows.constFind(symbol);
        return row == m_symbolRows.cend() ? usualPriceDigits : row->digits;
    }));
}

void MarketWatchWidget::showQuotes(const PriceSnapshot& prices)
{
    refreshLook();
    // One repaint for the whole snapshot, of the rows that it has changed. Announcing the change through the
    // model would make the view work out the place of every cell, which costs more than all the rest.
    const QRect viewport = m_list->viewport()->rect();
    const QRect topRow = isVisible() ? m_list->visualRect(m_list->model()->index(0, 0)) : QRect();
    QRegion changed;
    for (const PriceSnapshot::Entry& entry : prices.entries()) {
        const auto row = m_symbolRows.find(entry.symbol);
        if (row == m_symbolRows.end() || !applyQuote(*row, entry.quote))
            continue;
        if (const QRect shown = place(*row, topRow) & viewport; !shown.isEmpty())
            changed += shown;
    }
    if (!changed.isEmpty())
        m_list->viewport()->update(changed);
}

QRect MarketWatchWidget::place(const SymbolRow& row, const QRect& topRow) const
{
    return {0, topRow.top() + row.number * topRow.height(), m_list->viewport()->width(), topRow.height()};
}

void MarketWatchWidget::markStale()
{
    for (const SymbolRow& row : std::as_const(m_symbolRows))
        row.item->setStale(row.lastBid > 0.0 || row.lastAsk > 0.0);
    m_list->viewport()->update();
}

bool MarketWatchWidget::applyQuote(SymbolRow& row, const Quote& quote)
{
    const auto [bid, ask] = quote;
    bool changed = row.item->isStale() && (bid > 0.0 || ask > 0.0);
    if (changed)
        row.item->setStale(false);
    if (bid > 0.0 && bid != row.lastBid) {
        row.item->setBid(bid, tickOf(bid, row.lastBid));
        row.lastBid = bid;
        if (row.dailyOpen > 0.0) {
            const double percent = (bid - row.dailyOpen) / row.dailyOpen * 100.0;
            row.item->setDailyChange(std::min(percent, largestPercent));
        }
        changed = true;
    }
    if (ask > 0.0 && ask != row.lastAsk) {
        row.item->setAsk(ask, tickOf(ask, row.lastAsk));
        row.lastAsk = ask;
        changed = true;
    }
    return changed;
}

void MarketWatchWidget::showPage(int index)
{
    if (index != SymbolsPage && index != DetailsPage)
        return;
    m_pages->setCurrentIndex(index);
    if (index == DetailsPage)
        showDetails(currentSymbol());
}

void MarketWatchWidget::showDetails(const QString& symbol)
{
    m_details->clear();
    const QList<SymbolFact> facts = symbolFacts(symbol, m_symbolSpecs.value(symbol));
    for (const SymbolFact& fact : facts)
        m_details->addTopLevelItem(new QTreeWidgetItem({fact.property, fact.value}));
}

void MarketWatchWidget::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::StyleChange || event->type() == QEvent::PaletteChange)
        refreshLook();
    QWidget::changeEvent(event);
}

void MarketWatchWidget::refreshLook()
{
    if (m_look->dark == isDarkTheme())
        return;
    *m_look = QuoteLook::forCurrentTheme();
    m_list->viewport()->update();
}
