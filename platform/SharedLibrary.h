// Libraries that are loaded when something of theirs is used.
#pragma once

#include <filesystem>
#include <optional>

namespace voxmate
{

/// A loaded shared library, which stays loaded for the rest of the run.
class SharedLibrary
{
public:
    /// Loads a library by its file name, looked for where the system keeps libraries, or by its path; nothing when
    /// that fails. What it defines is not seen by other libraries.
    static std::optional<SharedLibrary> Load(const std::filesystem::path& name);

    /// The address of a function, nullptr when there is none of that name.
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
