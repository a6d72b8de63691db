// The reminders' file: held against other programs while it is read and replaced, and brought together with what
// another program has made of it.
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

    /// The file, which ReminderFilePath may lead to as a symbolic link, and the copy beside it through which it is
    /// replaced.
    std::string DataPath() const;
    std::string CopyPath() const;
    bool DataFileExists() const;
    bool CopyExists() const;

    /// Holds the file against other programs for its life, and closes it at its end, raising no error.
    struct Held {
        ReminderFile& File;
        std::unique_ptr<FileLock> Lock;
        ~Held() { File.dataFile_.reset(); }
    };
    /// Holds the file across everything below. Raises run-time error 70 where another program has held it for two
    /// seconds.
    Held HoldReminders() { return {*this, files_.Lock(DataPath())}; }

    /// A save that was cut off between the old file and the new one is completed; half a copy goes among the dated
    /// ones.
    void RecoverReminders();
    /// Deletes the copy that a save which was cut off has left beside the file, if that can be done.
    void DeleteStaleCopy();
    /// Moves a file of this name to a name of its own beside the reminders' file, which tells the date and time. The
    /// latest five of those are kept.
    void KeepDated(const std::string& path);

    /// Opens the file, which stays open until it is closed below; false when there is none. Raises the file system's
    /// errors, 76 among them where its folder is not there.
    bool OpenDataFile();
    void CloseDataFile();
    /// Reads the file that is open, or none, into the list, and with `editor` into the editor's; true when every record
    /// is valid. The list's entries before the first that is not are read; RemCount and RemindersValid stay as they
    /// are.
    bool ReadDataFile(ReminderEditor* editor);

    /// Replaces the file by the list without entry `skipIndex` (0: none), through the copy. What another program has
    /// changed since the file was read is kept: the list is read anew, and what was changed in it here is changed
    /// there. False, and nothing is written, when what was to be changed is not there any more, or that program has
    /// left something invalid.
    bool WriteReminders(std::int16_t skipIndex);
    /// The same for one record, already encoded, that is written behind the last one in place.
    bool AppendRecord(const std::string& record);

private:
    struct Change;
    FileSystem& files_;
    Clock& clock_;
    ReminderList& list_;
    /// Open only within a load or a save, though a load may last as long as a question is up.
    std::unique_ptr<RandomAccessFile> dataFile_;
    /// The list's slots are those of the file, as far as this program knows.
    bool fileKnown_ = false;
    /// The file was not read to its end when it was read last: the list is not what it holds, and must not replace it.
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
