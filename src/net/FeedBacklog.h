#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QString>

#include <deque>
#include <functional>

/// The messages that have come and wait to be read. However many come at once, they are read in slices of a
/// few milliseconds, and between two slices the event loop turns: keys, timers and painting wait for one
/// slice at most. Every message is handed on, in the order in which they came.
class FeedBacklog final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(FeedBacklog)

public:
    /// Nanoseconds since any fixed moment, never going back.
    using Clock = std::function<qint64()>;

    /// A slice ends with the first message after this time.
    static constexpr qint64 sliceNs = 8'000'000;
    /// Characters that may wait before the sender is to wait: room for fifty thousand messages of several
    /// prices each, in 64 MiB.
    static constexpr qsizetype mostCharacters = qsizetype{32} * 1024 * 1024;

    /// What a message takes up besides its text, counted in characters, so that a message without text counts
    /// too.
    static constexpr qsizetype charactersBeside = 32;

    explicit FeedBacklog(QObject* parent = nullptr);

    /// Another clock than the machine's, and another limit than `mostCharacters`; for tests.
    void setClock(Clock clock);
    void setLimit(qsizetype characters);

    [[nodiscard]] bool isEmpty() const { return m_texts.empty(); }

    /// Takes a message, to be read in a later turn of the event loop. Where twice the limit waits, since the
    /// sender did not, the oldest are read at once: that holds up the loop, and the sender with it.
    void add(const QString& text);
    /// Forgets what waits, without a signal.
    void clear();

Q_SIGNALS:
    void due(const QString& text);
    /// The last of the messages has been read.
    void drained();
    /// More than the limit waits; said again with each message that comes nevertheless.
    void filled();
    /// No more than the limit waits any longer.
    void eased();

private:
    void scheduleSlice();
    void scheduleNextSlice();
    void readSlice();
    void handOnOldest();
    [[nodiscard]] bool isOver(qsizetype limit) const;

    Clock m_clock;
    qsizetype m_limit = mostCharacters;
    std::deque<QString> m_texts;
    qsizetype m_characters = 0;
    bool m_sliceScheduled = false;
    bool m_full = false; ///< filled() was said, and eased() was not
};
