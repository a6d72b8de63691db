// The frames of one animation before they are numbered into a file: how long each stands and where it goes on.
#pragma once

#include "Source.h"

#include <QImage>

#include <functional>

namespace voxmate::characters
{

struct PlannedFrame {
    Pose pose;
    QImage picture;
    int duration = 0; ///< 1/100 s; 0: never drawn, without pose and picture
    int exit = -1;    ///< all indices are into the same list
    std::vector<agent::Branch> branches;
    int sound = -1;
    bool speaks = false;
};

/// What a plan needs of the drawing; Drawing has both.
struct Painter {
    std::function<QImage(const Pose&)> render;
    std::function<double(const Pose&, const Pose&)> distance;
};

/// The animation's frames in the order of the file: from the start on, then, before the frame it ends in, those of the
/// way back. Raises SourceError when the source's `hold` cannot be laid out.
std::vector<PlannedFrame> PlanFrames(const SourceAnimation& animation, const Painter& painter);

} // namespace voxmate::characters
