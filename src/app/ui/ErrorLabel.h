#pragma once

#include <QLabel>

/// Where a dialog says why something failed: plain text that wraps, hidden while there is nothing to say. A
/// screen reader speaks it when it appears and when it changes, wherever the focus is.
class ErrorLabel final : public QLabel {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ErrorLabel)

public:
    explicit ErrorLabel(QWidget* parent = nullptr);
    ~ErrorLabel() override = default;

    /// See showReason(); empty hides the label. Told even if it says the same as before: the trader has tried
    /// again.
    void showError(const QString& text);
};
