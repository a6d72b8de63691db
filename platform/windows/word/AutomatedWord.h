// The word processor on Windows: Word itself, by its automation.
#pragma once

#include "platform/Word.h"

#include <chrono>

namespace voxmate::windows_platform
{

/// Each word processor is a new, invisible one; documents that the user has open are neither used nor disturbed.
/// Positions count UTF-16 units, as Word does.
class AutomatedWord : public WordAutomation
{
public:
    static constexpr std::chrono::milliseconds DefaultTimeLimit = std::chrono::seconds(60);

    /// Opening a document may take `timeLimit`.
    explicit AutomatedWord(std::chrono::milliseconds timeLimit = DefaultTimeLimit) : timeLimit_(timeLimit) {}

    std::unique_ptr<WordApplication> CreateWord() override;

private:
    const std::chrono::milliseconds timeLimit_;
};

} // namespace voxmate::windows_platform
