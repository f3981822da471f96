#include "lab/core/market/HistorySources.h"
#include "scenes/LabBars.h"
#include "scenes/Minutes.h"

#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <array>
#include <charconv>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

// Reading a file of minutes, against a loop that takes its numbers and checks nothing.

namespace {

const std::filesystem::path& minuteFile()
{
    static const QTemporaryDir folder;
    static const std::filesystem::path path = [] {
        auto file = std::filesystem::path(folder.path().toStdString()) / "EURUSD-1m.csv";
        writeMinutes(file, minuteWalk(labBars() / 2));
        return file;
    }();
    return path;
}

struct PlainRow {
    std::array<int, 6> time{};
    std::array<double, 9> numbers{};
};

std::vector<PlainRow> plainRows()
{
    std::ifstream file(minuteFile(), std::ios::binary | std::ios::ate);
    std::string text(static_cast<std::size_t>(file.tellg()), '\0');
    file.seekg(0);
    file.read(text.data(), static_cast<std::streamsize>(text.size()));
    std::vector<PlainRow> rows;
    const char* const end = text.data() + text.size();
    const char* at = text.data() + text.find('\n') + 1;
    while (at < end) {
        PlainRow& row = rows.emplace_back();
        for (int& part : row.time)
            at = std::from_chars(at, end, part).ptr + 1;
        ++at; // the comma behind the Z
        for (double& number : row.numbers)
            at = std::from_chars(at, end, number).ptr + 1;
    }
    return rows;
}

void reading(benchmark::State& state)
{
    for ([[maybe_unused]] auto round : state) {
        if (lab::readHistory(minuteFile()).size() != labBars() / 2)
            state.SkipWithError("minutes are missing");
    }
}

void plainReading(benchmark::State& state)
{
    for ([[maybe_unused]] auto round : state) {
        if (plainRows().size() != labBars() / 2)
            state.SkipWithError("rows are missing");
    }
}

BENCHMARK(reading)->Name("lab/reading")->Unit(benchmark::kMillisecond);
BENCHMARK(plainReading)->Name("lab/plain_reading")->Unit(benchmark::kMillisecond);

} // namespace
