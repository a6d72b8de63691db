// A family of speech engines: lists its voices and turns text into samples with the moments of words and mouths.
#pragma once

#include "speech/VoiceOutput.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace voxmate::speech
{

struct Voice {
    std::string name;     ///< as people know it: "eSpeak English (Great Britain)"
    std::string modeId;   ///< GUID in text form without braces, upper case, the same from run to run
    std::string language; ///< BCP 47, lower case: "en-gb"
    std::string key;      ///< the family's own name for it
    enum class Origin { Engine, Variant, Added };
    Origin origin = Origin::Engine; ///< comes with its engine, is a variant of another voice, was added by a person
};

struct SpeechEvent {
    enum class Kind { Word, Mouth, Bookmark };
    Kind kind = Kind::Mouth;
    std::int64_t sample = 0; ///< position in the utterance's own samples
    int value = 0;           ///< shown word index, mouth 0 to 6, or bookmark number
};

/// Receives what an engine makes, on the engine's thread, in order of time: an event's sample position is never before
/// the samples already delivered by more than one block.
class SampleSink
{
public:
    virtual ~SampleSink() = default;
    /// Mono 16-bit samples at the voice's rate. False: stop synthesising.
    virtual bool Samples(std::span<const std::int16_t> samples) = 0;
    virtual void Event(const SpeechEvent& event) = 0;
    /// False: stop synthesising. For what takes long before there is a sample.
    virtual bool Wanted() const { return true; }
};

class Engine
{
public:
    virtual ~Engine() = default;
    /// The voices in no particular order; empty when the engine's library or data is missing.
    virtual const std::vector<Voice>& Voices() = 0;
    /// The same language in other people's voices: of one of Voices(), what else can be made of it.
    virtual std::vector<Voice> VariantsOf(const Voice&) { return {}; }
    /// Samples per second of a voice.
    virtual int SampleRate(const Voice& voice) = 0;
    /// Speaks the segments into `sink`; returns when all is delivered, the sink said stop, or it failed (false). Called
    /// on one worker thread only.
    virtual bool Synthesize(const Voice& voice, std::span<const Segment> segments, SampleSink& sink) = 0;
};

std::unique_ptr<Engine> CreateEspeakEngine();
std::unique_ptr<Engine> CreateFliteEngine();
/// The English voices in the files (.flitevox) of a folder, which need not be there.
std::unique_ptr<Engine> CreateFlitevoxEngine(std::filesystem::path folder);

} // namespace voxmate::speech
