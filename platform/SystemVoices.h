// The voices that the system itself has, for all programs.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace voxmate
{

class SystemVoices
{
public:
    struct Voice {
        std::string Key;      ///< the system's own name for it, the same from run to run
        std::string Name;     ///< for the user
        std::string Language; ///< BCP 47, lower case: "en-gb"; empty where the system does not tell
    };

    /// What a voice makes of a text, in order of time but that a word or mouth may come behind its own samples.
    class Output
    {
    public:
        virtual ~Output() = default;
        /// Mono, 16 bits, SamplesPerSecond. False: the voice is to stop.
        virtual bool Samples(std::span<const std::int16_t> samples) = 0;
        /// The word that begins with this UTF-16 unit of the text begins at this sample.
        virtual void Word(std::size_t unit, std::int64_t sample) = 0;
        /// The mouth, by the 22 positions that the system's speech interface counts from 0 (silence).
        virtual void Viseme(int number, std::int64_t sample) = 0;
    };

    virtual ~SystemVoices() = default;
    /// The voices that are installed, in the system's order; none where it has no speech interface.
    virtual std::vector<Voice> List() = 0;
    /// Of all voices' samples.
    virtual int SamplesPerSecond() const = 0;
    /// Speaks a text at the voice's own speed and pitch. Returns when all was delivered or the output said stop; false
    /// when the voice failed. Called on one thread only, which may be another than that of List.
    virtual bool Speak(const std::string& key, std::u16string_view text, Output& output) = 0;
    /// Gives back what a voice in use takes, until it is used again. On the thread of Speak.
    virtual void Rest() = 0;
};

} // namespace voxmate
