#pragma once

#include <QTimer>

#include <functional>

/// Tells a screen reader what has changed on a widget: at most once a second, so that live prices do not talk
/// over everything else. Without a reader nothing is worked out, and no timer runs.
class PoliteNews final {
    Q_DISABLE_COPY_MOVE(PoliteNews)

public:
    static constexpr int pauseMs = 1000;

    /// `tell` tells what is new, and whether anything was. It is called only while there is a reader.
    explicit PoliteNews(std::function<bool()> tell);
    ~PoliteNews() = default;

    /// Something may have changed. Costs next to nothing without a reader, and while a change waits to be
    /// told.
    void note();

    /// Runs until the next news may be told.
    [[nodiscard]] QTimer& pause() { return m_pause; }

private:
    void tell();

    std::function<bool()> m_tell;
    QTimer m_pause;
    bool m_waiting = false;
};
