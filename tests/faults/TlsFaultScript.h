#pragma once

#include "faults/FaultHand.h"

#include "practice/line/LineScript.h"

#include <string>

namespace faults {

/// A connection under encryption, of which the line sees records and no more. Where the plan says so it
/// changes a byte of one.
class TlsFaultScript final : public practice::LineScript {
public:
    explicit TlsFaultScript(LineState& state)
        : m_state(state)
    {
    }

    void open(practice::LineCarrier& carrier) override;
    void pass(practice::Way way, std::string bytes, practice::LineCarrier& carrier) override;

private:
    [[nodiscard]] bool isRequestDue() const;
    [[nodiscard]] bool isDue(const std::string& record);

    LineState& m_state;
    std::string m_toClient; ///< a record that has not come whole
    std::string m_toServer;
    int m_requests = 0;     ///< records from the client that are long enough for one
    int m_sinceRequest = 0; ///< records from the server since then
};

} // namespace faults
