#pragma once

#include <QMap>
#include <QObject>
#include <QRandomGenerator>

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

    /// How often each thing was done.
    [[nodiscard]] const QMap<QString, int>& done() const { return m_done; }
    [[nodiscard]] int total() const;
    [[nodiscard]] const AccountBook& book() const { return *m_book; }
    [[nodiscard]] ChartArea& area() const { return *m_area; }

private:
    struct Activity {
        QString name;
        int weight;
        std::function<void()> begin;
    };
    /// Begins another thing.
    void begin(const Activity& activity);
    void listActivities();
    void then(std::function<void()> move) { m_next.push_back(std::move(move)); }

    void openOrder();
    void workTradeMenu();
    void modify();
    void addAlert();
    void deleteAlerts();
    void draw();
    void switchExpert();
    void addAverage();
    void pointAtChart();
    void showChartMenu();
    void showSignIn() const;
    void chooseSymbol();

    [[nodiscard]] int chance(qsizetype below) { return static_cast<int>(m_random.bounded(qint64{below})); }
    [[nodiscard]] ChartWindow* someChart();
    [[nodiscard]] QString someSymbol();
    [[nodiscard]] QJsonObject someTrade();
    template <typename Widget> [[nodiscard]] Widget* openWindow() const;

    QRandomGenerator m_random;
    QString m_script; ///< of the expert that is attached
    MainWindow& m_window;
    TerminalActions* m_actions;
    ChartArea* m_area;
    AccountBook* m_book;
    std::vector<Activity> m_activities;
    int m_weights = 0;
    std::deque<std::function<void()>> m_next;
    QMap<QString, int> m_done;
    QString m_doing;
};
