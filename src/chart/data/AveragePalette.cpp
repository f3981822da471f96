#include "chart/data/AveragePalette.h"

#include <algorithm>
#include <array>

QColor averageColor(qsizetype count)
{
    static constexpr std::array<QColor, 5> palette{
        QColor(0xff, 0xd5, 0x4f),
        QColor(0x4f, 0xc3, 0xf7),
        QColor(0xba, 0x68, 0xc8),
        QColor(0xff, 0x8a, 0x65),
        QColor(0x81, 0xc7, 0x84),
    };
    return palette[static_cast<std::size_t>(std::max<qsizetype>(count, 0)) % palette.size()];
}
