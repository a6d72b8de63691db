// The program's run-time errors: one exception type with a number and a description.
#pragma once

#include <cstdint>
#include <exception>
#include <string>
#include <utility>

namespace voxmate
{

/// A run-time error. A numbered routine catches it and reports it. One that nobody catches reaches the event loop,
/// which shows its number and description and ends the program.
class RuntimeError : public std::exception
{
public:
    RuntimeError(std::int32_t number, std::string description) : Number(number), Description(std::move(description)) {}

    const char* what() const noexcept override { return Description.c_str(); }

    std::int32_t Number;
    std::string Description;
};

// The numbers are those of the classic Basic run-time, so that reports read the same on every platform.
inline constexpr auto Overflow = [] { return RuntimeError(6, "Overflow"); };
inline constexpr auto OutOfMemory = [] { return RuntimeError(7, "Out of memory"); };
inline constexpr auto SubscriptOutOfRange = [] { return RuntimeError(9, "Subscript out of range"); };
inline constexpr auto FileNotFound = [] { return RuntimeError(53, "File not found"); };
inline constexpr auto DeviceIOError = [] { return RuntimeError(57, "Device I/O error"); };
inline constexpr auto FileAlreadyExists = [] { return RuntimeError(58, "File already exists"); };
inline constexpr auto BadRecordLength = [] { return RuntimeError(59, "Bad record length"); };
inline constexpr auto DiskFull = [] { return RuntimeError(61, "Disk full"); };
inline constexpr auto InputPastEndOfFile = [] { return RuntimeError(62, "Input past end of file"); };
inline constexpr auto BadRecordNumber = [] { return RuntimeError(63, "Bad record number"); };
inline constexpr auto PermissionDenied = [] { return RuntimeError(70, "Permission denied"); };
inline constexpr auto PathFileAccessError = [] { return RuntimeError(75, "Path/File access error"); };
inline constexpr auto PathNotFound = [] { return RuntimeError(76, "Path not found"); };
inline constexpr auto CannotCreateObject = [] { return RuntimeError(429, "ActiveX component can't create object"); };
/// The word processor's own error for a command that failed.
inline constexpr auto CommandFailed = [] { return RuntimeError(4198, "Command failed"); };
inline constexpr auto ObjectNotSet = [] { return RuntimeError(91, "Object variable or With block variable not set"); };
inline constexpr auto CancelSelected = [] { return RuntimeError(32755, "Cancel was selected."); };

/// Turns any exception into the run-time error to report. A run-time error stays as it is. Memory that could not be
/// allocated, also for a text longer than texts can be, becomes "Out of memory". Everything else becomes the run-time's
/// "Internal error" 51 with its own message.
RuntimeError AsRuntimeError(const std::exception& error);

} // namespace voxmate
