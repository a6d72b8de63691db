// Messages to the user: announcements by the character, and the report of an unexpected error.
#pragma once

#include "base/Checked.h"
#include "base/RuntimeError.h"

#include <cstdint>
#include <exception>
#include <string>
#include <utility>

namespace voxmate
{

class Program;

/// Sets IsBusy to True during this object's lifetime and then restores its old value. So when a box that came up over
/// another one is closed, the program is still busy.
class BusyScope
{
public:
    explicit BusyScope(Boolean& isBusy) : isBusy_(isBusy), before_(std::exchange(isBusy, True)) {}
    ~BusyScope() { isBusy_ = before_; }
    BusyScope(const BusyScope&) = delete;
    BusyScope& operator=(const BusyScope&) = delete;

private:
    Boolean& isBusy_;
    Boolean before_;
};

class Messages
{
public:
    explicit Messages(Program& program) : program_(program) {}

    /// The one shared message text; Announce sets it before and after the character has spoken.
    std::string MessageText;
    /// True while an announcement or a problem box is up.
    Boolean IsBusy = False;
    /// Number of the numbered routine that is running or ran last.
    std::int16_t CurrentRoutineId = 0;

    /// Announces a message with ShowMessage, then shows it in a box with this style and title, and returns the button
    /// pressed. The box shows this text even if another message came while the character spoke. IsBusy is True until
    /// the box is closed.
    int Announce(const std::string& text, int style, const std::string& title, const std::string& animation1 = {},
                 const std::string& animation2 = {}, const std::string& animation3 = {},
                 const std::string& animation4 = {});
    /// If the settings say so, has the character play the animations up to the first empty one and read the message.
    /// Leaves IsBusy True; a BusyScope around this call and the box that follows it restores the old value.
    void ShowMessage(const std::string& message, const std::string& animation1, const std::string& animation2 = {},
                     const std::string& animation3 = {}, const std::string& animation4 = {});
    /// Shows the report of an unexpected error and ends the program.
    [[noreturn]] void ReportError(std::int32_t errorNumber, const std::string& errorDescription,
                                  std::int16_t routineId);
    /// Runs a numbered routine: sets CurrentRoutineId, and passes any error that leaves the routine, also running out
    /// of memory, to ReportError.
    template <class Body>
    void NumberedRoutine(std::int16_t routineId, Body body)
    {
        CurrentRoutineId = routineId;
        try {
            body();
        } catch (const std::exception& thrown) {
            const RuntimeError error = AsRuntimeError(thrown);
            ReportError(error.Number, error.Description, CurrentRoutineId);
        }
    }

private:
    Program& program_;
};

} // namespace voxmate
