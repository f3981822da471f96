#include "chart/data/ChartColorRoles.h"

#include <QCoreApplication>

using namespace Qt::StringLiterals;

const std::array<ChartColorRole, 7>& chartColorRoles()
{
    static constexpr std::array<ChartColorRole, 7> roles{{
        {QT_TRANSLATE_NOOP("ChartColorRoles", "Background"), "bg"_L1, &ChartColors::background},
        {QT_TRANSLATE_NOOP("ChartColorRoles", "Grid"), "grid"_L1, &ChartColors::grid},
        {QT_TRANSLATE_NOOP("ChartColorRoles", "Axis text"), "axis"_L1, &ChartColors::axis},
        //: colour of a candle that closes higher
        {QT_TRANSLATE_NOOP("ChartColorRoles", "Up / bull"), "up"_L1, &ChartColors::up},
        //: colour of a candle that closes lower
        {QT_TRANSLATE_NOOP("ChartColorRoles", "Down / bear"), "down"_L1, &ChartColors::down},
        {QT_TRANSLATE_NOOP("ChartColorRoles", "Line chart"), "line"_L1, &ChartColors::line},
        {QT_TRANSLATE_NOOP("ChartColorRoles", "Volume"), "vol"_L1, &ChartColors::volume},
    }};
    return roles;
}

ChartColors greenOnBlackColors()
{
    return {};
}

ChartColors blackOnWhiteColors()
{
    ChartColors colors;
    colors.background = QColor(0xff, 0xff, 0xff);
    colors.grid = QColor(0xd6, 0xd6, 0xd6);
    colors.axis = QColor(0x33, 0x33, 0x33);
    // Rising candles are hollow, so that one colour is enough for both directions.
    colors.up = QColor(0x00, 0x00, 0x00);
    colors.down = QColor(0x00, 0x00, 0x00);
    colors.line = QColor(0x1f, 0x6f, 0xb2);
    colors.volume = QColor(0xc8, 0xd8, 0xc8);
    return colors;
}
