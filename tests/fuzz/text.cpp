// Fuzzing of text files. The first byte chooses the code page, all others are the file. Any bytes are a text in UTF-8
// in the end, and the same one whether they are decoded at once or read from a file line by line.
#include "fuzz.h"

#include "base/Text.h"
#include "platform/linux/files/CodePage.h"
#include "platform/linux/files/LinuxTextStream.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <vector>

#include <sys/mman.h>
#include <unistd.h>

using namespace voxmate::linux_platform;
using voxmate::fuzz::InTime;
using voxmate::fuzz::Require;

namespace
{

// One of each kind: a byte a letter, some of them unassigned, and several bytes a letter.
const std::array<CodePage, 8> codePages{CodePage("CP1252"),  CodePage("CP1251"), CodePage("CP1255"),
                                        CodePage("CP874"),   CodePage("CP932"),  CodePage("CP936"),
                                        CodePage("GB18030"), CodePage("CP1258")};

std::vector<std::string> Lines(std::string_view text)
{
    std::vector<std::string> lines;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find_first_of("\r\n"), text.size());
        lines.emplace_back(text.substr(0, end));
        text.remove_prefix(end);
        text.remove_prefix(text.starts_with("\r\n") ? 2 : text.empty() ? 0 : 1);
    }
    return lines;
}

// What the stream reads from a file of these bytes, which lies in memory.
std::vector<std::string> LinesOfFile(std::string_view bytes, const CodePage& codePage)
{
    const int file = ::memfd_create("text", MFD_CLOEXEC);
    Require(file >= 0 && ::write(file, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size()),
            "there is room for a file");
    std::vector<std::string> lines;
    LinuxTextStream stream("/proc/self/fd/" + std::to_string(file), codePage);
    while (!stream.AtEndOfStream())
        lines.push_back(stream.ReadLine());
    ::close(file);
    return lines;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0)
        return 0;
    const CodePage& codePage = codePages.at(data[0] % codePages.size());
    const std::string_view bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
    std::string text;
    {
        const InTime inTime("a text is decoded");
        text = DecodeText(bytes, codePage);
    }
    Require(voxmate::IsValidUtf8(text), "a text is UTF-8");
    Require(text.size() <= bytes.size() * 6 + 3, "a text is no longer than its bytes can be");
    std::vector<std::string> lines;
    {
        const InTime inTime("a text file is read");
        lines = LinesOfFile(bytes, codePage);
    }
    Require(lines == Lines(text), "a file holds the lines of its text");
    return 0;
}
