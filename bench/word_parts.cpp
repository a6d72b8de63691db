// Measures how long it takes to cut a document of a million characters into its spoken parts, without speech.
#include "base/Text.h"
#include "bench/Statistics.h"
#include "modules/Functions.h"

#include <string>

using namespace voxmate;

int main()
{
    std::u32string document;
    while (document.size() < 1'000'000)
        document += U"The old clock in the hall has stopped again, and nobody knows why. ";
    document.resize(1'000'000);
    const auto text = [&document](std::int32_t start, std::int32_t end) {
        return EncodeUtf8(std::u32string_view(document).substr(static_cast<std::size_t>(start),
                                                               static_cast<std::size_t>(end - start)));
    };
    std::vector<double> times;
    std::size_t bytes = 0;
    std::int32_t parts = 0;
    for (int round = 0; round < 25; ++round) {
        const double begin = bench::NowMs();
        WordPart part(static_cast<std::int32_t>(document.size()));
        do {
            part.ExtendToBlank([&text](std::int32_t at) { return Trim(text(at, at + 1)).empty(); });
            bytes += Trim(text(part.Start(), part.End())).size();
            parts = part.Number();
        } while (part.Next());
        times.push_back(bench::NowMs() - begin);
    }
    bench::Report("Cutting 1,000,000 characters into parts", times, "ms", "under 50 ms");
    std::printf("%d parts, %zu bytes a round\n", parts, bytes / times.size());
    return 0;
}
