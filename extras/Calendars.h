// Calendar files: what is in them becomes reminders, and reminders become a calendar file.
#pragma once

#include "controls/Form.h"
#include "extras/Documents.h"
#include "extras/ExtrasMenu.h"
#include "forms/frmMain.h"
#include "forms/frmReminder.h"
#include "modules/Program.h"

#include <cstddef>
#include <functional>
#include <set>
#include <string>
#include <vector>

namespace voxmate
{

/// Adds the entries of calendar files to the reminders, asks once about those in the past, and tells at the end what
/// was added and what was not. Entries that are in the list already are not added again. Texts that do not fit a
/// reminder are shortened and end in "…".
class Calendars
{
public:
    /// Shows the dialog for saving and returns the full path; empty when the user cancels.
    using AskWhere = std::function<std::string(const CommonDialog& dialog)>;

    /// Puts a text into a file in one step; false when that fails.
    using SaveText = std::function<bool(const std::string& path, const std::string& text)>;

    Calendars(ExtrasMenu& menu, Program& program, frmMain& main, Documents::Reader read, AskWhere askWhere,
              SaveText save);

    /// Takes a file as soon as events are handled; those that come together are one matter to the user.
    void Put(const std::string& file);

private:
    /// What has come of the files.
    struct Outcome {
        std::vector<Reminder> Future;
        std::vector<Reminder> Past;
        std::set<std::string> Keys; ///< of the reminders in the list and of those found
        int Known = 0;
        int Dateless = 0;
        int Repeating = 0;
        int Shortened = 0;
        int Foreign = 0;
        std::vector<std::string> Refusals;
    };

    Program& program_;
    frmMain& main_;
    Documents::Reader read_;
    AskWhere askWhere_;
    SaveText save_;
    Timer tmrCalendars_;
    std::vector<std::string> files_;
    bool working_ = false;

    void Take();
    bool Read(const std::string& file, Outcome& outcome);
    void Sort(const readers::Block& block, Outcome& outcome) const;
    bool ListIsRead();
    bool PastAreWanted(const Outcome& outcome);
    void Add(const std::vector<Reminder>& added);
    void Tell(const std::string& from, std::size_t added, std::size_t leftPast, std::size_t noRoom,
              const Outcome& outcome);
    void Save();
};

} // namespace voxmate
