// What the tests of the reminders start from: a file in memory, and its bytes put together without the program.
#pragma once

#include "ModuleTest.h"
#include "tests/fakes/ReminderSlot.h"

#include <string>
#include <vector>

namespace voxmate
{

/// What is asked when a file has something that is no reminder.
inline const std::string invalidFileQuestion =
    "Reminders file is not having valid data. Its recommended that you delete the below file:"
    "\r\n\r\nC:\\Voxmate\\VoxmateReminders.txt\r\n"
    "Do you want Voxmate to delete this file and create the new file?";

class ReminderTest : public ModuleTest
{
protected:
    const std::string file = "C:\\Voxmate\\VoxmateReminders.txt";
    const std::string temp = "C:\\Voxmate\\VoxmateReminders.tmp";

    ReminderTest()
    {
        ReminderFilePath = file;
        ReminderTempPath = temp;
    }

    static ReminderFields Call() { return {"Call", "07", "03", "2004", "09", "05", "Bank", "N"}; }
    /// A pending reminder of that title on 17 March 1975, which is today.
    static ReminderFields At(const std::string& title, const std::string& hour, const std::string& minute)
    {
        return {title, "17", "03", "1975", hour, minute, "", "N"};
    }

    void Store(const std::vector<ReminderFields>& reminders)
    {
        std::string bytes;
        for (const ReminderFields& fields : reminders)
            bytes += Slot(fields);
        fake.files.texts[file] = bytes;
    }
    /// Puts reminders into the file and loads them, reminders being on, and empties the log.
    void Load(const std::vector<ReminderFields>& reminders)
    {
        Store(reminders);
        window.CheckReminderMenus(true, false);
        LoadReminders(false, 0);
        fake.log.clear();
    }
    bool RemindersAreOn() const { return window.reminderTimer && window.enableChecked && !window.disableChecked; }
    bool RemindersAreOff() const { return !window.reminderTimer && !window.enableChecked && window.disableChecked; }
    std::string Content() { return fake.files.texts.at(file); }
    /// The content of the file as so many slots; their titles.
    Lines TitlesInFile(const std::string& path)
    {
        Lines titles;
        const std::string& bytes = fake.files.texts.at(path);
        for (std::size_t at = 0; at < bytes.size(); at += 128)
            titles.push_back(bytes.substr(at + 2, static_cast<unsigned char>(bytes[at])));
        return titles;
    }
    Lines TitlesInList() const { return {RemTitles.begin() + 1, RemTitles.begin() + 1 + RemCount}; }
    /// The calls that changed files.
    Lines FileCalls() const
    {
        Lines calls;
        for (const std::string& call : fake.log)
            for (const char* name : {"OpenRandom", "Put", "Flush", "Close", "Delete", "Move", "Create", "Get"})
                if (call.starts_with(name))
                    calls.push_back(call);
        return calls;
    }
};

} // namespace voxmate
