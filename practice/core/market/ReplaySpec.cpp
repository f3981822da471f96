#include "practice/core/market/ReplaySpec.h"

#include "practice/core/PointScale.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace practice {
namespace {

bool isCurrency(const std::string& code, const std::vector<SymbolSpec>& known)
{
    return code == "USD" || findSymbol(known, code + "USD") || findSymbol(known, "USD" + code);
}

SymbolSpec specFromName(const std::string& name, const MinuteFile& file, const std::vector<SymbolSpec>& known)
{
    SymbolSpec spec;
    spec.name = name;
    spec.description = name + " replayed";
    spec.digits = file.digits;
    const std::string ending = name.size() > 3 ? name.substr(name.size() - 3) : std::string();
    const bool quoted = isCurrency(ending, known);
    spec.profitCurrency = quoted ? ending : "USD";
    spec.baseCurrency = quoted ? name.substr(0, name.size() - 3) : name;
    const bool currencies = quoted && spec.baseCurrency.size() == 3 && isCurrency(spec.baseCurrency, known);
    spec.contractSize = currencies ? 100'000 : 1;
    spec.maxLeverage = currencies ? 100 : 20;
    return spec;
}

// Even, from the middle one of the recorded spreads; without any, as wide as a tenth of a usual minute.
int usualSpread(const MinuteFile& file, double usualMovePoints)
{
    std::vector<std::int64_t> halves;
    for (std::size_t i = 0; i < file.minutes.size(); ++i) {
        if (const std::int64_t half = file.minutes.at(i).halfSpread.close; half > 0)
            halves.push_back(half);
    }
    if (halves.empty())
        return 2 * std::max(1, static_cast<int>(std::min(1e6, usualMovePoints / 20)));
    const auto middle = halves.begin() + static_cast<std::ptrdiff_t>(halves.size() / 2);
    std::nth_element(halves.begin(), middle, halves.end());
    return 2 * static_cast<int>(std::min<std::int64_t>(*middle, 1'000'000));
}

} // namespace

SymbolSpec replaySpec(const std::string& name, const MinuteFile& file, const std::vector<SymbolSpec>& known)
{
    const auto place = findSymbol(known, name);
    SymbolSpec spec = place ? known[*place] : specFromName(name, file, known);
    const double rescale = pointsPerUnit(file.digits) / pointsPerUnit(spec.digits);
    spec.swapLong *= rescale;
    spec.swapShort *= rescale;
    spec.digits = file.digits;

    double level = 0;
    double squares = 0;
    for (std::size_t i = 0; i < file.minutes.size(); ++i) {
        const GridBar bar = file.minutes.at(i).bar;
        const double open = static_cast<double>(bar.open);
        const double move = std::log(static_cast<double>(bar.close) / open);
        level += open;
        squares += move * move;
    }
    const auto count = static_cast<double>(file.minutes.size());
    const double minuteDeviation = std::sqrt(squares / count);
    spec.basePrice = level / count / pointsPerUnit(file.digits);
    spec.dailyVolatility = std::clamp(minuteDeviation * std::sqrt(1440.0), 0.001, 0.08);
    spec.spreadPoints = usualSpread(file, minuteDeviation * level / count);
    return spec;
}

} // namespace practice
