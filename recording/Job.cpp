#include "recording/Job.h"

#include "readers/Frames.h"

#include <array>
#include <charconv>
#include <utility>
#include <variant>

namespace voxmate::recording
{

namespace
{

// The fields that are texts, in the order in which they are written.
constexpr std::array Fields{&Job::voice,  &Job::voiceName, &Job::language, &Job::addedVoices,
                            &Job::prefix, &Job::document,  &Job::text,     &Job::kind,
                            &Job::title,  &Job::path,      &Job::temporary};

void Put(std::string& bytes, std::string_view text)
{
    bytes += std::to_string(text.size()) + "\n";
    bytes += text;
}

std::optional<std::string_view> Take(std::string_view& bytes)
{
    std::size_t size = 0;
    const auto [end, error] = std::from_chars(bytes.data(), bytes.data() + bytes.size(), size);
    const auto digits = static_cast<std::size_t>(end - bytes.data());
    if (error != std::errc() || digits >= bytes.size() || *end != '\n' || size > bytes.size() - digits - 1)
        return std::nullopt;
    const std::string_view text = bytes.substr(digits + 1, size);
    bytes.remove_prefix(digits + 1 + size);
    return text;
}

} // namespace

std::string EncodeJob(const Job& job)
{
    std::string bytes;
    for (const auto field : Fields)
        Put(bytes, job.*field);
    Put(bytes, job.chapters ? "1" : "");
    for (const readers::Block& block : job.blocks)
        bytes += readers::EncodeFrame(block);
    return bytes;
}

std::optional<Job> DecodeJob(std::string_view bytes)
{
    Job job;
    for (const auto field : Fields) {
        const auto text = Take(bytes);
        if (!text)
            return std::nullopt;
        job.*field = *text;
    }
    const auto chapters = Take(bytes);
    if (!chapters)
        return std::nullopt;
    job.chapters = !chapters->empty();
    readers::FrameDecoder frames;
    frames.Add(bytes);
    while (auto frame = frames.Next())
        if (auto* const block = std::get_if<readers::Block>(&*frame))
            job.blocks.push_back(std::move(*block));
    return frames.Wrong() ? std::nullopt : std::optional(std::move(job));
}

} // namespace voxmate::recording
