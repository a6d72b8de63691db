// Prints what the word processor's automation returns for a document, and how long the program waits for it.
//
//   word_text [--limit MS] [--stop MS] [--ready MS] [--ahead MS | --expect MS] FILE
//
// The first line gives the length in characters, the time to open the document, the longest time between two calls that
// keep the program responsive, and the time to take the whole text in parts of 1000 characters; the text follows.
// --limit sets the time a conversion may take; --stop aborts the conversion after that time. --ahead prepares the word
// processor that long before the document is opened, --expect also names the document then; --ready sets the time after
// which a prepared one that is not used is ended. All times are in milliseconds.
#include "base/RuntimeError.h"
#include "platform/linux/word/LibreOfficeWord.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <memory>
#include <string>
#include <thread>
#include <utility>

using namespace voxmate;
using namespace voxmate::linux_platform;

namespace
{

using Clock = std::chrono::steady_clock;

double Milliseconds(Clock::duration time)
{
    return std::chrono::duration<double, std::milli>(time).count();
}

} // namespace

int main(int argc, char** argv)
{
    using std::chrono::milliseconds;
    std::map<std::string, milliseconds> times{{"--limit", LibreOfficeWord::DefaultTimeLimit},
                                              {"--stop", std::chrono::hours(1)},
                                              {"--ready", LibreOfficeWord::DefaultReadyTime},
                                              {"--ahead", {}},
                                              {"--expect", {}}};
    int at = 1;
    for (; at + 2 < argc && times.contains(argv[at]); at += 2)
        times[argv[at]] = milliseconds(std::atol(argv[at + 1]));
    if (at + 1 != argc) {
        std::fputs("word_text [--limit MS] [--stop MS] [--ready MS] [--ahead MS | --expect MS] FILE\n", stderr);
        return 2;
    }

    LibreOfficeWord automation(LibreOfficeWord::Folders(), times["--limit"], times["--ready"]);
    std::unique_ptr<WordPreparation> preparation;
    if (times["--ahead"].count() > 0 || times["--expect"].count() > 0)
        preparation = automation.Prepare();
    if (times["--expect"].count() > 0 && preparation)
        preparation->Expect(argv[at]);
    std::this_thread::sleep_for(times["--ahead"] + times["--expect"]);

    const Clock::time_point start = Clock::now();
    Clock::time_point last = start;
    Clock::duration pause{};
    const auto goOn = [&] {
        const Clock::time_point now = Clock::now();
        pause = std::max(pause, now - std::exchange(last, now));
        return now - start < times.at("--stop");
    };
    try {
        const std::unique_ptr<WordApplication> word = automation.CreateWord();
        word->SetVisible(false);
        word->Open(argv[at], goOn);
        const Clock::time_point opened = Clock::now();
        const std::int32_t length = word->RangeEnd();
        std::string text;
        for (std::int32_t from = 0; from < length; from += 1000)
            text += word->RangeText(from, std::min(from + 1000, length));
        const Clock::time_point taken = Clock::now();
        word->Close();
        word->Quit();
        std::printf("%d characters, opened in %.0f ms, longest pause %.1f ms, taken in %.2f ms\n", length,
                    Milliseconds(opened - start), Milliseconds(std::max(pause, opened - last)),
                    Milliseconds(taken - opened));
        std::fwrite(text.data(), 1, text.size(), stdout);
        return 0;
    } catch (const RuntimeError& error) {
        std::printf("error %d %s after %.0f ms\n", error.Number, error.what(), Milliseconds(Clock::now() - start));
        return 1;
    }
}
