// Sound output through Windows' audio sessions (WASAPI, shared mode), which resample and mix for all programs.
#pragma once

#include "speech/AudioOutput.h"

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace voxmate::speech
{

class WasapiDevice
{
public:
    /// `post` runs an action on the user-interface thread; it is called from any thread and must outlive the device.
    explicit WasapiDevice(std::function<void(std::function<void()>)> post);
    /// Every stream must have been destroyed.
    ~WasapiDevice();

    /// Nothing has to be connected to first.
    void Look() {}
    /// NoSupport where there is no output device, CannotOpen where the last stream could not be opened on it: another
    /// program may have it to itself.
    AudioStatus Check();
    bool Ready() { return Check() == AudioStatus::Available; }
    /// As AudioOutput::Open. A stream whose device goes away continues on the next one, from the sample heard last.
    std::unique_ptr<AudioStream> Open(int samplesPerSecond, std::shared_ptr<SampleSource> source,
                                      std::function<void()> drained, std::function<void()> failed);

private:
    class Session;
    struct Playing;
    class Stream;

    void Play(const std::shared_ptr<Playing>& playing);

    const std::function<void(std::function<void()>)> post_;
    std::atomic<bool> openFailed_ = false;
    std::mutex mutex_;
    std::vector<std::thread> ending_; ///< of destroyed streams
};

} // namespace voxmate::speech
