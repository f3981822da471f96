#include "chart/layers/PriceTag.h"

#include "chart/data/ChartView.h"

QRect priceTagBox(const ChartView& view, int y)
{
    return {view.plot().right() + 1, y - 9, 66, 18};
}
