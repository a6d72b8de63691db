// Texts for a reminders' file that could not be read or written.
#pragma once

#include "base/RuntimeError.h"

#include <string>

namespace voxmate
{

/// The reason behind a run-time error of the file in plain words, as the end of a sentence: "the disk is full."
std::string Reason(const RuntimeError& error);
/// The same for the reminder of this title, whose record does not fit its slot.
std::string TooLongReason(const std::string& title, const std::string& record);
/// "Error 61 - Disk full".
std::string NumberAndDescription(const RuntimeError& error);

} // namespace voxmate
