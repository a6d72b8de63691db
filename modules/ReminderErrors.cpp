#include "modules/ReminderErrors.h"

#include "base/Text.h"
#include "modules/ReminderRecord.h"

namespace voxmate
{

std::string Reason(const RuntimeError& error)
{
    switch (error.Number) {
    case 6:
        return "there is room for no more than 32767 reminders.";
    case 57:
        return "the disk reports an error.";
    case 61:
        return "the disk is full.";
    case 70:
        return "another program has the file open, or it may not be changed.";
    case 75:
        return "access to the file or its folder is not allowed.";
    case 76:
        return "the folder of the file does not exist.";
    default:
        return error.Description + ".";
    }
}

std::string NumberAndDescription(const RuntimeError& error)
{
    return "Error " + std::to_string(error.Number) + " - " + error.Description;
}

std::string TooLongReason(const std::string& title, const std::string& record)
{
    // A negative number in the date needs more room than usual.
    const ReminderRecord fields = ReadReminder(record);
    const std::size_t texts = fields.Title.size() + fields.Description.size();
    const std::size_t others = record.size() - texts;
    return "the title and the description of \"" + Trim(title) + "\" are too long. Together they take up " +
           std::to_string(texts) + " bytes, and there is room for " + std::to_string(ReminderSlotSize - others) +
           ". A letter from A to Z, a digit or a blank takes up one byte, any other character up to four.";
}

} // namespace voxmate
