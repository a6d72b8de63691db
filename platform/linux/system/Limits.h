// Limits of a process that is trusted less than the program.
#pragma once

#include <sys/resource.h>

namespace voxmate
{

// The address sanitizer reserves far more address space than any limit would allow.
#if defined(__SANITIZE_ADDRESS__)
inline constexpr bool UnderAddressSanitizer = true;
#elif defined(__has_feature)
inline constexpr bool UnderAddressSanitizer = __has_feature(address_sanitizer);
#else
inline constexpr bool UnderAddressSanitizer = false;
#endif

/// Limits what this process may have of a resource; the units are setrlimit's.
inline void Limit(__rlimit_resource_t resource, rlim_t soft, rlim_t hard)
{
    const rlimit limit{soft, hard};
    setrlimit(resource, &limit);
}

/// Limits the address space, in bytes.
inline void LimitMemory(rlim_t bytes)
{
    if (!UnderAddressSanitizer)
        Limit(RLIMIT_AS, bytes, bytes);
}

} // namespace voxmate
