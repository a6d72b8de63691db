// Files of numbered slots of one size.
#pragma once

#include <cstdint>
#include <string_view>

namespace voxmate
{

/// An open file of slots, counted from 1: slot k begins at byte (k - 1) times the slot's size. No other process can
/// open it meanwhile. What was put and not flushed or closed is lost when the object goes, and so is a new file.
class RandomAccessFile
{
public:
    virtual ~RandomAccessFile() = default;
    /// How many slots the file has, of which the last may be cut short; whoever reads them all can make room at once.
    /// Raises run-time error 57 "Device I/O error".
    virtual std::int64_t Count() = 0;
    /// The bytes of a slot as far as the file has them, none past its end; they stay until the next call. Raises
    /// run-time error 57 "Device I/O error".
    virtual std::string_view Get(std::int32_t slot) = 0;
    /// Writes a record to a slot and fills the rest of it with zeros. Raises run-time error 59 "Bad record length"
    /// before anything is touched when the record is longer than a slot, 75 "Path/File access error" when the file may
    /// only be read, 61 "Disk full" and 57 when writing fails; the two last may come as late as Flush or Close.
    virtual void Put(std::int32_t slot, std::string_view record) = 0;
    /// Returns when all that was put is on the disk, and the file's name, too, if it is new.
    virtual void Flush() = 0;
    /// Writes what was put and closes the file, which takes no other call afterwards. It is closed after an error, too.
    virtual void Close() = 0;
};

} // namespace voxmate
