#include "lab/cli/LabFolder.h"

#include "lab/core/output/Texts.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace {

/// The lines of a file of minutes, in order.
class MinuteLines final {
public:
    explicit MinuteLines(const std::filesystem::path& file)
        : m_csv(file)
    {
        m_csv << "time,open,high,low,close,volume\n";
    }

    /// Prices in points.
    void add(int open, int high, int low, int close)
    {
        std::string time = lab::isoTime(1'704'067'200'000 + m_minute++ * practice::minuteMs);
        time.erase(time.size() - 5, 4); // seconds are enough
        m_csv << time;
        for (const int points : {open, high, low, close})
            m_csv << ',' << lab::fixedText(points / 1e5, 5);
        m_csv << ",10\n";
    }
    void addLine(const std::string& line) { m_csv << line << '\n'; }

private:
    std::ofstream m_csv;
    int m_minute = 0;
};

} // namespace

void LabFolder::writeMinutes(int days, const std::string& file, const std::string& brokenLine) const
{
    MinuteLines lines(folder / file);
    std::uint32_t random = 12'345;
    int price = 110'000;
    for (int minute = 0; minute < days * 24 * 60; ++minute) {
        const int open = price;
        random = random * 1'664'525U + 1'013'904'223U;
        price += static_cast<int>(random >> 28) - 8 + (minute % 900 < 450 ? 1 : -1)
            + (random & 0x1000000U ? 1 : 0);
        const int high = std::max(open, price) + static_cast<int>(random >> 29);
        const int low = std::min(open, price) - static_cast<int>((random >> 26) & 7U);
        lines.add(open, high, low, price);
        if (minute == 700 && !brokenLine.empty())
            lines.addLine(brokenLine);
    }
}

void LabFolder::writeSlope(int days, int pointsAMinute) const
{
    MinuteLines lines(folder / "EURUSD-1m.csv");
    for (int minute = 0; minute < days * 24 * 60; ++minute) {
        const int open = 110'000 + minute * pointsAMinute;
        const int close = open + pointsAMinute;
        lines.add(open, std::max(open, close), std::min(open, close), close);
    }
}

void LabFolder::write(const std::string& file, const std::string& text) const
{
    std::ofstream(folder / file, std::ios::binary) << text;
}

std::string LabFolder::contentOf(const std::string& file) const
{
    std::ifstream input(folder / file, std::ios::binary);
    return {std::istreambuf_iterator<char>(input), {}};
}

nlohmann::json LabFolder::json(const std::string& file) const
{
    return nlohmann::json::parse(contentOf(file));
}

std::set<std::string> LabFolder::filesIn(const std::string& below) const
{
    std::set<std::string> names;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(folder / below, error))
        names.insert(entry.path().filename().string());
    return names;
}
