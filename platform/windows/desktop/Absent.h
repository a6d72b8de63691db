// What there is none of on Windows yet. The program does without, as on a desktop that offers none.
#pragma once

#include "platform/DesktopNotifications.h"
#include "platform/MediaControls.h"

namespace voxmate::windows_platform
{

class NoMediaControls : public MediaControls
{
public:
    void Show(const State& /*state*/) override {}
    void Withdraw() override {}
};

class NoNotifications : public DesktopNotifications
{
public:
    void Begin() override {}
    bool Serves() const override { return false; }
    void Show(int /*number*/, const Notification& /*notification*/) override {}
    void Close(int /*number*/) override {}
    void CloseAll() {}
};

} // namespace voxmate::windows_platform
