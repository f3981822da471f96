#pragma once

#include <QDialog>

#include <functional>

struct ReplyOutcome;

/// A dialog that sends one request at a time. When it is closed while a request is on its way, it only hides,
/// so that the trader can act elsewhere, and waits for the answer: an accepted request is reported as usual,
/// a refused one brings the dialog back with the reason. It can be shown again while it waits. Once it is
/// closed a second time it does not come back, and the reason of a refusal is only reported.
class SendingDialog : public QDialog {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(SendingDialog)

public:
    explicit SendingDialog(QWidget* parent = nullptr);
    ~SendingDialog() override = default;

    /// The rule is asked whenever the hidden dialog might come back; without a rule it always may.
    void setReturnRule(std::function<bool()> rule);
    /// False once the dialog has left for good, and while its rule says no.
    [[nodiscard]] bool mayReturn() const;
    /// Hides for good. The outcome of a request on its way is still reported.
    void leaveForGood();

    void done(int result) override;

Q_SIGNALS:
    /// No proper answer came, so the request may or may not have been carried out: the lists must be read
    /// again.
    void outcomeUnknown();
    /// The request failed, and the dialog will not come back to show why.
    void failedUnseen(const QString& reason);

protected:
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

    [[nodiscard]] bool isSending() const { return m_sending; }
    void setSending(bool sending);
    /// Shows why nothing was sent, or why it was refused, and writes it to the log.
    void tellFailure(const QString& text);
    virtual void showError(const QString& text) = 0;
    /// Tells of a failure: on the dialog, which comes back for that, or else by a signal. The dialog may be
    /// gone afterwards.
    void endInFailure(const ReplyOutcome& outcome);

private:
    void comeBack();

    std::function<bool()> m_returnRule;
    bool m_sending = false;
    bool m_left = false; ///< closed by the trader while sending
    bool m_leftForGood = false;
};
