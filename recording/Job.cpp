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
    if (bytes.empty())
        return std::nullopt;
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
    Put(bytes, job.shortens ? "1" : "");
    Put(bytes, job.byLanguage ? "1" : "");
    Put(bytes, std::to_string(job.rules.size()));
    for (const WordingRule& rule : job.rules) {
        Put(bytes, rule.Written);
        Put(bytes, rule.Said);
    }
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
    const auto shortens = Take(bytes);
    const auto byLanguage = Take(bytes);
    const auto rules = Take(bytes);
    if (!chapters || !shortens || !byLanguage || !rules)
        return std::nullopt;
    job.chapters = !chapters->empty();
    job.shortens = !shortens->empty();
    job.byLanguage = !byLanguage->empty();
    std::size_t left = 0;
    std::from_chars(rules->data(), rules->data() + rules->size(), left);
    for (; left > 0; --left) {
        const auto written = Take(bytes);
        const auto said = Take(bytes);
        if (!written || !said)
            return std::nullopt;
        job.rules.push_back({std::string(*written), std::string(*said)});
    }
    readers::FrameDecoder frames;
    frames.Add(bytes);
    while (auto frame = frames.Next())
        if (auto* const block = std::get_if<readers::Block>(&*frame))
            job.blocks.push_back(std::move(*block));
    return frames.Wrong() ? std::nullopt : std::optional(std::move(job));
}

} // namespace voxmate::recording
