// The network of a neural voice in ONNX Runtime: numbers of phonemes in, samples out.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace voxmate::speech
{

class PiperModel
{
public:
    /// How a text is spoken: how much the voice varies, how long it is beside its own length, and how much lengths
    /// vary.
    struct Scales {
        float noise = 0.667F;
        float length = 1;
        float width = 0.8F;
    };
    /// A piece of what is heard.
    struct Piece {
        std::span<const float> samples; ///< about -1 to 1
        /// Of each number, in steps of the network; empty when it does not tell. What is heard of a number is that many
        /// steps, rounded up; all steps have the same number of samples. The same with each piece.
        std::span<const float> steps;
        std::size_t all = 0; ///< the samples of all pieces
    };
    /// Takes the pieces in their order; false ends the sound.
    using Take = std::function<bool(const Piece&)>;

    /// Whether ONNX Runtime is installed, in `folder` or where the system has libraries. It is not loaded for that.
    static bool Available(const std::filesystem::path& folder);

    /// Loads a network of this kind: inputs "input", "input_lengths", "scales" and, for several speakers, "sid"; one
    /// output of samples. The runtime is loaded, from `folder` or the system, with the first network of all. Nothing
    /// when that fails; `why` then says so in one sentence.
    static std::unique_ptr<PiperModel> Load(const std::filesystem::path& file, const std::filesystem::path& folder,
                                            std::string& why);

    virtual ~PiperModel() = default;
    /// Speaks the numbers: in pieces, of which the first has half a second, where the network can be divided before its
    /// last part, and in one otherwise. False when it fails or is ended: `wanted` is asked every 20 ms, on another
    /// thread.
    virtual bool Speak(std::span<const std::int64_t> numbers, const Scales& scales, std::int64_t speaker,
                       const std::function<bool()>& wanted, const Take& take) = 0;
};

} // namespace voxmate::speech
