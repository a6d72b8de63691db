// The word processor on Linux: LibreOffice, run without windows as a program of its own.
#pragma once

#include "platform/Word.h"

#include <chrono>
#include <string>

namespace voxmate::linux_platform
{

/// Reads Word's binary documents, its XML documents and rich text, and whatever else LibreOffice knows as a document or
/// a text: what is in a file counts, not what it is called. Each document is converted by a LibreOffice of its own with
/// a fresh profile, in which macros don't run and which can load nothing but files, and without any network where the
/// system grants that; an open LibreOffice of the user's is neither used nor disturbed. Positions count code points.
class LibreOfficeWord : public WordAutomation
{
public:
    static constexpr std::chrono::milliseconds DefaultTimeLimit = std::chrono::seconds(60);

    /// Looks for soffice in these folders, parted by colons, and lets a conversion take this long; time in which
    /// the program does something else, as long as a box is up, is not counted.
    explicit LibreOfficeWord(std::string folders = Folders(), std::chrono::milliseconds timeLimit = DefaultTimeLimit);

    /// $PATH and the places where distributions put soffice.
    static std::string Folders();

    std::unique_ptr<WordApplication> CreateWord() override;

private:
    std::string folders_;
    std::chrono::milliseconds timeLimit_;
};

} // namespace voxmate::linux_platform
