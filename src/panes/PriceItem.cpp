#include "panes/PriceItem.h"

#include "app/ui/Theme.h"

#include <QBrush>
#include <QFont>

#include <utility>

PriceItem::PriceItem(const QStringList& texts, int priceColumn)
    : QTreeWidgetItem(texts)
    , m_priceColumn(priceColumn)
{
}

void PriceItem::setStale(bool stale)
{
    if (std::exchange(m_stale, stale) != stale)
        emitDataChanged();
}

QVariant PriceItem::data(int column, int role) const
{
    if (m_stale && column == m_priceColumn) {
        if (const QVariant old = staleData(role); old.isValid() && !text(column).isEmpty())
            return old;
    }
    return QTreeWidgetItem::data(column, role);
}

QVariant PriceItem::staleData(int role) const
{
    switch (role) {
    case Qt::ForegroundRole:
        return QBrush(themeStaleColor());
    case Qt::FontRole:
        return staleFont();
    case Qt::AccessibleTextRole:
        //: %1 a price, said of it while the feed is down
        return tr("%1, last known price").arg(text(m_priceColumn));
    default:
        return {};
    }
}
