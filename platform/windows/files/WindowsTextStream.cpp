#include "platform/windows/files/WindowsTextStream.h"

#include "base/RuntimeError.h"
#include "platform/windows/files/File.h"
#include "platform/windows/system/WindowsApi.h"

#include <algorithm>

namespace voxmate::windows_platform
{

WindowsTextStream::WindowsTextStream(const std::string& path, unsigned codePage)
{
    const File file(path, Opening::Read);
    if (!file.Opens())
        throw OpenErrorOf(file.Error());
    if (!file.IsRegular())
        throw PermissionDenied();
    const std::int64_t size = file.Size();
    if (size > LargestTextFile)
        throw OutOfMemory();
    std::string bytes(static_cast<std::size_t>(size), '\0');
    bytes.resize(file.Read(0, bytes));
    text_ = DecodeText(bytes, codePage);
}

std::string WindowsTextStream::ReadLine()
{
    std::string line;
    AppendLine(line);
    return line;
}

void WindowsTextStream::AppendLine(std::string& text)
{
    if (AtEndOfStream())
        throw InputPastEndOfFile();
    const std::size_t end = std::min(text_.find_first_of("\r\n", at_), text_.size());
    text.append(text_, at_, end - at_);
    const bool both = text_.compare(end, 2, "\r\n") == 0;
    at_ = std::min(end + (both ? 2 : 1), text_.size());
}

std::size_t WindowsTextStream::SizeHint()
{
    // A line end of one byte becomes two, and the last line may have had none.
    return 2 * (text_.size() - at_) + 2;
}

} // namespace voxmate::windows_platform
