// Media keys, headsets and the desktop's own controls for the document that is being read.
#pragma once

#include "controls/Form.h"
#include "extras/Documents.h"
#include "platform/MediaControls.h"

namespace voxmate
{

class MediaKeys
{
public:
    /// `form` owns the timer. `stop` stops everything, `raise` brings the program's window to the front.
    MediaKeys(Form& form, Documents& documents, MediaControls& controls, Event stop, Event raise);
    ~MediaKeys();
    MediaKeys(const MediaKeys&) = delete;
    MediaKeys& operator=(const MediaKeys&) = delete;

private:
    Documents& documents_;
    MediaControls& controls_;
    Event stop_;
    Event raise_;
    Timer tmrMedia_; ///< until the desktop is told that nothing is read any more
    bool shown_ = false;

    void Look();
    void Do(MediaControls::Command command);
};

} // namespace voxmate
