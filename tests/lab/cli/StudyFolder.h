#pragma once

#include "lab/Contains.h"
#include "lab/cli/LabProcess.h"
#include "practice/storage/TemporaryFolder.h"

#include "lab/core/output/Texts.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <vector>

/// A folder with a script and a few days of minutes in it, and the program in that folder.
struct StudyFolder {
    TemporaryFolder folder;
    LabProcess lab{folder.path(), {}, {}};

    explicit StudyFolder(int days = 3)
    {
        writeMinutes(days);
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

    /// Minutes that swing, in whole points, so that every machine writes the same.
    void writeMinutes(int days) const
    {
        std::ofstream csv(folder / "EURUSD-1m.csv");
        csv << "time,open,high,low,close,volume\n";
        std::uint32_t random = 12'345;
        int price = 110'000;
        for (int minute = 0; minute < days * 24 * 60; ++minute) {
            const int open = price;
            random = random * 1'664'525U + 1'013'904'223U;
            price += static_cast<int>(random >> 28) - 8 + (minute % 900 < 450 ? 1 : -1)
                + (random & 0x1000000U ? 1 : 0);
            const int high = std::max(open, price) + static_cast<int>(random >> 29);
            const int low = std::min(open, price) - static_cast<int>((random >> 26) & 7U);
            std::string time = lab::isoTime(1'704'067'200'000 + minute * practice::minuteMs);
            time.erase(time.size() - 5, 4); // seconds are enough
            const auto text = [](int points) { return lab::fixedText(points / 1e5, 5); };
            csv << time << ',' << text(open) << ',' << text(high) << ',' << text(low) << ',' << text(price)
                << ",10\n";
        }
    }

    /// Minutes that go one way, by so many points each, and trade within that way alone.
    void writeSlope(int days, int pointsAMinute) const
    {
        std::ofstream csv(folder / "EURUSD-1m.csv");
        csv << "time,open,high,low,close,volume\n";
        for (int minute = 0; minute < days * 24 * 60; ++minute) {
            const int open = 110'000 + minute * pointsAMinute;
            const int close = open + pointsAMinute;
            std::string time = lab::isoTime(1'704'067'200'000 + minute * practice::minuteMs);
            time.erase(time.size() - 5, 4);
            const auto text = [](int points) { return lab::fixedText(points / 1e5, 5); };
            csv << time << ',' << text(open) << ',' << text(std::max(open, close)) << ','
                << text(std::min(open, close)) << ',' << text(close) << ",10\n";
        }
    }

    void write(const std::string& file, const std::string& text) const
    {
        std::ofstream(folder / file, std::ios::binary) << text;
    }
    [[nodiscard]] std::string contentOf(const std::string& file) const
    {
        std::ifstream input(folder / file, std::ios::binary);
        return {std::istreambuf_iterator<char>(input), {}};
    }
    [[nodiscard]] std::set<std::string> filesIn(const std::string& below) const
    {
        std::set<std::string> names;
        std::error_code error;
        for (const auto& entry : std::filesystem::directory_iterator(folder / below, error))
            names.insert(entry.path().filename().string());
        return names;
    }
    /// A command over the folder's prices.
    [[nodiscard]] std::vector<std::string> words(
        const std::string& command, const std::string& script, const std::vector<std::string>& more) const
    {
        std::vector<std::string> all{command, script, "--data", "EURUSD-1m.csv", "--warmup", "10"};
        all.insert(all.end(), more.begin(), more.end());
        return all;
    }
    [[nodiscard]] LabProcess::Result run(
        const std::string& command, const std::string& script, const std::vector<std::string>& more) const
    {
        return lab.run(words(command, script, more));
    }
};

inline bool isOneLine(const std::string& text)
{
    return text.starts_with("tavoran-lab: ") && text.find('\n') == text.size() - 1;
}
