#pragma once

#include <QTimer>

#include <functional>
#include <memory>

/// Calls an expert's OnTimer again and again, by whatever clock.
class ExpertTimer {
    Q_DISABLE_COPY_MOVE(ExpertTimer)

public:
    virtual ~ExpertTimer();

    /// What to call at each time-out; set once, before the first start. It may lead to this timer's end.
    virtual void onTimeout(std::function<void()> call) = 0;
    /// Begins to time out every `ms`, above 0, the first time after as many; anew when it is running.
    virtual void start(int ms) = 0;
    virtual void stop() = 0;

protected:
    ExpertTimer() = default;
};

/// By the computer's clock.
class SystemExpertTimer final : public ExpertTimer {
public:
    explicit SystemExpertTimer(std::unique_ptr<QTimer> timer = std::make_unique<QTimer>());
    ~SystemExpertTimer() override;

    void onTimeout(std::function<void()> call) override;
    void start(int ms) override { m_timer->start(ms); }
    void stop() override { m_timer->stop(); }

private:
    std::unique_ptr<QTimer> m_timer;
};
