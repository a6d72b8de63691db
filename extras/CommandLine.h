// The program's command line.
#pragma once

#include "platform/Activation.h"

#include <span>
#include <string>

namespace voxmate
{

/// How the program is to start.
struct CommandLine {
    voxmate::Call Call;        ///< what it is to do
    bool Quiet = false;        ///< goes into the notification area without splash, greeting and window
    bool Help = false;         ///< only tells what there is to choose from
    bool Version = false;      ///< only tells its version
    std::string NotUnderstood; ///< the first argument that is no option; empty when there is none
};

/// Reads the arguments behind the program's name. Files may be paths, which become full ones from `folder` on, or
/// addresses ("file:///home/ada/a.txt").
CommandLine ParseCommandLine(std::span<const char* const> arguments, const std::string& folder);

/// What --help says.
std::string CommandLineHelp();

} // namespace voxmate
