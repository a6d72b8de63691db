// Files and folders as the program's logic sees them.
#pragma once

#include "platform/RandomAccess.h"

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace voxmate
{

/// A text file being read line by line: in UTF-8, in UTF-16, or else in the code page that goes with the user's locale.
/// A stray byte in UTF-8 is read by the code page. A byte-order mark is not text. Time and memory are linear in the
/// length of what is read.
class TextStream
{
public:
    virtual ~TextStream() = default;
    virtual bool AtEndOfStream() = 0;
    /// The next line in UTF-8 without its end (CR LF, LF or CR); raises run-time error 62 "Input past end of file" at
    /// the end.
    virtual std::string ReadLine() = 0;
    /// The same at the end of `text`, for whoever joins many lines.
    virtual void AppendLine(std::string& text) { text += ReadLine(); }
    /// How many bytes the lines still to come make at most, with CR LF for each of them, as far as it can be told
    /// beforehand: whoever joins them can make room at once. 0 when nothing is known.
    virtual std::size_t SizeHint() { return 0; }
};

/// Holds a file for this program until it goes.
class FileLock
{
public:
    virtual ~FileLock() = default;
};

class FileSystem
{
public:
    virtual ~FileSystem() = default;
    /// The separator between the parts of a path: "\" or "/".
    virtual std::string PathSeparator() = 0;
    virtual bool FolderExists(const std::string& path) = 0;
    /// The case of the extension does not matter, here and in the patterns of ListFiles, as people have files from
    /// systems that do not tell it.
    virtual bool FileExists(const std::string& path) = 0;
    /// The file name's part before its last dot, without the folder.
    virtual std::string GetBaseName(const std::string& path) = 0;
    /// The file name's part behind its last dot, empty without one.
    virtual std::string GetExtensionName(const std::string& path) = 0;
    /// Opens a text file for reading. Raises run-time error 53 "File not found", 70 "Permission denied" when it may not
    /// be read or is no file but a folder, a device or a pipe, 7 "Out of memory" when it is larger than a text can be,
    /// and 57 "Device I/O error" when reading fails, which a line may raise as well.
    virtual std::unique_ptr<TextStream> OpenTextFile(const std::string& path) = 0;
    /// Names of the files in a folder that match a pattern such as "*.acs", sorted without regard to case; empty when
    /// the folder cannot be read.
    virtual std::vector<std::string> ListFiles(const std::string& folder, const std::string& pattern) = 0;

    /// Opens a file of slots of `recordLength` bytes, for reading alone where it may not be written. A missing one is
    /// created; it has its name from the first Flush or Close on, so that there is never half a file of that name.
    /// Raises run-time error 70 "Permission denied" when another process has it open and goes on to, 75 "Path/File
    /// access error" when it may be neither read nor made or is no file, 76 "Path not found" when there is no such
    /// folder, 61 "Disk full" and 57 "Device I/O error".
    virtual std::unique_ptr<RandomAccessFile> OpenRandom(const std::string& path, std::size_t recordLength) = 0;
    /// The same for a file that is there; raises run-time error 53 "File not found" instead of creating one.
    virtual std::unique_ptr<RandomAccessFile> OpenRandomExisting(const std::string& path, std::size_t recordLength) = 0;
    /// Holds a file, which may be missing, against everybody else who asks for it in this way, until what is returned
    /// goes. Waits two seconds for its turn, then raises run-time error 70. Nothing is returned where its folder takes
    /// no lock.
    virtual std::unique_ptr<FileLock> Lock(const std::string& path) = 0;
    /// What a symbolic link leads to in the end, which may be missing; any other path as it is.
    virtual std::string LinkTarget(const std::string& path) = 0;
    /// The text, in UTF-8, that these bytes of unknown encoding are, told as text files are.
    virtual std::string DecodeText(std::string_view bytes) = 0;
    /// Creates an empty file, emptying the one that is there. Raises what OpenRandom does, and 75 as well when the file
    /// may only be read.
    virtual void CreateTextFile(const std::string& path) = 0;
    /// Deletes a file. Raises run-time error 53 "File not found", 70 when another process has it open as a file of
    /// slots and goes on to, when it or its folder may not be written or it is no file, and 57.
    virtual void DeleteFile(const std::string& path) = 0;
    /// Renames a file within its folder and returns when the disk knows it. Raises run-time error 53, 58 "File already
    /// exists" when there is a file of the new name, 70 when the folder may not be written, 61 and 57.
    virtual void MoveFile(const std::string& from, const std::string& to) = 0;
};

} // namespace voxmate
