#pragma once

#include "app/base/PriceRule.h"

#include <QHash>
#include <QJsonArray>
#include <QJsonObject>
#include <QTabWidget>

class LogList;
class PriceSnapshot;
class QLabel;
class QPoint;
class QTreeWidget;
class QTreeWidgetItem;
class TradeItem;
struct Quote;

/// The Toolbox at the bottom of the window: open trades with the account line under them, history, and
/// the two logs. Shows what it is handed and computes no profit of its own.
class TerminalPane final : public QTabWidget {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(TerminalPane)

public:
    explicit TerminalPane(QWidget* parent = nullptr);
    ~TerminalPane() override = default;

    /// The parent to make further pages with, so that adding them changes no parent: under a style sheet that
    /// would style everything in them anew.
    [[nodiscard]] QWidget* pageParent() const;

    /// The same as updateCurrentPrices() with a price map that has been read already.
    void showQuotes(const PriceSnapshot& prices);
    /// The same for one symbol.
    void showQuote(const QString& symbol, const Quote& quote);
    /// The current prices of the symbol's trades look old until the next ones.
    void markStale(const QString& symbol);
    /// The symbols of the trades on show, in no order.
    [[nodiscard]] QStringList tradedSymbols() const { return m_rowsBySymbol.keys(); }

public Q_SLOTS:
    /// Appends a line to the Journal tab. Kept for the life of the window.
    void journal(const QString& source, const QString& message);
    /// Appends a line to the Experts tab.
    void expert(const QString& source, const QString& message);
    /// Replaces the trade list by positions, then pending orders, in the order given. `digits` holds the
    /// price decimals of each symbol (5 for others). Of rows with the same id the last one gets updates.
    void setOpenRows(const QJsonArray& open, const QJsonArray& pending, const QHash<QString, int>& digits);
    /// Replaces the history list.
    void setHistoryRows(const QJsonArray& rows, const QHash<QString, int>& digits);
    /// The server's profit of one trade, in account currency; an unknown id changes nothing.
    void updateTradePnl(const QString& tradeId, double profit);
    /// A price map: shows for each trade the price at which it would close. A missing symbol or an
    /// unreadable price leaves the cell as it is.
    void updateCurrentPrices(const QJsonObject& prices);
    /// All in account currency.
    void setAccountSummary(double balance, double equity, double margin, double freeMargin, double profit);
    void clearAccountSummary();

protected:
    void tabInserted(int index) override;

Q_SIGNALS:
    void tradeContextMenu(const QPoint& globalPos, const QJsonObject& trade);
    /// By two clicks or by Enter.
    void tradeDoubleClicked(const QJsonObject& trade);

private:
    struct SymbolTrades {
        int digits = usualPriceDigits;
        QList<TradeItem*> rows;
    };

    void buildTradePage();
    void buildHistoryPage();
    void buildLogPages();
    void requestContextMenu(const QPoint& globalPos, const QTreeWidgetItem* row);
    void indexRowsBySymbol();
    static void showQuote(const SymbolTrades& trades, const Quote& quote);

    QTreeWidget* m_trades;
    QTreeWidget* m_history;
    LogList* m_experts;
    LogList* m_journal;
    QLabel* m_summary;
    QHash<QString, TradeItem*> m_rowById;        ///< into the current trade list, which owns the rows
    QHash<QString, SymbolTrades> m_rowsBySymbol; ///< the rows of m_rowById again
    QHash<QString, int> m_digits;
};
