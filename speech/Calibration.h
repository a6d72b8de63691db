// What the engines' own settings are heard as. The tables were measured by the speech_calibration program (bench/),
// which prints them; nothing in them is guessed.
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

/// The setting that is heard as `heard`, and how far the engine falls short of it.
struct Setting {
    double value;
    double remainder; ///< heard wanted / heard given: 1 within the engine's range
};

/// Finds the setting between the measured points (rising in `heard`); outside them the nearest end, with the remainder.
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
