// Where documents were left.
#include "extras/ReadingPlaces.h"
#include "tests/fakes/FakeState.h"

#include <gtest/gtest.h>

namespace voxmate
{

namespace
{

TEST(ReadingPlacesTest, APlaceIsKeptFromRunToRunUntilItIsForgotten)
{
    fakes::FakeState state;
    {
        ReadingPlaces places(state);
        places.Keep("aa", 3);
        places.Keep("bb", 7);
        places.Keep("aa", 5);
        places.Keep("cc", 0);
        places.Keep("", 9);
    }
    EXPECT_EQ(state.values["documents.places"], "aa 5 bb 7");
    ReadingPlaces places(state);
    EXPECT_EQ(places.Find("aa"), 5u);
    EXPECT_EQ(places.Find("bb"), 7u);
    EXPECT_EQ(places.Find("cc"), 0u);
    places.Keep("aa", 0);
    EXPECT_EQ(state.values["documents.places"], "bb 7");
    places.Clear();
    EXPECT_EQ(state.values["documents.places"], "");
    EXPECT_EQ(places.Find("bb"), 0u);
}

TEST(ReadingPlacesTest, TheLastHundredAreKept)
{
    fakes::FakeState state;
    ReadingPlaces places(state);
    for (int i = 0; i <= 100; ++i)
        places.Keep("print" + std::to_string(i), 1);
    EXPECT_EQ(places.Find("print0"), 0u);
    EXPECT_EQ(places.Find("print1"), 1u);
    EXPECT_EQ(ReadingPlaces(state).Find("print100"), 1u);
}

TEST(ReadingPlacesTest, ADamagedListIsTakenAsFarAsItGoes)
{
    fakes::FakeState state;
    state.values["documents.places"] = "aa 5 bb x cc 2";
    const ReadingPlaces places(state);
    EXPECT_EQ(places.Find("aa"), 5u);
    EXPECT_EQ(places.Find("cc"), 0u);
}

} // namespace

} // namespace voxmate
