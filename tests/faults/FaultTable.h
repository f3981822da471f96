#pragma once

#include "faults/Fault.h"

#include <QString>
#include <QStringList>

#include <chrono>

namespace faults {

/// The table that scripts/faults prints, in a file that the environment names.
class FaultTable final {
public:
    struct Row final {
        QByteArray request;
        Moment moment;
        Fault fault;
        qint64 longestGap;                    ///< milliseconds by which the event loop was late
        std::chrono::nanoseconds longestWork; ///< of the processor, between two of its turns
        QStringList said;
    };

    /// Whether somebody wants the table, and with it every row.
    [[nodiscard]] static bool isWanted();
    /// A row that went as it should.
    static void add(const Row& row);
};

} // namespace faults
