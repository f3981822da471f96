// The lab and a loop without any of it, over bars that other packages are given too.
//   tavoran-bench-peers prices FILE BARS    writes the bars: time,open,high,low,close
//   tavoran-bench-peers lab BARS            the lab's run, one call a bar
//   tavoran-bench-peers loop BARS           the strategy alone, compiled

#include "lab/run/LabRun.h"
#include "practice/core/PointScale.h"
#include "scenes/Minutes.h"

#include <QCoreApplication>

#include <array>
#include <cstdint>
#include <ctime>
#include <fstream>
#include <iomanip>
#include <iostream>
#include <stdexcept>
#include <string_view>

namespace {

double processorSeconds()
{
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

void tell(std::string_view name, std::size_t bars, double seconds, std::size_t trades)
{
    std::cout << name << "_bars " << static_cast<double>(bars) / seconds << '\n'
              << name << "_trades " << trades << '\n';
}

void writePrices(const char* path, const lab::MinuteHistory& history)
{
    std::ofstream file(path);
    file << std::fixed << std::setprecision(history.spec.digits);
    const double points = practice::pointsPerUnit(history.spec.digits);
    for (std::size_t number = 0; number < history.size(); ++number) {
        const lab::MinuteView minute = history.at(number);
        file << minute.time;
        for (const std::int64_t price : {minute.bar.open, minute.bar.high, minute.bar.low, minute.bar.close})
            file << ',' << static_cast<double>(price) / points;
        file << '\n';
    }
    file.close();
    if (!file)
        throw std::runtime_error("cannot write the prices");
}

void runLab(const lab::MinuteHistory& history)
{
    const ExpertScript script = averagesScript();
    const lab::LabRun run({&history});
    const double start = processorSeconds();
    const lab::RunResult result = run.run(script, walkSettings(practice::Timeframe::M1, lab::Model::Open));
    const double seconds = processorSeconds() - start;
    if (result.error || result.ticks != history.size())
        throw std::runtime_error("the run has ended early");
    tell("lab", history.size(), seconds, result.trades.size());
}

// The script's distances, in points.
constexpr std::int64_t stopDistance = 300;
constexpr std::int64_t targetDistance = 600;

/// Of the last closes, in points.
template <std::size_t period> class Average {
public:
    void add(std::int64_t close, std::size_t bar)
    {
        std::int64_t& place = m_closes[bar % period];
        m_former = m_sum;
        m_sum += close - place;
        place = close;
    }
    [[nodiscard]] double value() const { return static_cast<double>(m_sum) / period; }
    [[nodiscard]] double former() const { return static_cast<double>(m_former) / period; }

private:
    std::array<std::int64_t, period> m_closes{};
    std::int64_t m_sum = 0;
    std::int64_t m_former = 0;
};

void runLoop(const lab::MinuteHistory& history)
{
    const double start = processorSeconds();
    Average<10> fast;
    Average<30> slow;
    std::size_t trades = 0;
    std::int64_t entry = 0; // 0: no position
    std::int64_t profit = 0;
    for (std::size_t number = 0; number < history.size(); ++number) {
        const practice::GridBar bar = history.at(number).bar;
        const auto leave = [&](std::int64_t price) {
            profit += price - entry;
            entry = 0;
            ++trades;
        };
        if (number > 30) {
            const bool up = fast.former() <= slow.former() && fast.value() > slow.value();
            const bool down = fast.former() >= slow.former() && fast.value() < slow.value();
            if (up && entry == 0)
                entry = bar.open;
            else if (down && entry != 0)
                leave(bar.open);
        }
        if (entry != 0 && bar.low <= entry - stopDistance)
            leave(entry - stopDistance);
        else if (entry != 0 && bar.high >= entry + targetDistance)
            leave(entry + targetDistance);
        fast.add(bar.close, number);
        slow.add(bar.close, number);
    }
    const double seconds = processorSeconds() - start;
    if (profit == 0)
        throw std::runtime_error("the loop has done nothing");
    tell("compiled", history.size(), seconds, trades);
}

} // namespace

int main(int argc, char** argv)
try {
    const QCoreApplication application(argc, argv);
    const std::string_view scene = argc > 1 ? argv[1] : "";
    if (argc == 4 && scene == "prices")
        writePrices(argv[2], minuteWalk(std::stoul(argv[3])));
    else if (argc == 3 && scene == "lab")
        runLab(minuteWalk(std::stoul(argv[2])));
    else if (argc == 3 && scene == "loop")
        runLoop(minuteWalk(std::stoul(argv[2])));
    else
        return 2;
    return 0;
} catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
    return 1;
}
