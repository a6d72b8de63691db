// The keys that fields for numbers accept.
#pragma once

namespace voxmate
{

inline constexpr int KeyEnter = 13;

/// For KeyPress: swallows every key but digits, Backspace, Enter and `also`.
inline void KeepDigits(int& keyAscii, int also = KeyEnter)
{
    constexpr int backspace = 8;
    if ((keyAscii < '0' || keyAscii > '9') && keyAscii != backspace && keyAscii != KeyEnter && keyAscii != also)
        keyAscii = 0;
}

} // namespace voxmate
