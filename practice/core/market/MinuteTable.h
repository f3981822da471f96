#pragma once

#include "practice/core/market/GridBar.h"
#include "practice/core/market/HalfSpreads.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace practice {

/// One recorded minute of mid prices in points.
struct MinuteRecord {
    GridBar bar;
    HalfSpreads halfSpread;
};

/// The highest and the lowest price of some minutes, in points.
struct PointRange {
    std::int64_t high = 0;
    std::int64_t low = 0;
};

/// Recorded minutes by their number. A record may have millions, so each takes 32 bytes, or 72 where a price
/// of the table does not fit into 32 bits, or a half spread into 16.
class MinuteTable final {
public:
    /// Prices and half spreads are at least 0.
    void append(const MinuteRecord& record);

    [[nodiscard]] std::size_t size() const { return m_volumes.size(); }
    [[nodiscard]] bool empty() const { return m_volumes.empty(); }

    /// The record with this number, which is below size().
    [[nodiscard]] MinuteRecord at(std::size_t number) const;

    /// Over the minutes first..last, both included.
    [[nodiscard]] PointRange range(std::size_t first, std::size_t last) const;

    /// Volume of all minutes before this number, which is at most size().
    [[nodiscard]] std::int64_t volumeBefore(std::size_t number) const
    {
        return number == 0 ? 0 : m_volumes[number - 1];
    }

    /// Calls change(number, record) for each record in turn and stores the record as changed.
    template <typename Change> void changeEach(Change change)
    {
        std::int64_t before = 0; // volume as it was
        std::int64_t total = 0;  // and as it becomes
        for (std::size_t number = 0; number < size(); ++number) {
            MinuteRecord record = pricesAt(number);
            record.bar.volume = m_volumes[number] - before;
            before = m_volumes[number];
            change(number, record);
            keepPrices(number, record);
            total += record.bar.volume;
            m_volumes[number] = total;
        }
    }

    /// A digest of the records: equal for equal records in the same order, and almost certainly for no
    /// others.
    [[nodiscard]] std::uint64_t digest() const;

    /// Gives back the room kept for further records.
    void trim();

    /// Memory taken by the records.
    [[nodiscard]] std::size_t bytes() const;

private:
    template <typename PointType, typename SpreadType> struct Prices {
        using Point = PointType;
        using Spread = SpreadType;
        Point open;
        Point high;
        Point low;
        Point close;
        Spread atOpen;
        Spread atHigh;
        Spread atLow;
        Spread atClose;
    };
    using Narrow = Prices<std::uint32_t, std::uint16_t>;
    using Wide = Prices<std::int64_t, std::int64_t>;
    static_assert(sizeof(Narrow) == 24 && sizeof(Wide) == 64);

    [[nodiscard]] MinuteRecord pricesAt(std::size_t number) const;
    void keepPrices(std::size_t number, const MinuteRecord& record);
    void widen();

    bool m_isWide = false;
    std::vector<Narrow> m_narrow;        ///< all records, or none
    std::vector<Wide> m_wide;            ///< the same, once one does not fit above
    std::vector<std::int64_t> m_volumes; ///< sum up to each minute, itself included
};

} // namespace practice
