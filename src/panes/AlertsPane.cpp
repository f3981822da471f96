#include "panes/AlertsPane.h"

#include "app/base/NumberFormat.h"
#include "app/base/ServerText.h"
#include "app/base/TerminalSettings.h"
#include "app/ui/Theme.h"
#include "net/records/PriceSnapshot.h"
#include "panes/AlertDialog.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr int priceDecimals = 5;
constexpr int balloonMs = 12000;
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
        m_list->setColumnWidth(column, 90);

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
            Balloon::Kind::Information, balloonMs});
    }
    saveAndFill();
}

void AlertsPane::ask()
{
    auto* dialog = new AlertDialog(m_symbols, this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
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
    m_book.removeAt(row);
    saveAndFill();
    // Select the next one, so that pressing the button again goes on down the list.
    const int last = m_list->topLevelItemCount() - 1;
    if (row >= 0 && last >= 0)
        m_list->setCurrentItem(m_list->topLevelItem(std::min(row, last)));
}

void AlertsPane::saveAndFill()
{
    m_settings.setAlerts(m_book.toJson());
    fill();
}

void AlertsPane::fill()
{
    const int current = m_list->indexOfTopLevelItem(m_list->currentItem());
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
    // An alert that fires must not take the selection from under the trader's hand.
    m_list->setCurrentItem(m_list->topLevelItem(current));
}
