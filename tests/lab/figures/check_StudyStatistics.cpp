#include "lab/core/figures/StudyStatistics.h"
#include "practice/Check.h"

#include <cmath>
#include <vector>

using namespace lab;

TEST_CASE("a mean of nothing is as likely above as below")
{
    CHECK_NEAR(probabilisticSharpe(std::vector<double>{0.01, -0.01, 0.01, -0.01}).value(), 0.5, 1e-15);
}

TEST_CASE("a longer record of the same returns is surer")
{
    std::vector<double> returns{0.02, -0.01, 0.015, -0.012};
    const double few = probabilisticSharpe(returns).value();
    for (int i = 0; i < 5; ++i)
        returns.insert(returns.end(), {0.02, -0.01, 0.015, -0.012});
    CHECK(few > 0.5);
    CHECK(probabilisticSharpe(returns).value() > few);
    CHECK(probabilisticSharpe(returns, 0.1).value() < probabilisticSharpe(returns).value());
}

TEST_CASE("there is no Sharpe ratio without two days or a deviation")
{
    CHECK(!dailySharpe({}).has_value());
    CHECK(!dailySharpe(std::vector<double>{0.01}).has_value());
    CHECK(!probabilisticSharpe(std::vector<double>{0.01, 0.01, 0.01}).has_value());
}

TEST_CASE("the more trials the higher the best one's ratio is expected")
{
    CHECK_EQ(expectedMaximumSharpe(1, 0.04), Figure(0));
    CHECK(!expectedMaximumSharpe(0, 0.04).has_value());
    CHECK(!expectedMaximumSharpe(5, -1).has_value());
    double before = 0;
    for (const std::size_t trials : {2UL, 10UL, 100UL, 100'000UL}) {
        const double expected = expectedMaximumSharpe(trials, 0.04).value();
        CHECK(expected > before);
        before = expected;
    }
    CHECK_NEAR(expectedMaximumSharpe(100, 1).value(), 2.5306, 1e-3);
}

TEST_CASE("trials make a Sharpe ratio less sure")
{
    const std::vector<double> returns{0.02, -0.01, 0.015, -0.012, 0.01, 0.02, -0.005};
    const std::vector<double> sharpes{0.1, 0.3, -0.2, 0.05};
    const double plain = probabilisticSharpe(returns).value();
    const double few = deflatedSharpe(returns, sharpes, 4).value();
    CHECK(few < plain);
    CHECK(deflatedSharpe(returns, sharpes, 400).value() < few);
    CHECK_EQ(deflatedSharpe(returns, sharpes, 0), deflatedSharpe(returns, sharpes, 4));
    CHECK(!deflatedSharpe(returns, std::vector<double>{0.1}, 400).has_value());
}

namespace {

/// Trials whose returns follow from place and bias; trial 0 is better than the others by `bias`.
ReturnMatrix matrixOf(std::size_t days, std::size_t trials, double bias)
{
    ReturnMatrix matrix{.days = days, .trials = trials, .values = {}};
    for (std::size_t day = 0; day < days; ++day) {
        for (std::size_t trial = 0; trial < trials; ++trial) {
            const auto noise = static_cast<double>((day * 7919 + trial * 104'729 + day * trial * 31) % 1000);
            matrix.values.push_back((noise - 499.5) * 1e-5 + (trial == 0 ? bias : 0));
        }
    }
    return matrix;
}

} // namespace

TEST_CASE("a trial that is always best is not overfitted")
{
    CHECK_EQ(overfittingProbability(matrixOf(160, 6, 0.05)), Figure(0));
}

TEST_CASE("trials that are all the same are overfitted for sure")
{
    ReturnMatrix matrix = matrixOf(64, 1, 0);
    std::vector<double> doubled;
    for (const double value : matrix.values)
        doubled.insert(doubled.end(), {value, value});
    CHECK_EQ(overfittingProbability({.days = 64, .trials = 2, .values = doubled}), Figure(1));
}

TEST_CASE("what leads in one half only by what it lacks in the other is overfitted")
{
    // Each trial earns in blocks of its own and loses in the others, so that a lead never lasts.
    ReturnMatrix matrix{
        .days = 4, .trials = 2, .values = {0.02, -0.02, 0.03, -0.03, -0.02, 0.02, -0.03, 0.03}};
    CHECK_EQ(overfittingProbability(matrix, 2), Figure(1));
}

TEST_CASE("there is no probability of overfitting with too few trials or days or odd blocks")
{
    CHECK(!overfittingProbability(matrixOf(160, 1, 0)).has_value());
    CHECK(!overfittingProbability(matrixOf(31, 4, 0)).has_value());
    CHECK(overfittingProbability(matrixOf(32, 4, 0)).has_value());
    CHECK(!overfittingProbability(matrixOf(160, 4, 0), 15).has_value());
    CHECK(!overfittingProbability(matrixOf(160, 4, 0), 0).has_value());
    CHECK(!overfittingProbability({.days = 160, .trials = 4, .values = {}}).has_value());
}

TEST_CASE("the oldest days that fill no block are left out")
{
    const ReturnMatrix whole = matrixOf(160, 5, 0.0005);
    ReturnMatrix longer{.days = 167, .trials = 5, .values = std::vector<double>(7 * 5, 0.5)};
    longer.values.insert(longer.values.end(), whole.values.begin(), whole.values.end());
    CHECK_EQ(overfittingProbability(longer), overfittingProbability(whole));
}

TEST_CASE("a trial that earns the same each day ranks as one that has not traded")
{
    ReturnMatrix matrix = matrixOf(160, 5, 0);
    const auto probabilityWith = [&matrix](double earned) {
        for (std::size_t day = 0; day < matrix.days; ++day)
            matrix.values[day * matrix.trials + 2] = earned;
        return overfittingProbability(matrix);
    };
    const Figure idle = probabilityWith(0);
    for (const double earned : {0.1, 0.0007, 0.0123, 0.00031, 0.0019})
        CHECK_EQ(probabilityWith(earned), idle);
}

TEST_CASE("the interval of a share stays between 0 and 1")
{
    const auto none = wilsonInterval(0, 10).value();
    CHECK_EQ(none.low, 0.0);
    CHECK_NEAR(none.high, 0.2775, 1e-4);
    const auto all = wilsonInterval(10, 10).value();
    CHECK_EQ(all.high, 1.0);
    CHECK_NEAR(all.low, 0.7225, 1e-4);
    CHECK(!wilsonInterval(0, 0).has_value());
    CHECK(!wilsonInterval(3, 2).has_value());
}

TEST_CASE("a peak among low neighbours is less stable than a plateau")
{
    const std::vector<std::size_t> sizes{3, 3};
    const std::vector<Figure> values{1, 1, 1, 1, 4, 1, 1, Figure(), -1};
    const std::vector<Figure> stability = neighbourhoodStability(sizes, values);
    CHECK_NEAR(stability[4].value(), 5.0 / 7 / 4, 1e-15);
    CHECK_NEAR(stability[0].value(), 2.0, 1e-15);
    CHECK(!stability[7].has_value());
    CHECK(!stability[8].has_value());
}

TEST_CASE("a figure that is a trifle beside its neighbours' has no stability")
{
    const std::vector<std::size_t> sizes{4};
    const std::vector<Figure> stability = neighbourhoodStability(sizes, std::vector<Figure>{1, 0.1, 1, -9});
    CHECK_NEAR(stability[0].value(), 0.1, 1e-15);
    CHECK_NEAR(stability[1].value(), 10, 1e-12);
    CHECK_NEAR(stability[2].value(), -4.45, 1e-12);
    CHECK(!neighbourhoodStability(sizes, std::vector<Figure>{1, 0.09, 1, -9})[1].has_value());
    CHECK(!neighbourhoodStability(sizes, std::vector<Figure>{1, 1, 0.4, -9.1})[2].has_value());
}

TEST_CASE("a grid that does not fit its values has no stability")
{
    const std::vector<std::size_t> sizes{2, 2};
    const std::vector<Figure> values{1, 1, 1};
    CHECK(neighbourhoodStability(sizes, values) == std::vector<Figure>(3));
    CHECK(neighbourhoodStability(std::vector<std::size_t>{1}, std::vector<Figure>{1})
        == std::vector<Figure>(1));
}

CHECK_MAIN()
