// Numbers: as they are typed, as they travel in texts, and as they are shown.

#include "fuzz/FuzzQt.h"

#include "app/base/NumberFormat.h"
#include "app/ui/DecimalText.h"
#include "net/records/JsonNumber.h"

#include <array>
#include <cstring>

using fuzz::demand;

namespace fuzz_decimals {

namespace {

struct Field {
    double lowest;
    double highest;
    int decimals;
};

/// Fields as the terminal has them: volumes, prices, results, and odd ones.
constexpr std::array<Field, 5> fields{
    {{0.01, 100.0, 2}, {0.0, 999999.0, 5}, {-1e12, 1e12, 15}, {-0.5, -0.3, 1}, {5.0, 10.0, 0}}};

void readTyped(const QString& text)
{
    const std::optional<double> value = parseDecimal(text);
    QString pointed = text;
    commasToPoints(pointed);
    demand(parseDecimal(pointed) == value, "a comma is a point");
    demand(!value || std::isfinite(*value), "a typed number is one");
    QString trimmed = text;
    int cursor = static_cast<int>(text.size()) / 2;
    trimAround(trimmed, cursor);
    demand(cursor >= 0 && cursor <= trimmed.size(), "the cursor stays in the text");
    demand(parseDecimal(trimmed) == value, "blanks around a number do not matter");
    for (const Field& field : fields) {
        if (decimalState(text, field.lowest, field.highest, field.decimals) != QValidator::Acceptable)
            continue;
        demand(value && *value >= field.lowest && *value <= field.highest, "what is accepted is in range");
        for (qsizetype length = 0; length < text.size(); ++length)
            demand(decimalState(text.first(length), field.lowest, field.highest, field.decimals)
                    != QValidator::Invalid,
                "what is accepted can be typed");
    }
}

void readSent(const QString& text)
{
    const double number = jsonNumber(text);
    demand(fuzz::isAmount(number), "a number that was sent is an amount");
    const double slow = text.toDouble();
    demand(number == (fuzz::isAmount(slow) ? slow : 0.0), "the quick reader of numbers agrees with Qt's");
    const QJsonArray sent{number};
    demand(
        jsonNumber(QJsonDocument::fromJson(fuzz::jsonOf(sent)).array().at(0)) == number, "a number arrives");
}

void show(double number, int digits)
{
    const QString price = formatPrice(number, digits);
    const double shown = std::isfinite(number) ? number : 0.0;
    const std::optional<double> read = parseDecimal(price);
    demand(read.has_value(), "a price that is shown could be typed");
    const double half = 0.5 * std::pow(10.0, -clampDigits(digits));
    demand(
        std::abs(*read - shown) <= half * (1 + 1e-9) + std::abs(shown) * 1e-15, "a price is shown as it is");
    demand(parseDecimal(formatPrice(*read, digits)) == *read, "a price that was read is shown as before");
    demand(parseDecimal(formatVolume(number)).has_value(), "a volume is a number");
    const QString money = formatMoney(number).remove(QLatin1Char(','));
    demand(parseDecimal(money).has_value(), "money is a number");
    demand(formatGeneral(number).size() <= 16, "the general form is short");
}

int attempt(const std::uint8_t* data, std::size_t size)
{
    const QString text = fuzz::stringOf(fuzz::textOf(data, size));
    readTyped(text);
    readSent(text);
    double number = 0;
    std::memcpy(&number, data, std::min(size, sizeof number));
    const int digits = size > 0 ? static_cast<signed char>(data[size - 1]) : 0;
    show(number, digits);
    show(jsonNumber(text), digits);
    return 0;
}

const fuzz::Target target("decimals", &attempt);

} // namespace

} // namespace fuzz_decimals
