#include "mainwindow/PaneKeeper.h"

#include "app/base/TerminalSettings.h"
#include "mainwindow/SmallWindows.h"

#include <QFontMetrics>
#include <QHeaderView>
#include <QTabWidget>
#include <QTreeView>

using namespace Qt::StringLiterals;

namespace {

constexpr QLatin1StringView keptLists[] = {"marketWatchSymbols"_L1, "marketWatchDetails"_L1, "tradeList"_L1,
    "historyList"_L1, "expertsList"_L1, "journalList"_L1, "newsList"_L1, "alertsList"_L1};

/// Whether a person sets this column's width; others take what is left.
bool isSetByHand(const QHeaderView& header, int column)
{
    const bool stretched = header.stretchLastSection() && header.visualIndex(column) == header.count() - 1;
    return !stretched && header.sectionResizeMode(column) == QHeaderView::Interactive;
}

PanesLayout::Columns columnsOf(const QTreeView& list)
{
    const QHeaderView& header = *list.header();
    PanesLayout::Columns columns{QFontMetrics(list.font()).height(), {}};
    for (int column = 0; column < header.count(); ++column)
        columns.widths.append(isSetByHand(header, column) ? header.sectionSize(column) : 0);
    return columns;
}

/// The columns of another width than usual, the others as 0; no widths when all are as usual.
PanesLayout::Columns differing(PanesLayout::Columns columns, const PanesLayout::Columns& usual)
{
    for (int column = 0; column < int(columns.widths.size()); ++column) {
        if (columns.widths.at(column) == usual.widths.value(column))
            columns.widths[column] = 0;
    }
    while (!columns.widths.isEmpty() && columns.widths.constLast() == 0)
        columns.widths.removeLast();
    return columns;
}

void applyColumns(const QTreeView& list, const PanesLayout::Columns& columns)
{
    QHeaderView& header = *list.header();
    const int fontHeight = QFontMetrics(list.font()).height();
    const int count = std::min(header.count(), int(columns.widths.size()));
    for (int column = 0; column < count; ++column) {
        const int width = fittedColumnWidth(columns.widths.at(column), columns.fontHeight, fontHeight);
        if (width > 0 && isSetByHand(header, column))
            header.resizeSection(column, std::max(width, header.minimumSectionSize()));
    }
}

} // namespace

PaneKeeper::PaneKeeper(
    QWidget& window, QTabWidget& toolbox, SmallWindows& smallWindows, TerminalSettings& settings)
    : QObject(&window)
    , m_window(window)
    , m_toolbox(toolbox)
    , m_smallWindows(smallWindows)
    , m_settings(settings)
{
}

void PaneKeeper::restoreFromSettings()
{
    m_usualColumns = columnsOfLists();
    if (const auto layout = readPanesLayout(m_settings.panesLayout()))
        apply(*layout);
    m_found = present();
}

void PaneKeeper::storeInSettings() const
{
    const QString stored = m_settings.panesLayout();
    if (isLaterPanesLayout(stored))
        return;
    const PanesLayout layout = present();
    const bool unreadable = !stored.isEmpty() && !readPanesLayout(stored);
    if (!unreadable || layout != m_found)
        m_settings.setPanesLayout(panesLayoutText(layout));
}

QMap<QString, PanesLayout::Columns> PaneKeeper::columnsOfLists() const
{
    QMap<QString, PanesLayout::Columns> columns;
    for (const QLatin1StringView name : keptLists) {
        if (const auto* list = m_window.findChild<QTreeView*>(name))
            columns.insert(name, columnsOf(*list));
    }
    return columns;
}

PanesLayout PaneKeeper::present() const
{
    PanesLayout layout;
    const auto present = columnsOfLists();
    for (auto it = present.cbegin(), end = present.cend(); it != end; ++it) {
        const PanesLayout::Columns arranged = differing(*it, m_usualColumns.value(it.key()));
        if (!arranged.widths.isEmpty())
            layout.columns.insert(it.key(), arranged);
    }
    if (const QWidget* page = m_toolbox.currentWidget())
        layout.tab = page->objectName();
    layout.popup = m_smallWindows.popupPlace();
    return layout;
}

void PaneKeeper::apply(const PanesLayout& layout)
{
    for (const QLatin1StringView name : keptLists) {
        const auto* list = m_window.findChild<QTreeView*>(name);
        const auto columns = layout.columns.constFind(name);
        if (list && columns != layout.columns.cend())
            applyColumns(*list, *columns);
    }
    for (int page = 0; page < m_toolbox.count(); ++page) {
        if (!layout.tab.isEmpty() && m_toolbox.widget(page)->objectName() == layout.tab)
            m_toolbox.setCurrentIndex(page);
    }
    m_smallWindows.setPopupPlace(layout.popup);
}
