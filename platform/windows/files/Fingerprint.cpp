#include "platform/Fingerprint.h"

#include "base/RuntimeError.h"
#include "platform/windows/files/File.h"
#include "platform/windows/system/WindowsApi.h"

#include <array>
#include <cstdint>
#include <string_view>

#include <bcrypt.h>

namespace voxmate
{

namespace
{

constexpr std::int64_t Megabyte = std::int64_t{1} << 20;
constexpr std::int64_t Sample = Megabyte / 4;

/// The system's MD5, which tells files apart well enough and is the digest used elsewhere for the same files.
class Md5
{
public:
    Md5()
    {
        if (::BCryptOpenAlgorithmProvider(&algorithm_, BCRYPT_MD5_ALGORITHM, nullptr, 0) == 0)
            ::BCryptCreateHash(algorithm_, &hash_, nullptr, 0, nullptr, 0, 0);
    }
    ~Md5()
    {
        if (hash_)
            ::BCryptDestroyHash(hash_);
        if (algorithm_)
            ::BCryptCloseAlgorithmProvider(algorithm_, 0);
    }
    Md5(const Md5&) = delete;
    Md5& operator=(const Md5&) = delete;

    bool Add(std::string bytes)
    {
        return hash_ && ::BCryptHashData(hash_, reinterpret_cast<UCHAR*>(bytes.data()),
                                         static_cast<ULONG>(bytes.size()), 0) == 0;
    }
    std::string Digest()
    {
        std::array<UCHAR, 16> digest{};
        if (!hash_ || ::BCryptFinishHash(hash_, digest.data(), static_cast<ULONG>(digest.size()), 0) != 0)
            return "";
        std::string text;
        for (const UCHAR byte : digest) {
            constexpr std::string_view digits = "0123456789abcdef";
            text += digits[byte >> 4U];
            text += digits[byte & 0xFU];
        }
        return text;
    }

private:
    BCRYPT_ALG_HANDLE algorithm_ = nullptr;
    BCRYPT_HASH_HANDLE hash_ = nullptr;
};

} // namespace

std::string Fingerprint(const std::string& path)
{
    const windows_platform::File file(path, windows_platform::Opening::Read);
    if (!file.Opens() || !file.IsRegular())
        return "";
    Md5 digest;
    try {
        // False when the file does not give so many bytes.
        const auto add = [&](std::int64_t at, std::int64_t count) {
            std::string bytes(static_cast<std::size_t>(count), '\0');
            return file.Read(at, bytes) == bytes.size() && digest.Add(std::move(bytes));
        };
        const std::int64_t size = file.Size();
        bool whole = true;
        if (size <= Megabyte) {
            whole = add(0, size);
        } else {
            whole = digest.Add(std::to_string(size));
            for (const std::int64_t at : {std::int64_t{0}, (size - Sample) / 2, size - Sample})
                whole = whole && add(at, Sample);
        }
        return whole ? digest.Digest() : "";
    } catch (const RuntimeError&) {
        return "";
    }
}

} // namespace voxmate
