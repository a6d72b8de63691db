#include "platform/windows/files/File.h"

#include "platform/windows/files/WhileInUse.h"
#include "platform/windows/system/Wide.h"
#include "platform/windows/system/WindowsApi.h"

#include <algorithm>
#include <cstring>
#include <utility>
#include <vector>

namespace voxmate::windows_platform
{

namespace
{

// A folder's name must leave room for a file's short one within the system's 260.
constexpr std::size_t LongestPlain = 247;

constexpr std::uint32_t DiskQuotaExceeded = 1295; // winerror.h

struct Access {
    DWORD rights;
    DWORD shared;
    DWORD creation;
};

Access AccessFor(Opening how)
{
    constexpr DWORD all = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    switch (how) {
    case Opening::Read:
        return {GENERIC_READ, all, OPEN_EXISTING};
    case Opening::ReadOnly:
        return {GENERIC_READ, 0, OPEN_EXISTING};
    case Opening::Write:
        return {GENERIC_READ | GENERIC_WRITE, 0, OPEN_EXISTING};
    case Opening::Create:
        // With the right to rename it.
        return {GENERIC_READ | GENERIC_WRITE | DELETE, 0, OPEN_ALWAYS};
    }
    return {};
}

OVERLAPPED At(std::int64_t position)
{
    OVERLAPPED place{};
    place.Offset = static_cast<DWORD>(position);
    place.OffsetHigh = static_cast<DWORD>(position >> 32);
    return place;
}

// What one call reads or writes at most.
DWORD Portion(std::size_t size)
{
    return static_cast<DWORD>(std::min<std::size_t>(size, 1U << 30U));
}

} // namespace

std::wstring SystemPath(const std::string& path)
{
    std::wstring wide = Wide(path);
    std::replace(wide.begin(), wide.end(), L'/', L'\\');
    if (wide.size() <= LongestPlain || wide.starts_with(LR"(\\?\)") || wide.starts_with(LR"(\\.\)"))
        return wide;
    std::wstring full(::GetFullPathNameW(wide.c_str(), 0, nullptr, nullptr), L'\0');
    full.resize(::GetFullPathNameW(wide.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr));
    if (full.starts_with(LR"(\\)"))
        return LR"(\\?\UNC)" + full.substr(1);
    return LR"(\\?\)" + full;
}

File::File(const std::string& path, Opening how)
{
    const std::wstring name = SystemPath(path);
    const auto [rights, shared, creation] = AccessFor(how);
    error_ = WhileInUse([&, rights = rights, shared = shared, creation = creation]() -> std::uint32_t {
        void* const handle =
            ::CreateFileW(name.c_str(), rights, shared, nullptr, creation, FILE_ATTRIBUTE_NORMAL, nullptr);
        if (handle == INVALID_HANDLE_VALUE)
            return ::GetLastError();
        handle_ = handle;
        return 0;
    });
}

bool File::IsRegular() const
{
    return handle_ && ::GetFileType(handle_) == FILE_TYPE_DISK;
}

std::int64_t File::Size() const
{
    LARGE_INTEGER size{};
    if (!::GetFileSizeEx(handle_, &size))
        throw DeviceIOError();
    return size.QuadPart;
}

std::size_t File::Read(std::int64_t position, std::span<char> buffer) const
{
    std::size_t filled = 0;
    while (filled < buffer.size()) {
        OVERLAPPED place = At(position + static_cast<std::int64_t>(filled));
        DWORD got = 0;
        if (!::ReadFile(handle_, buffer.data() + filled, Portion(buffer.size() - filled), &got, &place) &&
            ::GetLastError() != ERROR_HANDLE_EOF)
            throw DeviceIOError();
        if (got == 0)
            break;
        filled += got;
    }
    return filled;
}

bool File::Note(bool good)
{
    error_ = good ? 0 : ::GetLastError();
    return good;
}

bool File::Write(std::int64_t position, std::string_view bytes)
{
    while (!bytes.empty()) {
        OVERLAPPED place = At(position);
        DWORD written = 0;
        if (!Note(::WriteFile(handle_, bytes.data(), Portion(bytes.size()), &written, &place)))
            return false;
        position += written;
        bytes.remove_prefix(written);
    }
    return true;
}

bool File::Resize(std::int64_t size)
{
    LARGE_INTEGER end{};
    end.QuadPart = size;
    return Note(::SetFilePointerEx(handle_, end, nullptr, FILE_BEGIN) && ::SetEndOfFile(handle_));
}

bool File::Flush()
{
    return Note(::FlushFileBuffers(handle_));
}

bool File::Rename(const std::string& path)
{
    const std::wstring name = SystemPath(path);
    const std::size_t length = name.size() * sizeof(wchar_t);
    // The record ends in the name, which is of any length.
    std::vector<std::byte> bytes(sizeof(FILE_RENAME_INFO) + length);
    auto* const record = reinterpret_cast<FILE_RENAME_INFO*>(bytes.data());
    record->FileNameLength = static_cast<DWORD>(length);
    std::memcpy(record->FileName, name.data(), length);
    return Note(::SetFileInformationByHandle(handle_, FileRenameInfo, record, static_cast<DWORD>(bytes.size())));
}

void File::Close()
{
    if (void* const handle = std::exchange(handle_, nullptr))
        ::CloseHandle(handle);
}

RuntimeError OpenErrorOf(std::uint32_t error)
{
    switch (error) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_NAME:
    case ERROR_INVALID_DRIVE:
    case ERROR_BAD_NETPATH:
    case ERROR_BAD_NET_NAME:
        return FileNotFound();
    case ERROR_ACCESS_DENIED:
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION:
        return PermissionDenied();
    default:
        return DeviceIOError();
    }
}

RuntimeError WriteErrorOf(std::uint32_t error)
{
    switch (error) {
    case ERROR_FILE_NOT_FOUND:
        return FileNotFound();
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_DRIVE:
    case ERROR_BAD_NETPATH:
    case ERROR_BAD_NET_NAME:
        return PathNotFound();
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION:
    case ERROR_ALREADY_EXISTS:
    case ERROR_FILE_EXISTS:
        return PermissionDenied();
    case ERROR_ACCESS_DENIED:
    case ERROR_WRITE_PROTECT:
    case ERROR_INVALID_NAME:
    case ERROR_FILENAME_EXCED_RANGE:
        return PathFileAccessError();
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL:
    case DiskQuotaExceeded:
        return DiskFull();
    default:
        return DeviceIOError();
    }
}

RuntimeError ChangeErrorOf(std::uint32_t error)
{
    switch (error) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_DRIVE:
    case ERROR_BAD_NETPATH:
    case ERROR_BAD_NET_NAME:
        return FileNotFound();
    case ERROR_ALREADY_EXISTS:
    case ERROR_FILE_EXISTS:
        return FileAlreadyExists();
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL:
    case DiskQuotaExceeded:
        return DiskFull();
    case ERROR_CRC:
    case ERROR_IO_DEVICE:
        return DeviceIOError();
    default:
        return PermissionDenied();
    }
}

} // namespace voxmate::windows_platform
