#pragma once

#include "app/base/PriceRule.h"
#include "panes/QuoteItem.h"

#include <QHash>
#include <QJsonObject>
#include <QWidget>

#include <memory>

class PriceSnapshot;
class QAbstractItemModel;
class QJsonArray;
class QStackedWidget;
class QTabBar;
class QTreeWidget;
class QTreeWidgetItem;
struct Quote;

/// The docked list of tradable symbols with live prices and daily change, and a second page with the
/// contract specification of one symbol. Fed through its slots; asks nobody for anything.
class MarketWatchWidget final : public QWidget {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(MarketWatchWidget)

public:
    explicit MarketWatchWidget(QWidget* parent = nullptr);
    ~MarketWatchWidget() override = default;

    /// The current row's symbol, else the first row's, else empty.
    [[nodiscard]] QString currentSymbol() const;

    /// The list itself, for a second view of it: a row for each symbol, columns as in QuoteItem. Prices
    /// change in it without a signal; such a view repaints after updatePrices().
    [[nodiscard]] QAbstractItemModel& quotes() const;

    /// The same as updatePrices() with a price map that has been read already.
    void showQuotes(const PriceSnapshot& prices);

public Q_SLOTS:
    /// Replaces the list; prices, colours and arrows start from nothing. Entries without a "name" are
    /// left out. Of records with the same name each gets a row, and the last one gets the prices.
    void setSymbols(const QJsonArray& symbols);
    /// A price map keyed by symbol. Unknown symbols, and a bid or ask that is no price above 0, change
    /// nothing.
    void updatePrices(const QJsonObject& prices);
    /// No prices come any more: those on show look old until their symbol's next one.
    void markStale();

Q_SIGNALS:
    /// A row was double-clicked or activated with Enter; once for each such gesture.
    void symbolActivated(const QString& symbol);

protected:
    void changeEvent(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    struct SymbolRow {
        QuoteItem* item = nullptr; ///< owned by the list
        int number = 0;            ///< from the top of the list
        int digits = usualPriceDigits;
        double lastBid = 0.0; ///< 0 until the first price
        double lastAsk = 0.0;
        double dailyOpen = 0.0; ///< 0 when unknown: no daily change is shown
    };

    void buildLists();
    void activate(const QTreeWidgetItem* item);
    void appendSymbol(const QJsonObject& record);
    [[nodiscard]] static bool applyQuote(SymbolRow& row, const Quote& quote);
    /// Where the row is in the viewport, which need not reach that far.
    [[nodiscard]] QRect place(const SymbolRow& row, const QRect& topRow) const;
    void showPage(int index);
    void showDetails(const QString& symbol);
    void refreshLook();

    std::shared_ptr<QuoteLook> m_look; ///< shared with the rows, which are deleted later than members
    QStackedWidget* m_pages;
    QTreeWidget* m_list;
    QTreeWidget* m_details;
    QTabBar* m_tabs;
    QHash<QString, SymbolRow> m_symbolRows;
    QHash<QString, QJsonObject> m_symbolSpecs;
    const QTreeWidgetItem* m_reportedItem = nullptr; ///< already reported in the gesture under way
};
