// One voice channel: speaks a marked-up text or plays a wave file through the sound output. It reports on the
// user-interface thread, timed by the sound output's clock, which word, mouth and bookmark is being heard.
#pragma once

#include "platform/Agent.h"

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
    /// Text and Bookmark: `firstWord` is its position among the words the listener sees, so that a balloon can follow.
    /// When the spoken text differs from the shown one, `shownWords` is the number of shown words that its spoken words
    /// stand for; -1 when both are the same.
    int firstWord = 0;
    int shownWords = -1;
};

struct Utterance {
    std::string modeId; ///< the voice's identifier without braces; the first voice when empty or unknown
    std::vector<Segment> segments;
    /// When not empty, this file is played instead, with mouths by its loudness. The shown words are reported evenly
    /// over its length, and each bookmark of `segments` at its place among them.
    std::string waveFile;
    int shownWords = 0;      ///< how many words the listener sees in all
    bool byLanguage = false; ///< each paragraph is spoken by a voice of its language, see SpeakInTurns
};

/// Callbacks on the user-interface thread, each made when its moment is heard. After Stop only Ended is called.
struct VoiceEvents {
    std::function<void()> Started;        ///< the first sample is heard
    std::function<void(int word)> Word;   ///< index of the shown word that begins now
    std::function<void(int mouth)> Mouth; ///< 0 closed, 1 to 4 wide in four shapes, 5 medium, 6 narrow
    std::function<void(int number)> Bookmark;
    std::function<void(bool ok)> Ended; ///< the last sample has been heard (true), or it was stopped or failed (false)
};

class VoiceOutput
{
public:
    virtual ~VoiceOutput() = default;
    /// Available, NoSupport (no output device), CannotOpen, CharacterSpeaking, or Unknown for any other state.
    virtual AudioStatus Status() = 0;
    /// Starts speaking; sound begins before synthesis is complete. Only one utterance runs at a time: a running one is
    /// stopped.
    virtual void Start(Utterance utterance, VoiceEvents events) = 0;
    /// Silences the output within one audio buffer; Ended(false) follows from the event loop.
    virtual void Stop() = 0;
};

} // namespace voxmate::speech
