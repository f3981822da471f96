#include "panes/AlertsPane.h"

#include "app/base/NumberFormat.h"
#include "app/base/ServerText.h"
#include "app/base/TerminalSettings.h"
#include "app/ui/LetterSize.h"
#include "app/ui/Theme.h"
#include "net/records/PriceSnapshot.h"
#include "panes/AlertDialog.h"
#include "panes/KeptRows.h"
#include "panes/RowKeys.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QShortcut>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr int priceDecimals = 5;
constexpr int alertBalloonMs = 12000;
constexpr QColor activeColor(0x26, 0xd3, 0x67);

} // namespace

AlertsPane::AlertsPane(TerminalSettings& settings, QWidget* parent)
    : QWidget(parent)
    , m_settings(settings)
    , m_book(AlertBook::fromJson(settings.alerts()))
    , m_list(new QTreeWidget(this))
{
    m_list->setObjectName("alertsList"_L1);
    m_list->setAccessibleName(tr("Alerts"));
    m_list->setRootIsDecorated(false);
    m_list->setUniformRowHeights(true);
    m_list->setHeaderLabels({tr("Symbol"), tr("Condition"), tr("Price"), tr("Status")});
    for (int column = 0; column < 3; ++column)
        setColumnWidth(*m_list, column, 90);

    auto* add = new QPushButton(tr("Add Alert"), this);
    auto* remove = new QPushButton(tr("Delete"), this);
    auto* buttons = new QHBoxLayout;
    buttons->setContentsMargins(4, 4, 4, 4);
    buttons->addWidget(add);
    buttons->addWidget(remove);
    buttons->addStretch();
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(m_list, 1);
    column->addLayout(buttons);

    connect(add, &QPushButton::clicked, this, &AlertsPane::ask);
    connect(remove, &QPushButton::clicked, this, &AlertsPane::deleteCurrent);
    new RowKeys(*m_list); // the list's own child
    auto* key = new QShortcut(Qt::Key_Delete, m_list, this, &AlertsPane::deleteSelected, Qt::WidgetShortcut);
    key->setAutoRepeat(false); // what comes next is to be looked at first
    fill();
}

void AlertsPane::onPrices(const QJsonObject& prices)
{
    checkQuotes(PriceSnapshot(prices));
}

void AlertsPane::checkQuotes(const PriceSnapshot& prices)
{
    const QList<AlertBook::Fired> fired = m_book.check(prices);
    if (fired.isEmpty())
        return;
    for (const AlertBook::Fired& hit : fired) {
        const PriceAlert& alert = m_book.alerts().at(hit.index);
        Q_EMIT soundWanted(SoundKind::Fill);
        Q_EMIT balloonWanted({tr("Price Alert — %1").arg(shownName(alert.symbol)),
            //: %1 the symbol, %2 the condition, %3 its price, %4 the bid
            tr("%1 %2 %3 (now %4)")
                .arg(shownName(alert.symbol), alert.above ? u"≥"_s : u"≤"_s,
                    formatPrice(alert.price, priceDecimals), formatPrice(hit.bid, priceDecimals)),
            Balloon::Kind::Information, alertBalloonMs});
    }
    saveAndFill();
}

void AlertsPane::ask()
{
    auto* dialog = new AlertDialog(m_symbols, this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    if (m_market.symbolInFront && m_market.bidOf)
        dialog->beginWith(m_market.symbolInFront(), m_market.bidOf);
    connect(dialog, &QDialog::accepted, this, [this, dialog] { addAlert(dialog->alert()); });
    dialog->open();
}

void AlertsPane::addAlert(const PriceAlert& alert)
{
    if (alert.symbol.isEmpty() || alert.price <= 0.0)
        return;
    m_book.add(alert);
    saveAndFill();
}

void AlertsPane::deleteCurrent()
{
    const int row = m_list->indexOfTopLevelItem(m_list->currentItem());
    deleteRows(row < 0 ? QList<int>() : QList<int>{row});
}

void AlertsPane::deleteSelected()
{
    if (m_list->selectedItems().isEmpty())
        return deleteCurrent(); // the keyboard has come to a row and selected none
    QList<int> rows;
    const QModelIndexList selected = m_list->selectionModel()->selectedRows();
    for (const QModelIndex& row : selected)
        rows.append(row.row());
    std::sort(rows.begin(), rows.end());
    if (!rows.isEmpty())
        deleteRows(rows);
}

void AlertsPane::deleteRows(const QList<int>& rows)
{
    for (auto row = rows.crbegin(); row != rows.crend(); ++row)
        m_book.removeAt(*row);
    if (!rows.isEmpty())
        m_list->clear(); // nothing is kept: the next one is selected
    saveAndFill();
    // So that deleting again goes on down the list.
    const int last = m_list->topLevelItemCount() - 1;
    if (!rows.isEmpty() && last >= 0) {
        m_list->selectionModel()->setCurrentIndex(
            m_list->model()->index(std::min(rows.constFirst(), last), 0),
            QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    }
}

void AlertsPane::saveAndFill()
{
    m_settings.setAlerts(m_book.toJson());
    fill();
}

void AlertsPane::fill()
{
    // An alert that fires must not take the selection from under the trader's hand.
    const auto placeOf = [](int row) { return QString::number(row); };
    const KeptRows kept = KeptRows::of(*m_list, placeOf);
    QList<QTreeWidgetItem*> rows;
    rows.reserve(m_book.alerts().size());
    for (const PriceAlert& alert : m_book.alerts()) {
        auto* row = new QTreeWidgetItem({shownName(alert.symbol), alert.above ? tr("Bid ≥") : tr("Bid ≤"),
            formatPrice(alert.price, priceDecimals), alert.triggered ? tr("Triggered") : tr("Active")});
        row->setForeground(3, alert.triggered ? fixedColors::grey : activeColor);
        rows.append(row);
    }
    m_list->clear();
    m_list->addTopLevelItems(rows);
    kept.restore(*m_list, placeOf);
}
