// A second start of the program hands over to the first.
#pragma once

#include "extras/CommandLine.h"
#include "platform/Process.h"

namespace voxmate
{

/// Whether this copy of the program has nothing more to do, because another one works on the same data folder: it has
/// taken the files or the action over, or this one was only to start quietly. A plain second start brings the other's
/// window to the front and goes on, to say that there is another copy and end. Claims the data folder if it is free.
bool HandedOver(const CommandLine& line, Process& system, Activation& activation);

} // namespace voxmate
