#include "orders/OrderDialog.h"

#include "app/DecimalEdit.h"
#include "app/DecimalSpinBox.h"
#include "app/NumberFormat.h"
#include "app/ServerText.h"
#include "app/Theme.h"
#include "net/ApiClient.h"
#include "net/JsonNumber.h"
#include "net/ReplyOutcome.h"
#include "net/WsClient.h"
#include "orders/OrderTypePanel.h"
#include "orders/TickChartWidget.h"

#include <QComboBox>
#include <QFormLayout>
#include <QLabel>
#include <QNetworkReply>
#include <QPushButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

const QString noPrice = u"— / —"_s;

QString buttonStyle(QLatin1StringView color)
{
    return "QPushButton{background:#e8edf3;border:1px solid #b7c6d6;color:%1;font-weight:bold;}"
           "QPushButton:hover{background:#dde6f0;}"_L1.arg(color);
}

// A server that failed on its way, or never answered, may have carried the order out all the same.
bool isUncertain(const ReplyOutcome& outcome)
{
    return !outcome.ok && (outcome.status == 0 || outcome.status >= 500);
}

} // namespace

OrderDialog::OrderDialog(ApiClient& api, WsClient& feed, const QJsonArray& symbols, const QString& accountId,
    const QString& initialSymbol, QWidget* parent)
    : QDialog(parent)
    , m_api(api)
    , m_accountId(accountId)
    , m_symbols(symbols)
    , m_symbolCombo(new QComboBox)
    , m_volume(new DecimalSpinBox)
    , m_units(plainLabel({}))
    , m_stopLoss(new DecimalEdit)
    , m_takeProfit(new DecimalEdit)
    , m_price(new DecimalEdit)
    , m_comment(new QComboBox)
    , m_priceDisplay(plainLabel(noPrice))
    , m_error(plainLabel({}))
    , m_sell(new QPushButton)
    , m_buy(new QPushButton)
    , m_tickChart(new TickChartWidget)
{
    setModal(true);
    setMinimumSize(920, 440);
    setWindowIcon(appIcon());
    auto* types = new OrderTypePanel;
    auto* columns = new QHBoxLayout(this);
    columns->setContentsMargins(0, 0, 0, 0);
    columns->setSpacing(0);
    columns->addWidget(types);
    columns->addWidget(buildForm(), 1);
    m_tickChart->setFixedWidth(300);
    columns->addWidget(m_tickChart);
    setStyleSheet(styleSheet()
        + "OrderDialog{background:#ffffff;}QLabel{color:#222;} QLineEdit,QComboBox,QDoubleSpinBox"
          "{background:#ffffff;color:#222;border:1px solid #b7b7b7;padding:3px;}"_L1);

    fillSymbols(initialSymbol);
    connect(types, &OrderTypePanel::typeChosen, this, &OrderDialog::setOrderType);
    connect(types, &OrderTypePanel::leaveRequested, this, &OrderDialog::reject);
    connect(m_symbolCombo, &QComboBox::currentIndexChanged, this, &OrderDialog::onSymbolChanged);
    connect(m_sell, &QPushButton::clicked, this, [this] { place(OrderSide::Sell); });
    connect(m_buy, &QPushButton::clicked, this, [this] { place(OrderSide::Buy); });
    connect(&feed, &WsClient::pricesUpdated, this, &OrderDialog::onPrices);
    connect(this, &OrderDialog::soundDue, this, &play);
    onSymbolChanged();
    m_volume->setFocus();
}

QWidget* OrderDialog::buildForm()
{
    auto* form = new QWidget;
    auto* column = new QVBoxLayout(form);
    column->setContentsMargins(24, 20, 24, 16);
    column->addLayout(buildFields());
    column->addStretch();
    m_priceDisplay->setObjectName("priceDisplay"_L1);
    m_priceDisplay->setAlignment(Qt::AlignCenter);
    m_priceDisplay->setStyleSheet("font-size:26pt; font-weight:bold; color:#222;"_L1);
    column->addWidget(m_priceDisplay);
    column->addStretch();
    m_error->setObjectName("orderError"_L1);
    m_error->setWordWrap(true);
    m_error->setStyleSheet("color:#c0392b;"_L1);
    m_error->hide();
    column->addWidget(m_error);
    addButtons(column);
    return form;
}

QFormLayout* OrderDialog::buildFields()
{
    m_symbolCombo->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    m_symbolCombo->setMinimumContentsLength(20);
    m_volume->setRange(0.01, 1000.0);
    m_volume->setSingleStep(0.01);
    m_volume->setDecimals(2);
    m_volume->setValue(0.01);
    m_stopLoss->setText(u"0.00"_s);
    m_takeProfit->setText(u"0.00"_s);
    m_comment->setEditable(true);
    m_comment->setInsertPolicy(QComboBox::NoInsert);
    m_units->setObjectName("orderUnits"_L1);
    m_units->setStyleSheet("color:#888;"_L1);
    auto* volumeRow = new QWidget;
    auto* volumeLayout = new QHBoxLayout(volumeRow);
    volumeLayout->setContentsMargins(0, 0, 0, 0);
    volumeLayout->addWidget(m_volume);
    volumeLayout->addWidget(m_units);
    volumeLayout->addStretch();

    auto* form = new QFormLayout;
    form->setSpacing(9);
    form->setLabelAlignment(Qt::AlignRight | Qt::AlignVCenter);
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    addField(form, tr("Symbol:"), m_symbolCombo, u"orderSymbol"_s);
    addField(form, tr("Volume:"), volumeRow, u"orderVolumeRow"_s);
    static_cast<QLabel*>(form->labelForField(volumeRow))->setBuddy(m_volume);
    m_volume->setObjectName("orderVolume"_L1);
    m_volume->setAccessibleName(tr("Volume"));
    addField(form, tr("Stop Loss:"), m_stopLoss, u"orderStopLoss"_s);
    addField(form, tr("Take Profit:"), m_takeProfit, u"orderTakeProfit"_s);
    addField(form, tr("Price:"), m_price, u"orderPrice"_s);
    m_priceLabel = static_cast<QLabel*>(form->labelForField(m_price));
    addField(form, tr("Comment:"), m_comment, u"orderComment"_s);
    return form;
}

void OrderDialog::addField(QFormLayout* form, const QString& label, QWidget* field, const QString& name)
{
    field->setObjectName(name);
    field->setAccessibleName(QString(label).remove(u':'));
    auto* caption = plainLabel(label);
    caption->setBuddy(field);
    form->addRow(caption, field);
}

void OrderDialog::addButtons(QVBoxLayout* column)
{
    auto* row = new QHBoxLayout;
    m_sell->setObjectName("orderSell"_L1);
    m_sell->setStyleSheet(buttonStyle("#c0392b"_L1));
    m_buy->setObjectName("orderBuy"_L1);
    m_buy->setStyleSheet(buttonStyle("#1f6fb2"_L1));
    for (QPushButton* button : {m_sell, m_buy}) {
        // Enter pressed in a field must not place an order.
        button->setAutoDefault(false);
        button->setMinimumHeight(34);
        row->addWidget(button);
    }
    column->addLayout(row);
}

void OrderDialog::fillSymbols(const QString& initialSymbol)
{
    for (const auto& value : std::as_const(m_symbols)) {
        const QJsonObject record = value.toObject();
        const QString name = record.value("name"_L1).toString();
        if (!name.isEmpty())
            m_symbolCombo->addItem(
                tr("%1, %2").arg(oneLine(name), oneLine(record.value("description"_L1).toString())), name);
    }
    const int initial = initialSymbol.isEmpty() ? -1 : m_symbolCombo->findData(initialSymbol);
    if (initial >= 0)
        m_symbolCombo->setCurrentIndex(initial);
}

QString OrderDialog::symbol() const
{
    return m_symbolCombo->currentData().toString();
}

int OrderDialog::digits() const
{
    return jsonInt(m_record.value("digits"_L1), 5);
}

void OrderDialog::setOrderType(OrderType type)
{
    m_orderType = type;
    const bool pending = type != OrderType::Market;
    m_priceLabel->setVisible(pending);
    m_price->setVisible(pending);
    const QString suffix = [type] {
        switch (type) {
        case OrderType::Market:
            return tr("by Market");
        case OrderType::Limit:
            return tr("Limit");
        case OrderType::Stop:
            return tr("Stop");
        case OrderType::StopLimit:
            break;
        }
        return tr("Stop Limit");
    }();
    m_sell->setText(tr("Sell %1").arg(suffix));
    m_buy->setText(tr("Buy %1").arg(suffix));
    setWindowTitle(
        tr("Order: %1 - %2").arg(oneLine(symbol()), oneLine(m_record.value("description"_L1).toString())));
}

void OrderDialog::onSymbolChanged()
{
    m_record = {};
    for (const auto& value : std::as_const(m_symbols)) {
        if (value.toObject().value("name"_L1).toString() == symbol())
            m_record = value.toObject();
    }
    m_bid = 0.0;
    m_ask = 0.0;
    m_priceDisplay->setText(noPrice);
    m_tickChart->setDigits(digits());
    m_tickChart->clear();
    m_tickChart->update();
    setOrderType(m_orderType);
}

void OrderDialog::onPrices(const QJsonObject& prices)
{
    const auto found = prices.constFind(symbol());
    if (found == prices.constEnd())
        return;
    const QJsonObject quote = found->toObject();
    const double bid = jsonNumber(quote.value("bid"_L1));
    const double ask = jsonNumber(quote.value("ask"_L1));
    if (bid <= 0.0 || ask <= 0.0)
        return;
    if (bid != m_bid || ask != m_ask) {
        m_bid = bid;
        m_ask = ask;
        m_priceDisplay->setText(tr("%1 / %2").arg(formatPrice(bid, digits()), formatPrice(ask, digits())));
    }
    m_tickChart->append(bid, ask);
    m_tickChart->update();
    const double contractSize = jsonNumber(m_record.value("contractSize"_L1));
    const double units = m_volume->value() * (contractSize > 0.0 ? contractSize : 1.0);
    m_units->setText(tr("%1 %2").arg(QString::number(units, 'f', 0), oneLine(symbol())));
}

void OrderDialog::place(OrderSide side)
{
    if (m_sending)
        return;
    const OrderTicket ticket{
        .symbol = symbol(),
        .lots = m_volume->value(),
        .accountId = m_accountId,
        .side = side,
        .type = m_orderType,
        .triggerPrice = m_price->value(),
        .stopLoss = m_stopLoss->value(),
        .takeProfit = m_takeProfit->value(),
        .comment = m_comment->currentText(),
    };
    if (lacksTriggerPrice(ticket)) {
        showError(tr("Please enter a valid trigger price."));
        return;
    }
    m_error->hide();
    setSending(true);
    QNetworkReply* reply = m_api.post(u"/api/trades/place"_s, placeBody(ticket));
    // The reply goes even if this window is gone by then.
    connect(reply, &QNetworkReply::finished, reply, &QObject::deleteLater);
    connect(reply, &QNetworkReply::finished, this, [this, reply] { onReply(reply); });
}

void OrderDialog::onReply(QNetworkReply* reply)
{
    setSending(false);
    const ReplyOutcome outcome = ReplyOutcome::read(reply);
    if (!outcome.ok) {
        Q_EMIT soundDue(SoundKind::Error);
        showError(outcome.error);
        if (isUncertain(outcome))
            Q_EMIT outcomeUnknown();
        return;
    }
    const QPointer<OrderDialog> self(this);
    Q_EMIT soundDue(SoundKind::Open);
    Q_EMIT orderPlaced();
    if (self)
        accept();
}

void OrderDialog::setSending(bool sending)
{
    m_sending = sending;
    if (sending) {
        m_sentSince.start();
        m_focusBefore = focusWidget();
    }
    for (QWidget* widget : std::initializer_list<QWidget*>{
             m_symbolCombo, m_volume, m_stopLoss, m_takeProfit, m_price, m_comment, m_sell, m_buy})
        widget->setEnabled(!sending);
    if (!sending && m_focusBefore)
        m_focusBefore->setFocus();
}

void OrderDialog::showError(const QString& text)
{
    m_error->setText(text);
    m_error->show();
}

void OrderDialog::done(int result)
{
    if (m_sending) {
        if (m_sentSince.elapsed() < m_patienceMs)
            return;
        Q_EMIT outcomeUnknown();
    }
    QDialog::done(result);
}
