#include "extras/Calendars.h"

#include "base/FileName.h"
#include "base/Text.h"
#include "extras/CalendarText.h"
#include "modules/Command.h"
#include "modules/ReminderErrors.h"
#include "readers/CalendarEntry.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <limits>
#include <tuple>
#include <utility>

namespace voxmate
{

namespace
{

using namespace std::chrono_literals;
using readers::CalendarEntry;

constexpr int SoonInterval = 10; // milliseconds
// As in the editor, in characters.
constexpr std::size_t TitleLength = 50;
constexpr std::size_t DescriptionLength = 250;
constexpr std::string_view Ellipsis = "…";

auto Order(const Reminder& reminder)
{
    return std::tuple<int, int, int, int, int>(reminder.Year, reminder.Month, reminder.Day, reminder.Hour,
                                               reminder.Minute);
}

// The same for reminders that differ in nothing but the mark.
std::string Key(Reminder reminder)
{
    reminder.Done = false;
    return Encoded(reminder);
}

// "1 entry has", "2 entries have".
std::string Counted(std::size_t count, const std::string& one, const std::string& many)
{
    return std::to_string(count) + " " + (count == 1 ? one : many);
}

// The beginning of a text in this many characters and bytes at most, with its end marked where it is cut.
std::string Fitted(const std::string& text, std::size_t characters, std::size_t bytes)
{
    if (Len(text) <= characters && text.size() <= bytes)
        return text;
    if (bytes < Ellipsis.size())
        return "";
    const std::string_view left = Left(text, characters - 1);
    std::string cut(left.substr(0, WholeUtf8(left.substr(0, bytes - Ellipsis.size()))));
    return cut += Ellipsis;
}

// Shortens the texts of a reminder until it fits its place in the file; true if that was necessary.
bool Fit(Reminder& reminder)
{
    const Reminder whole = reminder;
    Reminder bare = whole;
    bare.Title = bare.Description = "";
    const std::size_t room = ReminderSlotSize - Encoded(bare).size();
    reminder.Title = Fitted(whole.Title, TitleLength, room);
    reminder.Description = Fitted(whole.Description, DescriptionLength, room - reminder.Title.size());
    return reminder != whole;
}

std::string WithLineEnds(const std::string& text)
{
    std::string lines;
    for (const char c : text)
        lines += c == '\n' ? std::string(CrLf) : std::string(1, c);
    return lines;
}

std::string StampNow()
{
    const auto now = std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now());
    const auto day = std::chrono::floor<std::chrono::days>(now);
    const std::chrono::year_month_day date(day);
    const std::chrono::hh_mm_ss time(now - day);
    return Padded(static_cast<int>(date.year()), 4) + Padded(static_cast<int>(static_cast<unsigned>(date.month())), 2) +
           Padded(static_cast<int>(static_cast<unsigned>(date.day())), 2) + "T" +
           Padded(static_cast<int>(time.hours().count()), 2) + Padded(static_cast<int>(time.minutes().count()), 2) +
           Padded(static_cast<int>(time.seconds().count()), 2) + "Z";
}

} // namespace

Calendars::Calendars(ExtrasMenu& menu, Program& program, frmMain& main, Documents::Reader read, AskWhere askWhere,
                     SaveText save)
    : program_(program), main_(main), read_(std::move(read)), askWhere_(std::move(askWhere)), save_(std::move(save)),
      tmrCalendars_(&main, "tmrCalendars", SoonInterval, false)
{
    menu.BeginGroup();
    menu.Add("mnuSaveCalendar", "Save as Cal&endar File...", [this] { Save(); });
    tmrCalendars_.Tick = [this] { Take(); };
}

void Calendars::Put(const std::string& file)
{
    files_.push_back(file);
    tmrCalendars_.Enabled = true;
}

// Boxes of other matters come first.
void Calendars::Take()
{
    const Command command(working_);
    if (!command.Begun() || program_.Messages.IsBusy != False)
        return;
    tmrCalendars_.Enabled = false;
    const std::vector<std::string> files = std::exchange(files_, {});
    if (files.empty() || !ListIsRead())
        return;
    Outcome outcome;
    for (std::int32_t id = 1; id <= program_.Reminders.List.RemCount; ++id)
        outcome.Keys.insert(Key(program_.Reminders.List.At(id)));
    for (const std::string& file : files)
        if (!Read(file, outcome))
            return;
    std::vector<Reminder> added = outcome.Future;
    const bool past = !outcome.Past.empty() && PastAreWanted(outcome);
    if (past)
        added.insert(added.end(), outcome.Past.begin(), outcome.Past.end());
    const auto room = static_cast<std::size_t>(
        std::max(0, std::numeric_limits<std::int16_t>::max() - program_.Reminders.List.RemCount));
    const std::size_t noRoom = added.size() - std::min(added.size(), room);
    added.resize(added.size() - noRoom);
    if (!added.empty()) {
        // A box has said why.
        if (!program_.Reminders.TryAppendReminders(added))
            return;
        Add(added);
    }
    const std::string from = files.size() == 1 ? "\"" + std::string(NameOfPath(files.front())) + "\""
                                               : Counted(files.size(), "file", "files");
    Tell(from, added.size(), past ? 0 : outcome.Past.size(), noRoom, outcome);
}

// What is in the list already can be told only when it has been read.
bool Calendars::ListIsRead()
{
    if (program_.Reminders.List.RemindersValid == False)
        program_.Reminders.LoadReminders(false, 0);
    if (program_.Reminders.List.RemindersValid != False)
        return true;
    program_.Reminders.ReminderMessage("The reminders cannot be read, so none can be added.", vbOKOnly + vbExclamation,
                                       "Decline");
    return false;
}

// False when the user has stopped everything.
bool Calendars::Read(const std::string& file, Outcome& outcome)
{
    const std::uint32_t stops = program_.StopCount;
    const std::unique_ptr<readers::Reading> reading = read_(file);
    while (!reading->AtEnd()) {
        while (const std::optional<readers::Block> block = reading->Next(10ms))
            if (reading->DocumentKind() == readers::Kind::Calendar)
                Sort(*block, outcome);
        program_.Host.Windows.DoEvents();
        if (program_.StopCount != stops)
            return false;
    }
    if (reading->DocumentKind() == readers::Kind::Calendar) {
        // A calendar without entries has nothing to tell; one that ends too early has.
        if (reading->Outcome() != readers::Refusal::NoText && !reading->Sentence().empty())
            outcome.Refusals.push_back(reading->Sentence());
    } else {
        outcome.Refusals.push_back("\"" + std::string(NameOfPath(file)) + "\" is no calendar.");
    }
    return true;
}

void Calendars::Sort(const readers::Block& block, Outcome& outcome) const
{
    const CalendarEntry entry = ToEntry(block);
    if (!entry.At) {
        ++outcome.Dateless;
        return;
    }
    const DateTime& at = *entry.At;
    Reminder reminder{entry.Title,
                      static_cast<std::int16_t>(at.day),
                      static_cast<std::int16_t>(at.month),
                      static_cast<std::int16_t>(at.year),
                      static_cast<std::int16_t>(at.hour),
                      static_cast<std::int16_t>(at.minute),
                      WithLineEnds(entry.Description),
                      entry.Done};
    const bool shortened = Fit(reminder);
    const DateTime now = program_.Host.Time.Now();
    const bool past =
        Order(reminder) < std::tuple<int, int, int, int, int>(now.year, now.month, now.day, now.hour, now.minute);
    std::vector<Reminder>& place = past ? outcome.Past : outcome.Future;
    const bool known = !outcome.Keys.insert(Key(reminder)).second;
    if (known) {
        ++outcome.Known;
        return;
    }
    outcome.Repeating += entry.Repeats ? 1 : 0;
    outcome.Shortened += shortened ? 1 : 0;
    outcome.Foreign += entry.ForeignZone ? 1 : 0;
    place.push_back(std::move(reminder));
}

bool Calendars::PastAreWanted(const Outcome& outcome)
{
    const std::size_t past = outcome.Past.size();
    const std::size_t all = past + outcome.Future.size();
    const std::string kind = outcome.Known > 0 ? "new " : "";
    std::string question;
    if (past == all)
        question = past == 1 ? "The " + kind + "entry is in the past."
                             : "All " + std::to_string(past) + " " + kind + "entries are in the past.";
    else
        question = std::to_string(past) + " of the " + std::to_string(all) + " " + kind + "entries " +
                   (past == 1 ? "is" : "are") + " in the past.";
    question += past == 1 ? " Do you want to add it as well?" : " Do you want to add them as well?";
    question += std::string(CrLf) + CrLf + "What is in the past and not marked as done is announced at once as missed.";
    return program_.Reminders.ReminderMessage(question, vbYesNo + vbQuestion + vbDefaultButton2, "Suggest") == vbYes;
}

// The list is read anew. The editor gets it, too, unless the user has begun to write something there.
void Calendars::Add(const std::vector<Reminder>& added)
{
    auto* editor = dynamic_cast<frmReminder*>(&main_.Editor());
    const bool untouched = editor && (!editor->cmdAdd.Enabled || (Trim(editor->txtTitle.Text.get()).empty() &&
                                                                  Trim(editor->txtDesc.Text.get()).empty()));
    const bool fill = editor && editor->IsShown() && untouched;
    const auto first = static_cast<std::int16_t>(program_.Reminders.List.RemCount + 1);
    program_.Reminders.LoadReminders(fill, added.empty() ? std::int16_t{0} : first);
}

void Calendars::Tell(const std::string& from, std::size_t added, std::size_t leftPast, std::size_t noRoom,
                     const Outcome& outcome)
{
    std::vector<std::string> lines;
    if (added > 0 || outcome.Refusals.empty())
        lines.push_back((added == 0 ? "No reminder was" : Counted(added, "reminder was", "reminders were")) +
                        " added from " + from + ".");
    const auto line = [&lines](std::size_t count, const std::string& one, const std::string& many) {
        if (count > 0)
            lines.push_back(Counted(count, one, many));
    };
    line(static_cast<std::size_t>(outcome.Known), "entry is in the list already.", "entries are in the list already.");
    line(leftPast, "entry is in the past and was left out.", "entries are in the past and were left out.");
    line(static_cast<std::size_t>(outcome.Dateless), "entry has no date and was left out.",
         "entries have no date and were left out.");
    line(noRoom, "entry was left out because the list is full.", "entries were left out because the list is full.");
    line(static_cast<std::size_t>(outcome.Repeating), "entry repeats; its next date was taken.",
         "entries repeat; the next date of each was taken.");
    line(static_cast<std::size_t>(outcome.Shortened), "entry is longer than a reminder can be and was shortened.",
         "entries are longer than a reminder can be and were shortened.");
    line(static_cast<std::size_t>(outcome.Foreign),
         "entry is in a time zone that is not known here; its time was taken as it is written.",
         "entries are in a time zone that is not known here; their times were taken as they are written.");
    lines.insert(lines.end(), outcome.Refusals.begin(), outcome.Refusals.end());
    if (added > 0 && !program_.Main->ReminderTimerEnabled())
        lines.emplace_back("Reminders are disabled; nothing is announced until you enable them.");
    program_.Reminders.ReminderMessage(JoinLines(lines),
                                       vbOKOnly + (outcome.Refusals.empty() ? vbInformation : vbExclamation),
                                       added > 0 ? "Congratulate" : "Decline");
}

void Calendars::Save()
{
    const Command command(working_);
    if (!command.Begun() || !ListIsRead())
        return;
    const ReminderList& list = program_.Reminders.List;
    if (list.RemCount == 0) {
        program_.Reminders.ReminderMessage("There are no reminders to save.", vbOKOnly + vbInformation, "Decline");
        return;
    }
    CommonDialog dialog;
    dialog.DialogTitle = "Save as Calendar File";
    dialog.Filter = "Calendar Files (*.ics)|*.ics";
    dialog.FileName = "Reminders.ics";
    std::string file = askWhere_(dialog);
    if (file.empty())
        return;
    if (program_.Host.Files.GetExtensionName(file).empty())
        file += ".ics";
    std::vector<Reminder> reminders;
    for (std::int32_t id = 1; id <= list.RemCount; ++id)
        reminders.push_back(list.At(id));
    const std::string text = CalendarText(reminders, StampNow());
    if (!save_(file, text)) {
        program_.Reminders.ReminderMessage("The calendar cannot be saved in the following file:" + std::string(CrLf) +
                                               file,
                                           vbOKOnly + vbExclamation, "Decline");
        return;
    }
    program_.Reminders.ReminderMessage(Counted(reminders.size(), "reminder was", "reminders were") +
                                           " saved in the following file:" + CrLf + file,
                                       vbOKOnly + vbInformation, "Congratulate");
}

} // namespace voxmate
