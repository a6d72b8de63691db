// Whether the user wants programs to be dark.
#pragma once

namespace voxmate::windows_platform
{

/// The choice in Windows' settings, Personalisation, Colours; false where there is none.
bool PrefersDark();

} // namespace voxmate::windows_platform
