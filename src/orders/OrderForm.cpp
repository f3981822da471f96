#include "orders/OrderForm.h"

#include "app/base/ServerText.h"
#include "app/ui/DecimalEdit.h"
#include "app/ui/DecimalSpinBox.h"
#include "app/ui/ErrorLabel.h"
#include "app/ui/PlainText.h"
#include "app/ui/WheelFocus.h"
#include "net/records/SymbolRecord.h"
#include "orders/PriceDisplay.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QFormLayout>
#include <QJsonArray>
#include <QJsonObject>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

QString buttonStyle(QLatin1StringView color)
{
    return "QPushButton{background:#e8edf3;border:1px solid #b7c6d6;color:%1;font-weight:bold;}"
           "QPushButton:hover{background:#dde6f0;}"_L1.arg(color);
}

QString typeSuffix(OrderType type)
{
    switch (type) {
    case OrderType::Market:
        //: ends "Sell %1" and "Buy %1"
        return OrderForm::tr("by Market");
    case OrderType::Limit:
        //: the type of order; ends "Sell %1" and "Buy %1"
        return OrderForm::tr("Limit");
    case OrderType::Stop:
        //: the type of order; ends "Sell %1" and "Buy %1"
        return OrderForm::tr("Stop");
    case OrderType::StopLimit:
        break;
    }
    return OrderForm::tr("Stop Limit");
}

} // namespace

OrderForm::OrderForm(const QJsonArray& symbols, const QString& initialSymbol, QWidget* parent)
    : QWidget(parent)
    , m_symbolCombo(new QComboBox)
    , m_volume(new DecimalSpinBox)
    , m_units(plainLabel({}))
    , m_stopLoss(new DecimalEdit)
    , m_takeProfit(new DecimalEdit)
    , m_price(new DecimalEdit)
    , m_comment(new QComboBox)
    , m_priceDisplay(new PriceDisplay)
    , m_error(new ErrorLabel)
    , m_sell(new QPushButton)
    , m_buy(new QPushButton)
{
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(24, 20, 24, 16);
    column->addLayout(buildFields());
    column->addStretch();
    m_priceDisplay->setObjectName("priceDisplay"_L1);
    column->addWidget(m_priceDisplay);
    column->addStretch();
    m_error->setObjectName("orderError"_L1);
    m_error->setStyleSheet("color:#c0392b;"_L1);
    column->addWidget(m_error);
    column->addLayout(buildButtons());

    fillSymbols(symbols, initialSymbol);
    setOrderType(OrderType::Market);
    connect(m_symbolCombo, &QComboBox::currentIndexChanged, this, &OrderForm::symbolChanged);
    connect(m_sell, &QPushButton::clicked, this, [this] { Q_EMIT placeRequested(Side::Sell); });
    connect(m_buy, &QPushButton::clicked, this, [this] { Q_EMIT placeRequested(Side::Buy); });
}

QFormLayout* OrderForm::buildFields()
{
    // The list drops down and scrolls, since one that pops over the field would fill the screen. This must be
    // set before view() builds the list.
    m_symbolCombo->setStyleSheet("QComboBox{combobox-popup:0;}"_L1);
    m_symbolCombo->view()->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    m_symbolCombo->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    m_symbolCombo->setMinimumContentsLength(20);
    m_stopLoss->setText(u"0.00"_s);
    m_takeProfit->setText(u"0.00"_s);
    m_comment->setEditable(true);
    m_comment->setInsertPolicy(QComboBox::NoInsert);
    takeWheelOnlyFocused(*m_symbolCombo);
    takeWheelOnlyFocused(*m_comment);

    auto* form = new QFormLayout;
    form->setSpacing(9);
    form->setLabelAlignment(Qt::AlignRight | Qt::AlignVCenter);
    addField(form, tr("Symbol:"), m_symbolCombo, u"orderSymbol"_s);
    addField(form, tr("Volume:"), buildVolumeRow(), u"orderVolumeRow"_s)->setBuddy(m_volume);
    addField(form, tr("Stop Loss:"), m_stopLoss, u"orderStopLoss"_s);
    addField(form, tr("Take Profit:"), m_takeProfit, u"orderTakeProfit"_s);
    m_priceLabel = addField(form, tr("Price:"), m_price, u"orderPrice"_s);
    addField(form, tr("Comment:"), m_comment, u"orderComment"_s);
    return form;
}

QWidget* OrderForm::buildVolumeRow()
{
    m_volume->setObjectName("orderVolume"_L1);
    m_volume->setAccessibleName(tr("Volume"));
    m_volume->setRange(0.01, 1000.0);
    m_volume->setSingleStep(0.01);
    m_volume->setDecimals(2);
    m_volume->setValue(0.01);
    m_units->setObjectName("orderUnits"_L1);
    m_units->setStyleSheet("color:#888;"_L1);
    auto* row = new QWidget;
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_volume);
    layout->addWidget(m_units);
    layout->addStretch();
    return row;
}

QLabel* OrderForm::addField(QFormLayout* form, const QString& caption, QWidget* field, const QString& name)
{
    field->setObjectName(name);
    field->setAccessibleName(QString(caption).remove(u':'));
    auto* label = plainLabel(caption);
    label->setBuddy(field);
    form->addRow(label, field);
    return label;
}

QLayout* OrderForm::buildButtons()
{
    auto* row = new QHBoxLayout;
    m_sell->setObjectName("orderSell"_L1);
    m_sell->setStyleSheet(buttonStyle("#c0392b"_L1));
    m_buy->setObjectName("orderBuy"_L1);
    m_buy->setStyleSheet(buttonStyle("#1f6fb2"_L1));
    for (QPushButton* button : {m_sell, m_buy}) {
        // Enter pressed in a field must not place an order.
        button->setAutoDefault(false);
        row->addWidget(button);
        button->setMinimumHeight(std::max(34, button->minimumSizeHint().height()));
    }
    return row;
}

void OrderForm::fillSymbols(const QJsonArray& symbols, const QString& initialSymbol)
{
    for (const auto& value : symbols) {
        const QJsonObject record = value.toObject();
        const QString name = symbol::name(record);
        if (!name.isEmpty())
            m_symbolCombo->addItem(
                //: %1 the symbol, %2 its description
                tr("%1, %2").arg(shownName(name), shownSentence(symbol::description(record))), name);
    }
    const int initial = initialSymbol.isEmpty() ? -1 : m_symbolCombo->findData(initialSymbol);
    if (initial >= 0)
        m_symbolCombo->setCurrentIndex(initial);
}

QString OrderForm::symbol() const
{
    return m_symbolCombo->currentData().toString();
}

double OrderForm::lots() const
{
    return m_volume->value();
}

OrderTicket OrderForm::ticket() const
{
    return {
        .symbol = symbol(),
        .lots = lots(),
        .triggerPrice = m_price->value(),
        .stopLoss = m_stopLoss->value(),
        .takeProfit = m_takeProfit->value(),
        .comment = m_comment->currentText(),
    };
}

void OrderForm::setOrderType(OrderType type)
{
    const bool pending = type != OrderType::Market;
    m_priceLabel->setVisible(pending);
    m_price->setVisible(pending);
    //: %1 the type of order, such as "Limit"
    m_sell->setText(tr("Sell %1").arg(typeSuffix(type)));
    //: %1 the type of order, such as "Limit"
    m_buy->setText(tr("Buy %1").arg(typeSuffix(type)));
}

void OrderForm::namePrices(const QString& symbol)
{
    m_priceDisplay->setSymbol(symbol);
}

void OrderForm::showPrices(const QString& bid, const QString& ask)
{
    m_priceDisplay->showPrices(bid, ask);
}

void OrderForm::showStale(bool stale)
{
    m_priceDisplay->setStale(stale);
}

void OrderForm::showUnits(const QString& text)
{
    m_units->setText(text);
}

void OrderForm::showError(const QString& text)
{
    m_error->showError(text);
}

void OrderForm::setSending(bool sending)
{
    if (sending) {
        // The form takes the focus, which would otherwise go to the next enabled button, and a second press
        // of the space bar would press that one.
        m_focusBefore = focusWidget();
        setFocus();
        setCursor(Qt::BusyCursor);
    }
    for (QWidget* widget : focusOrder())
        widget->setEnabled(!sending);
    if (!sending) {
        unsetCursor();
        if (m_focusBefore && window()->focusWidget() == this)
            m_focusBefore->setFocus();
    }
}

void OrderForm::focusVolume()
{
    m_volume->setFocus();
    m_volume->selectAll();
}

QList<QWidget*> OrderForm::focusOrder() const
{
    return {m_symbolCombo, m_volume, m_stopLoss, m_takeProfit, m_price, m_comment, m_sell, m_buy};
}
