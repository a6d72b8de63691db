// Keeps from the standard error what a library writes there and nobody can use.
#pragma once

#include <mutex>
#include <ostream>
#include <streambuf>
#include <string>

namespace voxmate::linux_platform
{

/// Takes the place of a stream's buffer as long as it lives. Any thread may write; what other libraries write without
/// the stream is not seen.
class QuietErrors final : public std::streambuf
{
public:
    /// Leaves out the lines that begin with `unwanted`, and an empty line behind each.
    QuietErrors(std::ostream& stream, std::string unwanted);
    ~QuietErrors() override;
    QuietErrors(const QuietErrors&) = delete;
    QuietErrors& operator=(const QuietErrors&) = delete;

protected:
    int_type overflow(int_type character) override;
    std::streamsize xsputn(const char* text, std::streamsize count) override;
    int sync() override;

private:
    std::ostream& stream_;
    const std::string unwanted_;
    std::streambuf* const own_;
    std::mutex mutex_;
    enum class Line { Begins, Wanted, Unwanted };
    Line line_ = Line::Begins;
    bool leftOut_ = false; ///< whether the line before was
    std::string begin_;    ///< of a line that may be unwanted

    void Put(char character);
};

} // namespace voxmate::linux_platform
