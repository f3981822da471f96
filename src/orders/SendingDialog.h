#pragma once

#include <QDialog>

#include <functional>

struct ReplyOutcome;

/// A dialog that sends one request at a time. Closed while a request is on its way it only leaves the screen,
/// so that the trader can act elsewhere, and waits for the answer: an accepted request is reported as ever, a
/// refused one brings the dialog back with the reason. Whoever shows it again meanwhile sees it waiting;
/// closed once more it has left for good, and the reason of a refusal is only reported.
class SendingDialog : public QDialog {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(SendingDialog)

public:
    explicit SendingDialog(QWidget* parent = nullptr);
    ~SendingDialog() override = default;

    /// Asked whenever a dialog that has left the screen might return to it; without a rule it always may.
    void setReturnRule(std::function<bool()> rule);
    /// False once the dialog has left for good, and while its rule is against it.
    [[nodiscard]] bool mayReturn() const;
    /// Leaves the screen for good. What is on its way is still reported.
    void leaveForGood();

    void done(int result) override;

Q_SIGNALS:
    /// The request may or may not have been carried out: no proper answer came. What the server holds is to
    /// be asked for.
    void outcomeUnknown();
    /// No success, and the dialog that would show why is not coming back.
    void failedUnseen(const QString& reason);

protected:
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

    [[nodiscard]] bool isSending() const { return m_sending; }
    void setSending(bool sending);
    /// Shows why nothing was sent, or why it was refused, and writes it to the log.
    void tellFailure(const QString& text);
    virtual void showError(const QString& text) = 0;
    /// Tells of an answer that is no success: on the dialog, which comes back for it, or else by a signal.
    /// The dialog may be gone afterwards.
    void endInFailure(const ReplyOutcome& outcome);

private:
    void comeBack();

    std::function<bool()> m_returnRule;
    bool m_sending = false;
    bool m_left = false; ///< closed by the trader while sending
    bool m_leftForGood = false;
};
