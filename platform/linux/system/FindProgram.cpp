#include "platform/FindProgram.h"

#include <cstdlib>
#include <filesystem>

#include <unistd.h>

namespace voxmate
{

std::string FindProgram(const std::string& name, std::string_view folders)
{
    while (!folders.empty()) {
        const std::size_t colon = folders.find(':');
        std::string path = std::string(folders.substr(0, colon)) + "/" + name;
        folders.remove_prefix(colon == std::string_view::npos ? folders.size() : colon + 1);
        std::error_code error;
        if (path.starts_with('/') && std::filesystem::is_regular_file(path, error) && ::access(path.c_str(), X_OK) == 0)
            return path;
    }
    return {};
}

std::string FindProgram(const std::string& name)
{
    const char* folders = std::getenv("PATH"); // NOLINT(concurrency-mt-unsafe): nobody changes it
    return FindProgram(name, folders ? folders : "");
}

} // namespace voxmate
