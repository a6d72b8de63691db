// Text files on Linux, read line by line.
#pragma once

#include "base/TextEncoding.h"
#include "platform/FileSystem.h"
#include "platform/linux/files/CodePage.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace voxmate::linux_platform
{

/// The largest text file, in bytes: half a year of speech. While it is being spoken its text is kept three times over
/// (as it was asked for, for the voice and for the balloon), and that has to fit into the memory of a small computer.
inline constexpr std::int64_t LargestTextFile = std::int64_t{256} << 20;

/// Reads in blocks, so that a file that is cut short or removed meanwhile does no harm. What is added to a file after
/// it was opened may be left out.
class LinuxTextStream : public TextStream
{
public:
    /// Opens the file and finds out how it is encoded, for which a file that is not UTF-16 is read once through; one
    /// that is not UTF-8 either is taken for one of the code page, which has to outlive the stream. Raises what
    /// FileSystem::OpenTextFile does.
    explicit LinuxTextStream(const std::string& path, const CodePage& codePage = CodePage::OfUser());

    bool AtEndOfStream() override;
    std::string ReadLine() override;
    void AppendLine(std::string& text) override;
    std::size_t SizeHint() override;

private:
    /// An open file.
    class File
    {
    public:
        /// Opens a regular file without ever waiting for it; raises run-time errors 53, 57 and 70.
        explicit File(const std::string& path);
        ~File();
        File(const File&) = delete;
        File& operator=(const File&) = delete;

        /// Its size as the file system tells it, in bytes; 0 for the files a system makes up as they are read.
        std::int64_t Size() const { return size_; }
        /// Fills the buffer from `position` on and returns the number of bytes read: fewer than it holds only at the
        /// file's end. Raises run-time error 57.
        std::size_t Read(std::int64_t position, std::string& buffer) const;

    private:
        int descriptor_;
        std::int64_t size_ = 0;
    };

    void FindEncoding();
    /// Sees to it that there is text ahead; false at the end of the file.
    bool Fill();
    /// Where the line that begins at at_ ends in text_: at a line feed or carriage return, or at the end of it.
    std::size_t LineEnd();
    /// Puts a block of the file into text_ and returns how many of its bytes that took: without what there is of a
    /// character that breaks off at its end, unless it is the file's last block.
    std::size_t Take(std::string_view block, bool last);

    File file_;
    const CodePage& codePage_;
    TextEncoding encoding_ = TextEncoding::Utf8;
    bool damaged_ = false;      ///< UTF-8 with bytes in it that are none
    std::int64_t position_ = 0; ///< of the next block in the file
    std::int64_t end_ = LargestTextFile;
    std::string block_;
    std::string decoded_;    ///< a block in UTF-8, where the file is not
    std::string_view text_;  ///< the block at hand in UTF-8
    std::size_t at_ = 0;     ///< where the next line begins in it
    std::size_t nextLf_ = 0; ///< the first line feed and the first carriage return from there on
    std::size_t nextCr_ = 0;
    bool afterCr_ = false; ///< a line feed would still belong to the end of the last line
};

} // namespace voxmate::linux_platform
