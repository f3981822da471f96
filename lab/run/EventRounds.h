#pragma once

#include <QObject>

#include <cstdint>

namespace lab {

/// Hands out the events that wait, where no event loop does so: a promise's jobs are events, and so is what a
/// script asks for in them.
class EventRounds final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(EventRounds)

public:
    /// Watches over the application's events as long as it lives.
    EventRounds();
    ~EventRounds() override;

    /// Until none is left, or so many rounds are over: promises that beget promises without end leave the
    /// rest to the next call, as they would leave a terminal its prices.
    void handOut()
    {
        constexpr int mostRounds = 1000;
        for (int round = 0; round < mostRounds && handOutOnce(); ++round) { }
    }

    bool eventFilter(QObject* receiver, QEvent* event) override;

private:
    /// Whether there were any.
    bool handOutOnce();

    std::uint64_t m_count = 0;
};

} // namespace lab
