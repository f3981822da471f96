#pragma once

#include <QElapsedTimer>
#include <QMap>
#include <QObject>
#include <QRandomGenerator>
#include <QStringList>
#include <QWidgetList>

#include <deque>
#include <functional>
#include <vector>

class AccountBook;
class ChartArea;
class ChartWindow;
class MainWindow;
class TerminalActions;

/// Somebody who never sits still: does one thing after the other in the main window, as chance has it, and
/// leaves nothing open. What takes several moves goes on with the next turn.
class Trader final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(Trader)

public:
    /// The same seed does the same things, as far as the platform's answers allow.
    Trader(MainWindow& window, quint32 seed);
    ~Trader() override;

    /// The next move: closes what is open, goes on with what was begun, or begins something.
    void turn();
    /// As quiet a desk as there is: nothing open but four new charts of the same kind, no expert, every list
    /// in its usual place.
    void clearDesk();
    void closeOpenWindows() const;
    /// What was begun last.
    [[nodiscard]] const QString& doing() const { return m_doing; }
    /// Everything that there is to do, once.
    void doEachOnce();
    [[nodiscard]] bool isIdle() const { return m_next.empty(); }

    /// How often each thing was seen to have its effect: a window that opened, another timeframe.
    [[nodiscard]] const QMap<QString, int>& done() const { return m_done; }
    /// The things that never had it.
    [[nodiscard]] QStringList neverDone() const;
    /// How many things were begun.
    [[nodiscard]] int total() const { return m_begun; }
    [[nodiscard]] const AccountBook& book() const { return *m_book; }
    [[nodiscard]] ChartArea& area() const { return *m_area; }

private:
    struct Activity {
        QString name;
        int weight;
        std::function<bool()> begin; ///< whether that was all, and had its effect; else noteDone() tells
    };
    /// Begins another thing.
    void begin(const Activity& activity);
    /// What was begun last has had its effect.
    void noteDone();
    void listActivities();
    void then(std::function<void()> move) { m_next.push_back(std::move(move)); }

    void trade();
    /// Does it with a trade, as soon as there is one: before all that is put off.
    void withTrade(std::function<void(const QJsonObject&)> move);
    void waitForTrade(std::function<void(const QJsonObject&)> move, const QElapsedTimer& waiting);
    bool openOrder();
    bool workTradeMenu();
    bool modify();
    bool addAlert();
    bool deleteAlerts();
    bool draw();
    bool switchExpert();
    bool addAverage();
    bool pointAtChart();
    bool showChartMenu();
    void showSignIn() const;
    bool chooseSymbol();

    [[nodiscard]] int chance(qsizetype below) { return static_cast<int>(m_random.bounded(qint64{below})); }
    [[nodiscard]] ChartWindow* someChart();
    [[nodiscard]] QString someSymbol();
    [[nodiscard]] QJsonObject someTrade();
    template <typename Widget> [[nodiscard]] Widget* openWindow() const;
    /// All but the main window and what belongs to it.
    [[nodiscard]] QWidgetList openWindows() const;
    /// What was begun has had its effect if another window is open in the next turn. Returns false: not yet.
    bool lookForWindow();

    QRandomGenerator m_random;
    QString m_script; ///< of the expert that is attached
    MainWindow& m_window;
    TerminalActions* m_actions;
    ChartArea* m_area;
    AccountBook* m_book;
    std::vector<Activity> m_activities;
    int m_weights = 0;
    std::deque<std::function<void()>> m_next;
    int m_begun = 0;
    QMap<QString, int> m_done;
    QString m_doing;
    QWidgetList m_openBefore;
};
