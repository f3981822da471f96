#pragma once

#include "lab/Contains.h"
#include "lab/cli/LabProcess.h"
#include "practice/storage/TemporaryFolder.h"

#include <nlohmann/json.hpp>

#include <set>
#include <string>
#include <vector>

/// A folder with a history of EURUSD in it, from 2024-01-01 on, and the program in that folder. Files are
/// named as seen from there.
struct LabFolder {
    TemporaryFolder folder;
    LabProcess lab{folder.path(), {}, {}};

    explicit LabFolder(int days) { writeMinutes(days); }

    /// Minutes that swing, in whole points, so that every machine writes the same; the broken line stands
    /// behind minute 700.
    void writeMinutes(
        int days, const std::string& file = "EURUSD-1m.csv", const std::string& brokenLine = {}) const;
    /// Minutes that go one way, by so many points each, and trade within that way alone.
    void writeSlope(int days, int pointsAMinute) const;

    void write(const std::string& file, const std::string& text) const;
    [[nodiscard]] std::string contentOf(const std::string& file) const;
    [[nodiscard]] nlohmann::json json(const std::string& file) const;
    [[nodiscard]] std::set<std::string> filesIn(const std::string& below) const;
};
