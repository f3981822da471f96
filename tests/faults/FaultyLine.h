#pragma once

#include "faults/Fault.h"

#include <QString>

#include <atomic>
#include <memory>

namespace faults {

/// What the line tells while it runs on a thread of its own.
struct LineNews final {
    std::atomic<int> struck{0};       ///< how often the fault has struck
    std::atomic<bool> holding{false}; ///< the fault keeps a client waiting for its time-out
    std::atomic<int> connections{0};  ///< that have come to the line
    std::atomic<int> turns{0};        ///< that it has had for a ping()
};

/// A line to a loopback server on which any fault can be had at any moment. It runs on a thread of its own.
class FaultyLine final {
public:
    /// Encrypted lines know only what can be done to bytes that nobody can read.
    explicit FaultyLine(quint16 serverPort, bool encrypted = false);
    ~FaultyLine();
    FaultyLine(const FaultyLine&) = delete;
    FaultyLine& operator=(const FaultyLine&) = delete;

    /// "http://127.0.0.1:PORT", or the same with https.
    [[nodiscard]] QString url() const;
    [[nodiscard]] const LineNews& news() const { return m_news; }

    /// From now on the fault strikes whatever the plan names, until it is mended.
    void spoil(const Plan& plan);
    void mend();
    /// Resets every connection.
    void cutAll();
    /// Counts in the news once the line has done what was to be done before.
    void ping();

private:
    struct Parts;

    LineNews m_news;
    const bool m_encrypted;
    std::unique_ptr<Parts> m_parts;
};

} // namespace faults
