// Whether the desktop starts the program when the user logs in.
#pragma once

#include <string>

namespace voxmate
{

class Autostart
{
public:
    virtual ~Autostart() = default;
    /// Reads it anew each time, because other programs switch it, too.
    virtual bool IsOn() = 0;
    /// False when that could not be written down; everything then stays as it was. The program is started with
    /// --quiet.
    virtual bool Turn(bool on) = 0;
    /// What Turn writes, for messages.
    virtual std::string Path() = 0;
};

} // namespace voxmate
