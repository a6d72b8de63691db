// The reminders' file: held against other programs while it is read and replaced, and brought together with what
// another program has made of it. For the reminders' own code; others see modules/Reminders.h alone.
#pragma once

#include "modules/Windows.h"
#include "platform/FileSystem.h"

#include <cstdint>
#include <memory>
#include <string>

namespace voxmate
{

/// The file, which ReminderFilePath may lead to as a symbolic link, and the copy beside it through which it is
/// replaced.
std::string DataPath();
std::string CopyPath();
bool DataFileExists();
bool CopyExists();

/// Holds the file for as long as what is returned lives, across everything below. Raises run-time error 70 where
/// another program has held it for two seconds.
std::unique_ptr<FileLock> HoldReminders();

/// A save that was cut off between the old file and the new one is completed; half a copy goes among the dated ones.
void RecoverReminders();
/// Deletes the copy that a save which was cut off has left beside the file, if that can be done.
void DeleteStaleCopy();
/// Moves a file of this name to a name of its own beside the reminders' file, which tells the date and time. The latest
/// five of those are kept.
void KeepDated(const std::string& path);

/// Opens the file, which stays open until it is closed below; false when there is none. Raises the file system's
/// errors, 76 among them where its folder is not there.
bool OpenDataFile();
void CloseDataFile();
/// Closes it after an error, raising none.
void DropDataFile();
/// Reads the file that is open, or none, into the list, and with `editor` into the editor's; true when every record is
/// valid. The list's entries before the first that is not are read; RemCount and RemindersValid stay as they are.
bool ReadDataFile(ReminderEditor* editor);

/// Replaces the file by the list without entry `skipIndex` (0: none), through the copy. What another program has
/// changed since the file was read is kept: the list is read anew, and what was changed in it here is changed there.
/// False, and nothing is written, when what was to be changed is not there any more, or that program has left something
/// invalid.
bool WriteReminders(std::int16_t skipIndex);
/// The same for one record, already encoded, that is written behind the last one in place.
bool AppendRecord(const std::string& record);
/// Forgets what was read, and closes the file.
void ForgetDataFile();

} // namespace voxmate
