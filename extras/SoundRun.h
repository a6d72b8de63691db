// One recording in the making: the recorder's process as the program sees it.
#pragma once

#include "platform/Helper.h"
#include "recording/Job.h"
#include "recording/News.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace voxmate
{

struct CommonDialog;

/// What saving sound needs of the outside.
struct SoundHost {
    /// The kinds of files that can be written, by extension: "ogg", "mp3", "flac", "wav".
    std::function<std::vector<std::string>()> Kinds;
    /// Starts the recorder; completes the job with what only the outside knows. Raises run-time error 429.
    std::function<std::unique_ptr<Helper>(recording::Job job)> Start;
    /// Deletes a file, or a folder with its files, if it is there.
    std::function<void(const std::string& path)> Discard;
    /// Asks where a file is to be saved, and before one that exists is chosen. Empty: cancelled.
    std::function<std::string(const CommonDialog& dialog)> AskForFile;
};

class SoundRun
{
public:
    /// Starts the recorder. Raises run-time error 429.
    SoundRun(const SoundHost& host, recording::Job job);
    /// Ends it; nothing is left of what it has not completed.
    ~SoundRun();
    SoundRun(const SoundRun&) = delete;
    SoundRun& operator=(const SoundRun&) = delete;

    const recording::Job& Job() const { return job_; }
    /// The latest news since the last call. Does not wait.
    std::optional<recording::News> Next();
    /// Whether there will be no more. Without a last news that tells how it ended the recorder has failed.
    bool AtEnd() const { return helper_->AtEnd(); }

private:
    const SoundHost& host_;
    const recording::Job job_;
    std::unique_ptr<Helper> helper_;
    std::string line_;
};

} // namespace voxmate
