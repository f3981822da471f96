#pragma once

/// How prices are drawn. The values are those of saved charts.
enum class ChartType : int { Candles = 0, Bars = 1, Line = 2 };
