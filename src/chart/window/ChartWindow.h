#pragma once

#include "app/base/LineKind.h"
#include "chart/data/IndicatorKind.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QPointer>
#include <QWidget>

#include <vector>

class ApiClient;
class ChartComment;
class ChartExpert;
class ChartPropertiesDialog;
class ChartWidget;
class DataWindow;
class DrawingStore;
class OneClickPanel;
class ReadCoalescer;
struct Candle;
struct Quote;

/// One chart of the document area: owns the canvas, knows its symbol, timeframe and account, loads its candle
/// history and drawings, and turns live prices and the account's trades into ticks and level lines. Asks the
/// server through the client that it is given, and in no other way.
class ChartWindow final : public QWidget {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ChartWindow)

public:
    /// `timeframe` is a key such as "15m"; `digits` the symbol's price decimals. Nothing is requested
    /// before load(). `api` must outlive the window.
    ChartWindow(ApiClient& api, const QString& symbol, const QString& timeframe, const QString& accountId,
        int digits, QWidget* parent = nullptr);
    ~ChartWindow() override;

    [[nodiscard]] QString symbol() const { return m_symbol; }
    [[nodiscard]] QString timeframe() const { return m_timeframe; }
    /// The account whose drawings the chart shows; may be empty.
    [[nodiscard]] QString accountId() const;
    [[nodiscard]] int digits() const { return m_digits; }
    [[nodiscard]] ChartWidget& chart() const { return *m_chart; }

    [[nodiscard]] bool oneClickTrading() const;

    /// The current account's last known figures, in account currency; 0 before the first.
    [[nodiscard]] double balance() const { return m_balance; }
    [[nodiscard]] double equity() const { return m_equity; }

    /// The name of the expert that is running here; empty without one.
    [[nodiscard]] QString expertName() const;

    /// "EURUSD,M15": symbol and timeframe label, followed by "  •  " and the expert's name when one runs.
    [[nodiscard]] QString title() const;

    /// What is saved with the window layout; see ChartState.
    [[nodiscard]] QJsonObject saveState() const;
    /// Applies a saved state; ChartState::fromJson() tells what becomes of missing and unreadable values.
    void restoreState(const QJsonObject& state);

    /// A live quote of this chart's symbol. It counts at the time of this machine, since the feed carries
    /// none. A price of 0 is shown, but the quote goes into no candle.
    void onQuote(const Quote& quote);
    /// The feed has gone: bid and ask look old until the next quote.
    void noteInterruption();

    /// The size of a chart that is not maximized, such as one of a cascade.
    [[nodiscard]] QSize sizeHint() const override;

public Q_SLOTS:
    /// The first requests of a new window: its history and its drawings.
    void load();
    /// Asks for the candle history again, which brings the view to its end. A reply to an earlier request no
    /// longer counts.
    void reload();
    /// The same after prices may have been missed. The trader did not ask for it, so a view that was scrolled
    /// back stays where it is, and a gesture under way goes on.
    void catchUp();
    /// Reads history and drawings again when they could not be read before; the view stays as with catchUp().
    void loadAgain();
    /// The same as onQuote() with a price map, of which only this chart's symbol is read. A price that is
    /// missing or cannot be read counts as 0.
    void onPrices(const QJsonObject& prices);
    /// Replaces the level lines by those of this symbol's trades.
    void setTrades(const QJsonArray& open, const QJsonArray& pending);
    /// The account whose drawings the chart shows from now on; an equal id does nothing.
    void setAccountId(const QString& accountId);
    /// Balance and equity of the current account, in account currency.
    void setAccountFigures(double balance, double equity);
    /// Changes to another timeframe key and reloads; an equal key does nothing.
    void setTimeframe(const QString& key);
    /// The symbol's price decimals and long name, known once the server has listed it.
    void setSymbolInfo(int digits, const QString& description);
    void zoomIn();
    void zoomOut();

    /// Attaches the script in place of the expert that is attached; a failure is told by expertLog().
    void attachExpert(const QString& path);
    /// Ends the attached expert, if there is one.
    void detachExpert();

    /// An indicator over the prices asks for its period and takes the next colour of the palette; one with a
    /// pane of its own is shown over its usual period.
    void addIndicator(IndicatorKind kind);
    void removeMovingAverages();
    /// Shows or hides the pane of an indicator that has one, over its usual period.
    void showPane(IndicatorKind kind, bool on);
    /// The drawing that the next clicks on the chart place; see ChartWidget::setTool().
    void setTool(const QString& key);
    void deleteSelectedDrawing();
    /// Shows or hides the panel of one-click trading, which keeps its volume.
    void setOneClickTrading(bool on);
    void setMeasureMode(bool on);
    /// 0 candles, 1 bars, 2 line.
    void setChartType(int type);
    void setAutoScroll(bool on);
    void setChartShift(bool on);
    /// The window with the prices of the candle under the pointer; one for each chart.
    void showDataWindow();
    /// The dialog for the chart's colours; they change when it is accepted.
    void showProperties();
    /// Tells that the trader asks for the contract specification of this symbol.
    void requestSpecification();

Q_SIGNALS:
    /// What menus show of this chart has changed: see ChartWidget::settingsChanged().
    void settingsChanged();
    void specificationRequested(const QString& symbol);
    void titleChanged(const QString& title);
    void timeframeChanged(const QString& key);
    void logMessage(const QString& source, const QString& message);
    void modifyLevelRequested(const QString& tradeId, const QString& kind, double newPrice);
    /// The trader wants to trade at market; `side` is "SELL" or "BUY".
    void quickTradeRequested(const QString& symbol, const QString& side, double lots);
    /// A line about or from the expert; `source` is its name.
    void expertLog(const QString& source, const QString& message, LineKind kind);
    /// The expert wants to trade at market: an order body without the account.
    void expertOrderRequested(const QJsonObject& body);
    void expertCloseAllRequested(const QString& symbol);
    void crosshairMoved(const QString& ohlc);
    void autoScrollChanged(bool on);

protected:
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    void requestHistory();
    void onHistory(const QByteArray& body, const QString& error);
    void takeHistory(std::vector<Candle> candles, bool toEnd);
    /// Leaves out candles with a price that is none by the symbol's present decimals.
    void dropCandlesWithoutPrices();
    void connectExpert();
    void labelChart();
    /// Names the averages beside the panel while it covers their corner.
    void placeTexts();
    void nameWindow();
    void showQuote();

    ReadCoalescer* m_history;
    QString m_symbol;
    QString m_timeframe;
    QString m_description;
    int m_digits;
    ChartWidget* m_chart;
    DrawingStore* m_drawings;
    OneClickPanel* m_oneClick;
    ChartComment* m_comment;
    ChartExpert* m_expert;
    DataWindow* m_dataWindow = nullptr;
    QPointer<ChartPropertiesDialog> m_properties;
    unsigned int m_historyGeneration = 0;
    bool m_endWanted = false; ///< the history that is on its way brings the view to its end
    bool m_restored = false;  ///< a saved state was applied, and no history has arrived since
    bool m_quoted = false;    ///< a price has come
    bool m_listed = false;    ///< the server has told the symbol's decimals
    double m_balance = 0.0;
    double m_equity = 0.0;
};
