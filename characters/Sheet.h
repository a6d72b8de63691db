// Contact sheets that show all frames of a built character file side by side.
#pragma once

#include <QImage>
#include <QString>

namespace voxmate::characters
{

/// Draws the frames of one animation, or of all of them with the mouths if `animation` is empty, on a background
/// ("light", "dark" or "checkered"), enlarged `scale` times. Raises agent::AcsError, or SourceError for an unknown
/// name.
QImage DrawSheet(const QString& acsFile, const QString& background, int scale, const QString& animation);

/// Draws a few pictures of every animation in the order of play, at half size, as an overview of the character. Raises
/// agent::AcsError.
QImage DrawContactSheet(const QString& acsFile);

} // namespace voxmate::characters
