#include "lab/core/output/FigureText.h"

#include "lab/core/output/Texts.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace lab {

namespace {

std::string durationText(double minutes)
{
    if (minutes < 120)
        return groupedText(minutes, 1) + " min";
    const auto whole = static_cast<std::int64_t>(std::min(minutes, 1e15));
    if (whole < 2 * 1440)
        return std::to_string(whole / 60) + " h " + std::to_string(whole % 60) + " min";
    return groupedText(static_cast<double>(whole / 1440), 0) + " d " + std::to_string(whole / 60 % 24) + " h";
}

} // namespace

std::string percentText(double fraction, int decimals)
{
    return typeset(groupedText(fraction * 100, decimals)) + " %";
}

std::string centsText(double cents)
{
    return typeset(groupedText(cents / 100, 2));
}

std::string figureText(FigureKind kind, const Figure& value)
{
    if (!value || !std::isfinite(*value))
        return std::string(undefinedText);
    switch (kind) {
    case FigureKind::Time:
        return minuteText(static_cast<practice::TimeMs>(*value));
    case FigureKind::Count:
        return typeset(groupedText(*value, 0));
    case FigureKind::Days:
        return groupedText(*value, 0) + " d";
    case FigureKind::Fraction:
        return percentText(*value);
    case FigureKind::Money:
        return centsText(*value);
    case FigureKind::Minutes:
        return durationText(*value);
    case FigureKind::Number:
        break;
    }
    return typeset(groupedText(*value, 2));
}

std::string figureData(FigureKind kind, const Figure& value)
{
    if (!value || !std::isfinite(*value))
        return {};
    switch (kind) {
    case FigureKind::Time:
        return isoTime(static_cast<practice::TimeMs>(*value));
    case FigureKind::Money:
        return fixedText(*value / 100, 2);
    case FigureKind::Count:
    case FigureKind::Days:
        return fixedText(*value, 0);
    case FigureKind::Number:
    case FigureKind::Fraction:
    case FigureKind::Minutes:
        break;
    }
    return shortestText(*value);
}

} // namespace lab
