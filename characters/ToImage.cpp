#include "ToImage.h"

#include <algorithm>

namespace voxmate::characters
{

QImage ToImage(const Bitmap& bitmap)
{
    QImage image(bitmap.width, bitmap.height, QImage::Format_ARGB32);
    for (int y = 0; y < bitmap.height; ++y)
        std::copy_n(bitmap.pixels.data() + static_cast<std::ptrdiff_t>(y) * bitmap.width, bitmap.width,
                    reinterpret_cast<QRgb*>(image.scanLine(y)));
    return image;
}

} // namespace voxmate::characters
