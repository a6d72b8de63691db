// The nearest place where a character covers nothing that must stay visible.
#pragma once

#include "platform/Agent.h"

#include <functional>
#include <optional>
#include <span>

namespace voxmate
{

/// Whether two rectangles have a pixel in common.
bool Overlap(const Rect& a, const Rect& b);

/// The upper left corner that takes the window of a character from `from` the shortest way to where it is wholly within
/// `area` and its figure keeps FreeGap pixels from all of `taken`. So does its balloon, which `balloonAt` gives for a
/// corner of the window, if there is one. Nothing when there is no such place.
std::optional<Point> NearestFree(const CharacterPlace& from, const Rect& area, std::span<const Rect> taken,
                                 const std::function<std::optional<Rect>(Point)>& balloonAt = nullptr);

inline constexpr int FreeGap = 8;

} // namespace voxmate
