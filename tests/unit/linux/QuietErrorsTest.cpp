// What a library writes on the standard error and nobody can use.
#include "platform/linux/process/QuietErrors.h"

#include <gtest/gtest.h>

#include <sstream>

namespace voxmate::linux_platform
{
namespace
{

TEST(QuietErrorsTest, UnwantedLinesAreLeftOutWithTheEmptyOneBehindThem)
{
    std::ostringstream stream;
    {
        const QuietErrors quiet(stream, "Schema error: ");
        stream << "voxmate: one\n";
        for (int number = 0; number < 3; ++number)
            stream << "Schema error: "
                   << "number " << number << "\n"
                   << std::endl;
        stream << "Schema error: without an empty line\nSchema\n\nSchema error : no\n" << 'a' << "b\n";
        EXPECT_EQ(stream.str(), "voxmate: one\nSchema\n\nSchema error : no\nab\n");
        stream << "Sch";
    }
    stream << "ema error: afterwards";
    EXPECT_EQ(stream.str(), "voxmate: one\nSchema\n\nSchema error : no\nab\nSchema error: afterwards");
}

} // namespace
} // namespace voxmate::linux_platform
