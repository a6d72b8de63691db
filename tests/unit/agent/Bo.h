// A small character, whose images can be told apart.
#pragma once

#include "agent/file/AcsWriter.h"

#include <cstdint>
#include <utility>
#include <vector>

namespace voxmate::agent::test
{

inline constexpr std::uint16_t kWidth = 40;
inline constexpr std::uint16_t kHeight = 60;
/// Mouth m of a frame is picture kMouths + m.
inline constexpr int kMouths = 50;

/// A frame that shows picture `number` for `duration` hundredths of a second.
inline Frame Picture(std::uint32_t number, std::uint16_t duration = 10, std::int16_t exitFrame = -1,
                     std::vector<Branch> branches = {})
{
    Frame frame;
    frame.images = {{number, 0, 0}};
    frame.duration = duration;
    frame.exitFrame = exitFrame;
    frame.branches = std::move(branches);
    return frame;
}

inline Frame WithMouths(Frame frame)
{
    for (std::uint8_t mouth = 0; mouth < MouthCount; ++mouth)
        frame.overlays.push_back({mouth, true, static_cast<std::uint16_t>(kMouths + mouth), 0, 0, kWidth, kHeight, {}});
    return frame;
}

/// A character whose image n fills the whole frame with colour n.
///
/// Its animations, by the pictures they show: RestPose 1 (mouths), Show 2 3, Hide 4 5, Wave 6 7 8, Point 9 10 (mouths;
/// returns by PointReturn 11), Search 12 13 in a loop with an exit to 14, Bow 16 without mouths, Look (idle) 20, 21 for
/// 3 s with an exit to 22, Chime 23 with a sound, Nothing without frames.
inline AcsDescription Bo()
{
    AcsDescription d;
    d.compress = false;
    d.width = kWidth;
    d.height = kHeight;
    for (std::uint8_t i = 0; i < 64; ++i) {
        d.palette.push_back({i, 0, 0});
        d.images.push_back({kWidth, kHeight, std::vector<std::uint8_t>(kWidth * kHeight, i)});
    }
    d.transparentIndex = 0;
    d.animations = {
        {"RestPose", Transition::None, "", {WithMouths(Picture(1))}},
        {"Show", Transition::None, "", {Picture(2), Picture(3)}},
        {"Hide", Transition::None, "", {Picture(4), Picture(5)}},
        {"Wave", Transition::None, "", {Picture(6), Picture(7), Picture(8)}},
        {"Point", Transition::ReturnAnimation, "PointReturn", {Picture(9), WithMouths(Picture(10))}},
        {"PointReturn", Transition::None, "", {Picture(11)}},
        {"Search", Transition::ExitBranches, "", {Picture(12, 10, 2), Picture(13, 10, 2, {{0, 100}}), Picture(14)}},
        {"Bow", Transition::None, "", {Picture(16)}},
        {"Look", Transition::ExitBranches, "", {Picture(20, 10, 2), Picture(21, 300, 2), Picture(22)}},
        {"Chime", Transition::None, "", {Picture(23)}},
        {"Nothing", Transition::None, "", {}},
    };
    d.animations[9].frames[0].sound = 0;
    d.sounds = {{'R', 'I', 'F', 'F', 1, 2, 3}};
    d.states = {{"Showing", {"Show"}}, {"Hiding", {"Hide"}}};
    return d;
}

} // namespace voxmate::agent::test
