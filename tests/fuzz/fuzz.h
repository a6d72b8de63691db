// What the fuzz targets share. A target feeds one input to code that reads files and texts from strangers. A promise
// that is not kept, or an operation that takes too long, ends the program; the fuzzer and the replay watch for that.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define VOXMATE_INSTRUMENTED 1
#endif
#endif
#ifdef __SANITIZE_ADDRESS__
#define VOXMATE_INSTRUMENTED 1
#endif

/// Tests one input: any bytes of any length. Returns 0, or ends the program.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace voxmate::fuzz
{

/// Ends the program when a promise is not kept; `promise` names it.
inline void Require(bool kept, const char* promise)
{
    if (kept)
        return;
    std::fprintf(stderr, "Not kept: %s\n", promise);
    std::abort();
}

/// Ends the program when the object's lifetime takes so much processor time that a user would notice. Processor time,
/// not time of day, so that a busy machine causes no findings.
class InTime
{
public:
#ifdef VOXMATE_INSTRUMENTED
    static constexpr double LongestMilliseconds = 800; // the sanitizers' checks take about eight times as long
#else
    static constexpr double LongestMilliseconds = 100;
#endif
    explicit InTime(const char* operation) : operation_(operation), start_(std::clock()) {}
    InTime(const InTime&) = delete;
    InTime& operator=(const InTime&) = delete;
    ~InTime()
    {
        const double milliseconds = 1000.0 * static_cast<double>(std::clock() - start_) / CLOCKS_PER_SEC;
        if (milliseconds <= LongestMilliseconds)
            return;
        std::fprintf(stderr, "Not kept: %s in %.0f ms, it took %.0f\n", operation_, LongestMilliseconds, milliseconds);
        std::abort();
    }

private:
    const char* operation_;
    std::clock_t start_;
};

} // namespace voxmate::fuzz
