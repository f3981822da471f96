#include "orders/OrderDialog.h"

#include "app/base/NumberFormat.h"
#include "app/base/ServerText.h"
#include "app/ui/FocusOrder.h"
#include "app/ui/Theme.h"
#include "net/TradeRequest.h"
#include "net/WsClient.h"
#include "net/records/Quote.h"
#include "net/records/SymbolRecord.h"
#include "orders/OrderForm.h"
#include "orders/OrderTypePanel.h"
#include "orders/TickChartWidget.h"

#include <QHBoxLayout>
#include <QPointer>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

// The window is light in both themes; tips and lists that pop up from it must not take some of their colours
// from the dark theme.
constexpr auto popupStyle
    = "QToolTip{background:#ffffe1;color:#222;border:1px solid #b0b0b0;}"
      "QComboBox QAbstractItemView{background:#ffffff;color:#222;"
      "selection-background-color:#cce8ff;selection-color:#000000;}"
      "QComboBox QAbstractItemView::item:selected{background:#cce8ff;color:#000000;}"_L1;

constexpr auto windowStyle
    = "OrderDialog{background:#ffffff;}QLabel{color:#222;} QLineEdit,QComboBox,QDoubleSpinBox"
      "{background:#ffffff;color:#222;border:1px solid #b7b7b7;padding:3px;}"_L1;

} // namespace

OrderDialog::OrderDialog(ApiClient& api, WsClient& feed, const QJsonArray& symbols, const QString& accountId,
    const QString& initialSymbol, QWidget* parent)
    : SendingDialog(parent)
    , m_api(api)
    , m_accountId(accountId)
    , m_symbols(symbols)
    , m_form(new OrderForm(symbols, initialSymbol))
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
    columns->addWidget(m_form, 1);
    m_tickChart->setFixedWidth(300);
    columns->addWidget(m_tickChart);
    setStyleSheet(styleSheet() + popupStyle + windowStyle);

    connect(types, &OrderTypePanel::typeChosen, this, &OrderDialog::setOrderType);
    connect(types, &OrderTypePanel::leaveRequested, this, &OrderDialog::reject);
    connect(m_form, &OrderForm::symbolChanged, this, &OrderDialog::onSymbolChanged);
    connect(m_form, &OrderForm::placeRequested, this, &OrderDialog::place);
    connect(&feed, &WsClient::pricesUpdated, this, &OrderDialog::onPrices);
    connect(&feed, &WsClient::disconnected, this, [this] { showStale(m_quote.has_value()); });
    connect(this, &OrderDialog::soundDue, this, &play);
    onSymbolChanged();
    setFocusOrder(types->focusOrder() + m_form->focusOrder());
    m_form->focusVolume();
}

int OrderDialog::digits() const
{
    return symbol::digits(m_record);
}

void OrderDialog::setOrderType(OrderType type)
{
    m_orderType = type;
    m_form->setOrderType(type);
    //: %1 the symbol, %2 its description
    setWindowTitle(tr("Order: %1 - %2").arg(m_shownSymbol, shownSentence(symbol::description(m_record))));
}

void OrderDialog::onSymbolChanged()
{
    m_record = {};
    m_shownSymbol = shownName(m_form->symbol());
    for (const auto& value : std::as_const(m_symbols)) {
        if (symbol::name(value.toObject()) == m_form->symbol())
            m_record = value.toObject();
    }
    m_quote.reset();
    showStale(false);
    m_form->namePrices(m_shownSymbol);
    m_form->showPrices({}, {});
    m_tickChart->setSymbol(m_shownSymbol);
    m_tickChart->setDigits(digits());
    m_tickChart->clear();
    m_tickChart->update();
    setOrderType(m_orderType);
}

void OrderDialog::onPrices(const QJsonObject& prices)
{
    const QString symbol = m_form->symbol();
    const std::optional<Quote> quote = findQuote(prices, symbol, digits());
    if (!quote)
        return;
    showStale(false);
    const auto [bid, ask] = *quote;
    if (quote != m_quote) {
        m_quote = quote;
        m_form->showPrices(formatPrice(bid, digits()), formatPrice(ask, digits()));
    }
    m_tickChart->append(bid, ask);
    m_tickChart->update();
    const double contractSize = symbol::contractSize(m_record);
    const double units = m_form->lots() * (contractSize > 0.0 ? contractSize : 1.0);
    //: %1 units, %2 the symbol: what the chosen lots are
    m_form->showUnits(tr("%1 %2").arg(QString::number(units, 'f', 0), m_shownSymbol));
}

void OrderDialog::showStale(bool stale)
{
    if (std::exchange(m_stale, stale) == stale)
        return;
    m_form->showStale(stale);
    m_tickChart->setStale(stale);
}

void OrderDialog::place(Side side)
{
    if (isSending())
        return;
    OrderTicket ticket = m_form->ticket();
    ticket.side = side;
    ticket.type = m_orderType;
    if (lacksTriggerPrice(ticket)) {
        tellFailure(tr("Please enter a valid trigger price."));
        return;
    }
    m_form->showError({});
    showSending(true);
    TradeRequest::place(orderBody(ticket), m_accountId)
        .send(m_api, this, [this](const ReplyOutcome& outcome) { onReply(outcome); });
}

void OrderDialog::onReply(const ReplyOutcome& outcome)
{
    showSending(false);
    if (!outcome.ok) {
        Q_EMIT soundDue(SoundKind::Error);
        return endInFailure(outcome);
    }
    const QPointer<OrderDialog> self(this);
    Q_EMIT soundDue(SoundKind::Open);
    Q_EMIT orderPlaced();
    if (self)
        accept();
}

void OrderDialog::showSending(bool sending)
{
    setSending(sending);
    m_form->setSending(sending);
}

void OrderDialog::showError(const QString& text)
{
    m_form->showError(text);
}
