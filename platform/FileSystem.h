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

/// A text file read line by line, in UTF-8, in UTF-16, or otherwise in the code page of the user's locale. An invalid
/// byte in UTF-8 is decoded with the code page. A byte-order mark is not part of the text. Time and memory are linear
/// in the length read.
class TextStream
{
public:
    virtual ~TextStream() = default;
    virtual bool AtEndOfStream() = 0;
    /// The next line in UTF-8 without its end (CR LF, LF or CR); raises run-time error 62 "Input past end of file" at
    /// the end.
    virtual std::string ReadLine() = 0;
    /// Appends the next line to `text`, for callers that join many lines.
    virtual void AppendLine(std::string& text) { text += ReadLine(); }
    /// An upper limit in bytes, as far as it is known beforehand, for the remaining lines with CR LF after each, so
    /// that a caller that joins them can reserve memory at once. 0 when nothing is known.
    virtual std::size_t SizeHint() { return 0; }
};

/// Holds a file for this program until it is destroyed.
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
    /// The extension's case is ignored, here and in the patterns of ListFiles, because files may come from systems
    /// whose file names ignore case.
    virtual bool FileExists(const std::string& path) = 0;
    /// The file name's part before its last dot, without the folder.
    virtual std::string GetBaseName(const std::string& path) = 0;
    /// The file name's part behind its last dot, empty without one.
    virtual std::string GetExtensionName(const std::string& path) = 0;
    /// Opens a text file for reading. Raises run-time error 53 "File not found"; 70 "Permission denied" when it may not
    /// be read or is a folder, a device or a pipe; 7 "Out of memory" when it is too large for a text; and 57 "Device
    /// I/O error" when reading fails, which reading a line may raise as well.
    virtual std::unique_ptr<TextStream> OpenTextFile(const std::string& path) = 0;
    /// Names of the files in a folder that match a pattern such as "*.acs", sorted without regard to case; empty when
    /// the folder cannot be read.
    virtual std::vector<std::string> ListFiles(const std::string& folder, const std::string& pattern) = 0;

    /// Opens a file of slots of `recordLength` bytes, read-only where it may not be written. A missing file is created,
    /// but gets its name only at the first Flush or Close, so that a file of that name is never incomplete. Raises
    /// run-time error 70 "Permission denied" when another process keeps it open, 75 "Path/File access error" when it
    /// may be neither read nor created or is no regular file, 76 "Path not found" when the folder is missing, 61 "Disk
    /// full" and 57 "Device I/O error".
    virtual std::unique_ptr<RandomAccessFile> OpenRandom(const std::string& path, std::size_t recordLength) = 0;
    /// The same for an existing file; a missing one is not created but raises run-time error 53 "File not found".
    virtual std::unique_ptr<RandomAccessFile> OpenRandomExisting(const std::string& path, std::size_t recordLength) = 0;
    /// Locks a file, which need not exist, against all others that lock it this way, until the result is destroyed.
    /// Waits two seconds for its turn and then raises run-time error 70. Null where the folder supports no locks.
    virtual std::unique_ptr<FileLock> Lock(const std::string& path) = 0;
    /// The final target of a symbolic link, which need not exist; any other path unchanged.
    virtual std::string LinkTarget(const std::string& path) = 0;
    /// Decodes bytes of unknown encoding to UTF-8, with the same detection as for text files.
    virtual std::string DecodeText(std::string_view bytes) = 0;
    /// Creates an empty file or empties an existing one. Raises the errors of OpenRandom, and also 75 when the file is
    /// read-only.
    virtual void CreateTextFile(const std::string& path) = 0;
    /// Deletes a file. Raises run-time error 53 "File not found", 57, and 70 when another process keeps it open as a
    /// file of slots, when it or its folder is read-only, or when it is no regular file.
    virtual void DeleteFile(const std::string& path) = 0;
    /// Renames a file within its folder and returns when the change is on the disk. Raises run-time error 53, 58 "File
    /// already exists" when the new name is taken, 70 when the folder may not be written, 61 and 57.
    virtual void MoveFile(const std::string& from, const std::string& to) = 0;
    /// Copies a file. A file that `to` names already is replaced, in one step, when the copy is complete. Raises
    /// run-time error 53 and the errors of OpenRandom.
    virtual void CopyFile(const std::string& from, const std::string& to) = 0;
    /// Makes `name` another name of the file `target`, which is a full path: whatever becomes of that file holds for
    /// both. Raises run-time error 58 when the name is taken, 70, 61 and 57.
    virtual void LinkFile(const std::string& target, const std::string& name) = 0;
    /// Creates a folder, with those above it, unless it exists. Raises run-time error 70, 61 and 57.
    virtual void CreateFolder(const std::string& path) = 0;
    /// Whether the user may create files in a folder. False for one that does not exist.
    virtual bool FolderWritable(const std::string& path) = 0;
};

} // namespace voxmate
