#include "lab/core/figures/StableMath.h"

#include <cmath>
#include <limits>

namespace lab::stable {

namespace {

// The first part has so few bits that its product with an exponent is exact.
constexpr double ln2High = 0x1.62e42fee00000p-1;
constexpr double ln2Low = 0x1.a39ef35793c76p-33;
constexpr double sqrtHalf = 0x1.6a09e667f3bcdp-1;
constexpr double sqrtTwoPi = 0x1.40d931ff62706p+1;

double normalDensity(double x)
{
    return exponential(-0.5 * x * x) / sqrtTwoPi;
}

/// Φ(x) − 1/2 for 0 <= x < 3: a sum of terms that are all above 0.
double shareAboveHalf(double x)
{
    double term = x;
    double sum = x;
    for (int odd = 3; term > sum * 1e-18; odd += 2) {
        term *= x * x / odd;
        sum += term;
    }
    return normalDensity(x) * sum;
}

/// 1 − Φ(x) for x >= 3, by the continued fraction of Laplace.
double shareAbove(double x)
{
    double tail = x;
    for (int level = 120; level > 0; --level)
        tail = x + level / tail;
    return normalDensity(x) / tail;
}

} // namespace

double logarithm(double x)
{
    int exponent = 0;
    double mantissa = std::frexp(x, &exponent);
    if (mantissa < sqrtHalf) {
        mantissa *= 2;
        --exponent;
    }
    // 2 artanh(s), s at most 0.172
    const double s = (mantissa - 1) / (mantissa + 1);
    const double square = s * s;
    double sum = 0;
    for (int odd = 27; odd >= 3; odd -= 2)
        sum = square * (1.0 / odd + sum);
    return exponent * ln2High + (exponent * ln2Low + (2 * s + 2 * s * sum));
}

double exponential(double x)
{
    if (x > 709.79)
        return std::numeric_limits<double>::infinity();
    if (x < -745.2)
        return 0;
    const double doublings = std::floor(x / (ln2High + ln2Low) + 0.5);
    const double rest = (x - doublings * ln2High) - doublings * ln2Low;
    double sum = 1;
    for (int n = 18; n >= 1; --n)
        sum = 1 + rest / n * sum;
    return std::ldexp(sum, static_cast<int>(doublings));
}

double power(double base, double exponent)
{
    return exponential(exponent * logarithm(base));
}

double normalShare(double x)
{
    if (x >= 3)
        return 1 - shareAbove(x);
    if (x <= -3)
        return shareAbove(-x);
    return x < 0 ? 0.5 - shareAboveHalf(-x) : 0.5 + shareAboveHalf(x);
}

double normalQuantile(double share)
{
    if (share >= 0.5)
        return share > 0.5 ? -normalQuantile(1 - share) : 0;
    double low = -39;
    double high = 0;
    while (true) {
        const double middle = 0.5 * (low + high);
        if (middle <= low || middle >= high)
            return middle;
        (normalShare(middle) < share ? low : high) = middle;
    }
}

} // namespace lab::stable
