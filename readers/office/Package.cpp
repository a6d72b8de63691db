#include "readers/office/Package.h"

#include "base/Text.h"
#include "readers/Refusal.h"

#include <algorithm>
#include <charconv>
#include <vector>

#include <zip.h>

namespace voxmate::readers
{

namespace
{

struct ArchiveCloser {
    void operator()(zip_t* archive) const { zip_discard(archive); }
};

class Package : public Parts
{
public:
    explicit Package(std::string_view bytes)
    {
        zip_error_t error;
        zip_error_init(&error);
        zip_source_t* source = zip_source_buffer_create(bytes.data(), bytes.size(), 0, &error);
        if (source)
            archive_.reset(zip_open_from_source(source, ZIP_RDONLY, &error));
        if (source && !archive_)
            zip_source_free(source);
        zip_error_fini(&error);
        if (!archive_)
            throw Refused(Refusal::Damaged);
    }

    bool Has(const std::string& name) const override { return Find(name) >= 0; }

    std::optional<ByteSource> Open(const std::string& name) const override
    {
        const zip_int64_t index = Find(name);
        if (index < 0)
            return std::nullopt;
        zip_stat_t status;
        zip_stat_init(&status);
        const bool known = zip_stat_index(archive_.get(), static_cast<zip_uint64_t>(index), 0, &status) == 0;
        if (known && (status.valid & ZIP_STAT_ENCRYPTION_METHOD) != 0 && status.encryption_method != ZIP_EM_NONE)
            throw Refused(Refusal::Protected);
        const std::shared_ptr<zip_file_t> file(zip_fopen_index(archive_.get(), static_cast<zip_uint64_t>(index), 0),
                                               [](zip_file_t* opened) {
                                                   if (opened)
                                                       zip_fclose(opened);
                                               });
        if (!file)
            throw Refused(Refusal::Damaged);
        return [this, file](char* buffer, std::size_t size) {
            const zip_int64_t got = zip_fread(file.get(), buffer, size);
            if (got < 0)
                throw Refused(Refusal::Damaged);
            unpacked_ += static_cast<std::size_t>(got);
            if (unpacked_ > LargestContent)
                throw Refused(Refusal::TooLarge);
            return static_cast<std::size_t>(got);
        };
    }

private:
    zip_int64_t Find(const std::string& name) const
    {
        const zip_int64_t exact = zip_name_locate(archive_.get(), name.c_str(), ZIP_FL_ENC_GUESS);
        // Some programs do not write names in the case in which they refer to them.
        return exact >= 0 ? exact : zip_name_locate(archive_.get(), name.c_str(), ZIP_FL_ENC_GUESS | ZIP_FL_NOCASE);
    }

    std::unique_ptr<zip_t, ArchiveCloser> archive_;
    mutable std::size_t unpacked_ = 0;
};

std::string Unescaped(std::string_view reference)
{
    std::string text;
    for (std::size_t at = 0; at < reference.size(); ++at) {
        unsigned byte = 0;
        const char* const digits = reference.data() + at + 1;
        if (reference[at] == '%' && reference.size() - at > 2 &&
            std::from_chars(digits, digits + 2, byte, 16).ptr == digits + 2) {
            text += static_cast<char>(byte);
            at += 2;
        } else {
            text += reference[at];
        }
    }
    return text;
}

} // namespace

std::string Parts::Whole(const std::string& name, std::size_t most) const
{
    const std::optional<ByteSource> source = Open(name);
    if (!source)
        throw Refused(Refusal::Damaged);
    std::string content;
    constexpr std::size_t piece = std::size_t{64} * 1024;
    while (true) {
        const std::size_t size = content.size();
        content.resize(size + piece);
        const std::size_t got = (*source)(content.data() + size, piece);
        content.resize(size + got);
        if (got == 0)
            return content;
        if (content.size() > most)
            throw Refused(Refusal::TooLarge);
    }
}

std::unique_ptr<Parts> OpenPackage(std::string_view bytes)
{
    return std::make_unique<Package>(bytes);
}

std::string PartName(std::string_view from, std::string_view reference)
{
    const std::string target = Unescaped(reference.substr(0, reference.find('#')));
    std::string path =
        target.starts_with('/') ? target.substr(1) : std::string(from.substr(0, from.find_last_of('/') + 1)) + target;
    std::vector<std::string_view> names;
    for (std::string_view rest = path; !rest.empty();) {
        const std::size_t end = std::min(rest.find('/'), rest.size());
        const std::string_view name = rest.substr(0, end);
        if (name == ".." && !names.empty())
            names.pop_back();
        else if (name != ".." && name != "." && !name.empty())
            names.push_back(name);
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    std::string whole;
    for (const std::string_view name : names)
        whole += (whole.empty() ? "" : "/") + std::string(name);
    return whole;
}

} // namespace voxmate::readers
