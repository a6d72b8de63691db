// Libraries that are loaded at run time, when one of their functions is needed.
#pragma once

#include <filesystem>
#include <optional>

namespace voxmate
{

/// A loaded shared library, which stays loaded for the rest of the run.
class SharedLibrary
{
public:
    /// Loads a library by its path, or by its file name from where the system keeps libraries. Nothing when that fails.
    /// Its symbols are not visible to other libraries.
    static std::optional<SharedLibrary> Load(const std::filesystem::path& name);

    /// The address of a function; nullptr when there is none of that name.
    template <class Function>
    Function Find(const char* name) const
    {
        return reinterpret_cast<Function>(Address(name));
    }
    /// The folder it was loaded from.
    std::filesystem::path Folder() const;

private:
    explicit SharedLibrary(void* handle) : handle_(handle) {}
    void* Address(const char* name) const;

    void* handle_;
};

} // namespace voxmate
