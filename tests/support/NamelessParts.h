#pragma once

#include <QAbstractItemView>
#include <QAbstractSpinBox>
#include <QAccessible>
#include <QApplication>
#include <QComboBox>
#include <QHeaderView>
#include <QMenu>
#include <QSet>
#include <QStringList>
#include <QTabBar>
#include <QWidget>

/// What a screen reader would come to on the windows there are and could only call by its kind: parts that
/// can be used, and cells that show something.
class NamelessParts final {
public:
    /// Each in words; nothing when all have names.
    [[nodiscard]] static QStringList find()
    {
        NamelessParts parts;
        const QWidgetList widgets = QApplication::allWidgets();
        for (QWidget* widget : widgets)
            parts.look(*widget);
        parts.m_found.sort();
        return parts.m_found;
    }

private:
    void note(const QWidget& widget, const QString& what)
    {
        QString path = QString::fromLatin1(widget.metaObject()->className()) + u' ' + widget.objectName();
        for (const QWidget* above = widget.parentWidget(); above; above = above->parentWidget())
            path += QStringLiteral(" < ") + QString::fromLatin1(above->metaObject()->className());
        m_found.append(what + QStringLiteral(": ") + path);
    }

    void look(QWidget& widget)
    {
        const QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(&widget);
        if (!accessible || isPartOfAnother(widget))
            return;
        static const QSet<QAccessible::Role> used{QAccessible::PushButton, QAccessible::CheckBox,
            QAccessible::RadioButton, QAccessible::ComboBox, QAccessible::EditableText, QAccessible::SpinBox,
            QAccessible::Slider, QAccessible::ButtonMenu, QAccessible::ButtonDropDown, QAccessible::List,
            QAccessible::Tree, QAccessible::Table, QAccessible::PageTabList, QAccessible::Chart,
            QAccessible::Dialog, QAccessible::ToolBar};
        const bool isUsed = used.contains(accessible->role()) || widget.focusPolicy() != Qt::NoFocus;
        if (isUsed && !isFrame(widget) && isNameless(*accessible))
            note(widget, QStringLiteral("no name"));
        for (int i = 0; i < accessible->childCount(); ++i) {
            const QAccessibleInterface* part = accessible->child(i);
            const bool isPainted = part && !part->object();
            if (isPainted && accessible->role() == QAccessible::Chart && isNameless(*part))
                note(widget, QStringLiteral("a painted part without a name"));
        }
        if (const auto* view = qobject_cast<const QAbstractItemView*>(&widget); view && view->model())
            lookAtCells(*view, {});
        if (const auto* header = qobject_cast<const QHeaderView*>(&widget); header && header->model())
            lookAtHeader(*header);
        if (const auto* tabs = qobject_cast<const QTabBar*>(&widget)) {
            for (int i = 0; i < tabs->count(); ++i) {
                if (tabs->tabText(i).isEmpty() && tabs->accessibleTabName(i).isEmpty())
                    note(widget, QStringLiteral("a tab without a name"));
            }
        }
        if (const auto* menu = qobject_cast<const QMenu*>(&widget)) {
            for (const QAction* action : menu->actions()) {
                if (!action->isSeparator() && action->text().isEmpty())
                    note(widget, QStringLiteral("an entry without a name"));
            }
        }
    }

    static bool isNameless(const QAccessibleInterface& part)
    {
        return part.text(QAccessible::Name).trimmed().isEmpty();
    }
    /// Shown and used as one with the widget around it, which has the name and the focus.
    static bool isPartOfAnother(const QWidget& widget)
    {
        const QWidget* around = widget.parentWidget();
        return qobject_cast<const QAbstractSpinBox*>(around) || qobject_cast<const QComboBox*>(around)
            || (around && qobject_cast<const QComboBox*>(around->parentWidget()));
    }
    /// Takes the focus for what lies within it.
    static bool isFrame(const QWidget& widget)
    {
        return widget.inherits("QMdiArea") || widget.inherits("QMdiSubWindow") || widget.focusProxy();
    }

    void lookAtCells(const QAbstractItemView& view, const QModelIndex& parent)
    {
        const QAbstractItemModel& model = *view.model();
        for (int row = 0; row < model.rowCount(parent); ++row) {
            for (int column = 0; column < model.columnCount(parent); ++column) {
                const QModelIndex cell = model.index(row, column, parent);
                const bool shows = !cell.data(Qt::DecorationRole).isNull()
                    || !cell.data(Qt::CheckStateRole).isNull() || !cell.data(Qt::BackgroundRole).isNull();
                if (shows && cell.data(Qt::AccessibleTextRole).toString().isEmpty()
                    && cell.data().toString().isEmpty())
                    note(view, QStringLiteral("a cell that shows something and says nothing"));
            }
            lookAtCells(view, model.index(row, 0, parent));
        }
    }
    void lookAtHeader(const QHeaderView& header)
    {
        for (int i = 0; i < header.count(); ++i) {
            if (header.isVisibleTo(header.parentWidget())
                && header.model()->headerData(i, header.orientation()).toString().isEmpty())
                note(header, QStringLiteral("a column without a name"));
        }
    }

    QStringList m_found;
};
