#include "panes/FittingDelegate.h"

#include <QApplication>
#include <QFontMetrics>
#include <QStyle>

#include <algorithm>

namespace {

constexpr int narrowest = 66;

}

QFont FittingDelegate::fitted(const QFont& font, const QString& text, int width)
{
    QFont narrowed = font;
    int advance = QFontMetrics(font).horizontalAdvance(text);
    int stretch = QFont::Unstretched;
    // Letters are rounded to whole pixels, so the first guess may be a little too wide.
    while (advance > width && stretch > narrowest) {
        stretch = std::max(narrowest, std::min(stretch - 1, stretch * width / advance));
        narrowed.setStretch(stretch);
        advance = QFontMetrics(narrowed).horizontalAdvance(text);
    }
    return narrowed;
}

void FittingDelegate::initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const
{
    QStyledItemDelegate::initStyleOption(option, index);
    if (option->rect.isEmpty()) // somebody asks how large the cell would like to be
        return;
    const QStyle* style = option->widget ? option->widget->style() : QApplication::style();
    const int margin = style->pixelMetric(QStyle::PM_FocusFrameHMargin, option, option->widget) + 1;
    const QRect room = style->subElementRect(QStyle::SE_ItemViewItemText, option, option->widget);
    option->font = fitted(option->font, option->text, room.width() - 2 * margin);
    option->fontMetrics = QFontMetrics(option->font);
}
