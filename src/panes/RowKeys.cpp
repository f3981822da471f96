#include "panes/RowKeys.h"

#include "app/base/ServerText.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <QTreeWidget>

#include <algorithm>

namespace {

/// The rows of a selection from top to bottom, each once.
QList<int> rowsOf(const QItemSelection& selection)
{
    QList<int> rows;
    for (const QItemSelectionRange& range : selection) {
        for (int row = range.top(); row <= range.bottom(); ++row)
            rows.append(row);
    }
    std::sort(rows.begin(), rows.end());
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    return rows;
}

QList<int> columnsOnShow(const QHeaderView& header)
{
    QList<int> columns;
    for (int place = 0; place < header.count(); ++place) {
        const int column = header.logicalIndex(place);
        if (!header.isSectionHidden(column))
            columns.append(column);
    }
    return columns;
}

bool isLetter(const QKeyEvent& press)
{
    constexpr Qt::KeyboardModifiers commands = Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier;
    return !press.text().isEmpty() && press.text().at(0).isLetterOrNumber()
        && !(press.modifiers() & commands);
}

} // namespace

QString rowsAsText(
    const QAbstractItemModel& model, const QItemSelection& selection, const QList<int>& columns)
{
    const QList<int> rows = rowsOf(selection);
    QString text;
    const auto addLine = [&text, &columns](const auto& cell) {
        for (const int column : columns) {
            if (column != columns.constFirst())
                text += u'\t';
            text += oneLine(cell(column).toString());
        }
        text += u'\n';
    };
    if (!rows.isEmpty())
        addLine([&model](int column) { return model.headerData(column, Qt::Horizontal); });
    for (const int row : rows)
        addLine([&model, row](int column) { return model.index(row, column).data(); });
    return text;
}

RowKeys::RowKeys(QTreeWidget& list, int searched)
    : QObject(&list)
    , m_list(list)
    , m_searched(searched)
{
    list.setSelectionMode(QAbstractItemView::ExtendedSelection);
    list.installEventFilter(this);
}

bool RowKeys::eventFilter(QObject* /*watched*/, QEvent* event)
{
    if (event->type() != QEvent::KeyPress)
        return false;
    const auto& press = *static_cast<const QKeyEvent*>(event);
    if (press.matches(QKeySequence::Copy)) {
        copy();
        return true;
    }
    if (isLetter(press))
        beginSearch();
    return false;
}

void RowKeys::copy() const
{
    const QString text
        = rowsAsText(*m_list.model(), m_list.selectionModel()->selection(), columnsOnShow(*m_list.header()));
    // What was copied before is not lost for nothing.
    if (!text.isEmpty())
        QGuiApplication::clipboard()->setText(text);
}

void RowKeys::beginSearch() const
{
    const QModelIndex current = m_list.currentIndex();
    if (current.column() > 0 || m_searched == 0)
        return;
    const int row = current.isValid() ? current.row() : 0;
    m_list.selectionModel()->setCurrentIndex(
        m_list.model()->index(row, m_searched), QItemSelectionModel::NoUpdate);
}
