#include "lab/core/output/MissingFigure.h"

#include "lab/core/output/FigureText.h"
#include "lab/core/output/Texts.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace lab {

namespace {

struct Need {
    std::string_view key;
    std::string_view text;
};

constexpr std::string_view twoDays = "needs at least two days with prices";
constexpr std::string_view twoReturns = "needs at least two days with different returns";
constexpr std::string_view aTrade = "needs a trade";
constexpr std::string_view aDay = "needs a day with prices";
constexpr std::string_view aLimit = "only an account under plan rules has such a limit";

constexpr std::array needs{
    Need{"from", "not known"},
    Need{"to", "not known"},
    Need{"ticksPerBar", "needs a bar"},
    Need{"cagr", "needs at least two days with prices, and equity left at the end"},
    Need{"volatility", twoDays},
    Need{"sharpe", twoReturns},
    Need{"sortino", "needs at least two days with prices, one of them with a loss"},
    Need{"maxDrawdown", aDay},
    Need{"maxDrawdownMoney", aDay},
    Need{"maxDrawdownBalance", aDay},
    Need{"longestDrawdownDays", aDay},
    Need{"averageDrawdown", "needs a day below the highest equity before"},
    Need{"recoveryFactor", "needs a drawdown"},
    Need{"ulcerIndex", aDay},
    Need{"winRate", aTrade},
    Need{"expectancy", aTrade},
    Need{"sqn", "needs at least two trades with different results"},
    Need{"bestTrade", aTrade},
    Need{"worstTrade", aTrade},
    Need{"averageDurationMinutes", aTrade},
    Need{"exposure", "needs prices at two moments"},
    Need{"var95", twoDays},
    Need{"es95", twoDays},
    Need{"skew", twoReturns},
    Need{"kurtosis", twoReturns},
    Need{"psr", twoReturns},
    Need{"buyAndHold", "needs a price"},
    Need{"worstDay", aDay},
    Need{"dailyLimitUse", aLimit},
    Need{"totalLimitUse", aLimit},
};

constexpr std::array<std::string_view, 14> ofPrices{"bars", "ticks", "ticksPerBar", "maxDrawdown",
    "maxDrawdownMoney", "calmar", "recoveryFactor", "spreadCost", "buyAndHold", "worstDay", "dailyLimitUse",
    "totalLimitUse", "ambiguousExits", "refusals"};

/// What a ratio of wins and losses is short of.
std::string_view missingTrade(const FigureOf& figureOf, bool needsWin)
{
    if (figureOf("trades").value_or(0) == 0)
        return aTrade;
    return needsWin && figureOf("wins").value_or(0) == 0 ? "needs a winning trade" : "needs a losing trade";
}

} // namespace

std::string_view whyMissing(std::string_view key, const FigureOf& figureOf)
{
    // A run counts its bars, if only to none; closed trades alone have none to count.
    if (std::ranges::find(ofPrices, key) != ofPrices.end() && !figureOf("bars"))
        return "not known without prices";
    if (key == "calmar")
        return figureOf("cagr") ? "needs a drawdown" : "needs a growth a year";
    if (key == "payoff" || key == "kelly" || key == "profitFactor")
        return missingTrade(figureOf, key != "profitFactor");
    const auto* const need = std::ranges::find(needs, key, &Need::key);
    return need != needs.end() ? need->text : "undefined";
}

std::string_view whyMissing(std::string_view key, const Figures& figures)
{
    return whyMissing(key, [&figures](std::string_view other) {
        const FigureRow* const row = figureRow(other);
        return row ? row->of(figures) : Figure();
    });
}

std::string missingMark(std::string_view why)
{
    return "<span title=\"" + escaped(why) + "\">" + std::string(undefinedText) + "</span>";
}

std::string figureHtml(FigureKind kind, const Figure& value, std::string_view why)
{
    return value && std::isfinite(*value) ? figureText(kind, value) : missingMark(why);
}

} // namespace lab
