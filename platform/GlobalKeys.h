// Keys that reach the program whichever program has the keyboard, and the text that is selected there.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace voxmate
{

class GlobalKeys
{
public:
    virtual ~GlobalKeys() = default;

    struct Key {
        std::string Name;        ///< tells the keys apart ("read-selection")
        std::string Description; ///< for the desktop, where it shows a list of such keys
        std::string Trigger;     ///< "Ctrl+Alt+S": modifiers and a letter; a desktop may let the user choose another
        bool operator==(const Key&) const = default;
    };
    enum class Outcome {
        Held,    ///< it reaches the program from now on
        Taken,   ///< another program has it
        Refused, ///< by the user, in the desktop's dialog
        None     ///< the desktop offers no such keys
    };

    /// Both run in the event loop. Answered tells what came of a key that Hold asked for; `trigger` is then the key in
    /// the desktop's words.
    std::function<void(const std::string& name)> Pressed;
    std::function<void(const std::string& name, Outcome outcome, const std::string& trigger)> Answered;

    /// Holds these keys from now on, and no others. Returns at once, even where the desktop does not answer.
    virtual void Hold(const std::vector<Key>& keys) = 0;
    /// The text that was selected last, in whichever program; empty when there is none, or the desktop does not tell.
    virtual std::string SelectedText() = 0;
};

} // namespace voxmate
