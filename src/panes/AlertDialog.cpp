#include "panes/AlertDialog.h"

#include "app/base/ServerText.h"
#include "app/ui/DecimalSpinBox.h"
#include "app/ui/FocusOrder.h"
#include "app/ui/HeldEnter.h"
#include "app/ui/WheelFocus.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QPushButton>

using namespace Qt::StringLiterals;

AlertDialog::AlertDialog(const QStringList& symbols, QWidget* parent)
    : QDialog(parent)
    , m_symbol(new QComboBox(this))
    , m_condition(new QComboBox(this))
    , m_price(new DecimalSpinBox(this))
{
    setModal(true);
    setWindowTitle(tr("New Alert"));
    m_symbol->setObjectName("alertSymbol"_L1);
    for (const QString& symbol : symbols)
        m_symbol->addItem(shownName(symbol), symbol);
    m_condition->setObjectName("alertCondition"_L1);
    m_condition->addItem(tr("Bid ≥"), true);
    m_condition->addItem(tr("Bid ≤"), false);
    m_price->setObjectName("alertPrice"_L1);
    m_price->setRange(0.0, 1e9);
    m_price->setDecimals(5);

    auto* form = new QFormLayout(this);
    form->addRow(tr("Symbol:"), m_symbol);
    form->addRow(tr("Condition:"), m_condition);
    form->addRow(tr("Price:"), m_price);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    form->addRow(buttons);
    takeWheelOnlyFocused(*m_symbol);
    takeWheelOnlyFocused(*m_condition);
    setFocusOrder({m_symbol, m_condition, m_price, buttons->button(QDialogButtonBox::Ok),
        buttons->button(QDialogButtonBox::Cancel)});
    m_symbol->setFocus();
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    refuseHeldEnter(*this);
}

void AlertDialog::beginWith(const QString& symbol, const std::function<double(const QString& symbol)>& bidOf)
{
    if (const int place = m_symbol->findData(symbol); place >= 0)
        m_symbol->setCurrentIndex(place);
    const auto offerBid = [this, bidOf] {
        m_price->setValue(bidOf(m_symbol->currentData().toString()));
        return m_price->value();
    };
    connect(
        m_symbol, &QComboBox::currentIndexChanged, this, [this, offerBid, offered = offerBid()]() mutable {
            if (m_price->value() == offered)
                offered = offerBid();
        });
}

PriceAlert AlertDialog::alert() const
{
    return {m_symbol->currentData().toString(), m_condition->currentData().toBool(), m_price->value(), false};
}
