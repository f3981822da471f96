#pragma once

#include "mainwindow/PanesLayout.h"

#include <QObject>

class QTabWidget;
class SmallWindows;
class TerminalSettings;

/// Remembers from one run to the next what a trader has arranged within the panes: the widths of the columns,
/// the tab of the Toolbox in front, the place of the popup prices. Of the columns only those that have been
/// given another width: the others follow the usual widths of a later version or of another language. What it
/// cannot read stays in the settings as it is: that of a later version for good, anything else until
/// something is arranged.
class PaneKeeper final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(PaneKeeper)

public:
    /// The lists are found in `window`, which is also the keeper's parent. All others must outlive the
    /// keeper.
    PaneKeeper(QWidget& window, QTabWidget& toolbox, SmallWindows& smallWindows, TerminalSettings& settings);
    ~PaneKeeper() override = default;

    void restoreFromSettings();
    /// Writes to the settings; the caller syncs them.
    void storeInSettings() const;

private:
    [[nodiscard]] QMap<QString, PanesLayout::Columns> columnsOfLists() const;
    [[nodiscard]] PanesLayout present() const;
    void apply(const PanesLayout& layout);

    QWidget& m_window;
    QTabWidget& m_toolbox;
    SmallWindows& m_smallWindows;
    TerminalSettings& m_settings;
    QMap<QString, PanesLayout::Columns> m_usualColumns; ///< before the settings had been applied
    PanesLayout m_found; ///< how everything was after the settings had been applied
};
