// The file system's fake: files in memory.
#pragma once

#include "base/FileName.h"
#include "base/RuntimeError.h"
#include "base/Text.h"
#include "platform/FileSystem.h"
#include "tests/fakes/Log.h"

#include <algorithm>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
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
    std::map<std::string, RuntimeError> openErrors; ///< full path -> what opening it raises
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
    std::map<std::string, RuntimeError> failures; ///< call as it is logged -> what it raises instead of being done
    std::function<void(const std::string& call)> whenCalled;
    Log* log = nullptr; ///< where calls that change files are told

    std::unique_ptr<RandomAccessFile> OpenRandom(const std::string& path, std::size_t recordLength) override
    {
        Call("OpenRandom " + path + " " + std::to_string(recordLength));
        return std::make_unique<Slots>(*this, path, texts[path], recordLength);
    }
    std::unique_ptr<RandomAccessFile> OpenRandomExisting(const std::string& path, std::size_t recordLength) override
    {
        if (const auto error = openErrors.find(path); error != openErrors.end())
            throw RuntimeError(error->second);
        if (!FileExists(path))
            throw FileNotFound();
        Call("OpenRandom " + path + " " + std::to_string(recordLength));
        return std::make_unique<Slots>(*this, path, texts[path], recordLength);
    }
    std::map<std::string, std::string> links; ///< path -> what it leads to
    std::string DecodeText(std::string_view bytes) override { return Windows1252ToUtf8(bytes); }
    std::string LinkTarget(const std::string& path) override { return links.contains(path) ? links[path] : path; }
    std::set<std::string> locks; ///< what is held just now
    bool logLocks = false;
    std::unique_ptr<FileLock> Lock(const std::string& path) override
    {
        if (logLocks)
            Call("Lock " + path);
        if (!locks.insert(path).second)
            throw PermissionDenied();
        return std::make_unique<Held>(*this, path);
    }
    void CreateTextFile(const std::string& path) override
    {
        Call("CreateTextFile " + path);
        texts[path].clear();
    }
    void DeleteFile(const std::string& path) override
    {
        Call("DeleteFile " + path);
        if (!FileExists(path))
            throw FileNotFound();
        files.erase(path);
        texts.erase(path);
    }
    void MoveFile(const std::string& from, const std::string& to) override
    {
        Call("MoveFile " + from + " to " + to);
        if (!FileExists(from))
            throw FileNotFound();
        if (FileExists(to))
            throw FileAlreadyExists();
        texts[to] = std::move(texts[from]);
        files.erase(from);
        texts.erase(from);
    }
    void CopyFile(const std::string& from, const std::string& to) override
    {
        Call("CopyFile " + from + " to " + to);
        if (!FileExists(from))
            throw FileNotFound();
        texts[to] = texts[from];
    }
    void LinkFile(const std::string& target, const std::string& name) override
    {
        Call("LinkFile " + target + " as " + name);
        texts[name] = texts[target];
    }
    void CreateFolder(const std::string& path) override
    {
        Call("CreateFolder " + path);
        folders.insert(path);
    }
    std::set<std::string> readOnlyFolders;
    bool FolderWritable(const std::string& path) override
    {
        return folders.contains(path) && !readOnlyFolders.contains(path);
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
        std::set<std::string> all = files;
        for (const auto& text : texts)
            all.insert(text.first);
        for (const std::string& file : all) {
            const std::string name = file.substr(file.rfind('\\') + 1);
            if (file == folder + name && MatchesPattern(name, pattern))
                names.push_back(name);
        }
        return names;
    }

private:
    void Call(const std::string& call)
    {
        if (log)
            log->push_back(call);
        if (const auto failure = failures.find(call); failure != failures.end())
            throw RuntimeError(failure->second);
        if (whenCalled)
            whenCalled(call);
    }

    class Held : public FileLock
    {
    public:
        Held(FakeFiles& owner, std::string path) : owner_(owner), path_(std::move(path)) {}
        ~Held() override
        {
            owner_.locks.erase(path_);
            if (owner_.logLocks && owner_.log)
                owner_.log->push_back("Unlock " + path_);
        }

    private:
        FakeFiles& owner_;
        std::string path_;
    };

    /// Get is told of only where it fails: there are too many of them.
    class Slots : public RandomAccessFile
    {
    public:
        Slots(FakeFiles& owner, std::string path, std::string& content, std::size_t size)
            : owner_(owner), path_(std::move(path)), content_(content), size_(size)
        {
        }
        std::int64_t Count() override { return static_cast<std::int64_t>((content_.size() + size_ - 1) / size_); }
        std::string_view Get(std::int32_t slot) override
        {
            if (!owner_.failures.empty() && owner_.failures.contains("Get " + std::to_string(slot)))
                owner_.Call("Get " + std::to_string(slot));
            const std::string_view content = content_;
            return content.substr(std::min(Position(slot), content.size()), size_);
        }
        void Put(std::int32_t slot, std::string_view record) override
        {
            if (record.size() > size_)
                throw BadRecordLength();
            owner_.Call("Put " + std::to_string(slot));
            const std::size_t at = Position(slot);
            content_.resize(std::max(content_.size(), at + size_), '\0');
            content_.replace(at, size_, std::string(record) + std::string(size_ - record.size(), '\0'));
        }
        void Flush() override { owner_.Call("Flush " + path_); }
        void Close() override { owner_.Call("Close " + path_); }

    private:
        FakeFiles& owner_;
        std::string path_;
        std::string& content_; ///< a map's value stays where it is
        std::size_t size_;
        std::size_t Position(std::int32_t slot) const
        {
            if (slot < 1)
                throw BadRecordNumber();
            return static_cast<std::size_t>(slot - 1) * size_;
        }
    };

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
