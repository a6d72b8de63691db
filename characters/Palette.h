// The one palette of a character: the 255 colours that stand best for all those its frames are drawn with.
#pragma once

#include "agent/file/AcsFile.h"

#include <QImage>

#include <unordered_map>

namespace voxmate::characters
{

/// Index of the transparent colour in every palette made here.
inline constexpr std::uint8_t TransparentIndex = 0;

class Palette
{
public:
    /// Counts the colours of a frame; to be called for every frame before Choose.
    void Count(const QImage& frame);
    /// Chooses the colours: the same for the same frames, whatever the machine.
    void Choose();

    const std::vector<agent::Colour>& Colours() const { return colours_; }
    /// A frame in palette indices, row by row from the top; TransparentIndex where it shows nothing.
    std::vector<std::uint8_t> Indices(const QImage& frame);
    /// Mean distance of a pixel's colour from the one that stands for it, in steps of 1/255.
    double MeanError() const;

private:
    std::uint8_t Nearest(QRgb colour);

    std::unordered_map<QRgb, std::uint32_t> counts_;
    std::unordered_map<QRgb, std::uint8_t> nearest_;
    std::vector<agent::Colour> colours_;
};

} // namespace voxmate::characters
