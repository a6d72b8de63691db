// How an icon's drawing becomes a picture: by the toolkit's part for vectors, or from pictures that the build made of
// it.
#pragma once

#include <QColor>
#include <QImage>
#include <QString>

namespace voxmate::qt
{

/// The drawing `path` (without ".svg"), `pixels` wide and high, with what is drawn in "currentColor" in the colour
/// `ink`. A null image if there is none.
QImage DrawIcon(const QString& path, int pixels, const QColor& ink);

} // namespace voxmate::qt
