// Text files on Windows, read line by line.
#pragma once

#include "platform/FileSystem.h"
#include "platform/windows/files/CodePage.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace voxmate::windows_platform
{

/// The largest text file in bytes: half a year of speech.
inline constexpr std::int64_t LargestTextFile = std::int64_t{256} << 20;

/// Reads the file at once, so that it is not kept open.
class WindowsTextStream : public TextStream
{
public:
    /// Raises the errors of FileSystem::OpenTextFile. A file that is neither UTF-8 nor UTF-16 is read with the code
    /// page.
    explicit WindowsTextStream(const std::string& path, unsigned codePage = CodePageOfUser());

    bool AtEndOfStream() override { return at_ == text_.size(); }
    std::string ReadLine() override;
    void AppendLine(std::string& text) override;
    std::size_t SizeHint() override;

private:
    std::string text_;
    std::size_t at_ = 0; ///< where the next line begins
};

} // namespace voxmate::windows_platform
