// Plays a tone through the sound output of Windows, and tells what is said to be heard of it:
//
//   tone HERTZ MILLISECONDS [STOP]
//
// Prints "check STATUS" and then, every ten milliseconds, "heard SAMPLES MICROSECONDS", by the system's clock that
// never jumps, and in the end "drained" or "failed". With STOP the stream is destroyed when that many milliseconds of
// it have been heard. Ends with 2 where there is no device.
#include "platform/windows/sound/WasapiDevice.h"

#include <chrono>
#include <cmath>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <mutex>
#include <numbers>
#include <span>
#include <thread>

using namespace voxmate;

namespace
{

constexpr int Rate = 22050;

class Tone final : public speech::SampleSource
{
public:
    Tone(double hertz, std::int64_t samples) : step_(2 * std::numbers::pi * hertz / Rate), all_(samples) {}

    std::size_t Pull(std::span<std::int16_t> samples, bool& ended) override
    {
        std::size_t count = 0;
        for (; count < samples.size() && at_ < all_; ++count, ++at_)
            samples[count] = static_cast<std::int16_t>(10000 * std::sin(step_ * static_cast<double>(at_)));
        ended = count == 0;
        return count;
    }

private:
    const double step_;
    const std::int64_t all_;
    std::int64_t at_ = 0;
};

} // namespace

int main(int argc, char** argv)
{
    const std::span arguments(argv, static_cast<std::size_t>(argc));
    if (arguments.size() < 3)
        return EXIT_FAILURE;
    const std::int64_t stop = arguments.size() > 3 ? std::atoll(arguments[3]) * Rate / 1000 : -1;
    std::mutex mutex;
    std::deque<std::function<void()>> posted;
    speech::WasapiDevice device([&](std::function<void()> action) {
        const std::lock_guard lock(mutex);
        posted.push_back(std::move(action));
    });
    std::printf("check %d\n", static_cast<int>(device.Check()));
    const char* end = nullptr;
    auto stream = device.Open(
        Rate, std::make_shared<Tone>(std::atof(arguments[1]), std::atoll(arguments[2]) * Rate / 1000),
        [&end] { end = "drained"; }, [&end] { end = "failed"; });
    if (!stream)
        return 2;
    const auto now = [] {
        return static_cast<long long>(
            std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now().time_since_epoch())
                .count());
    };
    while (!end) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
        const std::int64_t heard = stream->SamplesHeard();
        std::printf("heard %lld %lld\n", static_cast<long long>(heard), now());
        if (stop >= 0 && heard >= stop) {
            stream.reset();
            return EXIT_SUCCESS;
        }
        const std::lock_guard lock(mutex);
        for (; !posted.empty(); posted.pop_front())
            posted.front()();
    }
    std::printf("%s\n", end);
    return EXIT_SUCCESS;
}
