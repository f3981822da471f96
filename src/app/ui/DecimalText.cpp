#include "app/ui/DecimalText.h"

#include <algorithm>
#include <cmath>

namespace {

struct Shape {
    bool isNumberLike = false;
    bool negative = false;
    int digits = 0;
    int decimals = 0;
};

/// Sign, digits and at most one decimal sign; anything else is not number-like.
Shape shapeOf(QStringView text)
{
    Shape shape;
    bool afterSign = false;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t c = text[i].unicode();
        if (c >= u'0' && c <= u'9') {
            ++shape.digits;
            shape.decimals += afterSign ? 1 : 0;
        } else if ((c == u'.' || c == u',') && !afterSign) {
            afterSign = true;
        } else if (i == 0 && (c == u'-' || c == u'+')) {
            shape.negative = c == u'-';
        } else {
            return {};
        }
    }
    shape.isNumberLike = true;
    return shape;
}

} // namespace

void commasToPoints(QString& text)
{
    text.replace(u',', u'.');
}

void trimAround(QString& text, int& cursor)
{
    const QString trimmed = text.trimmed();
    if (trimmed.isEmpty() || trimmed.size() == text.size())
        return;
    const int before = int(text.indexOf(trimmed));
    cursor = std::clamp(cursor - before, 0, int(trimmed.size()));
    text = trimmed;
}

std::optional<double> parseDecimal(const QString& text)
{
    QString number = text.trimmed();
    const Shape shape = shapeOf(number);
    if (!shape.isNumberLike || shape.digits == 0)
        return std::nullopt;
    commasToPoints(number);
    bool ok = false;
    const double value = number.toDouble(&ok);
    if (!ok || !std::isfinite(value))
        return std::nullopt;
    return value;
}

QValidator::State decimalState(const QString& text, double lowest, double highest, int decimals)
{
    const Shape shape = shapeOf(text);
    if (!shape.isNumberLike || shape.decimals > decimals || (shape.negative && lowest >= 0.0))
        return QValidator::Invalid;
    if (shape.digits == 0)
        return QValidator::Intermediate;
    const std::optional<double> value = parseDecimal(text);
    if (!value)
        return QValidator::Invalid;
    if (*value > highest)
        return *value > 0.0 ? QValidator::Invalid : QValidator::Intermediate;
    if (*value < lowest)
        return *value < 0.0 ? QValidator::Invalid : QValidator::Intermediate;
    return QValidator::Acceptable;
}
