// The reminder editor's fake.
#pragma once

#include "modules/Windows.h"
#include "tests/fakes/Log.h"

#include <cstdint>
#include <string>
#include <vector>

namespace voxmate::fakes
{

class FakeEditor : public ReminderEditor
{
public:
    explicit FakeEditor(Log& log) : log_(log) {}
    std::vector<std::string> rows; ///< what the list holds

    void ShowEditor() override { log_.push_back("Editor shown"); }
    void UnloadEditor() override { log_.push_back("Editor unloaded"); }
    void ClearList() override { rows.clear(); }
    void AddListItem(std::int16_t id, ReminderImage image, const std::string& title, const std::string& date,
                     const std::string& time) override
    {
        rows.push_back(std::to_string(id) + "|" + std::to_string(image) + "|" + title + "|" + date + "|" + time);
    }
    void SelectListItem(std::int16_t index) override { log_.push_back("Select item " + std::to_string(index)); }
    void ShowFields(const Reminder& reminder) override
    {
        log_.push_back("Fields " + reminder.Title + "|" + std::to_string(reminder.Day) + "|" +
                       std::to_string(reminder.Month) + "|" + std::to_string(reminder.Year) + "|" +
                       Padded(reminder.Hour, 2) + ":" + Padded(reminder.Minute, 2) + "|" + reminder.Description +
                       (reminder.Done ? "|done" : "|pending"));
    }
    void ClearFields() override { log_.push_back("Fields empty"); }

private:
    Log& log_;
};

} // namespace voxmate::fakes
