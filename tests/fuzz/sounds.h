// What the targets for sounds share. libsndfile is not instrumented; what it logs of each file stands in for its
// coverage.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace voxmate::fuzz
{

/// Tells the fuzzer what libsndfile says of a file that it reads or refuses.
void CountWhatIsLogged(std::span<const std::uint8_t> bytes);

/// Tells the fuzzer that something was seen, counted by its number.
void Count(std::size_t event);

} // namespace voxmate::fuzz
