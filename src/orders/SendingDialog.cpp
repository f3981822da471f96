#include "orders/SendingDialog.h"

#include "app/Log.h"

#include <QCloseEvent>

SendingDialog::SendingDialog(QWidget* parent)
    : QDialog(parent)
{
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

void SendingDialog::comeBack()
{
    m_left = false;
    if (!isHidden())
        return;
    focusSafely();
    show();
    raise();
    activateWindow();
}

void SendingDialog::done(int result)
{
    if (m_sending && !m_left) {
        m_left = true;
        hide();
        return;
    }
    if (m_sending)
        Q_EMIT outcomeUnknown();
    QDialog::done(result);
}

void SendingDialog::closeEvent(QCloseEvent* event)
{
    const bool leaves = m_sending && !m_left;
    QDialog::closeEvent(event);
    if (leaves)
        event->ignore(); // accepted, it would delete the window
}
