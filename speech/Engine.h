// A family of speech engines: lists its voices and turns text into samples with the times of words and mouths.
#pragma once

#include "speech/VoiceOutput.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace voxmate
{
class SystemVoices;
}

namespace voxmate::speech
{

struct Voice {
    std::string name;     ///< the name shown to the user: "eSpeak English (Great Britain)"
    std::string modeId;   ///< GUID in text form without braces, upper case, the same from run to run
    std::string language; ///< BCP 47, lower case: "en-gb"
    std::string key;      ///< the family's own name for it
    enum class Origin { Engine, Variant, Added };
    Origin origin = Origin::Engine; ///< comes with its engine, is a variant of another voice, or was added by the user
};

struct SpeechEvent {
    enum class Kind { Word, Mouth, Bookmark };
    Kind kind = Kind::Mouth;
    std::int64_t sample = 0; ///< position in the utterance's own samples
    int value = 0;           ///< shown word index, mouth 0 to 6, or bookmark number
};

/// Receives an engine's output, on the engine's thread, in order of time. An event's position is at most one block
/// before the end of the samples already delivered.
class SampleSink
{
public:
    virtual ~SampleSink() = default;
    /// Takes mono 16-bit samples at the voice's rate. False: stop synthesising.
    virtual bool Samples(std::span<const std::int16_t> samples) = 0;
    virtual void Event(const SpeechEvent& event) = 0;
    /// False: stop synthesising. Asked during long work that comes before the first sample.
    virtual bool Wanted() const { return true; }
};

class Engine
{
public:
    virtual ~Engine() = default;
    /// The voices in no particular order; empty when the engine's library or data is missing.
    virtual const std::vector<Voice>& Voices() = 0;
    /// The variants that can be made of one of Voices(): the same language in other people's voices.
    virtual std::vector<Voice> VariantsOf(const Voice&) { return {}; }
    /// Samples per second of a voice.
    virtual int SampleRate(const Voice& voice) = 0;
    /// Speaks the segments into `sink`. Returns true when everything is delivered or the sink said stop, false when
    /// synthesis failed. Called on one worker thread only.
    virtual bool Synthesize(const Voice& voice, std::span<const Segment> segments, SampleSink& sink) = 0;
    /// Gives back the memory that can be had again, when nothing was spoken for a while. On the worker thread, too.
    virtual void Rest() {}
};

std::unique_ptr<Engine> CreateEspeakEngine();
std::unique_ptr<Engine> CreateFliteEngine();
/// The English voices in a folder's .flitevox files. The folder need not exist.
std::unique_ptr<Engine> CreateFlitevoxEngine(std::filesystem::path folder);
/// Piper's neural voices in `own` and where others put them (below `data`, ~/.local/share, and `home`), if ONNX Runtime
/// is in own/runtime or installed. With one sentence each, `leftOut` is told of voices that are not listed, and
/// `failed` of a listed one that could not be loaded or failed while it spoke; both on the thread that asks the engine.
std::unique_ptr<Engine> CreatePiperEngine(const std::filesystem::path& own, const std::filesystem::path& data,
                                          const std::filesystem::path& home,
                                          std::function<void(const std::string&)> leftOut,
                                          std::function<void(const std::string&)> failed);
/// The voices that the system has for all programs.
std::unique_ptr<Engine> CreateSystemEngine(std::unique_ptr<SystemVoices> voices);

} // namespace voxmate::speech
