#pragma once

#include "support/GapWatch.h"

#include <QFile>
#include <QList>
#include <QMap>
#include <QPair>

class Relay;
class Trader;
class WsClient;

/// What can be counted of the terminal and of the platform, as rows of a file with a name above each column.
class Sampler final {
    Q_DISABLE_COPY_MOVE(Sampler)

public:
    /// The file is begun anew; without a name nothing is written.
    Sampler(const Trader& trader, const Relay& relay, qint64 platformProcess, const QString& file);
    ~Sampler() = default;

    struct Sample {
        QList<QPair<QByteArray, double>> figures; ///< in the order of the columns
        QMap<QByteArray, int> classes;            ///< objects of the window's thread, by class

        [[nodiscard]] double of(const QByteArray& name) const;
        /// The smaller one of each figure and class.
        void lower(const Sample& other);
    };
    /// `rest`: nothing is open, and nothing is under way.
    Sample take(bool rest);

    [[nodiscard]] GapWatch& gaps() { return m_gaps; }
    /// Messages of the feed that the terminal has handled.
    [[nodiscard]] qint64 messages() const { return m_messages; }
    /// Messages that are on their way to it, or wait there for their turn.
    [[nodiscard]] qint64 underWay() const;
    /// Connections to the feed that came up.
    [[nodiscard]] int connects() const { return m_connects; }
    [[nodiscard]] double seconds() const { return static_cast<double>(m_clock.elapsed()) / 1000.0; }

private:
    void count(const WsClient& feed);
    void write(const Sample& sample);

    const Trader& m_trader;
    const Relay& m_relay;
    qint64 m_platformProcess;
    QFile m_file;
    QElapsedTimer m_clock;
    GapWatch m_gaps;
    QObject m_ears;
    qint64 m_messages = 0;
    quint64 m_received = 0;
    qint64 m_messagesBefore = 0; ///< those that came over earlier connections
    int m_connects = 0;
};
