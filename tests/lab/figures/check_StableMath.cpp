#include "lab/core/figures/StableMath.h"
#include "practice/Check.h"

#include <bit>
#include <cmath>
#include <cstdint>

using namespace lab;

namespace {

bool isClose(double value, double expected, double relative)
{
    return std::abs(value - expected) <= relative * std::abs(expected);
}

} // namespace

TEST_CASE("logarithms and powers agree with those of the machine")
{
    for (int step = -1600; step <= 1600; ++step) {
        const double x = std::pow(1.0173, step) * 1.3;
        CHECK(isClose(stable::logarithm(x), std::log(x), 5e-16));
        CHECK(isClose(stable::power(x, 0.37), std::pow(x, 0.37), 1e-14));
    }
    CHECK_EQ(stable::logarithm(1), 0.0);
    CHECK(isClose(stable::logarithm(1 + 1e-9), std::log1p(1e-9), 1e-7));
}

TEST_CASE("exponentials agree with those of the machine up to their limits")
{
    for (int step = -2200; step <= 2200; ++step)
        CHECK(isClose(stable::exponential(step * 0.317), std::exp(step * 0.317), 1e-15));
    CHECK_EQ(stable::exponential(0), 1.0);
    CHECK(std::isinf(stable::exponential(710)));
    CHECK_EQ(stable::exponential(-800), 0.0);
}

TEST_CASE("the normal distribution agrees with that of the machine far into its tail")
{
    for (int step = -2700; step <= 660; ++step) {
        const double x = step * 0.0137;
        CHECK(isClose(stable::normalShare(x), std::erfc(-x / std::sqrt(2.0)) / 2, 1e-12));
    }
    CHECK_EQ(stable::normalShare(0), 0.5);
    CHECK_EQ(stable::normalShare(60), 1.0);
    // Where the way to work it out changes, the better one is taken.
    CHECK(isClose(stable::normalShare(-3), 0.00134989803163009453, 1e-15));
}

TEST_CASE("a quantile is where the distribution has that share")
{
    for (int step = -88; step <= 32; ++step)
        CHECK_NEAR(stable::normalQuantile(stable::normalShare(step * 0.0913)), step * 0.0913, 1e-12);
    CHECK_EQ(stable::normalQuantile(0.5), 0.0);
    CHECK_NEAR(stable::normalQuantile(0.975), 1.959963984540054, 1e-14);
}

TEST_CASE("the results are the same to the bit on every machine")
{
    std::uint64_t print = 14695981039346656037U;
    const auto add
        = [&print](double value) { print = (print ^ std::bit_cast<std::uint64_t>(value)) * 1099511628211U; };
    for (int step = 1; step < 2000; ++step) {
        const double x = step * 0.0071;
        add(stable::logarithm(x));
        add(stable::exponential(x - 7));
        add(stable::normalShare(x - 7));
        if (step % 50 == 0)
            add(stable::normalQuantile(step / 2000.0));
    }
    CHECK_EQ(print, std::uint64_t{3016167650968328267U});
}

CHECK_MAIN()
