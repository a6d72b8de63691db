// The file system's fake: files in memory.
#pragma once

#include "base/RuntimeError.h"
#include "base/Text.h"
#include "platform/FileSystem.h"

#include <algorithm>
#include <fnmatch.h>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace voxmate::fakes
{

class FakeFiles : public FileSystem
{
public:
    std::set<std::string> folders;                  ///< with the separator at the end
    std::set<std::string> files;                    ///< full paths; those without a text below are empty
    std::map<std::string, std::string> texts;       ///< full path -> content of a file that exists, too
    std::map<std::string, RuntimeError> openErrors; ///< full path -> what opening its text raises
    std::map<std::string, RuntimeError> readErrors; ///< full path -> what reading a line of it raises

    std::string PathSeparator() override { return "\\"; }
    bool FolderExists(const std::string& path) override { return folders.contains(path); }
    bool FileExists(const std::string& path) override { return files.contains(path) || texts.contains(path); }
    std::string GetBaseName(const std::string& path) override
    {
        const std::string name = path.substr(path.rfind('\\') + 1);
        return name.substr(0, name.rfind('.'));
    }
    std::string GetExtensionName(const std::string& path) override
    {
        const std::string name = path.substr(path.rfind('\\') + 1);
        const std::size_t dot = name.rfind('.');
        return dot == std::string::npos ? "" : name.substr(dot + 1);
    }
    std::unique_ptr<TextStream> OpenTextFile(const std::string& path) override
    {
        if (const auto error = openErrors.find(path); error != openErrors.end())
            throw RuntimeError(error->second);
        if (!FileExists(path))
            throw FileNotFound();
        const auto error = readErrors.find(path);
        return std::make_unique<Stream>(texts[path],
                                        error == readErrors.end() ? std::nullopt : std::optional(error->second));
    }
    std::vector<std::string> ListFiles(const std::string& folder, const std::string& pattern) override
    {
        std::vector<std::string> names;
        for (const std::string& file : files) {
            const std::string name = file.substr(file.rfind('\\') + 1);
            if (file == folder + name && ::fnmatch(pattern.c_str(), name.c_str(), 0) == 0)
                names.push_back(name);
        }
        return names;
    }

private:
    class Stream : public TextStream
    {
    public:
        Stream(std::string text, std::optional<RuntimeError> error) : text_(std::move(text)), error_(std::move(error))
        {
        }
        bool AtEndOfStream() override { return at_ == text_.size(); }
        std::string ReadLine() override
        {
            if (error_)
                throw RuntimeError(*error_);
            if (AtEndOfStream())
                throw InputPastEndOfFile();
            const std::size_t end = std::min(text_.find_first_of("\r\n", at_), text_.size());
            std::string line = text_.substr(at_, end - at_);
            at_ = end + (text_.compare(end, 2, CrLf) == 0 ? 2 : end < text_.size() ? 1 : 0);
            return line;
        }

    private:
        std::string text_;
        std::size_t at_ = 0;
        std::optional<RuntimeError> error_;
    };
};

} // namespace voxmate::fakes
