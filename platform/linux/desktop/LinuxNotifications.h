// The desktop's notifications, over the session's bus.
#pragma once

#include "platform/DesktopNotifications.h"

class QObject;

namespace voxmate::linux_platform
{

class LinuxNotifications : public DesktopNotifications
{
public:
    /// The application object must exist, and outlive this object.
    LinuxNotifications();
    ~LinuxNotifications() override;
    LinuxNotifications(const LinuxNotifications&) = delete;
    LinuxNotifications& operator=(const LinuxNotifications&) = delete;

    void Begin() override;
    bool Serves() const override;
    void Show(int number, const Notification& notification) override;
    void Close(int number) override;
    /// Takes all of them away: the program ends, and their buttons would do nothing any more. In any other thread than
    /// the application object's this does nothing.
    void CloseAll();

private:
    QObject* const object_; ///< talks to the bus; belongs to the application object
};

} // namespace voxmate::linux_platform
