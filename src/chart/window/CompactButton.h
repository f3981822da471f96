#pragma once

#include <QPushButton>

/// A button of exactly one size, smaller than the style sheet of the application lets buttons be. The rule
/// that lifts the sheet's least width leaves no least width at all, so that the size is also the hint.
class CompactButton final : public QPushButton {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(CompactButton)

public:
    explicit CompactButton(const QSize& size, QWidget* parent = nullptr);
    ~CompactButton() override;

    [[nodiscard]] QSize sizeHint() const override { return maximumSize(); }
    [[nodiscard]] QSize minimumSizeHint() const override { return maximumSize(); }
};
