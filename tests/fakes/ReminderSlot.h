// A slot of the reminders' file, put together without the program.
#pragma once

#include <array>
#include <string>

namespace voxmate
{

/// Title, day, month, year, hour, minute, description, flag.
using ReminderFields = std::array<std::string, 8>;

inline std::string Slot(const ReminderFields& fields, char filler = '\0')
{
    std::string bytes;
    for (const std::string& field : fields) {
        bytes += static_cast<char>(field.size() % 256);
        bytes += static_cast<char>(field.size() / 256);
        bytes += field;
    }
    bytes.resize(128, filler);
    return bytes;
}

} // namespace voxmate
