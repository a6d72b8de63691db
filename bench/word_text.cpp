// Prints what the word processor's automation returns for a document, and how long the program waits for it.
//
//   word_text [--limit MILLISECONDS] [--stop MILLISECONDS] FILE
//
// The first line gives the length in characters, the time to open the document, the longest time between two calls that
// keep the program responsive, and the time to take the whole text in parts of 1000 characters; the text follows.
// --limit sets the time a conversion may take; --stop aborts the conversion after that time.
#include "base/RuntimeError.h"
#include "platform/linux/word/LibreOfficeWord.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
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
    std::chrono::milliseconds limit = LibreOfficeWord::DefaultTimeLimit;
    std::chrono::milliseconds stop = std::chrono::hours(1);
    int at = 1;
    for (; at + 2 < argc; at += 2)
        (std::string(argv[at]) == "--limit" ? limit : stop) = std::chrono::milliseconds(std::atol(argv[at + 1]));
    if (at + 1 != argc) {
        std::fputs("word_text [--limit MILLISECONDS] [--stop MILLISECONDS] FILE\n", stderr);
        return 2;
    }

    const Clock::time_point start = Clock::now();
    Clock::time_point last = start;
    Clock::duration pause{};
    const auto goOn = [&] {
        const Clock::time_point now = Clock::now();
        pause = std::max(pause, now - std::exchange(last, now));
        return now - start < stop;
    };
    try {
        const std::unique_ptr<WordApplication> word = LibreOfficeWord(LibreOfficeWord::Folders(), limit).CreateWord();
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
