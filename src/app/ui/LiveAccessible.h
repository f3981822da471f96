#pragma once

#include <QAccessibleWidget>

/// A widget as a screen reader meets it that shows live numbers in one piece: they are read as a sentence.
class LiveAccessible : public QAccessibleWidget {
public:
    using QAccessibleWidget::QAccessibleWidget;

    [[nodiscard]] QString text(QAccessible::Text kind) const override;

protected:
    /// The numbers in words, as they are now.
    [[nodiscard]] virtual QString reading() const = 0;
};
