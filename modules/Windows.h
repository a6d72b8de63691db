// What the modules need of the windows beside the main one; their forms implement it.
#pragma once

#include "modules/ReminderRecord.h"

#include <cstdint>
#include <string>

namespace voxmate
{

/// A pop-up that announces one reminder and leaves by itself or when clicked.
class AlertWindow
{
public:
    virtual ~AlertWindow() = default;
    virtual bool Visible() const = 0;
    /// Sets the window up, shows it and lets it come. `bFormId` is the reminder's number, from 1; a preview
    /// (`bPreview`) changes no reminder when it closes. `DisplaySeconds`: how long it stays; 0 until clicked, negative
    /// until CloseActivate. `bFade`: fades in and out, else slides. `bAutoFit`: grows to the text's height. `bSquare`:
    /// a square frame, else round corners. `iBackColor`: 0x00BBGGRR. `bTubeFill`: coloured along top and bottom, else
    /// out of the lower right corner.
    virtual void DisplayMessage(const std::string& SMessage, std::int16_t bFormId, bool bPreview,
                                std::int32_t DisplaySeconds, bool bFade, bool bAutoFit, bool bSquare,
                                std::int32_t iBackColor, bool bTubeFill) = 0;
    /// True lets the window leave from its next tick on.
    virtual void SetCloseActivate(bool vNewValue) = 0;
    /// Always false.
    virtual bool CloseActivate() const = 0;
    /// Lets the window leave from its next tick on, without an answer to its reminder, which has got one elsewhere.
    virtual void Withdraw() = 0;
};

/// What a notice window shows.
struct NoticeText {
    std::string Heading;
    std::int16_t Id = 0;
    std::string Title;
    std::string Date;
    std::string Time;
    std::string Description;
};

/// An ordinary window that announces one reminder.
class NoticeWindow
{
public:
    virtual ~NoticeWindow() = default;
    virtual bool Visible() const = 0;
    /// Fills the window, puts it in its place among the others by the setting ReminderOnTop, and shows it.
    virtual void ShowNotice(const NoticeText& text) = 0;
};

/// Pictures of the reminder editor's list, by number.
enum ReminderImage : int { DoneImage = 1, PendingImage = 2 };

/// The reminder editor's list and fields.
class ReminderEditor
{
public:
    virtual ~ReminderEditor() = default;
    virtual void ShowEditor() = 0;
    virtual void UnloadEditor() = 0;
    /// The list of reminders: empties it; adds a row of number, title, yyyy/mm/dd and HH:MM with its picture.
    virtual void ClearList() = 0;
    virtual void AddListItem(std::int16_t id, ReminderImage image, const std::string& title, const std::string& date,
                             const std::string& time) = 0;
    /// Enables cmdUpdate and cmdDelete, makes the selection row-wide and selects item `index`, counted from 1 in the
    /// order in which the items were added; what is not there is not selected.
    virtual void SelectListItem(std::int16_t index) = 0;
    /// Puts a reminder into the fields; cmdAdd is disabled.
    virtual void ShowFields(const Reminder& reminder) = 0;
    /// Empties the fields, sets today's date and disables cmdUpdate and cmdDelete.
    virtual void ClearFields() = 0;
};

/// The window with the tip of the day.
class TipWindow
{
public:
    virtual ~TipWindow() = default;
    virtual void ShowTip() = 0;
    virtual void SetChecks(int showAtStartUp, int autoRead) = 0;
    virtual void SetTipText(const std::string& text) = 0;
    virtual std::string TipText() const = 0;
    /// Shows the current tip of the list of tips, if there is one.
    virtual void DisplayCurrentTip() = 0;
};

} // namespace voxmate
