// Telling the user: announcements through the character, and the last report of an unexpected error.
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

/// Holds IsBusy at True for its own life and then puts back what it was: a box that comes up while another one is up
/// leaves the program busy when it is closed.
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

    /// The one shared message text: what ShowMessage reads and the caller's message box shows.
    std::string MessageText;
    /// True while an announcement or a problem box is up.
    Boolean IsBusy = False;
    /// Number of the numbered routine that runs or ran last.
    std::int16_t CurrentRoutineId = 0;

    /// Announces a message (ShowMessage), then shows it in a box with this style and title, and gives the box's answer.
    /// The box shows this text whatever other message came while the character spoke; IsBusy is True until it is
    /// closed.
    int Announce(const std::string& text, int style, const std::string& title, const std::string& animation1 = {},
                 const std::string& animation2 = {}, const std::string& animation3 = {},
                 const std::string& animation4 = {});
    /// Has the character play the leading non-empty animations and read the message, as the settings say, and leaves
    /// IsBusy True; a BusyScope around the call and whatever box follows it puts that back.
    void ShowMessage(const std::string& message, const std::string& animation1, const std::string& animation2 = {},
                     const std::string& animation3 = {}, const std::string& animation4 = {});
    /// Shows the report of an unexpected error and ends the program.
    [[noreturn]] void ReportError(std::int32_t errorNumber, const std::string& errorDescription,
                                  std::int16_t routineId);
    /// Runs a numbered routine: sets CurrentRoutineId and hands an error that it lets through, memory that ran out
    /// included, to ReportError.
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
