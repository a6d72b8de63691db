// Whether the user wants to be left alone just now.
#pragma once

#include <functional>

namespace voxmate
{

class Quiet
{
public:
    virtual ~Quiet() = default;
    /// The answer to Ask, in the event loop: true while another program's full-screen window has the keyboard, or the
    /// desktop's do-not-disturb is on.
    std::function<void(bool quiet)> Answered;
    /// Asks the desktop. Returns at once; the answer comes within three seconds, and is false where the desktop does
    /// not tell. Must not be called again before that.
    virtual void Ask() = 0;
};

} // namespace voxmate
