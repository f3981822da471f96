#pragma once

#include "faults/Fault.h"
#include "faults/Heartbeat.h"

#include <QString>
#include <QStringList>

namespace faults {

/// The table that scripts/faults prints, in a file that the environment names.
class FaultTable final {
public:
    struct Row final {
        QByteArray request;
        Moment moment;
        Fault fault;
        QStringList said;
        LoopTimes times;
        int tries = 1;  ///< that it took until the same went right again
        int misled = 0; ///< of these, changes that the platform refused and that counted as done
    };

    /// Whether somebody wants the table, and with it every row.
    [[nodiscard]] static bool isWanted();
    /// A row that went as it should.
    static void add(const Row& row);
};

} // namespace faults
