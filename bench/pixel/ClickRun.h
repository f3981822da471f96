#pragma once

#include "pixel/Desk.h"

#include <vector>

/// Clicks on the button to buy of a chart, and how long each took to be a request at the platform.
class ClickRun final {
    Q_DISABLE_COPY_MOVE(ClickRun)

public:
    /// The desk must outlive the run.
    explicit ClickRun(Desk& desk);
    ~ClickRun();

    /// At moments of chance. A button acts when it is let go, so that is the moment that counts.
    void measure(int samples);

    [[nodiscard]] const std::vector<double>& milliseconds() const { return m_ms; }
    [[nodiscard]] int missed() const { return m_missed; }

private:
    Desk& m_desk;
    qint64 m_arrivedNs = 0;
    int m_requests = 0;
    int m_missed = 0;
    std::vector<double> m_ms;
};
