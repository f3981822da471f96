#include "app/base/NumberFormat.h"

#include <QLocale>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr int mostDigits = 15;
constexpr qsizetype shortIdLength = 8;

double shown(double value)
{
    return std::isfinite(value) ? value : 0.0;
}

} // namespace

int clampDigits(int digits)
{
    return std::clamp(digits, 0, mostDigits);
}

QString formatPrice(double price, int digits)
{
    return QString::number(shown(price), 'f', clampDigits(digits));
}

QString formatVolume(double lots)
{
    return QString::number(shown(lots), 'f', 2);
}

QString formatMoney(double amount)
{
    static const QLocale english(QLocale::English, QLocale::UnitedStates);
    return english.toString(shown(amount), 'f', 2);
}

QString formatGeneral(double value)
{
    return QString::number(shown(value), 'g', 6);
}

int pluralCount(qint64 count)
{
    return static_cast<int>(std::clamp<qint64>(count, 0, std::numeric_limits<int>::max()));
}

QString shortId(const QString& id)
{
    return id.left(shortIdLength);
}
