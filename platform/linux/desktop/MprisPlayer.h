// The program as a media player on the session's bus (MPRIS 2.2), as media keys, headsets and panels look for one.
#pragma once

#include "platform/MediaControls.h"

class QObject;

namespace voxmate::linux_platform
{

class MprisPlayer : public MediaControls
{
public:
    /// The application object must exist, and outlive this object.
    MprisPlayer();
    ~MprisPlayer() override;
    MprisPlayer(const MprisPlayer&) = delete;
    MprisPlayer& operator=(const MprisPlayer&) = delete;

    void Show(const State& state) override;
    void Withdraw() override;

    static constexpr const char* Name = "org.mpris.MediaPlayer2.voxmate";

private:
    QObject* const object_; ///< what is on the bus; belongs to the application object
};

} // namespace voxmate::linux_platform
