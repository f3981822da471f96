#include "practice/Check.h"
#include "practice/core/broker/Money.h"
#include "practice/core/broker/PriceGrid.h"

#include <cmath>
#include <limits>

using namespace practice;

TEST_CASE("halves of a cent are rounded away from zero")
{
    CHECK_EQ(roundToCents(0.5), 1);
    CHECK_EQ(roundToCents(-0.5), -1);
    CHECK_EQ(roundToCents(0.49), 0);
    CHECK_EQ(roundToCents(2.5), 3);
}

TEST_CASE("amounts that are no numbers or absurd stay within limits")
{
    CHECK_EQ(roundToCents(std::nan("")), 0);
    CHECK_EQ(roundToCents(std::numeric_limits<double>::infinity()), 1'000'000'000'000'000);
    CHECK_EQ(roundToCents(-1e300), -1'000'000'000'000'000);
}

TEST_CASE("a quotient is rounded as it is, not as the nearest number in binary")
{
    CHECK_EQ(
        roundQuotient({100, 12'650}, {10'000}), 127); // 100 x 1.2650 = 126.5, but 1.265 is less in binary
    CHECK_EQ(roundQuotient({-100, 12'650}, {10'000}), -127);
    CHECK_EQ(roundQuotient({100, 12'649}, {10'000}), 126);
    CHECK_EQ(roundQuotient({1, 1}, {3}), 0);
    CHECK_EQ(roundQuotient({2, 1}, {3}), 1);
    CHECK_EQ(roundQuotient({0}, {7}), 0);
    CHECK_EQ(roundQuotient({7, 1'000'000'007}, {1'000'000'007}), 7);
    // However little is missing: in binary these are 126.5 and -126.5.
    CHECK_EQ(roundQuotient({252'999'999'999'999'999}, {2'000'000'000'000'000}), 126);
    CHECK_EQ(roundQuotient({-252'999'999'999'999'999}, {2'000'000'000'000'000}), -126);
}

TEST_CASE("quotients beyond every sum of money are limited, and products too long for exactness still near")
{
    constexpr std::int64_t huge = 9'000'000'000'000'000'000;
    CHECK_EQ(roundQuotient({huge, huge, huge}, {1}), 1'000'000'000'000'000);
    CHECK_EQ(roundQuotient({-huge, huge}, {1}), -1'000'000'000'000'000);
    CHECK_EQ(roundQuotient({huge, huge, huge}, {huge, huge, huge / 1000}), 1000);
}

TEST_CASE("amounts print with two decimals, and with groups for people")
{
    CHECK_EQ(decimalText(0), std::string("0.00"));
    CHECK_EQ(decimalText(5), std::string("0.05"));
    CHECK_EQ(decimalText(-5), std::string("-0.05"));
    CHECK_EQ(decimalText(123'450), std::string("1234.50"));
    CHECK_EQ(decimalText(-123'456'789), std::string("-1234567.89"));
    CHECK_EQ(moneyText(99'999), std::string("999.99"));
    CHECK_EQ(moneyText(123'450), std::string("1,234.50"));
    CHECK_EQ(moneyText(-123'456'789), std::string("-1,234,567.89"));
    CHECK_EQ(decimalText(std::numeric_limits<Cents>::min()), std::string("-92233720368547758.08"));
}

TEST_CASE("a price on the grid is one floating-point number however it was computed")
{
    CHECK_EQ(onGrid(0.1 + 0.2, 5), 0.3);
    CHECK_EQ(onGrid(1.085004, 5), 1.085);
    CHECK_EQ(onGrid(1.085006, 5), 1.08501);
    CHECK_EQ(toPoints(1.08508, 5), 108508);
    CHECK_EQ(toPoints(149.995, 3), 149995);
}

TEST_CASE("prices print with the symbol's decimals, however odd their number")
{
    CHECK_EQ(priceText(1.085, 5), std::string("1.08500"));
    CHECK_EQ(priceText(0.00001, 5), std::string("0.00001"));
    CHECK_EQ(priceText(5250.5, 1), std::string("5250.5"));
    CHECK_EQ(priceText(5250, 0), std::string("5250"));
    CHECK_EQ(priceText(5250, -3), std::string("5250"));
    CHECK_EQ(priceText(-0.5, 2), std::string("-0.50"));
    CHECK_EQ(priceText(1, 99), std::string("1.00000000"));
}

CHECK_MAIN()
