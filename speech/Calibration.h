// Maps the pitch and speed that are heard to the engines' own settings. The tables were measured with the
// speech_calibration program (bench/), which prints them; nothing in them is guessed.
#pragma once

#include <algorithm>
#include <cstddef>
#include <span>

namespace voxmate::speech
{

/// One measured point: an engine set to `setting` is heard as `heard` (hertz or words per minute).
struct CalibrationPoint {
    double heard;
    double setting;
};

/// The setting that comes nearest to a wanted pitch or speed, and how far it falls short.
struct Setting {
    double value;
    double remainder; ///< wanted / reached value; 1 within the engine's range
};

/// Interpolates the setting for `heard` between the measured points, which must be sorted by `heard`. Outside them it
/// gives the nearest end point's setting and the remainder.
inline Setting SettingFor(std::span<const CalibrationPoint> points, double heard)
{
    if (heard <= points.front().heard)
        return {points.front().setting, heard / points.front().heard};
    if (heard >= points.back().heard)
        return {points.back().setting, heard / points.back().heard};
    std::size_t above = 1;
    while (points[above].heard < heard)
        ++above;
    const CalibrationPoint& a = points[above - 1];
    const CalibrationPoint& b = points[above];
    return {a.setting + (b.setting - a.setting) * (heard - a.heard) / (b.heard - a.heard), 1};
}

} // namespace voxmate::speech
