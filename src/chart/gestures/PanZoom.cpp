#include "chart/gestures/PanZoom.h"

#include <algorithm>

namespace {

constexpr double stepIn = 1.2;
constexpr double wheelStepOut = 0.8333333333333334;

double withinLimits(double barWidth)
{
    return std::clamp(barWidth, ViewState::minBarWidth, ViewState::maxBarWidth);
}

} // namespace

void PanZoom::begin(int x, const ViewState& state)
{
    m_panning = true;
    m_startX = x;
    m_startIndex = state.rightBarIndex;
}

ViewState PanZoom::dragged(int x, ViewState state, qsizetype count) const
{
    if (count <= 0)
        return state;
    const auto last = static_cast<double>(count - 1);
    const double index = m_startIndex - (static_cast<double>(x) - m_startX) / state.barWidth;
    state.rightBarIndex = std::clamp(index, 0.0, last);
    state.autoScroll = state.rightBarIndex >= last;
    return state;
}

double PanZoom::wheeled(double barWidth, int verticalDelta)
{
    return withinLimits(barWidth * (verticalDelta > 0 ? stepIn : wheelStepOut));
}

double PanZoom::wider(double barWidth)
{
    return withinLimits(barWidth * stepIn);
}

double PanZoom::narrower(double barWidth)
{
    return withinLimits(barWidth / stepIn);
}
