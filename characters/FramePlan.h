// The frames of one animation before they get their numbers in the file: how long each is shown and where it goes next.
#pragma once

#include "Source.h"

#include <QImage>

#include <functional>

namespace voxmate::characters
{

struct PlannedFrame {
    Pose pose;
    QImage picture;
    int duration = 0; ///< 1/100 s; 0: never drawn, has no pose or picture
    int exit = -1;    ///< all indices refer to the list the frame is in
    std::vector<agent::Branch> branches;
    int sound = -1;
    bool speaks = false;
};

/// The functions of Drawing that a plan needs.
struct Painter {
    std::function<QImage(const Pose&)> render;
    std::function<double(const Pose&, const Pose&)> distance;
};

/// The animation's frames in the order of the file: from the start, then the frames of the way back, then the frame the
/// animation ends in. Raises SourceError if the source's `hold` cannot be laid out so.
std::vector<PlannedFrame> PlanFrames(const SourceAnimation& animation, const Painter& painter);

} // namespace voxmate::characters
