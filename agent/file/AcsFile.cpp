#include "agent/file/AcsFile.h"

#include "agent/file/AcsCompression.h"
#include "agent/file/AcsLimits.h"
#include "base/Text.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <span>
#include <system_error>
#include <utility>

namespace voxmate::agent
{

namespace
{

class KeptBytes final : public AcsSource
{
public:
    explicit KeptBytes(std::vector<std::uint8_t> bytes) : bytes_(std::move(bytes)) {}
    std::span<const std::uint8_t> All() const { return bytes_; }
    std::vector<std::uint8_t> Read(std::uint32_t offset, std::uint32_t size) const override
    {
        const auto part = All().subspan(offset, size);
        return {part.begin(), part.end()};
    }

private:
    const std::vector<std::uint8_t> bytes_;
};

class OpenFile final : public AcsSource
{
public:
    explicit OpenFile(const std::filesystem::path& path)
    {
        // What is read is wanted once, and is larger than a buffer.
        in_.rdbuf()->pubsetbuf(nullptr, 0);
        in_.open(path, std::ios::binary);
    }
    bool IsOpen() const { return in_.is_open(); }
    std::vector<std::uint8_t> Read(std::uint32_t offset, std::uint32_t size) const override
    {
        std::vector<std::uint8_t> bytes(size);
        const std::lock_guard lock(mutex_);
        in_.clear();
        if (!in_.seekg(offset) || !in_.read(reinterpret_cast<char*>(bytes.data()), size))
            bytes.clear();
        return bytes;
    }

private:
    mutable std::mutex mutex_;
    mutable std::ifstream in_;
};

} // namespace

std::string GuidText(const Guid& guid)
{
    constexpr std::array<int, 16> order{3, 2, 1, 0, 5, 4, 7, 6, 8, 9, 10, 11, 12, 13, 14, 15};
    constexpr const char* digits = "0123456789ABCDEF";
    std::string text = "{";
    for (std::size_t i = 0; i < order.size(); ++i) {
        if (i == 4 || i == 6 || i == 8 || i == 10)
            text += '-';
        const std::uint8_t byte = guid[static_cast<std::size_t>(order[i])];
        text += digits[byte >> 4];
        text += digits[byte & 15];
    }
    return text + "}";
}

const Overlay* Frame::OverlayFor(int mouth) const
{
    const auto found = std::ranges::find(overlays, mouth, &Overlay::mouth);
    return found == overlays.end() ? nullptr : &*found;
}

const Frame* Animation::FirstDrawn() const
{
    const auto found = std::ranges::find_if(frames, [](const Frame& frame) { return frame.duration > 0; });
    return found == frames.end() ? nullptr : &*found;
}

std::shared_ptr<const AcsFile> AcsFile::Open(const std::string& path, Keep keep)
{
    const std::filesystem::path native(std::u8string(path.begin(), path.end()));
    std::error_code error;
    if (!std::filesystem::is_regular_file(native, error))
        throw AcsError(path, "there is no such file");
    const std::uint64_t size = std::filesystem::file_size(native, error);
    if (error)
        throw AcsError(path, "it cannot be read");
    if (size > MaxFileSize)
        throw AcsError(path, "it is larger than " + std::to_string(MaxFileSize >> 20) + " MB");
    auto source = std::make_unique<OpenFile>(native);
    std::vector<std::uint8_t> bytes = source->Read(0, static_cast<std::uint32_t>(size));
    if (!source->IsOpen() || bytes.size() != size)
        throw AcsError(path, "it cannot be read");
    return keep == Keep::InFile ? Parse(bytes, path, std::move(source)) : Parse(std::move(bytes), path);
}

std::shared_ptr<const AcsFile> AcsFile::Parse(std::vector<std::uint8_t> bytes, const std::string& name)
{
    auto source = std::make_unique<KeptBytes>(std::move(bytes));
    const std::span<const std::uint8_t> all = source->All();
    return Parse(all, name, std::move(source));
}

std::vector<std::uint8_t> AcsFile::Bytes(std::uint32_t offset, std::uint32_t size) const
{
    std::vector<std::uint8_t> bytes = source_->Read(offset, size);
    if (bytes.size() != size)
        throw AcsError(path, "it cannot be read any more");
    return bytes;
}

IndexedImage AcsFile::DecodeImage(std::size_t index) const
{
    const auto fail = [&](const std::string& what) {
        return AcsError(path, "image " + std::to_string(index) + " " + what);
    };
    if (index >= images_.size())
        throw fail("does not exist");
    const StoredImage& stored = images_[index];
    const std::size_t rowSize = RowSize(stored.width);
    const std::size_t fullSize = rowSize * stored.height;
    std::vector<std::uint8_t> rows = Bytes(stored.offset, stored.size);
    if (stored.compressed) {
        try {
            rows = Decompress(rows, fullSize);
        } catch (const CompressionError& error) {
            throw fail(std::string("is damaged, its ") + error.what());
        }
    }
    IndexedImage image{stored.width, stored.height, {}};
    image.pixels.resize(std::size_t{stored.width} * stored.height);
    for (std::size_t y = 0; y < stored.height; ++y) // stored bottom-up
        std::copy_n(rows.begin() + static_cast<std::ptrdiff_t>((stored.height - 1 - y) * rowSize), stored.width,
                    image.pixels.begin() + static_cast<std::ptrdiff_t>(y * stored.width));
    if (palette.size() < 256)
        for (const std::uint8_t pixel : image.pixels)
            if (pixel >= palette.size() && pixel != transparentIndex)
                throw fail("shows colour " + std::to_string(pixel) + ", which does not exist");
    return image;
}

std::vector<std::uint8_t> AcsFile::Sound(std::size_t index) const
{
    if (index >= sounds_.size())
        throw AcsError(path, "sound " + std::to_string(index) + " does not exist");
    return Bytes(sounds_[index].offset, sounds_[index].size);
}

const Animation* AcsFile::FindAnimation(const std::string& name) const
{
    const auto found = std::find_if(animations.begin(), animations.end(),
                                    [&](const Animation& animation) { return EqualNoCase(animation.name, name); });
    return found == animations.end() ? nullptr : &*found;
}

const std::vector<std::string>* AcsFile::FindState(const std::string& name) const
{
    const auto found =
        std::find_if(states.begin(), states.end(), [&](const auto& state) { return EqualNoCase(state.first, name); });
    return found == states.end() ? nullptr : &found->second;
}

namespace
{

void Draw(const AcsFile& file, std::size_t number, int left, int top, Bitmap& canvas)
{
    const IndexedImage image = file.DecodeImage(number);
    const int fromX = std::max(0, -left);
    const int fromY = std::max(0, -top);
    const int toX = std::min<int>(image.width, canvas.width - left);
    const int toY = std::min<int>(image.height, canvas.height - top);
    for (int y = fromY; y < toY; ++y) {
        const std::uint8_t* source = image.pixels.data() + static_cast<std::ptrdiff_t>(y) * image.width;
        const std::size_t row = static_cast<std::size_t>(top + y) * static_cast<std::size_t>(canvas.width);
        for (int x = fromX; x < toX; ++x) {
            if (source[x] == file.transparentIndex)
                continue;
            const Colour colour = file.palette[source[x]];
            canvas.pixels[row + static_cast<std::size_t>(left + x)] =
                0xFF000000u | std::uint32_t{colour.red} << 16 | std::uint32_t{colour.green} << 8 | colour.blue;
        }
    }
}

} // namespace

Bitmap ComposeFrame(const AcsFile& file, const Frame& frame, int mouth)
{
    Bitmap canvas{file.width, file.height, {}};
    canvas.pixels.resize(std::size_t{file.width} * file.height);
    const Overlay* const overlay = frame.OverlayFor(mouth);
    const std::size_t front = overlay && overlay->replaceFront ? 1 : 0;
    for (std::size_t i = frame.images.size(); i > front; --i)
        Draw(file, frame.images[i - 1].image, frame.images[i - 1].x, frame.images[i - 1].y, canvas);
    if (overlay)
        Draw(file, overlay->image, overlay->x, overlay->y, canvas);
    return canvas;
}

} // namespace voxmate::agent
