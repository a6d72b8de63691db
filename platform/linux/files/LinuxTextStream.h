// Text files on Linux, read line by line.
#pragma once

#include "base/TextEncoding.h"
#include "platform/FileSystem.h"
#include "platform/linux/files/CodePage.h"
#include "platform/linux/files/LinuxRandomFile.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace voxmate::linux_platform
{

/// The largest text file in bytes, half a year of speech. While a text is spoken, three copies of it are kept (as
/// requested, for the voice and for the balloon), and they have to fit into the memory of a small computer.
inline constexpr std::int64_t LargestTextFile = std::int64_t{256} << 20;

/// Reads in blocks, so a file that is truncated or removed while being read does no harm. Text added to the file after
/// it was opened may be left out.
class LinuxTextStream : public TextStream
{
public:
    /// Opens the file and detects its encoding. Unless the file is UTF-16 this reads it once completely; a file that is
    /// not UTF-8 either is read with the code page, which must outlive the stream. Raises the errors of
    /// FileSystem::OpenTextFile.
    explicit LinuxTextStream(const std::string& path, const CodePage& codePage = CodePage::OfUser());

    bool AtEndOfStream() override;
    std::string ReadLine() override;
    void AppendLine(std::string& text) override;
    std::size_t SizeHint() override;

private:
    void FindEncoding();
    /// Reads on if no text is left in text_; false at the end of the file.
    bool Fill();
    /// The end of the line that begins at at_: the position of a line feed or carriage return in text_, or the end of
    /// text_.
    std::size_t LineEnd();
    /// Puts a block of the file into text_ and returns how many of its bytes were used. An incomplete character at its
    /// end is left for the next block, unless `last` is set.
    std::size_t Take(std::string_view block, bool last);

    std::int64_t size_ = 0; ///< in bytes, as the file system reports it; 0 for files generated while they are read
    Descriptor file_;
    const CodePage& codePage_;
    TextEncoding encoding_ = TextEncoding::Utf8;
    bool damaged_ = false;      ///< UTF-8 with invalid bytes in it
    std::int64_t position_ = 0; ///< offset of the next block in the file
    std::int64_t end_ = LargestTextFile;
    std::string block_;
    std::string decoded_;    ///< the current block converted to UTF-8, if the file is not UTF-8
    std::string_view text_;  ///< the current block in UTF-8
    std::size_t at_ = 0;     ///< position in text_ where the next line begins
    std::size_t nextLf_ = 0; ///< the first line feed from there on; nextCr_ is the first carriage return
    std::size_t nextCr_ = 0;
    bool afterCr_ = false; ///< a line feed that comes next still belongs to the end of the last line
};

} // namespace voxmate::linux_platform
