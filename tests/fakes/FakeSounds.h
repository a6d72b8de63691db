// The recorder that saves sound, in place of its process: it tells what a test has it tell.
#pragma once

#include "base/RuntimeError.h"
#include "extras/SoundRun.h"
#include "platform/WindowSystem.h"
#include "tests/fakes/Log.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <deque>
#include <memory>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace voxmate::fakes
{

class FakeSounds
{
public:
    explicit FakeSounds(Log& log) : log_(log) {}

    std::vector<std::string> kinds{"ogg", "mp3", "flac", "wav"};
    std::deque<std::string> chosen; ///< what the user chooses in the next dialogs; "": cancels
    bool starts = true;
    std::vector<recording::Job> jobs; ///< those that were begun
    std::string told;                 ///< what the recorder has written and nobody has read yet
    bool ended = false;               ///< whether its process has
    int running = 0;

    void Tell(const recording::News& news) { told += recording::EncodeNews(news); }

    SoundHost Host()
    {
        return {[this] { return kinds; },
                [this](recording::Job job) -> std::unique_ptr<Helper> {
                    if (!starts)
                        throw CannotCreateObject();
                    jobs.push_back(std::move(job));
                    ended = false;
                    return std::make_unique<Recorder>(*this);
                },
                [this](const std::string& path) { log_.push_back("Discard " + path); },
                [this](const CommonDialog& dialog) {
                    log_.push_back("ShowSave " + dialog.DialogTitle + " " + dialog.Filter + " " + dialog.FileName);
                    if (chosen.empty())
                        return std::string();
                    std::string path = chosen.front();
                    chosen.pop_front();
                    return path;
                }};
    }

private:
    class Recorder : public Helper
    {
    public:
        explicit Recorder(FakeSounds& sounds) : sounds_(sounds) { ++sounds_.running; }
        ~Recorder() override { --sounds_.running; }
        Recorder(const Recorder&) = delete;
        Recorder& operator=(const Recorder&) = delete;

        std::size_t Read(std::span<char> buffer, std::chrono::milliseconds /*wait*/) override
        {
            const std::size_t size = std::min(buffer.size(), sounds_.told.size());
            std::copy_n(sounds_.told.begin(), size, buffer.begin());
            sounds_.told.erase(0, size);
            return size;
        }
        bool AtEnd() const override { return sounds_.ended && sounds_.told.empty(); }
        End Ending() override { return End::Crashed; }

    private:
        FakeSounds& sounds_;
    };

    Log& log_;
};

} // namespace voxmate::fakes
