// A composed frame as Qt's kind of picture.
#pragma once

#include "base/Geometry.h"

#include <QImage>

namespace voxmate::characters
{

/// The bitmap's pixels, not premultiplied, in a picture of its own.
QImage ToImage(const Bitmap& bitmap);

} // namespace voxmate::characters
