#pragma once

#include <QPushButton>

/// A button of exactly one size, smaller than the style sheet of the application lets buttons be. The style
/// rule that lifts the sheet's least width leaves the button without any, so the hints give its size.
///
/// What a click asks for is done before anything is painted. Qt would paint a button that is let go first,
/// and with it whatever else of the window is due.
class CompactButton final : public QPushButton {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(CompactButton)

public:
    explicit CompactButton(const QSize& size, QWidget* parent = nullptr);
    ~CompactButton() override;

    [[nodiscard]] QSize sizeHint() const override { return maximumSize(); }
    [[nodiscard]] QSize minimumSizeHint() const override { return maximumSize(); }

protected:
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
};
