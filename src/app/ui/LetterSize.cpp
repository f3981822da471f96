#include "app/ui/LetterSize.h"

#include <QHeaderView>
#include <QScrollBar>
#include <QTreeView>

#include <algorithm>

namespace {

constexpr double ordinaryDpi = 96.0;

double growth(const QWidget& widget)
{
    return std::max(widget.logicalDpiY() / ordinaryDpi, 1.0);
}

} // namespace

int withLetters(int pixels, const QWidget& widget)
{
    return qRound(pixels * growth(widget));
}

QSize withLetters(const QSize& size, const QWidget& widget)
{
    return size * growth(widget);
}

int widthOfEqualColumns(QTreeView& list)
{
    QHeaderView& header = *list.header();
    header.ensurePolished();
    int widest = 0;
    int count = 0;
    for (int column = 0; column < header.count(); ++column) {
        if (header.isSectionHidden(column))
            continue;
        widest = std::max(widest, header.sectionSizeHint(column));
        ++count;
    }
    return widest * count + list.verticalScrollBar()->sizeHint().width() + 2 * list.frameWidth();
}

void setColumnWidth(QTreeView& list, int column, int pixels)
{
    list.header()->ensurePolished();
    list.setColumnWidth(column, std::max(withLetters(pixels, list), list.header()->sectionSizeHint(column)));
}
