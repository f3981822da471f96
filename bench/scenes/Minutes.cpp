#include "scenes/Minutes.h"

#include "practice/core/market/HashRandom.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <fstream>
#include <stdexcept>

namespace {

constexpr std::int32_t firstMinute = 23'315'040; // Thursday, 2014-05-01T00:00Z
constexpr std::int64_t halfSpread = 1;
constexpr int digits = 5;

std::string timeText(practice::TimeMs time)
{
    const auto seconds = static_cast<std::time_t>(time / 1'000);
    std::tm parts{};
    gmtime_r(&seconds, &parts);
    std::array<char, 32> text{};
    return {text.data(), std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%SZ", &parts)};
}

std::string priceText(std::int64_t points)
{
    std::array<char, 32> text{};
    const int length = std::snprintf(text.data(), text.size(), ",%lld.%05lld",
        static_cast<long long>(points / 100'000), static_cast<long long>(points % 100'000));
    return {text.data(), static_cast<std::size_t>(length)};
}

} // namespace

lab::MinuteHistory minuteWalk(std::size_t count)
{
    lab::MinuteHistory history;
    const auto& catalog = practice::symbolCatalog();
    history.spec = catalog[practice::findSymbol(catalog, "EURUSD").value()];
    history.spec.digits = digits;
    history.starts.reserve(count);
    practice::HashRandom random(count);
    const auto draw = [&random](double range) { return static_cast<std::int64_t>(random.uniform() * range); };
    std::int64_t price = 130'000;
    for (std::size_t number = 0; number < count; ++number) {
        // Drawn towards where it began, so that it never ends at 0.
        practice::GridBar bar{price, 0, 0, price + draw(41) - 20 - (price - 130'000) / 5'000, 1 + draw(50)};
        bar.high = std::max(bar.open, bar.close) + draw(12);
        bar.low = std::min(bar.open, bar.close) - draw(12);
        price = bar.close;
        history.minutes.append({bar, halfSpread});
        history.starts.push_back(firstMinute + static_cast<std::int32_t>(number));
    }
    return history;
}

void writeMinutes(const std::filesystem::path& path, const lab::MinuteHistory& history)
{
    std::ofstream file(path);
    file << "time,open,high,low,close,volume,ask_open,ask_high,ask_low,ask_close\n";
    for (std::size_t number = 0; number < history.size(); ++number) {
        const lab::MinuteView minute = history.at(number);
        file << timeText(minute.time);
        for (const std::int64_t side : {-halfSpread, halfSpread}) {
            for (const std::int64_t mid :
                {minute.bar.open, minute.bar.high, minute.bar.low, minute.bar.close})
                file << priceText(mid + side);
            if (side < 0)
                file << ',' << minute.bar.volume;
        }
        file << '\n';
    }
    file.close();
    if (!file)
        throw std::runtime_error("cannot write " + path.string());
}

ExpertScript averagesScript()
{
    QString error;
    const std::optional<ExpertScript> script = ExpertScript::read(QStringLiteral(AVERAGES_SCRIPT), error);
    if (!script)
        throw std::runtime_error(error.toStdString());
    return *script;
}

lab::RunSettings walkSettings(practice::Timeframe timeframe, lab::Model model)
{
    lab::RunSettings settings;
    settings.symbol = "EURUSD";
    settings.timeframe = timeframe;
    settings.model = model;
    settings.warmupBars = 0;
    settings.balance = 1'000'000'000; // enough for however many losses
    return settings;
}
