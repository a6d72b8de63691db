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
inline RuntimeError Overflow()
{
    return {6, "Overflow"};
}
inline RuntimeError OutOfMemory()
{
    return {7, "Out of memory"};
}
inline RuntimeError SubscriptOutOfRange()
{
    return {9, "Subscript out of range"};
}
inline RuntimeError FileNotFound()
{
    return {53, "File not found"};
}
inline RuntimeError DeviceIOError()
{
    return {57, "Device I/O error"};
}
inline RuntimeError FileAlreadyExists()
{
    return {58, "File already exists"};
}
inline RuntimeError BadRecordLength()
{
    return {59, "Bad record length"};
}
inline RuntimeError DiskFull()
{
    return {61, "Disk full"};
}
inline RuntimeError InputPastEndOfFile()
{
    return {62, "Input past end of file"};
}
inline RuntimeError BadRecordNumber()
{
    return {63, "Bad record number"};
}
inline RuntimeError PermissionDenied()
{
    return {70, "Permission denied"};
}
inline RuntimeError PathFileAccessError()
{
    return {75, "Path/File access error"};
}
inline RuntimeError PathNotFound()
{
    return {76, "Path not found"};
}
inline RuntimeError CannotCreateObject()
{
    return {429, "ActiveX component can't create object"};
}
/// The word processor's own error for a command that failed.
inline RuntimeError CommandFailed()
{
    return {4198, "Command failed"};
}
inline RuntimeError CancelSelected()
{
    return {32755, "Cancel was selected."};
}
inline RuntimeError ObjectNotSet()
{
    return {91, "Object variable or With block variable not set"};
}

/// Turns any exception into the run-time error to report. A run-time error stays as it is. Memory that could not be
/// allocated, also for a text longer than texts can be, becomes "Out of memory". Everything else becomes the run-time's
/// "Internal error" 51 with its own message.
RuntimeError AsRuntimeError(const std::exception& error);

} // namespace voxmate
