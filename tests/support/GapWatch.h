#pragma once

#include <QElapsedTimer>
#include <QMap>
#include <QString>
#include <QTimer>

#include <array>

/// For how long the event loop did not turn: the longest time between two of its turns, and the 99th per cent
/// of all.
class GapWatch final {
public:
    /// Looks every `periodMs`, from 1; a longer period sees less of short gaps, and wakes the thread less
    /// often.
    explicit GapWatch(int periodMs = 5);

    /// What is done from now on; for the longest gap.
    void setDoing(const QString& what) { m_doing = what; }

    /// What happens between the two is not looked at.
    void pause();
    void resume();

    struct Gaps {
        double longestMs = 0.0;
        double longestRunMs = 0.0; ///< of processor time: what others took from this thread is not in it
        int p99Ms = 0;             ///< rounded up
        QString during;            ///< what was done in the one that ran longest
    };
    /// Since the last call.
    [[nodiscard]] Gaps take();
    /// The whole run begins here.
    void forget();
    /// Of the whole run.
    [[nodiscard]] Gaps all() const { return gapsOf(m_all); }
    /// The longest processor time of a gap in the whole run, by what was done, in ms.
    [[nodiscard]] const QMap<QString, double>& byDoing() const { return m_byDoing; }

private:
    struct Record {
        double longestMs = 0.0;
        double longestRunMs = 0.0;
        std::array<int, 4096> turns{}; ///< by milliseconds, the last one for all that took longer
        int count = 0;
        QString during;
    };

    void note();
    [[nodiscard]] static Gaps gapsOf(const Record& record);
    void add(Record& record, double ms, double runMs) const;

    int m_periodMs;
    QTimer m_timer;
    QElapsedTimer m_sinceLast;
    qint64 m_ranAtLast = 0;
    QString m_doing;
    Record m_recent;
    Record m_all;
    QMap<QString, double> m_byDoing;
};
