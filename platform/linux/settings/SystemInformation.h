// The desktop's own tool that describes the computer, where a registry would name it.
#pragma once

#include "platform/linux/settings/RegistryFile.h"

#include <optional>
#include <string>

namespace voxmate::linux_platform
{

/// The command that starts the first such tool found in the folders of $PATH; empty when none is installed.
std::string SystemInformationCommand();

/// Answers the one value of the registry that names that tool; nothing for any other value, and none without a tool.
std::optional<RawValue> SystemInformationValue(const std::string& key, const std::string& name);

} // namespace voxmate::linux_platform
