// Telling the user: announcements through the character, and the last report of an unexpected error.
#pragma once

#include "base/RuntimeError.h"

#include <cstdint>
#include <string>

namespace voxmate
{

/// Has the character play the leading non-empty animations and read the message, as the settings say, and leaves IsBusy
/// True. The caller then shows its own message box with MessageText and puts IsBusy back to False.
void ShowMessage(const std::string& message, const std::string& animation1, const std::string& animation2 = {},
                 const std::string& animation3 = {}, const std::string& animation4 = {});

/// Shows the report of an unexpected error and ends the program.
[[noreturn]] void ReportError(std::int32_t errorNumber, const std::string& errorDescription, std::int16_t routineId);

/// Runs a numbered routine: sets CurrentRoutineId and hands a run-time error that it lets through to ReportError.
template <class Body>
void NumberedRoutine(std::int16_t routineId, Body body);

} // namespace voxmate

#include "modules/Declarations.h"

template <class Body>
void voxmate::NumberedRoutine(std::int16_t routineId, Body body)
{
    CurrentRoutineId = routineId;
    try {
        body();
    } catch (const RuntimeError& error) {
        ReportError(error.Number, error.Description, CurrentRoutineId);
    }
}
