#pragma once

#include <QLabel>

/// A label that may be narrower than its text: it then shows the beginning, and all of it as a tool tip.
class FittingLabel final : public QLabel {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(FittingLabel)

public:
    explicit FittingLabel(QWidget* parent);
    ~FittingLabel() override;

    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    [[nodiscard]] bool fits() const { return width() >= sizeHint().width(); }
};
