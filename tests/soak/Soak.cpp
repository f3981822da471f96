#include "soak/Soak.h"

#include "chart/window/ChartWindow.h"
#include "mainwindow/ChartArea.h"
#include "mainwindow/MainWindow.h"
#include "mainwindow/account/AccountBook.h"
#include "net/records/TradeRecord.h"
#include "panes/TerminalPane.h"
#include "soak/ProcessFigures.h"
#include "soak/Relay.h"
#include "support/LiveObjects.h"

#include <QApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTreeView>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr int pulseWhileWaitingMs = 50;
constexpr int flowMs = 20;
/// A desk that does not get calm within this time, for want of a processor, is no rest to compare.
constexpr double calmPatience = 30.0;
constexpr double msPerSecond = 1000.0;
constexpr int quietTurnsWanted = 20;
constexpr int lastRests = 3;

bool isConnected(const QWidget& window)
{
    const auto* label = window.findChild<QLabel*>(u"connectionLabel"_s);
    return label && label->text().contains(u"> Connected");
}

/// Whether an answer is on its way, or something is put off for a moment.
bool isAwaiting()
{
    const QList<QObject*> objects = liveobjects::here();
    return std::any_of(objects.begin(), objects.end(), [](const QObject* object) {
        return object->inherits("QNetworkReply") || object->inherits("QSingleShotTimer");
    });
}

/// What a row of the Journal takes, in bytes, with the texts of this run.
double journalRowBytes(const QWidget& window)
{
    const auto* list = window.findChild<QTreeView*>(u"journalList"_s);
    const QAbstractItemModel& model = *list->model();
    if (model.rowCount() == 0)
        return 0.0;
    constexpr int rows = 20'000;
    TerminalPane pane;
    pane.setCurrentIndex(pane.count() - 1);
    pane.show();
    const auto add = [&](int count) {
        for (int row = 0; row < count; ++row) {
            const int like = row % model.rowCount();
            pane.journal(model.index(like, 1).data().toString(), model.index(like, 2).data().toString());
        }
        QApplication::processEvents();
    };
    add(1000);
    const qint64 before = heapInUse();
    add(rows);
    return static_cast<double>(heapInUse() - before) / rows;
}

/// What a closed trade in the history takes, in bytes, if it is like one of these.
double historyRowBytes(const QJsonArray& trades, const QHash<QString, int>& digits)
{
    if (trades.isEmpty())
        return 0.0;
    constexpr int rows = 2000;
    QByteArray text;
    for (int row = 0; row < rows; ++row) {
        text += text.isEmpty() ? "[" : ",";
        text += QJsonDocument(trades.at(row % trades.size()).toObject()).toJson(QJsonDocument::Compact);
    }
    text += ']';
    TerminalPane pane;
    pane.show();
    pane.setHistoryRows(trades, digits);
    const qint64 before = heapInUse();
    pane.setHistoryRows(QJsonDocument::fromJson(text).array(), digits);
    return static_cast<double>(heapInUse() - before) / rows;
}

} // namespace

Soak::Soak(Relay& relay, qint64 platformProcess, SoakPlan plan)
    : m_relay(relay)
    , m_platformProcess(platformProcess)
    , m_plan(std::move(plan))
    , m_random(m_plan.seed)
{
    connect(&m_pulse, &QTimer::timeout, this, &Soak::tick);
    connect(&m_flow, &QTimer::timeout, this, &Soak::keepBusy);
    m_pulse.start(pulseWhileWaitingMs);
}

Soak::~Soak() = default;

void Soak::goTo(Phase phase)
{
    m_phase = phase;
    m_inPhase.start();
    m_quietTurns = 0;
    const bool busy = phase == Phase::Busy || phase == Phase::Each;
    m_pulse.setInterval(busy ? m_plan.turnMs : pulseWhileWaitingMs);
    if (phase == Phase::Busy) {
        m_lastFlow = m_sampler->seconds();
        m_flow.start(flowMs);
    } else {
        m_flow.stop();
        m_relay.endFlood();
    }
}

void Soak::tick()
{
    switch (m_phase) {
    case Phase::SignIn:
        return signIn();
    case Phase::Settle:
        if (isConnected(*m_window) && m_trader->book().summary())
            goTo(Phase::Each);
        if (m_phase == Phase::Each)
            m_trader->doEachOnce();
        return;
    case Phase::Each:
        if (!m_trader->isIdle())
            return m_trader->turn();
        m_relay.cutFeed();
        m_trader->clearDesk();
        return goTo(Phase::Calm);
    case Phase::Busy: {
        if (isEnough() || m_sampler->seconds() >= m_nextRest) {
            // So much at once is nothing that a trader does.
            m_sampler->gaps().pause();
            m_trader->clearDesk();
            m_sampler->gaps().resume();
            m_sampler->gaps().setDoing(u"nothing"_s);
            return goTo(Phase::Calm);
        }
        m_trader->turn();
        m_sampler->gaps().setDoing(m_trader->doing());
        return;
    }
    case Phase::Calm:
        if (isCalm())
            rest();
        else if (static_cast<double>(m_inPhase.elapsed())
            > msPerSecond * (isEnough() ? m_plan.patienceAtEnd : calmPatience))
            giveUpRest();
        return;
    case Phase::Leave:
        return;
    }
}

void Soak::signIn()
{
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (QWidget* window : windows) {
        if (!window->isVisible())
            continue;
        if (auto* main = qobject_cast<MainWindow*>(window))
            return begin(*main);
        if (!window->inherits("LoginDialog") || std::exchange(m_signingIn, true))
            continue;
        window->findChild<QLineEdit*>(u"email"_s)->setText(u"trader@practice.local"_s);
        window->findChild<QLineEdit*>(u"password"_s)->setText(u"practice"_s);
        window->findChild<QPushButton*>(u"loginButton"_s)->click();
    }
}

void Soak::begin(MainWindow& window)
{
    m_window = &window;
    m_trader = std::make_unique<Trader>(window, m_plan.seed);
    m_sampler = std::make_unique<Sampler>(*m_trader, m_relay, m_platformProcess, m_plan.samples);
    goTo(Phase::Settle);
}

void Soak::keepBusy()
{
    const double now = m_sampler->seconds();
    m_owed += m_plan.rate * (now - m_lastFlow);
    m_lastFlow = now;
    // What cannot be handled in time is not piled up: bursts are for that.
    m_owed = std::min(m_owed, m_plan.rate);
    if (static_cast<double>(m_sampler->underWay()) < m_plan.rate && m_owed >= 1.0) {
        m_relay.flood(static_cast<int>(m_owed));
        m_owed -= static_cast<int>(m_owed);
    }
    const auto isDue = [now](double& next, double every) {
        if (every <= 0.0 || now < next)
            return false;
        next = now + every;
        return true;
    };
    if (isDue(m_nextBurst, m_plan.burstEvery))
        m_relay.flood(m_plan.burst);
    if (isDue(m_nextCut, m_plan.cutEvery))
        cut();
    if (isDue(m_nextSample, m_plan.sampleEvery))
        m_sampler->take(false);
}

void Soak::cut()
{
    // Now and then requests that are under way go with it.
    if (++m_cutsAsked % 5 == 0)
        m_relay.cutAll();
    else
        m_relay.cutFeed();
}

/// Whether the feed is up, no flood is left to be read and no answer is awaited, for a while.
bool Soak::isCalm()
{
    constexpr int nextToNothing = 20; // the platform's own prices never end
    const bool quiet = isConnected(*m_window) && m_sampler->underWay() < nextToNothing && !isAwaiting();
    m_quietTurns = quiet ? m_quietTurns + 1 : 0;
    return m_quietTurns >= quietTurnsWanted;
}

void Soak::rest()
{
    // A dialog may have come back with an answer.
    m_trader->closeOpenWindows();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    const Sampler::Sample sample = m_sampler->take(true);
    if (m_lastRests > 0)
        m_last->lower(sample);
    else
        m_last = sample;
    if (!m_baseline) {
        m_baseline = m_last;
        m_sampler->gaps().forget();
    }
    if (isEnough() && ++m_lastRests < lastRests) {
        m_relay.cutFeed();
        m_trader->clearDesk();
        return goTo(Phase::Calm);
    }
    goOn();
}

void Soak::giveUpRest()
{
    ++m_restsGivenUp;
    // What was at rest before the last things done says nothing about those.
    if (isEnough() && m_lastRests == 0)
        m_last.reset();
    goOn();
}

bool Soak::isEnough() const
{
    const bool allDone = m_plan.activities > 0 && m_trader->total() >= m_plan.activities;
    return allDone || m_sampler->seconds() >= m_plan.seconds;
}

void Soak::goOn()
{
    if (isEnough())
        return leave();
    m_nextRest = m_sampler->seconds() + m_plan.restEvery;
    goTo(Phase::Busy);
}

void Soak::leave()
{
    goTo(Phase::Leave);
    sumUp();
    m_sampler.reset();
    m_trader.reset();
    m_window->close();
}

void Soak::sumUp()
{
    const auto say = [this](const QString& name, double value) {
        m_summary.append(u"%1 %2"_s.arg(name, QString::number(value, 'g', 10)));
    };
    const GapWatch::Gaps gaps = m_sampler->gaps().all();
    say(u"seconds"_s, m_sampler->seconds());
    say(u"messages"_s, static_cast<double>(m_sampler->messages()));
    say(u"flooded"_s, static_cast<double>(m_relay.flooded()));
    say(u"reconnects"_s, m_sampler->connects());
    say(u"cuts"_s, static_cast<double>(m_relay.cuts()));
    say(u"activities"_s, m_trader->total());
    say(u"rests_given_up"_s, m_restsGivenUp);
    m_neverDone = m_trader->neverDone();
    const double seconds = m_sampler->seconds();
    if (m_plan.cutEvery > 0 && seconds > 2 * m_plan.cutEvery) {
        if (m_relay.cuts() == 0)
            m_neverHappened.append(u"cuts"_s);
        if (2 * m_sampler->connects() < m_relay.cuts()) // a cut may find no connection
            m_neverHappened.append(u"reconnects"_s);
    }
    if (m_plan.burstEvery > 0 && seconds > 2 * m_plan.burstEvery && m_relay.flooded() < m_plan.burst)
        m_neverHappened.append(u"floods"_s);
    const QMap<QString, int>& done = m_trader->done();
    for (auto each = done.cbegin(); each != done.cend(); ++each)
        say(u"did_"_s + QString(each.key()).replace(u' ', u'_'), each.value());
    say(u"gap_ms"_s, gaps.longestMs);
    say(u"gap_cpu_ms"_s, gaps.longestRunMs);
    say(u"gap_p99_ms"_s, gaps.p99Ms);
    m_summary.append(u"gap_during "_s + gaps.during);
    const QMap<QString, double>& byDoing = m_sampler->gaps().byDoing();
    for (auto each = byDoing.cbegin(); each != byDoing.cend(); ++each)
        say(u"gap_of_"_s + QString(each.key()).replace(u' ', u'_'), each.value());
    const AccountBook& book = m_trader->book();
    say(u"history_row_bytes"_s, historyRowBytes(book.openTrades(), book.digits()));
    say(u"journal_row_bytes"_s, journalRowBytes(*m_window));
}
