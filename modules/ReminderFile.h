// The reminders' file. It is locked against other programs while it is read and replaced, and changes that another
// program has made in it are merged with those made here.
#pragma once

#include "modules/ReminderList.h"
#include "modules/Windows.h"
#include "platform/Clock.h"
#include "platform/FileSystem.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace voxmate
{

class ReminderFile
{
public:
    ReminderFile(FileSystem& files, Clock& clock, ReminderList& list) : files_(files), clock_(clock), list_(list) {}

    std::string ReminderFilePath;
    std::string ReminderTempPath;

    /// The path of the file itself, where ReminderFilePath may be a symbolic link, and that of the copy beside it. A
    /// save writes the copy, which then replaces the file.
    std::string DataPath() const;
    std::string CopyPath() const;
    bool DataFileExists() const;
    bool CopyExists() const;

    /// Keeps the file locked against other programs during its lifetime. Its destructor closes the file and raises no
    /// error.
    struct Held {
        ReminderFile& File;
        std::unique_ptr<FileLock> Lock;
        ~Held() { File.dataFile_.reset(); }
    };
    /// Locks the file; needed for everything below. Raises run-time error 70 when another program has kept it locked
    /// for two seconds.
    Held HoldReminders() { return {*this, files_.Lock(DataPath())}; }

    /// Completes a save that was interrupted after it had deleted the old file: gives a whole copy the file's name. An
    /// incomplete copy is kept under a dated name.
    void RecoverReminders();
    /// Deletes the copy that an interrupted save has left beside the file, if that is possible.
    void DeleteStaleCopy();
    /// Renames the file at this path, if there is one, to a new name beside the reminders' file that contains the date
    /// and time. The latest five of these files are kept.
    void KeepDated(const std::string& path);

    /// Opens the file until CloseDataFile; false when there is none. Raises the file system's errors, among them 76
    /// when its folder is missing.
    bool OpenDataFile();
    void CloseDataFile();
    /// Reads the open file into the list, and with `editor` into the editor's list as well; without an open file the
    /// list becomes empty. Returns true when every record is valid; otherwise the entries before the first invalid one
    /// are read. RemCount and RemindersValid stay unchanged.
    bool ReadDataFile(ReminderEditor* editor);

    /// Replaces the file by the list without entry `skipIndex` (0: none), through the copy. If another program has
    /// changed the file since it was read, its changes are kept: the list is read anew and the changes made here are
    /// made again. Returns false, and writes nothing, when an entry to be changed is no longer there, or the other
    /// program has left something invalid. Raises run-time error 59 "Bad record length" when an entry does not fit its
    /// slot of 128 bytes, and the file system's errors; the file is then as before, or the copy holds everything that
    /// was to be saved.
    bool WriteReminders(std::int16_t skipIndex);
    /// Writes encoded records behind the last one, in place and in their order. Merges changes and raises errors in the
    /// same way.
    bool AppendRecords(const std::vector<std::string>& records);

private:
    struct Change;
    FileSystem& files_;
    Clock& clock_;
    ReminderList& list_;
    /// Open only during a load or a save; a load may last as long as a question to the user is up.
    std::unique_ptr<RandomAccessFile> dataFile_;
    /// As far as this program knows, the file holds the list's slots.
    bool fileKnown_ = false;
    /// The last reading did not reach the end of the file. So the list is not what the file holds and must not replace
    /// it.
    bool cutShort_ = false;

    std::string FolderOf(const std::string& path) const;
    bool CopyIsWhole();
    bool FileIsAsKnown();
    std::vector<Change> Changes(std::int16_t skipIndex) const;
    bool IsAnswer(const Change& change) const;
    bool MakeAgain(const Change& change, std::int16_t& skipIndex);
    bool CatchUp(std::int16_t& skipIndex);
    void DeleteCopy();
    std::string WriteCopy(std::int16_t skipIndex);
    void Written(std::int16_t skipIndex, std::string&& slots);
    void ReplaceDataFile(std::int16_t skipIndex);
};

} // namespace voxmate
