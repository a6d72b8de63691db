// Converts a composed frame to a QImage.
#pragma once

#include "base/Geometry.h"

#include <QImage>

namespace voxmate::characters
{

/// A copy of the bitmap's pixels, not premultiplied.
QImage ToImage(const Bitmap& bitmap);

} // namespace voxmate::characters
