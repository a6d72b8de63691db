// Parts of an utterance.
#pragma once

#include "speech/Engine.h"

#include <string>
#include <utility>

namespace voxmate::speech
{

inline Segment Text(std::string text, Prosody prosody = {})
{
    Segment segment;
    segment.text = std::move(text);
    segment.prosody = prosody;
    return segment;
}

inline Segment Pause(int milliseconds)
{
    Segment segment;
    segment.kind = Segment::Kind::Pause;
    segment.milliseconds = milliseconds;
    return segment;
}

inline Segment Bookmark(int number)
{
    Segment segment;
    segment.kind = Segment::Kind::Bookmark;
    segment.bookmark = number;
    return segment;
}

} // namespace voxmate::speech
