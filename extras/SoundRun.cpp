#include "extras/SoundRun.h"

#include <array>
#include <chrono>
#include <string_view>
#include <utility>

namespace voxmate
{

SoundRun::SoundRun(const SoundHost& host, recording::Job job)
    : host_(host), job_(std::move(job)), helper_(host.Start(job_))
{
}

SoundRun::~SoundRun()
{
    helper_.reset();
    host_.Discard(job_.temporary);
}

std::optional<recording::News> SoundRun::Next()
{
    std::optional<recording::News> latest;
    std::array<char, 4096> buffer{};
    while (const std::size_t count = helper_->Read(buffer, std::chrono::milliseconds(0))) {
        for (const char c : std::string_view(buffer.data(), count)) {
            if (c != '\n') {
                line_ += c;
                continue;
            }
            if (const auto news = recording::DecodeNews(std::exchange(line_, "")))
                latest = news;
        }
    }
    return latest;
}

} // namespace voxmate
