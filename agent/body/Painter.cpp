#include "agent/body/Painter.h"

#include <algorithm>
#include <utility>

namespace voxmate::agent
{

Painter::Painter(const AcsFile& file, CharacterWindow& window) : file_(file), window_(window)
{
    window_.Ready = [this] {
        if (const auto next = std::exchange(waiting_, std::nullopt))
            Show(*next->frame, next->mouth, next->size);
    };
}

Painter::Key Painter::KeyOf(const Frame& frame, int mouth)
{
    const Overlay* const overlay = frame.OverlayFor(mouth);
    const std::size_t front = overlay && overlay->replaceFront ? 1 : 0;
    Key key;
    key.reserve(frame.images.size() * 3 + 5);
    for (std::size_t i = front; i < frame.images.size(); ++i) {
        const FrameImage& image = frame.images[i];
        key.push_back(static_cast<std::int32_t>(image.image));
        key.push_back(image.x);
        key.push_back(image.y);
    }
    if (overlay) {
        // An overlay's part of the key ends with a number that no image's vertical position has, so that the two cannot
        // be mistaken for each other.
        constexpr std::int32_t overlayMark = 1 << 20;
        key.insert(key.end(), {overlay->image, overlay->x, overlay->y, overlayMark});
    }
    return key;
}

/// Every third number of a key, beginning with the first, is the number of an image.
bool Painter::ShowsDamaged(const Key& key) const
{
    for (std::size_t i = 0; i + 2 < key.size(); i += 3)
        if (const auto image = static_cast<std::size_t>(key[i]); image < damaged_.size() && damaged_[image])
            return true;
    return false;
}

std::shared_ptr<const Bitmap> Painter::Compose(const Frame& frame, int mouth, const Key& key)
{
    const auto known = index_.find(key);
    if (known != index_.end()) {
        pictures_.splice(pictures_.begin(), pictures_, known->second);
        return pictures_.front().bitmap;
    }
    if (ShowsDamaged(key))
        return nullptr;
    try {
        pictures_.push_front({key, std::make_shared<const Bitmap>(ComposeFrame(file_, frame, mouth))});
    } catch (const AcsError&) {
        return nullptr;
    }
    index_[key] = pictures_.begin();
    used_ += pictures_.front().bitmap->pixels.size() * sizeof(std::uint32_t);
    while (used_ > MemoryBound && pictures_.size() > 1) {
        used_ -= pictures_.back().bitmap->pixels.size() * sizeof(std::uint32_t);
        index_.erase(pictures_.back().key);
        pictures_.pop_back();
    }
    return pictures_.front().bitmap;
}

void Painter::Forget()
{
    index_.clear();
    pictures_.clear();
    used_ = 0;
}

void Painter::Show(const Frame& frame, int mouth, Size size)
{
    if (window_.Busy()) {
        waiting_ = Wanted{&frame, mouth, size};
        return;
    }
    waiting_.reset();
    if (Draw(frame, mouth, size) || (mouth >= 0 && Draw(frame, -1, size)))
        return;
    if (shown_.bitmap && size != shownSize_) {
        window_.SetFrame(shown_, size);
        shownSize_ = size;
    }
}

/// Shows a frame; returns false when one of its images cannot be decoded.
bool Painter::Draw(const Frame& frame, int mouth, Size size)
{
    Key key = KeyOf(frame, mouth);
    if (shown_.bitmap && key == shown_.key && size == shownSize_)
        return true;
    std::shared_ptr<const Bitmap> bitmap = Compose(frame, mouth, key);
    if (!bitmap)
        return false;
    shown_ = {std::move(key), std::move(bitmap)};
    shownSize_ = size;
    window_.SetFrame(shown_, size);
    return true;
}

Rect Painter::Outline(const Frame& frame)
{
    const Key key = KeyOf(frame, -1);
    if (const auto known = outlines_.find(key); known != outlines_.end())
        return known->second;
    // These are poses in which a character speaks; no real file has so many.
    constexpr std::size_t most = 1000;
    if (outlines_.size() == most)
        outlines_.clear();
    return outlines_[key] = Measure(frame, key);
}

Rect Painter::Measure(const Frame& frame, const Key& key)
{
    const std::shared_ptr<const Bitmap> bitmap = Compose(frame, -1, key);
    if (!bitmap)
        return {};
    int left = bitmap->width;
    int top = bitmap->height;
    int right = 0;
    int bottom = 0;
    const std::uint32_t* pixel = bitmap->pixels.data();
    for (int y = 0; y < bitmap->height; ++y)
        for (int x = 0; x < bitmap->width; ++x)
            if (*pixel++ >> 24) {
                left = std::min(left, x);
                right = std::max(right, x + 1);
                top = std::min(top, y);
                bottom = y + 1;
            }
    if (right <= left)
        return {};
    return {left, top, right - left, bottom - top};
}

} // namespace voxmate::agent
