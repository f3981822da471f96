#pragma once

#include "soak/Sampler.h"
#include "soak/Trader.h"

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

#include <memory>
#include <optional>

class MainWindow;
class Relay;

/// What a soak is to do. A time of 0 means never.
struct SoakPlan {
    double seconds = 60.0;
    int activities = 0; ///< ends sooner once there were so many; 0 for no such end
    int turnMs = 30;    ///< between two moves of the trader
    double rate = 1500; ///< price messages a second that are added, bursts aside
    int burst = 20'000; ///< messages of a burst
    double burstEvery = 30.0;
    double cutEvery = 5.0;
    double sampleEvery = 5.0;
    double restEvery = 30.0;
    double patienceAtEnd = 60.0; ///< seconds that the desk may take to get calm at the end
    quint32 seed = 1;
    QString samples; ///< file of the samples; may be empty
};

/// Signs in, keeps the window busy as planned, with a rest now and then in which everything is back in its
/// place and can be compared, and closes the window.
class Soak final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(Soak)

public:
    Soak(Relay& relay, qint64 platformProcess, SoakPlan plan);
    ~Soak() override;

    /// The first rest, and the least of the last ones, since a socket may have a timer more for a while;
    /// nothing if the run did not get there, or the desk did not get calm at the end.
    [[nodiscard]] const std::optional<Sampler::Sample>& baseline() const { return m_baseline; }
    [[nodiscard]] const std::optional<Sampler::Sample>& last() const { return m_last; }
    /// Things to do that had no effect whenever they were begun.
    [[nodiscard]] const QStringList& neverDone() const { return m_neverDone; }
    /// What befalls the line and did not once, though it was planned for: cuts, reconnects, floods.
    [[nodiscard]] const QStringList& neverHappened() const { return m_neverHappened; }
    /// "name value" lines of what was done and met.
    [[nodiscard]] QStringList summary() const { return m_summary; }

private:
    enum class Phase { SignIn, Settle, Each, Busy, Calm, Leave };

    void tick();
    void signIn();
    void begin(MainWindow& window);
    void keepBusy();
    void cut();
    void goTo(Phase phase);
    [[nodiscard]] bool isCalm();
    void rest();
    void giveUpRest();
    void goOn();
    [[nodiscard]] bool isEnough() const;
    void leave();
    void sumUp();

    Relay& m_relay;
    qint64 m_platformProcess;
    SoakPlan m_plan;
    QTimer m_pulse;
    QTimer m_flow;
    QElapsedTimer m_clock;
    QElapsedTimer m_inPhase;
    Phase m_phase = Phase::SignIn;
    bool m_signingIn = false;
    MainWindow* m_window = nullptr;
    std::unique_ptr<Trader> m_trader;
    std::unique_ptr<Sampler> m_sampler;
    QRandomGenerator m_random;
    double m_owed = 0.0;
    double m_nextCut = 0.0;
    double m_nextBurst = 0.0;
    double m_nextSample = 0.0;
    double m_nextRest = 0.0;
    double m_lastFlow = 0.0;
    int m_cutsAsked = 0;
    int m_quietTurns = 0;
    int m_lastRests = 0;
    int m_restsGivenUp = 0;
    std::optional<Sampler::Sample> m_baseline;
    std::optional<Sampler::Sample> m_last;
    QStringList m_neverDone;
    QStringList m_neverHappened;
    QStringList m_summary;
};
