// Output of a program that has windows and was started in a console.
#pragma once

namespace voxmate::windows_platform
{

/// Writes std::cout and std::cerr to the console of the program that started this one, unless they go to a file or pipe
/// already. Without such a console they go nowhere.
void UseParentsConsole();

} // namespace voxmate::windows_platform
