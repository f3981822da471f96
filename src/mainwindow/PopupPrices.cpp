#include "mainwindow/PopupPrices.h"

#include "app/ui/LetterSize.h"
#include "panes/QuoteItem.h"

#include <QCloseEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QTreeView>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

constexpr QSize popupSize(270, 340);

} // namespace

PopupPrices::PopupPrices(QAbstractItemModel& quotes, QWidget* parent)
    : QWidget(parent, Qt::Tool | Qt::WindowStaysOnTopHint)
    , m_list(new QTreeView(this))
{
    setWindowTitle(tr("Popup Prices"));
    setAttribute(Qt::WA_ShowWithoutActivating);

    m_list->setObjectName(u"popupPriceList"_s);
    m_list->setAccessibleName(tr("Popup Prices"));
    m_list->setModel(&quotes);
    m_list->setRootIsDecorated(false);
    m_list->setUniformRowHeights(true);
    m_list->setSelectionMode(QAbstractItemView::NoSelection);
    m_list->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_list->header()->setStretchLastSection(false);
    m_list->header()->setSectionResizeMode(QHeaderView::Stretch);
    for (int column = QuoteItem::Ask + 1; column < quotes.columnCount(); ++column)
        m_list->setColumnHidden(column, true);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_list);
    resize(withLetters(popupSize, *this).expandedTo({widthOfEqualColumns(*m_list), 0}));
}

void PopupPrices::toggle()
{
    if (isVisible())
        close();
    else
        show();
}

void PopupPrices::refresh()
{
    m_list->viewport()->update();
}

// A desktop gives a window that is opened again another place, unless the program has asked for one.
void PopupPrices::closeEvent(QCloseEvent* event)
{
    setAttribute(Qt::WA_Moved);
    QWidget::closeEvent(event);
}

void PopupPrices::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape)
        close();
    else
        QWidget::keyPressEvent(event);
}
