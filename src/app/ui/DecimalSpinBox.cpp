#include "app/ui/DecimalSpinBox.h"

#include "app/ui/DecimalText.h"
#include "app/ui/NumberDrop.h"
#include "app/ui/WheelFocus.h"

#include <QLineEdit>

#include <cmath>

DecimalSpinBox::DecimalSpinBox(QWidget* parent)
    : QDoubleSpinBox(parent)
{
    setLocale(QLocale::c());
    setGroupSeparatorShown(false);
    takeWheelOnlyFocused(*this);
    lineEdit()->setAcceptDrops(true); // the base class refuses all
    takeDroppedNumbersWhole(*lineEdit());
}

QValidator::State DecimalSpinBox::validate(QString& input, int& position) const
{
    if (!specialValueText().isEmpty() && input == specialValueText())
        return QValidator::Acceptable;
    const QStringView typed = numberIn(input);
    const auto start = int(typed.data() - input.constData());
    QString number = typed.toString();
    int cursor = position - start;
    trimAround(number, cursor);
    if (number.size() != typed.size())
        position = start + cursor;
    commasToPoints(number);
    input.replace(start, typed.size(), number);
    return decimalState(number, minimum(), maximum(), decimals());
}

double DecimalSpinBox::valueFromText(const QString& text) const
{
    return parseDecimal(numberIn(text).toString()).value_or(value());
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

QStringView DecimalSpinBox::numberIn(const QString& text) const
{
    QStringView number(text);
    if (!prefix().isEmpty() && number.startsWith(prefix()))
        number = number.mid(prefix().size());
    if (!suffix().isEmpty() && number.endsWith(suffix()))
        number.chop(suffix().size());
    return number;
}
