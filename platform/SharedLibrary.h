// Libraries that are loaded at run time, when one of their functions is needed.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace voxmate
{

/// A loaded shared library, which stays loaded for the rest of the run.
class SharedLibrary
{
public:
    /// Loads a library by its path, or by its file name from where the system keeps libraries. Nothing when that fails.
    /// Its symbols are not visible to other libraries.
    static std::optional<SharedLibrary> Load(const std::filesystem::path& name);
    /// The file name of a library on this system; `version` is that of its interface, where file names tell it.
    static std::string FileName(std::string_view name, int version);

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

/// Functions of a library that is loaded when they are first needed, so that the program's start does not wait for it.
/// A derived class has a member for each function.
class LibraryFunctions
{
public:
    /// Whether the library and all of its functions were found. Otherwise none may be called.
    explicit operator bool() const { return complete_; }
    /// The folder the library was loaded from; empty when there is none.
    std::filesystem::path Folder() const { return library_ ? library_->Folder() : std::filesystem::path(); }

protected:
    /// Loads the library of this file name from where the system keeps libraries.
    explicit LibraryFunctions(const std::filesystem::path& library)
        : library_(SharedLibrary::Load(library)), complete_(library_)
    {
    }

    /// A function's address; nullptr when there is none of that name.
    template <class Function>
    Function Need(const char* name)
    {
        const auto function = library_ ? library_->Find<Function>(name) : nullptr;
        complete_ = complete_ && function;
        return function;
    }

    /// The same for a function that only some versions have; without it the others may be called all the same.
    template <class Function>
    Function Find(const char* name) const
    {
        return library_ ? library_->Find<Function>(name) : nullptr;
    }

private:
    std::optional<SharedLibrary> library_;
    bool complete_;
};

} // namespace voxmate
