// The desktop's own tool that describes the computer, which elsewhere a registry names.
#pragma once

#include "base/RegistryFile.h"

#include <optional>
#include <string>

namespace voxmate::linux_platform
{

/// The command that starts the first such tool found in the folders of $PATH; empty when none is installed.
std::string SystemInformationCommand();

/// Answers the one registry value that names that tool; nothing for other values, or when there is no tool.
std::optional<RawValue> SystemInformationValue(const std::string& key, const std::string& name);

} // namespace voxmate::linux_platform
