// Feeds every file of a folder to a fuzz target, in any build and without a fuzzer, so that faults once found stay
// mended.
#include "fuzz.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s FOLDER\n", argv[0]);
        return 2;
    }
    std::error_code error;
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(argv[1], error))
        if (entry.is_regular_file())
            files.push_back(entry.path());
    if (files.empty()) {
        std::fprintf(stderr, "There is no input in %s.\n", argv[1]);
        return 1;
    }
    std::ranges::sort(files);
    for (const std::filesystem::path& path : files) {
        std::ifstream in(path, std::ios::binary);
        const std::vector<char> bytes{std::istreambuf_iterator<char>(in), {}};
        if (!in) {
            std::fprintf(stderr, "%s cannot be read.\n", path.c_str());
            return 1;
        }
        // The name is printed first, because a target that fails does not print it.
        std::printf("%s\n", path.filename().c_str());
        std::fflush(stdout);
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    }
    std::printf("%zu inputs, every promise kept\n", files.size());
    return 0;
}
