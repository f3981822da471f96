#pragma once

#include <QDialog>

/// A dialog that sends one request at a time. Closed while a request is on its way it only leaves the screen,
/// so that the trader can act elsewhere, and waits for the answer: an accepted request is reported as ever, a
/// refused one brings the dialog back with the reason. Whoever shows it again meanwhile sees it waiting;
/// closing it once more gives up the wait.
class SendingDialog : public QDialog {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(SendingDialog)

public:
    explicit SendingDialog(QWidget* parent = nullptr);
    ~SendingDialog() override = default;

    void done(int result) override;

Q_SIGNALS:
    /// The request may or may not have been carried out: no proper answer came. What the server holds is to
    /// be asked for.
    void outcomeUnknown();

protected:
    void closeEvent(QCloseEvent* event) override;

    [[nodiscard]] bool isSending() const { return m_sending; }
    void setSending(bool sending);
    /// Shows why nothing was sent, or why it was refused, and writes it to the log.
    void tellFailure(const QString& text);
    virtual void showError(const QString& text) = 0;
    /// Shows the dialog again when it was closed in the meantime.
    void comeBack();
    /// The dialog may come back under the hands of somebody who types elsewhere: puts the cursor where that
    /// does no harm.
    virtual void focusSafely() = 0;

private:
    bool m_sending = false;
    bool m_left = false; ///< closed by the trader while sending
};
