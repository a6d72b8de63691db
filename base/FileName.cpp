#include "base/FileName.h"

#include "base/Text.h"

#include <filesystem>
#include <system_error>

namespace voxmate
{

std::string InAnyExtensionCase(const std::string& path)
{
    namespace fs = std::filesystem;
    std::error_code error;
    if (fs::exists(path, error))
        return path;
    const fs::path wanted(path);
    const fs::path folder = wanted.has_parent_path() ? wanted.parent_path() : fs::path(".");
    std::string found;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
        const fs::path name = entry->path().filename();
        if (name.stem() == wanted.stem() && EqualNoCase(name.extension().string(), wanted.extension().string()) &&
            (found.empty() || name.string() < found))
            found = name.string();
    }
    return found.empty() ? path : (wanted.parent_path() / found).string();
}

} // namespace voxmate
