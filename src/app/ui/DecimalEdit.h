#pragma once

#include <QLineEdit>

/// The one line edit for optional prices: 0 to 1e12 with at most 8 decimals. A typed or pasted comma
/// becomes a point at once, and white space around the number goes; a keystroke or paste that would not leave
/// one number is refused. A number that is dropped replaces the one that is there.
class DecimalEdit : public QLineEdit {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(DecimalEdit)

public:
    explicit DecimalEdit(QWidget* parent = nullptr);
    ~DecimalEdit() override = default;

    /// The number shown, 0 when the field is empty or holds none.
    [[nodiscard]] double value() const;
};
