#include "platform/SharedLibrary.h"

#include <gtest/gtest.h>

namespace voxmate
{
namespace
{

using Unary = double (*)(double);

struct Functions : LibraryFunctions {
    Functions(const char* library, const char* second)
        : LibraryFunctions(library), Root(Need<Unary>("sqrt")), Second(Need<Unary>(second))
    {
    }
    Unary Root;
    Unary Second;
};

TEST(LibraryFunctionsTest, ALibrarysFunctionsAreFoundByName)
{
    const Functions maths("libm.so.6", "cbrt");
    ASSERT_TRUE(maths);
    EXPECT_DOUBLE_EQ(maths.Root(49), 7);
    EXPECT_DOUBLE_EQ(maths.Second(27), 3);
}

TEST(LibraryFunctionsTest, WithoutOneOfItsFunctionsALibraryIsNotUsed)
{
    const Functions maths("libm.so.6", "no_such_function");
    EXPECT_FALSE(maths);
    EXPECT_NE(maths.Root, nullptr);
    EXPECT_EQ(maths.Second, nullptr);
}

TEST(LibraryFunctionsTest, AMissingLibraryIsTold)
{
    const Functions none("libno-such-library.so.1", "cbrt");
    EXPECT_FALSE(none);
    EXPECT_EQ(none.Root, nullptr);
}

} // namespace
} // namespace voxmate
