// What helps to enter a reminder in the editor.
#pragma once

#include "extras/QuickEntry.h"
#include "forms/frmReminder.h"
#include "modules/Program.h"

#include <string>
#include <variant>

namespace voxmate
{

/// The keyboard begins in the title, an empty list says what to do, and Add and Update stand below their fields.
///
/// A title may say when, as in "tea in 15 minutes". What was understood is shown below it, and Add then takes title,
/// date and time from there; a description that is empty, or still that of the reminder that was shown, becomes the
/// title, and a mark that was shown is taken away. Where it is not added after all, the fields stay. This ends as soon
/// as the user sets date or time in their fields, until these show another reminder. The other buttons take the title
/// as it is written.
///
/// In an empty list the fields for date and time follow the title: they show the moment that was understood, else the
/// next full quarter of an hour, unless that is tomorrow.
class ReminderEntry
{
public:
    /// `editor` must not have been loaded yet, and must not be shown after this object's end.
    ReminderEntry(Program& program, frmReminder& editor);

private:
    Program& program_;
    frmReminder& editor_;
    Label lblUnderstood_;
    std::variant<NoTimeSaid, QuickReminder, QuickRefusal> read_;
    bool byHand_ = false;     ///< the user has set date or time
    bool set_ = false;        ///< the program has filled the fields since this was last false
    std::string description_; ///< as the program filled it in
    int done_ = 0;            ///< likewise
    bool working_ = false;    ///< Add runs

    void Arrange();
    void FieldsSet();
    void TitleEdited();
    void MomentEdited();
    void Add(const Event& add);
    void AddUnderstood(QuickReminder reminder, const Event& add);
    void Understand(std::variant<NoTimeSaid, QuickReminder, QuickRefusal> read);
    void ShowMoment(const DateTime& at);
    void Suggest();
};

} // namespace voxmate
