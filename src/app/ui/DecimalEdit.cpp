#include "app/ui/DecimalEdit.h"

#include "app/ui/DecimalText.h"
#include "app/ui/NumberDrop.h"

#include <QDoubleValidator>

namespace {

constexpr double highestValue = 1e12;
constexpr int mostDecimals = 8;

class DecimalValidator final : public QDoubleValidator {
public:
    explicit DecimalValidator(QObject* parent)
        : QDoubleValidator(0.0, highestValue, mostDecimals, parent)
    {
        setNotation(StandardNotation);
        setLocale(QLocale::c());
    }

    // The base class takes groups, and lets a number above the range stand as unfinished.
    State validate(QString& input, int& position) const override
    {
        trimAround(input, position);
        commasToPoints(input);
        return decimalState(input, bottom(), top(), decimals());
    }
};

} // namespace

DecimalEdit::DecimalEdit(QWidget* parent)
    : QLineEdit(parent)
{
    setValidator(new DecimalValidator(this));
    takeDroppedNumbersWhole(*this);
}

double DecimalEdit::value() const
{
    return hasAcceptableInput() ? parseDecimal(text()).value_or(0.0) : 0.0;
}
