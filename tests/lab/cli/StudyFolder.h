#pragma once

#include "lab/cli/LabFolder.h"

/// A folder with a script and a few days of minutes in it.
struct StudyFolder : LabFolder {
    explicit StudyFolder(int days = 3)
        : LabFolder(days)
    {
        // Buys and sells by a clock of its own, so that each set trades, and each otherwise.
        write("Clock.js",
            "var Every = 20;  // minutes\nvar Points = 40;\nvar Mode = 'both';\nvar Wait = 0;\n"
            "var calls = 0;\n"
            "function OnInit() { Print(Every, Points, Mode, Wait); }\n"
            "function OnTick() {\n"
            "    if (++calls % (4 * Every) !== 0 || Positions.count() > 0) return;\n"
            "    if (Mode === 'buy' || calls % (8 * Every) === 0)\n"
            "        Trade.buy(0.1, { slPoints: Points, tpPoints: Points });\n"
            "    else\n"
            "        Trade.sell(0.1, { slPoints: Points, tpPoints: Points });\n"
            "}\n");
    }

    /// A command over the folder's prices.
    [[nodiscard]] static std::vector<std::string> words(
        const std::string& command, const std::string& script, const std::vector<std::string>& more)
    {
        return joined({command, script, "--data", "EURUSD-1m.csv", "--warmup", "10"}, more);
    }
    [[nodiscard]] LabProcess::Result run(
        const std::string& command, const std::string& script, const std::vector<std::string>& more) const
    {
        return lab.run(words(command, script, more));
    }
};
