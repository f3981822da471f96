#include "orders/SendingDialog.h"

#include "app/base/Log.h"
#include "app/ui/EnterKey.h"
#include "net/ReplyOutcome.h"

#include <QCloseEvent>
#include <QPointer>

#include <utility>

SendingDialog::SendingDialog(QWidget* parent)
    : QDialog(parent)
{
}

void SendingDialog::setReturnRule(std::function<bool()> rule)
{
    m_returnRule = std::move(rule);
}

bool SendingDialog::mayReturn() const
{
    return !m_leftForGood && (!m_returnRule || m_returnRule());
}

void SendingDialog::leaveForGood()
{
    m_left = true;
    m_leftForGood = true;
    reject();
}

void SendingDialog::setSending(bool sending)
{
    m_sending = sending;
}

void SendingDialog::tellFailure(const QString& text)
{
    logReport(tr("Trade"), text);
    showError(text);
}

void SendingDialog::endInFailure(const ReplyOutcome& outcome)
{
    const QPointer<SendingDialog> self(this);
    const bool unseen = isHidden() && !mayReturn();
    if (unseen) {
        Q_EMIT failedUnseen(outcome.error);
    } else {
        tellFailure(outcome.error);
        comeBack();
    }
    if (self && outcome.isUncertain())
        Q_EMIT outcomeUnknown();
    if (self && unseen)
        reject();
}

void SendingDialog::comeBack()
{
    m_left = false;
    if (!isHidden())
        return;
    // It may come back while the trader types somewhere else, and those keys must change nothing here: the
    // dialog itself takes the focus. Without a focus policy it would hand the focus on to its first field.
    setFocusPolicy(Qt::ClickFocus);
    setFocus();
    show();
    raise();
    activateWindow();
}

void SendingDialog::done(int result)
{
    if (!m_sending)
        return QDialog::done(result);
    m_leftForGood = m_left;
    m_left = true;
    hide();
}

void SendingDialog::closeEvent(QCloseEvent* event)
{
    const bool waits = m_sending;
    QDialog::closeEvent(event);
    if (waits)
        event->ignore(); // accepted, it would delete the dialog before its answer
}

void SendingDialog::keyPressEvent(QKeyEvent* event)
{
    // Enter presses the default button even while none of the fields has the focus, as after coming back.
    if (hasFocus() && isEnter(*event))
        return;
    QDialog::keyPressEvent(event);
}
