#pragma once

#include "net/records/Quote.h"

#include <QDialog>

class QLabel;
class QTreeWidget;

/// A ladder of prices around a symbol's live bid and ask, one point apart: eight asks above eight bids. The
/// feed carries no sizes, and the window says so.
class DepthOfMarket final : public QDialog {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(DepthOfMarket)

public:
    /// `digits` are the symbol's price decimals. Deletes itself when it is closed.
    DepthOfMarket(const QString& symbol, int digits, QWidget* parent = nullptr);
    ~DepthOfMarket() override = default;

    [[nodiscard]] QString symbol() const { return m_symbol; }

public Q_SLOTS:
    void setDigits(int digits);
    /// Moves the ladder. A quote without a positive bid or ask empties that half of it.
    void setQuote(const Quote& quote);
    /// Whether the prices may not hold any more.
    void setStale(bool stale);

private:
    void buildRows();
    void fillRows();

    QString m_symbol;
    int m_digits;
    Quote m_quote;
    QTreeWidget* m_rows;
    QLabel* m_spread;
};
