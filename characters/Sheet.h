// Contact sheets: all frames of a built character file side by side, to look at.
#pragma once

#include <QImage>
#include <QString>

namespace voxmate::characters
{

/// Draws the frames of one animation, or of all of them and the mouths when `animation` is empty, on a background
/// ("light", "dark" or "checkered"), each `scale` times as large. Raises agent::AcsError, or SourceError for a name not
/// known.
QImage DrawSheet(const QString& acsFile, const QString& background, int scale, const QString& animation);

/// Draws some pictures of every animation, as it plays, at half their size: what the character can do at a glance.
/// Raises agent::AcsError.
QImage DrawContactSheet(const QString& acsFile);

} // namespace voxmate::characters
