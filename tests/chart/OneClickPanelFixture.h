#pragma once

#include "app/ui/DecimalSpinBox.h"
#include "app/ui/Theme.h"
#include "chart/ChartWindowFixture.h"
#include "chart/window/OneClickPanel.h"

#include <QApplication>
#include <QPushButton>

/// The one-click panel of a chart, and what is on it.
namespace fixtures {

[[nodiscard]] inline OneClickPanel& panelOf(const ServedChart& served)
{
    return *served.chart().findChild<OneClickPanel*>(QStringLiteral("oneClickPanel"));
}
[[nodiscard]] inline QPushButton& button(const OneClickPanel& panel, QStringView caption)
{
    const QList<QPushButton*> buttons = panel.findChildren<QPushButton*>();
    return *(buttons.at(0)->text().startsWith(caption) ? buttons.at(0) : buttons.at(1));
}
[[nodiscard]] inline DecimalSpinBox& volume(const OneClickPanel& panel)
{
    return *panel.findChild<DecimalSpinBox*>();
}

/// A style sheet may bear on the size of everything.
inline void useLightTheme()
{
    setTheme(false);
    applyTheme(*qApp);
}

} // namespace fixtures
