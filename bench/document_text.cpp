// Reads a document as the program does, and prints its blocks or, with --time, how long that took:
//
//     document_text [--time] FILE
//
// A block's line begins with its kind, level, language and label, parted by bars. --time prints the milliseconds to the
// first block and to the last, the number of words, and the reader's largest memory in kilobytes.
#include "readers/Reading.h"

#include <array>
#include <chrono>
#include <cstdio>
#include <optional>
#include <string_view>
#include <sys/resource.h>

using namespace voxmate::readers;

namespace
{

std::size_t Words(std::string_view text)
{
    std::size_t words = 0;
    bool blank = true;
    for (const char c : text) {
        const bool now = c == ' ' || c == '\t' || c == '\n';
        words += blank && !now ? 1 : 0;
        blank = now;
    }
    return words;
}

void Print(const Block& block)
{
    constexpr std::array<const char*, 7> kinds{"heading", "paragraph", "item", "row", "footnote", "page", "chapter"};
    std::string text;
    for (const char c : block.text)
        text += c == '\n' ? "\\n" : c == '\t' ? "\\t" : std::string(1, c);
    std::printf("%s|%d|%s|%s|%s\n", kinds.at(static_cast<std::size_t>(block.kind)), block.level, block.language.c_str(),
                block.label.c_str(), text.c_str());
}

} // namespace

int main(int argc, char** argv)
{
    const bool time = argc == 3 && std::string_view(argv[1]) == "--time";
    if (argc != (time ? 3 : 2)) {
        std::fprintf(stderr, "usage: %s [--time] FILE\n", argv[0]);
        return 2;
    }
    const auto start = std::chrono::steady_clock::now();
    const auto elapsed = [&] {
        return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
    };
    Reading reading(argv[argc - 1]);
    std::optional<double> first;
    std::size_t words = 0;
    while (!reading.AtEnd()) {
        const std::optional<Block> block = reading.Next(std::chrono::milliseconds(1000));
        if (!block)
            continue;
        if (!first && !block->text.empty())
            first = elapsed();
        words += Words(block->text);
        if (!time)
            Print(*block);
    }
    if (time) {
        rusage usage{};
        getrusage(RUSAGE_CHILDREN, &usage);
        std::printf("%.1f %.1f %zu %ld\n", first.value_or(0), elapsed(), words, usage.ru_maxrss);
    }
    if (reading.Outcome() == Refusal::None)
        return 0;
    std::fprintf(stderr, "%s\n", reading.Sentence().c_str());
    return 1;
}
