// Whether a full-screen window has the keyboard, from the X11 server, or the desktop's do-not-disturb is on: over the
// session's bus under Plasma and Xfce, from GNOME's settings under GNOME.
#pragma once

#include "platform/Quiet.h"

class QObject;

namespace voxmate::linux_platform
{

class DesktopQuiet : public Quiet
{
public:
    /// The application object must exist, and outlive this object.
    DesktopQuiet();
    ~DesktopQuiet() override;
    DesktopQuiet(const DesktopQuiet&) = delete;
    DesktopQuiet& operator=(const DesktopQuiet&) = delete;

    void Ask() override;

private:
    QObject* const object_; ///< does the asking; belongs to the application object
};

} // namespace voxmate::linux_platform
