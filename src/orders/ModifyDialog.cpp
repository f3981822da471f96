#include "orders/ModifyDialog.h"

#include "app/base/NumberFormat.h"
#include "app/base/ServerText.h"
#include "app/ui/DecimalEdit.h"
#include "app/ui/DecimalText.h"
#include "app/ui/EnterKey.h"
#include "app/ui/ErrorLabel.h"
#include "app/ui/FocusOrder.h"
#include "app/ui/HeldEnter.h"
#include "app/ui/PlainText.h"
#include "app/ui/Theme.h"
#include "net/TradeRequest.h"
#include "net/records/TradeRecord.h"

#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QVBoxLayout>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr int lotDecimals = 2;

/// The number that the field shows, even one with more decimals than can be typed.
std::optional<double> numberIn(const DecimalEdit* field)
{
    return field ? parseDecimal(field->text()) : std::nullopt;
}

/// A level or volume that is not above 0 is none, and has no text.
QString textOfPositive(double value, int decimals)
{
    return value > 0.0 ? formatPrice(value, decimals) : QString();
}

/// A lone "." is the beginning of a number: sent as 0 it would take the level off.
bool isUnfinished(const DecimalEdit* field)
{
    return field && !field->text().trimmed().isEmpty() && !numberIn(field);
}

} // namespace

ModifyDialog::ModifyDialog(ApiClient& api, const QJsonObject& trade, int digits, QWidget* parent)
    : SendingDialog(parent)
    , m_api(api)
    , m_trade(trade)
    , m_error(new ErrorLabel(this))
{
    setWindowTitle(tr("Modify Order"));
    setWindowIcon(appIcon());
    setMinimumWidth(340);

    auto* column = new QVBoxLayout(this);
    //: %1 the symbol, %2 the side, %3 lots
    QLabel* header
        = plainLabel(tr("%1 %2 %3")
                         .arg(shownName(trade::symbol(trade)), shownName(trade::typeText(trade).toLower()),
                             textOfPositive(trade::lots(trade), lotDecimals)),
            this);
    header->setObjectName("modifyHeader"_L1);
    header->setStyleSheet("font-weight:bold;"_L1);
    column->addWidget(header);

    auto* form = new QFormLayout;
    if (trade::isPending(trade))
        m_price = addLevel(*form, tr("Price:"), u"modifyPrice"_s, trade::pendingPrice(trade), digits);
    m_stopLoss = addLevel(
        *form, tr("Stop Loss:"), u"modifyStopLoss"_s, trade::stopLoss(trade).value_or(0.0), digits);
    m_takeProfit = addLevel(
        *form, tr("Take Profit:"), u"modifyTakeProfit"_s, trade::takeProfit(trade).value_or(0.0), digits);
    column->addLayout(form);

    m_error->setObjectName("modifyError"_L1);
    m_error->setStyleSheet("color:#ff6b6b;"_L1);
    column->addWidget(m_error);

    auto* cancel = new QPushButton(tr("Cancel"), this);
    cancel->setAutoDefault(false);
    m_modify = new QPushButton(tr("Modify"), this);
    m_modify->setObjectName("modifyButton"_L1);
    m_modify->setDefault(true);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cancel);
    buttons->addWidget(m_modify);
    column->addLayout(buttons);

    // A number typed at once must replace the first level.
    DecimalEdit* first = m_price ? m_price : m_stopLoss;
    setFocusOrder({first, m_stopLoss, m_takeProfit, cancel, m_modify});
    first->setFocus();
    first->selectAll();

    refuseHeldEnter(*this);
    connect(cancel, &QPushButton::clicked, this, &ModifyDialog::reject);
    connect(m_modify, &QPushButton::clicked, this, &ModifyDialog::send);
    connect(this, &ModifyDialog::soundDue, this, &play);
}

DecimalEdit* ModifyDialog::addLevel(
    QFormLayout& form, const QString& caption, const QString& name, double level, int digits)
{
    auto* field = new DecimalEdit(this);
    field->setObjectName(name);
    //: an empty field: no stop loss, no take profit
    field->setPlaceholderText(tr("none"));
    field->setText(textOfPositive(level, digits));
    form.addRow(caption, field);
    return field;
}

TypedLevels ModifyDialog::typed() const
{
    return {numberIn(m_stopLoss), numberIn(m_takeProfit), numberIn(m_price)};
}

void ModifyDialog::send()
{
    if (isSending())
        return;
    if (isUnfinished(m_stopLoss) || isUnfinished(m_takeProfit) || isUnfinished(m_price)) {
        tellFailure(tr("Please enter a valid price."));
        return;
    }
    std::optional<TradeRequest> request = TradeRequest::modify(m_trade, typed());
    if (!request) {
        Q_EMIT soundDue(SoundKind::Error);
        tellFailure(tr("This trade has no usable id."));
        return;
    }
    setSending(true);
    m_modify->setEnabled(false);
    m_error->hide();
    std::move(*request).send(m_api, this, [this](const ReplyOutcome& outcome) { onReply(outcome); });
}

void ModifyDialog::onReply(const ReplyOutcome& outcome)
{
    setSending(false);
    m_modify->setEnabled(true);
    if (!outcome.ok) {
        Q_EMIT soundDue(SoundKind::Error);
        return endInFailure(outcome);
    }
    const QPointer<ModifyDialog> self(this);
    Q_EMIT soundDue(SoundKind::Open);
    Q_EMIT modified();
    if (self)
        accept();
}

void ModifyDialog::showError(const QString& text)
{
    m_error->showError(text);
}

void ModifyDialog::keyPressEvent(QKeyEvent* event)
{
    // Enter presses the button that has the focus, such as Cancel, rather than the default one.
    auto* button = qobject_cast<QPushButton*>(focusWidget());
    if (button && isEnter(*event))
        return button->click();
    SendingDialog::keyPressEvent(event);
}
