#include "platform/linux/settings/FileStateStore.h"

#include "platform/linux/files/Folders.h"
#include "platform/linux/files/WholeFile.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <utility>

namespace voxmate::linux_platform
{

namespace
{

std::string Escaped(std::string_view value)
{
    std::string line;
    for (const char c : value) {
        if (c == '\\')
            line += "\\\\";
        else if (c == '\n')
            line += "\\n";
        else if (c == '\r')
            line += "\\r";
        else
            line += c;
    }
    return line;
}

std::string Unescaped(std::string_view line)
{
    std::string value;
    for (std::size_t i = 0; i < line.size(); ++i) {
        if (line[i] != '\\' || i + 1 == line.size()) {
            value += line[i];
            continue;
        }
        const char next = line[++i];
        value += next == 'n' ? '\n' : next == 'r' ? '\r' : next;
    }
    return value;
}

} // namespace

FileStateStore::FileStateStore(const std::string& path) : saver_(path, Rest)
{
    const std::string text = ReadWholeFile(path, LargestFile + 1).value_or("");
    foreign_ = text.size() > LargestFile;
    if (foreign_)
        return;
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = std::min(text.find('\n', begin), text.size());
        lines_.push_back(text.substr(begin, end - begin));
        begin = end + 1;
    }
}

std::string* FileStateStore::Find(const std::string& name)
{
    const auto found = std::find_if(lines_.rbegin(), lines_.rend(),
                                    [&name](const std::string& line) { return line.starts_with(name + "="); });
    return found == lines_.rend() ? nullptr : &*found;
}

std::string FileStateStore::Get(const std::string& name)
{
    const std::string* line = Find(name);
    return line ? Unescaped(std::string_view(*line).substr(name.size() + 1)) : "";
}

void FileStateStore::Set(const std::string& name, const std::string& value)
{
    std::string line = name + "=" + Escaped(value);
    if (std::string* old = Find(name)) {
        if (*old == line)
            return;
        *old = std::move(line);
    } else {
        lines_.push_back(std::move(line));
    }
    if (foreign_)
        return;
    std::string text;
    for (const std::string& each : lines_)
        text += each + "\n";
    saver_.Save(std::move(text));
}

std::unique_ptr<FileStateStore> MakeStateStore()
{
    return std::make_unique<FileStateStore>(StateFolder() + "/voxmate/state");
}

} // namespace voxmate::linux_platform
