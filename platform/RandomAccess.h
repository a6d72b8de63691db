// Files of numbered slots of equal size.
#pragma once

#include <cstdint>
#include <string_view>

namespace voxmate
{

/// An open file of slots, counted from 1: slot k begins at byte (k - 1) times the slot size. No other process can open
/// it at the same time. Records not flushed or closed are lost when the object is destroyed, and so is a new file.
class RandomAccessFile
{
public:
    virtual ~RandomAccessFile() = default;
    /// The number of slots; the last one may be incomplete. A caller that reads them all can reserve memory with it.
    /// Raises run-time error 57 "Device I/O error".
    virtual std::int64_t Count() = 0;
    /// The bytes of a slot, as many as the file has; none past its end. Valid until the next call. Raises run-time
    /// error 57 "Device I/O error".
    virtual std::string_view Get(std::int32_t slot) = 0;
    /// Writes a record to a slot and fills the rest with zeros. Raises run-time error 59 "Bad record length" before
    /// anything is changed when the record is longer than a slot, 75 "Path/File access error" when the file is
    /// read-only, 61 "Disk full" and 57 when writing fails; the last two may be raised only by Flush or Close.
    virtual void Put(std::int32_t slot, std::string_view record) = 0;
    /// Returns when everything written so far is on the disk, including the name of a new file.
    virtual void Flush() = 0;
    /// Writes what is pending and closes the file, after an error, too. No other call may follow.
    virtual void Close() = 0;
};

} // namespace voxmate
