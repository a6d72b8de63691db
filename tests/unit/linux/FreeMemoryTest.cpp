#include "platform/FreeMemory.h"

#include <cstddef>
#include <fstream>
#include <gtest/gtest.h>
#include <memory>
#include <vector>

#include <unistd.h>

namespace voxmate
{

namespace
{

// Bytes of the process's own memory that are in use by the system's count.
std::size_t Resident()
{
    std::size_t total = 0;
    std::size_t resident = 0;
    std::size_t shared = 0;
    std::ifstream("/proc/self/statm") >> total >> resident >> shared;
    return (resident - shared) * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

} // namespace

TEST(FreeMemoryTest, FreeMemoryBetweenBlocksInUseGoesBack)
{
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "the sanitizer's heap keeps what is freed";
#endif
    constexpr std::size_t block = 16 * 1024;
    constexpr std::size_t count = 4096;
    std::vector<std::unique_ptr<std::vector<char>>> blocks;
    for (std::size_t i = 0; i < count; ++i)
        blocks.push_back(std::make_unique<std::vector<char>>(block, 'x'));
    for (std::size_t i = 0; i < count; ++i)
        if (i % 8 != 0)
            blocks[i].reset();
    const std::size_t before = Resident();
    ReturnFreeMemory();
    EXPECT_LT(Resident() + block * count / 2, before);
    EXPECT_EQ(blocks[8]->back(), 'x');
}

} // namespace voxmate
