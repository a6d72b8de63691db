// The program that saves speech as sound files. It is started by Voxmate with a job as its input, so that the engines,
// which have one voice for all of a process, can be heard meanwhile.
#include "recording/Recorder.h"
#include "platform/linux/files/Folders.h"
#include "platform/linux/process/QuietErrors.h"
#include "speech/Engine.h"

#include <csignal>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

int main()
{
    using namespace voxmate;
    // When Voxmate has gone, the news that cannot be told ends the recording, with nothing left of it.
    std::signal(SIGPIPE, SIG_IGN); // NOLINT(cert-err33-c): it cannot fail
    // Debian's ONNX Runtime tells of its own parts twice, in more than a thousand lines.
    const linux_platform::QuietErrors quiet(std::cerr, "Schema error: ");
    const std::string bytes{std::istreambuf_iterator<char>(std::cin), {}};
    const std::optional<recording::Job> job = recording::DecodeJob(bytes);
    if (!job)
        return EXIT_FAILURE;
    std::vector<std::unique_ptr<speech::Engine>> engines;
    engines.push_back(speech::CreateEspeakEngine());
    engines.push_back(speech::CreateFliteEngine());
    engines.push_back(speech::CreateFlitevoxEngine(job->addedVoices));
    const auto leaveOut = [](const std::string& why) { std::cerr << "voxmate-recorder: " << why << '\n'; };
    bool failed = false;
    const auto voiceFailed = [&failed, leaveOut](const std::string& why) {
        leaveOut(why);
        failed = true;
    };
    engines.push_back(speech::CreatePiperEngine(job->addedVoices, linux_platform::DataFolder(),
                                                linux_platform::HomeFolder(), leaveOut, voiceFailed));
    speech::VoiceCatalog voices(std::move(engines), job->language, 1000, [&job] { return job->voiceName; });
    try {
        recording::Record(
            *job, voices, [](const std::string& path) { return std::make_unique<readers::Reading>(path); },
            [&failed](recording::News news) {
                news.otherVoice = failed && news.kind == recording::News::Kind::Done;
                return bool(std::cout << recording::EncodeNews(news) << std::flush);
            });
    } catch (const std::exception&) {
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}
