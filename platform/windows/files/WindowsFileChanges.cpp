// Changes in the file system: files of slots, and creating, deleting and renaming files.
#include "platform/windows/files/File.h"
#include "platform/windows/files/WhileInUse.h"
#include "platform/windows/files/WindowsFileSystem.h"
#include "platform/windows/files/WindowsRandomFile.h"
#include "platform/windows/system/WindowsApi.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace voxmate::windows_platform
{

namespace
{

std::string FolderOf(const std::string& path)
{
    const std::size_t end = path.find_last_of("\\/");
    return end == std::string::npos ? "." : path.substr(0, end + 1);
}

std::uint32_t Outcome(bool good)
{
    return good ? 0 : ::GetLastError();
}

} // namespace

std::unique_ptr<RandomAccessFile> WindowsFileSystem::OpenRandom(const std::string& path, std::size_t recordLength)
{
    return std::make_unique<WindowsRandomFile>(path, recordLength, true);
}

std::unique_ptr<RandomAccessFile> WindowsFileSystem::OpenRandomExisting(const std::string& path,
                                                                        std::size_t recordLength)
{
    if (!FileExists(path) && !FolderExists(path))
        throw FolderExists(FolderOf(path)) ? FileNotFound() : PathNotFound();
    return std::make_unique<WindowsRandomFile>(path, recordLength, false);
}

void WindowsFileSystem::CreateTextFile(const std::string& path)
{
    const DWORD attributes = ::GetFileAttributesW(SystemPath(path).c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES &&
        (attributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_READONLY)) != 0)
        throw PathFileAccessError();
    File file(path, Opening::Create);
    if (!file.Opens() || !file.Resize(0) || !file.Flush())
        throw WriteErrorOf(file.Error());
}

void WindowsFileSystem::DeleteFile(const std::string& path)
{
    if (FolderExists(path))
        throw PermissionDenied();
    const std::wstring name = SystemPath(path);
    // Fails for a read-only file by itself.
    if (const std::uint32_t error = WhileInUse([&name] { return Outcome(::DeleteFileW(name.c_str())); }))
        throw ChangeErrorOf(error);
}

void WindowsFileSystem::MoveFile(const std::string& from, const std::string& to)
{
    const std::wstring before = SystemPath(from);
    const std::wstring after = SystemPath(to);
    if (const std::uint32_t error =
            WhileInUse([&] { return Outcome(::MoveFileExW(before.c_str(), after.c_str(), MOVEFILE_WRITE_THROUGH)); }))
        throw ChangeErrorOf(error);
}

void WindowsFileSystem::CopyFile(const std::string& from, const std::string& to)
{
    constexpr std::size_t blockSize = std::size_t{1} << 20;
    const File source(from, Opening::Read);
    if (!source.Opens())
        throw ChangeErrorOf(source.Error());
    if (!source.IsRegular())
        throw PermissionDenied();
    const std::string fresh = to + ".new";
    {
        File copy(fresh, Opening::Create);
        if (!copy.Opens() || !copy.Resize(0))
            throw WriteErrorOf(copy.Error());
        std::string block(blockSize, '\0');
        for (std::int64_t position = 0;;) {
            const std::size_t length = source.Read(position, block);
            if (!copy.Write(position, std::string_view(block).substr(0, length))) {
                const RuntimeError error = WriteErrorOf(copy.Error());
                copy.Close();
                ::DeleteFileW(SystemPath(fresh).c_str());
                throw error;
            }
            position += static_cast<std::int64_t>(length);
            if (length < block.size())
                break;
        }
        copy.Flush();
    }
    const std::uint32_t error = WhileInUse([&] {
        return Outcome(::MoveFileExW(SystemPath(fresh).c_str(), SystemPath(to).c_str(),
                                     MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH));
    });
    if (error == 0)
        return;
    ::DeleteFileW(SystemPath(fresh).c_str());
    throw WriteErrorOf(error);
}

void WindowsFileSystem::LinkFile(const std::string& target, const std::string& name)
{
    constexpr DWORD withoutPrivilege = 2; // from Windows 10 1703 on, for developers (winbase.h)
    const std::wstring link = SystemPath(name);
    const std::wstring file = SystemPath(target);
    if (::GetFileAttributesW(link.c_str()) != INVALID_FILE_ATTRIBUTES)
        throw FileAlreadyExists();
    // Wine reports success without having made a symbolic link.
    if ((::CreateSymbolicLinkW(link.c_str(), file.c_str(), withoutPrivilege) && FileExists(name)) ||
        ::CreateHardLinkW(link.c_str(), file.c_str(), nullptr))
        return;
    throw ChangeErrorOf(::GetLastError());
}

void WindowsFileSystem::CreateFolder(const std::string& path)
{
    if (FolderExists(path))
        return;
    const std::size_t end = path.find_last_of("\\/");
    if (end != std::string::npos && end > 0 && path[end - 1] != ':')
        CreateFolder(path.substr(0, end));
    if (!::CreateDirectoryW(SystemPath(path).c_str(), nullptr) && !FolderExists(path))
        throw ChangeErrorOf(::GetLastError());
}

bool WindowsFileSystem::FolderWritable(const std::string& path)
{
    void* const folder =
        ::CreateFileW(SystemPath(path).c_str(), FILE_ADD_FILE, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                      nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (folder == INVALID_HANDLE_VALUE)
        return false;
    ::CloseHandle(folder);
    return FolderExists(path);
}

} // namespace voxmate::windows_platform
