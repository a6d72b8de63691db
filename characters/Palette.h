// The single palette of a character: the 255 colours that best represent all the colours of its frames.
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
    /// Counts the colours of a frame. Must be called for every frame before Choose.
    void Count(const QImage& frame);
    /// Chooses the colours. The result for the same frames is the same on every machine.
    void Choose();

    const std::vector<agent::Colour>& Colours() const { return colours_; }
    /// A frame as palette indices, row by row from the top; TransparentIndex where it is empty.
    std::vector<std::uint8_t> Indices(const QImage& frame);
    /// Mean distance between a pixel's colour and its palette colour, in steps of 1/255.
    double MeanError() const;

private:
    std::uint8_t Nearest(QRgb colour);

    std::unordered_map<QRgb, std::uint32_t> counts_;
    std::unordered_map<QRgb, std::uint8_t> nearest_;
    std::vector<agent::Colour> colours_;
};

} // namespace voxmate::characters
