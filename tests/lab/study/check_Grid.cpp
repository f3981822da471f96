#include "lab/Contains.h"

#include "lab/core/study/Grid.h"
#include "lab/core/study/StudyError.h"
#include "practice/Check.h"

#include <algorithm>
#include <set>

using namespace lab;

namespace {

std::string valuesOf(std::string_view text, bool isNumber = true)
{
    std::string all;
    for (const std::string& value : axisOf("X", text, isNumber).values)
        all += (all.empty() ? "" : " ") + value;
    return all;
}

std::string complaintOf(std::string_view text)
{
    try {
        return "no complaint, but " + valuesOf(text);
    } catch (const StudyError& error) {
        return error.what();
    }
}

} // namespace

TEST_CASE("a range goes in exact decimal steps and may end before its last number")
{
    CHECK_EQ(valuesOf("5:8:1"), "5 6 7 8");
    CHECK_EQ(valuesOf("0.1:0.5:0.1"), "0.1 0.2 0.3 0.4 0.5");
    CHECK_EQ(valuesOf("-1:1:0.5"), "-1 -0.5 0 0.5 1");
    CHECK_EQ(valuesOf("1:10:4"), "1 5 9");
    CHECK_EQ(valuesOf("0.05:0.06:0.005"), "0.05 0.055 0.06");
    CHECK_EQ(valuesOf("3:3:1"), "3");
}

TEST_CASE("a list keeps its order, and a quoted comma separates nothing")
{
    CHECK_EQ(valuesOf("b,a,c"), "b a c");
    CHECK_EQ(valuesOf("'a,b',c", false), "'a,b' c");
    CHECK_EQ(valuesOf("0.10"), "0.10");
}

TEST_CASE("a text with colons is no range")
{
    CHECK_EQ(valuesOf("12:30:00", false), "12:30:00");
    CHECK_EQ(valuesOf("08:00,09:00", false), "08:00 09:00");
}

TEST_CASE("a range that cannot be is refused with its reason")
{
    CHECK(contains(complaintOf("5:20"), "FROM:TO:STEP"));
    CHECK(contains(complaintOf("5:20:0"), "above 0"));
    CHECK(contains(complaintOf("5:20:-1"), "above 0"));
    CHECK(contains(complaintOf("20:5:1"), "lowest"));
    CHECK(contains(complaintOf("a:5:1"), "\"a\""));
    CHECK(contains(complaintOf("1:5:1e-3"), "\"1e-3\""));
    CHECK(contains(complaintOf("1:5:.5"), "\".5\""));
    CHECK(contains(complaintOf("0:100000:0.01"), "10000001 values of X are too many"));
    CHECK(contains(complaintOf("4,5,4"), "4 is there twice"));
}

TEST_CASE("sets are numbered with the last input running fastest")
{
    const Grid grid({axisOf("A", "1,2", true), axisOf("B", "7:9:1", true)});
    CHECK_EQ(grid.size(), 6U);
    const auto inputs = grid.inputsOf(4);
    CHECK(inputs == std::vector<std::pair<std::string, std::string>>{{"A", "2"}, {"B", "8"}});
    for (const std::uint64_t number : allSets(grid))
        CHECK_EQ(grid.numberOf(grid.placesOf(number)), number);
    CHECK_EQ(Grid().size(), 1U);
}

TEST_CASE("too many sets are counted and refused")
{
    const Grid grid({axisOf("A", "1:2000:1", true), axisOf("B", "1:2000:1", true)});
    try {
        CHECK_EQ(allSets(grid).size(), 0U);
    } catch (const StudyError& error) {
        CHECK_EQ(std::string(error.what()),
            "4000000 sets are too many: a study tries at most 1000000; --random N tries N of them");
    }
    const GridAxis million = axisOf("A", "1:1000000:1", true);
    CHECK_THROWS(Grid({million, million, million, million}), StudyError);
    CHECK_THROWS(sampledSets(grid, 1'000'001, 1), StudyError);
}

TEST_CASE("a sample follows from its seed and repeats nothing")
{
    const Grid grid({axisOf("A", "1:2000:1", true), axisOf("B", "1:2000:1", true)});
    const auto sample = sampledSets(grid, 500, 7);
    CHECK_EQ(sample.size(), 500U);
    CHECK(std::ranges::is_sorted(sample));
    CHECK_EQ(std::set(sample.begin(), sample.end()).size(), 500U);
    CHECK(sample == sampledSets(grid, 500, 7));
    CHECK(sample != sampledSets(grid, 500, 8));
    // All over the grid, not at one of its ends.
    CHECK(sample[250] > 1'500'000 && sample[250] < 2'500'000);
    CHECK(sample.back() < grid.size());
}

TEST_CASE("every set is as likely as any other to be in a sample")
{
    const Grid grid({axisOf("A", "1:10:1", true)});
    std::vector<int> counts(10);
    for (std::uint64_t seed = 0; seed < 5'000; ++seed) {
        for (const std::uint64_t number : sampledSets(grid, 3, seed))
            ++counts[number];
    }
    for (const int count : counts)
        CHECK(count > 1'350 && count < 1'650); // 1500, five deviations off
    CHECK_EQ(sampledSets(grid, 30, 1).size(), 10U);
}

CHECK_MAIN()
