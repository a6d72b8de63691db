// Measures the costs of a character file: opening one of 5 MB with 1000 images, decoding its images compared with
// zlib's inflate of the same pixels, and composing frames.
//
//   character_file FILE.acs...   builds such a file from images of these files
#include "agent/file/AcsFile.h"
#include "agent/file/AcsWriter.h"
#include "bench/Statistics.h"

#include <zlib.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>

using namespace voxmate;
using namespace voxmate::agent;
using namespace voxmate::bench;

namespace
{

constexpr std::size_t Images = 1000;
constexpr std::uint64_t Bytes = 5'000'000;
constexpr int Rounds = 15;

struct Source {
    const AcsFile* file;
    std::size_t image;
    std::uint32_t size;
};

// Sorts the images by size and chooses the run of 1000 whose total is nearest to 5 MB.
std::vector<Source> Chosen(const std::vector<std::shared_ptr<const AcsFile>>& cast)
{
    std::vector<Source> all;
    for (const auto& file : cast)
        for (std::size_t i = 0; i < file->ImageCount(); ++i)
            all.push_back({file.get(), i, file->Stored(i).size});
    if (all.size() < Images)
        throw std::runtime_error("these files have only " + std::to_string(all.size()) + " images");
    std::sort(all.begin(), all.end(), [](const Source& a, const Source& b) { return a.size < b.size; });
    std::uint64_t sum = 0;
    std::size_t best = 0;
    std::uint64_t nearest = UINT64_MAX;
    for (std::size_t i = 0; i < all.size(); ++i) {
        sum += all[i].size;
        if (i >= Images)
            sum -= all[i - Images].size;
        const std::uint64_t off = sum > Bytes ? sum - Bytes : Bytes - sum;
        if (i + 1 >= Images && off < nearest) {
            nearest = off;
            best = i + 1 - Images;
        }
    }
    const auto first = all.begin() + static_cast<std::ptrdiff_t>(best);
    return {first, first + Images};
}

// The rows of an image as the file stores them.
std::vector<std::uint8_t> Rows(const IndexedImage& image)
{
    const std::size_t rowSize = (std::size_t{image.width} + 3) / 4 * 4;
    std::vector<std::uint8_t> rows(rowSize * image.height);
    for (std::size_t y = 0; y < image.height; ++y)
        std::copy_n(image.pixels.begin() + static_cast<std::ptrdiff_t>(y * image.width), image.width,
                    rows.begin() + static_cast<std::ptrdiff_t>((image.height - 1 - y) * rowSize));
    return rows;
}

std::vector<std::uint8_t> Deflated(const std::vector<std::uint8_t>& rows)
{
    uLongf size = compressBound(rows.size());
    std::vector<std::uint8_t> packed(size);
    if (compress2(packed.data(), &size, rows.data(), rows.size(), Z_DEFAULT_COMPRESSION) != Z_OK)
        throw std::runtime_error("zlib does not compress");
    packed.resize(size);
    return packed;
}

template <class Action>
std::vector<double> Timed(Action&& action)
{
    std::vector<double> times;
    for (int round = 0; round < Rounds; ++round) {
        const double begin = NowMs();
        action();
        times.push_back(NowMs() - begin);
    }
    return times;
}

void Run(int count, char** paths)
{
    std::vector<std::shared_ptr<const AcsFile>> cast;
    cast.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i)
        cast.push_back(AcsFile::Open(paths[i]));
    AcsDescription d;
    static_cast<AcsContent&>(d) = *cast.at(0);
    d.animations.clear();
    d.states.clear();
    std::vector<std::vector<std::uint8_t>> deflated;
    std::vector<std::size_t> sizes;
    std::uint64_t pixelBytes = 0;
    std::uint64_t deflatedBytes = 0;
    for (const Source& source : Chosen(cast)) {
        const std::size_t number = d.images.size();
        d.images.push_back(source.file->DecodeImage(source.image));
        const std::vector<std::uint8_t> rows = Rows(d.images.back());
        sizes.push_back(rows.size());
        pixelBytes += rows.size();
        deflated.push_back(Deflated(rows));
        deflatedBytes += deflated.back().size();
        if (number % 20 == 0)
            d.animations.push_back({"Animation" + std::to_string(number), Transition::ExitBranches, "", {}});
        Frame& frame = d.animations.back().frames.emplace_back();
        frame.duration = 6;
        frame.images = {{static_cast<std::uint32_t>(number), 0, 0}};
    }
    const std::string path = (std::filesystem::temp_directory_path() / "voxmate_bench.acs").string();
    const std::vector<std::uint8_t> bytes = WriteAcs(d);
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    std::printf("A character of %zu images in %.2f MB (%.1f MB of pixels; zlib packs them into %.2f MB)\n",
                d.images.size(), static_cast<double>(bytes.size()) / 1e6, static_cast<double>(pixelBytes) / 1e6,
                static_cast<double>(deflatedBytes) / 1e6);

    Report("Opening it (from the cache), nothing decoded", Timed([&] { AcsFile::Open(path); }), "ms", "under 10 ms");
    const auto file = AcsFile::Open(path);
    std::filesystem::remove(path);
    std::uint64_t sum = 0; // uses the results, so that the compiler cannot remove the work
    // The two alternate, so that whatever slows the machine slows both.
    std::vector<double> ours;
    std::vector<double> zlib;
    std::vector<std::uint8_t> rows;
    for (int round = 0; round < Rounds; ++round) {
        double begin = NowMs();
        for (std::size_t i = 0; i < file->ImageCount(); ++i)
            sum += file->DecodeImage(i).pixels.size();
        ours.push_back(NowMs() - begin);
        begin = NowMs();
        for (std::size_t i = 0; i < deflated.size(); ++i) {
            rows.resize(sizes[i]);
            uLongf size = rows.size();
            if (uncompress(rows.data(), &size, deflated[i].data(), deflated[i].size()) != Z_OK)
                throw std::runtime_error("zlib does not inflate");
            sum += size;
        }
        zlib.push_back(NowMs() - begin);
    }
    Report("Decoding all its images", ours, "ms", "at least as fast as zlib");
    Report("zlib's inflate of the same pixels", zlib, "ms");
    std::printf("Decoding takes %.2f times as long as zlib\n", Median(ours) / Median(zlib));

    std::vector<double> composed;
    for (const auto& character : cast)
        for (const Animation& animation : character->animations)
            for (const Frame& frame : animation.frames) {
                if (frame.duration == 0)
                    continue;
                const double begin = NowMs();
                sum += ComposeFrame(*character, frame, frame.HasMouths() ? MouthMedium : -1).pixels.size();
                composed.push_back(NowMs() - begin);
            }
    Report("Composing a frame of the shipped characters", composed, "ms");
    std::printf("(%llu)\n", static_cast<unsigned long long>(sum));
}

} // namespace

int main(int argc, char** argv)
{
    try {
        if (argc < 2)
            throw std::runtime_error("usage: character_file FILE.acs...");
        Run(argc - 1, argv + 1);
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "character_file: %s\n", error.what());
        return 1;
    }
}
