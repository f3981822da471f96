#include "pixel/Percentile.h"

#include "practice/Check.h"

#include <numeric>

namespace {

TEST_CASE("a percentile is one of the values, by the nearest rank")
{
    std::vector<double> values(200);
    std::iota(values.rbegin(), values.rend(), 1.0);
    CHECK_EQ(percentile(values, 50), 100.0);
    CHECK_EQ(percentile(values, 99), 198.0);
    CHECK_EQ(percentile(values, 100), 200.0);
    CHECK_EQ(percentile(values, 0.1), 1.0);
}

TEST_CASE("few values have the largest of them as their 99th percentile")
{
    CHECK_EQ(percentile({3.0, 9.0, 1.0}, 99), 9.0);
    CHECK_EQ(percentile({3.0, 9.0, 1.0}, 50), 3.0);
    CHECK_EQ(percentile({7.0}, 50), 7.0);
}

TEST_CASE("nothing has a percentile of 0")
{
    CHECK_EQ(percentile({}, 99), 0.0);
}

} // namespace

CHECK_MAIN()
