#include "app/DecimalSpinBox.h"

#include "app/DecimalText.h"

#include <cmath>

DecimalSpinBox::DecimalSpinBox(QWidget* parent)
    : QDoubleSpinBox(parent)
{
    setLocale(QLocale::c());
    setGroupSeparatorShown(false);
}

QValidator::State DecimalSpinBox::validate(QString& input, int& /*position*/) const
{
    if (!specialValueText().isEmpty() && input == specialValueText())
        return QValidator::Acceptable;
    QString number = withoutAffixes(input);
    if (number.contains(u',')) {
        const qsizetype start = prefix().isEmpty() || !input.startsWith(prefix()) ? 0 : prefix().size();
        const qsizetype end = input.endsWith(suffix()) ? input.size() - suffix().size() : input.size();
        for (qsizetype i = start; i < end; ++i) {
            if (input[i] == u',')
                input[i] = u'.';
        }
        commasToPoints(number);
    }
    return decimalState(number, minimum(), maximum(), decimals());
}

double DecimalSpinBox::valueFromText(const QString& text) const
{
    return parseDecimal(withoutAffixes(text)).value_or(value());
}

QString DecimalSpinBox::textFromValue(double value) const
{
    return QString::number(std::isfinite(value) ? value : 0.0, 'f', decimals());
}

void DecimalSpinBox::fixup(QString& input) const
{
    // The base class would drop commas as group separators: 1,5 would become 15.
    Q_UNUSED(input)
}

QString DecimalSpinBox::withoutAffixes(const QString& text) const
{
    QStringView number(text);
    if (!prefix().isEmpty() && number.startsWith(prefix()))
        number = number.mid(prefix().size());
    if (!suffix().isEmpty() && number.endsWith(suffix()))
        number.chop(suffix().size());
    return number.toString();
}
