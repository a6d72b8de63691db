// The word processor on Linux: LibreOffice, run without windows in a separate process.
#pragma once

#include "platform/Word.h"

#include <chrono>
#include <memory>
#include <string>
#include <vector>

namespace voxmate::linux_platform
{

class Standby;

/// Reads Word's binary documents, its XML documents and rich text, and anything else LibreOffice can read as a document
/// or a text; the file's content decides, not its name. Each document is converted by a separate LibreOffice with a
/// fresh profile, in which macros do not run and which can load nothing but files, and without any network where the
/// system grants that. A LibreOffice the user has open is neither used nor disturbed. Positions count code points.
class LibreOfficeWord : public WordAutomation
{
public:
    static constexpr std::chrono::milliseconds DefaultTimeLimit = std::chrono::seconds(60);
    static constexpr std::chrono::milliseconds DefaultReadyTime = std::chrono::seconds(60);

    /// Looks for soffice in these folders, separated by colons. A conversion may take `timeLimit`; time during which
    /// the program does something else, such as showing a message box, is not counted. What is prepared waits for its
    /// document for `readyTime` and is then ended.
    explicit LibreOfficeWord(std::string folders = Folders(), std::chrono::milliseconds timeLimit = DefaultTimeLimit,
                             std::chrono::milliseconds readyTime = DefaultReadyTime);
    /// Waits until all that was prepared has ended.
    ~LibreOfficeWord() override;
    LibreOfficeWord(const LibreOfficeWord&) = delete;
    LibreOfficeWord& operator=(const LibreOfficeWord&) = delete;

    /// $PATH and the places where distributions put soffice.
    static std::string Folders();

    std::unique_ptr<WordPreparation> Prepare() override;
    std::unique_ptr<WordApplication> CreateWord() override;

private:
    std::string folders_;
    std::chrono::milliseconds timeLimit_;
    std::chrono::milliseconds readyTime_;
    std::vector<std::shared_ptr<Standby>> standbys_; ///< also those that are still being ended
    std::shared_ptr<Standby> prepared_;              ///< for the next CreateWord
};

} // namespace voxmate::linux_platform
