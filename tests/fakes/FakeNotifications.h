// Notifications of the desktop that log what is shown, and end when the test says so.
#pragma once

#include "platform/DesktopNotifications.h"
#include "tests/fakes/Log.h"

#include <set>
#include <string>
#include <utility>

namespace voxmate::fakes
{

class FakeNotifications : public DesktopNotifications
{
public:
    explicit FakeNotifications(Log& log) : log_(log) {}
    bool begun = false;
    bool serves = true;
    std::set<int> shown;

    void Begin() override { begun = true; }
    bool Serves() const override { return begun && serves; }
    void Show(int number, const Notification& notification) override
    {
        if (!Serves())
            return;
        shown.insert(number);
        std::string buttons;
        for (const Button& button : notification.Buttons)
            buttons += " [" + button.Name + ": " + button.Caption + "]";
        log_.push_back("Notify " + std::to_string(number) + " " + notification.Title + "|" + notification.Text +
                       buttons);
    }
    void Close(int number) override
    {
        if (shown.erase(number) != 0)
            log_.push_back("Close notification " + std::to_string(number));
    }
    /// The user presses a button, by which a notification ends.
    void Press(int number, const std::string& button)
    {
        shown.erase(number);
        Pressed(number, button);
    }
    void EndOf(int number, End why)
    {
        shown.erase(number);
        Ended(number, why);
    }
    /// The server comes or goes.
    void Become(bool there)
    {
        serves = there;
        if (!there) {
            for (const int number : std::exchange(shown, {}))
                Ended(number, End::Lost);
        }
        ServerChanged();
    }

private:
    Log& log_;
};

} // namespace voxmate::fakes
