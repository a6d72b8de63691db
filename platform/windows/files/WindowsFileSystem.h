// Files and folders on Windows.
#pragma once

#include "platform/FileSystem.h"

namespace voxmate::windows_platform
{

class WindowsFileSystem : public FileSystem
{
public:
    std::string PathSeparator() override { return "\\"; }
    bool FolderExists(const std::string& path) override;
    bool FileExists(const std::string& path) override;
    std::string GetBaseName(const std::string& path) override;
    std::string GetExtensionName(const std::string& path) override;
    std::unique_ptr<TextStream> OpenTextFile(const std::string& path) override;
    std::vector<std::string> ListFiles(const std::string& folder, const std::string& pattern) override;
    std::unique_ptr<RandomAccessFile> OpenRandom(const std::string& path, std::size_t recordLength) override;
    std::unique_ptr<RandomAccessFile> OpenRandomExisting(const std::string& path, std::size_t recordLength) override;
    std::unique_ptr<FileLock> Lock(const std::string& path) override;
    /// A link whose target does not exist is returned unchanged: only what can be opened has a final path.
    std::string LinkTarget(const std::string& path) override;
    std::string DecodeText(std::string_view bytes) override;
    void CreateTextFile(const std::string& path) override;
    void DeleteFile(const std::string& path) override;
    void MoveFile(const std::string& from, const std::string& to) override;
    void CopyFile(const std::string& from, const std::string& to) override;
    /// Where the user may not make symbolic links, a hard link, which keeps the file when `target` is removed.
    void LinkFile(const std::string& target, const std::string& name) override;
    void CreateFolder(const std::string& path) override;
    bool FolderWritable(const std::string& path) override;
};

} // namespace voxmate::windows_platform
