// The desktop's notifications: small messages that it shows, keeps and stacks by itself, with buttons where it has
// them.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace voxmate
{

class DesktopNotifications
{
public:
    virtual ~DesktopNotifications() = default;

    struct Button {
        std::string Name; ///< tells the buttons apart ("done")
        std::string Caption;
        bool operator==(const Button&) const = default;
    };
    struct Notification {
        std::string Title;
        std::string Text;            ///< plain text; lines end with "\n"
        std::vector<Button> Buttons; ///< left out where the desktop's notifications have none
        bool operator==(const Notification&) const = default;
    };
    enum class End {
        Dismissed, ///< the user has closed it
        Lost       ///< the desktop has removed it by itself, could not show it, or did not answer
    };

    /// All run in the event loop. ServerChanged: Serves() has changed. A notification ends with one of the other two;
    /// one that Close was called for is not told of.
    std::function<void()> ServerChanged;
    std::function<void(int number, const std::string& button)> Pressed;
    std::function<void(int number, End why)> Ended;

    /// Begins to look for the desktop's notifications, the first time it is called. Returns at once.
    virtual void Begin() = 0;
    /// Whether the desktop shows notifications, as far as that is known by now.
    virtual bool Serves() const = 0;
    /// Shows a notification until it is closed, in place of the one of this number if that is still there. Does nothing
    /// unless Serves().
    virtual void Show(int number, const Notification& notification) = 0;
    /// Takes the notification of this number away, if there is one.
    virtual void Close(int number) = 0;
};

} // namespace voxmate
