#include "chart/data/DrawingKind.h"

#include <QLatin1StringView>

#include <array>
#include <utility>

using namespace Qt::StringLiterals;

std::optional<DrawingKind> drawingKind(QStringView key)
{
    static constexpr std::array kinds{
        std::pair{"hline"_L1, DrawingKind::HorizontalLine},
        std::pair{"vline"_L1, DrawingKind::VerticalLine},
        std::pair{"trendline"_L1, DrawingKind::TrendLine},
        std::pair{"rectangle"_L1, DrawingKind::Rectangle},
        std::pair{"fibonacci"_L1, DrawingKind::Fibonacci},
    };
    for (const auto& [name, kind] : kinds) {
        if (key == name)
            return kind;
    }
    return std::nullopt;
}

int pointsNeeded(DrawingKind kind)
{
    return kind == DrawingKind::HorizontalLine || kind == DrawingKind::VerticalLine ? 1 : 2;
}
