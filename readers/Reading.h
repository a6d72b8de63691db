// A document read in a process of its own.
#pragma once

#include "platform/Helper.h"
#include "readers/Block.h"
#include "readers/Frames.h"
#include "readers/Kind.h"
#include "readers/Refusal.h"

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace voxmate::readers
{

/// The name of the program that reads.
inline constexpr const char* ReaderProgram = "voxmate-reader";

/// Starts the reader and takes its blocks as they come. Destroying it ends the reader.
///
///     readers::Reading reading(path);
///     // in a timer of the event loop, or where a little waiting does no harm:
///     while (const std::optional<readers::Block> block = reading.Next(10ms))
///         …
///     if (reading.AtEnd() && reading.Outcome() != readers::Refusal::None)
///         tell(reading.Sentence());
class Reading
{
public:
    /// Raises nothing: what is wrong with the file is the outcome.
    explicit Reading(std::string path);
    /// For tests: the helper in place of one that is started.
    Reading(std::string path, std::unique_ptr<Helper> helper);
    ~Reading();
    Reading(const Reading&) = delete;
    Reading& operator=(const Reading&) = delete;

    /// The next block. Waits for it at most `wait`; nothing when there is none by then, or AtEnd.
    std::optional<Block> Next(std::chrono::milliseconds wait);
    /// Whether there are no more blocks.
    bool AtEnd() const { return outcome_.has_value(); }
    /// AtEnd: None when the document was read to its end, otherwise why it was not. Blocks read before stay as they
    /// are.
    Refusal Outcome() const { return outcome_.value_or(Refusal::None); }
    /// The sentence for the user about the outcome; empty when there is nothing to tell.
    std::string Sentence() const;
    /// What the document is, as soon as that is known: at the first block at the latest.
    std::optional<Kind> DocumentKind() const { return kind_; }

private:
    std::optional<Block> Take();
    void End(Refusal outcome);

    std::string path_;
    std::unique_ptr<Helper> helper_;
    FrameDecoder frames_;
    std::vector<char> buffer_;
    std::optional<Kind> kind_;
    std::optional<Refusal> outcome_;
    bool begun_ = false;
};

} // namespace voxmate::readers
