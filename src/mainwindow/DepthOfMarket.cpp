#include "mainwindow/DepthOfMarket.h"

#include "app/base/NumberFormat.h"
#include "app/base/ServerText.h"
#include "app/ui/LetterSize.h"
#include "app/ui/PlainText.h"
#include "panes/PriceItem.h"

#include <QHeaderView>
#include <QLabel>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace {

constexpr QSize depthSize(320, 480);
constexpr int rowsPerSide = 8;
constexpr QRgb askColor = 0xffff4a4a;
constexpr QRgb bidColor = 0xff3ba7ff;

enum Column { SideColumn, PriceColumn, DistanceColumn };

double pointOf(int digits)
{
    return std::pow(10.0, -clampDigits(digits));
}

} // namespace

DepthOfMarket::DepthOfMarket(const QString& symbol, int digits, QWidget* parent)
    : QDialog(parent, Qt::Tool)
    , m_symbol(symbol)
    , m_digits(digits)
    , m_rows(new QTreeWidget)
    , m_spread(plainLabel({}))
{
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(tr("Depth of Market — %1").arg(shownName(symbol)));
    buildRows();

    auto* note = plainLabel(tr("The feed carries no order book, so no sizes are shown. "
                               "The rows are prices one point apart around the live bid and ask."));
    note->setObjectName(u"depthNote"_s);
    note->setWordWrap(true);
    m_spread->setObjectName(u"depthSpread"_s);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_rows, 1);
    layout->addWidget(m_spread);
    layout->addWidget(note);
    const int margins = layout->contentsMargins().left() + layout->contentsMargins().right();
    resize(withLetters(depthSize, *this).expandedTo({widthOfEqualColumns(*m_rows) + margins, 0}));
    fillRows();
}

void DepthOfMarket::buildRows()
{
    m_rows->setObjectName(u"depthRows"_s);
    m_rows->setAccessibleName(windowTitle());
    //: bid or ask; how far the row is from the price
    m_rows->setHeaderLabels({tr("Side"), tr("Price"), tr("Points away")});
    for (const int column : {PriceColumn, DistanceColumn})
        m_rows->headerItem()->setTextAlignment(column, Qt::AlignRight | Qt::AlignVCenter);
    m_rows->setRootIsDecorated(false);
    m_rows->setUniformRowHeights(true);
    m_rows->setSelectionMode(QAbstractItemView::NoSelection);
    m_rows->header()->setStretchLastSection(false);
    m_rows->header()->setSectionResizeMode(QHeaderView::Stretch);
    for (int row = 0; row < 2 * rowsPerSide; ++row) {
        const bool isAsk = row < rowsPerSide;
        const int distance = isAsk ? rowsPerSide - 1 - row : row - rowsPerSide;
        auto* item = new PriceItem(
            {isAsk ? tr("Ask") : tr("Bid"), QString(), QString::number(distance)}, PriceColumn);
        m_rows->addTopLevelItem(item);
        for (int column = SideColumn; column <= DistanceColumn; ++column)
            item->setForeground(column, QColor::fromRgb(isAsk ? askColor : bidColor));
        for (const int column : {PriceColumn, DistanceColumn})
            item->setTextAlignment(column, Qt::AlignRight | Qt::AlignVCenter);
    }
}

void DepthOfMarket::setDigits(int digits)
{
    if (digits == m_digits)
        return;
    m_digits = digits;
    fillRows();
}

void DepthOfMarket::setQuote(const Quote& quote)
{
    if (quote == m_quote)
        return;
    m_quote = quote;
    fillRows();
}

void DepthOfMarket::setStale(bool stale)
{
    for (int row = 0; row < m_rows->topLevelItemCount(); ++row)
        static_cast<PriceItem*>(m_rows->topLevelItem(row))->setStale(stale);
    const bool spreadIsOld = stale && m_quote.isComplete();
    // A font of its own would not outlast a change of the theme.
    if (m_spread->styleSheet().isEmpty() == spreadIsOld)
        m_spread->setStyleSheet(spreadIsOld ? u"font-style:italic;"_s : QString());
}

void DepthOfMarket::fillRows()
{
    const double point = pointOf(m_digits);
    for (int row = 0; row < 2 * rowsPerSide; ++row) {
        const bool isAsk = row < rowsPerSide;
        const double best = isAsk ? m_quote.ask : m_quote.bid;
        const int steps = isAsk ? rowsPerSide - 1 - row : rowsPerSide - row;
        const double price = best + steps * point;
        // A price must be at least half a point above 0.
        const bool known = best > 0.0 && price > point / 2.0;
        m_rows->topLevelItem(row)->setText(PriceColumn, known ? formatPrice(price, m_digits) : QString());
    }
    if (m_quote.isComplete()) {
        const double points = (m_quote.ask - m_quote.bid) / point;
        const int count = pluralCount(std::llround(std::min(points, 1e9)));
        m_spread->setText(tr("Spread: %1 points", nullptr, count).arg(QString::number(points, 'f', 0)));
    } else {
        m_spread->setText(tr("Waiting for prices..."));
    }
}
