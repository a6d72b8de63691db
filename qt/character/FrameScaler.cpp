#include "qt/character/FrameScaler.h"

#include "qt/character/Background.h"
#include "qt/character/Scaling.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace voxmate::qt
{

namespace
{

/// A picture in its own size. It stays in its own memory: a copy for each frame would cost more than all else that
/// happens to it. Its pixels are drawn or not, so that premultiplied they are the same.
QImage InItsOwnSize(const std::shared_ptr<const Bitmap>& bitmap)
{
    return {reinterpret_cast<const uchar*>(bitmap->pixels.data()),
            bitmap->width,
            bitmap->height,
            qsizetype{bitmap->width} * qsizetype{sizeof(std::uint32_t)},
            QImage::Format_ARGB32_Premultiplied,
            [](void* kept) { delete static_cast<std::shared_ptr<const Bitmap>*>(kept); },
            new std::shared_ptr<const Bitmap>(bitmap)};
}

} // namespace

FrameScaler::FrameScaler(std::function<void()> ready) : FrameScaler(std::move(ready), Scaled) {}

FrameScaler::FrameScaler(std::function<void()> ready, Scale scale) : ready_(std::move(ready)), scale_(std::move(scale))
{
}

const ShapedImage* FrameScaler::Get(const agent::Picture& picture, QSize size, bool cutOut)
{
    const auto known = std::find_if(entries_.begin(), entries_.end(), [&](const Entry& entry) {
        return entry.size == size && entry.cutOut == cutOut && entry.key == picture.key;
    });
    if (known != entries_.end()) {
        entries_.splice(entries_.begin(), entries_, known);
        return &entries_.front().image;
    }
    if (work_)
        return nullptr;
    const bool scaled = size != QSize(picture.bitmap->width, picture.bitmap->height);
    const auto entry = std::make_shared<Entry>(Entry{picture.key, size, cutOut, scaled, {}});
    const auto make = [entry, scale = scale_, bitmap = picture.bitmap](const std::stop_token& stop) {
        if (!entry->scaled) {
            QImage image = InItsOwnSize(bitmap);
            QRegion shape = ShapeOf(image);
            entry->image = {std::move(image), std::move(shape)};
            return;
        }
        entry->image = Shaped(scale(*bitmap, entry->size, stop), entry->cutOut);
    };
    if (std::int64_t{size.width()} * size.height() <= LargestAtOnce) {
        make({});
        return Remember(std::move(*entry));
    }
    work_ = std::make_unique<Background>(make, [this, entry] {
        Remember(std::move(*entry));
        work_.reset();
        ready_();
    });
    return nullptr;
}

const ShapedImage* FrameScaler::Remember(Entry entry)
{
    const auto bytes = [](const Entry& one) { return std::int64_t{one.image.image.sizeInBytes()}; };
    // The picture used last is no longer shown; it is kept only if it had to be scaled.
    if (!entries_.empty() && !entries_.front().scaled) {
        used_ -= bytes(entries_.front());
        entries_.pop_front();
    }
    used_ += bytes(entry);
    entries_.push_front(std::move(entry));
    while (entries_.size() > 1 && used_ > MemoryBound) {
        used_ -= bytes(entries_.back());
        entries_.pop_back();
    }
    return &entries_.front().image;
}

} // namespace voxmate::qt
