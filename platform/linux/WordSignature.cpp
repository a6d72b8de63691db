#include "platform/linux/WordSignature.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <system_error>
#include <vector>

namespace voxmate::linux_platform
{

namespace
{

class Source
{
public:
    explicit Source(const std::string& path)
    {
        // A pipe would have to be waited for.
        std::error_code error;
        if (!std::filesystem::is_regular_file(path, error))
            return;
        file_.open(path, std::ios::binary | std::ios::ate);
        if (file_)
            size_ = static_cast<std::uint64_t>(std::max<std::streamoff>(file_.tellg(), 0));
    }

    std::uint64_t Size() const { return size_; }

    // These bytes, or none when the file does not have all of them.
    std::string Read(std::uint64_t at, std::size_t count)
    {
        if (at > size_ || count > size_ - at)
            return {};
        std::string bytes(count, '\0');
        file_.seekg(static_cast<std::streamoff>(at));
        file_.read(bytes.data(), static_cast<std::streamsize>(count));
        if (file_)
            return bytes;
        file_.clear();
        return {};
    }

private:
    std::ifstream file_;
    std::uint64_t size_ = 0;
};

std::uint32_t Number(std::string_view bytes, std::size_t at, std::size_t size)
{
    std::uint32_t number = 0;
    for (std::size_t i = size; i-- > 0;)
        number = number << 8 | static_cast<unsigned char>(bytes[at + i]);
    return number;
}

// A compound file, as far as the streams in its root storage. The structures are those of [MS-CFB].
class CompoundFile
{
public:
    static constexpr std::string_view Signature{"\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1", 8};

    explicit CompoundFile(Source& source) : source_(source), header_(source.Read(0, HeaderSize)) {}

    bool HasStream(std::string_view name)
    {
        if (header_.empty())
            return false;
        shift_ = Number(header_, 30, 2);
        if (shift_ != 9 && shift_ != 12)
            return false;
        ReadDirectory(Number(header_, 48, 4));
        if (directory_.empty())
            return false;
        // The storages' children are trees; a damaged one may have circles.
        std::vector<bool> seen(directory_.size() / EntrySize);
        std::vector<std::uint32_t> open{Number(directory_, 76, 4)};
        while (!open.empty()) {
            const std::uint32_t entry = open.back();
            open.pop_back();
            if (entry >= seen.size() || seen[entry])
                continue;
            seen[entry] = true;
            const std::size_t at = entry * EntrySize;
            constexpr char stream = 2;
            if (directory_[at + 66] == stream && NameAt(at) == name)
                return true;
            open.push_back(Number(directory_, at + 68, 4));
            open.push_back(Number(directory_, at + 72, 4));
        }
        return false;
    }

private:
    static constexpr std::size_t HeaderSize = 512;
    static constexpr std::size_t EntrySize = 128;
    static constexpr std::uint32_t LastSector = 0xFFFFFFFA; // from here on numbers mean something else
    // Word writes some dozens of entries; a directory beyond this is not looked through to its end.
    static constexpr std::size_t DirectoryLimit = 1 << 20;

    std::string Sector(std::uint32_t number) const
    {
        return source_.Read((std::uint64_t{number} + 1) << shift_, std::size_t{1} << shift_);
    }

    std::uint32_t Entry(std::uint32_t sector, std::uint32_t index) const
    {
        const std::string bytes = source_.Read(((std::uint64_t{sector} + 1) << shift_) + std::uint64_t{index} * 4, 4);
        return sector >= LastSector || bytes.empty() ? LastSector : Number(bytes, 0, 4);
    }

    // The sector that follows one in its chain.
    std::uint32_t Next(std::uint32_t sector) const
    {
        constexpr std::uint32_t inHeader = 109;
        const std::uint32_t perSector = 1u << (shift_ - 2);
        std::uint32_t table = sector / perSector;
        if (table < inHeader)
            return Entry(Number(header_, 76 + table * 4, 4), sector % perSector);
        // The table's further sectors are listed in sectors that are chained by their last entries.
        table -= inHeader;
        std::uint32_t list = Number(header_, 68, 4);
        for (; table >= perSector - 1 && list < LastSector; table -= perSector - 1)
            list = Entry(list, perSector - 1);
        return Entry(Entry(list, table), sector % perSector);
    }

    void ReadDirectory(std::uint32_t sector)
    {
        for (; sector < LastSector && directory_.size() < DirectoryLimit; sector = Next(sector)) {
            const std::string bytes = Sector(sector);
            if (bytes.empty())
                break;
            directory_ += bytes;
        }
    }

    // Names are UTF-16; one that is not ASCII is none of Word's.
    std::string NameAt(std::size_t entry) const
    {
        std::string name;
        for (std::size_t at = entry; at < entry + 64; at += 2) {
            const std::uint32_t unit = Number(directory_, at, 2);
            if (unit == 0)
                break;
            name += unit < 0x80 ? static_cast<char>(unit) : '?';
        }
        return name;
    }

    Source& source_;
    std::string header_;
    std::uint32_t shift_ = 0; ///< sectors are of 2^shift bytes
    std::string directory_;
};

// Whether a ZIP archive's directory (PKWARE's application note, 4.3.12 and 4.3.16) names Word's main part: most
// programs call it word/document.xml, some put a number behind.
bool IsWordArchive(Source& source)
{
    constexpr std::size_t endSize = 22;
    constexpr std::size_t longestComment = 65535;
    constexpr std::size_t entrySize = 46;
    constexpr std::uint32_t directoryLimit = 16u << 20;
    const std::size_t tailSize =
        static_cast<std::size_t>(std::min<std::uint64_t>(source.Size(), endSize + longestComment));
    const std::string tail = source.Read(source.Size() - tailSize, tailSize);
    const std::size_t end = tail.rfind(std::string_view{"PK\x05\x06", 4});
    if (end == std::string::npos || tail.size() - end < endSize)
        return false;
    const std::uint32_t size = Number(tail, end + 12, 4);
    if (size > directoryLimit)
        return false;
    const std::string directory = source.Read(Number(tail, end + 16, 4), size);
    std::size_t at = 0;
    while (directory.size() - at >= entrySize && directory.compare(at, 4, std::string_view{"PK\x01\x02", 4}) == 0) {
        const std::size_t nameSize = Number(directory, at + 28, 2);
        const std::string_view name = std::string_view(directory).substr(at + entrySize, nameSize);
        if (name.starts_with("word/document") && name.ends_with(".xml"))
            return true;
        at += entrySize + nameSize + Number(directory, at + 30, 2) + Number(directory, at + 32, 2);
        if (at > directory.size())
            break;
    }
    return false;
}

} // namespace

bool IsWordDocument(const std::string& path)
{
    Source source(path);
    const std::string start = source.Read(0, CompoundFile::Signature.size());
    if (start == CompoundFile::Signature)
        return CompoundFile(source).HasStream("WordDocument");
    if (start.starts_with("PK\x03\x04"))
        return IsWordArchive(source);
    return start.starts_with("{\\rtf");
}

} // namespace voxmate::linux_platform
