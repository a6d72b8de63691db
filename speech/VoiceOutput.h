// One voice channel: speaks a marked-up text or plays a wave file through the sound output and reports, on the
// user-interface thread and by the sound output's own clock, which word, mouth and bookmark is being heard.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace voxmate::speech
{

/// How a stretch of text is spoken.
struct Prosody {
    int pitchHz = 0;        ///< baseline pitch in hertz; 0: the voice's own
    int wordsPerMinute = 0; ///< 0: the voice's own
    bool whisper = false;
    bool monotone = false;
    int volume = 65535; ///< 0 to 65535
    bool operator==(const Prosody&) const = default;
};

/// A piece of what is to be spoken, in order.
struct Segment {
    enum class Kind { Text, Pause, Bookmark };
    Kind kind = Kind::Text;
    std::string text;      ///< Text: UTF-8, without tags
    Prosody prosody;       ///< Text
    bool emphasis = false; ///< Text: stress its first word
    int milliseconds = 0;  ///< Pause: 10 to 2550
    int bookmark = 0;      ///< Bookmark: its number
    /// Text and Bookmark: where it begins among the words the listener sees (counted in words), so that a balloon can
    /// follow; all its words count as `shownWords` words when the spoken and the shown text differ, -1 when they are
    /// the same.
    int firstWord = 0;
    int shownWords = -1;
};

struct Utterance {
    std::string modeId; ///< the voice, without braces; unknown or empty: the first voice
    std::vector<Segment> segments;
    /// When not empty this file is played instead, with mouths by its loudness. The shown words and, among them, the
    /// bookmarks of `segments` are told evenly over its length.
    std::string waveFile;
    int shownWords = 0; ///< how many words the listener sees in all
};

/// Callbacks on the user-interface thread, each when its moment is heard. After Stop none comes but Ended.
struct VoiceEvents {
    std::function<void()> Started;        ///< the first sample is heard
    std::function<void(int word)> Word;   ///< index of the shown word that begins now
    std::function<void(int mouth)> Mouth; ///< 0 closed, 1 to 4 wide in four shapes, 5 medium, 6 narrow
    std::function<void(int number)> Bookmark;
    std::function<void(bool ok)> Ended; ///< the last sample has been heard, or it was stopped or failed
};

class VoiceOutput
{
public:
    virtual ~VoiceOutput() = default;
    /// 0 available, 1 no output device, 2 the device cannot be opened, 4 speaking, 6 anything else.
    virtual int Status() = 0;
    /// Starts speaking; sound begins before all of it is synthesised. One utterance at a time: a running one is
    /// stopped.
    virtual void Start(Utterance utterance, VoiceEvents events) = 0;
    /// Silence within one audio buffer; Ended(false) follows from the event loop.
    virtual void Stop() = 0;
};

} // namespace voxmate::speech
