#include "pixel/Spot.h"

#include "practice/Check.h"

namespace {

constexpr PixelRect part{100, 50, 6, 4};

Picture withPixels(const std::vector<std::size_t>& places)
{
    Picture picture(6 * 4, 0x101010);
    for (const std::size_t place : places)
        picture.at(place) = 0xffffff;
    return picture;
}

TEST_CASE("a spot is what prices change of a part, and has each price's picture of it")
{
    // Rows of six: (1, 1), (3, 2), (2, 1).
    const auto spot = Spot::of(part, {withPixels({7}), withPixels({15}), withPixels({8})});
    REQUIRE(spot.has_value());
    CHECK(spot->part == (PixelRect{101, 51, 3, 2}));
    REQUIRE(spot->pictures.size() == 3);
    CHECK(spot->pictures[0] == (Picture{0xffffff, 0x101010, 0x101010, 0x101010, 0x101010, 0x101010}));
    CHECK(spot->pictures[1] == (Picture{0x101010, 0x101010, 0x101010, 0x101010, 0x101010, 0xffffff}));
    CHECK(spot->pictures[2] == (Picture{0x101010, 0xffffff, 0x101010, 0x101010, 0x101010, 0x101010}));
}

TEST_CASE("prices that look the same make no spot")
{
    CHECK(!Spot::of(part, {withPixels({7}), withPixels({15}), withPixels({7})}).has_value());
    CHECK(!Spot::of(part, {withPixels({7}), withPixels({15}), withPixels({15})}).has_value());
    CHECK(!Spot::of(part, {withPixels({7}), withPixels({7})}).has_value());
    CHECK(!Spot::of(part, {withPixels({7})}).has_value());
    CHECK(!Spot::of(part, {}).has_value());
}

} // namespace

CHECK_MAIN()
