// Keys of the whole desktop: by the portal GlobalShortcuts where the session has one, otherwise from the X11 server.
#pragma once

#include "platform/GlobalKeys.h"

#include <string>
#include <vector>

class QObject;

namespace voxmate::linux_platform
{

class DesktopKeys : public GlobalKeys
{
public:
    /// The application object must exist, and outlive this object.
    DesktopKeys();
    ~DesktopKeys() override;
    DesktopKeys(const DesktopKeys&) = delete;
    DesktopKeys& operator=(const DesktopKeys&) = delete;

    void Hold(const std::vector<Key>& keys) override;
    /// X11's primary selection, and that of Wayland as far as the compositor lets a program in the background see it.
    std::string SelectedText() override;

private:
    QObject* const object_; ///< talks to the bus; belongs to the application object
};

} // namespace voxmate::linux_platform
