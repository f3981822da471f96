#pragma once

#include <QDoubleSpinBox>

/// The one spin box for prices and volumes: takes "." or "," as the decimal sign in every locale (a
/// typed comma is shown as a point), refuses whatever would not be one number with at most
/// decimals() decimals, and shows its value with a point and without groups. White space around a number
/// goes, a number that is dropped replaces the one that is there, and the wheel turns the value only while
/// the box has the focus.
class DecimalSpinBox : public QDoubleSpinBox {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(DecimalSpinBox)

public:
    explicit DecimalSpinBox(QWidget* parent = nullptr);
    ~DecimalSpinBox() override = default;

    QValidator::State validate(QString& input, int& position) const override;
    double valueFromText(const QString& text) const override;
    QString textFromValue(double value) const override;
    void fixup(QString& input) const override;

private:
    /// The part of `text` between prefix and suffix.
    [[nodiscard]] QStringView numberIn(const QString& text) const;
};
