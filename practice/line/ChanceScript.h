#pragma once

#include "practice/core/market/HashRandom.h"
#include "practice/line/LineQuality.h"
#include "practice/line/LineScript.h"
#include "practice/line/Throttle.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace practice {

/// The two directions of a line, which all its connections share.
using Throttles = std::array<Throttle, 2>;

/// A connection on a bad line. Whether it is refused, and with which packet it falls silent, follows from the
/// seed and its number alone, however its bytes come.
class ChanceScript final : public LineScript {
public:
    /// Of what counts as lost: that many bytes of the stream.
    static constexpr std::size_t packet = 1400;

    /// `throttles` outlive the script.
    ChanceScript(const LineQuality& quality, std::uint64_t connection, Throttles& throttles);

    [[nodiscard]] bool isRefused() const { return m_refused; }
    /// How many bytes get through this way before it falls silent; nothing: all of them.
    [[nodiscard]] std::optional<std::size_t> silentAfter(Way way) const;

    void open(LineCarrier& carrier) override;
    void pass(Way way, std::string bytes, LineCarrier& carrier) override;
    [[nodiscard]] std::chrono::nanoseconds endDelay() override;

private:
    [[nodiscard]] std::chrono::nanoseconds underWay();

    LineQuality m_quality;
    Throttles& m_throttles;
    HashRandom m_random;
    bool m_refused = false;
    std::array<std::optional<std::size_t>, 2> m_silentAfter;
    std::array<std::size_t, 2> m_passed{};
};

} // namespace practice
