#pragma once

#include <QCoreApplication>
#include <QTreeWidgetItem>

/// A row of which one cell shows a live price, and shows as well that the price may not hold any more.
class PriceItem : public QTreeWidgetItem {
    Q_DECLARE_TR_FUNCTIONS(PriceItem)

public:
    PriceItem(const QStringList& texts, int priceColumn);

    /// No prices come any more, or do again: an old one is dimmed and slanted. An empty cell shows neither.
    void setStale(bool stale);

    [[nodiscard]] QVariant data(int column, int role) const override;

private:
    [[nodiscard]] QVariant staleData(int role) const;

    int m_priceColumn;
    bool m_stale = false;
};
