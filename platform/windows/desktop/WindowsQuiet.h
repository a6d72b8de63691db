// Whether Windows holds back its own notifications: a full-screen program, a presentation, or its quiet hours.
#pragma once

#include "platform/Quiet.h"

#include <QObject>

namespace voxmate::windows_platform
{

class WindowsQuiet : public Quiet
{
public:
    void Ask() override;

private:
    QObject context_; ///< an answer is not given once this is gone
};

} // namespace voxmate::windows_platform
