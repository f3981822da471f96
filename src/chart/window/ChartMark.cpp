#include "chart/window/ChartMark.h"

#include "chart/data/DrawingGeometry.h"
#include "chart/layers/ChartFrame.h"
#include "chart/window/ChartReader.h"
#include "chart/window/ChartWidget.h"

#include <QWindow>

#include <utility>

ChartMark::ChartMark(ChartWidget& chart, ChartMarkKey key)
    : m_chart(&chart)
    , m_key(std::move(key))
{
}

bool ChartMark::isValid() const
{
    return !m_chart.isNull();
}

QWindow* ChartMark::window() const
{
    return m_chart ? m_chart->window()->windowHandle() : nullptr;
}

QAccessibleInterface* ChartMark::parent() const
{
    return m_chart ? QAccessible::queryAccessibleInterface(m_chart) : nullptr;
}

QString ChartMark::text(QAccessible::Text kind) const
{
    return m_chart && kind == QAccessible::Name ? m_chart->reader().markName(m_key) : QString();
}

QRect ChartMark::rect() const
{
    const QRect shown = area();
    return shown.isEmpty() ? QRect() : QRect(m_chart->mapToGlobal(shown.topLeft()), shown.size());
}

QRect ChartMark::area() const
{
    if (!m_chart)
        return {};
    const ChartFrame frame = m_chart->frame();
    const ChartView& view = frame.view;
    if (isButton())
        return frame.autoScroll ? QRect() : view.scrollToEndButton();
    const qsizetype index = m_chart->reader().markIndex(m_key);
    if (index < 0)
        return {};
    const DrawingGeometry geometry(view, frame.candles, frame.timeframeMs);
    if (m_key.kind == ChartMarkKey::Kind::Drawing)
        return geometry.area(m_chart->drawings().at(index));
    return geometry.lineArea(
        frame.draggedLevel == index ? frame.draggedPrice : m_chart->tradeLevels().at(index).price);
}

QAccessible::Role ChartMark::role() const
{
    return isButton() ? QAccessible::PushButton : QAccessible::Graphic;
}

QAccessible::State ChartMark::state() const
{
    QAccessible::State state;
    if (!m_chart)
        return state;
    state.invisible = !m_chart->isVisible();
    state.offscreen = area().isEmpty();
    if (m_key.kind == ChartMarkKey::Kind::Drawing) {
        const qsizetype index = m_chart->reader().markIndex(m_key);
        state.selectable = true;
        state.selected = index >= 0 && m_chart->drawings().at(index).selected;
    }
    return state;
}

void* ChartMark::interface_cast(QAccessible::InterfaceType type)
{
    const bool acts = type == QAccessible::ActionInterface && isButton();
    return acts ? static_cast<QAccessibleActionInterface*>(this) : nullptr;
}

QStringList ChartMark::actionNames() const
{
    return isButton() ? QStringList{pressAction()} : QStringList();
}

void ChartMark::doAction(const QString& name)
{
    if (m_chart && isButton() && name == pressAction())
        m_chart->scrollToEnd();
}
