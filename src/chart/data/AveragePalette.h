#pragma once

#include <QColor>

/// The colour of the next moving average on a chart that has `count` of them: five colours in turn.
[[nodiscard]] QColor averageColor(qsizetype count);
