#include "platform/Fingerprint.h"

#include "base/RuntimeError.h"
#include "platform/linux/files/RegularFile.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <unistd.h>
#include <vector>

#include <md5.h>

namespace voxmate
{

namespace
{

constexpr std::int64_t Megabyte = std::int64_t{1} << 20;
constexpr std::int64_t Sample = Megabyte / 4;

// Adds so many bytes from a place on. False when the file does not give them.
bool Add(MD5_CTX& context, int file, std::int64_t at, std::int64_t count)
{
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(count));
    for (std::size_t done = 0; done < bytes.size();) {
        const ssize_t got = ::pread(file, bytes.data() + done, bytes.size() - done, at + static_cast<off_t>(done));
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            return false;
        done += static_cast<std::size_t>(got);
    }
    MD5Update(&context, bytes.data(), bytes.size());
    return true;
}

} // namespace

std::string Fingerprint(const std::string& path)
{
    std::int64_t size = 0;
    int file = -1;
    try {
        file = linux_platform::OpenRegular(path, size);
    } catch (const RuntimeError&) {
        return "";
    }
    MD5_CTX context;
    MD5Init(&context);
    bool whole = true;
    if (size <= Megabyte) {
        whole = Add(context, file, 0, size);
    } else {
        const std::string length = std::to_string(size);
        MD5Update(&context, reinterpret_cast<const std::uint8_t*>(length.data()), length.size());
        for (const std::int64_t at : {std::int64_t{0}, (size - Sample) / 2, size - Sample})
            whole = whole && Add(context, file, at, Sample);
    }
    ::close(file);
    if (!whole)
        return "";
    std::array<std::uint8_t, MD5_DIGEST_LENGTH> digest{};
    MD5Final(digest.data(), &context);
    std::string text;
    for (const std::uint8_t byte : digest) {
        constexpr const char* digits = "0123456789abcdef";
        text += digits[byte >> 4];
        text += digits[byte & 0xF];
    }
    return text;
}

} // namespace voxmate
