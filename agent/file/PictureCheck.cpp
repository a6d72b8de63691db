#include "agent/file/PictureCheck.h"

#include <map>
#include <tuple>

namespace voxmate::agent
{

PictureFaults CheckPictures(const AcsFile& file, const std::stop_token& stop)
{
    PictureFaults faults;
    faults.damaged.resize(file.ImageCount());
    std::map<std::tuple<std::uint32_t, std::uint32_t, std::uint16_t, std::uint16_t, bool>, bool> known;
    for (std::size_t i = 0; i < file.ImageCount() && !stop.stop_requested(); ++i) {
        const StoredImage& stored = file.Stored(i);
        const auto [same, added] =
            known.try_emplace({stored.offset, stored.size, stored.width, stored.height, stored.compressed}, false);
        if (added) {
            try {
                file.DecodeImage(i);
            } catch (const AcsError& error) {
                same->second = true;
                if (faults.first.empty())
                    faults.first = error.what();
            }
        }
        faults.damaged[i] = same->second;
    }
    return faults;
}

} // namespace voxmate::agent
