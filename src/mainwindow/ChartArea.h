#pragma once

#include <QMdiArea>
#include <QPointer>
#include <QSet>
#include <QString>

class AccountBook;
class ApiClient;
class ChartWindow;
class PriceSnapshot;
class QJsonObject;
class QTabBar;

/// The document area: opens chart windows, hands them prices, trades and account figures, and keeps
/// their saved layout. A new chart starts with everything the book already knows.
class ChartArea final : public QMdiArea {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ChartArea)

public:
    /// Client and book must outlive the area.
    ChartArea(ApiClient& api, const AccountBook& book, QWidget* parent = nullptr);
    ~ChartArea() override;

    /// Opens and activates a chart of 15-minute candles.
    ChartWindow* openChart(const QString& symbol);
    /// The chart that the trader last worked with; none without charts.
    [[nodiscard]] ChartWindow* activeChart() const;
    /// All charts in the order of their tabs.
    [[nodiscard]] QList<ChartWindow*> charts() const;
    /// Moves the keyboard from a chart to the next or the previous widget of the whole window; false when
    /// there is none.
    bool moveFocusOn(bool next) { return focusNextPrevChild(next); }

    /// The open charts as text, and back. Unreadable parts of the text are left out.
    [[nodiscard]] QString saveLayout() const;
    void restoreLayout(const QString& text);

    // Hand-over to every chart.
    void showQuotes(const PriceSnapshot& prices);
    void applyTrades();
    void applyAccount();
    void applySummary();
    /// Digits and descriptions of a new symbol list. A chart whose symbol is no longer listed stays open
    /// and is reported once; when the symbol returns, the chart is loaded again.
    void applySymbols();
    /// From now on prices may be missing, until catchUp() reads the histories again. Those on show look old.
    void noteInterruption();
    /// Reads every chart's history again if prices have been missed; views that were scrolled back stay.
    void catchUp();

    // For the active chart; nothing without one.
    void setTimeframe(const QString& key);
    void closeActiveChart();

    /// Lays the charts one over the other, each inside the area.
    void cascade();

Q_SIGNALS:
    /// A chart was made, asked for or restored. It has emitted nothing yet, so whoever connects its signals
    /// now misses none.
    void chartOpened(ChartWindow& chart);
    /// A line of the area itself; charts speak for themselves.
    void logMessage(const QString& source, const QString& message);

protected:
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    bool viewportEvent(QEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    struct Placement {
        QPointer<QMdiSubWindow> subWindow;
        QByteArray geometry;
        bool maximized = false;
    };

    QMdiSubWindow* addChart(const QString& symbol, const QString& timeframe, const QJsonObject& state);
    void handOverEverything(ChartWindow& chart);
    void describe(ChartWindow& chart);
    /// The bar that Qt has made for the tabbed mode.
    [[nodiscard]] QTabBar* tabBar() const;
    [[nodiscard]] QMdiSubWindow* frontSubWindow() const;
    void nameTab(QMdiSubWindow* subWindow);
    /// An area without charts says how to open one.
    void showHint(bool shown);
    void applyPlacements();
    void keepInside(QMdiSubWindow& subWindow) const;
    void restoreGeometry(QMdiSubWindow* subWindow, const QByteArray& geometry);

    ApiClient& m_api;
    const AccountBook& m_book;
    bool m_interrupted = false;
    QSet<QString> m_reportedUnlisted;
    QList<Placement> m_placements; ///< until the area is shown, since that places the charts anew
};
