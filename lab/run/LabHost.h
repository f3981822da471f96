#pragma once

#include "lab/run/VirtualTimer.h"
#include "practice/core/market/HashRandom.h"

#include <QObject>

namespace lab {

/// The time and the chance that scripts in the lab find in the language. Only the lab's own prelude calls it.
class LabHost final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(LabHost)

public:
    /// `clock` must outlive this object.
    LabHost(const VirtualClock& clock, std::uint64_t seed);
    ~LabHost() override;

    /// Milliseconds since 1970 in UTC.
    [[nodiscard]] Q_INVOKABLE double now() const { return static_cast<double>(m_clock.now); }
    /// From 0 on and below 1.
    [[nodiscard]] Q_INVOKABLE double random() { return m_random.uniform(); }

private:
    const VirtualClock& m_clock;
    practice::HashRandom m_random;
};

} // namespace lab
